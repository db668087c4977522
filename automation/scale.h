// Scale units: the coordinates of clients, against pixels.
#pragma once

#include "zkr13n/raster_values.h"

namespace zkr::automation {

enum class Axis { X, Y };

struct Scale {
    int32_t Mode = SCALEMODE_PIXEL;
    float Left = 0;
    float Top = 0;
    float Width = 0;
    float Height = 0;
    int32_t ClientX = 100; // pixels that Width stands for
    int32_t ClientY = 100;
};

// Computed in double precision and rounded to float. device tells the resolution, null for the screen. A measure that
// cannot be taken, because it would be divided by zero, is 0.
float PositionInUnits(const Scale& scale, Axis axis, double pixels, HDC device);
float LengthInUnits(const Scale& scale, Axis axis, double pixels, HDC device);

// Still with their fractions. A length in the client's own system goes up to the next whole pixel.
float PositionInPixels(const Scale& scale, Axis axis, double units, HDC device);
float LengthInPixels(const Scale& scale, Axis axis, double units, HDC device);

} // namespace zkr::automation
