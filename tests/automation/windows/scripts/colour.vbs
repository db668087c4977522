' Palettes, kinds of gray, resolution, transparency and alpha.
Dim index
raster.CreateBitmap 4, 3, 4
raster.BitmapPalette(9) = &H0A0B0C
raster.BitmapPalette(10) = &H80000008 ' the text in windows
Check "an entry", raster.BitmapPalette(9), &H0A0B0C
Check "a colour of the system", raster.BitmapPalette(10), 0
raster.Pixel(1, 1) = &H01000009 ' by its index
Check "its pixel", raster.Pixel(1, 1), &H0A0B0C
Check "colours", raster.IsGrayscale, 0
other.CreateBitmap 4, 3, 12
Check "gray", other.IsGrayscale, 1
other.IsSigned = True
Check "signed", other.IsSigned, True
raster.BitmapXRes = 300
raster.BitmapYRes = 150
Check "resolution", raster.BitmapXRes & " " & raster.BitmapYRes, "300 150"
raster.BitmapEnableTransparency = True
raster.BitmapTransparentColor = &H80000008
Check "transparency", raster.BitmapEnableTransparency & " " & raster.BitmapTransparentColor, "True 0"
raster.BitmapTransparentColor = &H010203
Check "transparent", raster.BitmapTransparentColor, &H010203
raster.BitmapEnableTransparency = False
Check "no transparency", raster.BitmapEnableTransparency, False

' Alpha passes from a bitmap to another as a gray bitmap.
raster.CreateBitmap 4, 3, 32
other.CreateBitmap 4, 3, 8
other.Pixel(2, 1) = vbWhite
raster.BitmapAlpha = other.Bitmap
other.Bitmap = raster.BitmapAlpha
Check "depth of alpha", other.BitmapBits, 8
Check "alpha back", other.Pixel(2, 1) & " " & other.Pixel(3, 2), &HFFFFFF & " 0"
On Error Resume Next
raster.BitmapAlpha = 0
CheckError "no alpha", 20002, "Invalid bitmap handle"
index = raster.BitmapPalette(0)
CheckError "no palette", 20013, "Invalid parmameter passed"
