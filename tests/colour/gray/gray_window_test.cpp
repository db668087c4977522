// Which bits of a gray pixel are its value, and the life of the level table.
#include "zkr13n/allocation.h"
#include "zkr13n/gray.h"

#include <gtest/gtest.h>

namespace {

TEST(GrayParams, FindTheValueBits) {
    const struct {
        int32_t Depth, Maximum, Low, High;
        int32_t Bits;
        uint32_t Mask;
        int32_t Shift;
    } cases[] = {{16, 8, -1, -1, 8, 255, 8},
                 {16, 16, -1, -1, 16, 0xFFFF, 0},
                 {16, 8, 0, 3, 4, 15, 0},
                 {12, 8, 2, 11, 8, 255, 4},
                 {12, 12, 2, 9, 8, 255, 2},
                 {12, 16, 5, -1, 7, 127, 5},
                 {16, 4, -5, 9, 4, 15, 6},
                 {1, 8, -1, -1, 1, 1, 0},
                 {32, 32, -1, -1, 32, 0xFFFFFFFF, 0},
                 {16, 8, 12, 3, -8, 0, 12},
                 {16, 8, 0, 0x7FFFFFFF, 8, 255, 0x7FFFFFF8}};
    for (const auto& c : cases) {
        int32_t bits = 0, shift = 0;
        uint32_t mask = 0;
        Z_GetGrayParams(c.Depth, c.Maximum, c.Low, c.High, &bits, &mask, &shift);
        EXPECT_EQ(std::tuple(bits, mask, shift), std::tuple(c.Bits, c.Mask, c.Shift))
            << c.Depth << ", " << c.Maximum << ", " << c.Low << ", " << c.High;
        shift = -1;
        Z_GetGrayParams(c.Depth, c.Maximum, c.Low, c.High, nullptr, &mask, &shift);
        EXPECT_EQ(shift, c.Shift);
    }
}

struct GrayBitmap : BitmapHandle {
    GrayBitmap() : BitmapHandle{} {
        BitsPerPixel = 16;
        LowBit = 1, HighBit = 12, LevelLowBit = 3, LevelHighBit = 10, MinVal = -7, MaxVal = 900;
        Flags = Z_FLAG_LEVEL_LUT_ACTIVE | Z_FLAG_SIGNED;
        LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(5 * sizeof(RGBQUAD), 1));
        LevelLUT[4].rgbGreen = 77;
        LevelLUTLength = 5;
        PaintLUT = static_cast<uint8_t*>(Z_OsAlloc(256));
    }
    ~GrayBitmap() { Z_FreeGrayParams(this); }
};

TEST(GrayParams, StartOver) {
    const struct {
        int32_t Bits, Highest, Maximum;
    } cases[] = {{1, 0, 1}, {12, 11, 4095}, {16, 15, 65535}, {32, 31, 0x7FFFFFFF}, {64, 63, 0x7FFFFFFF}};
    for (const auto& c : cases) {
        GrayBitmap bitmap;
        bitmap.BitsPerPixel = c.Bits;
        Z_InitGrayParams(&bitmap);
        EXPECT_EQ(std::tuple(bitmap.LowBit, bitmap.LevelLowBit, bitmap.MinVal), std::tuple(0, 0, 0));
        EXPECT_EQ(std::tuple(bitmap.HighBit, bitmap.LevelHighBit), std::tuple(c.Highest, c.Highest));
        EXPECT_EQ(bitmap.MaxVal, c.Maximum);
        EXPECT_EQ(bitmap.LevelLUT, nullptr);
        EXPECT_EQ(bitmap.LevelLUTLength, 0u);
        EXPECT_EQ(bitmap.Flags, uint32_t{Z_FLAG_LEVEL_LUT_ACTIVE | Z_FLAG_SIGNED});
        EXPECT_NE(bitmap.PaintLUT, nullptr);
    }
}

TEST(GrayParams, CopyWithATableOfTheirOwn) {
    GrayBitmap source, freed;
    Z_FreeGrayParams(&freed);
    EXPECT_EQ(std::tuple(freed.LevelLUT, freed.PaintLUT, freed.LevelLUTLength),
              std::tuple(nullptr, nullptr, 5u))
        << "the length stays";
    BitmapHandle target{};
    target.Flags = Z_FLAG_ALLOCATED;
    ASSERT_EQ(Z_CopyGrayParams(&target, &source), Z_SUCCESS);
    EXPECT_EQ(std::tuple(target.LowBit, target.HighBit, target.LevelLowBit, target.LevelHighBit,
                         target.MinVal, target.MaxVal),
              std::tuple(1, 12, 3, 10, -7, 900));
    EXPECT_EQ(target.Flags, uint32_t{Z_FLAG_ALLOCATED | Z_FLAG_LEVEL_LUT_ACTIVE});
    ASSERT_NE(target.LevelLUT, source.LevelLUT);
    ASSERT_EQ(target.LevelLUTLength, 5u);
    EXPECT_EQ(target.LevelLUT[4].rgbGreen, 77);

    source.Flags = 0;
    source.LevelLUTLength = 0; // a table without entries is none
    RGBQUAD* const old = target.LevelLUT;
    ASSERT_EQ(Z_CopyGrayParams(&target, &source), Z_SUCCESS);
    EXPECT_EQ(target.LevelLUT, nullptr);
    EXPECT_EQ(target.Flags, uint32_t{Z_FLAG_ALLOCATED});
    EXPECT_EQ(old[4].rgbGreen, 77) << "the old table was freed";
    Z_OsFree(old);
    EXPECT_EQ(Z_CopyGrayParams(nullptr, &source), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_CopyGrayParams(&target, nullptr), Z_ERROR_BITMAP);
}

} // namespace
