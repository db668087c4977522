// What both modules share: the two entries that each of them defines, and what they know of a strip. Rows take
// a multiple of 4 bytes, padding included, one behind the other; the padding is kept like the pixels.
#pragma once

#include "zkr13n/filter.h"

#include <cstdint>

extern "C" {
Z_API FilterLoadBuffer fltLoadBuffer;
Z_API FilterSaveBuffer fltSaveBuffer;
}

namespace zkr::filters {

constexpr int32_t Failure = 0;

constexpr uint64_t RowBytes(int32_t width, int32_t bitsPerPixel) {
    return (static_cast<uint64_t>(width) * static_cast<uint32_t>(bitsPerPixel) + 31) / 32 * 4;
}

// Bytes of a strip's rows; 0 for what is no strip of this depth, or too large to be worked on.
constexpr uint32_t StripBytes(int32_t width, int32_t rows, int32_t bitsPerPixel, int32_t depth) {
    if (width < 1 || rows < 1 || bitsPerPixel != depth) return 0;
    const uint64_t rowBytes = RowBytes(width, bitsPerPixel);
    return rowBytes > UINT32_MAX / static_cast<uint32_t>(rows)
               ? 0
               : static_cast<uint32_t>(rowBytes) * static_cast<uint32_t>(rows);
}

inline uint32_t StripBytes(const BITMAPINFOHEADER* header, int32_t depth) {
    if (header == nullptr || header->biSize < sizeof(BITMAPINFOHEADER) || header->biHeight < -INT32_MAX)
        return 0;
    return StripBytes(header->biWidth, -header->biHeight, header->biBitCount, depth);
}

} // namespace zkr::filters
