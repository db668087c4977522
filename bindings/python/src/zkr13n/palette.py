"""Palettes: the colours that the indices of bitmaps of 1 to 8 bits stand for."""

from __future__ import annotations

from collections.abc import Sequence
from ctypes import Array
from typing import TYPE_CHECKING, Any, Iterable, Iterator, Tuple, Union, overload

from ._errors import check
from ._library import lib
from ._records import RGBQUAD
from .colours import Colour, ColourLike, value_of
from .enums import Gray

if TYPE_CHECKING:
    import numpy


class Palette(Sequence[Colour]):
    """An unchangeable sequence of 1 to 256 colours.

    >>> Palette([(0, 0, 0), (255, 255, 255)])[1]
    Colour(red=255, green=255, blue=255)
    """

    __slots__ = ("_entries",)

    _entries: Array[RGBQUAD]

    def __init__(self, colours: Iterable[ColourLike]) -> None:
        values = [value_of(colour) for colour in colours]
        self._entries = self._room(len(values))
        for entry, value in zip(self._entries, values):
            entry.rgbRed, entry.rgbGreen, entry.rgbBlue = Colour.from_value(value)

    @staticmethod
    def _room(count: int) -> Array[RGBQUAD]:
        if not 1 <= count <= 256:
            raise ValueError(f"a palette has 1 to 256 colours, not {count}")
        return (RGBQUAD * count)()

    @classmethod
    def _of(cls, entries: Array[RGBQUAD]) -> Palette:
        made = cls.__new__(cls)
        made._entries = entries
        return made

    def _padded(self, bits: int) -> Array[RGBQUAD]:
        """As many entries as a depth can have."""
        if len(self) > 1 << bits:
            raise ValueError(f"{len(self)} colours are too many for {bits} bits")
        entries = (RGBQUAD * (1 << bits))()
        entries[: len(self)] = self._entries[:]
        return entries

    @classmethod
    def fixed(cls, bits: int) -> Palette:
        """The fixed palette of a depth, 1 to 8 bits: black and white, four grays, an even cube, the sixteen colours of
        classic displays, and cubes again."""
        entries = (RGBQUAD * (1 << max(0, min(bits, 8))))()
        check(lib.Z_GetFixedPalette(entries, bits if bits != 0 else -1), lib.Z_GetFixedPalette)
        return cls._of(entries)

    @classmethod
    def gray(cls, bits: int = 8) -> Palette:
        """An even ramp of 2**bits grays from black to white, 1 to 8 bits."""
        if not 1 <= bits <= 8:
            raise ValueError(f"there is no palette of {bits} bits")
        levels = (1 << bits) - 1
        return cls([(i * 255 // levels,) * 3 for i in range(levels + 1)])

    @classmethod
    def from_array(cls, colours: Any) -> Palette:
        """A palette of an array of n rows of red, green and blue."""
        return cls([tuple(int(channel) for channel in row) for row in colours])

    @classmethod
    def frombytes(cls, data: bytes) -> Palette:
        """A palette of four bytes for each colour, blue, green, red and flags, as `tobytes` gives them."""
        entries = cls._room(len(data) // 4)
        if len(data) % 4:
            raise ValueError("the bytes of a palette are a multiple of four")
        return cls._of(type(entries).from_buffer_copy(data))

    def tobytes(self) -> bytes:
        """Four bytes for each colour: blue, green, red and flags."""
        return bytes(self._entries)

    def to_array(self) -> numpy.ndarray[Any, Any]:
        """An array of n rows of red, green and blue; needs NumPy."""
        import numpy

        return numpy.frombuffer(self.tobytes(), numpy.uint8).reshape(-1, 4)[:, 2::-1].copy()

    def nearest(self, colour: ColourLike) -> int:
        """The index of the entry nearest to a colour, by the least sum of squared differences."""
        red, green, blue = Colour.from_value(value_of(colour))
        return int(lib.Z_FindPaletteIndex(self._entries, len(self), red, green, blue))

    @property
    def grayness(self) -> Gray:
        """Whether all colours are gray, and in which order."""
        return Gray(lib.Z_IsGrayScalePalette(self._entries, len(self)))

    def __len__(self) -> int:
        return len(self._entries)

    @overload
    def __getitem__(self, item: int) -> Colour: ...

    @overload
    def __getitem__(self, item: slice) -> Palette: ...

    def __getitem__(self, item: Union[int, slice]) -> Union[Colour, Palette]:
        if isinstance(item, slice):
            return Palette(list(self)[item])
        entry = self._entries[item]
        return Colour(entry.rgbRed, entry.rgbGreen, entry.rgbBlue)

    def __iter__(self) -> Iterator[Colour]:
        return (Colour(entry.rgbRed, entry.rgbGreen, entry.rgbBlue) for entry in self._entries)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Palette) and self.tobytes() == other.tobytes()

    def __hash__(self) -> int:
        return hash(self.tobytes())

    def __reduce__(self) -> Tuple[Any, ...]:
        return Palette.frombytes, (self.tobytes(),)

    def __repr__(self) -> str:
        return f"<zkr13n.Palette of {len(self)} colours>"
