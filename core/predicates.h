// What a record says of its bitmap.
#pragma once

#include "core/depth.h"
#include "core/flags.h"

#include <cstdint>

namespace zkr {

// ---- Storage

inline bool IsAllocated(const BitmapHandle* bitmap) {
    return bitmap != nullptr && HasFlag(*bitmap, flag::Allocated);
}

// Whether rows lie in one piece of memory, so that reaching them cannot fail.
inline bool LiesInMemory(const BitmapHandle& bitmap) {
    constexpr uint32_t classes = flag::Compressed | flag::Tiled | flag::SuperCompressed | flag::Memory;
    return (bitmap.Flags & classes) == flag::Memory;
}

// ---- Orders
// Order holds what a caller has put there. Rows are made and converted with blue first unless Order is RGB; they are
// dithered, matched and read pixel by pixel with red first unless Order is BGR.

constexpr bool IsRedFirst(int32_t order) {
    return order == Z_ORDER_RGB;
}
constexpr bool IsRedFirstUnlessBgr(int32_t order) {
    return order != Z_ORDER_BGR;
}

// ---- Gray

// Gray by its order or, at 12 bits, in any order.
inline bool IsGray(const BitmapHandle& bitmap) {
    return bitmap.Order == Z_ORDER_GRAY || DepthOf(bitmap.BitsPerPixel).Kind == PixelKind::Gray;
}

// Pixels that are gray values of 12 or 16 bits.
inline bool HasGrayWords(const BitmapHandle& bitmap) {
    return DepthOf(bitmap.BitsPerPixel).Kind == PixelKind::Gray ||
           (bitmap.BitsPerPixel == 16 && bitmap.Order == Z_ORDER_GRAY);
}

// A table without entries is none.
inline bool HasActiveLevelTable(const BitmapHandle& bitmap) {
    return bitmap.LevelLUT != nullptr && bitmap.LevelLUTLength > 0 && HasFlag(bitmap, flag::LevelLUTActive);
}

} // namespace zkr
