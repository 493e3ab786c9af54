#!/usr/bin/env python3
"""Shows the members of an order's NAS file as a person checks them: show_nas.py FILE.xml"""
import collections
import sys
import xml.etree.ElementTree as ET

ADV = "{http://www.adv-online.de/namespaces/adv/gid/7.1}"
GML = "{http://www.opengis.net/gml/3.2}"
WFS = "{http://www.opengis.net/wfs/2.0}"
XLINK = "{http://www.w3.org/1999/xlink}"


def rows(transaction):
    """Kind, class, identifier, begin and what the member says of the object, member by member."""
    for member in transaction:
        kind = member.tag.removeprefix(WFS)
        if kind == "Delete":
            key = next(node.get("rid") for node in member.iter() if node.get("rid"))
            yield kind, member.get("typeName"), key[:16], key[16:], ""
            continue
        thing = member[0]
        number, owner = thing.findtext(ADV + "punktkennung"), thing.find(ADV + "istTeilVon")
        place = thing.findtext(f"{ADV}position/{GML}Point/{GML}pos")
        says = "Punktkennung " + number if number else ""
        if owner is not None:
            says = "Teil von %s, %s" % (owner.get(XLINK + "href").removeprefix("urn:adv:oid:"), place)
        yield (kind, thing.tag.removeprefix(ADV), thing.get(GML + "id"),
               thing.findtext(f"{ADV}lebenszeitintervall/{ADV}AA_Lebenszeitintervall/{ADV}beginnt") or "", says)


def main():
    root = ET.parse(sys.argv[1]).getroot()
    found = list(rows(root.find(f"{ADV}geaenderteObjekte/{WFS}Transaction")))
    print("Antragsnummer %s, Auftragsnummer %s" % (root.findtext(ADV + "antragsnummer"), root.findtext(ADV + "auftragsnummer")))
    for (kind, name), count in sorted(collections.Counter(row[:2] for row in found).items()):
        print("%4d  %-8s %s" % (count, kind, name))
    print("%-8s %-28s %-17s %-21s" % ("Art", "Klasse", "Kennung", "Beginn"))
    for row in found:
        print(("%-8s %-28s %-17s %-21s %s" % row).rstrip())


if __name__ == "__main__":
    main()
