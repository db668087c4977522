// Rows of the portable surfaces: pixels of 1, 4, 8, 16, 24 and 32 bits as they lie in memory, and as words, one for
// each pixel. A word is a pixel's value, or a colour with blue in its low byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

inline constexpr int PixelDepths = 6;

// The place of a depth in the tables below.
static constexpr size_t PlaceOfDepth(int bitsPerPixel) {
    return bitsPerPixel == 1    ? 0
           : bitsPerPixel == 4  ? 1
           : bitsPerPixel == 8  ? 2
           : bitsPerPixel == 16 ? 3
           : bitsPerPixel == 24 ? 4
                                : 5;
}

// What a pair of pattern and source bits makes of the destination's: (d & Keep) ^ Flip.
struct RasterEffect {
    uint64_t Keep;
    uint64_t Flip;
};

struct PixelWordKernels {
    // Pixels from column x on, or from the columns listed. Up to 8 bits the map has a word for each value; above it
    // plays no part.
    void (*Load[PixelDepths])(const uint8_t* row, int64_t x, int count, const uint32_t* map, uint32_t* words);
    void (*Pick[PixelDepths])(const uint8_t* row, const int32_t* columns, int count, const uint32_t* map,
                              uint32_t* words);
    // Below 8 bits from a bit of the first byte on; the other bits of the first and last bytes become 0.
    void (*Store[PixelDepths])(const uint32_t* words, int count, uint8_t* out, int firstBit);

    void (*Expand15)(uint32_t* words, int count);  // three times five bits to a colour
    void (*Shorten15)(uint32_t* words, int count); // and back
    void (*DropFourth)(uint32_t* words, int count);
    void (*Match)(uint32_t* words, int count, uint32_t matched); // 1 or 0

    // Whole rows of whole bytes.
    void (*Widen24)(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map);
    void (*Narrow32)(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map);
    void (*Look8)(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map);
    void (*Look24)(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map);
    void (*Look32)(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map);

    // Four effects, that of pattern bit p and source bit s at 2 p + s.
    void (*Operate)(uint8_t* destination, const uint8_t* source, const uint8_t* pattern, size_t bytes,
                    const RasterEffect* effects);
};

} // namespace zkr::kernels
