// Regions at work: what writes pixels keeps to them, and what moves pixels or makes other bitmaps carries them along.
#include "colour/pictures.h"
#include "core/views.h"
#include "regions/bitmap_regions.h"
#include "regions/moves.h"
#include "regions/pixel_sets.h"
#include "regions/turns.h"
#include "zkr13n/alpha.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/copy.h"
#include "zkr13n/fill.h"
#include "zkr13n/flip.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/pixels.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/rotate.h"
#include "zkr13n/shear.h"
#include "zkr13n/sizing.h"

namespace zkr::test {

namespace {

constexpr int32_t AllViews[] = {0, 1, 2, 3, 4, 5, 7, 8};

TEST(RegionsAtWork, KeepFillsInside) {
    for (const PictureForm& form : AllForms)
        for (int round = 0; round < 30; ++round) {
            Seeded seeded(static_cast<uint64_t>(form.Bits * 1000 + form.Order * 100 + round));
            const int32_t width = seeded.Between(1, 80), height = seeded.Between(1, 6);
            ColourPicture picture(form, width, height, seeded.Next()), before(form, width, height, 1);
            std::memcpy(before.Addr, picture.Addr, picture.Size);
            const bool isUnclipped = round % 3 == 0;
            if (isUnclipped) picture.Flags |= flag::RegionUnclipped;
            const int32_t margin = isUnclipped ? 5 : 0;
            const PixelSet set =
                round % 5 == 0
                    ? PixelSet::Of({-margin, -margin, width + margin, height + margin})
                    : PixelSet::Random(seeded, {-margin, -margin, width + margin, height + margin});
            picture.Region = RegionFrom(set);
            const bool clears = round % 2 == 0;
            ASSERT_EQ(clears ? Z_ClearBitmap(&picture) : Z_FillBitmap(&picture, 0x123456), 1);
            ColourPicture filled(form, width, height, 1);
            std::memcpy(filled.Addr, before.Addr, before.Size);
            ASSERT_EQ(clears ? Z_ClearBitmap(&filled) : Z_FillBitmap(&filled, 0x123456), 1);
            if (form.Bits <= 8 && !clears) { // the index depends on the palette
                filled.Palette = nullptr;
                std::memcpy(filled.Addr, before.Addr, before.Size);
                filled.Palette = picture.Palette;
                ASSERT_EQ(Z_FillBitmap(&filled, 0x123456), 1);
                filled.Palette = nullptr;
            }
            for (int32_t y = 0; y < height; ++y)
                for (int32_t x = 0; x < width; ++x)
                    ASSERT_EQ(picture.Pixel(y, x), set.Has(x, y) ? filled.Pixel(y, x) : before.Pixel(y, x))
                        << form.Name() << x << ", " << y << ", round " << round;
        }
}

TEST(RegionsAtWork, RefusePixelsOutside) {
    ColourPicture picture({24, 1}, 9, 6, 1);
    picture.Region = RegionFrom(PixelSet::Of({2, 1, 20, 30})); // reaches beyond the bitmap
    for (int32_t y = -1; y < 8; ++y)
        for (int32_t x = -1; x < 11; ++x)
            EXPECT_EQ(Z_PutPixelColor(&picture, y, x, 5),
                      x >= 2 && x < 9 && y >= 1 && y < 6 ? 1 : code::InvalidDimensions);
}

// A picture that tells by its pixels where its region is.
struct Marked : ColourPicture {
    Marked(Seeded& seeded, int32_t view, bool isUnclipped = false)
        : ColourPicture({8, 1}, seeded.Between(1, 40), seeded.Between(1, 25), 1),
          Set(PixelSet::Random(seeded, {0, 0, Width, Height})) {
        ViewPerspective = view;
        if (isUnclipped) Flags |= flag::RegionUnclipped;
        for (int32_t y = 0; y < Height; ++y)
            for (int32_t x = 0; x < Width; ++x)
                Row(y)[x] = Set.Has(x, y);
        Region = RegionFrom(Set);
    }
    PixelSet Set;
};

PixelSet MarksOf(BitmapHandle& bitmap) {
    const Bytes rows = Rows(bitmap);
    return PixelSet::Where([&](int32_t x, int32_t y) {
        return x >= 0 && y >= 0 && x < bitmap.Width && y < bitmap.Height &&
               rows[size_t{bitmap.BytesPerLine} * static_cast<size_t>(y) + static_cast<size_t>(x)] != 0;
    });
}

TEST(RegionsAtWork, MoveWithMirroredAndSlantedPixels) {
    Seeded seeded(61);
    for (const int32_t view : AllViews)
        for (int round = 0; round < 40; ++round) {
            const int32_t angle = seeded.Between(-4000, 4000);
            const auto expectTogether = [&](const char* name, auto change) {
                Marked picture(seeded, view);
                ASSERT_EQ(change(picture), 1) << name;
                ASSERT_EQ(SetOf(*RegionOf(picture)), MarksOf(picture)) << name << " in view " << view;
            };
            expectTogether("flip", [](Marked& picture) { return Z_FlipBitmap(&picture); });
            expectTogether("reverse", [](Marked& picture) { return Z_ReverseBitmap(&picture); });
            // Along rows of storage: a turn by a right angle moves regions of an even size by a pixel. In two views they
            // slide by the rows' distance from the other end.
            if (view == view::TopRight || view == view::BottomRight) continue;
            expectTogether("shear", [=](Marked& picture) {
                return Z_ShearBitmap(&picture, angle, ExchangesAxes(view) ? 0 : 1, 0x01000000);
            });
        }
}

TEST(RegionsAtWork, AreTurnedAndSizedByTheirOwnRules) {
    Seeded seeded(62);
    for (int round = 0; round < 200; ++round) {
        const int32_t view = AllViews[seeded.Below(8)], angle = seeded.Between(1, 35999);
        {
            Marked picture(seeded, view);
            const int32_t width = picture.Width, height = picture.Height;
            const OwnedRegion expected(RegionFrom(picture.Set));
            ASSERT_EQ(Z_RotateBitmap(&picture, angle, ROTATE_RESIZE, 0x01000000), 1);
            BitmapHandle turned = picture;
            turned.Region = expected.get();
            ASSERT_EQ(RotateRegion(&turned, width, height, angle), 1);
            ASSERT_EQ(SetOf(*RegionOf(picture)), SetOf(*expected))
                << "round " << round << ", view " << view << ", " << angle;
        }
        Marked picture(seeded, view);
        const int32_t newWidth = seeded.Between(1, 60), newHeight = seeded.Between(1, 60);
        const OwnedRegion expected(RegionFrom(picture.Set));
        BitmapHandle sized = picture;
        sized.Region = expected.get();
        ASSERT_EQ(ScaleBitmapRegion(&sized, newWidth, newHeight), 1);
        ASSERT_EQ(Z_SizeBitmap(&picture, newWidth, newHeight, 0), 1);
        ASSERT_EQ(SetOf(*RegionOf(picture)), SetOf(*expected)) << "round " << round;
    }
}

TEST(RegionsAtWork, GoWithCopies) {
    Seeded seeded(63);
    for (const bool isUnclipped : {false, true})
        for (int round = 0; round < 50; ++round) {
            Marked picture(seeded, 0, isUnclipped);
            const auto expectCopy = [&](const char* name, auto make, int32_t dx = 0, int32_t dy = 0) {
                Bitmap made;
                ASSERT_EQ(make(made), 1) << name;
                ASSERT_NE(made.Region, nullptr) << name;
                EXPECT_NE(made.Region, picture.Region) << name;
                const bool stays = (made.Flags & flag::RegionUnclipped) != 0;
                EXPECT_EQ(stays, isUnclipped) << name;
                ASSERT_EQ(SetOf(*RegionOf(made)), PixelSet::Where([&](int32_t x, int32_t y) {
                              return picture.Set.Has(x + dx, y + dy) &&
                                     (stays || (x >= 0 && y >= 0 && x < made.Width && y < made.Height));
                          }))
                    << name;
                EXPECT_EQ(SetOf(*RegionOf(picture)), picture.Set);
            };
            expectCopy("copy", [&](Bitmap& made) { return Z_CopyBitmap(&made, &picture); });
            expectCopy("depth", [&](Bitmap& made) {
                return Z_ColorResBitmap(&picture, &made, 24, COLORRES_ORDER_BGR, nullptr, nullptr, 0, nullptr,
                                        0);
            });
            expectCopy("record", [&](Bitmap& made) {
                return Z_DupBitmapNewDim(&made, &picture, picture.Width, picture.Height, 24,
                                         Z_DUP_DATA | Z_DUP_REGION);
            });
            const int32_t left = seeded.Below(picture.Width), top = seeded.Below(picture.Height);
            const int32_t width = seeded.Between(1, picture.Width - left),
                          height = seeded.Between(1, picture.Height - top);
            expectCopy(
                "part",
                [&](Bitmap& made) { return Z_CopyBitmapRect(&made, &picture, left, top, width, height); },
                left, top);
        }
}

} // namespace

} // namespace zkr::test
