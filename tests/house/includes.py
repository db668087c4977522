"""Holds every #include of the tree against the table of rooms in docs/architecture.md, and keeps the operating system
behind the platform layer. Usage: includes.py TOP"""

import re
import sys
from fnmatch import fnmatch
from pathlib import Path

OUTSIDE = ["include", "filters", "apps", "examples"]  # of the library itself
SYSTEM_HEADER = re.compile(r"(windows|ole2|oaidl|objbase)\.h$", re.I)
SYSTEM_ROOMS = ["include/zkr13n/platform_types.h", "platform/windows/", "automation/windows/", "examples/watch.cpp"]
SYSTEM_SWITCH = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|__linux__|__MINGW32__)\b")
# Containers that allocate report failure by throwing, which nothing inside the library may do.
THROWING = {"deque", "forward_list", "fstream", "functional", "iostream", "list", "map", "regex", "set", "sstream",
            "stdexcept", "string", "unordered_map", "unordered_set", "vector"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def read_table(document):
    """For each room the folders and files that it may include besides its own: the table's first and last columns."""
    rows = re.findall(r"^\| `([^`|]+)/` \|[^|]*\|([^|]*)\|$", document.read_text(encoding="utf-8"), re.M)
    return {room: re.findall(r"`([^`]+?)/?`", enter) for room, enter in rows}


def folder_and_room(path, table):
    """The closest folder around a file that is a room, and its name in the table, where a star stands for a folder."""
    folders = path.split("/")[:-1]
    for depth in range(len(folders), 0, -1):
        folder = "/".join(folders[:depth])
        for room in table:
            if room.count("/") == depth - 1 and fnmatch(folder, room):
                return folder, room
    return None, None


def resolve(top, source, name):
    for folder in (source.parent, top, top / "include"):
        if (folder / name).is_file():
            return (folder / name).resolve().relative_to(top).as_posix()
    return None


def faults_of(top, source, table):
    path = source.relative_to(top).as_posix()
    folder, room = folder_and_room(path, table)
    inside = room not in OUTSIDE
    for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
        where = f"{path}:{number}"
        if inside and room != "platform" and SYSTEM_SWITCH.match(line):
            if not path.startswith(tuple(SYSTEM_ROOMS)):
                yield f"{where}: a switch on the operating system outside the platform layer"
        found = INCLUDE.match(line)
        if not found:
            continue
        quote, name = found.groups()
        if SYSTEM_HEADER.search(name) and not path.startswith(tuple(SYSTEM_ROOMS)):
            yield f"{where}: <{name}> belongs to {', '.join(SYSTEM_ROOMS)} alone"
        if inside and name in THROWING:
            yield f"{where}: <{name}> reports failure by throwing"
        target = resolve(top, source, name)
        if target is None:
            if quote == '"':
                yield f'{where}: "{name}" is not a file of the project'
            continue
        if not any(target == entered or target.startswith(entered + "/") for entered in [folder, *table[room]]):
            yield f"{where}: {room} may not enter {target}"


def main():
    top = Path(sys.argv[1]).resolve()
    table = read_table(top / "docs/architecture.md")
    sources = [path for room in table if "*" not in room for path in sorted((top / room).rglob("*"))
               if path.suffix in (".h", ".c", ".cpp")]
    faults = [fault for source in sources for fault in faults_of(top, source, table)]
    print("\n".join(faults) or f"{len(sources)} files keep to the table")
    sys.exit(bool(faults) or not sources)


main()
