// Set operations: rows that one operand has alone are copied or dropped, all others are merged edge by edge.
#include "regions/set_operations.h"

#include "regions/merge_rows.h"
#include "zkr13n/allocation.h"

#include <algorithm>
#include <limits>

namespace zkr {

namespace {

// Where the result may have pixels.
template <SetOperation operation> PixelRect AreaOf(const RegionHandle& a, const RegionHandle& b) {
    if constexpr (operation == SetOperation::Intersect) return Intersection(BoundsOf(a), BoundsOf(b));
    if constexpr (!Keeps(operation, false, true)) return BoundsOf(a);
    return Union(BoundsOf(a), BoundsOf(b));
}

constexpr size_t RowsInStep = 4;

// Entries of a few rows; it grows with the longest of them.
class WorkRow {
  public:
    WorkRow() = default;
    ~WorkRow() { Z_Free(entries_); }
    WorkRow(const WorkRow&) = delete;
    WorkRow& operator=(const WorkRow&) = delete;

    bool Reserve(size_t count) {
        if (count <= room_) return true;
        Z_Free(entries_);
        room_ = 0;
        const size_t room = count + count / 2;
        entries_ = room > std::numeric_limits<size_t>::max() / sizeof(int32_t)
                       ? nullptr
                       : static_cast<int32_t*>(Z_Malloc(room * sizeof(int32_t)));
        if (entries_ != nullptr) room_ = room;
        return entries_ != nullptr;
    }
    int32_t* data() const { return entries_; }

  private:
    int32_t* entries_ = nullptr;
    size_t room_ = 0;
};

template <SetOperation operation> class Combination {
  public:
    Combination(const RegionHandle& a, const RegionHandle& b)
        : a_(a), b_(b), area_(AreaOf<operation>(a, b)), shared_(Intersection(BoundsOf(a), BoundsOf(b))),
          goesInStep_(operation != SetOperation::Xor && area_.Left > std::numeric_limits<int32_t>::min() &&
                      area_.Right < std::numeric_limits<int32_t>::max()) {}

    ReturnCode Make(OwnedRegion& result) {
        const uint64_t most = EntriesOf(a_) + EntriesOf(b_);
        const uint64_t expected =
            operation == SetOperation::Unite ? most : std::max(EntriesOf(a_), EntriesOf(b_));
        ReturnCode status = builder_.Begin(area_, expected, most);
        for (int64_t row = area_.Top; row < area_.Bottom && status == code::Success;) {
            if (goesInStep_ && row >= shared_.Top && row + int64_t{RowsInStep} <= shared_.Bottom) {
                status = MergeInStep(row);
                row += RowsInStep;
            } else {
                status = MergeOne(row++);
            }
        }
        if (status == code::Success) builder_.Finish(result);
        return status;
    }

  private:
    ReturnCode MergeOne(int64_t row) {
        const Runs a = RowRuns(a_, row), b = RowRuns(b_, row);
        if (b.empty() && Keeps(operation, true, false)) return builder_.CopyRow(a);
        if (a.empty() && Keeps(operation, false, true)) return builder_.CopyRow(b);
        return builder_.EndRow(MergeEdges<operation>(a, b, builder_.Room()));
    }

    // Every operation is the overlap of runs and gaps: a union's gaps are what the gaps of both share.
    ReturnCode MergeInStep(int64_t first) {
        Runs a[RowsInStep], b[RowsInStep];
        size_t entries = 0;
        for (size_t i = 0; i < RowsInStep; ++i) {
            a[i] = RowRuns(a_, first + static_cast<int64_t>(i));
            b[i] = RowRuns(b_, first + static_cast<int64_t>(i));
            entries += a[i].size() + b[i].size();
        }
        // Each row's gaps have two entries more than its runs, and an overlap writes two more than it has.
        if (!work_.Reserve(2 * entries + RowsInStep * 10)) return code::OutOfMemory;
        int32_t* next = work_.data();
        std::array<Overlap, RowsInStep> overlaps;
        for (size_t i = 0; i < RowsInStep; ++i) {
            if constexpr (operation == SetOperation::Unite) {
                a[i] = WriteGaps(a[i], next);
                next += a[i].size();
            }
            if constexpr (operation != SetOperation::Intersect) {
                b[i] = WriteGaps(b[i], next);
                next += b[i].size();
            }
            overlaps[i].Begin(a[i], b[i], next);
            next += a[i].size() + b[i].size() + 2;
        }
        OverlapInStep(overlaps);
        ReturnCode status = code::Success;
        for (size_t i = 0; i < RowsInStep && status == code::Success; ++i) {
            Runs runs = overlaps[i].Finish();
            if constexpr (operation == SetOperation::Unite) runs = runs.subspan(1, runs.size() - 2);
            status = builder_.CopyRow(runs);
        }
        return status;
    }

    const RegionHandle& a_;
    const RegionHandle& b_;
    const PixelRect area_, shared_;
    const bool goesInStep_; // gaps have no room at the ends of the number line
    RegionBuilder builder_;
    WorkRow work_;
};

template <SetOperation operation>
ReturnCode Combine(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b) {
    return Combination<operation>(a, b).Make(result);
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
