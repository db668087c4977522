// How a region is asked for its rows, through the dispatch table.
#include "core/region_rows.h"

#include "core/dispatch.h"
#include "core/rectangle.h"

#include <algorithm>

namespace zkr {

ReturnCode RegionRows::Begin() {
    RECT bounds{};
    ReturnCode result = Dispatch().GetBitmapRgnBounds(&bitmap_, nullptr, &bounds);
    if (result != code::Success) return result;
    const PixelRect inside = Intersection(PixelRect::Of(bounds), PixelRect::Whole(bitmap_));
    top_ = inside.Top;
    rows_ = static_cast<int32_t>(inside.Height());

    result = Dispatch().GetBitmapClipSegmentsMax(&bitmap_, &room_);
    if (result != code::Success) return result;
    if (room_ == 0) return code::Success;
    segments_.emplace(std::max<size_t>(room_, 2));
    return *segments_ ? code::Success : code::OutOfMemory;
}

ReturnCode RegionRows::SegmentsOf(int32_t row, std::span<const uint32_t>& segments) {
    segments = {};
    if (room_ == 0) return code::Success;
    int32_t* columns = segments_->data();
    uint32_t entries = 0;
    const ReturnCode result = Dispatch().GetBitmapClipSegments(&bitmap_, row, columns, &entries);
    if (result != code::Success) return failures_ == RowFailures::Ignored ? code::Success : result;
    entries = std::min(entries, room_) & ~1u;
    // From left to right, so that the ends tell whether any is outside.
    const int32_t width = std::max(bitmap_.Width, 0);
    if (entries != 0 && (columns[0] < 0 || columns[entries - 1] > width))
        for (uint32_t i = 0; i < entries; ++i)
            columns[i] = std::clamp(columns[i], 0, width);
    segments = {reinterpret_cast<const uint32_t*>(columns), entries};
    return code::Success;
}

} // namespace zkr
