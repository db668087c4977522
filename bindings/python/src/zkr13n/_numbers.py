"""Whole numbers on their way to the library: ctypes itself drops the bits that do not fit, and these raise OverflowError."""

from __future__ import annotations

import ctypes
from typing import Any, Dict, Type

from ._records import POINT, RECT


def _checked(kind: Any, low: int, high: int) -> Any:
    class Checked(kind):  # type: ignore[misc]
        @classmethod
        def from_param(cls, value: Any) -> Any:
            if isinstance(value, int) and not low <= value <= high:
                raise OverflowError(f"{value} is outside {low} to {high}")
            return kind.from_param(value)

    return Checked


# The types of arguments with those that are declared in their place.
CHECKED: Dict[Any, Type[Any]] = {
    ctypes.c_int32: _checked(ctypes.c_int32, -1 << 31, (1 << 31) - 1),
    ctypes.c_uint32: _checked(ctypes.c_uint32, 0, (1 << 32) - 1),
}


def assign(record: ctypes.Structure, **fields: int) -> None:
    """Sets fields of a record, none of them where one does not hold its number."""
    before = {name: getattr(record, name) for name in fields}
    for name, value in fields.items():
        setattr(record, name, value)
    for name, value in fields.items():
        if getattr(record, name) != value:
            for other, old in before.items():
                setattr(record, other, old)
            raise OverflowError(f"{value} does not fit into {name}")


def rectangle(left: int, top: int, right: int, bottom: int) -> RECT:
    made = RECT()
    assign(made, left=left, top=top, right=right, bottom=bottom)
    return made


def point(x: int, y: int) -> POINT:
    made = POINT()
    assign(made, x=x, y=y)
    return made
