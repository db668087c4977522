// Regions from rectangles, platform regions, ellipses, round rectangles and polygons.
#include "core/flags.h"
#include "regions/combine.h"
#include "regions/platform_region.h"
#include "zkr13n/region_shapes.h"

using namespace zkr;

namespace {

// Merges a platform region, which is missing where the platform could not make it, and deletes it.
ReturnCode CombineShape(BitmapHandle* bitmap, const RegionXform* xform, HRGN shape, uint32_t mode) {
    const OwnedPlatformRegion owned(shape);
    return owned ? Z_SetBitmapRgnHandle(bitmap, xform, shape, mode) : code::OutOfMemory;
}

// Where pixels of the bitmap can come from, with room to spare. What lies elsewhere no mode can select, and it is not built.
PixelRect ReachOf(const BitmapHandle* bitmap, const RegionXform* xform) {
    constexpr PixelRect everywhere = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    constexpr int64_t farthest = 1 << 26; // regions of the platform reach a little farther
    if (bitmap == nullptr || HasFlag(*bitmap, flag::RegionUnclipped)) return everywhere;
    if (xform == nullptr) return PixelRect::Whole(*bitmap);
    const bool onlyTurns = xform->XNumerator == 1 && xform->XDenominator == 1 && xform->YNumerator == 1 &&
                           xform->YDenominator == 1 && xform->XOffset == 0 && xform->YOffset == 0;
    const int64_t room = 4 * (int64_t{bitmap->Width} + bitmap->Height + 2);
    if (!onlyTurns || room < 0 || room > farthest) return everywhere;
    const auto edge = static_cast<int32_t>(room);
    return {-edge, -edge, edge, edge};
}

// The part of a platform region that lies within reach, where that is not all of it; a failure leaves none.
ReturnCode CutToReach(HRGN region, const PixelRect& reach, OwnedPlatformRegion& part) {
    RECT box;
    if (platform::GetRgnBox(region, &box) == ERROR) return code::Success; // reading it will fail
    if (Intersection(PixelRect::Of(box), reach) == PixelRect::Of(box)) return code::Success;
    part.Take(platform::CreateRectRgn(reach.Left, reach.Top, reach.Right, reach.Bottom));
    const bool cut = part && platform::CombineRgn(part.get(), part.get(), region, RGN_AND) != ERROR;
    return cut ? code::Success : code::OutOfMemory;
}

// The platform would exchange the edges of an inverted rectangle, which holds nothing here.
template <typename Make> HRGN MakeWithin(const RECT& rectangle, Make make) {
    return PixelRect::Of(rectangle).IsEmpty() ? platform::CreateRectRgn(0, 0, 0, 0) : make(rectangle);
}

} // namespace

ReturnCode Z_CALL Z_SetBitmapRgnRect(BitmapHandle* bitmap, const RegionXform* xform, const RECT* rectangle,
                                     uint32_t mode) {
    if (rectangle == nullptr) return code::InvalidArgument;
    OwnedRegion record;
    const ReturnCode status =
        RectRegion(record, Intersection(PixelRect::Of(*rectangle), ReachOf(bitmap, xform)));
    return status == code::Success ? CombineRegion(bitmap, xform, record.Release(), mode) : status;
}

ReturnCode Z_CALL Z_SetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform, HRGN platformRegion,
                                       uint32_t mode) {
    if (bitmap == nullptr) return code::InvalidArgument;
    if (platformRegion == nullptr) return CombineRegion(bitmap, nullptr, nullptr, mode);
    OwnedPlatformRegion part;
    ReturnCode status = CutToReach(platformRegion, ReachOf(bitmap, xform), part);
    OwnedRegion record;
    if (status == code::Success) status = RegionFromPlatform(part ? part.get() : platformRegion, record);
    return status == code::Success ? CombineRegion(bitmap, xform, record.Release(), mode) : status;
}

ReturnCode Z_CALL Z_SetBitmapRgnEllipse(BitmapHandle* bitmap, const RegionXform* xform, const RECT* rectangle,
                                        uint32_t mode) {
    if (rectangle == nullptr) return code::InvalidArgument;
    const HRGN shape = MakeWithin(
        *rectangle, [](const RECT& around) { return platform::CreateEllipticRgnIndirect(&around); });
    return CombineShape(bitmap, xform, shape, mode);
}

ReturnCode Z_CALL Z_SetBitmapRgnRoundRect(BitmapHandle* bitmap, const RegionXform* xform,
                                          const RECT* rectangle, int32_t ellipseWidth, int32_t ellipseHeight,
                                          uint32_t mode) {
    if (rectangle == nullptr) return code::InvalidArgument;
    const HRGN shape = MakeWithin(*rectangle, [=](const RECT& around) {
        return platform::CreateRoundRectRgn(around.left, around.top, around.right, around.bottom,
                                            ellipseWidth, ellipseHeight);
    });
    return CombineShape(bitmap, xform, shape, mode);
}

ReturnCode Z_CALL Z_SetBitmapRgnPolygon(BitmapHandle* bitmap, const RegionXform* xform, const POINT* points,
                                        int32_t pointCount, uint32_t fillMode, uint32_t mode) {
    if (points == nullptr || fillMode > Z_POLY_ALTERNATE) return code::InvalidArgument;
    if (pointCount < 3) return code::OutOfMemory;
    const int platformMode = fillMode == Z_POLY_WINDING ? WINDING : ALTERNATE;
    return CombineShape(bitmap, xform, platform::CreatePolygonRgn(points, pointCount, platformMode), mode);
}
