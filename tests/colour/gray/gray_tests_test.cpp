// What palettes and bitmaps are, and what negative values become, by hand.
#include "colour/pictures.h"

#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

RGBQUAD Level(int level) {
    const auto byte = static_cast<uint8_t>(level);
    return {byte, byte, byte, 7};
}

std::vector<RGBQUAD> Levels(const std::vector<int>& levels) {
    std::vector<RGBQUAD> palette;
    for (const int level : levels)
        palette.push_back(Level(level));
    return palette;
}

TEST(GrayTests, TellPalettesApart) {
    const struct {
        std::vector<int> Levels;
        int32_t Type;
    } cases[] = {{{0}, GRAY_ORDEREDNORMAL},
                 {{255}, GRAY_ORDEREDREVERSE},
                 {{100}, GRAY_NOTORDERED},
                 {{0, 255}, GRAY_ORDEREDNORMAL},
                 {{255, 0}, GRAY_ORDEREDINVERSE},
                 {{0, 85, 170, 255}, GRAY_ORDEREDNORMAL},
                 {{0, 85, 171, 255}, GRAY_NOTORDERED},
                 {{0, 127, 254}, GRAY_ORDEREDNORMAL},
                 {{0, 127, 255}, GRAY_NOTORDERED},
                 {{255, 128, 1}, GRAY_ORDEREDREVERSE},
                 {{1, 128, 255}, GRAY_NOTORDERED}};
    for (const auto& [levels, type] : cases) {
        std::vector<RGBQUAD> palette = Levels(levels);
        EXPECT_EQ(Z_IsGrayScalePalette(palette.data(), uint32_t(palette.size())), type) << levels.size();
        ++palette.back().rgbBlue;
        EXPECT_EQ(Z_IsGrayScalePalette(palette.data(), uint32_t(palette.size())), GRAY_NO);
    }
    const RGBQUAD red = {0, 0, 255, 0};
    EXPECT_EQ(Z_IsGrayScalePalette(&red, 0), GRAY_ORDEREDREVERSE) << "by red of the first";
    EXPECT_EQ(Z_IsGrayScalePalette(nullptr, 4), GRAY_NO);
}

TEST(GrayTests, TellBitmapsApart) {
    for (const PictureForm form : AllForms) {
        ColourPicture picture(form, 3, 3, 1);
        EXPECT_EQ(Z_IsGrayScaleBitmap(&picture), form.IsGrayWord() ? GRAY_ORDEREDNORMAL : GRAY_NO)
            << form.Name();
        if (!form.IsGrayWord()) continue;
        picture.LowBit = 2, picture.HighBit = 4; // eight values
        picture.SetLevels(9, 1);
        for (int i = 0; i < 8; ++i)
            picture.LevelLUT[i] = Level(200 - i);
        picture.LevelLUT[8].rgbBlue = static_cast<uint8_t>(picture.LevelLUT[8].rgbRed + 1);
        EXPECT_EQ(Z_IsGrayScaleBitmap(&picture), GRAY_ORDEREDNORMAL);
        ++picture.LevelLUT[7].rgbRed;
        EXPECT_EQ(Z_IsGrayScaleBitmap(&picture), GRAY_NO);
        picture.LevelLUTLength = 7; // what lies behind the table does not count
        EXPECT_EQ(Z_IsGrayScaleBitmap(&picture), GRAY_ORDEREDNORMAL);
        picture.LevelLUT[3].rgbRed = 1;
        picture.Flags &= ~flag::LevelLUTActive;
        EXPECT_EQ(Z_IsGrayScaleBitmap(&picture), GRAY_ORDEREDNORMAL);
    }
    Bitmap indexed;
    const std::vector<RGBQUAD> white = Levels({255, 0});
    Z_CreateBitmap(&indexed, MemoryConventional, 3, 3, 1, 0, white.data(), 2, nullptr, 0);
    EXPECT_EQ(Z_IsGrayScaleBitmap(&indexed), GRAY_ORDEREDREVERSE);
    indexed.ColorsUsed = 3;
    EXPECT_EQ(Z_IsGrayScaleBitmap(&indexed), GRAY_NO);
    EXPECT_EQ(Z_IsGrayScaleBitmap(nullptr), GRAY_NO);
}

// A row of one bitmap before and after.
struct NegativeCase {
    PictureForm Form;
    int32_t Width;
    Bytes Before, After;
};

TEST(NegativePixels, BecomeZero) {
    const NegativeCase cases[] = {
        {{16, 2}, 3, {1, 0x80, 0xFF, 0x7F, 0xFF, 0xFF, 9, 0x99}, {0, 0, 0xFF, 0x7F, 0, 0, 9, 0x99}},
        {{24, 1}, 1, {0x80, 0x7F, 0xFF, 0x90}, {0, 0x7F, 0, 0}},
        {{32, 0}, 1, {0x80, 0x7F, 0x81, 0xFE}, {0, 0x7F, 0, 0}},
        {{48, 1}, 1, {1, 0x80, 2, 0, 0xFF, 0xFF, 7, 0x80}, {0, 0, 2, 0, 0, 0, 0, 0}},
        {{64, 1}, 1, {1, 0x80, 2, 0, 0xFF, 0x7F, 7, 0xFF}, {0, 0, 2, 0, 0xFF, 0x7F, 0, 0}},
        // steps of six bytes for two pixels each: bytes 4 and 5 are never met
        {{12, 2},
         5,
         {0xFF, 0x88, 0xFF, 0x80, 0xFF, 0xFF, 0xFF, 0xFF},
         {0, 0x80, 0x0F, 0, 0xFF, 0xFF, 0, 0xF0}},
        {{12, 2}, 2, {0x11, 0x07, 0x22, 0x7F}, {0x11, 0x07, 0x22, 0x7F}},
        // the second step of a row of eight bytes has no second word, and no more steps fit
        {{12, 2}, 1, {0x11, 0x08, 0x22, 0xFF}, {0, 0, 0x22, 0xFF}},
    };
    for (const auto& [form, width, before, after] : cases) {
        ColourPicture picture(form, width, 2, 1);
        picture.Flags |= flag::Signed;
        for (const int32_t y : {0, 1})
            std::memcpy(picture.Row(y), before.data(), before.size());
        EXPECT_EQ(Z_ClearNegativePixels(&picture), 1);
        EXPECT_EQ(picture.Flags & flag::Signed, 0u);
        const Bytes rows = Rows(picture);
        ASSERT_EQ(rows.size(), 2 * after.size());
        for (const size_t y : {0, 1})
            EXPECT_TRUE(std::equal(after.begin(), after.end(), rows.begin() + ptrdiff_t(y * after.size())))
                << form.Name() << width;
    }
}

TEST(NegativePixels, OfIndicesLieInThePalette) {
    for (const int32_t block : {0, 1}) {
        ColourPicture picture({8, 0}, 3, 2, 1);
        const RGBQUAD colours[] = {{0x80, 0x7F, 0xFF, 0}, {1, 0x81, 0, 0}};
        Z_PutBitmapColors(&picture, 4, 2, colours);
        Z_SetPaletteType(&picture, block);
        picture.Flags |= flag::Signed;
        const Bytes rows = Rows(picture);
        StatusLog log;
        EXPECT_EQ(Z_ClearNegativePixels(&picture), 1);
        RGBQUAD after[256];
        ASSERT_EQ(Z_GetBitmapPaletteEntries(&picture, 0, 256, after), 256u);
        EXPECT_EQ(std::tuple(after[4].rgbBlue, after[4].rgbGreen, after[4].rgbRed), std::tuple(0, 0x7F, 0));
        EXPECT_EQ(std::tuple(after[5].rgbBlue, after[5].rgbGreen, after[5].rgbRed), std::tuple(1, 0, 0));
        EXPECT_EQ(Rows(picture), rows);
        EXPECT_EQ(picture.Flags & (flag::Signed | flag::PaletteIsBlock), block ? flag::PaletteIsBlock : 0);
    }
}

TEST(NegativePixels, AreThereOnlyInSignedData) {
    for (const PictureForm form : {PictureForm{16, 1}, PictureForm{24, 1}}) {
        ColourPicture picture(form, 3, 2, 1);
        if (form.Bits == 16) picture.Flags |= flag::Signed;
        const Bytes rows = Rows(picture);
        StatusLog log(1, -5);
        EXPECT_EQ(Z_ClearNegativePixels(&picture), 1);
        EXPECT_EQ(log.Seen, (std::vector<int32_t>{0, 100}));
        EXPECT_EQ(Rows(picture), rows);
        EXPECT_EQ(picture.Flags & flag::Signed, form.Bits == 16 ? flag::Signed : 0);
    }
    ColourPicture picture({32, 1}, 3, 4, 1);
    picture.Flags |= flag::Signed;
    std::memset(picture.Row(0), 0xFF, picture.Size);
    const StatusLog log(3, -29); // behind the second row
    EXPECT_EQ(Z_ClearNegativePixels(&picture), -29);
    EXPECT_EQ(std::tuple(picture.Row(1)[11], picture.Row(2)[0]), std::tuple(0, 0xFF));
    EXPECT_EQ(Z_ClearNegativePixels(nullptr), code::InvalidBitmap);
}

} // namespace
} // namespace zkr::test
