// Regions to the platform and back, and the platform region that a record keeps.
#include "core/views.h"
#include "platform/region_pixels.h"
#include "regions/moves.h"
#include "regions/pixel_sets.h"
#include "regions/platform_region.h"
#include "regions/transforms.h"
#include "zkr13n/region.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {

namespace {

PixelSet PixelsOf(HRGN region) {
    PixelSet set;
    for (const RECT& rect : RectsOf(region))
        for (int32_t y = rect.top; y < rect.bottom; ++y)
            for (int32_t x = rect.left; x < rect.right; ++x)
                set.Add(x, y);
    return set;
}

TEST(PlatformRegion, GoesThereAndBack) {
    Seeded seeded(21);
    for (int round = 0; round < 500; ++round) {
        BitmapHandle bitmap{};
        bitmap.Width = bitmap.Height = 30;
        const PixelSet set =
            PixelSet::Random(seeded, {-5, -5, seeded.Between(-4, 40), seeded.Between(-4, 30)});
        const OwnedRegion region(RegionFrom(set));
        HRGN made = nullptr;
        ASSERT_EQ(RegionToPlatform(&bitmap, region.get(), nullptr, &made), code::Success);
        const OwnedPlatformRegion owned(made);
        ASSERT_EQ(PixelsOf(made), set);
        OwnedRegion back;
        ASSERT_EQ(RegionFromPlatform(made, back), code::Success);
        ASSERT_EQ(SetOf(*back), set);
    }
}

// Every run is a rectangle that the transform moves.
TEST(PlatformRegion, ShowsWhatTheTransformShows) {
    Seeded seeded(22);
    constexpr int32_t views[] = {0, 1, 2, 3, 4, 5, 7, 8};
    for (int round = 0; round < 500; ++round) {
        BitmapHandle bitmap{};
        bitmap.Width = bitmap.Height = 20;
        bitmap.ViewPerspective = views[seeded.Below(8)];
        const RegionXform xform = {views[seeded.Below(8)], seeded.Between(1, 4), seeded.Between(1, 3),
                                   seeded.Between(1, 4),   seeded.Between(2, 3), seeded.Between(-5, 5),
                                   seeded.Between(-5, 5)};
        const PixelSet set = PixelSet::Random(seeded, {0, 0, 20, 20});
        PixelSet expected;
        const OwnedRegion region(RegionFrom(set));
        for (int32_t y = 0; y < 20; ++y)
            for (int32_t x = 0; x < 20; ++x) {
                if (!set.Has(x, y)) continue;
                RECT pixel = {x, y, x + 1, y + 1};
                ASSERT_EQ(TransformRect(&bitmap, &xform, &pixel), code::Success);
                for (int32_t row = pixel.top; row < pixel.bottom; ++row)
                    for (int32_t column = pixel.left; column < pixel.right; ++column)
                        expected.Add(column, row);
            }
        HRGN made = nullptr;
        ASSERT_EQ(RegionToPlatform(&bitmap, region.get(), &xform, &made), code::Success);
        const OwnedPlatformRegion owned(made);
        ASSERT_EQ(PixelsOf(made), expected) << "round " << round;
    }
}

// Lists of more rectangles than the platform is given at once, also where it refuses long ones.
TEST(PlatformRegion, IsMadeInParts) {
    BitmapHandle bitmap{};
    OwnedRegion region;
    RegionBuilder builder;
    constexpr int32_t side = 260;
    ASSERT_EQ(builder.Begin({0, 0, side, side}), code::Success);
    for (int32_t row = 0; row < side; ++row) {
        for (int32_t x = row % 2; x < side; x += 2)
            builder.AddRun(x, x + 1);
        ASSERT_EQ(builder.EndRow(), code::Success);
    }
    builder.Finish(region);
    HRGN made = nullptr;
    ASSERT_EQ(RegionToPlatform(&bitmap, region.get(), nullptr, &made), code::Success);
    const OwnedPlatformRegion owned(made);
    EXPECT_EQ(RectsOf(made).size(), size_t{side} * side / 2);
    OwnedRegion back;
    ASSERT_EQ(RegionFromPlatform(made, back), code::Success);
    EXPECT_EQ(back->SegmentBytes, region->SegmentBytes);
}

TEST(PlatformRegion, RefusesWhatIsNone) {
    OwnedRegion region;
    BitmapHandle bitmap{};
    EXPECT_EQ(RegionFromPlatform(nullptr, region), code::InvalidArgument);
    const HRGN stale = platform::CreateRectRgn(0, 0, 2, 2);
    platform::DeleteObject(stale);
    EXPECT_EQ(RegionFromPlatform(stale, region), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnHandle(&bitmap, nullptr, stale, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnHandle(nullptr, nullptr, nullptr, Z_RGN_SET), code::InvalidArgument);
    HRGN made = nullptr;
    EXPECT_EQ(RegionToPlatform(&bitmap, nullptr, nullptr, &made), code::InvalidArgument);
}

struct Kept {
    explicit Kept(BitmapHandle& bitmap) : Target(bitmap) {}
    ~Kept() { Z_FreeBitmapRgn(&Target); }
    HRGN Ask(const RegionXform* xform) {
        HRGN region = nullptr;
        int32_t owned = -1;
        EXPECT_EQ(Z_IntGetBitmapRgnHandle(&Target, xform, &region, &owned), code::Success);
        EXPECT_EQ(owned, 0);
        return region;
    }
    BitmapHandle& Target;
};

// What is kept is moved where only offsets differ, and made anew where anything else does.
TEST(PlatformRegion, IsKept) {
    BitmapHandle bitmap{};
    bitmap.Width = bitmap.Height = 20;
    bitmap.Region = RegionFrom(PixelSet::Of({2, 3, 7, 9}));
    Kept kept(bitmap);
    const HRGN first = kept.Ask(nullptr);
    RegionXform xform = {0, 1, 1, 1, 1, 5, -1};
    EXPECT_EQ(kept.Ask(&xform), first);
    EXPECT_EQ(PixelsOf(first), PixelSet::Of({7, 2, 12, 8}));
    EXPECT_EQ(kept.Ask(nullptr), first);
    EXPECT_EQ(PixelsOf(first), PixelSet::Of({2, 3, 7, 9}));
    xform = {0, 2, 1, 1, 1, 0, 0};
    EXPECT_EQ(PixelsOf(kept.Ask(&xform)), PixelSet::Of({4, 3, 14, 9}));
    bitmap.ViewPerspective = 2; // the bitmap's view alone
    xform = {0, 2, 1, 1, 1, 0, 0};
    EXPECT_EQ(PixelsOf(kept.Ask(&xform)), PixelSet::Of({4, 11, 14, 17}));

    HRGN own = nullptr;
    ASSERT_EQ(Z_GetBitmapRgnHandle(&bitmap, &xform, &own), code::Success);
    EXPECT_NE(own, kept.Ask(&xform));
    EXPECT_EQ(PixelsOf(own), PixelSet::Of({4, 11, 14, 17}));
    EXPECT_TRUE(platform::DeleteObject(own));
    EXPECT_EQ(Z_GetBitmapRgnHandle(nullptr, nullptr, &own), 0);
    EXPECT_EQ(Z_GetBitmapRgnHandle(nullptr, nullptr, nullptr), code::InvalidArgument);

    // Whatever moves pixels drops it; what changes nothing keeps it.
    RegionHandle* const record = RegionOf(bitmap);
    EXPECT_TRUE(OffsetRegion(record, 0, 0) == 1 && ClipRegion(record, {0, 0, 20, 20}) == 1);
    EXPECT_NE(record->PlatformRegion, nullptr);
    EXPECT_EQ(FlipRegion(record, 12), code::Success);
    EXPECT_EQ(record->PlatformRegion, nullptr);
    kept.Ask(nullptr);
    RegionHandle* copy = nullptr;
    ASSERT_EQ(Z_CopyZircRgn(&copy, record), code::Success);
    const OwnedRegion owned(copy);
    EXPECT_TRUE(copy->PlatformRegion != nullptr && copy->PlatformRegion != record->PlatformRegion);
    EXPECT_EQ(copy->PlatformView, 0);
    EXPECT_EQ(copy->PlatformXform.ViewPerspective, 2);
}

TEST(PlatformRegion, FallsAsAPartIsDrawn) {
    BitmapHandle bitmap{};
    bitmap.Width = 20, bitmap.Height = 10;
    const RECT part = {5, 2, 15, 8}, twice = {100, 200, 120, 212}, mirrored = {120, 200, 100, 212};
    const auto ask = [&](const RECT* source, const RECT& destination, int32_t expectedOwned) {
        HRGN region = nullptr;
        int32_t owned = -1;
        EXPECT_EQ(Z_GetResizedRgnHandle(&bitmap, source, &destination, &region, &owned), code::Success);
        EXPECT_EQ(owned, expectedOwned);
        std::vector<RECT> rects = RectsOf(region);
        if (owned != 0) platform::DeleteObject(region);
        return rects;
    };
    const auto isOne = [](const std::vector<RECT>& rects, const PixelRect& expected) {
        return rects.size() == 1 && PixelRect::Of(rects[0]) == expected;
    };
    EXPECT_TRUE(isOne(ask(&part, twice, 1), {100, 200, 120, 212}));
    EXPECT_TRUE(isOne(ask(nullptr, twice, 1), {100, 200, 120, 212}));
    EXPECT_TRUE(ask(nullptr, mirrored, 1).empty());
    bitmap.Region = RegionFrom(PixelSet::Of({0, 4, 7, 6}));
    EXPECT_TRUE(isOne(ask(&part, twice, 1), {100, 204, 104, 208}));
    EXPECT_TRUE(isOne(ask(nullptr, {0, 0, 40, 10}, 0), {0, 4, 14, 6}));
    EXPECT_TRUE(ask(&part, mirrored, 1).empty());
    bitmap.ViewPerspective = 4; // seen turned: 10 wide and 20 high
    EXPECT_TRUE(isOne(ask(nullptr, {0, 0, 10, 20}, 0), {4, 0, 6, 7}));
    HRGN region = nullptr;
    int32_t owned;
    const RECT none{};
    EXPECT_EQ(Z_GetResizedRgnHandle(&bitmap, &none, &twice, &region, &owned), code::InvalidArgument);
    EXPECT_EQ(Z_GetResizedRgnHandle(&bitmap, &part, nullptr, &region, &owned), code::InvalidArgument);
    EXPECT_EQ(Z_GetResizedRgnHandle(nullptr, &part, &twice, &region, &owned), code::InvalidBitmap);
    Z_FreeBitmapRgn(&bitmap);
}

} // namespace

} // namespace zkr::test
