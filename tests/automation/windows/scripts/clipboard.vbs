' The clipboard: bitmap and region in each form.
Dim form
raster.CreateBitmap 6, 4, 8
raster.Pixel(2, 1) = vbWhite
raster.SetRgnRect 1, 1, 3, 2, 1
Check "emptied", raster.Copy(0, 1), 0
other.EnableMethodErrors = False
Check "not ready", other.Paste(0, 16384), 20000
Check "nothing", other.Paste(0, 0), 20515
For Each form In Array(2, 4 + 8, 2 + 4 + 8)
    Check "copied", raster.Copy(0, 1 + 16 + form), 0
    Check "ready", other.Paste(0, 16384), 0
    Check "pasted", other.Paste(0, 0), 0
    Check "size", other.BitmapWidth & " " & other.BitmapHeight, "6 4"
    Check "pixels", other.Pixel(2, 1) & " " & other.Pixel(3, 1), &HFFFFFF & " 0"
    Check "region", other.GetRgnArea() & " " & other.RgnTop, "6 1"
Next
On Error Resume Next
raster.Copy 0, 32
CheckError "no such form", 20013, "Invalid parmameter passed"
raster.Copy 0, 0
CheckError "no form", 20013, "Invalid parmameter passed"
raster.Copy 0, 1
