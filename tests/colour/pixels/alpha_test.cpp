// Alpha out of bitmaps and into them.
#include "colour/pictures.h"

#include "core/predicates.h"
#include "core/test_regions.h"
#include "geometry/picture.h"
#include "zkr13n/alpha.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

uint64_t AlphaOf(PictureForm form, uint64_t pixel, bool deep) {
    switch (form.Bits) {
    case 16: return pixel >> 15 != 0 ? 255 : 0;
    case 32: return pixel >> 24;
    case 64: return pixel >> (deep ? 48 : 56);
    default: return 0;
    }
}

TEST(GetAlpha, TakesItOutOfEveryDepth) {
    const RegionSlots slots;
    for (const PictureForm form : AllForms) {
        for (const uint32_t locks : {0u, 1u << Z_SUPPORT_EXTGRAY}) {
            ColourPicture picture(form, 21, 4, 3);
            picture.ViewPerspective = 7, picture.XResolution = 61;
            RegionSlots::Give(picture, {{2, 3, 4, 5}});
            Z_SetSupportLocks(locks);
            Bitmap alpha;
            StatusLog log(1);
            ASSERT_EQ(Z_GetBitmapAlpha(&picture, &alpha), 1);
            Z_SetSupportLocks(0);
            EXPECT_TRUE(log.Seen.empty());
            const bool deep = form.Bits == 64 && locks == 0;
            EXPECT_EQ(std::tuple(alpha.BitsPerPixel, alpha.Order),
                      deep ? std::tuple(16, 2) : std::tuple(8, 0));
            EXPECT_EQ(std::tuple(alpha.ViewPerspective, alpha.XResolution), std::tuple(7, 61));
            EXPECT_EQ(Z_GetPaletteSize(static_cast<HPALETTE>(alpha.Palette)), 256);
            EXPECT_EQ(RegionSlots::Of(alpha).Bounds.left, 2);
            const Bytes rows = Rows(alpha);
            for (int32_t y = 0; y < 4; ++y)
                for (int32_t x = 0; x < 21; ++x)
                    ASSERT_EQ(ReadPixel(rows.data() + size_t(y) * alpha.BytesPerLine, alpha.BitsPerPixel, x),
                              AlphaOf(form, picture.Pixel(y, x), deep))
                        << form.Name() << x;
        }
    }
}

// What a pixel becomes with a gray of 8 bits (16 for 64-bit pixels).
uint64_t WithAlpha(int32_t bits, uint64_t pixel, uint64_t alpha) {
    if (bits == 16) return (pixel & 0x7FFF) | (alpha >= 128 ? 0x8000 : 0);
    return bits == 32 ? (pixel & 0xFFFFFF) | alpha << 24 : (pixel & 0xFFFFFFFFFFFF) | alpha << 48;
}

TEST(SetAlpha, PutsItInThroughEveryView) {
    constexpr int32_t W = 6, H = 9; // of the alpha
    std::vector<RGBQUAD> ramp;
    for (int i = 0; i < 256; ++i)
        ramp.push_back({uint8_t(i), uint8_t(i), uint8_t(i), 0});
    for (const int32_t bits : {16, 32, 64}) {
        for (const int32_t from : AllViews) {
            for (const int32_t to : AllViews) {
                ColourPicture picture({bits, 1}, 7, 8, uint64_t(from)),
                    alpha({bits == 64 ? 16 : 8, 2}, W, H, uint64_t(to));
                if (bits != 64) Z_PutBitmapColors(&alpha, 0, 256, ramp.data());
                picture.ViewPerspective = to, alpha.ViewPerspective = from;
                Picture expected = Picture::Of(picture);
                const Picture moved = Picture::Of(alpha).Seen(from).Stored(to);
                const int32_t columns = std::min(7, moved.Width) / (bits == 64 ? 2 : 1);
                for (int32_t y = 0; y < std::min(8, moved.Height); ++y)
                    for (int32_t x = 0; x < columns; ++x)
                        expected.Set(x, y, WithAlpha(bits, expected.At(x, y), moved.At(x, y)));
                ASSERT_EQ(Z_SetBitmapAlpha(&picture, &alpha), 1);
                ASSERT_EQ(Picture::Of(picture), expected) << bits << " bits, from " << from << " to " << to;
            }
        }
    }
}

// Whatever the depth of the alpha, it counts by its gray.
TEST(SetAlpha, TakesAlphaOfEveryDepth) {
    for (const int32_t bits : {16, 32, 64}) {
        for (const PictureForm form : AllForms) {
            ColourPicture picture({bits, 0}, 19, 3, 1), alpha(form, 19, 3, 2), gray(form, 19, 3, 2);
            const Bytes kept = Rows(alpha);
            ASSERT_EQ(Z_GrayScaleBitmap(&gray, bits == 64 ? 16 : 8), 1);
            std::vector<uint64_t> expected;
            for (int32_t x = 0; x < 19; ++x)
                expected.push_back(bits == 64 && x >= 9
                                       ? picture.Pixel(2, x)
                                       : WithAlpha(bits, picture.Pixel(2, x), gray.Pixel(2, x)));
            ASSERT_EQ(Z_SetBitmapAlpha(&picture, &alpha), 1);
            for (int32_t x = 0; x < 19; ++x)
                ASSERT_EQ(picture.Pixel(2, x), expected[size_t(x)]) << form.Name() << bits << ' ' << x;
            EXPECT_EQ(Rows(alpha), kept);
        }
    }
}

TEST(SetAlpha, RaisesOtherDepthsFirst) {
    const struct {
        PictureForm Before, After;
    } cases[] = {{{24, 0}, {32, 0}}, {{24, 1}, {32, 1}}, {{48, 0}, {64, 0}},
                 {{48, 1}, {64, 1}}, {{8, 0}, {32, 1}},  {{12, 2}, {32, 1}}};
    for (const auto& [before, after] : cases) {
        ColourPicture picture(before, 9, 2, 1), alpha({8, 0}, 9, 2, 2);
        ASSERT_EQ(Z_SetBitmapAlpha(&picture, &alpha), 1) << before.Name();
        EXPECT_EQ(std::tuple(picture.BitsPerPixel, picture.Order), std::tuple(after.Bits, after.Order));
        ASSERT_EQ(Z_GrayScaleBitmap(&alpha, after.Bits == 64 ? 16 : 8), 1);
        EXPECT_EQ(picture.Pixel(1, 3) >> (after.Bits / 4 * 3), alpha.Pixel(1, 3));
    }
}

TEST(Alpha, RefusesAndFailsCleanly) {
    ColourPicture picture({32, 1}, 5, 5, 1), alpha({24, 1}, 5, 5, 1);
    Bitmap empty;
    EXPECT_EQ(Z_GetBitmapAlpha(nullptr, &empty), code::InvalidArgument);
    EXPECT_EQ(Z_GetBitmapAlpha(&empty, &alpha), code::InvalidArgument);
    EXPECT_EQ(Z_GetBitmapAlpha(&picture, nullptr), code::InvalidArgument);
    EXPECT_EQ(Z_GetBitmapAlpha(&picture, &picture), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapAlpha(nullptr, &alpha), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapAlpha(&picture, nullptr), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapAlpha(&picture, &empty), code::InvalidArgument);
    const RegionSlots slots;
    RegionSlots::CopyResult = -66;
    EXPECT_EQ(Z_GetBitmapAlpha(&picture, &empty), -66);
    EXPECT_FALSE(IsAllocated(&empty));
    RegionSlots::CopyResult = 1;
    alpha.ViewPerspective = 6;
    EXPECT_EQ(Z_SetBitmapAlpha(&picture, &alpha), code::InvalidArgument);
    alpha.ViewPerspective = 8;
    const Bytes rows = Rows(picture);
    const StatusLog log(1, -29);
    EXPECT_EQ(Z_SetBitmapAlpha(&picture, &alpha), -29) << "while the alpha is brought to gray";
    EXPECT_EQ(Rows(picture), rows);
}

} // namespace
} // namespace zkr::test
