' Selects what hangs together with the upper left pixel of a picture and is nearly of its colour, with a margin of two
' pixels, and puts picture and selection on the clipboard:
'
'     cscript wand.vbs PICTURE.BMP
Option Explicit
Const RGN_SET = 1, RGN_EXPAND = 1
Const COPY_EMPTY = 1, COPY_DIB = 2, COPY_RGN = 16

Dim raster
Set raster = CreateObject("ZIRCRaster.ZIRCRaster")
raster.SetPicture LoadPicture(WScript.Arguments(0))
raster.SetRgnMagicWand 0, 0, 16, RGN_SET
raster.ResizeRgn RGN_EXPAND, 2
raster.Copy 0, COPY_EMPTY + COPY_DIB + COPY_RGN
WScript.Echo raster.GetRgnArea() & " of " & raster.BitmapWidth * raster.BitmapHeight & " pixels"
