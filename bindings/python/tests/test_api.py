"""Holds what ctypes is told of the library against the headers, and against what a compiler makes of them."""

import ctypes
import os
import re
import subprocess
import sys
from pathlib import Path

from zkr13n import _constants, _records, lib
from zkr13n._functions import FUNCTIONS, PLATFORMS
from zkr13n._numbers import CHECKED

TOP = Path(__file__).resolve().parents[3]
RECORDS = [kind for kind in vars(_records).values()
           if isinstance(kind, type) and issubclass(kind, ctypes.Structure)]


def test_files_are_what_the_headers_tell():
    done = subprocess.run([sys.executable, TOP / "bindings/python/generate.py", "--check"], capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr


def test_every_exported_function_is_declared_and_there():
    lines = (TOP / "include/zkr13n/exports.list").read_text().splitlines()
    listed = [line.split() for line in lines if line and not line.startswith("#")]
    assert sorted(FUNCTIONS) == sorted(words[0] for words in listed)
    assert PLATFORMS == {words[0]: words[1] for words in listed if len(words) == 2}
    for name in FUNCTIONS:
        if PLATFORMS.get(name) != "windows":
            assert getattr(lib, name).argtypes == [CHECKED.get(kind, kind) for kind in FUNCTIONS[name][1:]]


SHAPES = """
#include <zkr13n.h>
#include <cstddef>
#include <string_view>
#include <type_traits>
template <class T> constexpr char Code() {
    if (std::is_void_v<T>) return 'v';
    if (std::is_pointer_v<T>) return 'p';
    constexpr std::string_view codes = "bBhHiIlL";
    if constexpr (!std::is_void_v<T>)
        return codes[(sizeof(T) > 4 ? 6 : sizeof(T) > 2 ? 4 : sizeof(T) - 1) + std::is_unsigned_v<T>];
}
template <class R, class... A> constexpr bool Agrees(R (*)(A...), std::string_view shape) {
    const char own[] = {Code<R>(), Code<A>()...};
    return shape == std::string_view(own, sizeof own);
}
"""


def shape_of(function):
    """A letter for the result and for each argument: pointers alike, numbers by size and sign."""
    codes = {None: "v", ctypes.c_int32: "i", ctypes.c_uint32: "I", ctypes.c_size_t: "L", ctypes.c_ssize_t: "l"}
    return "".join(codes.get(kind, "p") for kind in function)


def test_compiler_agrees(tmp_path):
    lines = [SHAPES]
    for record in RECORDS:
        lines.append(f'static_assert(sizeof({record.__name__}) == {ctypes.sizeof(record)}, "{record.__name__}");')
        lines += [f"static_assert(offsetof({record.__name__}, {field[0]}) == {getattr(record, field[0]).offset});"
                  for field in record._fields_]
    lines += [f"static_assert((unsigned){name} == {value % 2**32}u);"
              for name, value in vars(_constants).items() if isinstance(value, int)]
    lines += [f'static_assert(Agrees({name}, "{shape_of(function)}"));' for name, function in FUNCTIONS.items()
              if PLATFORMS.get(name) != "windows"]
    source = tmp_path / "agrees.cpp"
    source.write_text("\n".join(lines) + "\n")
    done = subprocess.run([os.environ.get("CXX", "c++"), "-std=c++17", "-fsyntax-only", f"-I{TOP}/include", source],
                          capture_output=True, text=True)
    assert done.returncode == 0, done.stderr[:3000]


def narrow(kind):
    """Size and alignment of a type where pointers and counts of bytes have 32 bits, and the places of its fields."""
    if kind in (ctypes.c_void_p, ctypes.c_size_t, ctypes.c_ssize_t) or issubclass(kind, ctypes._Pointer):
        return 4, 4, {}
    if not issubclass(kind, ctypes.Structure):
        return ctypes.sizeof(kind), ctypes.alignment(kind), {}
    at, widest, places = 0, 1, {}
    for name, part in kind._fields_:
        size, alignment, _ = narrow(part)
        alignment = min(alignment, getattr(kind, "_pack_", alignment))
        at += -at % alignment
        places[name] = (size, at)
        at, widest = at + size, max(widest, alignment)
    return at + -at % widest, widest, places


def test_records_of_32_bits():
    """What ctypes lays out on 32 bits is what programs there rely on."""
    text = (TOP / "tests/interface/windows-32.list").read_text()
    listed = dict(re.findall(r"^record (\w+): bytes (\d+)$", text, re.M))
    checked = 0
    for record in RECORDS:
        if record.__name__ in listed:
            size, _, places = narrow(record)
            assert size == int(listed[record.__name__])
            fields = re.findall(rf"^field {record.__name__}\.(\w+): .*, bytes (\d+) at (\d+)$", text, re.M)
            assert places == {name: (int(count), int(at)) for name, count, at in fields}
            checked += 1
    assert checked >= 6
