// Turning, mirroring and shearing, for verbs and the tour. Bitmaps stand upright: their first row is the top of the picture.
#pragma once

#include "bitmap.h"

#include <cstdint>

namespace zkr::app {

enum class RotationMethod { Nearest, Linear, Cubic };

struct Rotation {
    int hundredths = 0; // of a degree, clockwise
    RotationMethod method = RotationMethod::Linear;
    bool grow = false;          // to hold the whole picture; else corners are cut off
    uint32_t fill = 0x00FFFFFF; // 0x00BBGGRR, of what lies outside the picture; alpha 0
};

struct Shearing {
    int hundredths = 0;         // of a degree, the top to the right, or the right side down
    bool vertical = false;      // slide columns instead of rows
    uint32_t fill = 0x00FFFFFF; // as of a rotation
};

void Rotate(Bitmap& bitmap, const Rotation& rotation);
void Shear(Bitmap& bitmap, const Shearing& shearing);
void Flip(Bitmap& bitmap);   // upside down
void Mirror(Bitmap& bitmap); // left to right

// Brings the pixels into the order of a view, VIEW_..., and takes the result for upright.
void StoreInView(Bitmap& bitmap, int32_t view);

} // namespace zkr::app
