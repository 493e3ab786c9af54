#!/usr/bin/env python3
"""Writes the catalogues of the states, data/01.ini to data/16.ini, from the tables in scripts/tables.

A catalogue is an ini file in Windows-1252 with CR LF line ends. A section is read once, from top to bottom, so whatever is
referred to stands above. `make_catalogues.py FOLDER` writes to another folder.
"""
import csv
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
LABEL_LIMIT = 127  # characters that a label has room for in memory
NAME_LIMIT = 63

# Attributes of all position objects, with their value lists; the two others are there or not.
PLACE_LISTS = (
    ("koordinatenstatus", "AX_Koordinatenstatus_Punktort"),
    ("herkunft", "AX_Datenerhebung_Punktort"),
    ("genauigkeitsstufe", "AX_Genauigkeitsstufe_Punktort"),
    ("vertrauenswuerdigkeit", "AX_Vertrauenswuerdigkeit_Punktort"),
)
PLACE_FLAGS = ("ueberpruefungsdatum", "lagezuverlaessigkeit")
PLACES = ("PunktortTA", "PunktortAU", "PunktortAG")
OBJECT_LISTS = ("abmarkung_Marke", "vermarkung_Marke", "bemerkungZurAbmarkung", "art")

# Codes are stored as numbers. The output writes this list's codes with four digits and all others without leading zeros,
# so that a code such as genauigkeitsstufe 0900 would come out wrong: it is left out.
FOUR_DIGITS = ("AX_Datenerhebung_Punktort",)


def table(name):
    with open(os.path.join(HERE, "tables", name + ".csv"), encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file, delimiter=";", strict=True))


def value_lists():
    """List name -> code -> label, without the codes that could not be written."""
    own = {(row["liste"], row["code"]): row["bezeichnung"] for row in table("abweichungen")}
    lists = {}
    for row in table("wertelisten"):
        name, code = row["liste"], row["code"]
        label = own.pop((name, code), row["bezeichnung"])
        if len(label) > LABEL_LIMIT:
            sys.exit(f"{name} {code}: a label of {len(label)} characters; abweichungen.csv takes a shorter one")
        if not code.startswith("0") or name in FOUR_DIGITS:
            values = lists.setdefault(name, {})
            if code in values or label in values.values():
                sys.exit(f"{name} {code}: the code or the label stands twice")
            values[code] = label
    if own:
        sys.exit(f"abweichungen.csv: no such value: {own}")
    return lists


def quoted(text):
    """A value in the quotes that it does not hold itself."""
    quote = "'" if '"' in text else '"'
    if quote in text or "\n" in text or "#" in text or len(text) > 900:
        sys.exit(f"cannot be said in a catalogue: {text}")
    return quote + text + quote


def section(name, lines):
    if len(name) > NAME_LIMIT:
        sys.exit(f"{name}: the name of a section is too long")
    return [f"[{name}]", *lines, ""]


def short(list_name):
    """AX_Koordinatenstatus_Punktort -> Koordinatenstatus"""
    return list_name.removeprefix("AX_").removesuffix("_Punktort").removesuffix("_Grenzpunkt")


def catalogue(state, objects, lists):
    hints = [("hinweise", state["hinweise"])] if state["hinweise"] else []
    place_lists = [*PLACE_LISTS[:1], *hints, *PLACE_LISTS[1:]]
    used = [obj[key] for obj in objects for key in OBJECT_LISTS if obj[key]] + [name for _, name in place_lists]

    lines = [
        f"# Katalog für {state['name']} ({state['code']}): Objektarten, Attribute und Werte nach GeoInfoDok 7.1.2",
        "# Aus scripts/tables erzeugt. Wie ein Land oder ein Amt ihn ergänzt, steht in docs/kataloge.md.",
        "",
    ]
    if state["utm_zone"] != "32":
        lines.insert(2, "# Das Land liegt in UTM-Zone 33; ausgegeben wird nur Zone 32. Deshalb gibt es die Vorlage nicht.")
    lines += section("GLOBAL", [f'HEADER = "{state["code"]}{state["name"]}.XML"'])
    for name in dict.fromkeys(used):
        lines += section("T_" + short(name), [f'"{code}" = {quoted(label)}' for code, label in lists[name].items()])
    for place in PLACES:
        lines += section("AX_" + place, [f'{key} = "{short(name)}"' for key, name in place_lists] +
                         [f'{flag} = "ja"' for flag in PLACE_FLAGS])
    # The last section becomes number 0.
    for obj in reversed(objects):
        lines += section("AX_" + obj["objektart"],
                         [f'{key} = "{short(obj[key])}"' for key in OBJECT_LISTS if obj[key]] +
                         [f'ort = "{obj["ort"]}"', f'punktkennung = "{state["utm_zone"]}EEENNNNxxxxxx"'])
    return "\n".join(lines[:-1]) + "\n"


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "..", "data")
    objects, lists = table("objektarten"), value_lists()
    for state in table("laender"):
        with open(os.path.join(folder, state["code"] + ".ini"), "wb") as file:
            file.write(catalogue(state, objects, lists).replace("\n", "\r\n").encode("cp1252"))


if __name__ == "__main__":
    main()
