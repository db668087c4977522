"""Settings of the calling thread: where temporary files go, and from what size on bitmaps lie in tiles or files."""

from __future__ import annotations

import ctypes
import os
from typing import NamedTuple, Optional, Union

from . import _constants as c
from ._errors import check
from ._library import lib


class Thresholds(NamedTuple):
    """For the storage of new bitmaps. Numbers from 0 are absolute, negative ones percentages of what is named."""

    memory_reserve: int  #: bytes to leave free; percent of memory and page file
    conventional_size: int  #: bytes of the largest bitmap in one block; percent of what is free of both
    tile_size: int  #: bytes of a tile, and the size up to which a bitmap always lies in one block; not negative
    conventional_tiles: int  #: tiles in memory at most; percent of all tiles
    mapped_tiles: int  #: tiles in files that are mapped at one time; percent of all tiles


def thresholds() -> Thresholds:
    """The thresholds of the calling thread."""
    values = [ctypes.c_int32() for _ in Thresholds._fields]
    lib.Z_GetMemoryThresholds(*values)
    return Thresholds(*(value.value for value in values))


def set_thresholds(memory_reserve: Optional[int] = None, conventional_size: Optional[int] = None,
                   tile_size: Optional[int] = None, conventional_tiles: Optional[int] = None,
                   mapped_tiles: Optional[int] = None) -> Thresholds:
    """Sets those thresholds of the calling thread that are told, and gives those that were there before, for
    `set_thresholds(*before)`."""
    before = thresholds()
    wanted = (memory_reserve, conventional_size, tile_size, conventional_tiles, mapped_tiles)
    bits = (c.Z_THRESHOLD_MEMORY_RESERVE, c.Z_THRESHOLD_MAX_CONVENTIONAL_SIZE, c.Z_THRESHOLD_TILE_SIZE,
            c.Z_THRESHOLD_CONVENTIONAL_TILES, c.Z_THRESHOLD_MAPPED_TILES)
    flags = sum(bit for bit, value in zip(bits, wanted) if value is not None)
    check(lib.Z_SetMemoryThresholds(*(value or 0 for value in wanted), flags), lib.Z_SetMemoryThresholds)
    return before


def temporary_folder() -> str:
    """The folder for the temporary files of bitmaps of the calling thread."""
    buffer = ctypes.create_string_buffer(260)
    check(lib.Z_GetTempDirectory(buffer, len(buffer)), lib.Z_GetTempDirectory)
    return os.fsdecode(buffer.value)


def set_temporary_folder(path: Union[str, os.PathLike[str]]) -> None:
    """Sets the folder for the temporary files of bitmaps of the calling thread; it exists."""
    check(lib.Z_SetTempDirectory(os.fsencode(path)), lib.Z_SetTempDirectory)
