"""The ground that Bitmap stands on: the record of the library, who owns it, and how calls are made on it.

Three things keep pixels safe. A record is freed when the last of the bitmap and the views of its pixels has gone. While
such a view lives, nothing replaces the storage that it looks at. And each call takes the bitmap's guard without waiting,
so that two threads that meet on one bitmap get an exception and not each other's pixels.
"""

from __future__ import annotations

import ctypes
import threading
import weakref
from types import TracebackType
from typing import Any, List, Optional, Tuple, Type, TypeVar

from . import _constants as c
from ._errors import SUCCESS, BusyError, check, failure
from ._library import lib
from ._numbers import assign
from ._progress import Progress, run
from ._records import BitmapHandle
from ._system import delete_object
from .enums import Order, Storage, View
from .palette import Palette

Self = TypeVar("Self", bound="BitmapBase")

ONE_BLOCK = c.Z_FLAG_MEMORY | c.Z_FLAG_TILED | c.Z_FLAG_COMPRESSED | c.Z_FLAG_SUPER_COMPRESSED | c.Z_FLAG_GLOBAL


class Record:
    """One record of the library with what it owns, freed when it is no longer referred to."""

    __slots__ = ("handle", "reference", "owner", "views", "__weakref__")

    def __init__(self, owner: object = None) -> None:
        self.handle = BitmapHandle()
        self.reference = ctypes.byref(self.handle)
        self.owner = owner  # of pixels that are not the library's
        self.views: List[weakref.ReferenceType[Any]] = []

    def __del__(self, free: Any = lib.Z_FreeBitmap) -> None:
        free(self.reference)

    def address(self) -> Optional[int]:
        """Where the pixels lie in one block of memory, None where they do not."""
        handle = self.handle
        return handle.Addr if handle.Flags & ONE_BLOCK == c.Z_FLAG_MEMORY else None

    def view(self) -> Any:
        """The pixels as bytes that keep the record alive."""
        address = self.address()
        if address is None:
            raise BufferError("the pixels do not lie in one block of memory; take tobytes, rows or to_array, or make "
                              "a copy in memory: bitmap.copy(Storage.MEMORY)")
        pixels: Any = (ctypes.c_ubyte * self.handle.Size).from_address(address)
        pixels.record = self
        self.views = [view for view in self.views if view() is not None]
        self.views.append(weakref.ref(pixels))
        return pixels

    def is_viewed(self) -> bool:
        return any(view() is not None for view in self.views)


def give_palette(record: Record, palette: Palette) -> None:
    """Puts a palette in the place of a record's."""
    if len(palette) > 1 << record.handle.BitsPerPixel:
        raise ValueError(f"{len(palette)} colours are too many for {record.handle.BitsPerPixel} bits")
    before, is_block = record.handle.Palette, record.handle.Flags & c.Z_FLAG_PALETTE_IS_BLOCK
    check(lib.Z_CreateBitmapPalette(record.reference, palette._entries, len(palette)), lib.Z_CreateBitmapPalette)
    if before is not None:
        (lib.Z_OsFree if is_block else delete_object)(before)


class Guard:
    """Holds bitmaps for one call: their records cannot be used by others meanwhile. The same bitmap may be told twice."""

    __slots__ = ("_bitmaps",)

    def __init__(self, *bitmaps: BitmapBase) -> None:
        self._bitmaps = list(dict.fromkeys(bitmaps))

    def __enter__(self) -> Guard:
        for number, bitmap in enumerate(self._bitmaps):
            try:
                bitmap._take()
            except BaseException:
                self._release(number)
                raise
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self._release(len(self._bitmaps))

    def _release(self, count: int) -> None:
        for bitmap in self._bitmaps[:count]:
            bitmap._lock.release()


class BitmapBase:
    """A bitmap: its life, its form, and how the library is called on it."""

    __slots__ = ("_record", "_lock", "__weakref__")

    _record: Optional[Record]

    def __init__(self, width: int, height: int, bits: int = 24, *, order: Optional[Order] = None,
                 storage: Storage = Storage.MEMORY, palette: Optional[Palette] = None,
                 view: View = View.TOP_LEFT) -> None:
        """A new bitmap of zeros.

        width, height  pixels, from 1
        bits           bits of a pixel: 1 to 8, 12, 16, 24, 32, 48 or 64
        order          of the channels: RGB unless told, gray at 12 bits. Up to 8 bits GRAY gives a gray palette.
        storage        where the pixels lie
        palette        up to 8 bits: the colours, black behind its end; without one the fixed palette of the depth
        view           the corner of the picture where the first pixel of storage lies
        """
        if storage == Storage.USER:
            raise ValueError("memory of the caller's is taken by from_array(array, copy=False)")
        if bits > 8 and palette is not None:
            raise ValueError(f"a bitmap of {bits} bits has no palette")
        if order is None:
            order = Order.GRAY if bits == 12 else Order.RGB
        if 1 <= bits <= 8 and order == Order.GRAY and palette is None:
            palette = Palette.gray(bits)
        self._record, self._lock = None, threading.Lock()
        self._record = self._allocated(width, height, bits, order, storage, palette, view, None)

    @staticmethod
    def _allocated(width: int, height: int, bits: int, order: Order, storage: Storage, palette: Optional[Palette],
                   view: View, memory: Optional[Tuple[object, int, int]]) -> Record:
        """A record with storage; memory of the caller's as its owner, address and size in bytes."""
        owner, address, size = memory if memory is not None else (None, None, 0)
        record = Record(owner)
        bits = bits if bits != 0 else -1  # 0 means something to the library alone
        check(lib.Z_CreateBitmap(record.reference, storage, width, height, bits, order, None, view, address, size),
              lib.Z_CreateBitmap)
        if palette is not None:
            give_palette(record, palette)
        return record

    @classmethod
    def _adopt(cls: Type[Self], record: Record) -> Self:
        """The bitmap of a record that the library has made."""
        made = cls.__new__(cls)
        made._record = record
        made._lock = threading.Lock()
        return made

    # ---- Calls

    def _take(self) -> Record:
        """Takes the guard; who has taken it releases `_lock`."""
        if not self._lock.acquire(False):
            raise BusyError("the bitmap is in use: another thread, or the operation that reports progress, is at work on it")
        record = self._record
        if record is None:
            self._lock.release()
            raise ValueError("the bitmap is closed")
        return record

    def _call(self, function: Any, *arguments: Any, progress: Optional[Progress] = None) -> None:
        """Calls a function on the bitmap, which may change pixels but leaves them where they lie."""
        record = self._take()
        try:
            code = run(function, (record.reference, *arguments), progress)
        finally:
            self._lock.release()
        if code != SUCCESS:
            raise failure(code, function)

    def _change(self, function: Any, *arguments: Any, progress: Optional[Progress] = None) -> None:
        """Calls a function on the bitmap that may put other storage in the place of the old."""
        record = self._take()
        try:
            self._refuse_views(record)
            code = run(function, (record.reference, *arguments), progress)
        finally:
            self._lock.release()
        if code != SUCCESS:
            raise failure(code, function)

    def _make(self: Self, function: Any, *arguments: Any, progress: Optional[Progress] = None) -> Self:
        """Calls a function whose first argument is a new record, made of the bitmap in the second."""
        record, made = self._take(), Record()
        try:
            code = run(function, (made.reference, record.reference, *arguments), progress)
        finally:
            self._lock.release()
        if code != SUCCESS:
            raise failure(code, function)
        return self._adopt(made)

    @staticmethod
    def _refuse_views(record: Record) -> None:
        if record.views and record.is_viewed():
            raise BufferError("an array or memoryview looks at the pixels: delete it first, or work on a copy")

    @property
    def _handle(self) -> BitmapHandle:
        """The record's fields, for what reads or sets one of them."""
        record = self._record
        if record is None:
            raise ValueError("the bitmap is closed")
        return record.handle

    def _set(self, **fields: int) -> None:
        """Sets fields of the record."""
        record = self._take()
        try:
            assign(record.handle, **fields)
        finally:
            self._lock.release()

    def _set_flag(self, flag: int, on: bool, **fields: int) -> None:
        """Sets or clears a flag of the record, and sets fields."""
        record = self._take()
        try:
            flags = record.handle.Flags
            assign(record.handle, Flags=flags | flag if on else flags & ~flag, **fields)
        finally:
            self._lock.release()

    # ---- Life

    def close(self) -> None:
        """Gives the pixels back. Arrays and memoryviews of them stay valid, and then hold them. Closing twice is fine."""
        if not self._lock.acquire(False):
            raise BusyError("the bitmap is in use and cannot be closed now")
        self._record = None
        self._lock.release()

    @property
    def closed(self) -> bool:
        """Whether `close` has given the pixels back."""
        return self._record is None

    def __enter__(self: Self) -> Self:
        self._handle  # refuses a closed bitmap
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    # ---- Form

    @property
    def width(self) -> int:
        """Pixels in a row of storage."""
        return int(self._handle.Width)

    @property
    def height(self) -> int:
        """Rows of storage."""
        return int(self._handle.Height)

    @property
    def size(self) -> Tuple[int, int]:
        """Width and height, pixels."""
        handle = self._handle
        return handle.Width, handle.Height

    @property
    def bits(self) -> int:
        """Bits of a pixel: 1 to 8, 12, 16, 24, 32, 48 or 64."""
        return int(self._handle.BitsPerPixel)

    @property
    def order(self) -> Order:
        """The order of a pixel's channels; of no meaning up to 8 bits."""
        return Order(self._handle.Order)

    @property
    def storage(self) -> Storage:
        """Where the pixels lie."""
        flags = self._handle.Flags
        for flag, storage in ((c.Z_FLAG_SUPER_COMPRESSED, Storage.STRIPS), (c.Z_FLAG_COMPRESSED, Storage.RUNS),
                              (c.Z_FLAG_TILED, Storage.TILED), (c.Z_FLAG_DISK, Storage.DISK),
                              (c.Z_FLAG_USER_DATA, Storage.USER)):
            if flags & flag:
                return storage
        return Storage.MEMORY

    @property
    def view(self) -> View:
        """The corner of the picture where the first pixel of storage lies. It can be set, which moves no pixel."""
        return View(self._handle.ViewPerspective)

    @view.setter
    def view(self, view: View) -> None:
        self._set(ViewPerspective=View(view))

    @property
    def row_bytes(self) -> int:
        """Bytes from a row of storage to the next, a multiple of four."""
        return int(self._handle.BytesPerLine)

    @property
    def nbytes(self) -> int:
        """Bytes that the pixels take where they lie; compressed ones fewer than row_bytes * height."""
        return int(self._handle.Size)

    @property
    def resolution(self) -> Tuple[int, int]:
        """Dots per inch along rows and down columns; both can be set by one number."""
        handle = self._handle
        return handle.XResolution, handle.YResolution

    @resolution.setter
    def resolution(self, dots: Any) -> None:
        across, down = (dots, dots) if isinstance(dots, int) else dots
        self._set(XResolution=across, YResolution=down)

    def __sizeof__(self) -> int:
        """With its pixels, which is what schedulers of work want to know."""
        return object.__sizeof__(self) + (0 if self._record is None else self.nbytes)

    def __repr__(self) -> str:
        name = f"zkr13n.{type(self).__name__}"
        record = self._record
        if record is None:
            return f"<{name}, closed>"
        handle = record.handle
        order = f" {self.order.name}" if handle.BitsPerPixel > 8 else ""
        plural = "s" if handle.BitsPerPixel > 1 else ""
        view = "" if handle.ViewPerspective == View.TOP_LEFT else f", view {self.view.name}"
        region = ", with a region" if handle.Region else ""
        return (f"<{name} {handle.Width}x{handle.Height}, {handle.BitsPerPixel} bit{plural}{order}, {self.storage.name}"
                f"{view}{region}>")
