#!/usr/bin/env python3
"""Writes the Land templates, data/NN<Name>.XML: the frame of an order document (AX_Fortfuehrungsauftrag, NAS 7.1).

One file for each state whose official position system is zone 32; the output knows no other zone. The frame is the same
for all: state and numbers are filled in at the output. `make_templates.py FOLDER` writes them to another folder.
"""
import os
import sys

STATES = {
    "01": "Schleswig-Holstein", "02": "Hamburg", "03": "Niedersachsen", "04": "Bremen", "05": "Nordrhein-Westfalen",
    "06": "Hessen", "07": "Rheinland-Pfalz", "08": "Baden-Württemberg", "09": "Bayern", "10": "Saarland",
    "15": "Sachsen-Anhalt", "16": "Thüringen",
}

NAMESPACES = (
    ("xmlns", "http://www.adv-online.de/namespaces/adv/gid/7.1"),
    ("xmlns:gml", "http://www.opengis.net/gml/3.2"),
    ("xmlns:gmd", "http://www.isotc211.org/2005/gmd"),
    ("xmlns:gco", "http://www.isotc211.org/2005/gco"),
    ("xmlns:wfs", "http://www.opengis.net/wfs/2.0"),
    ("xmlns:fes", "http://www.opengis.net/fes/2.0"),
    ("xmlns:xlink", "http://www.w3.org/1999/xlink"),
    ("xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance"),
    ("xsi:schemaLocation", "http://www.adv-online.de/namespaces/adv/gid/7.1 NAS-Operationen.xsd"),
)

# verarbeitungsart 2000 is a simulation: an order that nobody looked at changes no register.
FRAME = """<?xml version="1.0" encoding="UTF-8"?>
<AX_Fortfuehrungsauftrag {namespaces}>
  <empfaenger>
    <AA_Empfaenger>
      <direkt>true</direkt>
    </AA_Empfaenger>
  </empfaenger>
  <ausgabeform>application/xml</ausgabeform>
  <koordinatenangaben>
    <AA_Koordinatenreferenzsystemangaben>
      <crs xlink:href="urn:adv:crs:ETRS89_UTM32"/>
      <anzahlDerNachkommastellen>3</anzahlDerNachkommastellen>
      <standard>true</standard>
    </AA_Koordinatenreferenzsystemangaben>
  </koordinatenangaben>
  <geaenderteObjekte>
    <wfs:Transaction version="2.0.0" service="WFS"></wfs:Transaction>
  </geaenderteObjekte>
  <profilkennung></profilkennung>
  <antragsnummer></antragsnummer>
  <auftragsnummer></auftragsnummer>
  <impliziteLoeschungDerReservierung>4000</impliziteLoeschungDerReservierung>
  <verarbeitungsart>2000</verarbeitungsart>
  <geometriebehandlung>false</geometriebehandlung>
  <mitTemporaeremArbeitsbereich>false</mitTemporaeremArbeitsbereich>
  <mitObjektenImFortfuehrungsgebiet>false</mitObjektenImFortfuehrungsgebiet>
  <mitFortfuehrungsnachweis>false</mitFortfuehrungsnachweis>
</AX_Fortfuehrungsauftrag>
"""


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "data")
    text = FRAME.format(namespaces=" ".join(f'{name}="{value}"' for name, value in NAMESPACES))
    for number, name in STATES.items():
        with open(os.path.join(folder, f"{number}{name}.XML"), "wb") as file:
            file.write(text.replace("\n", "\r\n").encode())


if __name__ == "__main__":
    main()
