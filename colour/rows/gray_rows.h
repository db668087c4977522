// Rows of gray pixels of 12 and 16 bits, of which only a window holds the value, to gray of 8, 12 or 16 bits.
//
// A pixel's value is (pixel >> shift) & mask; a mask is 2^n - 1. With a table the result is the gray of the
// entry at the value, (2 red + 5 green + blue + 4) >> 3, brought to the target's bits; without one it is the
// value, stretched so that the mask becomes the target's largest gray, or cut to the target's bits where the
// mask is larger than that. Divisions truncate.
//
// The spans do not overlap, or begin at the same place where the target is no wider. An odd number of 12-bit
// pixels leaves the other half of the last pair as it was.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr::rows {

void GrayRow12To8(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target, uint32_t mask,
                  uint32_t shift);
void GrayRow12To12(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target, uint32_t mask,
                   uint32_t shift);
void GrayRow12To16(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target, uint32_t mask,
                   uint32_t shift);
void GrayRow16To8(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target, uint32_t mask,
                  uint32_t shift);
void GrayRow16To12(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target, uint32_t mask,
                   uint32_t shift);
void GrayRow16To16(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target, uint32_t mask,
                   uint32_t shift);

} // namespace zkr::rows
