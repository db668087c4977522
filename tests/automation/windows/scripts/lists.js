// Lists of bitmaps: what is the working bitmap after each change.
function Widths() {
    var widths = [], at = raster.BitmapListIndex;
    for (var index = 0; index < raster.BitmapListCount; index++) {
        raster.BitmapListIndex = index;
        widths.push(raster.BitmapWidth);
    }
    if (widths.length !== 0) raster.BitmapListIndex = at;
    return widths.join(" ");
}
function Insert(index, width) {
    other.CreateBitmap(width, 2, 8);
    return raster.InsertBitmapListItem(index, other.Bitmap);
}
Check("created", raster.CreateBitmap(1, 1, 24), 0);
Check("one item", raster.BitmapListCount, 1);
Check("appended", Insert(-1, 3), 0);
Check("appended beyond the end", Insert(100, 4), 0);
Check("inserted", Insert(1, 2), 0);
Check("items", Widths(), "1 2 3 4");
Check("the working bitmap stays", raster.BitmapWidth, 1);
Check("before it", Insert(0, 9), 0);
Check("items", Widths(), "9 1 2 3 4");
Check("the place stays", raster.BitmapListIndex, 0);
Check("and has the new bitmap", raster.BitmapWidth, 9);
Fails("an index beyond", 20013, "Invalid parmameter passed", function () { raster.BitmapListIndex = 5; });
Fails("a negative one", 20013, "Invalid parmameter passed", function () { raster.BitmapListIndex = -1; });
raster.BitmapListIndex = 4;
Check("deleted", raster.DeleteBitmapListItems(3, 2), 0);
Check("items", Widths(), "9 1 2");
Check("the place is the last", raster.BitmapListIndex, 2);
raster.BitmapListIndex = 1;
Check("freed", raster.Free(), 0);
Check("items", Widths(), "9 2");
Check("stored", raster.PutInList(), 0);
Check("shown", raster.NewList(), 0);
Check("the first", raster.BitmapListIndex, 0);

// A list that moves leaves none behind, one that is copied stays.
raster.RefBitmapList = false;
var third = new ActiveXObject("ZIRCRaster.ZIRCRaster");
third.RefBitmapList = false;
third.BitmapList = raster.BitmapList;
Check("copied", third.BitmapListCount + " " + raster.BitmapListCount, "2 2");
third.RefBitmapList = true;
third.BitmapList = raster.BitmapList;
Check("moved", third.BitmapListCount + " " + raster.BitmapListCount, "2 0");
third.BitmapListIndex = 1;
Check("its items", third.BitmapWidth, 2);
third.BitmapList = 0;
Check("emptied", third.BitmapListCount, 0);
Check("freed", raster.FreeList(), 0);

// A list that is somebody else's is taken as it is, and nothing of it freed.
third.CreateBitmap(6, 1, 1);
raster.ReadOnlyBitmapList = true;
raster.BitmapList = third.BitmapList;
Check("shared", raster.BitmapWidth, 6);
Fails("inserting", 20002, "Invalid bitmap handle", function () { raster.InsertBitmapListItem(0, third.Bitmap); });
Check("freeing does nothing", raster.FreeList(), 0);
raster.BitmapList = 0;
Check("let go", raster.BitmapListCount + " " + third.BitmapListCount, "0 1");
