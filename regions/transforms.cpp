// Transforms in and out.
#include "regions/transforms.h"

#include "core/views.h"
#include "regions/moves.h"
#include "regions/scale.h"
#include "regions/turns.h"
#include "zkr13n/views.h"

#include <cstdlib>
#include <utility>

namespace zkr {

namespace {

RegionScale ScaleOf(const RegionXform& xform) {
    return {xform.XNumerator, xform.XDenominator, xform.YNumerator, xform.YDenominator};
}

bool RoundsUpY(const BitmapHandle& bitmap, const RegionXform& xform) {
    return xform.ViewPerspective == view::BottomLeft ||
           (xform.ViewPerspective == view::TopLeft && bitmap.ViewPerspective == view::RightTop);
}

// Turns a region by a quarter or more on a scratch bitmap that has the dimensions after the turn.
ReturnCode TurnRegion(RegionHandle& region, int32_t degrees, int32_t oldWidth, int32_t oldHeight) {
    const int32_t quarters = (degrees % 360 + 360) % 360 / 90;
    if (degrees % 90 != 0) return code::InvalidArgument;
    if (quarters == 0) return code::Success;
    BitmapHandle scratch{};
    scratch.Width = oldWidth;
    scratch.Height = oldHeight;
    if (quarters % 2 != 0) std::swap(scratch.Width, scratch.Height);
    scratch.BitsPerPixel = 1;
    scratch.ViewPerspective = view::TopLeft;
    scratch.Region = &region;
    return RotateRegion(&scratch, oldWidth, oldHeight, quarters * 9000);
}

struct ViewChange {
    int32_t Flips = 0;
    int32_t Degrees = 0;
};

ReturnCode FindViewChange(int32_t from, int32_t to, ViewChange& change) {
    if (from == to) return code::Success;
    return Z_GetChangeViewPerspectiveParams(static_cast<uint32_t>(from), static_cast<uint32_t>(to),
                                            &change.Flips, &change.Degrees);
}

// Rounded up, or towards 0. Products that leave 32 bits are worked out in double precision.
int32_t ScaledEdge(int32_t value, int32_t numerator, int32_t denominator, bool roundsUp) {
    if (value == 0) return 0;
    const int64_t added = roundsUp ? int64_t{denominator} - 1 : 0;
    const int64_t reach = std::numeric_limits<int32_t>::max() / std::abs(int64_t{value});
    if (reach >= std::abs(int64_t{numerator}))
        return Saturated((int64_t{value} * numerator + added) / denominator);
    double quotient = static_cast<double>(value) * numerator;
    if (roundsUp) quotient = quotient + denominator - 1;
    return Saturated(static_cast<int64_t>(quotient / denominator)); // at most 2^62
}

int32_t Moved(int32_t value, int32_t offset) {
    return Saturated(int64_t{value} + offset);
}

} // namespace

bool IsValidXform(const RegionXform& xform) {
    return IsView(xform.ViewPerspective) && xform.XDenominator != 0 && xform.YDenominator != 0;
}

RegionXform NeutralXform(const BitmapHandle& bitmap) {
    return {bitmap.ViewPerspective, 1, 1, 1, 1, 0, 0};
}

ReturnCode TransformRegionIn(const BitmapHandle* bitmap, const RegionXform* xform, RegionHandle* region) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (region == nullptr) return code::InvalidArgument;
    if (xform == nullptr) return code::Success;
    if (!IsValidXform(*xform)) return code::InvalidArgument;
    ViewChange change;
    ReturnCode status = OffsetRegion(region, xform->XOffset, xform->YOffset);
    if (status == code::Success) status = ScaleRegion(region, ScaleOf(*xform));
    if (status == code::Success)
        status = FindViewChange(xform->ViewPerspective, bitmap->ViewPerspective, change);
    if (status == code::Success && change.Flips != 0) status = FlipRegion(region, bitmap->Height);
    if (status != code::Success) return status;
    const bool quarter = change.Degrees % 180 != 0;
    return TurnRegion(*region, change.Degrees, quarter ? bitmap->Height : bitmap->Width,
                      quarter ? bitmap->Width : bitmap->Height);
}

ReturnCode TransformRegionOut(const BitmapHandle* bitmap, const RegionXform* xform, RegionHandle* region) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (region == nullptr) return code::InvalidArgument;
    if (xform == nullptr) return code::Success;
    if (!IsValidXform(*xform)) return code::InvalidArgument;
    ViewChange change;
    ReturnCode status = FindViewChange(bitmap->ViewPerspective, xform->ViewPerspective, change);
    if (status == code::Success && change.Flips != 0) status = FlipRegion(region, bitmap->Height);
    if (status == code::Success) status = TurnRegion(*region, change.Degrees, bitmap->Width, bitmap->Height);
    if (status == code::Success)
        status = ScaleRegionForDisplay(region, ScaleOf(*xform), RoundsUpY(*bitmap, *xform));
    return status == code::Success ? OffsetRegion(region, xform->XOffset, xform->YOffset) : status;
}

ReturnCode TransformRect(const BitmapHandle* bitmap, const RegionXform* xform, RECT* rectangle) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (rectangle == nullptr) return code::InvalidArgument;
    if (xform == nullptr) return code::Success;
    if (!IsValidXform(*xform)) return code::InvalidArgument;
    RECT edges = *rectangle;
    if (xform->ViewPerspective != bitmap->ViewPerspective)
        Z_ChangeRectViewPerspective(
            static_cast<uint32_t>(bitmap->ViewPerspective), static_cast<uint32_t>(bitmap->Width),
            static_cast<uint32_t>(bitmap->Height), static_cast<uint32_t>(xform->ViewPerspective), &edges);
    const bool roundsUpY = RoundsUpY(*bitmap, *xform);
    const auto x = [&](int32_t value) {
        return Moved(ScaledEdge(value, xform->XNumerator, xform->XDenominator, true), xform->XOffset);
    };
    const auto y = [&](int32_t value) {
        return Moved(ScaledEdge(value, xform->YNumerator, xform->YDenominator, roundsUpY), xform->YOffset);
    };
    *rectangle = {x(edges.left), y(edges.top), x(edges.right), y(edges.bottom)};
    return code::Success;
}

} // namespace zkr
