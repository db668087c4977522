"""Bitmap: a picture of 1 to 64 bits a pixel, and all that can be done with it."""

from __future__ import annotations

from typing import Any, Dict, Optional, Tuple

from . import _constants as c
from ._base import Self
from ._exchange import Exchange
from ._library import lib
from ._progress import Progress
from ._strips import pack, unpack
from .colours import Colour, ColourLike, value_of
from .enums import Disposal, Storage
from .region import RegionAccess


class Bitmap(Exchange, RegionAccess):
    """A picture of 1 to 64 bits a pixel.

    Pixels are counted from 0, x along rows and y down them; boxes are (left, top, right, bottom), the last two not included.
    Methods that change the bitmap in place return it, so that they can be written in a row; those that make a new bitmap
    say so. Long ones take `progress`, a callable that gets percentages: a false value other than None stops the work, an
    exception does too and comes through. A bitmap is used by one thread at a time; a second one gets a BusyError.

    >>> with Bitmap(640, 480, 24) as bitmap:
    ...     bitmap.fill((255, 128, 0)).resize(320, method=Resize.LINEAR).rotate(30, expand=True)
    <zkr13n.Bitmap 396x366, 24 bits RGB, MEMORY>
    """

    __slots__ = ()

    def store(self: Self, storage: Storage, *, progress: Optional[Progress] = None) -> Self:
        """Moves the pixels into another kind of storage, in place; returns the bitmap. RUNS takes 1 bit, STRIPS 1 and 24."""
        self._change(lib.Z_SetBitmapMemoryInfo, storage, 0, 0, 0, 0, 0, c.Z_MEMORY_INFO_TYPE, progress=progress)
        return self

    # ---- As a frame of an animation

    @property
    def position(self) -> Tuple[int, int]:
        """Left and top of a frame on its canvas, pixels; can be set."""
        handle = self._handle
        return handle.PlaybackLeft, handle.PlaybackTop

    @position.setter
    def position(self, place: Tuple[int, int]) -> None:
        left, top = place
        self._set(PlaybackLeft=left, PlaybackTop=top)

    @property
    def delay(self) -> int:
        """How long a frame stays, milliseconds; can be set."""
        return int(self._handle.PlaybackDelay)

    @delay.setter
    def delay(self, milliseconds: int) -> None:
        self._set(PlaybackDelay=milliseconds)

    @property
    def disposal(self) -> Disposal:
        """What happens to a frame when the next one comes; can be set."""
        return Disposal(self._handle.DisposalMethod)

    @disposal.setter
    def disposal(self, disposal: Disposal) -> None:
        self._set(DisposalMethod=Disposal(disposal))

    @property
    def background(self) -> Colour:
        """The colour of a frame's canvas; can be set."""
        return Colour.from_value(self._handle.PlaybackBackColor)

    @background.setter
    def background(self, colour: ColourLike) -> None:
        self._set(PlaybackBackColor=value_of(colour))

    @property
    def transparent(self) -> Optional[Colour]:
        """The colour of a frame that lets the canvas through, None for none; can be set."""
        handle = self._handle
        shown = handle.Flags & c.Z_FLAG_PLAYBACK_TRANSPARENCY
        return Colour.from_value(handle.TransparentColor) if shown else None

    @transparent.setter
    def transparent(self, colour: Optional[ColourLike]) -> None:
        if colour is None:
            self._set_flag(c.Z_FLAG_PLAYBACK_TRANSPARENCY, False)
        else:
            self._set_flag(c.Z_FLAG_PLAYBACK_TRANSPARENCY, True, TransparentColor=value_of(colour))

    # ---- Pickles

    def __reduce_ex__(self, protocol: Any) -> Tuple[Any, ...]:
        return _restored, (type(self), pack(self, protocol))


def _restored(kind: Any, state: Dict[str, Any]) -> Any:
    return kind._adopt(unpack(state))
