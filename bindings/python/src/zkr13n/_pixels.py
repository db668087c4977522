"""Pixels as bytes: rows, single pixels, slices, memoryviews. All of it is about stored values and stored rows and columns;
neither the region nor the view plays a part."""

from __future__ import annotations

import ctypes
from typing import Any, Iterator, Optional, Tuple, Type, TypeVar, Union

from . import _constants as c
from ._base import BitmapBase, Record
from ._errors import failure
from ._library import lib
from .colours import Colour, ColourLike, value_of
from .enums import Order, Storage, View
from .palette import Palette

Eight = ctypes.c_ubyte * 8
Two = ctypes.c_uint32 * 2
Value = Union[int, Tuple[int, ...]]
Index = Union[slice, Tuple[Any, Any]]


def packed_bytes(width: int, bits: int) -> int:
    """Bytes that a row of pixels takes without padding."""
    return (width * bits + 7) // 8


def repeated(value: Value, bits: int, width: int) -> bytes:
    """A packed row of one stored value."""
    if bits < 8:
        ones = (1 << bits) - 1
        if not isinstance(value, int) or not 0 <= value <= ones:
            raise ValueError(f"a pixel of {bits} bits holds a whole number from 0 to {ones}, not {value}")
        spare = -width * bits % 8
        return (value * (((1 << bits * width) - 1) // ones) << spare).to_bytes(packed_bytes(width, bits), "big")
    if bits == 12:
        if not isinstance(value, int) or not 0 <= value <= 4095:
            raise ValueError(f"a pixel of 12 bits holds a whole number from 0 to 4095, not {value}")
        return ((value | value << 12).to_bytes(3, "little") * ((width + 1) // 2))[: packed_bytes(width, 12)]
    channels = 1 if bits in (8, 16) else bits // 8 if bits in (24, 32) else bits // 16
    values = (value,) if isinstance(value, int) else tuple(value)
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
                raise ValueError(f"{handle.Height} rows take {row * handle.Height} bytes, or {handle.BytesPerLine * handle.Height} "
                                 f"with padding, not {len(data)}")
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
        handle = self._handle
        self._call(lib.Z_PutPixelColor, _place(y, handle.Height), _place(x, handle.Width), value_of(colour))
        return self

    def __getitem__(self: P, item: Index) -> Any:
        """`bitmap[y, x]` is the stored value of a pixel: an index, a level of gray, a 16-bit word, or a tuple of channels in
        the bitmap's order. `bitmap[y0:y1, x0:x1]` is a new bitmap of these rows and columns, with region and palette;
        `bitmap[y0:y1]` has all columns."""
        if isinstance(item, tuple) and len(item) == 2 and not any(isinstance(part, slice) for part in item):
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
        if isinstance(item, tuple) and not any(isinstance(part, slice) for part in item):
            y, x = (_place(part, size) for part, size in zip(item, (self.height, self.width)))
            top, bottom, left, right = y, y + 1, x, x + 1
        else:
            top, bottom, left, right = self._box(item)
        if isinstance(value, PixelAccess):
            if value.size != (right - left, bottom - top) or (value.bits, value.order) != (self.bits, self.order):
                raise ValueError(f"{value!r} does not fit into {right - left}x{bottom - top} pixels of {self!r}")
            # Its own pixels may be what is overwritten.
            source = value.copy() if value is self else value
            rows = source.rows()
        else:
            one = repeated(value, self.bits, right - left)  # type: ignore[arg-type]
            rows = (one for _ in range(top, bottom))
        for y, content in zip(range(top, bottom), rows):
            self._call(lib.Z_PutBitmapRowSegments, content, y, left, Two(0, right - left), 2, 0)

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

    def copy(self: P, storage: Optional[Storage] = None, *, progress: Any = None) -> P:
        """A new bitmap with the same pixels, palette and region; compressed and on disk where this one is, or in the
        storage that is named."""
        if storage is None:
            return self._make(lib.Z_CopyBitmap, progress=progress)
        made = self._make(lib.Z_CopyBitmap2, storage, progress=progress)
        made._call(lib.Z_CopyGrayParams, self._record.reference if self._record else None)
        return made

    def __copy__(self: P) -> P:
        return self.copy()

    def __deepcopy__(self: P, _memo: Any) -> P:
        return self.copy()

    def fill(self: P, colour: ColourLike, *, progress: Any = None) -> P:
        """Fills the bitmap, or what its region selects, with a colour. Returns the bitmap."""
        self._call(lib.Z_FillBitmap, value_of(colour), progress=progress)
        return self

    def clear(self: P, *, progress: Any = None) -> P:
        """Fills the bitmap, or what its region selects, with zeros: index 0 or black. Returns the bitmap."""
        self._call(lib.Z_ClearBitmap, progress=progress)
        return self


def _place(at: Any, size: int) -> int:
    """A row or column counted from 0, from one that may count from the end."""
    place = at.__index__()
    if not -size <= place < size:
        raise IndexError(f"{place} is outside the bitmap's {size}")
    return int(place + size if place < 0 else place)


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
