"""Lists of bitmaps, for documents of several pages and for animations."""

from __future__ import annotations

import ctypes
from collections.abc import MutableSequence
from contextlib import contextmanager
from typing import Any, Iterable, Iterator, List, Optional, Union, overload

from ._base import Guard
from ._colour_work import Resolution, resolution_for, resolution_for_colours
from ._errors import check
from ._library import lib
from ._progress import Progress, run
from ._records import RGBQUAD
from .bitmap import Bitmap
from .enums import Dither, Order
from .palette import Palette


@contextmanager
def kernel_list(bitmaps: Iterable[Bitmap]) -> Iterator[int]:
    """The library's list of the records of some bitmaps, whose guards the caller holds. What the library has made of the
    records goes back to the bitmaps at the end; they stay their owners."""
    records = [bitmap._handle for bitmap in bitmaps]
    handle = ctypes.c_void_p()
    check(lib.Z_CreateBitmapList(handle), lib.Z_CreateBitmapList)
    assert handle.value is not None
    inserted: List[Any] = []
    try:
        for record in records:
            check(lib.Z_InsertBitmapListItem(handle, len(inserted), record), lib.Z_InsertBitmapListItem)
            inserted.append(record)
        yield handle.value
    finally:
        for record in inserted:
            lib.Z_RemoveBitmapListItem(handle, 0, record)
        lib.Z_DestroyBitmapList(handle)


class BitmapList(MutableSequence[Bitmap]):
    """A sequence of bitmaps, each at one place only, with the operations that look at all of them together."""

    __slots__ = ("_bitmaps",)

    _bitmaps: List[Bitmap]

    def __init__(self, bitmaps: Iterable[Bitmap] = ()) -> None:
        self._bitmaps = []
        self.extend(bitmaps)

    def _new(self, bitmap: Any) -> Bitmap:
        if not isinstance(bitmap, Bitmap):
            raise TypeError(f"a BitmapList holds bitmaps, not {type(bitmap).__name__}")
        if any(bitmap is other for other in self._bitmaps):
            raise ValueError("the bitmap is in the list already")
        return bitmap

    def __len__(self) -> int:
        return len(self._bitmaps)

    @overload
    def __getitem__(self, item: int) -> Bitmap: ...

    @overload
    def __getitem__(self, item: slice) -> BitmapList: ...

    def __getitem__(self, item: Union[int, slice]) -> Union[Bitmap, BitmapList]:
        """A bitmap; of a slice a new list of the same bitmaps, not of copies."""
        found = self._bitmaps[item]
        return BitmapList(found) if isinstance(found, list) else found

    @overload
    def __setitem__(self, item: int, value: Bitmap) -> None: ...

    @overload
    def __setitem__(self, item: slice, value: Iterable[Bitmap]) -> None: ...

    def __setitem__(self, item: Any, value: Any) -> None:
        if isinstance(item, slice):
            bitmaps = list(self._bitmaps)
            bitmaps[item] = value
            self._bitmaps = BitmapList(bitmaps)._bitmaps
        elif value is not self._bitmaps[item]:
            self._bitmaps[item] = self._new(value)

    def __delitem__(self, item: Union[int, slice]) -> None:
        del self._bitmaps[item]

    def insert(self, index: int, value: Bitmap) -> None:
        self._bitmaps.insert(index, self._new(value))

    def __enter__(self) -> BitmapList:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """Closes all bitmaps of the list."""
        for bitmap in self._bitmaps:
            bitmap.close()

    def copy(self) -> BitmapList:
        """A new list of copies of all bitmaps."""
        return BitmapList(bitmap.copy() for bitmap in self._bitmaps)

    def _resolve(self, to: Resolution, progress: Optional[Progress]) -> None:
        with Guard(*self._bitmaps):
            for bitmap in self._bitmaps:
                assert bitmap._record is not None
                bitmap._refuse_views(bitmap._record)
            bits, flags, entries, count = to
            with kernel_list(self._bitmaps) as handle:
                function = lib.Z_ColorResBitmapList
                check(run(function, (handle, bits, flags, entries, None, count), progress), function)

    def convert(self, bits: int, order: Optional[Order] = None, *, palette: Optional[Palette] = None,
                dither: Dither = Dither.NONE, progress: Optional[Progress] = None) -> BitmapList:
        """Changes depth, order and palette of all bitmaps in place, as `Bitmap.convert`; returns the list. On failure the
        bitmaps before the one that fails are changed."""
        self._resolve(resolution_for(bits, order, palette, dither), progress)
        return self

    def quantize(self, colours: int = 256, *, dither: Dither = Dither.NONE, keep: Optional[Palette] = None,
                 progress: Optional[Progress] = None) -> BitmapList:
        """Brings all bitmaps to one palette that is made for all of them together, in place, as `Bitmap.quantize`; returns
        the list."""
        self._resolve(resolution_for_colours(colours, dither, keep), progress)
        return self

    def palette_for(self, colours: int = 256, *, progress: Optional[Progress] = None) -> Palette:
        """One palette of at most so many colours for all bitmaps, which stay as they are."""
        if not 1 <= colours <= 256:
            raise ValueError(f"a palette has 1 to 256 colours, not {colours}")
        entries = (RGBQUAD * colours)()
        count, quantised = ctypes.c_uint32(colours), ctypes.c_int32()
        with Guard(*self._bitmaps), kernel_list(self._bitmaps) as handle:
            function = lib.Z_CreateBitmapListOptPal
            check(run(function, (handle, entries, count, None, quantised), progress), function)
        return Palette._of((RGBQUAD * count.value)(*entries[: count.value]))

    def __repr__(self) -> str:
        return f"<zkr13n.BitmapList of {len(self)} bitmaps>"
