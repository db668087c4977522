// The eight views: how the rows and columns of storage lie on the picture. A view is named by the corner of the
// picture where the first pixel of storage lies; where the left or right side is named first, a storage row is a
// column of the picture.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr {

namespace view {

inline constexpr int32_t TopLeft = VIEW_TOP_LEFT;
inline constexpr int32_t TopRight = VIEW_TOP_RIGHT;
inline constexpr int32_t BottomLeft = VIEW_BOTTOM_LEFT;
inline constexpr int32_t BottomRight = VIEW_BOTTOM_RIGHT;
inline constexpr int32_t RightTop = VIEW_RIGHT_TOP;
inline constexpr int32_t LeftTop = VIEW_LEFT_TOP;
inline constexpr int32_t RightBottom = VIEW_RIGHT_BOTTOM;
inline constexpr int32_t LeftBottom = VIEW_LEFT_BOTTOM;

} // namespace view

// A set of views, one bit for each value.
constexpr bool IsViewIn(uint32_t set, int32_t value) {
    return value >= view::TopLeft && value <= view::LeftBottom && (set >> value & 1) != 0;
}

constexpr bool IsView(int32_t value) {
    return IsViewIn(0b1'1011'1111, value);
}

// Whether a storage row is a column of the picture, so that width and height change places.
constexpr bool ExchangesAxes(int32_t value) {
    return IsViewIn(0b1'1011'0000, value);
}

// Whether storage is the mirror image of the picture, so that a turn runs the other way through it.
constexpr bool IsMirroredView(int32_t value) {
    return IsViewIn(0b0'1010'0110, value);
}

// Whether two bitmaps of these views can be walked together: equal views, or such as differ only in which row comes
// first. Equal values need not be views.
constexpr bool DifferInRowOrderAtMost(int32_t a, int32_t b) {
    const auto isPlain = [](int32_t value) { return value == view::TopLeft || value == view::BottomLeft; };
    return a == b || (isPlain(a) && isPlain(b));
}

// The picture's dimensions.
constexpr int32_t ViewedWidth(const BitmapHandle& bitmap) {
    return ExchangesAxes(bitmap.ViewPerspective) ? bitmap.Height : bitmap.Width;
}
constexpr int32_t ViewedHeight(const BitmapHandle& bitmap) {
    return ExchangesAxes(bitmap.ViewPerspective) ? bitmap.Width : bitmap.Height;
}

// What a view is made of: whether a storage row is a column of the picture, and along which of the picture's axes
// storage runs backwards.
struct ViewParts {
    bool IsTurned;
    bool ReversesX;
    bool ReversesY;
};

// Of a value that IsView accepts.
constexpr ViewParts PartsOf(int32_t value) {
    return {.IsTurned = ExchangesAxes(value),
            .ReversesX = IsViewIn(0b0'1001'1010, value),
            .ReversesY = IsViewIn(0b1'1000'1100, value)};
}

} // namespace zkr
