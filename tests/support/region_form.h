// The one form in which a set of pixels may be stored.
#pragma once

#include "zkr13n/region.h"

#include <algorithm>
#include <cstdint>
#include <functional>

namespace zkr::test {

inline bool HasStoredForm(const RegionHandle& region) {
    const auto rows = static_cast<size_t>(int64_t{region.Bottom} - region.Top);
    int32_t left = INT32_MAX, right = INT32_MIN;
    size_t entries = 0;
    bool isGood = region.RowTableBytes == rows * sizeof(RegionRowEntry);
    for (size_t row = 0; row < rows && isGood; ++row) {
        const auto [offset, count] = std::pair(region.RowTable[row].Offset, region.RowTable[row].Count);
        isGood = count != 0 ? count % 2 == 0 && offset % 4 == 0 &&
                                  offset + uint64_t{count} * 4 <= region.SegmentBytes
                            : offset == 0 && row > 0 && row + 1 < rows;
        if (count == 0 || !isGood) continue;
        const int32_t* const ends = region.Segments + offset / 4;
        isGood = std::adjacent_find(ends, ends + count, std::greater_equal<>()) ==
                 ends + count; // runs never touch
        left = std::min(left, ends[0]), right = std::max(right, ends[count - 1]);
        entries += count;
    }
    if (!isGood || entries * sizeof(int32_t) != region.SegmentBytes) return false;
    if (rows != 0) return left == region.Left && right == region.Right;
    return region.Left == 0 && region.Top == 0 && region.Right == 0 && !region.RowTable && !region.Segments;
}

} // namespace zkr::test
