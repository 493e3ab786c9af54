"""From imported points and the original file to the NAS file of an order."""
import os
import re
import unittest
import xml.etree.ElementTree as ET

import dbase
from console import ORIGINAL, TOP, SettingsCase

ADV = "{http://www.adv-online.de/namespaces/adv/gid/7.1}"
GML = "{http://www.opengis.net/gml/3.2}"
XLINK = "{http://www.w3.org/1999/xlink}"

# A new point, one of the cadastre with two further position objects and one that goes, with one.
NEW, KNOWN, GONE = "1001", "326495650000004", "326495650000002"
ATTRIBUTED = ["start", "6", NEW, "7012", "ok", KNOWN, "7070", "wähle 7035 Kunststoffmarke", "ok",
              GONE, "7070", "7065", "ok", "ende"]


def written(count, path="auftrag.xml"):
    return ["erwarte Erfolgreich: %d Punkte ausgegeben" % count, "1", path, "ok"]


class Orders(SettingsCase):
    def file(self, name="auftrag.xml"):
        return os.path.join(self.folder, name)

    def test_order_is_the_golden_file_and_agrees_with_the_original(self):
        self.play(*ATTRIBUTED, "8", "7002", *written(3), "0", "ende")
        with open(os.path.join(TOP, "tests", "golden", "auftrag.xml"), "rb") as golden:
            self.assertEqual(self.read(self.file()), golden.read())

        # A parser that heeds name spaces takes it only where the template declares every prefix.
        nodes = list(ET.parse(self.file()).iter())
        identifiers = [node.get(GML + "id") for node in nodes if node.get(GML + "id")]
        self.assertEqual(len(identifiers), len(set(identifiers)))
        original = {}
        for node in ET.parse(ORIGINAL).iter():
            if node.get(GML + "id"):
                original[node.get(GML + "id")] = node
        owners = [node.get(XLINK + "href").removeprefix("urn:adv:oid:") for node in nodes if node.tag == ADV + "istTeilVon"]
        self.assertEqual(len(owners), 4)
        for owner in owners:
            self.assertTrue(owner in identifiers or owner in original, owner)
        keys = [node.get("rid") for node in nodes if node.get("rid")]
        self.assertEqual(len(keys), 3)
        for key in keys:
            thing = original[key[:16]]
            self.assertEqual(key[16:], re.sub("[-:]", "", thing.findtext(f".//{ADV}beginnt")))
        self.assertEqual(dbase.Table(self.table).live()[0]["GMLID"], "DETHMU0000001A07", "a point that nobody opened")

    def test_orders_lists_and_what_an_export_leaves_out(self):
        self.play(*ATTRIBUTED, "6", "1002", "7012", "7005 = ein anderer", "ok", "1003", "7012", "7004 = anderer Antrag", "ok",
                  "ende", "0", "ende")
        seen, _ = self.play("start", "8", "zeige", "wähle 7006 16-2026-0815", "zeige", 'haken 7000 1 an', *written(1),
                            "8", "wähle 7006 16-2026-0815", "haken 7000 1 an", "erwarte werden die PKT_AUS Einstellungen entfernt",
                            "7071", "ok", "8", "abbruch", "0", "ende")
        self.assertIn("[Antrag: anderer Antrag andere ausgeblendet]", seen)
        self.assertIn("Löschen   326495650000002 - :326495650000002", seen)
        self.assertIn("ersetzen  326495650000004 - :326495650000004", seen)
        self.assertIn("Neupunkt  326495651001001 - :1001", seen)
        self.assertIn("[0 von 3]", seen)

    def test_search_by_identifier_opens_the_point(self):
        seen, _ = self.play("start", "4", "7068 = DETHMU0000001A", "7067", "7068 = DETHMU0000001A1C", "7067", "1", "7070",
                            "wähle 7008 Grenzpunkt", "ok", "4", "2", "0", "ende")
        self.assertIn("Nicht gefunden", seen)
        self.assertIn("Punktnummer: 326495650000004", seen)
        self.assertIn(", 32649960.179000,5650993.513000", seen)
        point = next(row for row in dbase.Table(self.table).live() if row["PT_NO"] == KNOWN)
        self.assertEqual((point["NE_OBGID"], point["NE_AKTION"], point["NE_WEPO"]),
                         ("DETHMU0100005021", "1", "AX_PunktortAU|DETHMU0200009031|AX_PunktortAU|DETHMU0200009032|"))

    def test_what_stands_in_the_way_is_told_and_nothing_is_written(self):
        self.settings("ORIGXML", "")
        self.play("start", "6", KNOWN, "erwarte Bitte zuerst in den Einstellungen die Original XML einstellen", "7070", "ok",
                  "abbruch", "ende", "8", "erwarte Fehler: Kein objekt in der Liste", "1", "leer.xml", "ok", "abbruch", "0", "ende")
        self.settings("ORIGXML", os.path.join(self.folder, "fehlt.xml"))
        seen, _ = self.play("start", "6", KNOWN, "7070", "ok", "abbruch", "ende", "0", "ende")
        self.assertIn("Objekt nicht gefunden", seen)
        self.assertFalse(os.path.exists(self.file("leer.xml")))


if __name__ == "__main__":
    unittest.main()
