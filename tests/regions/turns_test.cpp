// Rotation, shear and transforms of regions against pixel by pixel models.
#include "core/flags.h"
#include "core/views.h"
#include "regions/moves.h"
#include "regions/pixel_sets.h"
#include "regions/scale.h"
#include "regions/transforms.h"
#include "regions/turns.h"
#include "zkr13n/rotate.h"
#include "zkr13n/views.h"

#include <algorithm>
#include <vector>

namespace zkr::test {

namespace {

constexpr int32_t AllViews[] = {0, 1, 2, 3, 4, 5, 7, 8};

// A place that is stepped by sixteen-thousandths, and carries where its remainder leaves -16383 to 16383.
struct SteppedPlace {
    int32_t Whole, Remainder;
    SteppedPlace(int32_t centre, int64_t distance)
        : Whole(centre + static_cast<int32_t>(distance / 16384)),
          Remainder(static_cast<int32_t>(distance % 16384)) {}
    void Step(int32_t by) {
        Remainder += by;
        if (Remainder >= 16384) ++Whole, Remainder -= 16384;
        if (Remainder < -16383) --Whole, Remainder += 16384;
    }
};

struct TurnCase {
    int32_t Width, Height, OldWidth, OldHeight, Angle, View;
    bool IsUnclipped;
};

PixelSet Turned(const PixelSet& set, const PixelRect& bounds, const TurnCase& turn) {
    int32_t angle = ((-turn.Angle) % 36000 + 36000) % 36000;
    if (angle == 0) return set;
    if (IsMirroredView(turn.View)) angle = 36000 - angle;
    const int32_t sine = Z_SinValue(angle), cosine = Z_CosValue(angle);
    const int32_t cx = turn.Width / 2, cy = turn.Height / 2;
    const int32_t oldX = turn.OldWidth / 2, oldY = turn.OldHeight / 2;
    PixelRect area = {0, 0, turn.Width, turn.Height};
    if (turn.IsUnclipped)
        for (const int32_t x : {bounds.Left - oldX, bounds.Right - 1 - oldX})
            for (const int32_t y : {bounds.Top - oldY, bounds.Bottom - 1 - oldY}) {
                const int32_t column = cx + (x * cosine + y * sine) / 16384;
                const int32_t row = cy + (y * cosine - x * sine) / 16384;
                area = Union(area, {column - 2, row - 2, column + 3, row + 3});
            }
    PixelSet result;
    const int32_t dx = area.Left - cx, dy = area.Top - cy;
    SteppedPlace rowX(oldX, int64_t{dx} * cosine - int64_t{dy} * sine);
    SteppedPlace rowY(oldY, int64_t{dx} * sine + int64_t{dy} * cosine);
    for (int32_t y = area.Top; y < area.Bottom; ++y, rowX.Step(-sine), rowY.Step(cosine)) {
        SteppedPlace placeX = rowX, placeY = rowY;
        for (int32_t x = area.Left; x < area.Right; ++x, placeX.Step(cosine), placeY.Step(sine))
            if (set.Has(placeX.Whole, placeY.Whole)) result.Add(x, y);
    }
    return result;
}

TEST(RotateRegion, TakesTheWalkOfATurningBitmap) {
    Seeded seeded(11);
    const int32_t angles[] = {0, 9000, -9000, 18000, 27000, 36000, 4500, 3000, -1, 1, 8999, 44000};
    for (int round = 0; round < 3000; ++round) {
        TurnCase turn = {seeded.Between(1, 40),
                         seeded.Between(1, 40),
                         seeded.Between(1, 40),
                         seeded.Between(1, 40),
                         round % 3 == 0 ? angles[seeded.Below(12)] : seeded.Between(-36000, 36000),
                         AllViews[seeded.Below(8)],
                         seeded.Below(3) == 0};
        const int32_t margin = turn.IsUnclipped ? 5 : 0;
        const PixelSet set =
            PixelSet::Random(seeded, {-margin, -margin, turn.OldWidth + margin, turn.OldHeight + margin});
        const OwnedRegion region(RegionFrom(set));
        BitmapHandle bitmap{};
        bitmap.Width = turn.Width;
        bitmap.Height = turn.Height;
        bitmap.ViewPerspective = turn.View;
        if (turn.IsUnclipped) bitmap.Flags = flag::RegionUnclipped;
        bitmap.Region = region.get();
        const bool isEmpty = IsEmpty(*region);
        const PixelSet expected = isEmpty ? set : Turned(set, BoundsOf(*region), turn);
        ASSERT_EQ(RotateRegion(&bitmap, turn.OldWidth, turn.OldHeight, turn.Angle), code::Success);
        ASSERT_EQ(SetOf(*region), expected)
            << "round " << round << ": " << turn.Angle << " in view " << turn.View << ", " << turn.OldWidth
            << " x " << turn.OldHeight << " to " << turn.Width << " x " << turn.Height;
    }
}

// Lines longer than one stretch of the kernel.
TEST(RotateRegion, WalksLongLines) {
    BitmapHandle bitmap{};
    bitmap.Width = 200000;
    bitmap.Height = 3;
    for (const int32_t angle : {18000, 1, 17999}) {
        OwnedRegion region;
        RegionBuilder builder;
        ASSERT_EQ(builder.Begin({0, 0, 200000, 3}), code::Success);
        for (int32_t row = 0; row < 3; ++row) {
            for (int32_t x = row; x < 199990; x += 7)
                builder.AddRun(x, x + 3 + row);
            ASSERT_EQ(builder.EndRow(), code::Success);
        }
        builder.Finish(region);
        const auto holds = [&](int32_t x, int32_t y) {
            return y >= 0 && y < 3 && x >= y && (x - y) % 7 < 3 + y && x - y < 199990 - y;
        };
        bitmap.Region = region.get();
        ASSERT_EQ(RotateRegion(&bitmap, 200000, 3, angle), code::Success);
        ExpectStoredForm(*region);
        const int32_t sine = Z_SinValue(36000 - angle), cosine = Z_CosValue(36000 - angle);
        SteppedPlace rowX(100000, int64_t{-100000} * cosine + sine),
            rowY(1, int64_t{-100000} * sine - cosine);
        for (int32_t y = 0; y < 3; ++y, rowX.Step(-sine), rowY.Step(cosine)) {
            SteppedPlace placeX = rowX, placeY = rowY;
            std::vector<int32_t> ends;
            for (int32_t x = 0; x <= 200000; ++x, placeX.Step(cosine), placeY.Step(sine))
                if ((x < 200000 && holds(placeX.Whole, placeY.Whole)) != (ends.size() % 2 != 0))
                    ends.push_back(x);
            const Runs runs = RowRuns(*region, y);
            ASSERT_TRUE(std::equal(runs.begin(), runs.end(), ends.begin(), ends.end())) << "row " << y;
        }
    }
}

TEST(RotateRegion, RefusesRegionsWiderThanANumber) {
    const PixelRect wide = {INT32_MIN + 10, 0, 100, 1};
    OwnedRegion region;
    RegionBuilder builder;
    ASSERT_EQ(builder.Begin(wide, 2, 2), code::Success);
    builder.AddRun(wide.Left, wide.Right);
    ASSERT_EQ(builder.EndRow(), code::Success);
    builder.Finish(region);
    BitmapHandle bitmap{};
    bitmap.Width = bitmap.Height = 20;
    bitmap.Flags = flag::RegionUnclipped;
    bitmap.Region = region.get();
    EXPECT_EQ(RotateRegion(&bitmap, 20, 20, 18000), code::OutOfMemory);
    EXPECT_EQ(region->Left, wide.Left);
}

TEST(ShearRegion, SlidesRows) {
    Seeded seeded(12);
    for (int round = 0; round < 2000; ++round) {
        BitmapHandle bitmap{};
        bitmap.Width = seeded.Between(1, 40);
        bitmap.Height = seeded.Between(1, 20);
        bitmap.ViewPerspective = AllViews[seeded.Below(8)];
        const bool isUnclipped = seeded.Below(3) == 0;
        if (isUnclipped) bitmap.Flags = flag::RegionUnclipped;
        const int32_t angle =
            round % 5 == 0 ? std::array{813, 3369, 5631, 0}[seeded.Below(4)] : seeded.Below(6300);
        const int32_t margin = isUnclipped ? 3 : 0;
        const PixelSet set =
            PixelSet::Random(seeded, {0, -margin, bitmap.Width, std::min(bitmap.Height, 12) + margin});
        const OwnedRegion region(RegionFrom(set));
        if (IsEmpty(*region)) continue;
        const int32_t s = Z_SinValue(angle), c = Z_CosValue(angle);
        const bool downwards = IsMirroredView(bitmap.ViewPerspective);
        const int32_t first = downwards ? region->Top : bitmap.Height - region->Bottom;
        int32_t shift = first * (s / c) + first * (s % c) / c, error = first * (s % c) % c;
        if (error < 0) error += c, --shift;
        PixelSet expected;
        for (int32_t k = first; k < first + region->Bottom - region->Top; ++k) {
            const int32_t row = downwards ? k : bitmap.Height - k - 1;
            for (int32_t x = PixelSet::Low; x < PixelSet::High; ++x)
                if (set.Has(x, row) && (isUnclipped || x + shift < bitmap.Width))
                    expected.Add(x + shift, row);
            shift += s / c;
            error += s % c;
            if (error > c) error -= c, ++shift;
        }
        bitmap.Region = region.get();
        ASSERT_EQ(ShearRegion(&bitmap, seeded.Below(2) == 0 ? angle : -angle), code::Success);
        ASSERT_EQ(SetOf(*region), expected) << "round " << round << ", angle " << angle;
    }
    BitmapHandle bitmap{};
    const OwnedRegion region(RegionFrom(PixelSet::Of({0, 0, 2, 2})));
    bitmap.Region = region.get();
    EXPECT_EQ(ShearRegion(&bitmap, 9000), code::InvalidArgument);
    EXPECT_EQ(ShearRegion(nullptr, 0), code::InvalidBitmap);
}

RegionXform RandomXform(Seeded& seeded) {
    const int32_t fractions[][2] = {{1, 1}, {2, 1}, {1, 2}, {3, 2}, {2, 3}, {3, 3}};
    const auto* const x = fractions[seeded.Below(6)];
    const auto* const y = fractions[seeded.Below(6)];
    return {AllViews[seeded.Below(8)], x[0], x[1], y[0], y[1], seeded.Between(-3, 3), seeded.Between(-3, 3)};
}

struct ViewChange {
    int32_t Flip = 0, Degrees = 0;
    ViewChange(int32_t from, int32_t to) {
        EXPECT_EQ(Z_GetChangeViewPerspectiveParams(static_cast<uint32_t>(from), static_cast<uint32_t>(to),
                                                   &Flip, &Degrees),
                  1);
    }
    bool IsQuarter() const { return Degrees % 180 != 0; }
};

// The steps of the way in and of the way out, each by the operation that has a model of its own.
TEST(Transforms, TakeTheirStepsInOrder) {
    Seeded seeded(13);
    for (int round = 0; round < 2000; ++round) {
        const int32_t width = seeded.Between(5, 30), height = seeded.Between(5, 30),
                      view = AllViews[seeded.Below(8)];
        BitmapHandle bitmap{};
        bitmap.Width = width;
        bitmap.Height = height;
        bitmap.ViewPerspective = view;
        const RegionXform xform = RandomXform(seeded);
        const RegionScale scale = {xform.XNumerator, xform.XDenominator, xform.YNumerator,
                                   xform.YDenominator};
        const PixelSet set = PixelSet::Random(seeded, {0, 0, 15, 15});
        const auto turn = [&](RegionHandle* region, const ViewChange& change, bool in) {
            EXPECT_TRUE(change.Flip == 0 || FlipRegion(region, height) == code::Success);
            BitmapHandle scratch{};
            const bool swaps = change.IsQuarter() && !in; // the scratch's dimensions are those after the turn
            scratch.Width = swaps ? height : width;
            scratch.Height = swaps ? width : height;
            scratch.Region = region;
            const bool swapsOld = change.IsQuarter() && in;
            EXPECT_EQ(RotateRegion(&scratch, swapsOld ? height : width, swapsOld ? width : height,
                                   change.Degrees * 100),
                      code::Success);
        };
        for (const bool in : {true, false}) {
            const OwnedRegion expected(RegionFrom(set)), actual(RegionFrom(set));
            const auto move = [&] { return OffsetRegion(expected.get(), xform.XOffset, xform.YOffset); };
            const bool turns = xform.ViewPerspective != view;
            if (in) {
                ASSERT_TRUE(move() == 1 && ScaleRegion(expected.get(), scale) == 1);
                if (turns) turn(expected.get(), {xform.ViewPerspective, view}, true);
            } else {
                if (turns) turn(expected.get(), {view, xform.ViewPerspective}, false);
                const bool roundsUpY =
                    xform.ViewPerspective == 2 || (xform.ViewPerspective == 0 && view == 4);
                ASSERT_TRUE(ScaleRegionForDisplay(expected.get(), scale, roundsUpY) == 1 && move() == 1);
            }
            ASSERT_EQ(in ? TransformRegionIn(&bitmap, &xform, actual.get())
                         : TransformRegionOut(&bitmap, &xform, actual.get()),
                      code::Success);
            ASSERT_EQ(SetOf(*actual), SetOf(*expected)) << "round " << round << (in ? " in" : " out");
        }
    }
}

TEST(Transforms, RefuseBadOnes) {
    BitmapHandle bitmap{};
    const OwnedRegion region(RegionFrom(PixelSet::Of({0, 0, 2, 2})));
    RECT rectangle{};
    for (const RegionXform& bad : {RegionXform{6, 1, 1, 1, 1, 0, 0}, RegionXform{9, 1, 1, 1, 1, 0, 0},
                                   RegionXform{-1, 1, 1, 1, 1, 0, 0}, RegionXform{0, 1, 0, 1, 1, 0, 0},
                                   RegionXform{0, 1, 1, 1, 0, 0, 0}}) {
        EXPECT_EQ(TransformRegionIn(&bitmap, &bad, region.get()), code::InvalidArgument);
        EXPECT_EQ(TransformRegionOut(&bitmap, &bad, region.get()), code::InvalidArgument);
        EXPECT_EQ(TransformRect(&bitmap, &bad, &rectangle), code::InvalidArgument);
    }
    EXPECT_EQ(TransformRegionIn(nullptr, nullptr, nullptr), code::InvalidBitmap);
    EXPECT_EQ(TransformRegionOut(&bitmap, nullptr, nullptr), code::InvalidArgument);
    EXPECT_EQ(TransformRect(&bitmap, nullptr, nullptr), code::InvalidArgument);
}

TEST(Transforms, ScaleEdgesOfRectangles) {
    struct Case {
        int32_t View, BitmapView, Numerator, Denominator, Offset, Value, Column, Row;
    };
    constexpr int32_t most = INT32_MAX, least = INT32_MIN;
    for (const Case& test :
         {Case{0, 0, 2, 3, 10, 4, 13, 12}, // 8 / 3 rounded up and down
          Case{2, 2, 2, 3, 10, 4, 13, 13}, // view 2 rounds rows up as well
          Case{0, 0, 2, 3, 10, 0, 10, 10}, // 0 stays 0
          Case{0, 0, 2, 3, 0, -4, -2, -2}, // (-8 + 2) / 3, -8 / 3
          Case{0, 0, most, 1, 5, most, most, most}, Case{0, 0, most, 1, 5, least, least + 5, least + 5},
          Case{0, 0, 1 << 30, 1 << 29, 0, 12345, 24690, 24690},
          Case{0, 0, 1 << 30, (1 << 30) - 1, 0, 3, 4, 3}}) {
        BitmapHandle bitmap{};
        bitmap.Width = bitmap.Height = 100;
        bitmap.ViewPerspective = test.BitmapView;
        const RegionXform xform = {test.View,        test.Numerator, test.Denominator, test.Numerator,
                                   test.Denominator, test.Offset,    test.Offset};
        RECT rectangle = {test.Value, test.Value, test.Value, test.Value};
        ASSERT_EQ(TransformRect(&bitmap, &xform, &rectangle), code::Success);
        EXPECT_EQ(rectangle.left, test.Column) << test.Value << " by " << test.Numerator;
        EXPECT_EQ(rectangle.top, test.Row) << test.Value << " by " << test.Numerator;
        EXPECT_TRUE(rectangle.right == rectangle.left && rectangle.bottom == rectangle.top);
    }
}

} // namespace

} // namespace zkr::test
