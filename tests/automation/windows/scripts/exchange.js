// Blocks, bitmaps and pictures of the system, device contexts and the screen.
raster.CreateBitmap(5, 3, 24);
raster.Pixel(4, 0) = 0x0000FF;
function Same(what) {
    Check(what + ", size", other.BitmapWidth + " " + other.BitmapHeight, "5 3");
    Check(what + ", pixels", other.Pixel(4, 0) + " " + other.Pixel(4, 1), 0xFF + " 0");
    other.FreeList();
}
for (var type = 0; type < 3; type++) {
    Check("from a block", other.SetDIB(raster.GetDIB2(type)), 0);
    Same("block " + type);
}
other.SetDIB(raster.GetDIB());
Same("block");
Check("from a bitmap of the system", other.SetDDB(0, raster.GetDDB(0), 0), 0);
Same("bitmap");
var picture = raster.GetPicture(0);
Check("a bitmap", picture.Type, 1);
Check("from a picture", other.SetPicture(picture), 0);
Same("picture");
Check("the picture lives on", picture.Type, 1);
Fails("no picture", 20013, "Invalid parmameter passed", function () { other.SetPicture(raster); });
Fails("no block", 20013, "Invalid parmameter passed", function () { other.SetDIB(0); });
Fails("no bitmap to give", 20002, "Invalid bitmap handle", function () { other.GetPicture(0); });

// While contexts are out the bitmap is theirs.
var context = raster.GetBitmapDC();
raster.GetBitmapDC();
Fails("no pixel", 20002, "Invalid bitmap handle", function () { return raster.Pixel(0, 0); });
Check("a part of a device", other.Capture(context, 3, 0, 2, 2), 0);
Check("its pixels", other.BitmapWidth + " " + other.Pixel(1, 0), "2 " + 0xFF);
raster.ReleaseBitmapDC();
Fails("one is still out", 20002, "Invalid bitmap handle", function () { return raster.BitmapWidth; });
raster.ReleaseBitmapDC();
Check("none is out", raster.ReleaseBitmapDC(), 0);
Check("the bitmap is back", raster.BitmapWidth, 5);
