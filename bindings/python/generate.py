"""Writes src/zkr13n/_functions.py, _records.py and _constants.py from the public headers.

Usage: generate.py [--check]

The headers stand in include/zkr13n at the top of the tree, in the order that exports.list names them in. With --check
nothing is written, and the exit status tells whether the three files are what they should be.
"""

from __future__ import annotations

import re
import sys
from pathlib import Path
from typing import Dict, Iterator, List, Tuple

HERE = Path(__file__).resolve().parent
HEADERS = HERE.parents[1] / "include" / "zkr13n"
TARGET = HERE / "src" / "zkr13n"
WIDTH = 120

PLAIN = {
    "int32_t": "c_int32", "uint32_t": "c_uint32", "uint16_t": "c_uint16", "uint8_t": "c_uint8", "size_t": "c_size_t",
    "intptr_t": "c_ssize_t", "uintptr_t": "c_size_t", "LONG_PTR": "c_ssize_t", "double": "c_double",
    "ReturnCode": "c_int32", "HRESULT": "c_int32", "REFCLSID": "c_void_p", "REFIID": "c_void_p",
}
OPAQUE = {"void", "HANDLE", "HGLOBAL", "HPALETTE", "HDC", "HRGN", "HBITMAP", "HWND", "BitmapList", "PlaybackHandle",
          "LPVOID", "ResizeLineState", "ResizeRowContext", "IZIRCRaster", "IUnknown"}
HANDLES = OPAQUE - {"void", "ResizeLineState", "ResizeRowContext", "IZIRCRaster", "IUnknown"}
# What clients of the raster object call through its table of methods is no flat interface.
OBJECT = {"raster_object.h", "raster_component.h", "raster_values.h"}


def without_comments(text: str) -> str:
    return re.sub(r"/\*.*?\*/|//[^\n]*", " ", text, flags=re.S)


def header_names() -> List[str]:
    listed = re.findall(r"^# (\w+\.h)$", (HEADERS / "exports.list").read_text(encoding="utf-8"), re.M)
    others = sorted(path.name for path in HEADERS.glob("*.h") if path.name not in listed)
    return ["platform_types.h", *listed, *(name for name in others if name != "platform_types.h")]


class Interface:
    """What the headers declare: constants, records, types of callbacks, and functions with where they are exported."""

    def __init__(self) -> None:
        self.constants: Dict[str, int] = {}
        self.records: Dict[str, List[Tuple[str, str]]] = {}
        self.packed: List[str] = []
        self.callbacks: Dict[str, List[str]] = {}
        self.functions: Dict[str, List[str]] = {}
        self.headers: Dict[str, str] = {}
        self.platforms: Dict[str, str] = {}
        texts = {name: without_comments((HEADERS / name).read_text(encoding="utf-8")) for name in header_names()}
        for name, text in texts.items():
            if name not in OBJECT:
                self.read_constants(text)
                self.read_records(name, text)
        for text in texts.values():
            self.read_callbacks(text)
        for name, text in texts.items():
            self.read_functions(name, text)
        for line in (HEADERS / "exports.list").read_text(encoding="utf-8").splitlines():
            words = line.split()
            if len(words) == 2 and words[1] in ("portable", "windows"):
                self.platforms[words[0]] = words[1]

    def read_constants(self, text: str) -> None:
        for name, value in re.findall(r"^#define (Z_\w+) (\d\w*)$", text, re.M):
            self.constants[name] = int(value.rstrip("uU"), 0)
        for body in re.findall(r"\benum\s*\{(.*?)\}\s*;", text, re.S):
            following = 0
            for entry in filter(None, map(str.strip, body.split(","))):
                name, _, value = map(str.strip, entry.partition("="))
                if value:
                    following = eval(value, {}, dict(self.constants))  # the project's own headers
                self.constants[name] = following
                following += 1

    def read_records(self, header: str, text: str) -> None:
        for match in re.finditer(r"typedef struct \w+ \{(.*?)\} (\w+);", text, re.S):
            fields: List[Tuple[str, str]] = []
            for line in filter(None, (part.strip() for part in match[1].split(";"))):
                declared = re.fullmatch(r"(?:const )?(\w+)\s*(\**)\s*(\w+)(?:\[(\d+)\])?", line)
                assert declared, f"{header}: field {line}"
                kind, stars, name, count = declared.groups()
                fields.append((name, f"c_char * {count}" if count else self.type_of(kind + stars)))
            self.records[match[2]] = fields
            if "pack(push, 1)" in text[:match.start()] and "pack(pop)" not in text[:match.start()]:
                self.packed.append(match[2])

    def read_callbacks(self, text: str) -> None:
        for result, name, arguments in re.findall(
                r"typedef (\w+)\s*\(Z_CALL\s*\*?\s*(\w+)\)\s*\((.*?)\);", text, re.S):
            self.callbacks[name] = [self.type_of(result), *self.arguments(arguments)]

    def read_functions(self, header: str, text: str) -> None:
        for result, name, arguments in re.findall(
                r"\bZ_API\s+([\w\s*]+?)\s*\bZ_CALL\s+(\w+)\s*\(([^;{}]*)\)\s*;", text):
            self.functions[name] = [self.type_of(result), *self.arguments(arguments)]
            self.headers[name] = header

    def arguments(self, text: str) -> List[str]:
        if text.strip() == "void":
            return []
        found = []
        for argument in text.split(","):
            declared = re.fullmatch(r"(.+?[\s*])\w+", " ".join(argument.split()))
            assert declared, argument
            found.append(self.type_of(declared[1]))
        return found

    def type_of(self, text: str) -> str:
        """The ctypes type of a C type."""
        text = re.sub(r"\b(const|struct)\b", " ", text)
        name, stars = text.replace("*", " ").strip(), text.count("*")
        if name == "char":
            return "c_char_p"
        if name == "void" and stars == 0:
            return "None"
        if name in HANDLES:
            kind = "c_void_p"
        elif name in OPAQUE:
            kind, stars = "c_void_p", stars - 1
        else:
            kind = PLAIN.get(name, name)
            assert kind in PLAIN.values() or kind in self.records or kind in self.callbacks, f"type {text}"
        for _ in range(stars):
            kind = f"POINTER({kind})"
        return kind


def wrapped(head: str, parts: List[str], tail: str) -> str:
    """A bracket with its parts, on one line or on several that are not too long."""
    lines, line = [], head
    indent = " " * (len(head) - len(head.lstrip()) + 4)
    for index, part in enumerate(parts):
        piece = part + (", " if index + 1 < len(parts) else tail)
        if len((line + piece).rstrip()) > WIDTH:
            lines.append(line.rstrip())
            line = indent
        line += piece
    lines.append(line)
    return "\n".join(lines)


def names_of_types(texts: List[str]) -> List[str]:
    return sorted({name for text in texts for name in re.findall(r"\b(c_\w+|POINTER)\b", text)})


def head(what: str, *imports: str) -> Iterator[str]:
    yield f'"""{what}'
    yield ""
    yield 'Made by generate.py from the public headers; not to be edited."""'
    yield ""
    yield from imports
    yield from [""] * bool(imports)


def constants_file(interface: Interface) -> Iterator[str]:
    yield from head("The constants of the interface.")
    for name, value in interface.constants.items():
        yield f"{name} = {value}"


def records_file(interface: Interface) -> Iterator[str]:
    fields = [kind for record in interface.records.values() for _, kind in record]
    kinds = [kind for callback in interface.callbacks.values() for kind in callback]
    yield from head("The records that cross the interface, and the types of the functions that the library calls.",
                    "import ctypes", "import sys", wrapped("from ctypes import ", names_of_types(fields + kinds), ""),
                    "", "# Their calling convention is that of the exported functions.",
                    'if sys.platform == "win32":', "    CALLBACK = ctypes.WINFUNCTYPE", "else:",
                    "    CALLBACK = ctypes.CFUNCTYPE")
    for name, record in interface.records.items():
        yield ""
        yield ""
        yield f"class {name}(ctypes.Structure):"
        if name in interface.packed:
            yield "    _pack_ = 1"
        yield "    _fields_ = ["
        yield from (f'        ("{field}", {kind}),' for field, kind in record)
        yield "    ]"
    yield ""
    yield ""
    for name, callback in interface.callbacks.items():
        yield wrapped(f"{name} = CALLBACK(", callback, ")")


def functions_file(interface: Interface) -> Iterator[str]:
    kinds = [kind for function in interface.functions.values() for kind in function]
    own = [*interface.records, *interface.callbacks]
    used = sorted(name for name in own if any(re.search(rf"\b{name}\b", kind) for kind in kinds))
    yield from head("The exported functions: for each the type of its result, then those of its arguments.",
                    wrapped("from ctypes import ", names_of_types(kinds), ""),
                    "from typing import Any, Dict, Tuple", "",
                    wrapped("from ._records import (", used, ")"))
    yield "FUNCTIONS: Dict[str, Tuple[Any, ...]] = {"
    header = ""
    for name, function in interface.functions.items():
        if interface.headers[name] != header:
            header = interface.headers[name]
            yield f"    # {header}"
        parts = [*function[:-1], function[-1] + ("," if len(function) == 1 else "")]
        yield wrapped(f'    "{name}": (', parts, "),")
    yield "}"
    yield ""
    yield "# Those that libraries for one kind of system alone export."
    yield "PLATFORMS: Dict[str, str] = {"
    yield from (f'    "{name}": "{platform}",' for name, platform in interface.platforms.items())
    yield "}"


def generated() -> Dict[str, str]:
    interface = Interface()
    files = {"_constants.py": constants_file, "_records.py": records_file, "_functions.py": functions_file}
    return {name: "\n".join(make(interface)) + "\n" for name, make in files.items()}


def main() -> int:
    status = 0
    for name, text in generated().items():
        path = TARGET / name
        if path.exists() and path.read_text(encoding="utf-8") == text:
            continue
        if "--check" in sys.argv[1:]:
            print(f"{name} is not what the headers tell: run generate.py")
            status = 1
        else:
            path.write_text(text, encoding="utf-8")
    return status


if __name__ == "__main__":
    sys.exit(main())
