// Bitmaps of every depth and order with contents of few colours, and a listener to the status callback, for
// the tests of operations on whole bitmaps.
#pragma once

#include "core/reports.h"
#include "core/test_bitmaps.h"
#include "support/pixel_bits.h"
#include "support/seeded.h"
#include "zkr13n/allocation.h"

#include <vector>

namespace zkr::test {

struct PictureForm {
    int32_t Bits;
    int32_t Order;

    bool IsGrayWord() const { return Bits == 12 || (Bits == 16 && Order == Z_ORDER_GRAY); }
    std::string Name() const { return std::to_string(Bits) + " bits, order " + std::to_string(Order) + ": "; }
};

inline constexpr PictureForm AllForms[] = {{1, 0},  {2, 0},  {3, 0},  {4, 0},  {5, 0},  {6, 0},  {7, 0},
                                           {8, 0},  {12, 2}, {16, 0}, {16, 1}, {16, 2}, {24, 0}, {24, 1},
                                           {32, 0}, {32, 1}, {48, 0}, {48, 1}, {64, 0}, {64, 1}};

// Random pixels out of `values` different ones, and palettes with repetitions.
struct ColourPicture : Bitmap {
    ColourPicture(PictureForm form, int32_t width, int32_t height, uint64_t seed, int values = 1 << 20) {
        Seeded seeded(seed);
        RGBQUAD palette[256];
        for (RGBQUAD& entry : palette)
            entry = {static_cast<uint8_t>(seeded.Byte() & 0xC3), static_cast<uint8_t>(seeded.Byte() & 0x81),
                     static_cast<uint8_t>(seeded.Byte() & 0x81), seeded.Byte()};
        EXPECT_EQ(Z_CreateBitmap(this, MemoryConventional, width, height, form.Bits, form.Order, palette, 2,
                                 nullptr, 0),
                  1);
        std::vector<uint64_t> pool(static_cast<size_t>(values < 4096 ? values : 4096));
        for (uint64_t& value : pool)
            value = seeded.Next();
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x)
                WritePixel(Row(y), form.Bits, x, pool[static_cast<size_t>(seeded.Below(int(pool.size())))]);
    }
    uint8_t* Row(int32_t y) { return static_cast<uint8_t*>(Addr) + size_t{BytesPerLine} * size_t(y); }
    uint64_t Pixel(int32_t y, int32_t x) { return ReadPixel(Row(y), BitsPerPixel, x); }

    void SetLevels(uint32_t length, uint64_t seed) {
        LevelLUT = static_cast<RGBQUAD*>(Z_OsAlloc((length + 1) * sizeof(RGBQUAD)));
        LevelLUTLength = length;
        Flags |= flag::LevelLUTActive;
        Seeded seeded(seed);
        for (uint32_t i = 0; i < length; ++i)
            LevelLUT[i] = {seeded.Byte(), static_cast<uint8_t>(seeded.Byte() & 0xF0), seeded.Byte(), 9};
    }
};

// Hears the status callback; stops the work at its n-th report, at none for 0.
struct StatusLog : Reports {
    explicit StatusLog(size_t stopAt = 0, ReturnCode with = Stopped)
        : Reports(Z_SetStatusCallBack, stopAt - 1, with) {}
};

} // namespace zkr::test
