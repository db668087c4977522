"""What changes colours and depths: conversion, palettes, gray, windows on gray values, alpha."""

from __future__ import annotations

import ctypes
from typing import Any, Optional, Tuple, TypeVar

from . import _constants as c
from ._base import BitmapBase, Guard, Record, give_palette
from ._errors import SUCCESS, check, failure
from ._library import lib
from ._progress import Progress, run
from ._records import RGBQUAD, ColorResCallback
from .colours import BLACK, WHITE, ColourLike, value_of
from .enums import Dither, Gray, Order
from .palette import Palette

ORDERS = {Order.RGB: 0, Order.BGR: c.COLORRES_ORDER_BGR, Order.GRAY: c.COLORRES_ORDER_GRAY}
DITHER_SHIFT = 16
NO_ROWS = ctypes.cast(ctypes.c_void_p(), ColorResCallback)

Resolution = Tuple[int, int, Any, int]  # bits, flags, entries of a palette, their number


def resolution_for(bits: int, order: Optional[Order], palette: Optional[Palette], dither: Dither) -> Resolution:
    """The arguments of a change of depth: of one to a palette where one is given, else to the fixed one."""
    if bits > 8:
        if palette is not None:
            raise ValueError(f"a bitmap of {bits} bits has no palette")
        if order is None:
            order = Order.GRAY if bits == 12 else Order.RGB
        return bits, ORDERS[order], None, 0
    if palette is None and order == Order.GRAY:
        palette = Palette.gray(bits)
    if palette is None:
        return bits, c.COLORRES_FIXED_PALETTE | dither << DITHER_SHIFT, None, 0
    return bits, c.COLORRES_USER_PALETTE | dither << DITHER_SHIFT, palette._padded(bits), len(palette)


def resolution_for_colours(colours: int, dither: Dither, keep: Optional[Palette]) -> Resolution:
    """The arguments of a change to a palette that is made for the picture."""
    if not 2 <= colours <= 256:
        raise ValueError(f"a picture is brought to 2 to 256 colours, not {colours}")
    bits = (colours - 1).bit_length()
    entries = None
    if keep is not None:
        if len(keep) > colours:
            raise ValueError(f"{len(keep)} colours to keep are more than {colours}")
        entries = keep._padded(bits)
        for entry in entries[len(keep):]:
            entry.rgbReserved = 2  # free
    return bits, c.COLORRES_OPTIMIZED_PALETTE | dither << DITHER_SHIFT, entries, colours


C = TypeVar("C", bound="ColourWork")


class ColourWork(BitmapBase):
    """The part of Bitmap that changes colours and depths."""

    __slots__ = ()

    def _resolve(self, target: Optional[Record], to: Resolution, progress: Optional[Progress]) -> None:
        """Changes depth and colours, into a record of its own or in place."""
        record = self._take()
        try:
            if target is None:
                self._refuse_views(record)
            bits, flags, entries, count = to
            into = record.reference if target is None else target.reference
            function = lib.Z_ColorResBitmap
            code = run(function, (record.reference, into, bits, flags, entries, None, count, NO_ROWS, 0), progress)
        finally:
            self._lock.release()
        if code != SUCCESS:
            raise failure(code, function)

    def convert(self: C, bits: int, order: Optional[Order] = None, *, palette: Optional[Palette] = None,
                dither: Dither = Dither.NONE, progress: Optional[Progress] = None) -> C:
        """Changes depth, order and palette in place; returns the bitmap.

        bits     1 to 8, 12, 16, 24, 32, 48 or 64
        order    of the channels: RGB unless told, gray at 12 bits. Up to 8 bits GRAY stands for the gray palette.
        palette  up to 8 bits: the colours; without one the fixed palette of the depth
        dither   up to 8 bits: how
        """
        self._resolve(None, resolution_for(bits, order, palette, dither), progress)
        return self

    def converted(self: C, bits: int, order: Optional[Order] = None, *, palette: Optional[Palette] = None,
                  dither: Dither = Dither.NONE, progress: Optional[Progress] = None) -> C:
        """A new bitmap of another depth, order and palette; arguments as for `convert`."""
        made = Record()
        self._resolve(made, resolution_for(bits, order, palette, dither), progress)
        return self._adopt(made)

    def quantize(self: C, colours: int = 256, *, dither: Dither = Dither.NONE, keep: Optional[Palette] = None,
                 progress: Optional[Progress] = None) -> C:
        """Brings the picture to a palette that is made for it, in place; returns the bitmap, of as few bits as the number
        of colours needs.

        colours  2 to 256, those to keep included
        dither   how
        keep     colours that the palette begins with
        """
        self._resolve(None, resolution_for_colours(colours, dither, keep), progress)
        return self

    def quantized(self: C, colours: int = 256, *, dither: Dither = Dither.NONE, keep: Optional[Palette] = None,
                  progress: Optional[Progress] = None) -> C:
        """A new bitmap with a palette that is made for the picture; arguments as for `quantize`."""
        made = Record()
        self._resolve(made, resolution_for_colours(colours, dither, keep), progress)
        return self._adopt(made)

    def gray(self: C, bits: int = 8, *, progress: Optional[Progress] = None) -> C:
        """Brings the bitmap to gray of 8, 12 or 16 bits, in place; returns it. The gray of a colour is
        (2 red + 5 green + blue + 4) >> 3."""
        self._change(lib.Z_GrayScaleBitmap, bits, progress=progress)
        return self

    @property
    def grayness(self) -> Gray:
        """Whether the bitmap is gray by its order, palette or level table, and in which order; pixels are not looked at."""
        with Guard(self):
            return Gray(lib.Z_IsGrayScaleBitmap(self._handle))

    # ---- Gray values

    def window(self: C, low: int, high: int, *, bits: Optional[Tuple[int, int]] = None, black: ColourLike = BLACK,
               white: ColourLike = WHITE) -> C:
        """Shows the gray values from low to high as a ramp between two colours, those below as black and those above as
        white. For gray bitmaps of 12 and 16 bits; no pixel changes. Returns the bitmap.

        low, high     gray values, as pixels hold them
        bits          lowest and highest bit of a pixel that hold its value; all of them unless told
        black, white  the colours of both ends
        """
        lowest, highest = bits if bits is not None else (0, self.bits - 1)
        length = 1 << max(0, min(highest - lowest + 1, 16))
        table = (RGBQUAD * length)()
        for entry in range(min(length, (high >> lowest) + 1), length):
            table[entry].rgbRed = table[entry].rgbGreen = table[entry].rgbBlue = 255
        check(lib.Z_WindowLevelFillLUT(table, length, value_of(black), value_of(white), low, high, lowest, highest, 0,
                                       (length << lowest) - 1, 1), lib.Z_WindowLevelFillLUT)
        self._call(lib.Z_WindowLevel, lowest, highest, table, length, c.Z_LEVEL_APPLY)
        return self

    def no_window(self: C) -> C:
        """Takes the window on gray values away: all bits of a pixel are its value again. Returns the bitmap."""
        with Guard(self):
            handle = self._handle
            lib.Z_InitGrayParams(handle)
            handle.Flags &= ~c.Z_FLAG_LEVEL_LUT_ACTIVE
        return self

    @property
    def value_bits(self) -> Tuple[int, int]:
        """The lowest and the highest bit of a pixel that hold its gray value; can be set."""
        handle = self._handle
        return handle.LowBit, handle.HighBit

    @value_bits.setter
    def value_bits(self, bits: Tuple[int, int]) -> None:
        low, high = bits
        if not 0 <= low <= high < self.bits:
            raise ValueError(f"bits {low} to {high} are no window in a pixel of {self.bits}")
        self._set(LowBit=low, HighBit=high)

    def clear_negative(self: C) -> C:
        """Turns negative values of a bitmap of signed pixels to 0, in place; returns the bitmap."""
        self._call(lib.Z_ClearNegativePixels)
        return self

    @property
    def signed(self) -> bool:
        """Whether pixels are signed numbers; can be set, which changes none."""
        return bool(self._handle.Flags & c.Z_FLAG_SIGNED)

    @signed.setter
    def signed(self, signed: bool) -> None:
        self._set_flag(c.Z_FLAG_SIGNED, signed)

    # ---- Colours

    @property
    def palette(self) -> Optional[Palette]:
        """The colours that indices stand for, up to 8 bits; None for a bitmap without. Can be set, also to fewer than the depth can have;
        pixels stay."""
        with Guard(self):
            handle = self._handle
            count = lib.Z_GetBitmapPaletteEntries(handle, 0, 256, entries := (RGBQUAD * 256)())
            return Palette._of((RGBQUAD * count)(*entries[:count])) if count else None

    @palette.setter
    def palette(self, palette: Palette) -> None:
        if self.bits > 8:
            raise ValueError(f"a bitmap of {self.bits} bits has no palette")
        record = self._take()
        try:
            give_palette(record, palette)
        finally:
            self._lock.release()

    def count_colours(self, *, progress: Optional[Progress] = None) -> int:
        """The number of distinct colours in the bitmap, or in what its region selects."""
        count = ctypes.c_uint32()
        self._call(lib.Z_GetBitmapColorCountExt, count, None, progress=progress)
        return count.value

    def colours(self, most: int = 256, *, progress: Optional[Progress] = None) -> Optional[Palette]:
        """The distinct colours in the order in which they are found, None where there are more than `most`, 1 to 256."""
        entries, count = (RGBQUAD * most)(), ctypes.c_uint32(most)
        self._call(lib.Z_GetBitmapColorCountExt, count, entries, progress=progress)
        return None if count.value > most else Palette._of((RGBQUAD * count.value)(*entries[: count.value]))

    # ---- Alpha

    def alpha(self: C) -> C:
        """A new gray bitmap of the alpha of a bitmap of 16, 32 or 64 bits; zeros of others."""
        record, made = self._take(), Record()
        try:
            code = lib.Z_GetBitmapAlpha(record.reference, made.reference)
        finally:
            self._lock.release()
        if code != SUCCESS:
            raise failure(code, lib.Z_GetBitmapAlpha)
        return self._adopt(made)

    def set_alpha(self: C, alpha: BitmapBase) -> C:
        """Gives the bitmap the alpha that a gray bitmap holds, in place; returns it, of 32 or 64 bits where it had none."""
        with Guard(self, alpha):
            assert self._record is not None and alpha._record is not None
            self._refuse_views(self._record)
            code = lib.Z_SetBitmapAlpha(self._record.reference, alpha._record.reference)
        if code != SUCCESS:
            raise failure(code, lib.Z_SetBitmapAlpha)
        return self
