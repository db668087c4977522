// Gray values: their range, the window, and the table of its levels.
raster.CreateBitmap(4, 1, 12);
var gray = 0x4000000; // a gray value of 16 bits
raster.Pixel(0, 0) = gray + 0x1230;
raster.Pixel(2, 0) = gray + 0xF000;
Check("a value", (raster.Pixel(2, 0) & 0xFFFF) >> 4, 0xF00);
Check("range", raster.GetMinMaxVal(), 0);
Check("values", raster.MinVal + " " + raster.MaxVal, "0 " + 0xF00);
Check("bits found", raster.GetMinMaxBits(), 0);
Check("bits", raster.MinBit + " " + raster.MaxBit, "0 11");
Check("no table", raster.LevelLUTLength, 0);
Fails("an entry of none", 20013, "Invalid parmameter passed", function () { return raster.LevelLUT(0); });
raster.LevelLowBit = 4;
raster.LevelHighBit = 11;
Check("window", raster.LevelLowBit + " " + raster.LevelHighBit, "4 11");
Fails("beyond it", 20013, "Invalid parmameter passed", function () { raster.LevelLUT(256) = 0; });
raster.LevelLUT(255) = 0x302010;
Check("the table is made", raster.LevelLUTLength, 256);
Check("entries", raster.LevelLUT(255) + " " + raster.LevelLUT(0), 0x302010 + " 0");
Check("filled", raster.WindowLevelFillLUT(0, 0xFFFFFF, 0, 4095, 4, 11, 0, 4095, true), 0);
Check("from black", raster.LevelLUT(0), 0);
Check("to white", raster.LevelLUT(255), 0xFFFFFF);
other.CreateBitmap(2, 2, 24);
Fails("bits of colours", 20027, "Invalid bits/pixel", function () { other.GetMinMaxBits(); });
other.Pixel(1, 1) = 0x0000FF;
other.GetMinMaxVal();
Check("gray of red", other.MaxVal, 64); // (2 * 255 + 4) / 8
