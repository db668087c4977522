// A picture as a device of some depth shows it, for the verb and the tour.
#pragma once

#include "bitmap.h"

namespace zkr::app {

struct PaintedDevice {
    int bits = 24; // 1, 4, 8, 16, 24 or 32
    int width = 0; // pixels; 0 follows the other one, or the picture
    int height = 0;
    bool ordered = false; // dithers by thresholds; else it diffuses errors
    int brightness = 0;   // thousandths, -1000 to 1000
    int contrast = 0;     // likewise
    int gamma = 100;      // hundredths
};

// Pictures of 1 bit are shown in levels of gray where they are scaled and the device has them. 16 and 32 bits come as 24.
Bitmap PaintedOn(Bitmap& source, const PaintedDevice& device);

} // namespace zkr::app
