"""Holds a built library against the public headers: its exports are exactly the functions that the headers
declare for its platform, and it depends on nothing but the system (elsewhere than on Windows, also on the C++ run
time). Usage: library.py TOP portable|windows LIBRARY NM-OR-OBJDUMP"""

import re
import subprocess
import sys
from pathlib import Path

DECLARATION = re.compile(r"\bZ_API\b[^;{}]*?\bZ_CALL\s+(\w+)\s*\(")
SYSTEM_PARTS = {
    "portable": r"(libc|libm|libstdc\+\+|libgcc_s|ld-linux-[\w-]+)\.so\.\d+",
    "windows": r"(kernel32|user32|gdi32|advapi32|ole32|oleaut32|msvcrt)\.dll",
}


def declared(top):
    names = set()
    for header in (top / "include").rglob("*.h"):
        text = re.sub(r"/\*.*?\*/", " ", header.read_text(), flags=re.S)
        names |= set(DECLARATION.findall(text))
    return names


def listed(top, platform=None):
    entries = [line.split() for line in (top / "include/zkr13n/exports.list").read_text().splitlines()
               if line.strip() and not line.startswith("#")]
    return {entry[0] for entry in entries if platform is None or entry[1:] in ([], [platform])}


def exports_and_needs(platform, library, tool):
    def output(*options):
        return subprocess.run([tool, *options, library], check=True, capture_output=True, text=True).stdout

    if platform == "windows":
        text = output("-p")
        names = text.partition("[Ordinal/Name Pointer]")[2].partition("\n\n")[0]
        return (set(re.findall(r"\[ *\d+\][ \t]+(?:\+base\[ *\d+\][ \t]+)?(?:[0-9a-f]+[ \t]+)?(\S+)\n", names + "\n")),
                set(re.findall(r"DLL Name: (\S+)", text)))
    symbols = output("-T")
    return (set(re.findall(r" g +\S+ \.text\t\S+ +(?:\S+ +)?(\S+)$", symbols, flags=re.M)),
            set(re.findall(r"NEEDED +(\S+)", output("-p"))))


def main():
    top, platform, library, tool = Path(sys.argv[1]), *sys.argv[2:]
    exports, needs = exports_and_needs(platform, library, tool)
    faults = []

    def compare(what, left, right):
        faults.extend(f"{what}: {name}" for name in sorted(left - right))

    if platform == "portable":
        major = re.search(r"^project\(.* VERSION (\d+)", (top / "CMakeLists.txt").read_text(), re.M)[1]
        own = subprocess.run([tool, "-p", library], check=True, capture_output=True, text=True).stdout
        faults.extend([] if f" libZKR13N.so.{major}\n" in own else [f"is not named libZKR13N.so.{major}"])
    compare("declared in a header, but not in exports.list", declared(top), listed(top))
    compare("in exports.list, but in no header", listed(top), declared(top))
    compare("in exports.list, but not exported", listed(top, platform), exports)
    compare("exported, but not in exports.list", exports, listed(top, platform))
    faults.extend(f"depends on {name}" for name in sorted(needs)
                  if not re.fullmatch(SYSTEM_PARTS[platform], name, flags=re.I))
    print("\n".join(faults) or f"{len(exports)} exports; needs {', '.join(sorted(needs))}")
    sys.exit(bool(faults))


main()
