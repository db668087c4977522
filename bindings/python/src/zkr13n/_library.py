"""Finds the shared library and loads it.

The first of these that is there is taken: the library inside the package (`zkr13n/_lib`, where wheels have it), the one
that the environment variable ZKR13N_LIBRARY names (a file, or the folder that holds it), the system's.

`lib` has the exported functions as attributes, declared with the types of their results and arguments. They are called
through ctypes without the interpreter's lock, so that other threads run meanwhile.
"""

from __future__ import annotations

import ctypes
import os
import sys
from ctypes.util import find_library
from pathlib import Path
from typing import Any, Iterator, List, Optional, Tuple

from ._functions import FUNCTIONS
from ._numbers import CHECKED
from ._records import VersionRecord

MAJOR = 13

if sys.platform == "win32":
    NAMES = ("ZKR13N.dll",)
    STRIP_MODULES = {24: "ZFCMP13S.DLL", 1: "ZFFAX13S.DLL"}
    Loader = ctypes.WinDLL
else:
    NAMES = ("libZKR13N.so.13", "libZKR13N.so")
    STRIP_MODULES = {24: "libZFCMP13S.so", 1: "libZFFAX13S.so"}
    Loader = ctypes.CDLL


class LibraryNotFoundError(ImportError):
    """There is no shared library, or none that fits; the text says what was tried."""


def candidates() -> Iterator[str]:
    """The places where the library may be, first choice first."""
    inside = Path(__file__).resolve().parent / "_lib"
    yield from (str(inside / name) for name in NAMES if (inside / name).is_file())
    named = os.environ.get("ZKR13N_LIBRARY")
    if named:
        path = Path(named).resolve()
        yield from (str(path / name) for name in NAMES) if path.is_dir() else (str(path),)
    if sys.platform == "win32":
        found = find_library(NAMES[0])
        yield from [found] if found else []
    else:
        yield from NAMES


def load() -> Tuple[ctypes.CDLL, str]:
    tried: List[str] = []
    for place in candidates():
        try:
            library = Loader(place)
            record = VersionRecord()
            library.Z_VersionInfo(ctypes.byref(record))
        except (OSError, AttributeError) as fault:
            tried.append(f"{place}: {fault}")
            continue
        if record.VersionMajor == MAJOR:
            return library, place
        tried.append(f"{place}: has version {record.VersionMajor}, not {MAJOR}")
    raise LibraryNotFoundError("the library ZKR13N was not found; set ZKR13N_LIBRARY to where it is. Tried:\n  "
                               + "\n  ".join(tried))


class Library:
    """The exported functions as attributes, each declared when it is first asked for."""

    def __init__(self) -> None:
        self._library, self._place = load()

    def __getattr__(self, name: str) -> Any:
        types = FUNCTIONS.get(name)
        if types is None:
            raise AttributeError(f"the library ZKR13N has no function {name}")
        function = getattr(self._library, name)
        function.restype, function.argtypes = types[0], [CHECKED.get(kind, kind) for kind in types[1:]]
        setattr(self, name, function)
        return function

    def path(self) -> Optional[Path]:
        """Where the loaded library lies, None where the system does not tell."""
        if Path(self._place).is_absolute():
            return Path(self._place)
        if sys.platform == "win32":
            buffer = ctypes.create_unicode_buffer(32768)
            kernel = ctypes.WinDLL("kernel32")
            kernel.GetModuleFileNameW.argtypes = [ctypes.c_void_p, ctypes.c_wchar_p, ctypes.c_uint32]
            found = kernel.GetModuleFileNameW(self._library._handle, buffer, len(buffer))
            return Path(buffer.value) if found else None
        try:
            with open("/proc/self/maps", encoding="utf-8", errors="surrogateescape") as maps:
                places = {line.split(maxsplit=5)[5].rstrip("\n") for line in maps if "libZKR13N.so" in line}
        except (OSError, IndexError):
            return None
        return Path(min(places)) if places else None


lib = Library()


def strip_module(bits: int) -> Optional[ctypes.CDLL]:
    """The module beside the library that compresses strips of 1 or 24 bits, None where it is not there."""
    path = lib.path()
    if path is None:
        return None
    try:
        return Loader(str(path.with_name(STRIP_MODULES[bits])))
    except OSError:
        return None


def version() -> Tuple[int, int]:
    """The version of the loaded library: major and minor."""
    record = VersionRecord()
    lib.Z_VersionInfo(ctypes.byref(record))
    return record.VersionMajor, record.VersionMinor
