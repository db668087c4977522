// Where the value lies in a gray pixel, in a form that can be shifted by and indexed with whatever the fields
// of a record say.
#pragma once

#include <cstdint>

namespace zkr {

// The value is (pixel >> Shift) & Mask.
struct GrayWindow {
    uint32_t Bits; // 0 to 16
    uint32_t Mask; // 2^Bits - 1
    uint32_t Shift;
};

// By the rule of Z_GetGrayParams; a depth of 0 has 8 bits.
GrayWindow MakeGrayWindow(int32_t depth, int32_t maximumBits, int32_t lowBit, int32_t highBit);

} // namespace zkr
