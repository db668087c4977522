// Kernels that dither rows of 24 bits by thresholds in one pass, with the paint table already in what they compare with or
// look up. The first pixel meets the first column of the matrix.
#pragma once

#include "colour/kernels/thresholds.h"

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

// What a channel's byte gives to the index, by column of the matrix and the channel's place in a pixel.
using ThresholdTables = uint8_t[ThresholdSide][3][256];

struct OrderedKernels {
    // To indices of 4 bits: bits 0 to 2 tell which of red, green and blue are above the threshold, bit 3 that any is.
    void (*Nibbles)(const uint8_t* pixels, const uint8_t (&thresholds)[ThresholdSide], bool redFirst,
                    uint8_t* target, size_t count);
    // To indices of 8 bits, which are sums.
    void (*Bytes)(const uint8_t* pixels, const ThresholdTables& tables, uint8_t* target, size_t count);
};

} // namespace zkr::kernels
