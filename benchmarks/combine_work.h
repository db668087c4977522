// The works of combinations and underlays, and what they work on.
#pragma once

#include "pictures.h"

namespace bench {

enum CombineWork {
    PageOr = 2880,
    PageAnd,
    PageXor,
    PageOrShifted,
    Add24,
    Subtract24,
    Minimum24,
    Maximum24,
    Average24,
    Multiply24,
    Multiply48,
    Divide24,
    Add8,
    Add4,
    Add5,
    CopyThroughText24,
    Underlay24
};

// A copy, mirrored, of the photograph or, at 1 bit, of the page, which works and their peers write into.
BitmapHandle* Ground(int32_t bitsPerPixel);
BitmapHandle* PictureOf(int32_t bitsPerPixel);

inline constexpr int32_t CombineShift = 3; // pixels of the page

// Gray of a woven texture, which repeats.
inline constexpr int32_t TextureSide = 512;
BitmapHandle* CanvasTexture();

} // namespace bench
