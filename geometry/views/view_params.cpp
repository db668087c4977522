// The arithmetic of view perspectives: what brings one into another, and where points and rectangles go.
// Coordinates come from callers as they are and wrap in 32 bits.
#include "core/return_codes.h"
#include "core/views.h"
#include "zkr13n/views.h"

#include <utility>

namespace zkr {

namespace {

// What shows storage as the top left view: flip, then reverse, then turn by the angle.
struct ViewSteps {
    bool Flips, Reverses;
    int32_t Angle;
};

constexpr ViewSteps StepsOf(int32_t value) {
    switch (value) {
    case view::TopRight: return {false, true, 0};
    case view::BottomLeft: return {true, false, 0};
    case view::BottomRight: return {false, false, 180};
    case view::RightTop: return {false, false, 90};
    case view::LeftTop: return {true, false, 90};
    case view::RightBottom: return {true, false, 270};
    case view::LeftBottom: return {false, false, 270};
    default: return {};
    }
}

// What brings one view into another: flip, then turn.
struct ViewChange {
    bool Flips = false;
    int32_t Angle = 0;
};

bool FindChange(int32_t from, int32_t to, ViewChange& change) {
    if (!IsView(from) || !IsView(to)) return false;
    const ViewSteps first = StepsOf(from), last = StepsOf(to);
    bool flips = first.Flips, reverses = first.Reverses;
    int32_t angle = first.Angle - last.Angle;
    if (last.Reverses) angle -= 180;
    if (last.Flips || last.Reverses) {
        flips = !flips;
        angle = -angle;
    }
    if (flips && reverses) {
        flips = reverses = false;
        angle += 180;
    }
    if (reverses) {
        flips = true;
        angle -= 180;
    }
    // One correction and no more, which leaves -90 from the top right to the left bottom.
    if (angle < 0)
        angle += 360;
    else if (angle >= 360)
        angle -= 360;
    change = {flips, angle};
    return true;
}

constexpr int32_t Difference(uint32_t from, int32_t what) {
    return static_cast<int32_t>(from - static_cast<uint32_t>(what));
}

constexpr int32_t Signed(uint32_t value) {
    return static_cast<int32_t>(value);
}

struct Extent {
    uint32_t Width, Height;
};

void MovePoint(ViewChange change, Extent extent, int32_t& x, int32_t& y) {
    const uint32_t right = extent.Width - 1, bottom = extent.Height - 1;
    if (change.Flips) y = Difference(bottom, y);
    switch (change.Angle) {
    case 90: x = std::exchange(y, x), x = Difference(bottom, x); break;
    case 180: x = Difference(right, x), y = Difference(bottom, y); break;
    case 270: y = std::exchange(x, y), y = Difference(right, y); break;
    default: break;
    }
}

void MoveRectangle(ViewChange change, Extent extent, RECT& r) {
    const uint32_t width = extent.Width, height = extent.Height;
    if (change.Flips) r = {r.left, Difference(height, r.bottom), r.right, Difference(height, r.top)};
    switch (change.Angle) {
    case 90: r = {Difference(height, r.bottom), r.left, Difference(height, r.top), r.right}; break;
    case 180:
        r = {Difference(width, r.right), Difference(height, r.bottom), Difference(width, r.left),
             Difference(height, r.top)};
        break;
    case 270: r = {r.top, Difference(width, r.right), r.bottom, Difference(width, r.left)}; break;
    default: break;
    }
}

Extent ExtentOf(const BitmapHandle& bitmap) {
    return {static_cast<uint32_t>(bitmap.Width), static_cast<uint32_t>(bitmap.Height)};
}

// The size of the picture as rows and columns of a view. The views that flip and turn are left out on purpose:
// callers rely on the coordinates that this gives.
Extent ExtentIn(const BitmapHandle& bitmap, int32_t value) {
    const Extent stored = ExtentOf(bitmap);
    const bool turned =
        ExchangesAxes(bitmap.ViewPerspective) != (value == view::RightTop || value == view::LeftBottom);
    return turned ? Extent{stored.Height, stored.Width} : stored;
}

// Calls move(change, extent) for the way from storage into a view, or back.
template <typename Move> ReturnCode FromBitmap(const BitmapHandle& bitmap, int32_t value, Move move) {
    if (value == bitmap.ViewPerspective) return code::Success;
    ViewChange change;
    if (!FindChange(bitmap.ViewPerspective, value, change)) return code::InvalidArgument;
    move(change, ExtentOf(bitmap));
    return code::Success;
}

template <typename Move> ReturnCode ToBitmap(const BitmapHandle& bitmap, int32_t value, Move move) {
    if (value == bitmap.ViewPerspective) return code::Success;
    ViewChange change;
    if (!FindChange(value, bitmap.ViewPerspective, change)) return code::InvalidArgument;
    move(change, ExtentIn(bitmap, value));
    return code::Success;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GetChangeViewPerspectiveParams(uint32_t from, uint32_t to, int32_t* flip,
                                                   int32_t* angle) {
    ViewChange change;
    if (flip == nullptr || angle == nullptr || !FindChange(Signed(from), Signed(to), change))
        return code::InvalidArgument;
    *flip = change.Flips;
    *angle = change.Angle;
    return code::Success;
}

ReturnCode Z_CALL Z_PointFromBitmap(BitmapHandle* bitmap, uint32_t view, int32_t* x, int32_t* y) {
    if (bitmap == nullptr || x == nullptr || y == nullptr) return code::InvalidArgument;
    return FromBitmap(*bitmap, Signed(view),
                      [=](ViewChange change, Extent extent) { MovePoint(change, extent, *x, *y); });
}

ReturnCode Z_CALL Z_PointToBitmap(BitmapHandle* bitmap, uint32_t view, int32_t* x, int32_t* y) {
    if (bitmap == nullptr || x == nullptr || y == nullptr) return code::InvalidArgument;
    return ToBitmap(*bitmap, Signed(view),
                    [=](ViewChange change, Extent extent) { MovePoint(change, extent, *x, *y); });
}

ReturnCode Z_CALL Z_RectFromBitmap(BitmapHandle* bitmap, uint32_t view, RECT* rectangle) {
    if (bitmap == nullptr || rectangle == nullptr) return code::InvalidArgument;
    return FromBitmap(*bitmap, Signed(view),
                      [=](ViewChange change, Extent extent) { MoveRectangle(change, extent, *rectangle); });
}

ReturnCode Z_CALL Z_RectToBitmap(BitmapHandle* bitmap, uint32_t view, RECT* rectangle) {
    if (bitmap == nullptr || rectangle == nullptr) return code::InvalidArgument;
    return ToBitmap(*bitmap, Signed(view),
                    [=](ViewChange change, Extent extent) { MoveRectangle(change, extent, *rectangle); });
}

ReturnCode Z_CALL Z_ChangeRectViewPerspective(uint32_t from, uint32_t width, uint32_t height, uint32_t to,
                                              RECT* rectangle) {
    if (rectangle == nullptr) return code::InvalidArgument;
    ViewChange change;
    if (FindChange(Signed(from), Signed(to), change)) MoveRectangle(change, {width, height}, *rectangle);
    return code::Success;
}
