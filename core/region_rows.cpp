// How a region is asked for its rows, through the dispatch table.
#include "core/region_rows.h"

#include "core/dispatch.h"

#include <algorithm>

namespace zkr {

ReturnCode RegionRows::Begin() {
    top_ = 0;
    int32_t bottom = bitmap_.Height;
    const bool hasRegion = bitmap_.Region != nullptr;
    if (hasRegion && dispatch.GetBitmapRgnBounds != nullptr) {
        RECT bounds{};
        const ReturnCode result = dispatch.GetBitmapRgnBounds(&bitmap_, nullptr, &bounds);
        if (result != code::Success) return result;
        top_ = std::max<int32_t>(bounds.top, 0);
        bottom = std::min<int32_t>(bounds.bottom, bottom);
    }
    rows_ = bottom > top_ ? bottom - top_ : 0;

    room_ = 2;
    if (hasRegion && dispatch.GetBitmapClipSegmentsMax != nullptr) {
        const ReturnCode result = dispatch.GetBitmapClipSegmentsMax(&bitmap_, &room_);
        if (result != code::Success) return result;
    }
    segments_.emplace(std::max<size_t>(room_, 2));
    return *segments_ ? code::Success : code::OutOfMemory;
}

ReturnCode RegionRows::SegmentsOf(int32_t row, std::span<const uint32_t>& segments) {
    const auto width = static_cast<uint32_t>(bitmap_.Width);
    uint32_t* columns = segments_->data();
    uint32_t entries = 2;
    columns[0] = 0;
    columns[1] = width;
    if (bitmap_.Region != nullptr && dispatch.GetBitmapClipSegments != nullptr) {
        entries = room_;
        const ReturnCode result = dispatch.GetBitmapClipSegments(&bitmap_, row, columns, &entries);
        if (result != code::Success) return result;
        entries = std::min(entries, room_) & ~1u;
        for (uint32_t i = 0; i < entries; ++i)
            columns[i] = std::min(columns[i], width);
    }
    segments = {columns, entries};
    return code::Success;
}

} // namespace zkr
