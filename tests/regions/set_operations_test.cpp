// Set operations and moves of regions against sets of pixels.
#include "core/flags.h"
#include "regions/combine.h"
#include "regions/moves.h"
#include "regions/pixel_sets.h"
#include "regions/scale.h"
#include "regions/set_operations.h"

#include <algorithm>
#include <cstring>

namespace zkr::test {

namespace {

using Truth = bool (*)(bool a, bool b);

const std::pair<ReturnCode (*)(OwnedRegion&, const RegionHandle&, const RegionHandle&), Truth> operations[] =
    {{IntersectRegions, [](bool a, bool b) { return a && b; }},
     {UniteRegions, [](bool a, bool b) { return a || b; }},
     {SubtractRegions, [](bool a, bool b) { return a && !b; }},
     {XorRegions, [](bool a, bool b) { return a != b; }}};

PixelRect RandomArea(Seeded& seeded, int32_t low, int32_t high) {
    const int32_t left = seeded.Between(low, high), top = seeded.Between(low, high);
    return {left, top, left + seeded.Between(0, 30), top + seeded.Between(0, 12)};
}

TEST(SetOperations, KeepToTheirTruthTables) {
    Seeded seeded(1);
    for (int round = 0; round < 3000; ++round) {
        const PixelSet a = PixelSet::Random(seeded, RandomArea(seeded, 0, 20));
        const PixelSet b = round % 10 == 0 ? a : PixelSet::Random(seeded, RandomArea(seeded, 0, 20));
        const OwnedRegion regionA(RegionFrom(a)), regionB(RegionFrom(b));
        ASSERT_EQ(SetOf(*regionA), a);
        for (const auto& [operation, truth] : operations) {
            OwnedRegion result;
            ASSERT_EQ(operation(result, *regionA, *regionB), code::Success);
            PixelSet expected;
            for (size_t i = 0; i < a.Bits.size(); ++i)
                expected.Bits[i] = truth(a.Bits[i], b.Bits[i]);
            ASSERT_EQ(SetOf(*result), expected) << "round " << round;
        }
    }
}

// Two boards of half a million runs each: together everything, apart nothing.
TEST(SetOperations, TakeAMillionRuns) {
    constexpr int32_t side = 1000;
    OwnedRegion boards[2];
    for (const int32_t odd : {0, 1}) {
        RegionBuilder builder;
        ASSERT_EQ(builder.Begin({0, 0, side, side}), code::Success);
        for (int32_t y = 0; y < side; ++y) {
            for (int32_t x = (y + odd) % 2; x < side; x += 2)
                builder.AddRun(x, x + 1);
            ASSERT_EQ(builder.EndRow(), code::Success);
        }
        builder.Finish(boards[odd]);
    }
    OwnedRegion both, shared, left;
    ASSERT_EQ(UniteRegions(both, *boards[0], *boards[1]), code::Success);
    ASSERT_EQ(IntersectRegions(shared, *boards[0], *boards[1]), code::Success);
    ASSERT_EQ(SubtractRegions(left, *both, *boards[0]), code::Success);
    ExpectStoredForm(*both);
    EXPECT_EQ(EntriesOf(*both), 2u * side);
    EXPECT_TRUE(IsEmpty(*shared));
    ExpectStoredForm(*left);
    ASSERT_EQ(left->SegmentBytes, boards[1]->SegmentBytes);
    EXPECT_EQ(std::memcmp(left->Segments, boards[1]->Segments, left->SegmentBytes), 0);
}

TEST(Moves, MoveEveryPixel) {
    Seeded seeded(2);
    for (int round = 0; round < 2000; ++round) {
        const PixelSet set = PixelSet::Random(seeded, RandomArea(seeded, -8, 20));
        const int32_t dx = seeded.Between(-9, 9), dy = seeded.Between(-9, 9), size = seeded.Between(20, 40);
        const PixelRect clip = RandomArea(seeded, -10, 30);
        BitmapHandle bitmap{};
        bitmap.Width = size;
        const auto expectMoved = [&](const char* name, auto move, auto source) {
            const OwnedRegion region(RegionFrom(set));
            bitmap.Region = region.get();
            ASSERT_EQ(move(region.get()), code::Success);
            ASSERT_EQ(SetOf(*region), PixelSet::Where(source)) << name << ", round " << round;
        };
        expectMoved(
            "offset", [&](RegionHandle* region) { return OffsetRegion(region, dx, dy); },
            [&](int32_t x, int32_t y) { return set.Has(x - dx, y - dy); });
        expectMoved(
            "flip", [&](RegionHandle* region) { return FlipRegion(region, size); },
            [&](int32_t x, int32_t y) { return set.Has(x, size - 1 - y); });
        expectMoved(
            "reverse", [&](RegionHandle*) { return ReverseRegion(&bitmap); },
            [&](int32_t x, int32_t y) { return set.Has(size - 1 - x, y); });
        expectMoved(
            "clip", [&](RegionHandle* region) { return ClipRegion(region, clip); },
            [&](int32_t x, int32_t y) { return clip.Holds(x, y) && set.Has(x, y); });
    }
}

// A pixel becomes the rectangle between its mapped corners.
PixelSet Scaled(const PixelSet& set, const RegionScale& scale, bool roundsUpY) {
    const auto map = [](int64_t value, int64_t numerator, int64_t denominator, bool up) {
        return (value * numerator + (up ? denominator - 1 : 0)) / denominator;
    };
    PixelSet result;
    for (int32_t y = PixelSet::Low; y < PixelSet::High; ++y)
        for (int32_t x = PixelSet::Low; x < PixelSet::High; ++x) {
            if (!set.Has(x, y)) continue;
            const int64_t bottom = map(y + 1, scale.YNumerator, scale.YDenominator, roundsUpY);
            const int64_t right = map(x + 1, scale.XNumerator, scale.XDenominator, true);
            for (int64_t row = map(y, scale.YNumerator, scale.YDenominator, roundsUpY); row < bottom; ++row)
                for (int64_t c = map(x, scale.XNumerator, scale.XDenominator, true); c < right; ++c)
                    result.Add(c, row);
        }
    return result;
}

TEST(Scale, MapsTheCornersOfPixels) {
    Seeded seeded(3);
    const std::pair<int32_t, int32_t> fractions[] = {{1, 2},  {2, 1},   {37, 100}, {5, 3},  {3, 3},
                                                     {7, -7}, {-3, -2}, {0, 4},    {-2, 3}, {1, 1000}};
    for (int round = 0; round < 3000; ++round) {
        const PixelSet set = PixelSet::Random(seeded, RandomArea(seeded, round % 4 == 0 ? -12 : 0, 12));
        const auto& x = fractions[seeded.Between(0, 9)];
        const auto& y = fractions[seeded.Between(0, 9)];
        const RegionScale scale = {x.first, x.second, y.first, y.second};
        const bool isNothing = x == y && x.first == x.second;
        for (const int32_t display : {0, 1, 2}) {
            const OwnedRegion region(RegionFrom(set));
            ASSERT_EQ(display == 0 ? ScaleRegion(region.get(), scale)
                                   : ScaleRegionForDisplay(region.get(), scale, display == 2),
                      code::Success);
            ASSERT_EQ(SetOf(*region), isNothing ? set : Scaled(set, scale, display != 1))
                << "round " << round << " by " << x.first << " / " << x.second << ", " << y.first << " / "
                << y.second;
        }
    }
}

// Coordinates whose products would leave 32 bits are scaled by a coarser fraction, those for display in whole.
TEST(Scale, StaysWithin32Bits) {
    struct Case {
        int32_t Right, Numerator, Denominator, ForBitmaps, ForDisplay;
    };
    for (const Case& test :
         {Case{1 << 20, 4096, 2048, 1 << 21, 1 << 21},
          // 4097 / 2049 loses 2 bits: 1024 / 512, so that the product fits
          Case{1 << 20, 4097, 2049, 1 << 21, 2096641}, Case{INT32_MAX, 3, 1, INT32_MAX, INT32_MAX},
          Case{INT32_MAX, INT32_MAX, 1, INT32_MAX, 0}}) {
        for (const bool display : {false, true}) {
            OwnedRegion region;
            ASSERT_EQ(RectRegion(region, {1, 0, test.Right, 1}), code::Success);
            const RegionScale scale = {test.Numerator, test.Denominator, 1, 1};
            ASSERT_EQ(display ? ScaleRegionForDisplay(region.get(), scale, false)
                              : ScaleRegion(region.get(), scale),
                      code::Success);
            EXPECT_EQ(region->Right, display ? test.ForDisplay : test.ForBitmaps) << test.Numerator;
            ExpectStoredForm(*region);
        }
    }
}

// What would leave 32 bits is refused, and the region stays.
TEST(Moves, RefuseToLeave32Bits) {
    BitmapHandle bitmap{};
    bitmap.Width = bitmap.Height = INT32_MAX;
    OwnedRegion region;
    ASSERT_EQ(RectRegion(region, {INT32_MIN, INT32_MAX - 3, INT32_MAX, INT32_MAX}), code::Success);
    bitmap.Region = region.get();
    EXPECT_EQ(OffsetRegion(region.get(), 1, 0), code::InvalidArgument);
    EXPECT_EQ(OffsetRegion(region.get(), 0, 1), code::InvalidArgument);
    EXPECT_EQ(FlipRegion(region.get(), INT32_MIN), code::InvalidArgument);
    EXPECT_EQ(ReverseRegion(&bitmap), code::InvalidArgument);
    EXPECT_EQ(BoundsOf(*region), (PixelRect{INT32_MIN, INT32_MAX - 3, INT32_MAX, INT32_MAX}));
    EXPECT_EQ(OffsetRegion(nullptr, 0, 0), code::InvalidArgument);
    EXPECT_EQ(ClipRegion(region.get(), {0, 0, INT32_MAX, INT32_MAX}), code::Success);
    EXPECT_EQ(region->Left, 0);
}

TEST(CombineRegion, KeepsToItsModes) {
    Seeded seeded(4);
    for (int round = 0; round < 4000; ++round) {
        BitmapHandle bitmap{};
        bitmap.Width = seeded.Between(1, 40);
        bitmap.Height = seeded.Between(1, 20);
        const bool hasRegion = seeded.Between(0, 2) != 0, isUnclipped = seeded.Between(0, 3) == 0;
        if (isUnclipped) bitmap.Flags = flag::RegionUnclipped;
        const PixelRect whole = PixelRect::Whole(bitmap);
        PixelSet present = PixelSet::Of(whole);
        const PixelSet given = PixelSet::Random(seeded, RandomArea(seeded, -8, 20));
        RegionHandle* const record = RegionFrom(given);
        PixelSet area = present; // all that can be selected
        if (isUnclipped) area = PixelSet::Of(Union(whole, BoundsOf(*record)));
        if (!hasRegion) present = area;
        if (hasRegion) {
            present = PixelSet::Random(seeded, isUnclipped ? RandomArea(seeded, -8, 20) : whole);
            bitmap.Region = RegionFrom(present);
        }
        const auto mode = static_cast<uint32_t>(seeded.Between(0, 7));
        const auto& n = given.Bits;
        const auto& p = present.Bits;
        const decltype(given.Bits) wanted[] = {p & n, n, n & ~p, p & ~n, p | n, p ^ n, area.Bits & ~n};
        const ReturnCode status = CombineRegion(&bitmap, nullptr, record, mode);
        ASSERT_EQ(status, mode > 6 ? code::InvalidArgument : code::Success);
        PixelSet expected;
        expected.Bits = mode > 6 ? p : wanted[mode];
        if (mode <= 6 && !isUnclipped) expected.Bits &= area.Bits;
        ASSERT_EQ(bitmap.Region != nullptr, hasRegion || mode <= 6);
        if (bitmap.Region != nullptr) {
            ASSERT_EQ(SetOf(*RegionOf(bitmap)), expected) << "mode " << mode << ", round " << round;
        }
        ASSERT_EQ(CombineRegion(&bitmap, nullptr, nullptr, 99), code::Success);
        ASSERT_EQ(bitmap.Region, nullptr);
    }
    EXPECT_EQ(CombineRegion(nullptr, nullptr, RegionFrom({}), Z_RGN_SET), code::InvalidBitmap);
}

} // namespace

} // namespace zkr::test
