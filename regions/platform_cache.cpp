// A bitmap's region as a platform region, kept in the record: a change of offsets alone moves what is kept, so that
// scrolling costs nothing.
#include "core/flags.h"
#include "regions/platform_region.h"
#include "regions/transforms.h"

using namespace zkr;

namespace {

bool ScalesAlike(const RegionXform& a, const RegionXform& b) {
    return a.ViewPerspective == b.ViewPerspective && a.XNumerator == b.XNumerator &&
           a.XDenominator == b.XDenominator && a.YNumerator == b.YNumerator &&
           a.YDenominator == b.YDenominator;
}

// Brings the kept region to a transform, where no more than its offsets have to change.
bool MoveKept(const BitmapHandle& bitmap, RegionHandle& region, const RegionXform& xform) {
    RegionXform& kept = region.PlatformXform;
    if (region.PlatformRegion == nullptr || bitmap.ViewPerspective != region.PlatformView ||
        !ScalesAlike(kept, xform))
        return false;
    const int64_t dx = int64_t{xform.XOffset} - kept.XOffset, dy = int64_t{xform.YOffset} - kept.YOffset;
    if (dx == 0 && dy == 0) return true;
    if (!FitsInt32(dx) || !FitsInt32(dy) ||
        platform::OffsetRgn(region.PlatformRegion, static_cast<int>(dx), static_cast<int>(dy)) == ERROR)
        return false;
    kept = xform;
    return true;
}

ReturnCode MakeWhole(const BitmapHandle* bitmap, const RegionXform& xform, HRGN* platformRegion) {
    RECT whole = PixelRect::Whole(*bitmap).AsRect();
    const ReturnCode status = TransformRect(bitmap, &xform, &whole);
    if (status != code::Success) return status;
    if (PixelRect::Of(whole).IsEmpty()) whole = {}; // the platform would exchange the edges
    const HRGN made = platform::CreateRectRgn(whole.left, whole.top, whole.right, whole.bottom);
    if (made == nullptr) return code::OutOfMemory;
    *platformRegion = made;
    return code::Success;
}

} // namespace

ReturnCode Z_CALL Z_IntGetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform,
                                          HRGN* platformRegion, int32_t* owned) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (platformRegion == nullptr || owned == nullptr) return code::InvalidArgument;
    const RegionXform wanted = xform != nullptr ? *xform : NeutralXform(*bitmap);
    RegionHandle* const region = RegionOf(*bitmap);
    if (region == nullptr) {
        const ReturnCode status = MakeWhole(bitmap, wanted, platformRegion);
        if (status == code::Success) *owned = 1;
        return status;
    }
    if (!MoveKept(*bitmap, *region, wanted)) {
        HRGN made = nullptr;
        const ReturnCode status = RegionToPlatform(bitmap, region, &wanted, &made);
        if (status != code::Success) return status;
        if (region->PlatformRegion != nullptr) platform::DeleteObject(region->PlatformRegion);
        region->PlatformRegion = made;
        region->PlatformView = bitmap->ViewPerspective;
        region->PlatformXform = wanted;
    }
    *platformRegion = region->PlatformRegion;
    *owned = 0;
    return code::Success;
}

ReturnCode Z_CALL Z_GetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform, HRGN* platformRegion) {
    if (platformRegion == nullptr) return code::InvalidArgument;
    HRGN region = nullptr;
    int32_t owned = 0;
    if (Z_IntGetBitmapRgnHandle(bitmap, xform, &region, &owned) != code::Success) return 0;
    if (owned == 0) region = DuplicatePlatformRegion(region);
    if (region == nullptr) return code::OutOfMemory;
    *platformRegion = region;
    return code::Success;
}
