// Half-open rectangles and the cuts that everybody makes. Edges are 32 bits wide, as bitmaps and regions have them;
// lengths and sums are worked out in 64 bits, so that none of them wraps.
#pragma once

#include "zkr13n/bitmap.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace zkr {

constexpr int32_t Saturated(int64_t value) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}
constexpr bool FitsInt32(int64_t value) {
    return value == Saturated(value);
}

// Right and Bottom are not part of it. A rectangle that ends where it begins, or before, is empty. It is no Rectangle, which
// is a drawing call of Windows.
struct PixelRect {
    int32_t Left;
    int32_t Top;
    int32_t Right;
    int32_t Bottom;

    // Edges beyond the 32 bits stand at their end, where no bitmap reaches.
    static constexpr PixelRect At(int32_t left, int32_t top, int64_t width, int64_t height) {
        return {left, top, Saturated(left + width), Saturated(top + height)};
    }
    static constexpr PixelRect Of(const RECT& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }
    static constexpr PixelRect Whole(const BitmapHandle& bitmap) {
        return {0, 0, bitmap.Width, bitmap.Height};
    }

    constexpr RECT AsRect() const { return {Left, Top, Right, Bottom}; }
    constexpr bool IsEmpty() const { return Right <= Left || Bottom <= Top; }
    // Below 0 where the edges are exchanged.
    constexpr int64_t Width() const { return int64_t{Right} - Left; }
    constexpr int64_t Height() const { return int64_t{Bottom} - Top; }
    constexpr bool Holds(int32_t column, int32_t row) const {
        return column >= Left && column < Right && row >= Top && row < Bottom;
    }
    friend constexpr bool operator==(const PixelRect&, const PixelRect&) = default;
};

// What two rectangles share; all zero when that is nothing.
constexpr PixelRect Intersection(const PixelRect& a, const PixelRect& b) {
    const PixelRect shared = {std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
                              std::min(a.Bottom, b.Bottom)};
    return shared.IsEmpty() ? PixelRect{} : shared;
}

// The smallest rectangle around two; an empty one adds nothing.
constexpr PixelRect Union(const PixelRect& a, const PixelRect& b) {
    if (a.IsEmpty()) return b.IsEmpty() ? PixelRect{} : b;
    if (b.IsEmpty()) return a;
    return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right),
            std::max(a.Bottom, b.Bottom)};
}

// Whether all edges stay within 32 bits; the rectangle is only moved if they do.
constexpr bool Move(PixelRect& rectangle, int32_t dx, int32_t dy) {
    const int64_t left = int64_t{rectangle.Left} + dx, right = int64_t{rectangle.Right} + dx;
    const int64_t top = int64_t{rectangle.Top} + dy, bottom = int64_t{rectangle.Bottom} + dy;
    if (!FitsInt32(left) || !FitsInt32(right) || !FitsInt32(top) || !FitsInt32(bottom)) return false;
    rectangle = {static_cast<int32_t>(left), static_cast<int32_t>(top), static_cast<int32_t>(right),
                 static_cast<int32_t>(bottom)};
    return true;
}

// What of a stretch of columns or rows, which may hang over either end of a line, lies on the line.
struct Cut {
    constexpr Cut(int32_t start, int64_t length, int32_t size)
        : From(std::max(start, 0)),
          Count(std::max<int64_t>(std::min<int64_t>(start + length, size) - From, 0)),
          Offset(int64_t{From} - start) {}

    int32_t From;   // on the line
    int64_t Count;  // none: nothing of the stretch lies on it
    int64_t Offset; // of From in the stretch
};

} // namespace zkr
