' What a new object is like, and what can be set without a bitmap.
Dim name, value, index
Check "Bitmap", raster.Bitmap, 0
Check "the default member", raster, 0
Check "EnableMethodErrors", raster.EnableMethodErrors, True
Check "RefBitmap", raster.RefBitmap, False
Check "RefBitmapList", raster.RefBitmapList, True
Check "ReadOnlyBitmapList", raster.ReadOnlyBitmapList, False
Check "ScaleMode", raster.ScaleMode, 3
Check "scale", raster.ScaleLeft & raster.ScaleTop & raster.ScaleWidth & raster.ScaleHeight, "0000"
Check "client", raster.ClientX & " " & raster.ClientY, "100 100"
Check "range", raster.MinVal & raster.MaxVal & raster.MinBit & raster.MaxBit, "0000"
Check "shapes", raster.PolygonSize & raster.CurveSize & raster.BezierSize, "000"
Check "curve", raster.CurveType & raster.CurveTension & raster.CurveClose, "000"
Check "list", raster.BitmapListIndex & raster.BitmapListCount, "00"

raster.EnableMethodErrors = False
raster.RefBitmap = True
raster.RefBitmapList = False
raster.ReadOnlyBitmapList = True
Check "truth values", raster.EnableMethodErrors & raster.RefBitmap & raster.RefBitmapList & raster.ReadOnlyBitmapList, _
    "FalseTrueFalseTrue"
raster.EnableMethodErrors = 7
Check "any number is true", raster.EnableMethodErrors, True
raster.ReadOnlyBitmapList = False

raster.CurveType = 1
raster.CurveTension = 0.25
raster.CurveClose = 2
Check "curve set", raster.CurveType & " " & CStr(raster.CurveTension * 4) & " " & raster.CurveClose, "1 1 2"
For Each name In Array("ScaleLeft", "ScaleTop", "ScaleWidth", "ScaleHeight")
    raster.ScaleMode = 5
    Select Case name
    Case "ScaleLeft": raster.ScaleLeft = 1.5: value = raster.ScaleLeft
    Case "ScaleTop": raster.ScaleTop = 1.5: value = raster.ScaleTop
    Case "ScaleWidth": raster.ScaleWidth = 1.5: value = raster.ScaleWidth
    Case "ScaleHeight": raster.ScaleHeight = 1.5: value = raster.ScaleHeight
    End Select
    Check name, value, 1.5
    Check name & " sets the mode", raster.ScaleMode, 0
Next
For index = 0 To 7
    raster.ScaleMode = index
    Check "mode", raster.ScaleMode, index
Next
Check "another object of its own", other.ScaleMode & other.CurveType, "30"

' Capabilities are the process's.
Check "unlocked", raster.IsSupportLocked(0), False
Check "no such capability", raster.IsSupportLocked(32), True
Check "a key", raster.UnlockSupport(3, "any text"), 0

' The counter of events: true stops them.
Check "stopped", raster.EnableChangeEvents(True), 1
Check "stopped twice", raster.EnableChangeEvents(True), 2
Check "once", raster.EnableChangeEvents(False), 1
Check "out again", raster.EnableChangeEvents(False), 0
Check "below", raster.EnableChangeEvents(False), -1
Check "no record", raster.SetChangeInfo(1, 0) & raster.GetChangeInfo(9, 0), "00"
raster.NotifyChange 3, 7, 8, 9
raster.NotifyChange 4, 0, 0, 0
