// Regions in memory: a record with rows of half-open runs. Rows are read through RowRuns and written through
// RegionBuilder. Every set of pixels has one stored form: runs rise and never touch, the first and the last row have
// runs, and the bounds are tight. Storage comes from the Z_OsAlloc family.
#pragma once

#include "core/rectangle.h"
#include "core/return_codes.h"
#include "zkr13n/region.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace zkr {

// End points of one row, starts and ends by turns.
using Runs = std::span<const int32_t>;

// A row outside the table has no runs.
inline Runs RowRuns(const RegionHandle& region, int64_t row) {
    if (row < region.Top || row >= region.Bottom) return {};
    const RegionRowEntry& entry = region.RowTable[row - region.Top];
    return {region.Segments + entry.Offset / sizeof(int32_t), entry.Count};
}

inline PixelRect BoundsOf(const RegionHandle& region) {
    return {region.Left, region.Top, region.Right, region.Bottom};
}
inline uint64_t EntriesOf(const RegionHandle& region) {
    return region.SegmentBytes / sizeof(int32_t);
}
inline bool IsEmpty(const RegionHandle& region) {
    return region.RowTableBytes == 0;
}

inline RegionHandle* RegionOf(const BitmapHandle& bitmap) {
    return static_cast<RegionHandle*>(bitmap.Region);
}

// Frees a record and what it owns; null is left alone.
void FreeRegion(RegionHandle* region);

// Deletes what has been made for the platform from the runs: after every change of them.
void DropRegionCaches(RegionHandle& region);

// Frees rows and runs, so that nothing is selected.
void EmptyRegion(RegionHandle& region);

// A record that is freed at the end of the scope unless it is released.
class OwnedRegion {
  public:
    OwnedRegion() = default;
    explicit OwnedRegion(RegionHandle* region) : region_(region) {}
    ~OwnedRegion() { FreeRegion(region_); }
    OwnedRegion(const OwnedRegion&) = delete;
    OwnedRegion& operator=(const OwnedRegion&) = delete;

    RegionHandle* get() const { return region_; }
    RegionHandle& operator*() const { return *region_; }
    RegionHandle* operator->() const { return region_; }
    explicit operator bool() const { return region_ != nullptr; }

    void Reset(RegionHandle* region) {
        FreeRegion(region_);
        region_ = region;
    }
    RegionHandle* Release() {
        RegionHandle* const region = region_;
        region_ = nullptr;
        return region;
    }

  private:
    RegionHandle* region_ = nullptr;
};

// Puts built's runs into a record whose address stays; its caches are dropped.
void ReplaceRuns(RegionHandle& region, OwnedRegion& built);

// Writes a record row by row, from the top of a rectangle that holds all runs.
class RegionBuilder {
  public:
    RegionBuilder() = default;
    RegionBuilder(const RegionBuilder&) = delete;
    RegionBuilder& operator=(const RegionBuilder&) = delete;

    // expectedEntries: end points of the whole region as far as the caller can tell. rowEntries: the most that one
    // row can take, where that is known to be less than the width allows.
    [[nodiscard]] ReturnCode Begin(const PixelRect& rectangle, uint64_t expectedEntries = 0,
                                   uint64_t rowEntries = std::numeric_limits<uint64_t>::max());

    // Runs of the current row, from left to right; one that touches its predecessor joins it, an empty one is
    // ignored.
    void AddRun(int32_t start, int32_t end) {
        if (start >= end) return;
        if (pending_ != 0 && Room()[pending_ - 1] == start) {
            Room()[pending_ - 1] = end;
            return;
        }
        Room()[pending_++] = start;
        Room()[pending_++] = end;
    }
    // Where end points of the current row may be written instead, as many as a row can take and RowSlack more.
    int32_t* Room() { return region_->Segments + used_; }
    static constexpr size_t RowSlack = 8;

    [[nodiscard]] ReturnCode EndRow() { return EndRow(pending_); }
    [[nodiscard]] ReturnCode EndRow(size_t entries); // of which Room() has been given
    [[nodiscard]] ReturnCode CopyRow(Runs runs);
    [[nodiscard]] ReturnCode EndRows(int64_t equalRows); // the current row and its copies
    void SkipRows(int64_t rows) { row_ += rows; }

    // Hands the record out.
    void Finish(OwnedRegion& result);

  private:
    [[nodiscard]] ReturnCode Grow();

    OwnedRegion region_;
    size_t capacity_ = 0; // entries of Segments
    size_t used_ = 0;     // entries of finished rows
    size_t pending_ = 0;  // entries of the current row
    size_t rowEntries_ = 0;
    int64_t row_ = 0;
};

// A rectangle as a region: one run in each row. An inverted one is empty.
[[nodiscard]] ReturnCode RectRegion(OwnedRegion& result, const PixelRect& rectangle);

// A copy with the runs and the platform region of its source, but without its mask.
[[nodiscard]] ReturnCode DuplicateRegion(OwnedRegion& result, const RegionHandle& source);

} // namespace zkr
