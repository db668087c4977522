// Regions of colours, of the wand and of masks against tests of one pixel after the other.
#include "colour/pictures.h"
#include "core/attachments.h"
#include "regions/pixel_sets.h"
#include "zkr13n/color_spaces.h"
#include "zkr13n/convert.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/pixels.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {

namespace {

constexpr uint32_t ByteOf(uint32_t value, int index) {
    return value >> (8 * index) & 0xFF;
}

bool IsWithin(uint32_t colour, uint32_t lower, uint32_t upper, bool isHsv) {
    if (isHsv) colour = Z_RGBtoHSV(colour);
    for (int i = 0; i < 3; ++i) {
        const uint32_t value = ByteOf(colour, i), low = ByteOf(lower, i), high = ByteOf(upper, i);
        const bool isHue = isHsv && i == 0 && low > high;
        if (isHue ? value < low && value > high : value < low || value > high) return false;
    }
    return true;
}

// What row conversion makes of one pixel.
uint32_t ColourOf(ColourPicture& picture, int32_t row, int32_t column) {
    const int32_t bits = picture.BitsPerPixel;
    RGBQUAD palette[256] = {};
    const bool isGray = bits == 12 || picture.Order == Z_ORDER_GRAY;
    std::vector<RGBQUAD> levels;
    const RGBQUAD* table = nullptr;
    if (bits <= 8) {
        Z_GetBitmapPaletteEntries(&picture, 0, 256, palette);
        table = palette;
    } else if (isGray && picture.LevelLUT != nullptr) {
        levels.assign(65536, RGBQUAD{});
        std::copy_n(picture.LevelLUT, picture.LevelLUTLength, levels.begin());
        table = levels.data();
    }
    uint8_t buffer[16] = {};
    WritePixel(buffer, bits, 0, picture.Pixel(row, column));
    EXPECT_EQ(Z_ConvertBufferExt(buffer, 1, bits, 24, isGray ? Z_ORDER_GRAY : picture.Order, Z_ORDER_BGR,
                                 table, nullptr, isGray ? 5u : 0u, picture.LowBit, picture.HighBit),
              1);
    return buffer[2] | static_cast<uint32_t>(buffer[1] << 8 | buffer[0] << 16);
}

void SetWindow(ColourPicture& picture, Seeded& seeded) {
    if (picture.Order != Z_ORDER_GRAY && picture.BitsPerPixel != 12) return;
    picture.LowBit = seeded.Below(5);
    picture.HighBit = picture.LowBit + seeded.Between(1, picture.BitsPerPixel - picture.LowBit - 1);
    if (seeded.Below(2) == 0) picture.SetLevels(static_cast<uint32_t>(seeded.Between(1, 300)), seeded.Next());
}

PixelSet Expected(ColourPicture& picture, uint32_t lower, uint32_t upper, bool isHsv) {
    return PixelSet::Where([&](int32_t x, int32_t y) {
        return x >= 0 && y >= 0 && x < picture.Width && y < picture.Height &&
               IsWithin(ColourOf(picture, y, x), lower, upper, isHsv);
    });
}

TEST(ColourRegions, HoldPixelsInRange) {
    for (const PictureForm& form : AllForms)
        for (int round = 0; round < 12; ++round) {
            Seeded seeded(static_cast<uint64_t>(form.Bits * 100 + form.Order * 20 + round));
            const int32_t width = round == 0 ? 77 : seeded.Between(1, 77);
            ColourPicture picture(form, width, 5, seeded.Next(), seeded.Between(2, 30));
            SetWindow(picture, seeded);
            const uint32_t someColour = ColourOf(picture, seeded.Below(5), seeded.Below(width));
            const bool isHsv = round % 2 == 0;
            const uint32_t middle = isHsv ? Z_RGBtoHSV(someColour) : someColour;
            uint32_t lower = 0, upper = 0;
            for (int i = 0; i < 3; ++i) {
                const int32_t value = static_cast<int32_t>(ByteOf(middle, i)), slack = 1 << seeded.Below(8);
                const bool wraps = isHsv && i == 0;
                const int32_t low = wraps ? value - slack : std::max(value - slack, 0);
                const int32_t high = wraps ? value + slack : std::min(value + slack, 255);
                lower |= static_cast<uint32_t>(low & 0xFF) << (8 * i);
                upper |= static_cast<uint32_t>(high & 0xFF) << (8 * i);
            }
            if (round == 5) std::swap(lower, upper); // most often nothing
            ASSERT_EQ(isHsv ? Z_SetBitmapRgnColorHSVRange(&picture, lower, upper, Z_RGN_SET)
                            : Z_SetBitmapRgnColorRGBRange(&picture, lower, upper, Z_RGN_SET),
                      1);
            ASSERT_EQ(SetOf(*RegionOf(picture)), Expected(picture, lower, upper, isHsv))
                << form.Name() << round << std::hex << " from " << lower << " to " << upper;

            ASSERT_EQ(Z_SetBitmapRgnColor(&picture, someColour | 0xAB000000, Z_RGN_SET), 1);
            PixelSet expected = Expected(picture, someColour, someColour, false);
            if (form.Bits <= 8) {
                RGBQUAD palette[256];
                Z_GetBitmapPaletteEntries(&picture, 0, 256, palette);
                uint64_t first = 0; // the entry of that colour alone
                while ((palette[first].rgbRed | uint32_t{palette[first].rgbGreen} << 8 |
                        uint32_t{palette[first].rgbBlue} << 16) != someColour)
                    ++first;
                const auto isFirst = [&](int32_t x, int32_t y) {
                    return expected.Has(x, y) && picture.Pixel(y, x) == first;
                };
                expected = PixelSet::Where(isFirst);
            }
            ASSERT_EQ(SetOf(*RegionOf(picture)), expected) << form.Name() << round;
        }
}

TEST(ColourRegions, TakeHueAsACircle) {
    ColourPicture picture({8, 1}, 3, 1, 1);
    const RGBQUAD hues[] = {{18, 0, 255, 0}, {0, 30, 255, 0}, {0, 255, 100, 0}}; // about 250, 9 and 60
    ASSERT_EQ(Z_CreateBitmapPalette(&picture, hues, 3), 1);
    for (uint8_t x = 0; x < 3; ++x)
        picture.Row(0)[x] = x;
    for (const auto& [lower, upper, expected] : {std::tuple{240u, 16u, PixelSet::Of({0, 0, 2, 1})},
                                                 {16u, 240u, PixelSet::Of({2, 0, 3, 1})},
                                                 {100u, 99u, PixelSet::Of({0, 0, 3, 1})}}) {
        ASSERT_EQ(Z_SetBitmapRgnColorHSVRange(&picture, lower, 0xFFFF00 | upper, Z_RGN_SET), 1);
        EXPECT_EQ(SetOf(*RegionOf(picture)), expected) << lower << " to " << upper;
    }
}

TEST(ColourRegions, TakeIndicesWithoutAPalette) {
    ColourPicture picture({4, 1}, 20, 5, 3, 9);
    const auto isFive = [&](int32_t x, int32_t y) {
        return PixelSet::Of({0, 0, 20, 5}).Has(x, y) && picture.Pixel(y, x) == 5;
    };
    ReleasePalette(picture);
    ASSERT_EQ(Z_SetBitmapRgnColor(&picture, 0x0112F5, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(picture.Region, nullptr);
    ASSERT_EQ(Z_SetBitmapRgnColor(&picture, 0x010000F5, Z_RGN_SET), 1);
    EXPECT_EQ(SetOf(*RegionOf(picture)), PixelSet::Where(isFive));
    EXPECT_EQ(Z_SetBitmapRgnColor(&picture, 0x010000F5, 7), code::InvalidArgument);
    EXPECT_EQ(SetOf(*RegionOf(picture)), PixelSet::Where(isFive));
    EXPECT_EQ(Z_SetBitmapRgnColor(nullptr, 0, Z_RGN_SET), code::InvalidBitmap);
}

// A colour that the palette lacks is an empty operand, which is not the same as none.
TEST(ColourRegions, AreEmptyWithoutAMatch) {
    ColourPicture picture({8, 1}, 9, 4, 4);
    const RGBQUAD black[2] = {};
    ASSERT_EQ(Z_CreateBitmapPalette(&picture, black, 2), 1);
    const RECT rectangle = {1, 1, 4, 3};
    ASSERT_EQ(Z_SetBitmapRgnRect(&picture, nullptr, &rectangle, Z_RGN_SET), 1);
    ASSERT_EQ(Z_SetBitmapRgnColor(&picture, 0x123456, Z_RGN_OR), 1);
    EXPECT_EQ(SetOf(*RegionOf(picture)), PixelSet::Of({1, 1, 4, 3}));
    ASSERT_EQ(Z_SetBitmapRgnColor(&picture, 0x123456, Z_RGN_SETNOT), 1);
    EXPECT_EQ(SetOf(*RegionOf(picture)), PixelSet::Of({0, 0, 9, 4}));
    ASSERT_EQ(Z_SetBitmapRgnColor(&picture, 0x123456, Z_RGN_SET), 1);
    EXPECT_EQ(Z_BitmapHasRgn(&picture), 1);
    EXPECT_EQ(SetOf(*RegionOf(picture)), PixelSet{});
}

// A plain flood with a stack, from pixel to pixel.
PixelSet Flooded(ColourPicture& picture, int32_t x, int32_t y, uint32_t tolerance) {
    const uint32_t seed = Z_GetPixelColor(&picture, y, x);
    const auto isNear = [&](int32_t column, int32_t row) {
        const uint32_t colour = Z_GetPixelColor(&picture, row, column);
        for (int i = 0; i < 3; ++i) {
            const auto a = static_cast<int32_t>(ByteOf(colour, i)), b = static_cast<int32_t>(ByteOf(seed, i));
            if (std::abs(a - b) > static_cast<int32_t>(tolerance & 0xFF)) return false;
        }
        return true;
    };
    PixelSet visited, selected;
    std::vector<std::pair<int32_t, int32_t>> stack = {{x, y}};
    while (!stack.empty()) {
        const auto [column, row] = stack.back();
        stack.pop_back();
        const std::pair<int32_t, int32_t> neighbours[] = {
            {column - 1, row}, {column, row - 1}, {column + 1, row}, {column, row + 1}};
        for (const auto& [nx, ny] : neighbours) {
            if (nx < 0 || ny < 0 || nx >= picture.Width || ny >= picture.Height || visited.Has(nx, ny))
                continue;
            visited.Add(nx, ny);
            if (!isNear(nx, ny)) continue;
            selected.Add(nx, ny);
            stack.emplace_back(nx, ny);
        }
    }
    return selected;
}

TEST(MagicWand, TakesWhatHangsTogether) {
    for (const PictureForm& form : AllForms)
        for (int round = 0; round < 40; ++round) {
            Seeded seeded(static_cast<uint64_t>(form.Bits * 1000 + form.Order * 100 + round));
            ColourPicture picture(form, seeded.Between(1, 80), seeded.Between(1, 12), seeded.Next(),
                                  seeded.Between(2, 5));
            SetWindow(picture, seeded);
            const int32_t x = seeded.Below(picture.Width), y = seeded.Below(picture.Height);
            const uint32_t tolerance =
                static_cast<uint32_t>(seeded.Below(2) == 0 ? seeded.Below(5) : seeded.Below(300));
            ASSERT_EQ(Z_SetBitmapRgnMagicWand(&picture, x, y, tolerance, Z_RGN_SET), 1);
            ASSERT_EQ(SetOf(*RegionOf(picture)), Flooded(picture, x, y, tolerance))
                << form.Name() << "round " << round << ", seed " << x << ", " << y << ", tolerance "
                << tolerance;
        }
}

TEST(MagicWand, LeavesALonelySeedOut) {
    ColourPicture picture({8, 1}, 5, 5, 1);
    std::memset(picture.Addr, 7, picture.Size);
    picture.Row(2)[2] = 9;
    RGBQUAD palette[16] = {};
    palette[9] = {255, 255, 255, 0};
    ASSERT_EQ(Z_CreateBitmapPalette(&picture, palette, 16), 1);
    for (const auto& [tolerance, expected] : {std::pair{0u, PixelSet{}},
                                              {256u, PixelSet{}}, // the low byte counts
                                              {255u, PixelSet::Of({0, 0, 5, 5})}}) {
        ASSERT_EQ(Z_SetBitmapRgnMagicWand(&picture, 2, 2, tolerance, Z_RGN_SET), 1);
        EXPECT_EQ(SetOf(*RegionOf(picture)), expected) << tolerance;
    }
    EXPECT_EQ(Z_SetBitmapRgnMagicWand(&picture, 5, 2, 0, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnMagicWand(nullptr, 0, 0, 0, Z_RGN_SET), code::InvalidBitmap);
}

TEST(Masks, GoThereAndBack) {
    for (const PictureForm& form : {PictureForm{8, 0}, {24, 1}, {1, 0}})
        for (const int32_t view : {0, 4}) {
            ColourPicture picture(form, 70, 9, 7);
            picture.ViewPerspective = view;
            Seeded seeded(31);
            const PixelSet set = PixelSet::Random(seeded, {0, 0, 70, 9});
            for (const bool hasRegion : {true, false}) {
                picture.Region = hasRegion ? RegionFrom(set) : nullptr;
                Bitmap mask;
                ASSERT_EQ(Z_CreateMaskFromBitmapRgn(&picture, &mask), 1);
                EXPECT_EQ(mask.ViewPerspective, view);
                EXPECT_EQ(mask.Region, nullptr);
                uint8_t row[16];
                for (int32_t y = 0; y < 9; ++y) {
                    Z_GetBitmapRow(&mask, row, y, mask.BytesPerLine);
                    for (int32_t x = 0; x < 70; ++x)
                        ASSERT_EQ(ReadPixel(row, 1, x), !hasRegion || set.Has(x, y)) << x << ", " << y;
                }
                Z_FreeBitmapRgn(&picture);
                ASSERT_EQ(Z_SetBitmapRgnFromMask(&picture, nullptr, &mask, Z_RGN_SET), 1);
                EXPECT_EQ(SetOf(*RegionOf(picture)), hasRegion ? set : PixelSet::Of({0, 0, 70, 9}));
                Z_FreeBitmapRgn(&picture);
            }
        }
}

// A mask is white where its gray is 128 or more, whatever its depth; its own region plays no part.
TEST(Masks, AreCutAtHalfGray) {
    ColourPicture mask({24, 1}, 60, 8, 9), target({24, 1}, 60, 8, 10);
    mask.Region = RegionFrom(PixelSet::Of({3, 3, 4, 4}));
    const RegionXform moved = {2, 1, 1, 1, 1, 2, 1};
    ASSERT_EQ(Z_SetBitmapRgnFromMask(&target, &moved, &mask, Z_RGN_SET), 1);
    const auto isBright = [&](int32_t x, int32_t y) {
        if (x < 2 || y < 1 || x >= 60 || y >= 8) return false;
        const uint8_t* const pixel = mask.Row(y - 1) + (x - 2) * 3;
        return ((pixel[2] * 2 + pixel[1] * 5 + pixel[0] + 4) >> 3) >= 128;
    };
    EXPECT_EQ(SetOf(*RegionOf(target)), PixelSet::Where(isBright));
    EXPECT_EQ(SetOf(*RegionOf(mask)), PixelSet::Of({3, 3, 4, 4}));
    Bitmap none;
    EXPECT_EQ(Z_SetBitmapRgnFromMask(&target, nullptr, &none, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnFromMask(nullptr, nullptr, &mask, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_CreateMaskFromBitmapRgn(&target, nullptr), code::InvalidArgument);
}

} // namespace

} // namespace zkr::test
