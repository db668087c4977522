// One colour written into a run of pixels of any depth.
#pragma once

#include "zkr13n/bitmap.h"

namespace zkr {

// Writes count pixels of a colour value, in the bitmap's format, from the first pixel of row on. At 3, 5, 6,
// 7 and 12 bits the bits behind the last pixel stay; at 1, 2 and 4 bits its byte is filled. A depth that does
// not exist is left alone.
void FillRowWithColor(const BitmapHandle& bitmap, uint32_t colour, uint8_t* row, int32_t count);

} // namespace zkr
