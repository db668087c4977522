// Failures: their number, their text, and what comes in the place of a result.
Fails("depth", 20027, "Invalid bits/pixel", function () { raster.CreateBitmap(4, 4, 9); });
Fails("no bitmap", 20002, "Invalid bitmap handle", function () { return raster.BitmapWidth; });
Fails("mode", 20013, "Invalid parmameter passed", function () { raster.ScaleMode = 8; });
Fails("kind", 20016, "Feature not available", function () { raster.NotifyChange(2, 0, 0, 0); });
Fails("key", 20013, "Invalid parmameter passed", function () { raster.UnlockSupport(3, ""); });
raster.EnableMethodErrors = false;
Check("a number alone", raster.CreateBitmap(4, 4, 9), 20027);
Check("zero", raster.BitmapWidth, 0);
Check("no list", raster.DeleteBitmapListItems(0, 1), 20013);
Check("no array", typeof raster.PixelData(0, 0), "undefined");
Check("no object", raster.GetPicture(0), null);
raster.ScaleMode = 8;
Check("nothing changed", raster.ScaleMode, 3);
raster.EnableMethodErrors = true;
raster.CreateBitmap(2, 2, 8);
Check("a number that is too large goes on", raster.Pixel(1e30, 0) & 0xFFFFFF, 0);
