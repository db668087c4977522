// Rows of bits, one for each pixel of a line: the form in which pixels are tested, and from and to which runs are
// brought. Pixel x is bit x % 64 of word x / 64.
#pragma once

#include "kernels/family.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

constexpr size_t BitRowWords(size_t pixels) {
    return (pixels + 63) / 64;
}

// One coordinate of a walk along a turned line: a whole part and a remainder in units of 1/16384. A remainder carries
// when it leaves -16383 to 16383, so that it can stay below 0 for a while, and the whole part with it one higher than
// rounding down would have it.
struct TurnedCoordinate {
    int32_t Whole;
    int32_t Remainder;
    int32_t Step; // -16384 to 16384

    static constexpr int32_t Unit = 16384;

    constexpr int64_t At(int64_t steps) const {
        return Step < 0 ? Whole - std::max<int64_t>(0, (-Remainder - steps * Step) / Unit)
                        : Whole + std::max<int64_t>(0, (Remainder + steps * Step) / Unit);
    }
    // The walk from there on.
    constexpr TurnedCoordinate From(int64_t steps) const {
        const int64_t whole = At(steps);
        return {static_cast<int32_t>(whole),
                static_cast<int32_t>(Remainder + steps * Step - (whole - Whole) * Unit), Step};
    }
};

// A picture of bits: rows of pitchWords words.
struct BitPicture {
    const uint64_t* Words;
    size_t PitchWords;
};

struct BitRowKernels {
    // The end points of the runs of set bits, moved by origin; gives their number. There is room for eight more.
    size_t (*RunsOfBits)(const uint64_t* words, size_t pixels, int32_t origin, int32_t* ends);
    // The bits of runs, moved by origin, that lie within the row.
    void (*BitsOfRuns)(const int32_t* ends, size_t count, int32_t origin, uint64_t* words, size_t pixels);
    // A row of bytes whose highest bit comes first; what lies behind the last pixel becomes 0.
    void (*BitsOfBytes)(const uint8_t* row, size_t pixels, bool inverted, uint64_t* words);
    // The bits of a picture along a turned line of at most TurnedPixels; every place lies in the picture.
    void (*TurnedBits)(const BitPicture& picture, const TurnedCoordinate& x, const TurnedCoordinate& y,
                       size_t pixels, uint64_t* words);

    static constexpr size_t TurnedPixels = 65536;
};

} // namespace zkr::kernels
