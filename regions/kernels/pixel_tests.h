// Tests of pixels, from rows of pixels to rows of bits (bit_rows.h).
#pragma once

#include "kernels/family.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

// What each of three channels must be, in the order of their bytes: from Low to High, or with Outside not.
struct ChannelTest {
    std::array<uint8_t, 3> Low;
    std::array<uint8_t, 3> High;
    std::array<bool, 3> Outside;

    constexpr bool Takes(size_t channel, uint8_t value) const {
        return (value >= Low[channel] && value <= High[channel]) != Outside[channel];
    }
};

// A bit for each value of a byte.
using ByteSet = std::array<uint32_t, 8>;

struct PixelTestKernels {
    // Pixels of three bytes.
    void (*ChannelBits)(const uint8_t* row, size_t pixels, const ChannelTest& test, uint64_t* words);
    // Pixels of one byte.
    void (*ByteBits)(const uint8_t* row, size_t pixels, const ByteSet& set, uint64_t* words);
    // Pixels of two bytes, the low one first; the set has a bit for each value that can be met.
    void (*WordBits)(const uint8_t* row, size_t pixels, const uint64_t* set, uint64_t* words);
};

} // namespace zkr::kernels
