// Regions of all shapes, as the pixels that a script sees in them.
var width = 9, height = 6;
raster.CreateBitmap(width, height, 24);
function Expect(what, holds) {
    var seen = "", wanted = "", area = 0;
    for (var y = 0; y < height; y++) {
        for (var x = 0; x < width; x++) {
            seen += raster.IsPtInRgn(x, y) ? "#" : ".";
            wanted += holds(x, y) ? "#" : ".";
            if (holds(x, y)) area++;
        }
        seen += "|";
        wanted += "|";
    }
    Check(what, seen, wanted);
    Check(what + ", area", raster.GetRgnArea(), area);
}
function All() { return true; }
function Box(left, top, right, bottom) {
    return function (x, y) { return x >= left && x < right && y >= top && y < bottom; };
}
Check("none", raster.HasRgn, false);
Expect("none is all", All);
Check("made", raster.SetRgnRect(1.5, 1, 3.2, 2, 1), 0);
Expect("rectangle", Box(1, 1, 5, 3));
Check("there", raster.HasRgn, true);
Check("bounds", [raster.RgnLeft, raster.RgnTop, raster.RgnWidth, raster.RgnHeight].join(" "), "1 1 4 2");
var merged = [ // the present one, with columns from 3 on
    function (x, y) { return Box(3, 1, 5, 3)(x, y); }, // AND
    function (x, y) { return Box(3, 0, 9, 6)(x, y); }, // SET
    function (x, y) { return Box(3, 0, 9, 6)(x, y) && !Box(1, 1, 5, 3)(x, y); },
    function (x, y) { return Box(1, 1, 5, 3)(x, y) && !Box(3, 0, 9, 6)(x, y); },
    function (x, y) { return Box(3, 0, 9, 6)(x, y) || Box(1, 1, 5, 3)(x, y); }, // OR
    function (x, y) { return Box(3, 0, 9, 6)(x, y) !== Box(1, 1, 5, 3)(x, y); }, // XOR
    function (x, y) { return !Box(3, 0, 9, 6)(x, y); } // SETNOT
];
for (var mode = 0; mode < 7; mode++) {
    raster.SetRgnRect(1, 1, 4, 2, 1);
    raster.SetRgnRect(3, 0, 6, 6, mode);
    Expect("mode " + mode, merged[mode]);
}
raster.SetRgnRect(1, 1, 4, 2, 1);
raster.OffsetRgn(1, 2);
Expect("moved", Box(2, 3, 6, 5));
raster.ResizeRgn(1, 1);
Expect("grown", Box(1, 2, 7, 6));
raster.ResizeRgn(2, 1);
Expect("shrunk", Box(2, 3, 6, 5));
raster.FreeRgn();
Expect("freed", All);

// Shapes with curved edges: what every such shape holds, and what none does.
raster.SetRgnEllipse(0, 0, 9, 6, 1);
Check("ellipse", [raster.IsPtInRgn(4, 3), raster.IsPtInRgn(0, 0), raster.IsPtInRgn(8, 5)].join(" "), "true false false");
raster.SetRgnRoundRect(0, 0, 9, 6, 4, 4, 1);
Check("round corners", [raster.IsPtInRgn(4, 0), raster.IsPtInRgn(0, 3), raster.IsPtInRgn(0, 0)].join(" "), "true true false");
var corners = [[1, 1], [7, 1], [7, 4], [1, 4]];
raster.PolygonSize = 4;
raster.CurveSize = 4;
for (var corner = 0; corner < 4; corner++) {
    raster.PolygonX(corner) = corners[corner][0];
    raster.PolygonY(corner) = corners[corner][1];
}
Check("corner", raster.PolygonX(2) + " " + raster.PolygonY(2) + " " + raster.PolygonSize, "7 4 4");
raster.SetRgnPolygon(1, 1);
Expect("polygon", Box(1, 1, 7, 4));
// Points on one line between 2 and 8 are that line, whatever the tension.
for (var point = 0; point < 4; point++) {
    raster.CurveX(point) = 2 + 2 * point;
    raster.CurveY(point) = 3;
}
Check("point", raster.CurveX(3) + " " + raster.CurveY(3) + " " + raster.CurveSize, "8 3 4");
Check("to Bezier", raster.CurveToBezier(), 0);
Check("points", raster.BezierSize, 4); // from the second to the third
Check("its ends", [raster.BezierX(0), raster.BezierY(0), raster.BezierX(3), raster.BezierY(3)].join(" "), "4 3 6 3");
// A rectangle whose sides are four curves: both inner points of each lie at its ends.
raster.CurveSize = 13;
for (point = 0; point < 13; point++) {
    corner = corners[Math.floor((point + 1) / 3) % 4];
    raster.CurveX(point) = corner[0];
    raster.CurveY(point) = corner[1];
}
raster.SetRgnCurve(1, 1);
Expect("curve", Box(1, 1, 7, 4));

// A region of the platform and back.
raster.SetRgnRect(2, 1, 3, 4, 1);
var handle = raster.GetRgnHandle();
raster.FreeRgn();
Check("handle", raster.SetRgnHandle(handle, 1), 0);
Expect("by handle", Box(2, 1, 5, 5));
Check("deleted", raster.DeleteRgnHandle(handle), 0);
Fails("deleted twice", 20013, "Invalid parmameter passed", function () { raster.DeleteRgnHandle(handle); });
raster.SetRgnHandle(0, 1);
Expect("no handle", All);

// Colours: red columns 0 to 2, blue column 3, the rest black.
for (var y = 0; y < height; y++) {
    for (var x = 0; x < 3; x++) raster.Pixel(x, y) = 0x0000F0 + x;
    raster.Pixel(3, y) = 0xFF0000;
}
raster.SetRgnColor(0xFF0000, 1);
Expect("blue", Box(3, 0, 4, 6));
raster.SetRgnColorRGBRange(0x0000F1, 0x0000FF, 1);
Expect("reds", Box(1, 0, 3, 6));
raster.SetRgnColorHSVRange(0x808000, 0xFFFF0A, 1);
Expect("hues around red", Box(0, 0, 3, 6));
