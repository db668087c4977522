' Pixels as colours and as bytes, and bitmaps on arrays of scripts.
Dim bytes, x
Check "created", raster.CreateBitmap(5, 4, 24), 0
raster.Pixel(1.9, 0) = &H332211
Check "Pixel", raster.Pixel(1, 0), &H332211
Check "another", raster.Pixel(1, 3), 0
Check "outside", raster.Pixel(5, 0), 2147483648
Check "outside", raster.Pixel(-1, 0), 2147483648
raster.Pixel(0, 0) = vbWhite
Check "white", raster.Pixel(0, 0), &HFFFFFF
raster.Pixel(0, 0) = &H80000008 ' the text in windows
Check "a colour of the system", raster.Pixel(0, 0), 0
bytes = raster.PixelData(1, 0)
Check "an array of bytes", VarType(bytes), 8192 + 17
raster.PixelData(4, 3) = bytes
Check "put", raster.Pixel(4, 3), &H332211
Check "BitmapSize", raster.BitmapSize, 64 ' rows of 16 bytes
other.CreateBitmap 8, 1, 1
Check "BitmapBits", other.BitmapBits, 1
other.Pixel(3, 0) = vbWhite
other.PixelData(0, 0) = bytes ' its first byte, 00110011, is all eight pixels
For x = 0 To 7
    Check "a pixel in a byte", other.Pixel(x, 0), &HFFFFFF * (x \ 2 Mod 2)
Next

' The array of one pixel is the data of another bitmap, as a copy.
raster.CreateBitmap 2, 1, 32
raster.Pixel(0, 0) = &H332211
bytes = raster.PixelData(0, 0)
Check "user bitmap", other.CreateUserBitmap(1, 1, 32, bytes, 0), 0
Check "its pixel", other.Pixel(0, 0), &H332211
other.Pixel(0, 0) = 0
raster.PixelData(1, 0) = bytes
Check "the array is untouched", raster.Pixel(1, 0), &H332211
Check "other data", other.SetBitmapDataPointer(raster.PixelData(1, 0), 4), 0
Check "its pixel", other.Pixel(0, 0), &H332211
Check "no data yet", raster.CreateUserBitmap(1, 1, 32, Empty, 0), 0
Check "then data", raster.SetBitmapDataPointer(bytes, 0), 0
Check "its pixel", raster.Pixel(0, 0), &H332211
On Error Resume Next
x = raster.CreateUserBitmap(1, 1, 32, bytes, 5)
CheckError "more than there is", 20013, "Invalid parmameter passed"
x = raster.CreateUserBitmap(1, 1, 32, "text", 0)
CheckError "no bytes", 20013, "Invalid parmameter passed"
raster.CreateBitmap 2, 2, 8
x = raster.PixelData(2, 0)
CheckError "outside", 20013, "Invalid parmameter passed"
raster.PixelData(0, 0) = 7
CheckError "no array", 20013, "Invalid parmameter passed"
raster.PixelData(2, 0) = bytes
CheckError "put outside", 20013, "Invalid parmameter passed"
