"""ZKR13N, a raster image kernel: bitmaps of 1 to 64 bits a pixel, and exact work on them.

    from zkr13n import Bitmap, Resize
    with Bitmap.from_pil(image) as bitmap:
        bitmap.resize(800, 600, method=Resize.SPLINE).quantize(64)

`Bitmap` is the picture, `Region` a set of its pixels, `Palette` the colours of its indices, `BitmapList` a document of
several, `Playback` an animation. `zkr13n.lib` has the functions of the library itself.
"""

from . import settings
from ._errors import (ArgumentError, BusyError, Error, FeatureError, LockedError, OutOfMemoryError, Stopped,
                      StorageError)
from ._library import LibraryNotFoundError, lib, version
from ._progress import Progress
from ._version import VERSION
from .bitmap import Bitmap
from .colours import BLACK, WHITE, Colour, ColourLike, gray, index
from .enums import (Combine, CurveEnds, DibHeader, Disposal, Dither, Gray, Operand, Order, PolygonFill, Resize, Rotate,
                    Storage, View)
from .lists import BitmapList
from .palette import Palette
from .playback import Playback
from .region import Region

__version__ = VERSION

__all__ = [
    "ArgumentError", "BLACK", "Bitmap", "BitmapList", "BusyError", "Colour", "ColourLike", "Combine", "CurveEnds",
    "DibHeader", "Disposal", "Dither", "Error", "FeatureError", "Gray", "LibraryNotFoundError", "LockedError", "Operand",
    "Order", "OutOfMemoryError", "Palette", "Playback", "PolygonFill", "Progress", "Region", "Resize", "Rotate", "Stopped",
    "Storage", "StorageError", "View", "WHITE", "gray", "index", "lib", "settings", "version",
]
