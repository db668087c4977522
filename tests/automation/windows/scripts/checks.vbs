' What stands before each script: two raster objects, and what the script holds against its expectations. All of it is
' told, because the host does not tell where a script breaks off; what is not as it should be counts in the exit status.
Option Explicit
Dim raster, other, checked, failed
checked = 0
failed = 0
Set raster = CreateObject("ZIRCRaster.ZIRCRaster")
Set other = CreateObject("ZIRCRaster.ZIRCRaster")

' Values are the same if their texts are: colours are of a type that is not to be compared.
Sub Check(what, actual, expected)
    checked = checked + 1
    If actual & "" = expected & "" Then
        WScript.Echo what
    Else
        failed = failed + 1
        WScript.Echo what & " is " & actual & " (" & TypeName(actual) & ") and not " & expected
    End If
End Sub

' The error that the statement before has left.
Sub CheckError(what, number, text)
    Check what & ", number", Err.Number, number
    Check what & ", text", Err.Description, "ZIRC Error: " & text
    Err.Clear
End Sub

Sub TellEnd()
    If failed = 0 Then WScript.Echo "all of " & checked & " hold"
    WScript.Quit failed
End Sub
