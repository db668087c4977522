// Records and their builder.
#include "regions/run_store.h"

#include "core/assertion.h"
#include "regions/platform_region.h"
#include "zkr13n/allocation.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

constexpr uint64_t MostBytes = std::numeric_limits<uint32_t>::max(); // of a row table and of all runs
constexpr uint64_t LeastRoom = 16384 / sizeof(int32_t);              // entries of a new block of runs

template <typename T> T* Allocate(uint64_t count, bool cleared) {
    const uint64_t bytes = count * sizeof(T);
    if (bytes > std::numeric_limits<size_t>::max()) return nullptr;
    return static_cast<T*>(Z_OsAllocInit(static_cast<size_t>(bytes), cleared ? 1 : 0));
}

RegionHandle* NewRecord() {
    return Allocate<RegionHandle>(1, true);
}

// Gives back what a block has too much; a block that cannot be made shorter stays as it is.
template <typename T> void Shrink(T*& block, size_t bytes) {
    if (void* const shorter = Z_OsReAlloc(block, bytes)) block = static_cast<T*>(shorter);
}

void FreeRuns(RegionHandle& region) {
    if (region.RowTable != nullptr) Z_OsFree(region.RowTable);
    if (region.Segments != nullptr) Z_OsFree(region.Segments);
    region.RowTable = nullptr;
    region.Segments = nullptr;
    region.RowTableBytes = region.SegmentBytes = 0;
    region.Left = region.Top = region.Right = region.Bottom = 0;
}

} // namespace

void DropRegionCaches(RegionHandle& region) {
    if (region.MaskBitmap != nullptr) platform::DeleteObject(region.MaskBitmap);
    region.MaskBitmap = nullptr;
    if (region.PlatformRegion != nullptr) platform::DeleteObject(region.PlatformRegion);
    region.PlatformRegion = nullptr;
}

void EmptyRegion(RegionHandle& region) {
    FreeRuns(region);
    DropRegionCaches(region);
}

void FreeRegion(RegionHandle* region) {
    if (region == nullptr) return;
    EmptyRegion(*region);
    Z_OsFree(region);
}

void ReplaceRuns(RegionHandle& region, OwnedRegion& built) {
    EmptyRegion(region);
    region = *built;
    Z_OsFree(built.Release());
}

ReturnCode RegionBuilder::Begin(const PixelRect& rectangle, uint64_t expectedEntries, uint64_t rowEntries) {
    region_.Reset(NewRecord());
    capacity_ = used_ = pending_ = 0;
    row_ = rectangle.Top;
    if (!region_) return code::OutOfMemory;
    const auto rows = static_cast<uint64_t>(std::max<int64_t>(rectangle.Height(), 0));
    const auto columns = static_cast<uint64_t>(std::max<int64_t>(rectangle.Width(), 0));
    const uint64_t room = std::min((columns + 1) / 2 * 2, rowEntries) + RowSlack;
    if (rows > MostBytes / sizeof(RegionRowEntry) || room > std::numeric_limits<size_t>::max() / 8)
        return code::OutOfMemory;
    rowEntries_ = static_cast<size_t>(room);
    if (rows == 0 || columns == 0) return code::Success;

    region_->RowTable = Allocate<RegionRowEntry>(rows, true);
    const uint64_t start = std::max({uint64_t{rowEntries_}, LeastRoom, expectedEntries + rowEntries_});
    region_->Segments = Allocate<int32_t>(start, false);
    if (region_->RowTable == nullptr || region_->Segments == nullptr) return code::OutOfMemory;
    capacity_ = static_cast<size_t>(start);
    return code::Success;
}

ReturnCode RegionBuilder::Grow() {
    const uint64_t wanted = uint64_t{used_} + std::max<uint64_t>(rowEntries_, used_ / 2);
    if (wanted > std::numeric_limits<size_t>::max() / sizeof(int32_t)) return code::OutOfMemory;
    void* const block = Z_OsReAlloc(region_->Segments, static_cast<size_t>(wanted) * sizeof(int32_t));
    if (block == nullptr) return code::OutOfMemory;
    region_->Segments = static_cast<int32_t*>(block);
    capacity_ = static_cast<size_t>(wanted);
    return code::Success;
}

ReturnCode RegionBuilder::EndRow(size_t entries) {
    pending_ = 0;
    const int64_t row = row_++;
    if (entries == 0) return code::Success;
    RegionHandle& region = *region_;
    if ((uint64_t{used_} + entries) * sizeof(int32_t) > MostBytes) return code::OutOfMemory;
    const int32_t* const runs = Room();
    ZKR_ASSERT(entries % 2 == 0 && entries <= rowEntries_);
    ZKR_ASSERT(std::adjacent_find(runs, runs + entries, [](int32_t a, int32_t b) { return a >= b; }) ==
               runs + entries);
    if (used_ == 0) {
        region.Top = static_cast<int32_t>(row);
        region.Left = runs[0];
        region.Right = runs[entries - 1];
    }
    region.Bottom = static_cast<int32_t>(row + 1);
    region.Left = std::min(region.Left, runs[0]);
    region.Right = std::max(region.Right, runs[entries - 1]);
    region.RowTable[row - region.Top] = {static_cast<uint32_t>(entries),
                                         static_cast<uint32_t>(used_ * sizeof(int32_t))};
    used_ += entries;
    return capacity_ - used_ < rowEntries_ ? Grow() : code::Success;
}

ReturnCode RegionBuilder::CopyRow(Runs runs) {
    std::copy(runs.begin(), runs.end(), Room());
    return EndRow(runs.size());
}

ReturnCode RegionBuilder::EndRows(int64_t equalRows) {
    const size_t entries = pending_;
    if (entries == 0) {
        SkipRows(equalRows);
        return code::Success;
    }
    ReturnCode status = EndRow();
    for (int64_t copy = 1; copy < equalRows && status == code::Success; ++copy)
        status = CopyRow({Room() - entries, entries});
    return status;
}

void RegionBuilder::Finish(OwnedRegion& result) {
    RegionHandle& region = *region_;
    if (used_ == 0) {
        FreeRuns(region);
    } else {
        region.RowTableBytes = static_cast<uint32_t>(
            static_cast<size_t>(int64_t{region.Bottom} - region.Top) * sizeof(RegionRowEntry));
        region.SegmentBytes = static_cast<uint32_t>(used_ * sizeof(int32_t));
        Shrink(region.RowTable, region.RowTableBytes);
        // A little may stay: memory that keeps its size is sooner used again.
        if (capacity_ - used_ > capacity_ / 8) Shrink(region.Segments, region.SegmentBytes);
    }
    result.Reset(region_.Release());
}

ReturnCode RectRegion(OwnedRegion& result, const PixelRect& rectangle) {
    RegionBuilder builder;
    const int64_t rows = rectangle.IsEmpty() ? 0 : rectangle.Height();
    ReturnCode status =
        builder.Begin(rows == 0 ? PixelRect{} : rectangle, static_cast<uint64_t>(rows) * 2, 2);
    for (int64_t row = 0; row < rows && status == code::Success; ++row) {
        builder.AddRun(rectangle.Left, rectangle.Right);
        status = builder.EndRow();
    }
    if (status == code::Success) builder.Finish(result);
    return status;
}

ReturnCode DuplicateRegion(OwnedRegion& result, const RegionHandle& source) {
    OwnedRegion copy(NewRecord());
    if (!copy) return code::OutOfMemory;
    if (!IsEmpty(source)) {
        copy->RowTable = static_cast<RegionRowEntry*>(Z_OsAlloc(source.RowTableBytes));
        copy->Segments = static_cast<int32_t*>(Z_OsAlloc(source.SegmentBytes));
        if (copy->RowTable == nullptr || copy->Segments == nullptr) return code::OutOfMemory;
        std::memcpy(copy->RowTable, source.RowTable, source.RowTableBytes);
        std::memcpy(copy->Segments, source.Segments, source.SegmentBytes);
        copy->RowTableBytes = source.RowTableBytes;
        copy->SegmentBytes = source.SegmentBytes;
        copy->Left = source.Left;
        copy->Top = source.Top;
        copy->Right = source.Right;
        copy->Bottom = source.Bottom;
    }
    copy->PlatformXform = source.PlatformXform;
    if (source.PlatformRegion != nullptr)
        copy->PlatformRegion = DuplicatePlatformRegion(source.PlatformRegion);
    result.Reset(copy.Release());
    return code::Success;
}

} // namespace zkr
