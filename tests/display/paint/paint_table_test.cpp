// The paint table against its formulas written out level by level, and the display modes of threads.
#include "zkr13n/bitmap.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/locks.h"
#include "zkr13n/paint.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <thread>

namespace {

class PaintTable : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(Z_InitBitmap(&bitmap_, 4, 4, 8), 1);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap_, MemoryConventional), 1);
    }
    void TearDown() override { Z_FreeBitmap(&bitmap_); }
    bool Active() const { return (bitmap_.Flags & Z_FLAG_PAINT_LUT_ACTIVE) != 0; }

    BitmapHandle bitmap_;
};

int Reference(int level, int contrast, int intensity, double gamma) {
    if (contrast != 0) {
        const int a = std::abs(contrast);
        const double low = std::floor(a * 128 / 4000.0 + 0.5);
        const double high = 256 - std::floor(5.34 * std::pow(1.5, std::log2(a * 0.128)));
        double value = level < low     ? 0
                       : level >= high ? 255
                                       : std::floor((level - low) * 256 / (high - low) + 0.5);
        if (contrast < 0) value = low + std::floor(level * (high - low) / 256 + 0.5);
        level = static_cast<int>(std::min(value, 255.0));
    }
    level = std::clamp(level + (255 * intensity + 500) / 1000, 0, 255);
    return static_cast<int>(std::pow(level / 255.0, 100 / gamma) * 255 + 0.5);
}

TEST_F(PaintTable, FollowsItsThreeValues) {
    for (const int contrast : {0, 1, 7, 300, 1000, -1, -250, -1000}) {
        for (const int intensity : {0, -1000, -333, 1, 2, 500, 1000}) {
            for (const unsigned gamma : {100u, 50u, 220u, 4000000000u}) {
                ASSERT_EQ(Z_SetPaintContrast(&bitmap_, contrast), 1);
                ASSERT_EQ(Z_SetPaintIntensity(&bitmap_, intensity), 1);
                ASSERT_EQ(Z_SetPaintGamma(&bitmap_, gamma), 1);
                for (int level = 0; level < 256; ++level) {
                    ASSERT_EQ(bitmap_.PaintLUT[level], Reference(level, contrast, intensity, gamma))
                        << level << " with " << contrast << ", " << intensity << ", " << gamma;
                }
            }
        }
    }
    EXPECT_EQ(Z_GetPaintContrast(&bitmap_), -1000);
    EXPECT_EQ(Z_GetPaintIntensity(&bitmap_), 1000);
    EXPECT_EQ(Z_GetPaintGamma(&bitmap_), 4000000000u);
}

TEST_F(PaintTable, StaysInUseWhenContrastIsTakenBack) {
    EXPECT_FALSE(Active());
    ASSERT_EQ(Z_SetPaintContrast(&bitmap_, 1000), 1);
    EXPECT_TRUE(Active());
    ASSERT_EQ(Z_SetPaintContrast(&bitmap_, 0), 1);
    EXPECT_TRUE(Active());
    for (int level = 0; level < 256; ++level)
        ASSERT_EQ(bitmap_.PaintLUT[level], level);
    bitmap_.PaintLUT[9] = 1; // the present value makes no table, but for gamma
    EXPECT_EQ(Z_SetPaintContrast(&bitmap_, 0), 1);
    EXPECT_EQ(Z_SetPaintIntensity(&bitmap_, 0), 1);
    EXPECT_EQ(bitmap_.PaintLUT[9], 1);
    EXPECT_EQ(Z_SetPaintGamma(&bitmap_, 100), 1);
    EXPECT_EQ(bitmap_.PaintLUT[9], 9);
}

TEST_F(PaintTable, RefusesWhatIsOutOfRange) {
    for (const auto set : {Z_SetPaintContrast, Z_SetPaintIntensity}) {
        EXPECT_EQ(set(nullptr, 5000), -2);
        EXPECT_EQ(set(&bitmap_, 1001), -13);
        EXPECT_EQ(set(&bitmap_, -1001), -13);
    }
    EXPECT_EQ(Z_SetPaintGamma(&bitmap_, 0), -13);
    EXPECT_EQ(Z_SetPaintGamma(nullptr, 0), -2);
    EXPECT_EQ(bitmap_.PaintGamma, 100);
    EXPECT_FALSE(Active());
}

TEST(DisplayMode, BelongsToTheThread) {
    EXPECT_EQ(Z_SetDisplayMode(0xFFFFFFFF, 0xABCD0173), 12u);
    EXPECT_EQ(Z_GetDisplayMode(), 0xABCD0173u) << "bits without a name are kept";
    std::thread([] {
        EXPECT_EQ(Z_GetDisplayMode(), 12u);
        const uint32_t old = Z_SetDisplayMode(12, 8);
        EXPECT_EQ(Z_GetDisplayMode(), 8u);
        Z_SetDisplayMode(0xFFFFFFFF, old);
        EXPECT_EQ(Z_GetDisplayMode(), 12u);
    }).join();
    Z_SetSupportLocks(1u << Z_SUPPORT_BITONAL);
    Z_SetDisplayMode(0x51, 0);
    EXPECT_EQ(Z_GetDisplayMode(), 0xABCD0172u);
    Z_SetSupportLocks(0);
    Z_SetDisplayMode(0xFFFFFFFF, 12);
}

} // namespace
