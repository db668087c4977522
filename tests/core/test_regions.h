// Regions for tests of those who reach them through the dispatch table: slanted stripes inside a rectangle,
// which lie in slots that last for a scope.
#pragma once

#include "core/dispatch.h"
#include "core/return_codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zkr::test {

struct TestRegion {
    RECT Bounds;
    int32_t StripeX = 0, StripeY = 0; // where the stripes begin

    bool Holds(int32_t row, int32_t column) const {
        return row >= Bounds.top && row < Bounds.bottom && column >= Bounds.left && column < Bounds.right &&
               (column - StripeX + 100 + 3 * (row - StripeY)) % 7 < 4;
    }
    uint32_t MostEntries() const {
        return static_cast<uint32_t>(std::max<int64_t>(Bounds.right - Bounds.left + 1, 0)) & ~1u;
    }
    std::vector<int32_t> Segments(int32_t row) const {
        std::vector<int32_t> ends;
        for (int32_t column = Bounds.left; column <= Bounds.right; ++column)
            if (Holds(row, column) != (ends.size() % 2 != 0)) ends.push_back(column);
        return ends;
    }
};

// Fills the slots; bitmaps whose Region is null have none. A copy is a TestRegion of its own.
class RegionSlots {
  public:
    inline static int Alive = 0;
    inline static ReturnCode BoundsResult, SegmentsMaxResult, SegmentsResult, CopyResult;
    inline static bool FailsInPlace; // a copy whose destination is its source, too

    RegionSlots() {
        BoundsResult = SegmentsMaxResult = SegmentsResult = CopyResult = code::Success;
        FailsInPlace = false;
        slots_.CopyBitmapRegion = Copy;
        slots_.FreeBitmapRgn = Free;
        slots_.GetBitmapRgnBounds = Bounds;
        slots_.GetBitmapClipSegmentsMax = SegmentsMax;
        slots_.GetBitmapClipSegments = Segments;
        slots_.IsPtInBitmapRgn = IsPoint;
    }
    ~RegionSlots() {
        ExchangeDispatch(before_);
        EXPECT_EQ(Alive, 0) << "regions are left";
    }
    RegionSlots(const RegionSlots&) = delete;
    RegionSlots& operator=(const RegionSlots&) = delete;

    static void Give(BitmapHandle& bitmap, const TestRegion& region) {
        bitmap.Region = new TestRegion(region);
        ++Alive;
    }
    // Regions have no bounds of their own from now on.
    void ForgetBounds() { slots_.GetBitmapRgnBounds = no_region::GetBitmapRgnBounds; }
    static TestRegion& Of(const BitmapHandle& bitmap) { return *static_cast<TestRegion*>(bitmap.Region); }

  private:
    static ReturnCode Z_CALL Bounds(BitmapHandle* bitmap, const RegionXform*, RECT* bounds) {
        *bounds = bitmap->Region ? Of(*bitmap).Bounds : RECT{0, 0, bitmap->Width, bitmap->Height};
        return BoundsResult;
    }
    static ReturnCode Z_CALL SegmentsMax(BitmapHandle* bitmap, uint32_t* entries) {
        *entries = bitmap->Region ? Of(*bitmap).MostEntries() : 2;
        return SegmentsMaxResult;
    }
    static ReturnCode Z_CALL Segments(BitmapHandle* bitmap, int32_t row, int32_t* segments,
                                      uint32_t* entries) {
        const std::vector<int32_t> ends =
            bitmap->Region ? Of(*bitmap).Segments(row) : std::vector<int32_t>{0, bitmap->Width};
        std::copy(ends.begin(), ends.end(), segments);
        *entries = static_cast<uint32_t>(ends.size());
        return SegmentsResult;
    }
    static int32_t Z_CALL IsPoint(BitmapHandle* bitmap, int32_t row, int32_t column) {
        return bitmap->Region == nullptr || Of(*bitmap).Holds(row, column);
    }
    static ReturnCode Z_CALL Free(BitmapHandle* bitmap) {
        delete static_cast<TestRegion*>(bitmap->Region);
        bitmap->Region = nullptr;
        --Alive;
        return code::Success;
    }
    // A failing copy leaves something in the field that nobody may follow.
    static ReturnCode Copy(BitmapHandle* destination, BitmapHandle* source, int32_t dx, int32_t dy) {
        if (CopyResult != code::Success && (destination != source || FailsInPlace)) {
            destination->Region = reinterpret_cast<void*>(1);
            return CopyResult;
        }
        if (source->Region == nullptr) {
            destination->Region = nullptr;
            return code::Success;
        }
        TestRegion moved = Of(*source);
        moved.Bounds = {moved.Bounds.left + dx, moved.Bounds.top + dy, moved.Bounds.right + dx,
                        moved.Bounds.bottom + dy};
        moved.StripeX += dx;
        moved.StripeY += dy;
        Give(*destination, moved);
        return code::Success;
    }

    DispatchTable slots_;
    const DispatchTable* before_ = ExchangeDispatch(&slots_);
};

} // namespace zkr::test
