' The magic wand: what hangs together around a place and is nearly of its colour.
Dim x, segments
raster.CreateBitmap 8, 3, 24
For x = 0 To 7
    raster.Pixel(x, 1) = 10 * x ' reds
Next
raster.SetRgnMagicWand 4, 1, 9, 1
Check "a pixel without neighbours of its colour is none", raster.GetRgnArea(), 0
raster.SetRgnMagicWand 4, 1, 10, 1
Check "with its neighbours", raster.RgnLeft & " " & raster.RgnTop & " " & raster.RgnWidth & " " & raster.RgnHeight, "3 1 3 1"
raster.SetRgnMagicWand 0, 0, 0, 1
Check "the ground", raster.GetRgnArea(), 17
raster.SetRgnMagicWand 7, 1, 10, 4
Check "and two more", raster.GetRgnArea(), 19
segments = raster.GetBitmapClipSegments(1)
Check "an array of floats", VarType(segments), 8192 + 4
Check "an array of none", VarType(raster.GetBitmapClipSegments(9)), 8192 + 4
On Error Resume Next
raster.SetRgnMagicWand 8, 1, 0, 1
CheckError "outside", 20013, "Invalid parmameter passed"
Check "the region stays", raster.GetRgnArea(), 19
