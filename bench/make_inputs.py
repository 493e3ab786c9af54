#!/usr/bin/env python3
"""Makes the inputs that ./bench measures with: make_inputs.py FOLDER [NAME...]. What is there already stays."""
import os
import sys

QUALITY = """<qualitaetsangaben>
<AX_DQPunktort>
<herkunft>
<gmd:LI_Lineage>
<gmd:processStep>
<gmd:LI_ProcessStep>
<gmd:description>
<AX_LI_ProcessStep_Punktort_Description>Erhebung</AX_LI_ProcessStep_Punktort_Description>
</gmd:description>
<gmd:source>
<gmd:LI_Source>
<gmd:description>
<AX_Datenerhebung_Punktort>1000</AX_Datenerhebung_Punktort>
</gmd:description>
</gmd:LI_Source>
</gmd:source>
</gmd:LI_ProcessStep>
</gmd:processStep>
</gmd:LI_Lineage>
</herkunft>
<genauigkeitsstufe>2100</genauigkeitsstufe>
</AX_DQPunktort>
</qualitaetsangaben>
"""
MODEL = """<modellart>
<AA_Modellart>
<advStandardModell>DLKM</advStandardModell>
</AA_Modellart>
</modellart>
"""
OFFICE = """<zustaendigeStelle>
<AX_Dienststelle_Schluessel>
<land>16</land>
<stelle>0042</stelle>
</AX_Dienststelle_Schluessel>
</zustaendigeStelle>
"""
MEMBER = """<wfs:Insert>
<AX_BesondererGebaeudepunkt gml:id="DE_{a:013d}">
<lebenszeitintervall>
<AA_Lebenszeitintervall>
<beginnt>2026-03-02T09:05:03Z</beginnt>
</AA_Lebenszeitintervall>
</lebenszeitintervall>
""" + MODEL + """<anlass xlink:title="Sonstiges" xlink:href="https://registry.gdi-de.org/codelist/AA_Anlassart/9999"/>
<punktkennung>32650565{n:07d}</punktkennung>
""" + OFFICE + """</AX_BesondererGebaeudepunkt>
</wfs:Insert>
<wfs:Insert>
<AX_PunktortAG gml:id="DE_{b:013d}">
""" + MODEL + """<istTeilVon xlink:href="urn:adv:oid:DE_{a:013d}"/>
<position>
<gml:Point srsName="urn:adv:crs:ETRS89_UTM32" gml:id="P{n}">
<gml:pos>65{c:04d}.{d:03d} 565{c:04d}.{e:03d}</gml:pos>
</gml:Point>
</position>
<kartendarstellung>true</kartendarstellung>
<koordinatenstatus>1000</koordinatenstatus>
<hinweise>geprüft</hinweise>
""" + QUALITY + """</AX_PunktortAG>
</wfs:Insert>
"""
ROOT = """<?xml version="1.0" encoding="UTF-8"?>
<AX_Fortfuehrungsauftrag xmlns="http://www.adv-online.de/namespaces/adv/gid/7.1">
<geaenderteObjekte>
<wfs:Transaction version="2.0.0" service="WFS">
"""
END = """</wfs:Transaction>
</geaenderteObjekte>
<antragsnummer></antragsnummer>
<auftragsnummer></auftragsnummer>
</AX_Fortfuehrungsauftrag>"""


def lines(text, line_end):
    return text.replace("\n", line_end).encode()


def indented(text):
    """One tab a level, as most writers of such files have it."""
    depth, out = 0, []
    for line in text.splitlines():
        depth -= line.startswith("</")
        out.append("\t" * depth + line)
        depth += not line.startswith("</") and "</" not in line and not line.endswith("/>")
    return "\n".join(out) + "\n"


MEMBER = indented(MEMBER)


def member(n):
    return MEMBER.format(a=2 * n + 1, b=2 * n + 2, n=n + 1, c=n % 10000, d=n % 1000, e=(n * 7) % 1000)


def xml(file, count, line_end="\r\n"):
    """An order document of `count` points."""
    file.write(lines(ROOT, line_end))
    for n in range(count):
        file.write(lines(member(n), line_end))
    file.write(lines(END, line_end))


def xml_names(file):
    """50,000 element names and 50,000 attribute names that differ in their digits."""
    file.write(b"<liste>\r\n")
    for n in range(50000):
        file.write(b'<punkt%05d attribut%05d="%05d"></punkt%05d>\r\n' % (n, n, n, n))
    file.write(b"</liste>")


def xml_values(file):
    """500 values of 190,000 bytes with umlauts."""
    words = "Prüfprotokoll über die Übernahme der Größen: Fläche äußerst verläßlich, Höhe gemäß Örtlichkeit. ".encode()
    value = (words * (190000 // len(words) + 1))[:190000].decode(errors="ignore").encode()
    file.write(b"<auszug>\r\n")
    for n in range(500):
        file.write(b"<erlaeuterung nr=\"%d\">" % n + value + b"</erlaeuterung>\r\n")
    file.write(b"</auszug>")


def ini(file, size):
    """A catalogue whose value lists have 30,000 codes each."""
    file.write(b"[GLOBAL]\r\nHEADER = 16Vorlage.XML\r\n")
    written, lists = 0, 0
    while written < size:
        lists += 1
        written += file.write(b"\r\n[T_LISTE_%d]\r\n" % lists)
        for code in range(min(30000, (size - written) // 31 + 1)):
            written += file.write(b"'%05d' = Wert %d der Liste %d\r\n" % (code, code, lists))
        written += file.write(b"[AX_Objekt_%d]\r\nvermarkung_Marke = LISTE_%d\r\n" % (lists, lists))


COLUMNS = [("PT_NO", "C", 15, 0), ("EAST", "N", 14, 4), ("NORTH", "N", 14, 4), ("ELEV", "N", 10, 5), ("CODE", "C", 8, 0),
           ("CLASS", "C", 1, 0), ("CONNECT", "C", 15, 0), ("STATUS", "C", 1, 0), ("REM", "C", 10, 0), ("DRAW", "C", 1, 0),
           ("QUALITY", "C", 1, 0)]
NE_COLUMNS = [("NE_OA", "N", 2), ("NE_ANTRAGN", "C", 40), ("NE_AUFTRAG", "C", 40), ("NE_PKN", "C", 20), ("NE_PO", "N", 2),
              ("NE_ABM", "N", 8), ("NE_BZA", "N", 8), ("NE_ART", "N", 8), ("NE_ZST", "N", 8), ("NE_KST", "N", 8),
              ("NE_DAT", "N", 8), ("NE_HER", "N", 8), ("NE_GST", "N", 8), ("NE_VTW", "N", 8), ("NE_LZV", "N", 8),
              ("NE_HIN", "N", 8), ("NE_OBGID", "C", 20), ("NE_AKTION", "N", 8), ("NE_WEPO", "C", 80), ("GMLID", "C", 20)]
ATTRIBUTES = "".join("%%(%s)%s%ds" % (name, "-" if kind == "C" else "", width) for name, kind, width in NE_COLUMNS)
NO_ATTRIBUTES = {name: "" for name, _, _ in NE_COLUMNS}


def dbf(file, records, extended=False, attributes=None):
    """A point table of 91 bytes a record, or with the attribute columns of 411; `attributes` gives those that a record
    has, by its number."""
    columns = COLUMNS + ([column + (0,) for column in NE_COLUMNS] if extended else [])
    size = 1 + sum(column[2] for column in columns)
    file.write(bytes((3, 126, 3, 2)) + records.to_bytes(4, "little") + (33 + 32 * len(columns)).to_bytes(2, "little")
               + size.to_bytes(2, "little") + bytes(20))
    for name, kind, width, decimals in columns:
        file.write(name.encode().ljust(11, b"\0") + kind.encode() + bytes(4) + bytes((width, decimals)) + bytes(14))
    file.write(b"\r")
    blanks = b" " * (size - 91)
    for n in range(records):
        file.write(b" %-15d%14.4f%14.4f%10.5f%-8s%29s" % (
            100001 + n, 650000 + n % 9973 * 1.3571, 5651000 + n // 9973 * 2.7183, 180 + n % 977 * 0.0321, b"GP", b""))
        file.write((ATTRIBUTES % {**NO_ATTRIBUTES, **attributes(n)}).encode() if attributes else blanks)
    file.write(b"\x1a")


def scrambled(n, end):
    """A permutation of the numbers below `end`, a power of two, that looks random."""
    return n * 0x9E3779B97F4A7C15 % end


def orders(file, count):
    """1,000,000 points with attributes: a quarter of them in one order, the others in `count` - 1, in no order."""
    def attributes(n):
        order = 0 if n % 4 == 0 else 1 + scrambled(n, 1 << 40) * (count - 1) // (1 << 40)
        return {"NE_OA": 4, "NE_ANTRAGN": "2026-0042", "NE_AUFTRAG": "A%05d" % order, "NE_PO": 1, "NE_AKTION": n % 3,
                "NE_PKN": "32650565%07d" % n}
    dbf(file, 1000000, True, attributes)


def names(file, count, records):
    """Point numbers spread over a table of `records`."""
    for n in range(count):
        file.write(b"%d\n" % (100001 + (n * 7919 * 131) % records))


def head(begin):
    """What each object begins with."""
    return """<gml:identifier codeSpace="http://www.adv-online.de/">urn:adv:oid:%(id)s</gml:identifier>
<lebenszeitintervall>
<AA_Lebenszeitintervall>
<beginnt>""" + begin + """T07:08:09Z</beginnt>
</AA_Lebenszeitintervall>
</lebenszeitintervall>
""" + MODEL + """<anlass xlink:href="https://registry.gdi-de.org/codelist/de.adv-online.gid/AA_Anlassart/000000" xlink:title="Ersteinrichtung"/>
"""


# An original file as it is delivered, by class, so that an object and its position objects lie far apart.
OWNER = """<wfs:member>
<AX_Grenzpunkt gml:id="%(id)s">
""" + head("2012-05-06") + """<punktkennung>32650565%(n)07d</punktkennung>
""" + OFFICE + """<abmarkung_Marke>1110</abmarkung_Marke>
</AX_Grenzpunkt>
</wfs:member>
"""
POSITION = """<wfs:member>
<AX_Punktort%(kind)s gml:id="%(id)s">
""" + head("2014-05-06") + """<istTeilVon xlink:href="urn:adv:oid:%(owner)s"/>
<position>
<gml:Point srsName="urn:adv:crs:ETRS89_UTM32" gml:id="O%(n)d.%(k)d">
<gml:pos>650%(n)06d.123 5651%(k)03d.456</gml:pos>
</gml:Point>
</position>
<kartendarstellung>true</kartendarstellung>
<koordinatenstatus>1000</koordinatenstatus>
<hinweise>1110</hinweise>
""" + QUALITY + """</AX_Punktort%(kind)s>
</wfs:member>
"""
POINTS_OF_MB = 280  # with one to three position objects each


def gml_id(n, k):
    """Of the object n for k = 0, else of its position object k."""
    return "DETHMU%010X" % scrambled(4 * n + k, 1 << 40)


def position(n, k):
    return POSITION % {"kind": "TA" if k == 1 else "AU", "id": gml_id(n, k), "owner": gml_id(n, 0), "n": n, "k": k}


def original(file, megabytes):
    points = POINTS_OF_MB * megabytes
    file.write(ROOT.replace("Fortfuehrungsauftrag", "Bestandsdatenauszug").encode())
    for first in range(0, points, 100):
        file.write("".join([OWNER % {"id": gml_id(n, 0), "n": n} for n in range(first, first + 100)]).encode())
    for first in range(0, points, 100):
        file.write("".join([position(n, k) for n in range(first, first + 100) for k in range(1, 2 + n % 3)]).encode())
    file.write(b"</AX_Bestandsdatenauszug>\n")


def some_points(count, megabytes):
    """Numbers of points anywhere in an original file of that size."""
    return [scrambled(n + 1, 1 << 40) * POINTS_OF_MB * megabytes // (1 << 40) for n in range(count)]


def ids(file, count, megabytes):
    file.writelines(b"%s\n" % gml_id(n, 1).encode() for n in some_points(count, megabytes))


def order(file):
    """20,000 points with an order of 1,000 among them: a half new, a quarter replaced, a quarter deleted, those with what
    the original file of 100 MB says of them."""
    known = some_points(500, 100)

    def attributes(n):
        if n % 20 != 7:
            return {}
        n //= 20
        values = {"NE_OA": 4, "NE_ANTRAGN": "2026-0042", "NE_AUFTRAG": "A00000", "NE_PO": 1, "NE_AKTION": 0,
                  "NE_PKN": "32650565%07d" % n, "NE_ABM": 1110, "NE_ZST": 42, "NE_KST": 1000, "NE_HIN": 1110,
                  "NE_HER": 1000, "NE_GST": 2100, "NE_LZV": -2}
        if n % 2 == 0:
            point = known[n // 2]
            further = "".join("AX_PunktortAU|%s|" % gml_id(point, k) for k in range(2, 2 + point % 3))
            values |= {"NE_AKTION": 1 + n // 2 % 2, "NE_OBGID": gml_id(point, 0), "NE_WEPO": further,
                       "GMLID": gml_id(point, 1)}
        return values
    dbf(file, 20000, True, attributes)


def catalogue(file, values):
    """A value list of that many values and an object type that names it."""
    file.write(b"[GLOBAL]\r\nHEADER = \"16.XML\"\r\n[T_Marke]\r\n")
    file.writelines(b"\"%d\" = \"Marke der Form %d\"\r\n" % (n, n) for n in range(values))
    file.write(b"[AX_Grenzpunkt]\r\nabmarkung_Marke = \"Marke\"\r\n")


def reserved(folder, files, numbers):
    """Answers to reservations: one application, a number a line."""
    os.makedirs(folder)
    for n in range(files):
        with open(os.path.join(folder, f"{n:04d}.xml"), "wb") as file:
            file.write(b"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<AX_Reservierung>\r\n"
                       b"  <antragsnummer>2026-0042</antragsnummer>\r\n")
            file.writelines(b"  <reservierteNummern>32650565%07d</reservierteNummern>\r\n" % (n * numbers + i)
                            for i in range(numbers))
            file.write(b"</AX_Reservierung>\r\n")


def template(file):
    file.write(lines(ROOT + END, "\r\n"))


INPUTS = {
    "100.xml": lambda file: xml(file, 48900),
    "10.xml": lambda file: xml(file, 4890),
    "100lf.xml": lambda file: xml(file, 50400, "\n"),
    "names.xml": xml_names,
    "values.xml": xml_values,
    "template.xml": template,
    "1.ini": lambda file: ini(file, 1000000),
    "10.ini": lambda file: ini(file, 10000000),
    "100k.cat": lambda file: catalogue(file, 100000),
    "1m.cat": lambda file: catalogue(file, 1000000),
    "plain.dbf": lambda file: dbf(file, 1000000),
    "extended.dbf": lambda file: dbf(file, 1000000, True),
    "10k.dbf": lambda file: dbf(file, 10000, True),
    "100k.dbf": lambda file: dbf(file, 100000, True),
    "1k.names": lambda file: names(file, 1000, 1000000),
    "100k.names": lambda file: names(file, 100000, 1000000),
    "few-orders.dbf": lambda file: orders(file, 100),
    "many-orders.dbf": lambda file: orders(file, 20000),
    "order.dbf": order,
    "100.nas": lambda file: original(file, 100),
    "1000.nas": lambda file: original(file, 1000),
    "100.ids": lambda file: ids(file, 500, 100),
    "1000.ids": lambda file: ids(file, 1000, 1000),
}


def make(folder, name):
    """Gives the path of an input, made if it is not there yet or older than this program."""
    os.makedirs(folder, exist_ok=True)
    path = os.path.join(folder, name)
    if not os.path.exists(path) or os.path.getmtime(path) < os.path.getmtime(__file__):
        with open(path + ".part", "wb") as file:
            INPUTS[name](file)
        os.rename(path + ".part", path)
    return path


if __name__ == "__main__":
    for wanted in sys.argv[2:] or INPUTS:
        print(make(sys.argv[1], wanted))
