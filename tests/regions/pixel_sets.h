// Regions as sets of pixels, for tests that hold them against a slow model: a window of pixels around the origin, and
// the checks of the one form in which a set may be stored.
#pragma once

#include "regions/run_store.h"
#include "support/region_form.h"
#include "support/seeded.h"

#include <gtest/gtest.h>

#include <bitset>
#include <functional>
#include <ostream>

namespace zkr::test {

struct PixelSet {
    static constexpr int32_t Low = -40, High = 88, Side = High - Low;
    std::bitset<size_t{Side} * Side> Bits;

    static bool IsInside(int64_t x, int64_t y) { return x >= Low && x < High && y >= Low && y < High; }
    static size_t Index(int64_t x, int64_t y) { return static_cast<size_t>((y - Low) * Side + x - Low); }
    bool Has(int64_t x, int64_t y) const { return IsInside(x, y) && Bits[Index(x, y)]; }
    void Add(int64_t x, int64_t y) {
        ASSERT_TRUE(IsInside(x, y)) << x << ", " << y << " lies outside the model's window";
        Bits[Index(x, y)] = true;
    }
    bool operator==(const PixelSet&) const = default;

    friend void PrintTo(const PixelSet& set, std::ostream* out) {
        *out << set.Bits.count() << " pixels";
        for (int32_t y = Low, left = 8; y < High; ++y)
            for (int32_t x = Low; x < High && left > 0; ++x)
                if (set.Has(x, y)) *out << (left-- == 8 ? ", first " : "; ") << x << ", " << y;
    }

    // The pixels of which something is true.
    static PixelSet Where(const std::function<bool(int32_t x, int32_t y)>& holds) {
        PixelSet set;
        for (int32_t y = Low; y < High; ++y)
            for (int32_t x = Low; x < High; ++x)
                if (holds(x, y)) set.Bits[Index(x, y)] = true;
        return set;
    }
    static PixelSet Of(const PixelRect& area) {
        return Where([&](int32_t x, int32_t y) { return area.Holds(x, y); });
    }
    // Runs of random lengths in some of the rows of a rectangle.
    static PixelSet Random(Seeded& seeded, const PixelRect& area) {
        PixelSet set;
        const int32_t longest = seeded.Between(1, 9);
        for (int32_t y = area.Top; y < area.Bottom; ++y) {
            if (seeded.Between(0, 3) == 0) continue;
            for (int32_t x = area.Left + seeded.Between(0, longest); x < area.Right;) {
                const int32_t end = std::min(x + seeded.Between(1, longest), area.Right);
                for (; x < end; ++x)
                    set.Add(x, y);
                x += seeded.Between(1, longest);
            }
        }
        return set;
    }
};

inline void ExpectStoredForm(const RegionHandle& region) {
    ASSERT_TRUE(HasStoredForm(region));
}

inline PixelSet SetOf(const RegionHandle& region) {
    ExpectStoredForm(region);
    PixelSet set;
    for (int64_t row = region.Top; row < region.Bottom; ++row) {
        const Runs runs = RowRuns(region, row);
        for (size_t i = 0; i < runs.size(); i += 2)
            for (int64_t x = runs[i]; x < runs[i + 1]; ++x)
                set.Add(x, row);
    }
    return set;
}

inline RegionHandle* RegionFrom(const PixelSet& set) {
    RegionBuilder builder;
    EXPECT_EQ(builder.Begin({PixelSet::Low, PixelSet::Low, PixelSet::High, PixelSet::High}), code::Success);
    for (int32_t y = PixelSet::Low; y < PixelSet::High; ++y) {
        for (int32_t x = PixelSet::Low; x < PixelSet::High; ++x)
            if (set.Has(x, y)) builder.AddRun(x, x + 1);
        EXPECT_EQ(builder.EndRow(), code::Success);
    }
    OwnedRegion region;
    builder.Finish(region);
    return region.Release();
}

} // namespace zkr::test
