"""From picking a point to its attributes in the table and back, and the defaults."""
import os
import re
import unittest

import dbase
from console import SETTINGS, SettingsCase

# List of the sheet, column of the table, keys of the catalogue.
OBJECT_LISTS = {
    7035: ("NE_ABM", ("abmarkung_Marke", "vermarkung_Marke")),
    7040: ("NE_ART", ("art",)),
    7009: ("NE_BZA", ("bemerkungZurAbmarkung",)),
    7047: ("NE_ZST", ("zustaendige_stelle",)),
}
POSITION_LISTS = {
    7038: ("NE_GST", ("genauigkeitsstufe",)),
    7058: ("NE_HIN", ("hinweise",)),
    7044: ("NE_HER", ("herkunft",)),
    7041: ("NE_KST", ("koordinatenstatus",)),
    7052: ("NE_VTW", ("vertrauenswuerdigkeit",)),
}
PO = {"PunktortTA": "1", "PunktortAU": "2", "PunktortAG": "3"}
OFFICES = '[T_Stellen]\n"0042" = "Katasteramt Musterstadt"\n"0043" = "ÖbVI Muster, Musterstadt"\n\n'
NO_IDENTIFIER = "Punktkennzeichen muß angegeben werden. Bitte prüfen"
WRONG_IDENTIFIER = "Punktkennzeichen ist nicht korrekt. Bitte prüfen"
NO_TYPE = "Objektart fehlt. Bitte prüfen"
NO_CATALOGUE = "Ini Datei nicht gefunden"


def sections(path):
    """A second opinion on catalogues: sections with their keys and values, in the file's order."""
    found = {}
    with open(path, encoding="cp1252") as file:
        for line in file:
            if line.startswith("["):
                current = found.setdefault(line.strip()[1:-1], [])
            elif "=" in line and not line.startswith("#"):
                key, value = line.split("=", 1)
                current.append((key.strip().strip('"'), value.strip().strip('"')))
    return found


def shown(block):
    """Numbers of the controls in what the console shows of a dialog."""
    return {int(number) for number in re.findall(r"^ {2,5}(\d+)  ", block, re.M)}


class Sheet(SettingsCase):
    def point(self, number):
        return next(point for point in dbase.Table(self.table).live() if point["PT_NO"] == number)

    def attributes(self, number):
        return {name: value for name, value in self.point(number).items() if name.startswith("NE_")}

    def pick(self, *lines):
        return self.play("start", "6", *lines, "ende", "0", "ende")[0]

    def test_new_point_gets_the_defaults_and_an_identifier(self):
        seen = self.pick("1001", "7012", "ok", "1001", "seite 2", "abbruch")
        self.assertEqual(self.attributes("1001"), {
            "NE_OA": "4", "NE_ANTRAGN": "2026-0042", "NE_AUFTRAG": "16-2026-0815", "NE_PKN": "326495651001001",
            "NE_PO": "1", "NE_ABM": "1110", "NE_BZA": "4000", "NE_ART": "-1", "NE_ZST": "-1", "NE_KST": "1000",
            "NE_DAT": "0", "NE_HER": "1000", "NE_GST": "2100", "NE_VTW": "1200", "NE_LZV": "-1", "NE_HIN": "1010",
            "NE_OBGID": "", "NE_AKTION": "0", "NE_WEPO": ""})
        again = seen.split("=== 7020")[2]
        self.assertIn("[326495651001001]", again)
        self.assertIn("<Entfernen>", again)
        self.assertIn("{Stein, Grenzstein}", again)

    def test_cancelled_sheet_leaves_the_table_alone(self):
        self.play("start", "0", "ende")
        before = self.read()
        seen = self.pick("1001", "7012", "7004 = anders", "abbruch", "1001", "abbruch")
        self.assertEqual(self.read(), before)
        self.assertNotIn("<Entfernen>", seen)

    def test_each_attribute_of_each_object_type_of_a_shipped_catalogue(self):
        # The list of offices is the one thing that an office adds.
        path = os.path.join(self.plugin, "16.ini")
        with open(path, encoding="cp1252") as file:
            text = file.read().replace("[AX_PunktortTA]", OFFICES + "[AX_PunktortTA]", 1)
        with open(path, "w", encoding="cp1252") as file:
            file.write(re.sub(r"(\[AX_(?!Punktort)\w+\]\n)", r'\1zustaendige_stelle = "Stellen"\n', text))
        catalogue = sections(path)
        types = [name[3:] for name in catalogue if name.startswith("AX_") and not name.startswith("AX_Punktort")][::-1]
        self.assertEqual(len(types), 7)
        numbers = [point["PT_NO"] for point in dbase.Table(self.table).live() if "0200" in point["PT_NO"]]
        lines, expected = [], {}
        for row, (name, number) in enumerate(zip(types, numbers)):
            keys = dict(catalogue["AX_" + name])
            place = dict(catalogue["AX_" + keys["ort"]])
            wanted = {"NE_OA": str(row), "NE_PO": PO[keys["ort"]], "NE_LZV": "0", "NE_DAT": "20260201"}
            lines += [number, "wähle 7008 " + name, "zeige", "7012"]
            on_pages = []
            for lists, source in ((OBJECT_LISTS, keys), (POSITION_LISTS, place)):
                on_page = set()
                for control, (column, names) in lists.items():
                    table = next((source[key] for key in names if key in source), None)
                    if table is None:
                        continue
                    values = catalogue["T_" + table]
                    # Another value for each object type, so that one left over from before would show.
                    code, label = values[(3 * row + 1) % len(values)]
                    self.assertEqual([text for _, text in values].count(label), 1, label)
                    lines.append("wähle %d %s" % (control, label))
                    wanted[column] = str(int(code))
                    on_page.add(control)
                if source is keys:
                    lines.append("seite 2")
                on_pages.append(on_page)
            lines += ["wähle 7073 false", "haken 7030 an", "datum 7027 1.2.2026", "ok"]
            expected[number] = (name, keys["ort"], on_pages, wanted)
        blocks = self.pick(*lines).split("=== 7020")[1:]
        for n, (number, (name, place, on_pages, wanted)) in enumerate(expected.items()):
            with self.subTest(name):
                first, second = blocks[3 * n + 1], blocks[3 * n + 2]
                self.assertIn("2 " + place, second)
                self.assertEqual(shown(first) & set(OBJECT_LISTS), on_pages[0])
                self.assertEqual(shown(second) & set(POSITION_LISTS), on_pages[1])
                self.assertLessEqual({7078, 7033, 7012, 7079, 7062}, shown(first))
                self.assertLessEqual({7073, 7030, 7027, 7075, 7059}, shown(second))
                stored = self.attributes(number)
                self.assertEqual({column: stored[column] for column in wanted}, wanted)

    def test_defaults_from_nothing(self):
        os.remove(self.ini)
        seen, _ = self.play("start", "2", "erwarte " + NO_TYPE, "ok", "ok", "wähle 7006 Thüringen",
                            "wähle 7008 Sicherungspunkt", "7004 = A-1", "7005 = B-2", "7011 = Büro Ö",
                            "wähle 7035 Rohr", "seite 2", "wähle 7041 Vorl", "ok",
                            "6", "1001", "7012", "ok", "ende", "0", "ende")
        self.assertIn("Bundesland {}", seen)
        with open(self.ini, encoding="cp1252") as file:
            saved = file.read()
        for line in ('BUNDESLAND = "16"', 'ORGANISATION = "Büro Ö"', 'PUNKTTYPE = "Sicherungspunkt"', 'KST = "3000"'):
            self.assertIn(line, saved)
        # The next process reads them.
        self.pick("1002", "7012", "ok")
        first, second = self.attributes("1001"), self.attributes("1002")
        self.assertEqual((first["NE_OA"], first["NE_ANTRAGN"], first["NE_KST"], first["NE_PO"]), ("5", "A-1", "3000", "2"))
        self.assertEqual({**first, "NE_PKN": ""}, {**second, "NE_PKN": ""})

    def test_actions_and_gids(self):
        number = "326495650000001"
        gmlid = self.point(number)["GMLID"]
        self.assertTrue(gmlid)
        both = ["7062 = DETH0000OBJ", "seite 2", "7059 = DETH0000POS"]
        self.pick(number, "1", "7078 = " + number, "7065", *both, "ok")
        self.assertEqual((self.point(number)["NE_AKTION"], self.point(number)["NE_OBGID"], self.point(number)["GMLID"]),
                         ("2", "DETH0000OBJ", "DETH0000POS"))
        self.pick(number, "7064", "ok")
        self.assertEqual((self.point(number)["NE_AKTION"], self.point(number)["NE_OBGID"]), ("1", "DETH0000OBJ"))
        seen = self.pick(number, "7063", "ok")
        self.assertIn("GID: [Wird automatisch vergeben]  (gesperrt)", seen)
        self.assertEqual((self.point(number)["NE_AKTION"], self.point(number)["NE_OBGID"], self.point(number)["GMLID"]),
                         ("0", "", "DETH0000POS"))

    def test_identifier_is_asked_for_by_all_states_but_one(self):
        self.pick("1001", "ok")
        self.assertEqual((self.attributes("1001")["NE_PKN"], self.attributes("1001")["NE_PO"]), ("", "1"))
        self.settings("BUNDESLAND", "9")
        self.pick("1002", "erwarte " + NO_IDENTIFIER, "ok", "ok", "7012", "ok")
        self.assertEqual(self.attributes("1002")["NE_PKN"], "326495651001002")

    def test_identifier_that_does_not_fit_is_refused(self):
        self.pick("1001", "7078 = 326495651x01001", "erwarte " + WRONG_IDENTIFIER, "ok", "ok",
                  "erwarte Muster: 32EEENNNNxxxxxx", "7033", "ja", "ok")
        self.assertEqual(self.attributes("1001")["NE_PKN"], "326495651000000")

    def test_reserved_numbers(self):
        seen = self.pick("1001", "7079", "ok", "7012", "erwarte Erfolg", "7079", "ok", "abbruch")
        self.assertIn("Nicht gefunden, Diese sind reserviert für 2026-0042", seen)
        self.assertIn("| 326495651001001", seen)
        self.settings("PUNKTXMLFOLDER", "")
        seen, _ = self.play("start", "2", "7077", os.path.join(SETTINGS, "reservierungen"), "ok", "7076", self.ini, "ok",
                            "0", "ende")
        self.assertIn("Reservierte Punktnummern für 2026-0042", seen)
        self.assertIn("<reservierungen>", seen)
        self.assertIn("<pktausout.ini>", seen)
        with open(self.ini, encoding="cp1252") as file:
            saved = file.read()
        self.assertIn('PUNKTXMLFOLDER = "%s"' % os.path.join(SETTINGS, "reservierungen"), saved)
        self.assertIn('ORIGXML = "%s"' % self.ini, saved)

    def test_attributes_are_removed_after_a_warning(self):
        self.pick("1001", "7012", "ok")
        warned = ["1001", "erwarte werden die PKT_AUS Einstellungen entfernt.", "7071"]
        self.pick(*warned, "abbruch", "abbruch")
        self.assertEqual(self.attributes("1001")["NE_PO"], "1")
        self.pick(*warned, "ok")
        gone = self.attributes("1001")
        self.assertEqual((gone["NE_PO"], gone["NE_AUFTRAG"], gone["NE_ANTRAGN"]), ("0", "", ""))

    def test_change_of_state_and_cancel(self):
        with open(self.ini, "rb") as file:
            before = file.read()
        seen, _ = self.play("start", "2", "wähle 7006 Bayern", "abbruch", "6", "1001", "abbruch", "ende", "0", "ende")
        self.assertIn("Bundesland {Bayern}", seen)
        self.assertIn("Bundesland {Thüringen}  (12 Einträge)  (gesperrt)", seen)
        with open(self.ini, "rb") as file:
            self.assertEqual(file.read(), before)

    def test_missing_catalogue_is_told_and_nothing_is_lost(self):
        self.pick("1001", "7012", "ok")
        before = self.read()
        os.remove(os.path.join(self.plugin, "16.ini"))
        self.play("start", "6", "erwarte " + NO_CATALOGUE, "erwarte " + NO_CATALOGUE, "1001", "ok", "ok",
                  "erwarte " + NO_TYPE, "ok", "ok", "abbruch", "ende", "0", "ende")
        self.assertEqual(self.read(), before)
        self.play("start", "erwarte " + NO_CATALOGUE, "erwarte " + NO_CATALOGUE, "2", "ok", "ok", "wähle 7006 Hessen",
                  "erwarte 16.ini", "wähle 7006 Thüringen", "ok", "wähle 7006 Hessen", "ok", "0", "ende")
        with open(self.ini, encoding="cp1252") as file:
            self.assertIn('BUNDESLAND = "6"', file.read())


if __name__ == "__main__":
    unittest.main()
