"""The enumerations that methods take and properties give. Their values are those of the library."""

from __future__ import annotations

from enum import IntEnum

from . import _constants as c


class Order(IntEnum):
    """The order of a pixel's channels."""

    RGB = c.Z_ORDER_RGB
    BGR = c.Z_ORDER_BGR
    GRAY = c.Z_ORDER_GRAY


class Storage(IntEnum):
    """Where the pixels of a bitmap lie."""

    MEMORY = c.MemoryConventional  #: one block of memory; tiles or a file where thresholds do not allow that
    USER = c.MemoryUser  #: memory of the caller's, as `Bitmap.from_array(..., copy=False)` takes it
    TILED = c.MemoryTiled  #: tiles, from the tile size on
    DISK = c.MemoryDisk  #: a temporary file
    RUNS = c.MemoryCompressed  #: lengths of runs, at 1 bit
    STRIPS = c.MemorySuperCompressed  #: strips that are compressed without loss, at 1 and 24 bits


class View(IntEnum):
    """The corner of the picture where the first pixel of storage lies. Where left or right is named first, stored rows
    are columns of the picture."""

    TOP_LEFT = c.VIEW_TOP_LEFT
    TOP_RIGHT = c.VIEW_TOP_RIGHT
    BOTTOM_LEFT = c.VIEW_BOTTOM_LEFT
    BOTTOM_RIGHT = c.VIEW_BOTTOM_RIGHT
    RIGHT_TOP = c.VIEW_RIGHT_TOP
    LEFT_TOP = c.VIEW_LEFT_TOP
    RIGHT_BOTTOM = c.VIEW_RIGHT_BOTTOM
    LEFT_BOTTOM = c.VIEW_LEFT_BOTTOM


class Resize(IntEnum):
    """How a bitmap gets other dimensions."""

    NEAREST = 0  #: the nearest pixel
    KEEP_BLACK = c.SIZE_KEEP_BLACK  #: at 1 bit: black where enough black falls into it, so that strokes stay
    LINEAR = c.SIZE_LINEAR  #: linear where it grows, averages by area where it shrinks
    SPLINE = c.SIZE_CUBIC  #: natural cubic splines where it grows


class Rotate(IntEnum):
    """How the pixels of a rotated bitmap are found."""

    NEAREST = 0
    LINEAR = c.ROTATE_LINEAR  #: between the nearest pixel and its neighbours
    SPLINE = c.ROTATE_CUBIC  #: by splines through 4 x 4 pixels


class Dither(IntEnum):
    """How colours are reduced to those of a palette."""

    NONE = c.DitherNone  #: the nearest colour
    FLOYD_STEINBERG = c.DitherFloydSteinberg
    STUCKI = c.DitherStucki
    BURKES = c.DitherBurkes
    SIERRA = c.DitherSierra
    STEVENSON_ARCE = c.DitherStevensonArce
    JARVIS = c.DitherJarvis
    ORDERED = c.DitherOrdered  #: dispersed dots
    CLUSTERED = c.DitherClustered  #: clustered dots


class Gray(IntEnum):
    """What a palette or a bitmap is. Only NO is false."""

    NO = c.GRAY_NO
    NORMAL = c.GRAY_ORDEREDNORMAL  #: an even ramp, black first
    REVERSE = c.GRAY_ORDEREDREVERSE  #: an even ramp, white first
    NOT_ORDERED = c.GRAY_NOTORDERED  #: gray, but no even ramp


class Combine(IntEnum):
    """What becomes of a destination and a source. M is the largest value of a sample."""

    AND = c.COMBINE_OP_AND
    OR = c.COMBINE_OP_OR
    XOR = c.COMBINE_OP_XOR
    ADD = c.COMBINE_OP_ADD  #: at most M
    SUBTRACT = c.COMBINE_OP_SUB_SRC  #: destination - source, at least 0
    SUBTRACT_FROM = c.COMBINE_OP_SUB_DST  #: source - destination, at least 0
    MULTIPLY = c.COMBINE_OP_MUL  #: destination * source / M
    DIVIDE = c.COMBINE_OP_DIV_SRC  #: destination * M / source
    DIVIDE_INTO = c.COMBINE_OP_DIV_DST  #: source * M / destination
    AVERAGE = c.COMBINE_OP_AVG
    MIN = c.COMBINE_OP_MIN
    MAX = c.COMBINE_OP_MAX


class Operand(IntEnum):
    """What becomes of the source, the destination or the result of a combination, each by itself."""

    PLAIN = 0
    NOT = 1  #: inverted
    ZERO = 2  #: all bits 0
    ONES = 3  #: all bits 1


class Disposal(IntEnum):
    """What happens to a frame of an animation when the next one comes."""

    NONE = c.PLAYBACK_DISPOSE_NONE
    LEAVE = c.PLAYBACK_DISPOSE_LEAVE
    BACKGROUND = c.PLAYBACK_DISPOSE_BACKGROUND  #: its place gets the background of the canvas
    PREVIOUS = c.PLAYBACK_DISPOSE_PREVIOUS  #: its place gets back what was there before


class PolygonFill(IntEnum):
    """Which parts of a polygon that crosses itself are inside."""

    WINDING = c.Z_POLY_WINDING  #: those that the outline goes round
    ALTERNATE = c.Z_POLY_ALTERNATE  #: those that an odd number of edges separates from the outside


class CurveEnds(IntEnum):
    """The ends of a spline through points."""

    OPEN = c.Z_CURVE_OPEN  #: from the second point to the last but one
    CLOSED = c.Z_CURVE_CLOSED  #: through all points back to the first
    CLOSED_ON_LAST = c.Z_CURVE_CLOSED_ON_LAST  #: from the first point through all others to the last


class DibHeader(IntEnum):
    """The header of a device-independent bitmap."""

    INFO = c.Z_DIB_INFO  #: 40 bytes
    V4 = c.Z_DIB_V4  #: 108 bytes
    V5 = c.Z_DIB_V5  #: 124 bytes
