"""The records that cross the interface, and the types of the functions that the library calls.

Made by generate.py from the public headers; not to be edited."""

import ctypes
import sys
from ctypes import POINTER, c_char, c_double, c_int32, c_size_t, c_ssize_t, c_uint16, c_uint32, c_uint8, c_void_p

# Their calling convention is that of the exported functions.
if sys.platform == "win32":
    CALLBACK = ctypes.WINFUNCTYPE
else:
    CALLBACK = ctypes.CFUNCTYPE



class RGBQUAD(ctypes.Structure):
    _fields_ = [
        ("rgbBlue", c_uint8),
        ("rgbGreen", c_uint8),
        ("rgbRed", c_uint8),
        ("rgbReserved", c_uint8),
    ]


class POINT(ctypes.Structure):
    _fields_ = [
        ("x", c_int32),
        ("y", c_int32),
    ]


class RECT(ctypes.Structure):
    _fields_ = [
        ("left", c_int32),
        ("top", c_int32),
        ("right", c_int32),
        ("bottom", c_int32),
    ]


class BITMAPINFOHEADER(ctypes.Structure):
    _fields_ = [
        ("biSize", c_uint32),
        ("biWidth", c_int32),
        ("biHeight", c_int32),
        ("biPlanes", c_uint16),
        ("biBitCount", c_uint16),
        ("biCompression", c_uint32),
        ("biSizeImage", c_uint32),
        ("biXPelsPerMeter", c_int32),
        ("biYPelsPerMeter", c_int32),
        ("biClrUsed", c_uint32),
        ("biClrImportant", c_uint32),
    ]


class VersionRecord(ctypes.Structure):
    _fields_ = [
        ("Product", c_char * 60),
        ("ProductLevel", c_int32),
        ("VersionMajor", c_int32),
        ("VersionMinor", c_int32),
        ("Date", c_char * 16),
        ("Time", c_char * 16),
    ]


class BitmapHandle(ctypes.Structure):
    _fields_ = [
        ("StorageHandle", c_void_p),
        ("Addr", c_void_p),
        ("Width", c_int32),
        ("Height", c_int32),
        ("BitsPerPixel", c_int32),
        ("BytesPerLine", c_uint32),
        ("CurrentRowOffset", c_size_t),
        ("CurrentRow", c_uint32),
        ("Flags", c_uint32),
        ("ColorsUsed", c_uint32),
        ("Palette", c_void_p),
        ("ViewPerspective", c_int32),
        ("Order", c_int32),
        ("Size", c_size_t),
        ("DitherData", c_void_p),
        ("DitheringMethod", c_int32),
        ("Region", c_void_p),
        ("XResolution", c_int32),
        ("YResolution", c_int32),
        ("PlaybackLeft", c_int32),
        ("PlaybackTop", c_int32),
        ("PlaybackDelay", c_int32),
        ("PlaybackBackColor", c_uint32),
        ("TransparentColor", c_uint32),
        ("DisposalMethod", c_int32),
        ("LowBit", c_int32),
        ("HighBit", c_int32),
        ("LevelLUT", POINTER(RGBQUAD)),
        ("LevelLUTLength", c_uint32),
        ("AlignOffset", c_uint32),
        ("MinVal", c_int32),
        ("MaxVal", c_int32),
        ("LevelLowBit", c_int32),
        ("LevelHighBit", c_int32),
        ("PaintGamma", c_int32),
        ("PaintContrast", c_int32),
        ("PaintIntensity", c_int32),
        ("PaintLUT", POINTER(c_uint8)),
        ("Reserved", c_uint32),
    ]


class RegionXform(ctypes.Structure):
    _fields_ = [
        ("ViewPerspective", c_int32),
        ("XNumerator", c_int32),
        ("XDenominator", c_int32),
        ("YNumerator", c_int32),
        ("YDenominator", c_int32),
        ("XOffset", c_int32),
        ("YOffset", c_int32),
    ]


class RegionRowEntry(ctypes.Structure):
    _fields_ = [
        ("Count", c_uint32),
        ("Offset", c_uint32),
    ]


class RegionHandle(ctypes.Structure):
    _fields_ = [
        ("PlatformRegion", c_void_p),
        ("PlatformXform", RegionXform),
        ("PlatformView", c_int32),
        ("MaskBitmap", c_void_p),
        ("MaskXform", RegionXform),
        ("MaskView", c_int32),
        ("Left", c_int32),
        ("Top", c_int32),
        ("Right", c_int32),
        ("Bottom", c_int32),
        ("RowTableBytes", c_uint32),
        ("RowTable", POINTER(RegionRowEntry)),
        ("SegmentBytes", c_uint32),
        ("Segments", POINTER(c_int32)),
    ]


class Curve(ctypes.Structure):
    _pack_ = 1
    _fields_ = [
        ("StructSize", c_uint32),
        ("CurveType", c_uint32),
        ("PointCount", c_int32),
        ("Points", POINTER(POINT)),
        ("FillMode", c_uint32),
        ("Tension", c_double),
        ("Close", c_uint32),
        ("Reserved", c_uint32),
    ]


class WarpPoints(ctypes.Structure):
    _fields_ = [
        ("TopLeft", POINT),
        ("TopRight", POINT),
        ("BottomRight", POINT),
        ("BottomLeft", POINT),
    ]


class SurfaceDescription(ctypes.Structure):
    _fields_ = [
        ("StructSize", c_uint32),
        ("Width", c_int32),
        ("Height", c_int32),
        ("BitsPerPixel", c_int32),
        ("Pitch", c_int32),
        ("TopDown", c_int32),
        ("Bits", c_void_p),
        ("Colors", POINTER(RGBQUAD)),
        ("ColorCount", c_int32),
        ("StaticColors", c_int32),
    ]


StatusCallback = CALLBACK(c_int32, c_int32, c_ssize_t)
SubstituteFontCallback = CALLBACK(None)
ColorResCallback = CALLBACK(c_int32, POINTER(BitmapHandle), c_void_p, c_int32, c_ssize_t)
ResizeReadRow = CALLBACK(c_int32, POINTER(BitmapHandle), c_void_p, c_int32, c_int32, c_uint32, c_void_p)
RasterCallback = CALLBACK(None, c_int32, c_ssize_t, c_ssize_t)
FilterLoadBuffer = CALLBACK(c_int32, c_void_p, c_uint32, c_void_p, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32)
FilterSaveBuffer = CALLBACK(c_int32, c_void_p, POINTER(BITMAPINFOHEADER), c_void_p, POINTER(c_uint32), c_int32, c_int32,
    c_int32, c_int32, c_int32)
