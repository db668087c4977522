' Bitmaps as handles from object to object: copied, or taken over.
Dim same, factory, handle
raster.CreateBitmap 5, 2, 24
raster.Pixel(3, 1) = vbRed
handle = raster.Bitmap
Check "the same handle", raster.Bitmap, handle
other.Bitmap = handle
Check "copied", other.Pixel(3, 1) & " " & raster.Pixel(3, 1), vbRed & " " & vbRed
other.Pixel(3, 1) = 0
Check "a copy of its own", raster.Pixel(3, 1), vbRed
other.RefBitmap = True
other.Bitmap = handle
Check "taken over", other.Pixel(3, 1), vbRed
Check "the source has nothing", raster.Bitmap & " " & raster.BitmapListCount, "0 0"
other.Bitmap = other.Bitmap ' which changes nothing
Check "its own", other.Pixel(3, 1), vbRed

Check "the same context", other.GetBitmapDC() & "", other.GetBitmapDC() & ""
Check "no handle meanwhile", other.Bitmap, 0
other.ReleaseBitmapDC
Check "still none", other.Bitmap, 0
other.ReleaseBitmapDC
Check "a handle again", other.Bitmap & "" <> "0", True

Set same = other.GetInterfacePointer()
same.Pixel(0, 0) = vbGreen
Check "the same object", other.Pixel(0, 0), vbGreen
Set other = Nothing
Check "lives on", same.Pixel(0, 0), vbGreen
same.Bitmap = 0
Check "emptied", same.BitmapListCount, 0

' The factory makes objects of all classes.
Set factory = CreateObject("ZIRCRasterFactory.ZIRCRasterFactory")
Check "made, as IUnknown", VarType(factory.CreateObject("ZIRCRaster.ZIRCRaster", "")), vbDataObject
Set same = factory.CreateObject2("ZIRCRaster.ZIRCRaster.13", "")
Check "made by its version", same.CreateBitmap(2, 2, 1), 0
On Error Resume Next
Set same = factory.CreateObject("No.Class", "")
Check "no class", Err.Number <> 0, True
Err.Clear
raster.Bitmap = 12345
CheckError "no handle", 20002, "Invalid bitmap handle"
raster.EnableMethodErrors = False
raster.Bitmap = 12345
CheckError "raised whatever it says", 20002, "Invalid bitmap handle"
