// Bytes of rows and of whole bitmaps. All products are worked out in 64 bits, so
// that none of them wraps.
#pragma once

#include "core/depth.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace zkr {

// Bytes of a storage row, padded to a multiple of 4; 0 for a width that is not positive.
constexpr uint64_t StorageRowBytes(int32_t width, int32_t bitsPerPixel) {
    return width <= 0
               ? 0
               : (static_cast<uint64_t>(width) * static_cast<uint32_t>(bitsPerPixel) + 31) >> 3 & ~3ull;
}

// Bytes of a number of rows of a bitmap; 0 for a number that is not positive.
constexpr uint64_t RowsBytes(const BitmapHandle& bitmap, int64_t rows) {
    return rows <= 0 ? 0 : static_cast<uint64_t>(rows) * bitmap.BytesPerLine;
}

constexpr bool FitsSize(uint64_t bytes) {
    return bytes <= std::numeric_limits<size_t>::max();
}

// Where the byte that holds a column's first bit lies in its row, rounded down. A depth that no bitmap has
// leaves the column as it stands.
constexpr ptrdiff_t ColumnOffset(int32_t bitsPerPixel, int32_t column) {
    const int64_t bits = IsSupportedDepth(bitsPerPixel) ? static_cast<int64_t>(column) * bitsPerPixel
                                                        : static_cast<int64_t>(column) * 8;
    return static_cast<ptrdiff_t>(bits >> 3);
}

} // namespace zkr
