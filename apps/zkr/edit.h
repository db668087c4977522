// What zkr changes in a bitmap where it stands: a rectangle cut out, an area filled with one colour.
#pragma once

#include "bitmap.h"
#include "shapes.h"

namespace zkr::app {

// Cuts the bitmap to the rectangle. One that leaves the bitmap is a Failure, here and in Fill().
void Crop(Bitmap& bitmap, const Rectangle& part);

// Fill with a colour, 0x00BBGGRR; where the bitmap has a palette, with its nearest entry. Alpha stays as it
// is.
void Fill(Bitmap& bitmap, uint32_t colour);
void Fill(Bitmap& bitmap, uint32_t colour, const Rectangle& part);

} // namespace zkr::app
