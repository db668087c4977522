// What stands before each script: two raster objects, and what the script holds against its expectations. All of it is
// told, because the host does not tell where a script breaks off; what is not as it should be counts in the exit status.
// Handles may be of a type of 64 bits, which the language passes on but does not compare.
var checked = 0, failed = 0;
var raster = new ActiveXObject("ZIRCRaster.ZIRCRaster");
var other = new ActiveXObject("ZIRCRaster.ZIRCRaster");

function Check(what, actual, expected) {
    checked++;
    if (actual === expected) {
        WScript.Echo(what);
    } else {
        failed++;
        WScript.Echo(what + " is " + actual + " (" + typeof actual + ") and not " + expected);
    }
}

// The error that a body ends with.
function Fails(what, number, text, body) {
    var error = { number: 0, description: "" };
    try {
        body();
    } catch (thrown) {
        error = thrown;
    }
    Check(what + ", number", error.number & 0xFFFF, number);
    Check(what + ", text", error.description, "ZIRC Error: " + text);
}

function TellEnd() {
    if (failed === 0) WScript.Echo("all of " + checked + " hold");
    WScript.Quit(failed);
}
