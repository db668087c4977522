// What a host asks of the region that a bitmap has: whether there is one, its end, copies of records, the runs of
// rows, bounds, area and single points.
#include "regions/combine.h"
#include "regions/moves.h"
#include "regions/transforms.h"

#include "core/flags.h"

#include <algorithm>

using namespace zkr;

namespace {

// Writes the end points that are left of a row's runs within 0 to width; gives their number.
uint32_t CopyCut(Runs runs, int32_t width, int32_t* ends) {
    while (!runs.empty() && runs[1] < 1)
        runs = runs.subspan(2);
    while (!runs.empty() && std::max(runs[runs.size() - 2], 0) >= width)
        runs = runs.first(runs.size() - 2);
    if (runs.empty()) return 0;
    std::copy(runs.begin(), runs.end(), ends);
    ends[0] = std::max(ends[0], 0);
    ends[runs.size() - 1] = std::min(ends[runs.size() - 1], width);
    return static_cast<uint32_t>(runs.size());
}

PixelRect BoundsOfRegion(const BitmapHandle& bitmap) {
    return bitmap.Region == nullptr ? PixelRect::Whole(bitmap) : BoundsOf(*RegionOf(bitmap));
}

} // namespace

int32_t Z_CALL Z_BitmapHasRgn(const BitmapHandle* bitmap) {
    return bitmap != nullptr && bitmap->Region != nullptr ? 1 : 0;
}

ReturnCode Z_CALL Z_FreeBitmapRgn(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidArgument;
    FreeRegion(RegionOf(*bitmap));
    bitmap->Region = nullptr;
    return code::Success;
}

ReturnCode Z_CALL Z_CopyZircRgn(RegionHandle** destination, const RegionHandle* source) {
    if (destination == nullptr) return code::InvalidArgument;
    OwnedRegion copy;
    const ReturnCode status = source == nullptr ? code::Success : DuplicateRegion(copy, *source);
    if (status == code::Success) *destination = copy.Release();
    return status;
}

ReturnCode Z_CALL Z_GetBitmapClipSegmentsMax(BitmapHandle* bitmap, uint32_t* maximum) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (maximum == nullptr) return code::InvalidArgument;
    *maximum = 2;
    if (const RegionHandle* const region = RegionOf(*bitmap)) {
        const int64_t ends = std::max<int64_t>(BoundsOf(*region).Width() + 1, 0);
        *maximum = static_cast<uint32_t>(std::min<int64_t>(ends, UINT32_MAX)) & ~1u;
    }
    return code::Success;
}

ReturnCode Z_CALL Z_GetBitmapClipSegments(BitmapHandle* bitmap, int32_t row, int32_t* segments,
                                          uint32_t* count) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (segments == nullptr || count == nullptr) return code::InvalidArgument;
    const RegionHandle* const region = RegionOf(*bitmap);
    if (region == nullptr) {
        segments[0] = 0;
        segments[1] = bitmap->Width;
        *count = 2;
        return code::Success;
    }
    const bool isUnclipped = HasFlag(*bitmap, flag::RegionUnclipped);
    const bool isOutside = isUnclipped && (row < 0 || row >= bitmap->Height);
    const Runs runs = isOutside ? Runs{} : RowRuns(*region, row);
    if (isUnclipped) {
        *count = CopyCut(runs, bitmap->Width, segments);
    } else {
        std::copy(runs.begin(), runs.end(), segments);
        *count = static_cast<uint32_t>(runs.size());
    }
    return code::Success;
}

ReturnCode Z_CALL Z_GetBitmapRgnBounds(BitmapHandle* bitmap, const RegionXform* xform, RECT* rectangle) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (rectangle == nullptr) return code::InvalidArgument;
    RECT bounds = BoundsOfRegion(*bitmap).AsRect();
    const ReturnCode status = TransformRect(bitmap, xform, &bounds);
    if (status == code::Success) *rectangle = bounds;
    return status;
}

ReturnCode Z_CALL Z_GetBitmapRgnBoundsClip(BitmapHandle* bitmap, const RegionXform* xform, RECT* rectangle) {
    RECT bounds;
    if (bitmap != nullptr && rectangle == nullptr) return code::InvalidArgument;
    const ReturnCode status = Z_GetBitmapRgnBounds(bitmap, xform, &bounds);
    if (status == code::Success)
        *rectangle = Intersection(PixelRect::Of(bounds), PixelRect::Whole(*bitmap)).AsRect();
    return status;
}

ReturnCode Z_CALL Z_GetBitmapRgnArea(const BitmapHandle* bitmap, uint32_t* area) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (area == nullptr) return code::InvalidArgument;
    int64_t pixels = 0; // 2^30 runs of 2^32 pixels at most
    if (const RegionHandle* const region = RegionOf(*bitmap)) {
        for (size_t i = 0; i < region->SegmentBytes / sizeof(int32_t); i += 2)
            pixels += int64_t{region->Segments[i + 1]} - region->Segments[i];
    } else {
        pixels = int64_t{bitmap->Width} * bitmap->Height;
    }
    *area = static_cast<uint32_t>(std::min<int64_t>(pixels, UINT32_MAX));
    return code::Success;
}

int32_t Z_CALL Z_IsPtInBitmapRgn(BitmapHandle* bitmap, int32_t row, int32_t column) {
    if (bitmap == nullptr) return 0;
    const RegionHandle* const region = RegionOf(*bitmap);
    if (region == nullptr) return PixelRect::Whole(*bitmap).Holds(column, row) ? 1 : 0;
    const Runs runs = RowRuns(*region, row);
    // An odd number of end points at or before a pixel means that it is inside.
    return static_cast<int32_t>((std::upper_bound(runs.begin(), runs.end(), column) - runs.begin()) & 1);
}

ReturnCode Z_CALL Z_OffsetBitmapRgn(BitmapHandle* bitmap, int32_t rowOffset, int32_t columnOffset) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    OwnedRegion whole;
    if (bitmap->Region == nullptr) {
        const ReturnCode status = RectRegion(whole, PixelRect::Whole(*bitmap));
        if (status != code::Success) return status;
    }
    RegionHandle* const region = whole ? whole.get() : RegionOf(*bitmap);
    ReturnCode status = OffsetRegion(region, columnOffset, rowOffset);
    if (status == code::Success) status = ClipToBitmap(*bitmap, *region);
    if (status == code::Success && whole) bitmap->Region = whole.Release();
    return status;
}
