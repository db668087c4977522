// Sizes and places in units of every kind. The screen's resolution is found from a bitmap of a known size.
raster.CreateBitmap(960, 480, 8);
raster.ScaleMode = 5;
var dpi = 960 / raster.BitmapWidth;
var perInch = [null, [1440, 1440], [72, 72], [dpi, dpi], [12, 6], [1, 1], [25.4, 25.4], [2.54, 2.54]];
function Near(what, actual, expected) {
    Check(what, Math.abs(actual - expected) <= 1e-5 * expected ? expected : actual, expected);
}
for (var mode = 1; mode <= 7; mode++) {
    raster.ScaleMode = mode;
    Near("width in mode " + mode, raster.BitmapWidth, 960 / dpi * perInch[mode][0]);
    Near("height in mode " + mode, raster.BitmapHeight, 480 / dpi * perInch[mode][1]);
    // A new bitmap of these lengths, a little more than whole pixels, has the same size.
    other.ScaleMode = mode;
    other.CreateBitmap(raster.BitmapWidth * 1.0001, raster.BitmapHeight * 1.0001, 1);
    other.ScaleMode = 3;
    Check("back in mode " + mode, other.BitmapWidth + " " + other.BitmapHeight, "960 480");
}
raster.ClientX = 480;
raster.ClientY = 240;
raster.ScaleWidth = 10;
raster.ScaleHeight = 100;
raster.ScaleLeft = 5;
raster.ScaleTop = -20;
Check("the user's width", raster.BitmapWidth, 20);
Check("the user's height", raster.BitmapHeight, 200);
raster.Pixel(15, 80) = 0xFFFFFF; // column 480, row 240
Check("the user's place", raster.Pixel(15.02, 80.4), 0xFFFFFF);
raster.ScaleMode = 3;
Check("in pixels", raster.Pixel(480, 240), 0xFFFFFF);
raster.ScaleMode = 0;
Check("a length goes up", raster.CreateBitmap(0.001, 0.5, 8), 0);
Near("to one column", raster.BitmapWidth, 1 / 48);
Near("and two rows", raster.BitmapHeight, 2 / 2.4);
raster.ClientX = 0;
Check("no columns", raster.BitmapWidth, 0);
Check("ClientX", raster.ClientX + raster.ClientY, 240);

// The frame of an animation.
raster.ScaleMode = 3;
raster.BitmapLeft = 7.9;
raster.BitmapTop = -3.9;
raster.BitmapDelay = 250;
raster.BitmapDisposalMethod = 2;
Check("frame", [raster.BitmapLeft, raster.BitmapTop, raster.BitmapDelay, raster.BitmapDisposalMethod].join(" "), "7 -3 250 2");
Check("data", raster.BitmapCompression + " " + raster.BitmapSize, "0 8");
