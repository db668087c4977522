// Other dimensions for a picture, for the verb and the tour.
#pragma once

#include "bitmap.h"

#include <cstdint>

namespace zkr::app {

enum class SizeMethod { Nearest, Linear, Spline, Strokes };

struct Resizing {
    int width = 0; // pixels; one of the two may be 0 and then follows the other
    int height = 0;
    SizeMethod method = SizeMethod::Linear;
};

// Strokes are kept of pictures of 1 bit alone.
void Resize(Bitmap& bitmap, const Resizing& resizing);

} // namespace zkr::app
