"""Regions: sets of pixels that operations on a bitmap are kept to."""

from __future__ import annotations

import ctypes
from typing import TYPE_CHECKING, Any, Callable, Iterable, Iterator, List, Optional, Sequence, Tuple

from . import _constants as c
from ._base import BitmapBase, Guard, Record
from ._errors import check
from ._library import lib
from ._numbers import assign, point, rectangle
from ._records import POINT, RECT, Curve, RegionHandle, RegionRowEntry
from ._system import delete_object, region_of
from .colours import ColourLike, value_of
from .enums import CurveEnds, PolygonFill, View

if TYPE_CHECKING:
    import numpy

    from .bitmap import Bitmap

Box = Tuple[int, int, int, int]
Point = Tuple[int, int]
Run = Tuple[int, int, int]  # row, first column, column behind the last


class Region:
    """An unchangeable set of pixels, by columns (x) and rows (y) of a bitmap's storage.

    It belongs to no bitmap; one that is given it (`bitmap.region = ...`) takes what lies inside. Sets are joined by `|`,
    cut by `&`, `-` and `^`, and compared by `==`; `(x, y) in region` asks for a pixel, `len(region)` counts them.
    """

    __slots__ = ("_record", "_key")

    _record: Record
    _key: Optional[Tuple[Tuple[int, int], bytes]]

    def __init__(self, runs: Iterable[Run] = ()) -> None:
        """The pixels of some runs: row, first column, and the column behind the last. Without runs it is empty."""
        self._record, self._key = _carrier(), None
        rectangles = [rectangle(left, row, right, row + 1) for row, left, right in runs]
        if rectangles:
            platform = region_of(rectangles)
            try:
                check(lib.Z_SetBitmapRgnHandle(self._record.reference, None, platform, c.Z_RGN_SET),
                      lib.Z_SetBitmapRgnHandle)
            finally:
                delete_object(platform)

    # ---- Making

    @classmethod
    def _made(cls, function: Any, *arguments: Any) -> Region:
        """The region that a function of the library sets, its mode last."""
        made = cls.__new__(cls)
        made._record, made._key = _carrier(), None
        check(function(made._record.reference, *arguments, c.Z_RGN_SET), function)
        return made

    @classmethod
    def rectangle(cls, box: Box) -> Region:
        """A rectangle: left, top, right, bottom in pixels, the last two not included."""
        return cls._made(lib.Z_SetBitmapRgnRect, None, rectangle(*box))

    @classmethod
    def ellipse(cls, box: Box) -> Region:
        """The ellipse in a rectangle."""
        return cls._made(lib.Z_SetBitmapRgnEllipse, None, rectangle(*box))

    @classmethod
    def rounded(cls, box: Box, corner: Tuple[int, int]) -> Region:
        """A rectangle whose corners are quarters of an ellipse of some width and height, pixels."""
        return cls._made(lib.Z_SetBitmapRgnRoundRect, None, rectangle(*box), *corner)

    @classmethod
    def polygon(cls, points: Sequence[Point], fill: PolygonFill = PolygonFill.ALTERNATE) -> Region:
        """A polygon of three corners and more, closed from the last to the first."""
        return cls._made(lib.Z_SetBitmapRgnPolygon, None, _points(points), len(points), fill)

    @classmethod
    def curve(cls, points: Sequence[Point], tension: float = 0.5, ends: CurveEnds = CurveEnds.CLOSED,
              fill: PolygonFill = PolygonFill.ALTERNATE) -> Region:
        """The inside of a spline through points; a tension of 0 gives straight lines, 1 the widest swings."""
        array = _points(points)
        return cls._made(lib.Z_SetBitmapRgnCurve, None,
                         Curve(ctypes.sizeof(Curve), c.Z_CURVE_CARDINAL, len(points), array, fill, tension, ends, 0))

    @classmethod
    def bezier(cls, points: Sequence[Point], fill: PolygonFill = PolygonFill.ALTERNATE) -> Region:
        """The inside of Bezier curves: an end, then two controls and an end for each."""
        array = _points(points)
        return cls._made(lib.Z_SetBitmapRgnCurve, None,
                         Curve(ctypes.sizeof(Curve), c.Z_CURVE_BEZIER, len(points), array, fill, 0.0, 0, 0))

    @classmethod
    def from_mask(cls, mask: Any) -> Region:
        """The pixels that are white or true in a mask: a bitmap, of which those count whose gray is 128 or more, or an array
        of rows x columns of booleans or bytes."""
        from .bitmap import Bitmap

        if not isinstance(mask, BitmapBase):
            with Bitmap.from_array(mask) as bitmap:
                return cls.from_mask(bitmap)
        with Guard(mask):
            made = cls.__new__(cls)
            made._record, made._key = _carrier(), None
            check(lib.Z_SetBitmapRgnFromMask(made._record.reference, None, mask._handle, c.Z_RGN_SET),
                  lib.Z_SetBitmapRgnFromMask)
            return made

    @classmethod
    def _found(cls, bitmap: BitmapBase, function: Any, *arguments: Any) -> Region:
        """The pixels of a bitmap that a function of the library finds; the bitmap's own region stays."""
        with Guard(bitmap):
            handle = bitmap._handle
            before, handle.Region = handle.Region, None
            try:
                check(function(handle, *arguments, c.Z_RGN_SET), function)
                return cls._copied(handle)
            finally:
                lib.Z_FreeBitmapRgn(handle)
                handle.Region = before

    @classmethod
    def wand(cls, bitmap: BitmapBase, x: int, y: int, tolerance: int = 0) -> Region:
        """The pixels of nearly one colour that hang together around a seed.

        x, y       column and row of the seed
        tolerance  how far red, green and blue each may be from the seed's, 0 to 255
        """
        return cls._found(bitmap, lib.Z_SetBitmapRgnMagicWand, x, y, tolerance)

    @classmethod
    def of_colour(cls, bitmap: BitmapBase, colour: ColourLike) -> Region:
        """The pixels of one colour."""
        return cls._found(bitmap, lib.Z_SetBitmapRgnColor, value_of(colour))

    @classmethod
    def of_colours(cls, bitmap: BitmapBase, lower: ColourLike, upper: ColourLike) -> Region:
        """The pixels of which red, green and blue each lie between two bounds, both included."""
        return cls._found(bitmap, lib.Z_SetBitmapRgnColorRGBRange, value_of(lower), value_of(upper))

    @classmethod
    def of_hues(cls, bitmap: BitmapBase, lower: Sequence[int], upper: Sequence[int]) -> Region:
        """The pixels of which hue, saturation and value, 0 to 255 each, lie between two bounds, both included; a lower hue
        above the upper one leads over 255."""
        return cls._found(bitmap, lib.Z_SetBitmapRgnColorHSVRange, value_of(lower), value_of(upper))

    @classmethod
    def _copied(cls, handle: Any) -> Region:
        """A copy of the region that a record has."""
        made = cls.__new__(cls)
        made._record, made._key = _carrier(), None
        copy = ctypes.POINTER(RegionHandle)()
        check(lib.Z_CopyZircRgn(copy, ctypes.cast(handle.Region, ctypes.POINTER(RegionHandle))), lib.Z_CopyZircRgn)
        lib.Z_FreeBitmapRgn(made._record.reference)
        made._record.handle.Region = ctypes.cast(copy, ctypes.c_void_p)
        return made

    # ---- Sets

    def _with(self, other: Region, mode: int) -> Region:
        made = Region._copied(self._record.handle)
        _merge(made._record.handle, other, mode)
        return made

    def __or__(self, other: Region) -> Region:
        return self._with(other, c.Z_RGN_OR) if isinstance(other, Region) else NotImplemented

    def __and__(self, other: Region) -> Region:
        return self._with(other, c.Z_RGN_AND) if isinstance(other, Region) else NotImplemented

    def __sub__(self, other: Region) -> Region:
        return self._with(other, c.Z_RGN_ANDNOTRGN) if isinstance(other, Region) else NotImplemented

    def __xor__(self, other: Region) -> Region:
        return self._with(other, c.Z_RGN_XOR) if isinstance(other, Region) else NotImplemented

    def moved(self, right: int, down: int) -> Region:
        """The region elsewhere, pixels."""
        made = Region._copied(self._record.handle)
        check(lib.Z_OffsetBitmapRgn(made._record.reference, down, right), lib.Z_OffsetBitmapRgn)
        return made

    # ---- Asking

    @property
    def _region(self) -> RegionHandle:
        return RegionHandle.from_address(self._record.handle.Region)

    @property
    def bounds(self) -> Box:
        """Left, top, right, bottom of the smallest rectangle around it, pixels; all 0 for an empty region."""
        region = self._region
        return region.Left, region.Top, region.Right, region.Bottom

    def __len__(self) -> int:
        area = ctypes.c_uint32()
        check(lib.Z_GetBitmapRgnArea(self._record.reference, area), lib.Z_GetBitmapRgnArea)
        return area.value

    def __bool__(self) -> bool:
        return bool(self._region.RowTableBytes)

    def __contains__(self, point: Point) -> bool:
        x, y = point
        region = self._region
        if not region.Top <= y < region.Bottom:
            return False
        return any(left <= x < right for left, right in self.row(y))

    def row(self, y: int) -> List[Tuple[int, int]]:
        """The runs of a row from left to right: first column, and the column behind the last."""
        region = self._region
        if not region.Top <= y < region.Bottom:
            return []
        entry: RegionRowEntry = region.RowTable[y - region.Top]
        start = entry.Offset // 4
        ends = region.Segments[start:start + entry.Count]
        return list(zip(ends[::2], ends[1::2]))

    def runs(self) -> Iterator[Run]:
        """All runs, row by row: row, first column, and the column behind the last."""
        _, top, _, bottom = self.bounds
        return ((y, left, right) for y in range(top, bottom) for left, right in self.row(y))

    def to_bitmap(self, width: int, height: int) -> Bitmap:
        """A new bitmap of 1 bit that is white where the region is.

        width, height  pixels; what lies outside of them is left out
        """
        from .bitmap import Bitmap

        mask, record = Record(), Region._copied(self._record.handle)._record
        handle = record.handle
        assign(handle, Width=width, Height=height)
        check(lib.Z_CreateMaskFromBitmapRgn(record.reference, mask.reference), lib.Z_CreateMaskFromBitmapRgn)
        mask.handle.ViewPerspective = View.TOP_LEFT
        return Bitmap._adopt(mask)

    def to_mask(self, width: int, height: int) -> numpy.ndarray[Any, Any]:
        """A new array of height rows and width columns of booleans, true where the region is; needs NumPy."""
        with self.to_bitmap(width, height) as bitmap:
            return bitmap.to_array().astype(bool)

    # ---- As a value

    def _content(self) -> Tuple[Tuple[int, int], bytes]:
        """Left and top, and the runs as bytes: equal for equal sets alone."""
        if self._key is None:
            region = self._region
            counts = [region.RowTable[i].Count for i in range(region.RowTableBytes // ctypes.sizeof(RegionRowEntry))]
            table = (ctypes.c_uint32 * len(counts))(*counts)
            rows = b"".join(bytes((ctypes.c_int32 * entry.Count).from_address(
                ctypes.addressof(region.Segments.contents) + entry.Offset))
                for entry in region.RowTable[: len(counts)] if entry.Count)
            self._key = (region.Top, len(counts)), bytes(table) + rows
        return self._key

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Region) and self._content() == other._content()

    def __hash__(self) -> int:
        return hash(self._content())

    def __reduce__(self) -> Tuple[Callable[..., Region], Tuple[Any, ...]]:
        (top, rows), content = self._content()
        return _restored, (top, rows, content)

    def __repr__(self) -> str:
        return f"<zkr13n.Region of {len(self)} pixels in {self.bounds}>" if self else "<zkr13n.Region, empty>"


def _carrier() -> Record:
    """A record without storage for a region that no bitmap's edges cut; it has an empty one."""
    record = Record()
    handle = record.handle
    check(lib.Z_InitBitmap(record.reference, 1, 1, 1), lib.Z_InitBitmap)
    handle.ViewPerspective = View.TOP_LEFT
    handle.Flags |= c.Z_FLAG_REGION_UNCLIPPED
    check(lib.Z_SetBitmapRgnRect(record.reference, None, RECT(), c.Z_RGN_SET), lib.Z_SetBitmapRgnRect)
    return record


def _points(points: Sequence[Point]) -> Any:
    return (POINT * max(1, len(points)))(*(point(*each) for each in points))


def _merge(handle: Any, region: Region, mode: int) -> None:
    """Merges a region into what a record has. The region of the system that is made on the way hangs on a copy: there are
    few of them on Windows, and the region itself may be in use by other threads."""
    platform, passing = ctypes.c_void_p(), Region._copied(region._record.handle)._record
    check(lib.Z_GetBitmapRgnHandle(passing.reference, None, platform), lib.Z_GetBitmapRgnHandle)
    assert platform.value is not None
    try:
        check(lib.Z_SetBitmapRgnHandle(handle, None, platform, mode), lib.Z_SetBitmapRgnHandle)
    finally:
        delete_object(platform.value)


def _restored(top: int, rows: int, content: bytes) -> Region:
    """A region of what its pickle holds."""
    counts = memoryview(content)[: 4 * rows].cast("I").tolist()
    ends = memoryview(content)[4 * rows:].cast("i").tolist()
    runs, at = [], 0
    for y, count in enumerate(counts, top):
        runs += [(y, ends[i], ends[i + 1]) for i in range(at, at + count, 2)]
        at += count
    return Region(runs)


class RegionAccess(BitmapBase):
    """The part of Bitmap that has a region."""

    __slots__ = ()

    @property
    def region(self) -> Optional[Region]:
        """The set of pixels that operations are kept to, None for all of them. It can be set, to None too; what lies outside
        the bitmap is left out. What is read is a copy: it does not follow the bitmap."""
        with Guard(self):
            handle = self._handle
            return Region._copied(handle) if handle.Region else None

    @region.setter
    def region(self, region: Optional[Region]) -> None:
        with Guard(self):
            handle = self._handle
            if region is None:
                check(lib.Z_FreeBitmapRgn(handle), lib.Z_FreeBitmapRgn)
            else:
                _merge(handle, region, c.Z_RGN_SET)

    @region.deleter
    def region(self) -> None:
        self.region = None

    def wand(self, x: int, y: int, tolerance: int = 0) -> Region:
        """The region of nearly one colour around a pixel: `Region.wand`."""
        return Region.wand(self, x, y, tolerance)
