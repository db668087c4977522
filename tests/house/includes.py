"""Holds every #include of the tree against the table of who may enter which room, and keeps the operating system
behind the platform layer. Usage: includes.py TOP"""

import re
import sys
from pathlib import Path

# Room: the rooms that it may include besides itself. A file belongs to the longest matching entry.
ENTER = {
    "include": [],
    "platform": ["include"],
    "colour/rows": ["include"],
    "core": ["include", "platform"],
    "colour": ["include", "platform", "core", "colour/rows"],
    "regions": ["include", "platform", "core", "colour"],
    "geometry": ["include", "platform", "core", "colour"],
    "display": ["include", "platform", "core", "colour", "regions", "geometry"],
    "automation": ["include", "platform"],
    "filters": ["include"],
    "apps": ["include"],
    "examples": ["include"],
}
LIBRARY = ["platform", "core", "colour", "colour/rows", "regions", "geometry", "display", "automation"]
SYSTEM_HEADER = re.compile(r"(windows|ole2|oaidl|objbase)\.h$", re.I)
SYSTEM_ROOMS = ["include/zkr13n/platform_types.h", "platform/windows/", "automation/windows/"]
SYSTEM_SWITCH = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|__linux__|__MINGW32__)\b")
# Containers that allocate report failure by throwing, which nothing inside the library may do.
THROWING = {"deque", "forward_list", "fstream", "functional", "iostream", "list", "map", "regex", "set", "sstream",
            "stdexcept", "string", "unordered_map", "unordered_set", "vector"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def room_of(path):
    fitting = [room for room in ENTER if path.startswith(room + "/")]
    return max(fitting, key=len, default=None)


def resolve(top, source, name):
    for folder in (source.parent, top, top / "include"):
        if (folder / name).is_file():
            return (folder / name).resolve().relative_to(top).as_posix()
    return None


def faults_of(top, source):
    path = source.relative_to(top).as_posix()
    room = room_of(path)
    for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
        where = f"{path}:{number}"
        if room in LIBRARY and room != "platform" and SYSTEM_SWITCH.match(line):
            if not path.startswith(tuple(SYSTEM_ROOMS)):
                yield f"{where}: a switch on the operating system outside the platform layer"
        found = INCLUDE.match(line)
        if not found:
            continue
        quote, name = found.groups()
        if SYSTEM_HEADER.search(name) and not path.startswith(tuple(SYSTEM_ROOMS)):
            yield f"{where}: <{name}> belongs to {', '.join(SYSTEM_ROOMS)} alone"
        if room in LIBRARY and name in THROWING:
            yield f"{where}: <{name}> reports failure by throwing"
        target = resolve(top, source, name)
        if target is None:
            if quote == '"':
                yield f'{where}: "{name}" is not a file of the project'
            continue
        entered = room_of(target)
        if entered is None:
            yield f"{where}: {target} lies in no room of the library"
        elif entered != room and entered not in ENTER[room]:
            yield f"{where}: {room} may not enter {entered} ({target})"


def main():
    top = Path(sys.argv[1]).resolve()
    sources = [path for room in ENTER for path in sorted((top / room).rglob("*"))
               if path.suffix in (".h", ".c", ".cpp") and room_of(path.relative_to(top).as_posix()) == room]
    faults = [fault for source in sources for fault in faults_of(top, source)]
    print("\n".join(faults) or f"{len(sources)} files keep to the table")
    sys.exit(bool(faults))


main()
