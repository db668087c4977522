"""Exchange with Pillow and with device-independent bitmaps."""

from __future__ import annotations

from typing import Any, Optional, Type, TypeVar

from ._arrays import ArrayAccess
from ._base import Record
from ._colour_work import ColourWork
from ._errors import SUCCESS, failure
from ._geometry import Geometry
from ._library import lib
from ._progress import Progress, run
from ._system import free_block, new_block, take_block
from .colours import BLACK, WHITE
from .enums import DibHeader, Gray, Order, Storage, View
from .palette import Palette


E = TypeVar("E", bound="Exchange")


class Exchange(ArrayAccess, ColourWork, Geometry):
    """The part of Bitmap that other programs' pictures pass through."""

    __slots__ = ()

    @classmethod
    def from_pil(cls: Type[E], image: Any, *, storage: Storage = Storage.MEMORY) -> E:
        """A bitmap of an image of Pillow: of the modes 1, L, P, RGB, RGBA and I;16 as they are, of others as RGB. Its dots
        per inch go along."""
        mode = image.mode
        if mode not in ("1", "L", "P", "RGB", "RGBA", "I;16"):
            image, mode = image.convert("RGB"), "RGB"
        bits = {"1": 1, "L": 8, "P": 8, "RGB": 24, "RGBA": 32, "I;16": 16}[mode]
        palette = None
        if mode == "P":
            colours = image.getpalette()
            palette = Palette([tuple(colours[i:i + 3]) for i in range(0, min(len(colours), 768), 3)])
        order = Order.GRAY if mode in ("L", "I;16") else Order.RGB
        width, height = image.size
        made = cls(width, height, bits, order=order, palette=palette, storage=storage)
        made._write_rows(memoryview(image.tobytes()))
        dots = image.info.get("dpi")
        if dots:
            made.resolution = round(dots[0]), round(dots[1])
        return made

    def to_pil(self) -> Any:
        """An image of Pillow of the picture as it is seen: of the modes 1, L, P, RGB, RGBA, or I;16 for gray of 12 and 16
        bits, whose stored values it gets. Of 48 and 64 bits the upper bytes of channels remain."""
        from PIL import Image

        if self.view != View.TOP_LEFT:
            return self.with_view(View.TOP_LEFT).to_pil()
        bits, order = self.bits, self.order
        if bits == 12 or (bits == 16 and order == Order.GRAY):
            data = self.tobytes() if bits == 16 else self._plain(12, order).tobytes()
            return self._dots(Image.frombytes("I;16", self.size, data))
        if bits == 16 or bits > 32:
            return self.converted(32 if bits == 64 else 24).to_pil()
        if bits >= 24:
            raw = ("BGR" if order == Order.BGR else "RGB") + ("A" if bits == 32 else "")
            return self._dots(Image.frombytes("RGBA" if bits == 32 else "RGB", self.size, self.tobytes(), "raw", raw))
        palette = self.palette or Palette.gray(bits)
        if bits == 1 and list(palette) in ([BLACK, WHITE], [WHITE, BLACK]):
            raw = "1" if palette[0] == BLACK else "1;I"
            return self._dots(Image.frombytes("1", self.size, self.tobytes(), "raw", raw))
        data = self.tobytes() if bits == 8 else self._plain(bits, order).tobytes()
        if bits == 8 and self.grayness == Gray.NORMAL and len(palette) == 256:
            return self._dots(Image.frombytes("L", self.size, data))
        image = Image.frombytes("P", self.size, data)
        image.putpalette(bytes(channel for colour in palette for channel in colour))
        return self._dots(image)

    def _dots(self, image: Any) -> Any:
        image.info["dpi"] = self.resolution
        return image

    def to_dib(self, header: DibHeader = DibHeader.INFO, *, progress: Optional[Progress] = None) -> bytes:
        """A packed device-independent bitmap: header, colours, and the rows from the lowest one up. What it cannot hold is
        brought to a depth that it can."""
        record = self._take()
        try:
            block = run(lib.Z_ConvertToDIB2, (record.reference, header), progress)
        finally:
            self._lock.release()
        if block is None:
            raise failure(-1, lib.Z_ConvertToDIB2)
        return take_block(block)

    @classmethod
    def from_dib(cls: Type[E], data: bytes) -> E:
        """A bitmap of a packed device-independent bitmap, with its first row on top, whichever row comes first there."""
        window, block = Record(), new_block(bytes(data))
        code = lib.Z_ChangeFromDIB(window.reference, block)
        if code != SUCCESS:
            free_block(block)
            raise failure(code, lib.Z_ChangeFromDIB)
        # In memory of the library's own, where arrays can look at it.
        made: E = cls._adopt(window)._make(lib.Z_CopyBitmap2, Storage.MEMORY)
        made.arrange(View.TOP_LEFT)
        return made
