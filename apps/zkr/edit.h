// What zkr changes in a bitmap where it stands: a rectangle cut out, an area filled with one colour.
#pragma once

#include "bitmap.h"

namespace zkr::app {

struct Rectangle {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

// Cuts the bitmap to the part of the rectangle that lies inside it. A rectangle without such a part is a
// Failure.
void Crop(Bitmap& bitmap, const Rectangle& area);

// Fill with a colour, 0x00BBGGRR; where the bitmap has a palette, with its nearest entry. Alpha stays as it
// is.
void Fill(Bitmap& bitmap, uint32_t colour);
void Fill(Bitmap& bitmap, uint32_t colour, const Rectangle& area);

} // namespace zkr::app
