"""Finds literals beyond ASCII without their conversion: in these rooms every text in memory is Windows-1252."""
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ("src", "korvo/dbase", "korvo/host")
# Comments and characters go first, so that a quote in them begins no literal. Neighbours are one literal, and one
# conversion is for all of them.
TOKEN = re.compile(r"""//[^\n]*|/\*.*?\*/|'(?:\\.|[^'\\\n])+'|((?:"(?:\\.|[^"\\\n])*"(?:_\w+)?\s*)+)""", re.DOTALL)


def main():
    wrong = []
    for file in sorted(path for room in ROOMS for path in (TOP / room).rglob("*") if path.suffix in (".h", ".cpp")):
        text = file.read_text()
        for match in TOKEN.finditer(text):
            literal = match.group(1)
            if literal and not literal.isascii() and '"_ansi' not in literal:
                line = text.count("\n", 0, match.start()) + 1
                wrong.append(f"{file.relative_to(TOP)}:{line}: no _ansi behind {literal.strip()[:60]}")
    print("\n".join(wrong), file=sys.stderr, end="\n" if wrong else "")
    return 1 if wrong else 0


sys.exit(main())
