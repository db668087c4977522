// Set operations: rows that one operand has alone are copied or dropped, all others are merged edge by edge.
#include "regions/set_operations.h"

#include "regions/merge_rows.h"

#include <algorithm>

namespace zkr {

namespace {

// Where the result may have pixels.
template <SetOperation operation> PixelRect AreaOf(const RegionHandle& a, const RegionHandle& b) {
    if constexpr (operation == SetOperation::Intersect) return Intersection(BoundsOf(a), BoundsOf(b));
    if constexpr (!Keeps(operation, false, true)) return BoundsOf(a);
    return Union(BoundsOf(a), BoundsOf(b));
}

template <SetOperation operation>
ReturnCode Combine(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b) {
    const PixelRect area = AreaOf<operation>(a, b);
    RegionBuilder builder;
    const uint64_t entries = EntriesOf(a) + EntriesOf(b);
    const uint64_t expected = std::max(EntriesOf(a), EntriesOf(b));
    ReturnCode status = builder.Begin(area, expected, entries);
    for (int64_t row = area.Top; row < area.Bottom && status == code::Success; ++row) {
        const Runs runsOfA = RowRuns(a, row), runsOfB = RowRuns(b, row);
        if (runsOfB.empty() && Keeps(operation, true, false))
            status = builder.CopyRow(runsOfA);
        else if (runsOfA.empty() && Keeps(operation, false, true))
            status = builder.CopyRow(runsOfB);
        else
            status = builder.EndRow(MergeRow<operation>(runsOfA, runsOfB, builder.Room()));
    }
    if (status == code::Success) builder.Finish(result);
    return status;
}

} // namespace

ReturnCode IntersectRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b) {
    return Combine<SetOperation::Intersect>(result, a, b);
}

ReturnCode UniteRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b) {
    return Combine<SetOperation::Unite>(result, a, b);
}

ReturnCode SubtractRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b) {
    return Combine<SetOperation::Subtract>(result, a, b);
}

ReturnCode XorRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b) {
    return Combine<SetOperation::Xor>(result, a, b);
}

} // namespace zkr
