// The set of all colours as one bit for each, in an order that keeps colours that are alike within a cache
// line: the lower three bits of the channels choose the bit, the upper five the line of 512.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::rows {

inline constexpr size_t colourSetWords = size_t{1} << 19;
inline constexpr size_t colourGroupPixels = 16;

// The place of the bit of a colour of four bytes: blue, green and red from the lowest, the highest ignored.
static constexpr uint32_t ColourSetBit(uint32_t quad) {
    const uint32_t line = (quad >> 3 & 0x1F) | (quad >> 6 & 0x3E0) | (quad >> 9 & 0x7C00);
    const uint32_t inside = (quad & 7) | (quad >> 5 & 0x38) | (quad >> 10 & 0x1C0);
    return line << 9 | inside;
}

struct CountKernels {
    // How many pixels at the start of the span are known to be in the set; stops in front of the first group
    // of pixels with one that is not, and so that less than a group is left.
    size_t (*SkipKnown)(const uint8_t* quads, size_t pixels, const uint32_t* set);
};

} // namespace zkr::rows
