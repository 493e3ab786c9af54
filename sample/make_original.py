#!/usr/bin/env python3
"""Writes the original NAS file of Musterstadt: make_original.py FILE.xml

What the cadastre has of the town: the points that the import left in the sample's table, with the identifiers, marks and
places that stand there, and corners of older houses that the table does not know. The layout is that of a delivery: one
object a member, one element a line.
"""
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "scenario"))
import dbase  # noqa: E402

TABLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "musterstadt", "punkte.dbf")
HOUSE_CORNERS = 60
EARLIEST = 2009

HEAD = """<?xml version="1.0" encoding="UTF-8"?>
<AX_Bestandsdatenauszug xmlns="http://www.adv-online.de/namespaces/adv/gid/7.1" xmlns:gml="http://www.opengis.net/gml/3.2" \
xmlns:gmd="http://www.isotc211.org/2005/gmd" xmlns:gco="http://www.isotc211.org/2005/gco" \
xmlns:wfs="http://www.opengis.net/wfs/2.0" xmlns:xlink="http://www.w3.org/1999/xlink">
<erfolgreich>true</erfolgreich>
<antragsnummer>2026-0042</antragsnummer>
<enthaelt>
<wfs:FeatureCollection timeStamp="2026-10-01T00:00:00Z" numberMatched="unknown" numberReturned="{count}">
"""
TAIL = """</wfs:FeatureCollection>
</enthaelt>
</AX_Bestandsdatenauszug>
"""


def begin(n):
    return "%04d-%02d-%02dT%02d:%02d:%02dZ" % (EARLIEST + n % 15, 1 + n % 12, 1 + n % 28, 6 + n % 12, n % 60, 7 * n % 60)


def member(name, identifier, n, lines):
    """An object with the elements that all have in front, then its own."""
    return ["<wfs:member>", '<%s gml:id="%s">' % (name, identifier),
            '<gml:identifier codeSpace="http://www.adv-online.de/">urn:adv:oid:%s</gml:identifier>' % identifier,
            "<lebenszeitintervall>", "<AA_Lebenszeitintervall>", "<beginnt>%s</beginnt>" % begin(n),
            "</AA_Lebenszeitintervall>", "</lebenszeitintervall>", "<modellart>", "<AA_Modellart>",
            "<advStandardModell>DLKM</advStandardModell>", "</AA_Modellart>", "</modellart>",
            '<anlass xlink:href="https://registry.gdi-de.org/codelist/de.adv-online.gid/AA_Anlassart/000000" '
            'xlink:title="Ersteinrichtung"/>', *lines, "</%s>" % name, "</wfs:member>"]


class Point:
    """A point of the cadastre: its class, its number, its marks, and the identifier of its first position object."""

    def __init__(self, n, name, number, mark, remark, place, first):
        self.n, self.name, self.number, self.mark, self.remark, self.place = n, name, number, mark, remark, place
        self.identifier = "DETHMU01%08X" % (0x5000 + 11 * n)
        self.positions = [first] + ["DETHMU02%08X" % (0x9000 + 16 * n + k) for k in range(1, (1, 2, 1, 3, 1, 4)[n % 6])]

    def object(self):
        lines = ["<punktkennung>%s</punktkennung>" % self.number, "<zustaendigeStelle>", "<AX_Dienststelle_Schluessel>",
                 "<land>16</land>", "<stelle>0042</stelle>", "</AX_Dienststelle_Schluessel>", "</zustaendigeStelle>"]
        if self.mark:
            tag = "abmarkung_Marke" if self.name == "AX_Grenzpunkt" else "vermarkung_Marke"
            lines.append("<%s>%s</%s>" % (tag, self.mark, tag))
        if self.remark:
            lines.append("<bemerkungZurAbmarkung>%s</bemerkungZurAbmarkung>" % self.remark)
        return member(self.name, self.identifier, self.n, lines)

    def position(self, k):
        """The first one in the kind of its class, further ones as places in other systems or of earlier surveys."""
        kinds = {"AX_Grenzpunkt": "TA", "AX_BesondererGebaeudepunkt": "AG"}
        kind = kinds.get(self.name, "AU") if k == 0 else "AU"
        east, north = self.place[0] + 0.011 * k, self.place[1] - 0.007 * k
        lines = ['<istTeilVon xlink:href="urn:adv:oid:%s"/>' % self.identifier, "<position>",
                 '<gml:Point srsName="urn:adv:crs:ETRS89_UTM32" gml:id="O%d.%d">' % (self.n, k),
                 "<gml:pos>%.3f %.3f</gml:pos>" % (east, north), "</gml:Point>", "</position>",
                 "<kartendarstellung>%s</kartendarstellung>" % ("true" if k == 0 else "false"),
                 "<koordinatenstatus>%s</koordinatenstatus>" % ("1000" if k == 0 else "3000"),
                 "<hinweise>%s</hinweise>" % ("1110" if k == 0 else "1010"), "<qualitaetsangaben>", "<AX_DQPunktort>",
                 "<herkunft>", "<gmd:LI_Lineage>", "<gmd:processStep>", "<gmd:LI_ProcessStep>", "<gmd:description>",
                 "<AX_LI_ProcessStep_Punktort_Description>Erhebung</AX_LI_ProcessStep_Punktort_Description>",
                 "</gmd:description>", "<gmd:source>", "<gmd:LI_Source>", "<gmd:description>",
                 "<AX_Datenerhebung_Punktort>%s</AX_Datenerhebung_Punktort>" % ("1000", "2000", "4100")[self.n % 3],
                 "</gmd:description>", "</gmd:LI_Source>", "</gmd:source>", "</gmd:LI_ProcessStep>", "</gmd:processStep>",
                 "</gmd:LI_Lineage>", "</herkunft>", "<genauigkeitsstufe>%s</genauigkeitsstufe>" % ("2100", "2200")[k > 0],
                 "<vertrauenswuerdigkeit>1200</vertrauenswuerdigkeit>", "</AX_DQPunktort>", "</qualitaetsangaben>"]
        return member("AX_Punktort" + kind, self.positions[k], self.n + 100 * k, lines)


def points():
    known = [row for row in dbase.Table(TABLE).live() if row["GMLID"]]
    for n, row in enumerate(known):
        number, mark, remark = row["PKN_ABM_BZ"].split(",")[:3]
        name = "AX_" + row["NASTABLE"].removeprefix("AX_")
        yield Point(n, name, number, mark, remark, (float(row["EAST"]) - 32000000, float(row["NORTH"])), row["GMLID"])
    for n in range(HOUSE_CORNERS):
        yield Point(len(known) + n, "AX_BesondererGebaeudepunkt", "326505651%06d" % (40001 + n), "", "",
                    (650210.0 + 12.5 * (n // 4) + 9 * (n % 2), 5651080.0 + 7.5 * (n % 4 // 2)), "DETHMU03%08X" % (0x100 + n))


def main():
    all_points = list(points())
    # By class, as deliveries are: owners and their position objects lie far apart.
    members = [point.object() for point in sorted(all_points, key=lambda point: point.name)]
    members += [point.position(k) for point in all_points for k in range(len(point.positions))]
    with open(sys.argv[1], "w", encoding="utf-8", newline="\n") as file:
        file.write(HEAD.format(count=len(members)))
        for lines in members:
            file.write("\n".join(lines) + "\n")
        file.write(TAIL)
    print("%d objects, %d position objects" % (len(all_points), len(members) - len(all_points)))


if __name__ == "__main__":
    main()
