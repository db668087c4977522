"""What a bitmap is in a pickle: its form, what belongs to it, and its pixels, at 1 and 24 bits as compressed strips where
these take less. The strips are made by the modules that lie beside the library, and end in checksums of their own."""

from __future__ import annotations

import ctypes
import pickle
from functools import lru_cache
from typing import TYPE_CHECKING, Any, Dict, List, Optional, Tuple

from ._base import BitmapBase, Guard, Record
from ._errors import check, error_of
from ._library import lib, strip_module
from ._numbers import assign
from ._pixels import PixelAccess
from ._records import BITMAPINFOHEADER, RGBQUAD, FilterLoadBuffer, FilterSaveBuffer
from . import _constants as c
from .enums import Storage, View
from .palette import Palette
from .region import RegionAccess

if TYPE_CHECKING:
    from .bitmap import Bitmap

STRIP_ROWS = 16  # what the modules are made for
QUALITY = {1: 68, 24: 20}
PARAMETER = {1: 0, 24: -1}
WORTH = 0.9  # of the plain size: what strips have to stay below

# Fields of the record that are plain numbers of the bitmap's own.
FIELDS = ("Order", "XResolution", "YResolution", "DitheringMethod", "PlaybackLeft", "PlaybackTop", "PlaybackDelay",
          "PlaybackBackColor", "TransparentColor", "DisposalMethod", "LowBit", "HighBit", "LevelLowBit", "LevelHighBit",
          "MinVal", "MaxVal")
FLAGS = (c.Z_FLAG_PLAYBACK_WAIT_INPUT | c.Z_FLAG_PLAYBACK_TRANSPARENCY | c.Z_FLAG_SIGNED | c.Z_FLAG_REGION_UNCLIPPED)


@lru_cache(maxsize=None)
def _module(bits: int) -> Optional[Tuple[Any, Any]]:
    """The two functions of the module for a depth, None where there is no module."""
    module = strip_module(bits)
    if module is None:
        return None
    return FilterSaveBuffer(("fltSaveBuffer", module)), FilterLoadBuffer(("fltLoadBuffer", module))


def compress(rows: memoryview, width: int, bits: int) -> Optional[List[bytes]]:
    """The strips of padded rows, None where they would not be worth it."""
    module = _module(bits)
    if module is None:
        return None
    step = (width * bits + 31) // 32 * 4 * STRIP_ROWS
    room = (ctypes.c_ubyte * (2 * step))()
    strips: List[bytes] = []
    plain = total = 0
    for at in range(0, len(rows), step):
        part = rows[at:at + step].tobytes()
        size = ctypes.c_uint32(len(room))
        header = BITMAPINFOHEADER(40, width, -(len(part) * STRIP_ROWS // step), 1, bits)
        if module[0](part, header, room, size, PARAMETER[bits], 0, QUALITY[bits], 0, 0) != c.Z_FILTER_SUCCESS:
            return None
        strips.append(ctypes.string_at(room, size.value))
        plain, total = plain + len(part), total + size.value
        if total > plain * WORTH and (len(strips) == 8 or plain == len(rows)):
            return None
    return strips


def expand(strips: List[bytes], width: int, height: int, bits: int) -> bytearray:
    """The padded rows of strips."""
    module = _module(bits)
    if module is None:
        raise error_of(c.Z_ERROR_FAX_FILTER if bits == 1 else c.Z_ERROR_COLOUR_FILTER,
                    "the module that restores compressed strips is not beside the library")
    if len(strips) != -(-height // STRIP_ROWS):
        raise error_of(c.Z_ERROR_READ, f"{len(strips)} strips do not make {height} rows")
    row = (width * bits + 31) // 32 * 4
    pixels = bytearray(row * height)
    place = ctypes.addressof(ctypes.c_ubyte.from_buffer(pixels))
    for number, strip in enumerate(strips):
        rows = min(STRIP_ROWS, height - number * STRIP_ROWS)
        if rows < 1 or module[1](bytes(strip), len(strip), place + number * STRIP_ROWS * row, QUALITY[bits], width, rows,
                                 bits, 0, 0) != c.Z_FILTER_SUCCESS:
            raise error_of(c.Z_ERROR_READ, f"strip {number} of the pickled pixels is damaged")
    return pixels


def pack(bitmap: Bitmap, protocol: int) -> Dict[str, Any]:
    """All that makes a bitmap."""
    handle = bitmap._handle
    palette, region, bits = bitmap.palette, bitmap.region, bitmap.bits
    state: Dict[str, Any] = {
        "form": (handle.Width, handle.Height, bits, int(bitmap.storage), int(bitmap.view)),
        "palette": palette.tobytes() if palette is not None else None,
        "region": region,
        "fields": {name: getattr(handle, name) for name in FIELDS},
        "flags": handle.Flags & FLAGS,
        "paint": (handle.PaintIntensity, handle.PaintContrast, handle.PaintGamma),
    }
    with Guard(bitmap):
        if handle.LevelLUT and handle.LevelLUTLength:
            table = ctypes.string_at(handle.LevelLUT, 4 * handle.LevelLUTLength)
            state["levels"] = table, bool(handle.Flags & c.Z_FLAG_LEVEL_LUT_ACTIVE)
    rows: Any
    try:
        rows = bitmap.data.cast("B")
    except BufferError:
        rows = memoryview(bitmap.tobytes(padded=True))
    strips = compress(rows, handle.Width, bits) if bits in QUALITY else None
    if strips is not None:
        state["strips"] = strips
    else:
        state["rows"] = pickle.PickleBuffer(rows) if protocol >= 5 else rows.tobytes()
    return state


def unpack(state: Dict[str, Any]) -> Record:
    """A record made of what `pack` gives."""
    width, height, bits, storage, view = state["form"]
    palette = Palette.frombytes(state["palette"]) if state["palette"] is not None else None
    if storage == Storage.USER:
        storage = Storage.MEMORY
    fields = state["fields"]
    made = _Restored._adopt(BitmapBase._allocated(width, height, bits, fields["Order"], Storage(storage), palette,
                                                  View(view), None))
    rows = expand(state["strips"], width, height, bits) if "strips" in state else state["rows"]
    made._write_rows(memoryview(rows).cast("B"))
    handle = made._handle
    assign(handle, **{name: fields[name] for name in FIELDS})
    handle.Flags |= state["flags"] & FLAGS
    if "levels" in state:
        table, active = state["levels"]
        levels = (RGBQUAD * (len(table) // 4)).from_buffer_copy(table)
        check(lib.Z_WindowLevel(handle, fields["LevelLowBit"], fields["LevelHighBit"], levels, len(levels),
                                c.Z_LEVEL_APPLY if active else c.Z_LEVEL_KEEP), lib.Z_WindowLevel)
    for function, value in zip((lib.Z_SetPaintIntensity, lib.Z_SetPaintContrast, lib.Z_SetPaintGamma), state["paint"]):
        check(function(handle, value), function)
    made.region = state["region"]
    with Guard(made):
        assert made._record is not None
        return made._record


class _Restored(PixelAccess, RegionAccess):
    """As much of Bitmap as pixels and a region are put into."""

    __slots__ = ()
