"""Playback: the frames of an animation composed on a canvas."""

from __future__ import annotations

import ctypes
from typing import Any, Iterable, Iterator, Optional, Tuple

from . import _constants as c
from ._base import Guard
from ._errors import check
from ._library import lib
from ._records import RECT
from .bitmap import Bitmap
from .colours import Colour, ColourLike, value_of


class Playback(Iterator[Bitmap]):
    """An iterator of the composed frames of an animation: for each frame a new bitmap of the whole canvas as it then looks,
    whose `delay` is that of the frame. Nothing is waited for.

    What makes a bitmap a frame are its `position`, `delay`, `disposal` and `transparent` colour.

    >>> delays = [picture.delay for picture in Playback(frames)]
    """

    def __init__(self, frames: Iterable[Bitmap], *, size: Optional[Tuple[int, int]] = None,
                 background: Optional[ColourLike] = None) -> None:
        """Begins before the first frame.

        frames      bitmaps, which stay as they are and have to stay open
        size        width and height of the canvas, pixels; unless told, so that it holds all frames
        background  the colour of the canvas, that of the first frame unless told
        """
        self._frames = list(frames)
        if size is None:
            size = (max((x + frame.width for frame in self._frames for x, _ in [frame.position]), default=1),
                    max((y + frame.height for frame in self._frames for _, y in [frame.position]), default=1))
        self.canvas: Bitmap = Bitmap(*size, 24)  #: what frames are drawn on
        if background is not None:
            self.canvas.background = Colour.from_value(value_of(background))
        elif self._frames:
            first = self._frames[0]
            with Guard(first):
                self.canvas._handle.PlaybackBackColor = lib.Z_TranslateBitmapColor(
                    self.canvas._handle, first._handle, first._handle.PlaybackBackColor)
        self._playback: Optional[int] = None
        self._ended = False
        self._begin()

    def _begin(self) -> None:
        frames = ctypes.c_void_p()
        check(lib.Z_CreateBitmapList(frames), lib.Z_CreateBitmapList)
        playback = ctypes.c_void_p()
        try:
            with Guard(*self._frames):
                for number, frame in enumerate(self._frames):
                    check(lib.Z_InsertBitmapListItem(frames, number, frame._handle), lib.Z_InsertBitmapListItem)
            check(lib.Z_CreatePlayback(playback, self.canvas._handle, frames), lib.Z_CreatePlayback)
        except BaseException:
            _forget(frames, len(self._frames))
            raise
        self._list, self._playback = frames.value, playback.value
        self._target = self.canvas._record  # which stays as long as the playback, whoever closes the canvas

    def __next__(self) -> Bitmap:
        """The next composed frame."""
        state = ctypes.c_uint32()
        if self._playback is None or self._ended:
            raise StopIteration
        with Guard(self.canvas, *self._frames):
            if self._playback is None:
                raise StopIteration
            # The frames are the caller's, who may have changed them.
            for number, frame in enumerate(self._frames):
                check(lib.Z_SetBitmapListItem(self._list, number, frame._handle), lib.Z_SetBitmapListItem)
            try:
                while state.value != c.PlaybackRendered:
                    lib.Z_CancelPlaybackWait(self._playback)
                    check(lib.Z_ProcessPlayback(self._playback, state), lib.Z_ProcessPlayback)
                    if state.value == c.PlaybackEnd:
                        self._ended = True
                        raise StopIteration
            finally:
                for number, frame in enumerate(self._frames):
                    lib.Z_GetBitmapListItem(self._list, number, frame._handle)
        made = self.canvas.copy()
        made.delay = self._frames[self.index].delay
        return made

    def rewind(self) -> Playback:
        """Goes back before the first frame, on a blank canvas; returns the playback."""
        self._ask(lib.Z_SetPlaybackIndex, -1)
        self._ended = False
        return self

    @property
    def index(self) -> int:
        """The number of the current frame, -1 before the first one."""
        index = ctypes.c_int32()
        self._ask(lib.Z_GetPlaybackIndex, index)
        return index.value

    def changed(self) -> Tuple[int, int, int, int]:
        """Left, top, right, bottom of what has changed on the canvas since this was last asked, pixels."""
        box = RECT()
        self._ask(lib.Z_GetPlaybackUpdateRect, box, 1)
        return box.left, box.top, box.right, box.bottom

    def _ask(self, function: Any, *arguments: Any) -> None:
        if self._playback is None:
            raise ValueError("the playback is closed")
        with Guard(self.canvas):
            check(function(self._playback, *arguments), function)

    def close(self) -> None:
        """Ends the playback; the frames stay the caller's."""
        if self._playback is not None:
            with Guard(*([] if self.canvas.closed else [self.canvas])):
                playback, self._playback = self._playback, None
                frames = ctypes.c_void_p()
                lib.Z_DestroyPlayback(playback, frames)
                _forget(frames, len(self._frames))
            self.canvas.close()

    def __enter__(self) -> Playback:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_playback", None) is not None:
            self.close()

    def __repr__(self) -> str:
        state = "closed" if self._playback is None else f"at {self.index}"
        return f"<zkr13n.Playback of {len(self._frames)} frames, {state}>"


def _forget(frames: Any, count: int, remove: Any = lib.Z_RemoveBitmapListItem,
            destroy: Any = lib.Z_DestroyBitmapList) -> None:
    """Releases a list of the library without what its records refer to."""
    for _ in range(count):
        remove(frames, 0, None)
    destroy(frames)
