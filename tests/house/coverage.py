"""Holds the tests against the public headers: every exported function is called by some test or fuzz target, and one that
its manual lets run out of memory stands in a scenario of tests/faults. Usage: coverage.py TOP"""

import re
import sys
from pathlib import Path

BLOCK = re.compile(r"/\*(?P<manual>(?:[^*]|\*(?!/))*)\*/\s*(?P<declarations>(?:Z_API[^;]*;\s*)+)")
NAME = re.compile(r"\b(?!Z_API|Z_CALL)(Z_\w+)\s*\(")
# Made to fail under the name of the operation that they are a part of.
BY_ANOTHER_NAME = {
    "Z_Calloc", "Z_Malloc", "Z_Realloc",  # the calls that are made to fail themselves
    "Z_StartDitheringExt",                # Z_StartDithering
    "Z_GetBitmapRow",                     # Z_GetBitmapRowCol
    "Z_OffsetBitmapRgn",                  # Z_CopyZircRgn
    "Z_AllocGlobalBlock", "Z_CreatePlatformRegion",  # what the host's own functions are made of
}


def manuals(header):
    for block in BLOCK.finditer(header.read_text(encoding="utf-8")):
        for declaration in re.findall(r"Z_API[^;]*;", block["declarations"]):
            if name := NAME.search(declaration):
                yield name[1], block["manual"]


def text_of(folder):
    return " ".join(file.read_text(encoding="utf-8") for file in sorted(folder.rglob("*")) if file.suffix in (".cpp", ".h"))


def main():
    top = Path(sys.argv[1])
    faults = set(re.findall(r"\bZ_\w+", text_of(top / "tests" / "faults")))
    tests = set(re.findall(r"\bZ_\w+", text_of(top / "tests") + text_of(top / "fuzz")))
    exported = re.findall(r"^(Z_\w+)", (top / "include/zkr13n/exports.list").read_text(encoding="utf-8"), re.M)
    wrong = [f"{name} is called by no test" for name in exported if name not in tests]
    seen = set()
    for header in sorted((top / "include/zkr13n").glob("*.h")):
        for name, manual in manuals(header):
            seen.add(name)
            if "Z_ERROR_MEMORY" in manual and name not in faults | BY_ANOTHER_NAME:
                wrong.append(f"{header.name}: {name} can run out of memory, and no scenario of tests/faults makes it")
    if len(seen) < len(exported) // 2:
        wrong.append(f"the manuals of only {len(seen)} functions were found")
    print("\n".join(wrong) or f"{len(exported)} functions")
    sys.exit(1 if wrong else 0)


main()
