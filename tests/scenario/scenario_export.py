"""The road from a point table to a NAS file."""
import os
import unittest
import xml.etree.ElementTree as ET

import dbase
from console import MENU, TOP, ProjectCase

ADV = "{http://www.adv-online.de/namespaces/adv/gid/7.1}"
GML = "{http://www.opengis.net/gml/3.2}"
WFS = "{http://www.opengis.net/wfs/2.0}"
XLINK = "{http://www.w3.org/1999/xlink}"
DIGITS = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"

FIELDS = ["7004 = 2026-0815", "7005 = 26-117", "7013 = 1000", "7014 = 1000", "7015 = 2100", "7016 = 0042"]


def identifier(number):
    text = ""
    for _ in range(13):
        text = DIGITS[number % 36] + text
        number //= 36
    return "DE_" + text


def position(point):
    """Six digits of the east value in front of the point, and the north value, both to the millimetre."""
    east, north = "%.3f" % float(point["EAST"]), "%.3f" % float(point["NORTH"])
    whole, decimals = east.split(".")
    return "%s.%s %s" % (whole[-6:], decimals, north)


def export(*inside, path="out.XML", expected="Erfolgreich", state="Thüringen"):
    """A script that exports what `inside` ticks."""
    return ["start", "10", *inside, *FIELDS, "wähle 7006 " + state, "erwarte " + expected, "1", path, "ok"]


class Export(ProjectCase):
    def nas(self, name="out.XML"):
        root = ET.parse(os.path.join(self.folder, name)).getroot()
        return root, root.find(f"{ADV}geaenderteObjekte/{WFS}Transaction")

    def test_file_is_the_golden_one(self):
        # With the zone and without, a short number, one from the import.
        rows = 'haken 7000 "326495650020001","326505651020040","1001","326495650000001" an'
        self.play(*export(rows), "0", "ende")
        with open(os.path.join(TOP, "tests", "golden", "vier_punkte.XML"), "rb") as golden:
            self.assertEqual(self.read(os.path.join(self.folder, "out.XML")), golden.read())

    def test_counts_identifiers_and_coordinates_are_those_of_the_table(self):
        chosen = [point for point in dbase.Table(self.table).live() if "0200" in point["PT_NO"]]
        shown, _ = self.play(*export("7001 = 0200", "7007", "7002"), "0", "ende")
        self.assertIn("Erfolgreich: %d Punkte ausgegeben" % len(chosen), shown)
        root, transaction = self.nas()
        self.assertEqual(root.tag, ADV + "AX_Fortfuehrungsauftrag")
        self.assertEqual((root.findtext(ADV + "antragsnummer"), root.findtext(ADV + "auftragsnummer")),
                         ("2026-0815", "26-117"))
        members = list(transaction)
        self.assertEqual(len(members), 2 * len(chosen))
        self.assertEqual({member.tag for member in members}, {WFS + "Insert"})
        for n, point in enumerate(chosen):
            building, place = members[2 * n][0], members[2 * n + 1][0]
            self.assertEqual(building.get(GML + "id"), identifier(2 * n + 1))
            self.assertEqual(building.findtext(ADV + "punktkennung"), point["PT_NO"])
            self.assertEqual(place.get(GML + "id"), identifier(2 * n + 2))
            self.assertEqual(place.find(ADV + "istTeilVon").get(XLINK + "href"), "urn:adv:oid:" + identifier(2 * n + 1))
            self.assertEqual(place.find(f"{ADV}position/{GML}Point").get(GML + "id"), "P%d" % (n + 1))
            self.assertEqual(place.findtext(f"{ADV}position/{GML}Point/{GML}pos"), position(point))

    def test_state_decides_on_code_and_cause(self):
        one = 'haken 7000 "1001" an'
        for state, land in (("Thüringen", "16"), ("Baden", "08"), ("Sachsen-Anhalt", "15")):
            with self.subTest(state):
                self.play(*export(one, path=land + ".XML", state=state), "0", "ende")
                _, transaction = self.nas(land + ".XML")
                building = transaction[0][0]
                office = building.find(f"{ADV}zustaendigeStelle/{ADV}AX_Dienststelle_Schluessel")
                self.assertEqual((office.findtext(ADV + "land"), office.findtext(ADV + "stelle")), (land, "0042"))
                cause = building.find(ADV + "anlass")
                if land == "16":
                    self.assertEqual(cause.get(XLINK + "title"), "Sonstiges")
                    self.assertEqual(cause.get(XLINK + "href"),
                                     "https://registry.gdi-de.org/codelist/de.adv-online.gid/AA_Anlassart/9999")
                else:
                    self.assertEqual((cause.text, cause.attrib), ("000000", {}))

    def test_failed_export_leaves_the_dialog_open_and_names_the_path(self):
        one = 'haken 7000 "1001" an'
        self.play(*export(one, path="/proc/out.XML", expected="Fehler: Datei '/proc/out.XML' konnte nicht geschrieben"),
                  "erwarte Erfolgreich: 1 Punkte ausgegeben", "1", os.path.join(self.folder, "out.XML"), "ok", "0", "ende")
        self.assertEqual(len(self.nas()[1]), 2)

    def test_answers_without_a_file(self):
        no_number = self.read(os.path.join(self.plugin, "06Hessen.XML")).replace(b"auftragsnummer", b"nummer")
        with open(os.path.join(self.plugin, "06Hessen.XML"), "wb") as file:
            file.write(no_number)
        os.remove(os.path.join(self.plugin, "09Bayern.XML"))
        with open(os.path.join(self.plugin, "99Leer.XML"), "wb"):
            pass
        one = 'haken 7000 "1001" an'
        for name, lines in {
                "nothing ticked": export(expected="Fehler: keine passenden Daten gefunden"),
                "template without a number": export(one, state="Hessen", expected="ist unvollständig"),
                "template without a root": export(one, state="Leer", expected="ist kein XML ab Zeile 1")}.items():
            with self.subTest(name):
                self.play(*lines, "abbruch", "0", "ende")
                self.assertFalse(os.path.exists(os.path.join(self.folder, "out.XML")))
        for name in os.listdir(self.plugin):
            if name.endswith(".XML"):
                os.remove(os.path.join(self.plugin, name))
        self.play("start", "10", one, "erwarte Keine Landesdatei gefunden", "1", "ok", "abbruch", "0", "ende")

    def test_table_gets_its_columns_and_keeps_its_values(self):
        before = dbase.Table(self.table)
        shown, _ = self.play("start", "0", "ende")
        self.assertIn(MENU, shown)
        after = dbase.Table(self.table)
        after.check_regular()
        self.assertEqual(after.columns[:len(before.columns)], before.columns)
        self.assertEqual([(name, kind, width) for name, kind, width, _ in after.columns[len(before.columns):]],
                         [("NE_OA", "N", 2), ("NE_ANTRAGN", "C", 40), ("NE_AUFTRAG", "C", 40), ("NE_PKN", "C", 20),
                          ("NE_PO", "N", 2), ("NE_ABM", "N", 8), ("NE_BZA", "N", 8), ("NE_ART", "N", 8),
                          ("NE_ZST", "N", 8), ("NE_KST", "N", 8), ("NE_DAT", "N", 8), ("NE_HER", "N", 8),
                          ("NE_GST", "N", 8), ("NE_VTW", "N", 8), ("NE_LZV", "N", 8), ("NE_HIN", "N", 8),
                          ("NE_OBGID", "C", 20), ("NE_AKTION", "N", 8), ("NE_WEPO", "C", 80)])
        kept = [record for record in before.records if record[:1] == b" "]
        self.assertEqual([record[:before.size] for record in after.records], kept)
        self.assertEqual({record[before.size:] for record in after.records}, {b" " * (after.size - before.size)})
        once = self.read()
        self.play("start", "0", "start", "0", "ende")
        self.assertEqual(self.read(), once)


if __name__ == "__main__":
    unittest.main()
