' Creates the raster object by its name and asks it for the width of a bitmap.
Option Explicit
Dim raster
Set raster = CreateObject("ZIRCRaster.ZIRCRaster")
raster.CreateBitmap 640, 480, 24
WScript.Echo raster.BitmapWidth
