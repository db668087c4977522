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

// A set of bytes, in the form in which vectors look it up: for each low half of a byte the high halves that go with it,
// 0 to 7 and 8 to 15 by themselves.
struct ByteSet {
    std::array<uint8_t, 16> Below{}, Above{};

    constexpr void Include(uint32_t value) {
        (value < 128 ? Below : Above)[value % 16] |= static_cast<uint8_t>(1u << (value / 16 % 8));
    }
    constexpr bool Has(uint32_t value) const {
        return ((value < 128 ? Below : Above)[value % 16] >> (value / 16 % 8) & 1) != 0;
    }
    friend constexpr bool operator==(const ByteSet&, const ByteSet&) = default;
};

struct PixelTestKernels {
    // Pixels of three bytes.
    void (*ChannelBits)(const uint8_t* row, size_t pixels, const ChannelTest& test, uint64_t* words);
    // Pixels of one byte.
    void (*ByteBits)(const uint8_t* row, size_t pixels, const ByteSet& set, uint64_t* words);
    // Pixels of two bytes, the low one first; the set has a bit for each value that can be met.
    void (*WordBits)(const uint8_t* row, size_t pixels, const uint64_t* set, uint64_t* words);
};

} // namespace zkr::kernels
