// Offset, flip, reverse and clip.
#include "regions/moves.h"

#include "core/flags.h"
#include "regions/kernels/run_moves.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zkr {

namespace {

std::span<int32_t> EndPoints(RegionHandle& region) {
    return {region.Segments, region.SegmentBytes / sizeof(int32_t)};
}
std::span<RegionRowEntry> RowEntries(RegionHandle& region) {
    return {region.RowTable, region.RowTableBytes / sizeof(RegionRowEntry)};
}

void SetBounds(RegionHandle& region, const PixelRect& bounds) {
    region.Left = bounds.Left;
    region.Top = bounds.Top;
    region.Right = bounds.Right;
    region.Bottom = bounds.Bottom;
}

} // namespace

ReturnCode OffsetRegion(RegionHandle* region, int32_t dx, int32_t dy) {
    if (region == nullptr) return code::InvalidArgument;
    if (IsEmpty(*region) || (dx == 0 && dy == 0)) return code::Success;
    PixelRect bounds = BoundsOf(*region);
    if (!Move(bounds, dx, dy)) return code::InvalidArgument;
    if (dx != 0)
        kernels::Chosen<kernels::RunMoveKernels>().Offset(region->Segments, EndPoints(*region).size(), dx);
    SetBounds(*region, bounds);
    DropRegionCaches(*region);
    return code::Success;
}

ReturnCode FlipRegion(RegionHandle* region, int32_t height) {
    if (region == nullptr) return code::InvalidArgument;
    if (IsEmpty(*region)) return code::Success;
    const int64_t top = int64_t{height} - region->Bottom, bottom = int64_t{height} - region->Top;
    if (!FitsInt32(top) || !FitsInt32(bottom)) return code::InvalidArgument;
    const std::span<RegionRowEntry> rows = RowEntries(*region);
    std::reverse(rows.begin(), rows.end());
    region->Top = static_cast<int32_t>(top);
    region->Bottom = static_cast<int32_t>(bottom);
    DropRegionCaches(*region);
    return code::Success;
}

ReturnCode ReverseRegion(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    RegionHandle* const region = RegionOf(*bitmap);
    if (region == nullptr || IsEmpty(*region)) return code::Success;
    const int32_t width = bitmap->Width;
    const int64_t left = int64_t{width} - region->Right, right = int64_t{width} - region->Left;
    if (!FitsInt32(left) || !FitsInt32(right)) return code::InvalidArgument;
    // Mirrored as one block, the runs of a row change places and so do the rows' stretches.
    const std::span<int32_t> ends = EndPoints(*region);
    std::reverse(ends.begin(), ends.end());
    for (int32_t& x : ends)
        x = static_cast<int32_t>(int64_t{width} - x);
    for (RegionRowEntry& row : RowEntries(*region))
        if (row.Count != 0)
            row.Offset =
                region->SegmentBytes - row.Offset - row.Count * static_cast<uint32_t>(sizeof(int32_t));
    region->Left = static_cast<int32_t>(left);
    region->Right = static_cast<int32_t>(right);
    DropRegionCaches(*region);
    return code::Success;
}

ReturnCode ClipRegion(RegionHandle* region, const PixelRect& rectangle) {
    if (region == nullptr) return code::InvalidArgument;
    const PixelRect area = Intersection(BoundsOf(*region), rectangle);
    if (area == BoundsOf(*region)) return code::Success;
    if (area.IsEmpty()) {
        EmptyRegion(*region);
        return code::Success;
    }
    RegionBuilder builder;
    ReturnCode status = builder.Begin(area, EntriesOf(*region), EntriesOf(*region));
    for (int64_t row = area.Top; row < area.Bottom && status == code::Success; ++row) {
        const Runs runs = RowRuns(*region, row);
        if (runs.empty() || (runs.front() >= area.Left && runs.back() <= area.Right)) {
            status = builder.CopyRow(runs);
            continue;
        }
        for (size_t i = 0; i < runs.size(); i += 2)
            builder.AddRun(std::max(runs[i], area.Left), std::min(runs[i + 1], area.Right));
        status = builder.EndRow();
    }
    if (status != code::Success) return status;
    OwnedRegion clipped;
    builder.Finish(clipped);
    ReplaceRuns(*region, clipped);
    return code::Success;
}

ReturnCode ClipToBitmap(const BitmapHandle& bitmap, RegionHandle& region) {
    return HasFlag(bitmap, flag::RegionUnclipped) ? code::Success
                                                  : ClipRegion(&region, PixelRect::Whole(bitmap));
}

} // namespace zkr
