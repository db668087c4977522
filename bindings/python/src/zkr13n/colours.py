"""Colours, and how they are written as arguments.

Wherever a method takes a colour it may be

    (red, green, blue)    three numbers from 0 to 255, also as a `Colour`
    index(7)              an entry of the bitmap's palette, up to 8 bits
    gray(4095)            a level of gray, 0 to 65535, for gray bitmaps of 12 and 16 bits
    a plain number        a colour value of the library: 0x00BBGGRR and what its top byte makes of it
"""

from __future__ import annotations

import operator
from typing import NamedTuple, Sequence, SupportsIndex, Tuple, Union, cast

from ._library import lib


class Colour(NamedTuple):
    """Red, green and blue, 0 to 255."""

    red: int
    green: int
    blue: int

    @classmethod
    def from_value(cls, value: int) -> Colour:
        """The plain colour of a colour value 0x00BBGGRR."""
        return cls(value & 255, value >> 8 & 255, value >> 16 & 255)


    @property
    def value(self) -> int:
        """The colour value 0x00BBGGRR."""
        return self.red | self.green << 8 | self.blue << 16

    @classmethod
    def from_hsv(cls, hue: int, saturation: int, value: int) -> Colour:
        """The colour of a hue, where a full turn is 256, a saturation and a value, 0 to 255 each."""
        return cls.from_value(lib.Z_HSVtoRGB(cls(hue, saturation, value).value))

    def to_hsv(self) -> Tuple[int, int, int]:
        """Hue, where a full turn is 256, saturation and value, 0 to 255 each."""
        hue, saturation, value = Colour.from_value(lib.Z_RGBtoHSV(self.value))
        return hue, saturation, value


ColourLike = Union[SupportsIndex, Sequence[int]]

BLACK = Colour(0, 0, 0)
WHITE = Colour(255, 255, 255)


def index(entry: int) -> int:
    """The colour value that stands for an entry of a palette, 0 to 255."""
    if not 0 <= entry <= 255:
        raise ValueError(f"there is no palette entry {entry}")
    return 0x01000000 + entry


def gray(level: int) -> int:
    """The colour value that stands for a level of gray, 0 to 65535."""
    if not 0 <= level <= 65535:
        raise ValueError(f"the level of gray {level} is outside 0 to 65535")
    return 0x04000000 + level


def value_of(colour: ColourLike) -> int:
    """The colour value of whatever may stand for a colour."""
    if isinstance(colour, int) or not hasattr(colour, "__len__"):
        value = operator.index(colour)
        if not 0 <= value <= 0xFFFFFFFF:
            raise ValueError(f"the colour value {value} is outside 32 bits")
        return value
    try:
        red, green, blue = cast(Sequence[int], colour)
        return int.from_bytes(bytes((red, green, blue)), "little")
    except ValueError:
        raise ValueError(f"the colour {colour} is not red, green and blue from 0 to 255") from None
