"""What is asked of the operating system under other names on Windows: its objects and blocks of global memory."""

from __future__ import annotations

import ctypes
import sys
from typing import Any, List

from . import _constants as c
from ._errors import failure
from ._library import lib
from ._records import RECT

if sys.platform == "win32":
    _gdi = ctypes.WinDLL("gdi32")
    _kernel = ctypes.WinDLL("kernel32")
    _GMEM_MOVEABLE = 2
    for _function in (_kernel.GlobalAlloc, _kernel.GlobalLock):
        _function.restype = ctypes.c_void_p
    _gdi.DeleteObject.argtypes = [ctypes.c_void_p]
    _kernel.GlobalAlloc.argtypes = [ctypes.c_uint32, ctypes.c_size_t]
    _kernel.GlobalSize.restype = ctypes.c_size_t
    for _function in (_kernel.GlobalLock, _kernel.GlobalUnlock, _kernel.GlobalSize, _kernel.GlobalFree):
        _function.argtypes = [ctypes.c_void_p]

    def delete_object(handle: int) -> None:
        """Deletes a palette or region of the system."""
        _gdi.DeleteObject(handle)

    class _RegionData(ctypes.Structure):
        _fields_ = [("Size", ctypes.c_uint32), ("Type", ctypes.c_uint32), ("Count", ctypes.c_uint32),
                    ("Bytes", ctypes.c_uint32), ("Bounds", RECT)]

    _gdi.ExtCreateRegion.restype = ctypes.c_void_p
    _gdi.ExtCreateRegion.argtypes = [ctypes.c_void_p, ctypes.c_uint32, ctypes.c_void_p]

    def region_of(rectangles: List[RECT]) -> int:
        """The system's region of some rectangles."""
        size = ctypes.sizeof(RECT) * len(rectangles)
        bounds = RECT(min(r.left for r in rectangles), min(r.top for r in rectangles),
                      max(r.right for r in rectangles), max(r.bottom for r in rectangles))
        head = _RegionData(ctypes.sizeof(_RegionData), 1, len(rectangles), size, bounds)
        data = bytes(head) + bytes((RECT * len(rectangles))(*rectangles))
        made: Any = _gdi.ExtCreateRegion(None, len(data), data)
        if not made:
            raise failure(c.Z_ERROR_MEMORY, _gdi.ExtCreateRegion)
        return int(made)

    def finish_drawing() -> None:
        """Waits until what was drawn stands in the pixels."""
        _gdi.GdiFlush()

    def new_block(data: bytes) -> int:
        """A block of global memory with some bytes."""
        block: Any = _kernel.GlobalAlloc(_GMEM_MOVEABLE, len(data))
        if not block:
            raise failure(c.Z_ERROR_MEMORY, _kernel.GlobalAlloc)
        ctypes.memmove(_kernel.GlobalLock(block), data, len(data))
        _kernel.GlobalUnlock(block)
        return int(block)

    def take_block(block: int) -> bytes:
        """The bytes of a block of global memory, which is freed."""
        data = ctypes.string_at(_kernel.GlobalLock(block), _kernel.GlobalSize(block))
        _kernel.GlobalUnlock(block)
        free_block(block)
        return data

    def free_block(block: int) -> None:
        _kernel.GlobalFree(block)

else:

    def delete_object(handle: int) -> None:
        """Deletes a palette or region of the system."""
        lib.Z_DeleteObject(handle)

    def region_of(rectangles: List[RECT]) -> int:
        """The system's region of some rectangles."""
        made = ctypes.c_void_p()
        code = lib.Z_CreatePlatformRegion((RECT * len(rectangles))(*rectangles), len(rectangles), made)
        if code != c.Z_SUCCESS:
            raise failure(code, lib.Z_CreatePlatformRegion)
        assert made.value is not None
        return made.value

    def finish_drawing() -> None:
        """Waits until what was drawn stands in the pixels."""

    def new_block(data: bytes) -> int:
        """A block of global memory with some bytes."""
        block, place = ctypes.c_void_p(), ctypes.c_void_p()
        code = lib.Z_AllocGlobalBlock(len(data), block)
        if code != c.Z_SUCCESS:
            raise failure(code, lib.Z_AllocGlobalBlock)
        assert block.value is not None
        if data:
            lib.Z_LockGlobalBlock(block, place)
            ctypes.memmove(place, data, len(data))
            lib.Z_UnlockGlobalBlock(block)
        return block.value

    def take_block(block: int) -> bytes:
        """The bytes of a block of global memory, which is freed."""
        place, size = ctypes.c_void_p(), ctypes.c_size_t()
        lib.Z_GetGlobalBlockSize(block, size)
        lib.Z_LockGlobalBlock(block, place)
        data = ctypes.string_at(place, size.value)
        free_block(block)
        return data

    def free_block(block: int) -> None:
        lib.Z_FreeGlobalBlock(block)
