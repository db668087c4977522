"""Pixels as bytes: rows, single pixels, slices, memoryviews. All of it is about stored values and stored rows and columns;
neither the region nor the view plays a part."""

from __future__ import annotations

import ctypes
from itertools import repeat
from operator import index
from struct import Struct
from typing import Any, Iterator, Optional, Tuple, Type, TypeVar, Union

from . import _constants as c
from ._base import BitmapBase, Guard, Record
from ._errors import check, failure
from ._library import lib
from ._progress import Progress, run
from .colours import Colour, ColourLike, value_of
from .enums import Order, Storage, View
from .palette import Palette

WHOLE_BYTES = {8, 24, 32, 48, 64}
UNPACK = {6: Struct("<3H").unpack, 8: Struct("<4H").unpack}
Eight = ctypes.c_ubyte * 8
Two = ctypes.c_uint32 * 2
Value = Union[int, Tuple[int, ...]]
Index = Union[slice, Tuple[Any, Any]]


def packed_bytes(width: int, bits: int) -> int:
    """Bytes that a row of pixels takes without padding."""
    return (width * bits + 7) // 8


def _within(value: Any, bits: int) -> int:
    number = index(value)
    if not 0 <= number < 1 << bits:
        raise ValueError(f"a pixel of {bits} bits holds a whole number from 0 to {(1 << bits) - 1}, not {value}")
    return number


def repeated(value: Any, bits: int, width: int) -> bytes:
    """A packed row of one stored value."""
    if bits < 8:
        ones = (1 << bits) - 1
        row = _within(value, bits) * (((1 << bits * width) - 1) // ones) << (-width * bits % 8)
        return row.to_bytes(packed_bytes(width, bits), "big")
    if bits == 12:
        word = _within(value, bits)
        return ((word | word << 12).to_bytes(3, "little") * ((width + 1) // 2))[: packed_bytes(width, 12)]
    channels = 1 if bits in (8, 16) else bits // 8 if bits in (24, 32) else bits // 16
    values = tuple(value) if hasattr(value, "__len__") else (value,)
    if len(values) != channels:
        raise ValueError(f"a pixel of {bits} bits holds {channels} numbers, not {len(values)}")
    each = bits // 8 // channels
    try:
        return b"".join(int(part).to_bytes(each, "little") for part in values) * width
    except OverflowError:
        raise ValueError(f"the pixel {value} leaves the range 0 to {(1 << 8 * each) - 1}") from None


P = TypeVar("P", bound="PixelAccess")


class PixelAccess(BitmapBase):
    """The part of Bitmap that reads and writes pixels."""

    __slots__ = ()

    @classmethod
    def frombytes(cls: Type[P], width: int, height: int, bits: int, data: Any, *, order: Optional[Order] = None,
                  storage: Storage = Storage.MEMORY, palette: Optional[Palette] = None,
                  view: View = View.TOP_LEFT) -> P:
        """A new bitmap with the pixels of a bytes-like object, as `tobytes` gives them.

        data  rows without padding, or each padded to a multiple of four bytes; the other arguments are those of Bitmap
        """
        made = cls(width, height, bits, order=order, storage=storage, palette=palette, view=view)
        made._write_rows(memoryview(data).cast("B"))
        return made

    def _write_rows(self, data: memoryview) -> None:
        record = self._take()
        try:
            handle = record.handle
            row = packed_bytes(handle.Width, handle.BitsPerPixel)
            step = row
            if len(data) == handle.BytesPerLine * handle.Height:
                row = step = handle.BytesPerLine
            elif len(data) != row * handle.Height:
                padded = handle.BytesPerLine * handle.Height
                raise ValueError(f"{handle.Height} rows take {row * handle.Height} bytes, or {padded} with padding, "
                                 f"not {len(data)}")
            address = record.address()
            if address is not None:
                target = memoryview((ctypes.c_ubyte * (handle.BytesPerLine * handle.Height)).from_address(address)).cast("B")
                if step == handle.BytesPerLine:
                    target[:] = data
                    return
                for y in range(handle.Height):
                    target[y * handle.BytesPerLine:y * handle.BytesPerLine + row] = data[y * step:y * step + row]
                return
            for y in range(handle.Height):
                _put_row(record, y, data[y * step:y * step + row].tobytes())
        finally:
            self._lock.release()

    def tobytes(self, padded: bool = False) -> bytes:
        """All rows, without padding or each padded to a multiple of four bytes as in storage."""
        record = self._take()
        try:
            handle = record.handle
            row = handle.BytesPerLine if padded else packed_bytes(handle.Width, handle.BitsPerPixel)
            address = record.address()
            if address is not None and row == handle.BytesPerLine:
                return ctypes.string_at(address, row * handle.Height)
            return b"".join(_get_row(record, y, row) for y in range(handle.Height))
        finally:
            self._lock.release()

    # ---- Rows

    def row(self, y: int) -> bytes:
        """The bytes of a row, without padding. Indices are packed from the topmost bit of the first byte on."""
        record = self._take()
        try:
            handle = record.handle
            return _get_row(record, _place(y, handle.Height), packed_bytes(handle.Width, handle.BitsPerPixel))
        finally:
            self._lock.release()

    def set_row(self: P, y: int, data: Any) -> P:
        """Writes a row of bytes, as `row` gives them. Returns the bitmap."""
        content = bytes(data)
        record = self._take()
        try:
            handle = record.handle
            row = packed_bytes(handle.Width, handle.BitsPerPixel)
            if len(content) not in (row, handle.BytesPerLine):
                raise ValueError(f"a row takes {row} bytes, not {len(content)}")
            _put_row(record, _place(y, handle.Height), content)
        finally:
            self._lock.release()
        return self

    def rows(self) -> Iterator[bytes]:
        """The rows from the first to the last, as `row` gives them."""
        return (self.row(y) for y in range(self.height))

    # ---- Memory

    @property
    def data(self) -> memoryview:
        """The pixels themselves, not a copy, as a memoryview of height rows of row_bytes bytes.

        Where they do not lie in one block of memory it is a BufferError. While the view lives, nothing takes the storage
        away; methods that would replace it raise BufferError.
        """
        record = self._take()
        try:
            handle = record.handle
            return memoryview(record.view()).cast("B")[: handle.BytesPerLine * handle.Height].cast(
                "B", (handle.Height, handle.BytesPerLine))
        finally:
            self._lock.release()

    # ---- Single pixels and slices

    def colour(self, x: int, y: int) -> Colour:
        """The colour of a pixel, of indices that of the palette's entry, of gray the upper eight bits of its level."""
        record = self._take()
        try:
            handle = record.handle
            value: int = lib.Z_GetPixelColor(record.reference, _place(y, handle.Height), _place(x, handle.Width))
        finally:
            self._lock.release()
        if value >> 24 == 4:
            return Colour(value >> 8 & 255, value >> 8 & 255, value >> 8 & 255)
        return Colour(value & 255, value >> 8 & 255, value >> 16 & 255)

    def set_colour(self: P, x: int, y: int, colour: ColourLike) -> P:
        """Gives a pixel a colour, with indices that of the nearest entry. Returns the bitmap. Outside the bitmap's region
        it is an ArgumentError."""
        value, record = value_of(colour), self._take()
        try:
            handle = record.handle
            code = lib.Z_PutPixelColor(record.reference, _place(y, handle.Height), _place(x, handle.Width), value)
        finally:
            self._lock.release()
        check(code, lib.Z_PutPixelColor)
        return self

    def __getitem__(self: P, item: Index) -> Any:
        """`bitmap[y, x]` is the stored value of a pixel: an index, a level of gray, a 16-bit word, or a tuple of channels in
        the bitmap's order. `bitmap[y0:y1, x0:x1]` is a new bitmap of these rows and columns, with region and palette;
        `bitmap[y0:y1]` has all columns."""
        if isinstance(item, tuple) and _is_pixel(item):
            record = self._take()
            try:
                handle = record.handle
                return _get_pixel(record, _place(item[0], handle.Height), _place(item[1], handle.Width))
            finally:
                self._lock.release()
        top, bottom, left, right = self._box(item)
        return self._make(lib.Z_CopyBitmapRect, left, top, right - left, bottom - top)

    def __setitem__(self, item: Index, value: Union[Value, BitmapBase]) -> None:
        """Writes a stored value into a pixel, or into all of a slice; or a bitmap of the slice's size, of the same depth
        and order, into a slice."""
        if isinstance(item, tuple) and _is_pixel(item):
            self._put_pixel(item, value)
            return
        source: Optional[PixelAccess] = None
        if isinstance(value, PixelAccess):
            source = value.copy() if value is self else value  # its own pixels may be what is overwritten
        function = lib.Z_PutBitmapRowSegments
        # One guard from the first look at the form to the last row.
        with Guard(self, *([] if source is None else [source])):
            assert self._record is not None
            top, bottom, left, right = self._box(item)
            if source is None:
                rows: Iterator[bytes] = repeat(repeated(value, self.bits, right - left), bottom - top)
            else:
                if source.size != (right - left, bottom - top) or (source.bits, source.order) != (self.bits, self.order):
                    raise ValueError(f"{value!r} does not fit into {right - left}x{bottom - top} pixels of {self!r}")
                assert source._record is not None
                count = packed_bytes(right - left, self.bits)
                rows = map(_get_row, repeat(source._record), range(bottom - top), repeat(count))
            for y, content in zip(range(top, bottom), rows):
                check(function(self._record.reference, content, y, left, Two(0, right - left), 2, 0), function)

    def _put_pixel(self, item: Any, value: Any) -> None:
        record = self._take()
        try:
            handle = record.handle
            bits = handle.BitsPerPixel
            y, x = _place(item[0], handle.Height), _place(item[1], handle.Width)
            content = repeated(value, bits, 1)
            if bits < 8 or bits == 12:
                function = lib.Z_PutBitmapRowSegments
                check(function(record.reference, content, y, x, Two(0, 1), 2, 0), function)
            else:
                function = lib.Z_PutPixelData
                check(function(record.reference, content, y, x, len(content)), function)
        finally:
            self._lock.release()

    def _box(self, item: Index) -> Tuple[int, int, int, int]:
        """Top, bottom, left and right of a slice."""
        across, down = (slice(None), item) if isinstance(item, slice) else (item[1], item[0])
        if not isinstance(across, slice) or not isinstance(down, slice):
            raise TypeError("a bitmap is indexed by [row, column] or by [rows, columns] with two slices")
        bounds = []
        for part, size in ((down, self.height), (across, self.width)):
            start, stop, step = part.indices(size)
            if step != 1:
                raise ValueError("slices of a bitmap have no step")
            if stop <= start:
                raise ValueError("the slice holds no pixel")
            bounds += [start, stop]
        return bounds[0], bounds[1], bounds[2], bounds[3]

    # ---- Copies and fills

    def copy(self: P, storage: Optional[Storage] = None, *, progress: Optional[Progress] = None) -> P:
        """A new bitmap with the same pixels, palette and region; compressed and on disk where this one is, or in the
        storage that is named."""
        if storage is None:
            return self._make(lib.Z_CopyBitmap, progress=progress)
        record, made = self._take(), Record()
        try:
            function = lib.Z_CopyBitmap2
            check(run(function, (made.reference, record.reference, storage), progress), function)
            check(lib.Z_CopyGrayParams(made.reference, record.reference), lib.Z_CopyGrayParams)
        finally:
            self._lock.release()
        return self._adopt(made)

    def __copy__(self: P) -> P:
        return self.copy()

    def __deepcopy__(self: P, _memo: Any) -> P:
        return self.copy()

    def fill(self: P, colour: ColourLike, *, progress: Optional[Progress] = None) -> P:
        """Fills the bitmap, or what its region selects, with a colour. Returns the bitmap."""
        self._call(lib.Z_FillBitmap, value_of(colour), progress=progress)
        return self

    def clear(self: P, *, progress: Optional[Progress] = None) -> P:
        """Fills the bitmap, or what its region selects, with zeros: index 0 or black. Returns the bitmap."""
        self._call(lib.Z_ClearBitmap, progress=progress)
        return self


def _is_pixel(item: Tuple[Any, ...]) -> bool:
    return len(item) == 2 and type(item[0]) is not slice and type(item[1]) is not slice


def _place(at: Any, size: int) -> int:
    """A row or column counted from 0, from one that may count from the end."""
    place = index(at)
    if 0 <= place < size:
        return place
    if not -size <= place < size:
        raise IndexError(f"{place} is outside the bitmap, of {size}")
    return place + size


def get_row(record: Record, y: int, count: int, buffer: Any) -> None:
    """Reads the first bytes of a row into a buffer, whatever the storage. Who calls it holds the guard."""
    got = lib.Z_GetBitmapRow(record.reference, buffer, y, count)
    if got != count:
        raise failure(c.Z_ERROR_READ if got >= 0 else got, lib.Z_GetBitmapRow)


def _get_row(record: Record, y: int, count: int) -> bytes:
    address = record.address()
    if address is not None:
        return ctypes.string_at(address + y * record.handle.BytesPerLine, count)
    buffer = bytearray(count)
    get_row(record, y, count, ctypes.byref(ctypes.c_char.from_buffer(buffer)))
    return bytes(buffer)


def _put_row(record: Record, y: int, content: bytes) -> None:
    put = lib.Z_PutBitmapRow(record.reference, content, y, len(content))
    if put != len(content):
        raise failure(c.Z_ERROR_WRITE if put >= 0 else put, lib.Z_PutBitmapRow)


def _get_pixel(record: Record, y: int, x: int) -> Value:
    bits: int = record.handle.BitsPerPixel
    address = record.address() if bits in WHOLE_BYTES else None
    if address is not None:
        size = bits // 8
        content = ctypes.string_at(address + y * record.handle.BytesPerLine + x * size, size)
        return content[0] if size == 1 else tuple(content) if size in (3, 4) else UNPACK[size](content)
    data = Eight()
    code = lib.Z_GetPixelData(record.reference, data, y, x, 2 if bits < 8 else (bits + 7) // 8)
    if code != c.Z_SUCCESS:
        raise failure(code, lib.Z_GetPixelData)
    if bits < 8:
        return int((data[0] << 8 | data[1]) >> (16 - bits - x * bits % 8)) & ((1 << bits) - 1)
    if bits == 8:
        return int(data[0])
    if bits in (12, 16):
        word = int(data[0] | data[1] << 8)
        return word if bits == 16 else word >> 4 if x % 2 else word & 0xFFF
    if bits in (24, 32):
        return tuple(int(part) for part in data[: bits // 8])
    return tuple(data[i] | data[i + 1] << 8 for i in range(0, bits // 8, 2))
