"""What moves pixels to other places: sizes, turns, slants, cuts, combinations, and painting. Methods that say so work on
the bitmap in place and return it; those that make a new bitmap leave this one as it is."""

from __future__ import annotations

from typing import Callable, Optional, Sequence, Tuple, TypeVar, Union

from . import _constants as c
from ._base import BitmapBase, Guard
from ._errors import SUCCESS, failure
from ._library import lib
from ._progress import Progress, run
from ._numbers import point, rectangle
from ._records import RECT, WarpPoints
from ._system import finish_drawing
from .colours import BLACK, ColourLike, value_of
from .enums import Combine, Operand, Resize, Rotate, View

Box = Tuple[int, int, int, int]  # left, top, right, bottom; pixels, the last two not included
Point = Tuple[int, int]


def hundredths(degrees: float) -> int:
    """Hundredths of a degree."""
    return round(degrees * 100)


def optional_rectangle(box: Optional[Box]) -> Optional[RECT]:
    return None if box is None else rectangle(*box)


G = TypeVar("G", bound="Geometry")


class Geometry(BitmapBase):
    """The part of Bitmap that moves pixels."""

    __slots__ = ()

    def resize(self: G, width: int, height: int = 0, *, method: Resize = Resize.NEAREST,
               progress: Optional[Progress] = None) -> G:
        """Gives the bitmap other dimensions, in place; returns it.

        width, height  pixels; one of them may be 0 and keeps the proportions then
        method         how; blends of up to 8 bits are dithered to the palette
        """
        self._change(lib.Z_SizeBitmap, width, height, method, progress=progress)
        return self

    def rotate(self: G, degrees: float, *, method: Rotate = Rotate.NEAREST, expand: bool = False,
               fill: ColourLike = BLACK, progress: Optional[Progress] = None) -> G:
        """Rotates the bitmap about its centre, in place; returns it.

        degrees  clockwise as the picture is seen, taken to hundredths; right angles are exact
        expand   whether the result holds the whole picture; else it keeps the size and corners are cut off
        fill     what lies outside the picture
        """
        flags = method | (c.ROTATE_RESIZE if expand else 0)
        self._change(lib.Z_RotateBitmap, hundredths(degrees), flags, value_of(fill), progress=progress)
        return self

    def shear(self: G, degrees: float, *, horizontal: bool = True, fill: ColourLike = BLACK,
              progress: Optional[Progress] = None) -> G:
        """Slides rows sideways, or columns up and down, by whole pixels, in place; returns the bitmap, which grows.

        degrees     between -89.99 and 89.99, positive ones move the top to the right
        horizontal  whether rows slide, else columns
        fill        the corners that come free
        """
        self._change(lib.Z_ShearBitmap, hundredths(degrees), int(horizontal), value_of(fill), progress=progress)
        return self

    def flip(self: G, *, progress: Optional[Progress] = None) -> G:
        """Turns the picture upside down, in place; returns the bitmap."""
        self._call(lib.Z_FlipBitmap, progress=progress)
        return self

    def mirror(self: G, *, progress: Optional[Progress] = None) -> G:
        """Exchanges left and right of the picture, in place; returns the bitmap."""
        self._call(lib.Z_ReverseBitmap, progress=progress)
        return self

    def with_view(self: G, view: View, *, progress: Optional[Progress] = None) -> G:
        """A new bitmap of the same picture whose rows and columns lie as another view says."""
        return self._make(lib.Z_IntChangeBitmapViewPerspective, View(view),
                          c.Z_DUP_DATA | c.Z_DUP_PALETTE | c.Z_DUP_REGION, progress=progress)

    def arrange(self: G, view: View = View.TOP_LEFT, *, progress: Optional[Progress] = None) -> G:
        """Moves the pixels so that they lie as another view says, in place; the picture stays. Returns the bitmap."""
        record = self._take()
        try:
            self._refuse_views(record)
            function = lib.Z_IntChangeBitmapViewPerspective
            code = run(function, (None, record.reference, View(view), 0), progress)
        finally:
            self._lock.release()
        if code != SUCCESS:
            raise failure(code, function)
        return self

    # ---- Cuts

    def crop(self: G, box: Box, *, progress: Optional[Progress] = None) -> G:
        """A new bitmap of a rectangle of the stored rows and columns: left, top, right, bottom in pixels, the last two not
        included. It may reach over the edges; what lies outside is zeros."""
        left, top, right, bottom = box
        return self._make(lib.Z_CopyBitmapRect, left, top, right - left, bottom - top, progress=progress)

    def trim(self: G, box: Box, *, progress: Optional[Progress] = None) -> G:
        """Cuts the bitmap to as much of a rectangle as lies in it, in place; returns it."""
        left, top, right, bottom = box
        self._change(lib.Z_TrimBitmap, left, top, right - left, bottom - top, progress=progress)
        return self

    def set_height(self: G, rows: int) -> G:
        """Adds zero rows at the end of the bitmap, or takes rows from there, in place; returns it. The region is cut with
        it."""
        self._change(lib.Z_ChangeBitmapHeight, rows)
        if self._handle.Region:
            self._call(lib.Z_OffsetBitmapRgn, 0, 0)
        return self

    # ---- Two bitmaps

    def warp(self: G, corners: Sequence[Point], source: BitmapBase, box: Optional[Box] = None, *, smooth: bool = True,
             progress: Optional[Progress] = None) -> G:
        """Draws a rectangle of another bitmap into a convex quadrilateral of this one, in place; returns this one.

        corners  where top left, top right, bottom right and bottom left of the source go, as (x, y) in pixels of this
                 bitmap as it is seen, inside it
        source   a bitmap of the same depth; up to 8 bits of the same palette
        box      left, top, right, bottom in the source, all of it unless told
        smooth   whether pixels blend the four samples around them, where the depth allows that
        """
        if len(corners) != 4:
            raise ValueError("a quadrilateral has four corners")
        left, top, right, bottom = box if box is not None else (0, 0, *source.size)
        points = WarpPoints(*(point(*corner) for corner in corners))
        flags = c.WARP_REQUIRED | (c.WARP_BILINEAR if smooth else 0)
        self._with(source, lib.Z_CombineBitmapWarp, (points,), (left, top, right - left, bottom - top, flags), progress)
        return self

    def combine(self: G, source: BitmapBase, operation: Combine, *, at: Point = (0, 0), box: Optional[Box] = None,
                this: Operand = Operand.PLAIN, that: Operand = Operand.PLAIN, result: Operand = Operand.PLAIN,
                progress: Optional[Progress] = None) -> G:
        """Combines a rectangle of the bitmap with one of another bitmap, in place; returns it. The regions of both restrict
        what is written.

        source     a bitmap of the same depth and order, which may be this one
        at         x and y of the rectangle in this bitmap as it is seen, pixels
        box        left, top, right, bottom of the rectangle in the source, all of it unless told
        this       what becomes of this bitmap's pixels before
        that       what becomes of the source's pixels before
        result     what becomes of the result
        """
        left, top, right, bottom = box if box is not None else (0, 0, *source.size)
        flags = that | this << 4 | operation | result << 12
        self._with(source, lib.Z_CombineBitmap, (*at, right - left, bottom - top), (left, top, flags), progress)
        return self

    def underlay(self: G, texture: BitmapBase, *, stretch: bool = False) -> G:
        """Lightens and darkens the bitmap by the gray of a texture, in place; returns it.

        stretch  whether the texture is brought to the bitmap's size, else it repeats
        """
        self._with(texture, lib.Z_UnderlayBitmap, (), (c.UNDERLAY_STRETCH if stretch else c.UNDERLAY_TILE,), None)
        return self

    def _with(self, other: BitmapBase, function: object, before: Tuple[object, ...], after: Tuple[object, ...],
              progress: Optional[Progress]) -> None:
        """Calls a function on this bitmap and another one, with arguments before and after the other."""
        with Guard(self, other):
            assert self._record is not None and other._record is not None
            code = run(function, (self._record.reference, *before, other._record.reference, *after), progress)
        if code != SUCCESS:
            raise failure(code, function)

    # ---- Painting

    def paint(self, target: Union[BitmapBase, int], *, to: Optional[Box] = None, source: Optional[Box] = None,
              clip: Optional[Box] = None, inside_region: bool = False, operation: int = 0x00CC0020,
              progress: Optional[Progress] = None) -> None:
        """Paints the bitmap, or a part of it, as a device shows it: scaled, dithered, with contrast, intensity, gamma.

        target         what is painted on: a bitmap, which is brought to the form of a device-independent bitmap in memory,
                       or a device context (HDC) as a number
        to             left, top, right, bottom on the target, pixels: where the source goes, which sets the scale
        source         left, top, right, bottom in the bitmap, all of it unless told
        clip           what of the target is painted on, all of it unless told
        inside_region  whether only the region of the bitmap is painted
        operation      a ternary raster operation; the usual one replaces pixels
        """
        function = lib.Z_PaintRgnDC if inside_region else lib.Z_PaintDC
        if isinstance(target, BitmapBase):
            to = to if to is not None else (0, 0, *target.size)
        elif to is None:
            raise ValueError("a device context has to be told where on it to paint")

        def on(context: int) -> int:
            assert self._record is not None
            arguments = (context, self._record.reference, optional_rectangle(source), None, optional_rectangle(to),
                         optional_rectangle(clip), operation)
            return int(run(function, arguments, progress))

        if isinstance(target, BitmapBase):
            code = self._on_pixels_of(target, on)
        else:
            with Guard(self):
                code = on(target)
        if code != SUCCESS:
            raise failure(code, function)

    def _on_pixels_of(self, target: BitmapBase, paint: Callable[[int], int]) -> int:
        """Calls what paints with a device context on the pixels of another bitmap."""
        if target is self:
            raise ValueError("a bitmap is not painted on itself")
        with Guard(self, target):
            assert target._record is not None
            self._refuse_views(target._record)
            context = lib.Z_CreateZircDC(target._record.reference)
            if context is None:
                raise failure(c.Z_ERROR_MEMORY, lib.Z_CreateZircDC)
            try:
                return paint(context)
            finally:
                finish_drawing()
                lib.Z_DeleteZircDC(context)

    @property
    def intensity(self) -> int:
        """How much lighter the bitmap is painted, thousandths: -1000 to 1000, 0 changes nothing."""
        return int(self._handle.PaintIntensity)

    @intensity.setter
    def intensity(self, thousandths: int) -> None:
        self._call(lib.Z_SetPaintIntensity, thousandths)

    @property
    def contrast(self) -> int:
        """How much more contrast the bitmap is painted with, thousandths: -1000 to 1000, 0 changes nothing."""
        return int(self._handle.PaintContrast)

    @contrast.setter
    def contrast(self, thousandths: int) -> None:
        self._call(lib.Z_SetPaintContrast, thousandths)

    @property
    def gamma(self) -> float:
        """The gamma that the bitmap is painted with, from 0.01; 1.0 changes nothing."""
        return float(self._handle.PaintGamma / 100)

    @gamma.setter
    def gamma(self, gamma: float) -> None:
        self._call(lib.Z_SetPaintGamma, round(gamma * 100))
