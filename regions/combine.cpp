// Combine modes, and copies from bitmap to bitmap.
#include "regions/combine.h"

#include "core/flags.h"
#include "regions/moves.h"
#include "regions/set_operations.h"
#include "regions/transforms.h"

namespace zkr {

namespace {

ReturnCode Merge(const RegionHandle& given, const RegionHandle& present, uint32_t mode, OwnedRegion& result) {
    switch (mode) {
    case Z_RGN_AND: return IntersectRegions(result, given, present);
    case Z_RGN_ANDNOTBITMAP: return SubtractRegions(result, given, present);
    case Z_RGN_ANDNOTRGN:
    case Z_RGN_SETNOT: return SubtractRegions(result, present, given);
    case Z_RGN_OR: return UniteRegions(result, given, present);
    default: return XorRegions(result, given, present);
    }
}

// The present region, or in its place the whole area that pixels can be selected in.
ReturnCode MergeWithPresent(const BitmapHandle& bitmap, OwnedRegion& record, uint32_t mode) {
    const RegionHandle* present = mode == Z_RGN_SETNOT ? nullptr : RegionOf(bitmap);
    OwnedRegion whole;
    if (present == nullptr) {
        PixelRect area = PixelRect::Whole(bitmap);
        if (HasFlag(bitmap, flag::RegionUnclipped)) area = Union(area, BoundsOf(*record));
        const ReturnCode status = RectRegion(whole, area);
        if (status != code::Success) return status;
        present = whole.get();
    }
    OwnedRegion merged;
    const ReturnCode status = Merge(*record, *present, mode, merged);
    if (status == code::Success) record.Reset(merged.Release());
    return status;
}

} // namespace

ReturnCode CombineRegion(BitmapHandle* bitmap, const RegionXform* xform, RegionHandle* record,
                         uint32_t mode) {
    OwnedRegion given(record);
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (record != nullptr) {
        ReturnCode status = TransformRegionIn(bitmap, xform, record);
        if (status == code::Success && mode > Z_RGN_SETNOT) status = code::InvalidArgument;
        if (status == code::Success && mode != Z_RGN_SET) status = MergeWithPresent(*bitmap, given, mode);
        if (status == code::Success) status = ClipToBitmap(*bitmap, *given);
        if (status != code::Success) return status;
        DropRegionCaches(*given);
    }
    FreeRegion(RegionOf(*bitmap));
    bitmap->Region = given.Release();
    return code::Success;
}

ReturnCode CopyBitmapRegion(BitmapHandle* destination, BitmapHandle* source, int32_t dx, int32_t dy) {
    if (destination == nullptr || source == nullptr) return code::InvalidArgument;
    const RegionHandle* const original = RegionOf(*source);
    destination->Region = nullptr;
    if (original == nullptr) return code::Success;
    OwnedRegion copy;
    ReturnCode status = DuplicateRegion(copy, *original);
    if (status == code::Success) status = OffsetRegion(copy.get(), dx, dy);
    if (status == code::Success) status = ClipToBitmap(*destination, *copy);
    if (status == code::Success) destination->Region = copy.Release();
    return status;
}

} // namespace zkr
