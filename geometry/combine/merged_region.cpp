// Regions through the dispatch table. The bitmap's own record is what is kept aside: a copy takes its place, so that
// whatever fails, the record comes back as it was.
#include "geometry/combine/merged_region.h"

#include "core/attachments.h"
#include "core/dispatch.h"

#include <utility>

namespace zkr::geometry {

namespace {

RegionHandle* RegionOf(const BitmapHandle& bitmap) {
    return static_cast<RegionHandle*>(bitmap.Region);
}

} // namespace

MergedRegion::~MergedRegion() {
    if (!isMerged_) return;
    if (Dispatch().CombineRegion(&bitmap_, nullptr, kept_, Z_RGN_SET) != code::Success)
        ReleaseRegion(bitmap_);
}

ReturnCode MergedRegion::Add(const BitmapHandle& other, bool flips, int32_t dx, int32_t dy) {
    if (other.Region == nullptr) return code::Success;
    const DispatchTable& regions = Dispatch();
    BitmapHandle holder{}; // of the copy until it is handed over
    RegionHandle* copy = nullptr;
    ReturnCode status = regions.CopyZircRgn(&copy, RegionOf(other));
    if (status != code::Success || copy == nullptr) return status;
    holder.Region = copy;
    if (flips) status = regions.FlipRegion(copy, other.Height);
    if (status == code::Success) status = regions.OffsetRegion(copy, dx, dy);
    RegionHandle* own = nullptr;
    if (status == code::Success) status = regions.CopyZircRgn(&own, RegionOf(bitmap_));
    if (status != code::Success) {
        ReleaseRegion(holder);
        return status;
    }
    kept_ = RegionOf(bitmap_);
    bitmap_.Region = own;
    isMerged_ = true;
    return regions.CombineRegion(&bitmap_, nullptr, copy, Z_RGN_AND);
}

} // namespace zkr::geometry
