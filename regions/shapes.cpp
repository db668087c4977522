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

// The platform would exchange the edges of an inverted rectangle, which holds nothing here.
template <typename Make> HRGN MakeWithin(const RECT& rectangle, Make make) {
    return PixelRect::Of(rectangle).IsEmpty() ? platform::CreateRectRgn(0, 0, 0, 0) : make(rectangle);
}

} // namespace

ReturnCode Z_CALL Z_SetBitmapRgnRect(BitmapHandle* bitmap, const RegionXform* xform, const RECT* rectangle,
                                     uint32_t mode) {
    if (rectangle == nullptr) return code::InvalidArgument;
    // What no mode can select is not built.
    PixelRect area = PixelRect::Of(*rectangle);
    if (bitmap != nullptr && xform == nullptr && !HasFlag(*bitmap, flag::RegionUnclipped))
        area = Intersection(area, PixelRect::Whole(*bitmap));
    OwnedRegion record;
    const ReturnCode status = RectRegion(record, area);
    return status == code::Success ? CombineRegion(bitmap, xform, record.Release(), mode) : status;
}

ReturnCode Z_CALL Z_SetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform, HRGN platformRegion,
                                       uint32_t mode) {
    if (bitmap == nullptr) return code::InvalidArgument;
    if (platformRegion == nullptr) return CombineRegion(bitmap, nullptr, nullptr, mode);
    OwnedRegion record;
    const ReturnCode status = RegionFromPlatform(platformRegion, record);
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
