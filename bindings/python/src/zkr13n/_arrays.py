"""Pixels as arrays: NumPy's without a copy where storage allows it, and copies of any depth and storage."""

from __future__ import annotations

import ctypes
import sys
from functools import lru_cache
from typing import TYPE_CHECKING, Any, Dict, Optional, Tuple, Type, TypeVar

from . import _constants as c
from ._base import BitmapBase, Self
from ._errors import BusyError, check
from ._library import lib
from ._pixels import PixelAccess, get_row, packed_bytes
from .enums import Order, Storage, View
from .palette import Palette

if TYPE_CHECKING:
    import numpy

# What an element of an array is: its type, and how many of them make a pixel, 0 for one without an axis of its own.
ELEMENTS = {8: ("|u1", 0), 16: ("<u2", 0), 24: ("|u1", 3), 32: ("|u1", 4), 48: ("<u2", 3), 64: ("<u2", 4)}
DEPTHS = {("B", 0): 8, ("B", 3): 24, ("B", 4): 32, ("H", 0): 16, ("H", 3): 48, ("H", 4): 64, ("?", 0): 1}


A = TypeVar("A", bound="ArrayAccess")


class ArrayAccess(PixelAccess):
    """The part of Bitmap that exchanges pixels with arrays."""

    __slots__ = ()

    @property
    def __array_interface__(self) -> Dict[str, Any]:
        try:
            return self._interface()
        except BufferError as error:
            raise AttributeError(str(error)) from error

    def _interface(self) -> Dict[str, Any]:
        record = self._take()
        try:
            handle = record.handle
            if handle.BitsPerPixel not in ELEMENTS:
                raise BufferError(f"pixels of {handle.BitsPerPixel} bits are no elements of an array: to_array "
                                  "unpacks them, and memoryviews (bitmap.data) show the packed rows")
            kind, channels = ELEMENTS[handle.BitsPerPixel]
            item = int(kind[-1])
            last = ((channels,), (item,)) if channels else ((), ())
            return {"version": 3, "typestr": kind, "data": record.view(), "offset": 0,
                    "shape": (handle.Height, handle.Width, *last[0]),
                    "strides": (handle.BytesPerLine, item * max(1, channels), *last[1])}
        finally:
            self._lock.release()

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> numpy.ndarray[Any, Any]:
        import numpy

        if copy:
            array = self.to_array()
        else:
            array = numpy.asarray(_Interface(self._interface()))
        return array if dtype is None else array.astype(dtype, copy=False)

    def to_array(self) -> numpy.ndarray[Any, Any]:
        """A new array of the stored values, from any depth and storage; needs NumPy.

        It has height rows and width columns: of indices (1 to 8 bits), of gray levels or words (12 and 16 bits); or three
        or four channels a pixel in the bitmap's order, of 8 bits (24 and 32 bits) or 16 bits (48 and 64 bits).
        """
        import numpy

        bits, order = self.bits, self.order
        if bits in ELEMENTS:
            kind, channels = ELEMENTS[bits]
            shape = (self.height, self.width, channels) if channels else (self.height, self.width)
            return numpy.frombuffer(bytearray(self.tobytes()), kind).reshape(shape)
        with self._plain(bits, order) as plain:
            return numpy.asarray(plain).copy()

    def _plain(self, bits: int, order: Order) -> ArrayAccess:
        """A bitmap of 8 or 16 bits with the values of one whose pixels are packed."""
        wide = 16 if bits == 12 else 8
        record = self._take()
        try:
            if record.handle.BitsPerPixel != bits:
                raise BusyError("another thread has changed the bitmap meanwhile")
            plain = ArrayAccess(record.handle.Width, record.handle.Height, wide, order=Order.GRAY)
            target = plain._handle
            row = ctypes.c_ubyte * max(target.BytesPerLine, record.handle.BytesPerLine)
            for y in range(target.Height):
                place = row.from_address(target.Addr + y * target.BytesPerLine)
                get_row(record, y, packed_bytes(target.Width, bits), place)
                _convert_row(place, target.Width, bits, wide)
        finally:
            self._lock.release()
        return plain

    def _pack_rows(self, data: bytes, truth: bool) -> None:
        """Writes bytes or words as packed pixels; of booleans what is true is white."""
        bits, width = self.bits, self.width
        wide = 16 if bits == 12 else 8
        if wide == 8 and not truth and data.translate(None, bytes(range(1 << bits))):
            raise ValueError(f"the array has values that do not fit into {bits} bits")
        if wide == 16 and data[1::2].translate(None, bytes(range(16))):
            raise ValueError("the array has values that do not fit into 12 bits")
        step = width * wide // 8
        row = (ctypes.c_ubyte * (step + 4))()
        for y in range(self.height):
            ctypes.memmove(row, data[y * step:(y + 1) * step], step)
            _convert_row(row, width, wide, bits, truth)
            self.set_row(y, ctypes.string_at(row, packed_bytes(width, bits)))

    @classmethod
    def from_array(cls: Type[A], array: Any, *, bits: Optional[int] = None, order: Optional[Order] = None,
                   palette: Optional[Palette] = None, storage: Storage = Storage.MEMORY, copy: bool = True) -> A:
        """A bitmap of an array, or of anything else that gives a buffer of 2 or 3 dimensions.

        array    rows x columns of bytes (8 bits), words (16 bits, gray) or booleans (1 bit, white where true); or rows x
                 columns x 3 or 4 channels of bytes (24 and 32 bits) or words (48 and 64 bits)
        bits     another depth for rows x columns: 1 to 7 of bytes, which are indices then, 12 of words
        order    of the channels, RGB unless told; of words GRAY unless told
        palette  up to 8 bits; without one bytes are gray from black to white
        storage  where the pixels of the copy lie
        copy     false leaves the pixels where they are: the bitmap works on the array's own memory. Rows then have to be
                 a multiple of four bytes long, or apart by so much.
        """
        view = memoryview(array)
        shape = view.shape or ()
        if view.ndim not in (2, 3) or (view.ndim == 3 and shape[2] not in (3, 4)):
            raise ValueError(f"an array of the shape {view.shape} is no picture: rows x columns, or with 3 or 4 channels")
        kind = view.format.lstrip("@=<" if sys.byteorder == "little" else "@=")
        depth = DEPTHS.get((kind, shape[2] if view.ndim == 3 else 0))
        if depth is None:
            raise TypeError(f"elements of the format {view.format!r} are no pixels: bytes, words of 16 bits or booleans are")
        wanted = depth if bits is None else bits
        if wanted != depth and not (depth == 8 and 1 <= wanted <= 7) and not (depth == 16 and wanted == 12):
            raise ValueError(f"an array of {depth}-bit pixels does not give {wanted} bits")
        if order is None:
            order = Order.GRAY if depth in (1, 8, 12, 16) else Order.RGB
        height, width = shape[:2]
        if not copy:
            if wanted != depth or depth == 1:
                raise ValueError("pixels that are packed have to be copied")
            return cls._adopt(cls._wrapped(view, width, height, depth, order, palette))
        made = cls(width, height, wanted, order=order, storage=storage, palette=palette)
        if depth == 1 or wanted != depth:
            made._pack_rows(view.tobytes(), depth == 1)
        else:
            made._write_rows(view.cast("B") if view.c_contiguous else memoryview(view.tobytes()))
        return made

    @staticmethod
    def _wrapped(view: memoryview, width: int, height: int, bits: int, order: Order,
                 palette: Optional[Palette]) -> Any:
        """A record on the memory of a buffer."""
        row = (width * bits + 31) // 32 * 4
        strides = view.strides or ()
        if strides[1:] != ((bits // 8, view.itemsize) if view.ndim == 3 else (bits // 8,)) or (
                height > 1 and strides[0] != row) or (height == 1 and width * bits % 32):
            raise ValueError(f"without a copy rows have to lie {row} bytes apart, without gaps between pixels; "
                             f"the strides of the array are {strides}")
        if view.readonly:
            raise ValueError("without a copy the array has to be writable")
        start = _first_byte(view)
        if bits <= 8 and order == Order.GRAY and palette is None:
            palette = Palette.gray(bits)
        memory = ((view, start), ctypes.addressof(start), row * height)
        return BitmapBase._allocated(width, height, bits, order, Storage.USER, palette, View.TOP_LEFT, memory)


class _Interface:
    """Carries an array interface to NumPy."""

    def __init__(self, interface: Dict[str, Any]) -> None:
        self.__array_interface__ = interface


def _first_byte(view: memoryview) -> Any:
    """The first byte of a buffer, whatever lies between its rows; it keeps the buffer alive."""
    if view.c_contiguous:
        return ctypes.c_ubyte.from_buffer(view.cast("B"))
    interface = getattr(view.obj, "__array_interface__", None)
    if interface is None or interface["shape"] != view.shape:  # a part of it has another first byte
        raise ValueError("without a copy the buffer has to be contiguous, or an array of NumPy")
    start = ctypes.c_ubyte.from_address(interface["data"][0])
    start.owner = view  # type: ignore[attr-defined]
    return start


@lru_cache(maxsize=None)
def _ramps(bits: int, truth: bool) -> Tuple[Any, Any]:
    """Palettes between which indices of 8 bits and of fewer bits stay what they are: of 256 entries, and of the few that
    it begins with and repeats. Of truths all but 0 is white."""
    few = Palette.gray(bits)
    grays = [few[min(i, 1) if truth else i % len(few)] for i in range(256)]
    return Palette(grays)._padded(8), few._padded(bits)


def _convert_row(row: Any, width: int, before: int, after: int, truth: bool = False) -> None:
    """Packs a row of whole bytes or words in place, or unpacks it; the values stay."""
    if 12 in (before, after):
        side = c.Z_CONVERT_SOURCE_WINDOW if after == 12 else c.Z_CONVERT_TARGET_WINDOW
        check(lib.Z_ConvertBufferExt(row, width, before, after, Order.GRAY, Order.GRAY, None, None, side, 0, 11),
              lib.Z_ConvertBufferExt)
        return
    many, few = _ramps(min(before, after), truth)
    check(lib.Z_ConvertBuffer(row, width, before, after, Order.RGB, Order.RGB, many if before == 8 else few,
                              many if after == 8 else few), lib.Z_ConvertBuffer)
