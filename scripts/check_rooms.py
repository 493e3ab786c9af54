"""Finds includes that the table of rooms forbids: all rooms share one include folder, so the compiler takes them."""
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
ROOM = re.compile(r"pktaus_room\(\s*(\w+)\s+\$\{CMAKE_CURRENT_SOURCE_DIR\}/([\w/]+)([^)]*)\)")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def rooms():
    """Folder below src/ of each room, with the folders that it may see."""
    table = ROOM.findall((TOP / "src/CMakeLists.txt").read_text())
    folders = {name: folder for name, folder, _ in table}
    seen = {folder: {folder, *(folders[room] for room in sees.split())} for _, folder, sees in table}
    # The host's stand-in sees the bottom rooms and what the plug-in asks of a host.
    seen["korvo"] = {"korvo"} | {folders[room] for room in ("base", "platform", "toolkit", "host")}
    return seen


def room_of(path, names):
    """The innermost room that a path lies in."""
    return max((name for name in names if path.startswith(name + "/")), key=len, default=None)


def main():
    seen = rooms()
    wrong = []
    for top, base in (("src", "src"), ("korvo", ".")):
        for file in sorted((TOP / top).rglob("*")):
            if file.suffix not in (".h", ".cpp"):
                continue
            room = room_of(file.relative_to(TOP / base).as_posix(), seen)
            for name in INCLUDE.findall(file.read_text()):
                target = room_of(name, seen)
                if target is not None and target not in seen[room]:
                    wrong.append(f"{file.relative_to(TOP)}: {room} may not see {name}")
    print("\n".join(wrong), file=sys.stderr, end="\n" if wrong else "")
    return 1 if wrong else 0


sys.exit(main())
