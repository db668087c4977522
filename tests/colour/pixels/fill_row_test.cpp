// One colour written into a run of pixels: the pixel value by hand for each depth, order, window and form of
// the colour; then where the run ends, for every count and against pixels written one by one.
#include "colour/palettes/reference_palettes.h"
#include "colour/pixels/fill_row.h"
#include "core/flags.h"
#include "support/pixel_bits.h"
#include "support/seeded.h"

#include <gtest/gtest.h>

namespace zkr::test {
namespace {

// A bitmap without storage: the record is all that a fill looks at. Below 9 bits its palette is a block of
// grays, entry i having level 10 * i.
struct Canvas {
    Canvas(int bits, int order, int lowBit = 0, int highBit = -1) {
        Record.BitsPerPixel = bits;
        Record.Order = order;
        Record.LowBit = lowBit;
        Record.HighBit = highBit < 0 ? bits - 1 : highBit;
        for (unsigned i = 0; i < 25; ++i)
            Palette[i] = EntryOf(10 * i, 10 * i, 10 * i);
        if (bits < 9) {
            Record.Palette = Palette;
            Record.ColorsUsed = 1u << std::clamp(bits, 0, 4);
            Record.Flags = flag::PaletteIsBlock;
        }
    }
    void UseLevelTable() {
        for (unsigned i = 0; i < 4; ++i)
            Levels[i] = EntryOf(85 * i, 85 * i, 85 * i);
        Record.LevelLUT = Levels;
        Record.LevelLUTLength = 4;
        Record.Flags |= flag::LevelLUTActive;
    }
    BitmapHandle Record{};
    RGBQUAD Palette[25];
    RGBQUAD Levels[4];
};

struct PixelCase {
    int Bits;
    int Order;
    int LowBit, HighBit;
    bool LevelTable;
    uint32_t Colour;
    uint64_t Pixel;
};

constexpr int rgb = Z_ORDER_RGB, bgr = Z_ORDER_BGR, gray = Z_ORDER_GRAY;

const PixelCase pixelCases[] = {
    // An index, cut to the depth; else the nearest entry.
    {1, rgb, 0, -1, false, 0x01000001, 1},
    {1, rgb, 0, -1, false, 0x01000002, 0},
    {1, rgb, 0, -1, false, 0x00FFFFFF, 1},
    {2, rgb, 0, -1, false, 0x01000007, 3},
    {3, rgb, 0, -1, false, 0x0100000D, 5},
    {4, rgb, 0, -1, false, 0x005A5A5A, 9},
    {5, rgb, 0, -1, false, 0x01000015, 0x15},
    {6, rgb, 0, -1, false, 0x0100002B, 0x2B},
    {7, rgb, 0, -1, false, 0x01000055, 0x55},
    {8, rgb, 0, -1, false, 0x010001C3, 0xC3},
    {8, rgb, 0, -1, false, 0x04005077, 8}, // the upper byte of a 16-bit gray
    // 12 bits: gray in any order; only the top bytes 1 and 2 are gray values.
    {12, gray, 0, 11, false, 0x0100FABC, 0xABC},
    {12, gray, 0, 11, false, 0x0200ABCD, 0xABC},
    {12, gray, 0, 11, false, 0x000000FF, 0x404}, // gray 64
    {12, gray, 0, 11, false, 0x0400ABCD, 0x9E9}, // red CD, green AB: gray 9E
    {12, bgr, 0, 11, false, 0x0400ABCD, 0x9E9},
    {12, gray, 2, 9, false, 0x01000ABC, 0x2AC},
    {12, gray, 2, 9, false, 0x0200ABCD, 0x2AC},
    {12, gray, 2, 9, false, 0x00FFFFFF, 0x3FC},
    {12, gray, 2, 9, true, 0x00B0B0B0, 2 << 2},
    {12, gray, 2, 9, true, 0x0400B0FF, 2 << 2},
    {12, gray, 2, 9, true, 0x01000ABC, 0x2AC},
    {12, gray, INT32_MAX, -1, false, 0x00FFFFFF, 0}, // a window without bits
    // 16 bits gray: bits 24 and 26 mark a gray value, top byte 2 is a plain colour.
    {16, gray, 0, 15, false, 0x0100ABCD, 0xABCD},
    {16, gray, 0, 15, false, 0x0400ABCD, 0xABCD},
    {16, gray, 0, 15, false, 0x0200ABCD, 0x9E9E},
    {16, gray, 4, 15, false, 0x0400ABCD, 0xABC0},
    {16, gray, 4, 15, false, 0x00FFFFFF, 0xFFF0},
    {16, gray, 0, 11, false, 0x0100ABCD, 0x0ABC},
    {16, gray, 0, 11, false, 0x00FFFFFF, 0xFFFF}, // not cut where the window starts at bit 0
    {16, gray, 4, 15, true, 0x0400B0FF, 2 << 4},
    {16, gray, 4, 15, true, 0x0100ABCD, 0xABC0},
    // Colour.
    {16, rgb, 0, -1, false, 0x008040F8, 0x411F},
    {16, bgr, 0, -1, false, 0x008040F8, 0x7D10},
    {16, bgr, 0, -1, false, 0x0400A5FF, 0x5294},
    {24, rgb, 0, -1, false, 0x008040F8, 0x8040F8},
    {24, bgr, 0, -1, false, 0x008040F8, 0xF84080},
    {24, bgr, 0, -1, false, 0x0400A5FF, 0xA5A5A5},
    {32, rgb, 0, -1, false, 0x008040F8, 0x008040F8},
    {32, bgr, 0, -1, false, 0x008040F8, 0x00F84080},
    {48, rgb, 0, -1, false, 0x008040F8, 0x80804040F8F8},
    {48, bgr, 0, -1, false, 0x008040F8, 0xF8F840408080},
    {64, rgb, 0, -1, false, 0x008040F8, 0x000080804040F8F8},
    {64, bgr, 0, -1, false, 0x008040F8, 0x0000F8F840408080},
};

TEST(FillRow, WritesThePixelOfEachFormOfColourUpToTheEndOfTheRun) {
    Seeded seeded(3);
    for (const PixelCase& c : pixelCases) {
        Canvas canvas(c.Bits, c.Order, c.LowBit, c.HighBit);
        if (c.LevelTable) canvas.UseLevelTable();
        for (int count = 0; count <= 150; ++count) {
            std::vector<uint8_t> row(RowBytes(150, c.Bits) + 8);
            for (uint8_t& byte : row)
                byte = seeded.Byte();
            std::vector<uint8_t> expected = row;
            const bool fillsBytes = c.Bits == 1 || c.Bits == 2 || c.Bits == 4;
            const int perByte = fillsBytes ? 8 / c.Bits : 1;
            const int written = (count + perByte - 1) / perByte * perByte;
            for (int i = 0; i < written; ++i)
                WritePixel(expected.data(), c.Bits, i, c.Pixel);
            FillRowWithColor(canvas.Record, c.Colour, row.data(), count);
            ASSERT_EQ(row, expected) << count << " pixels of " << c.Bits << " bits, order " << c.Order
                                     << ", bits " << c.LowBit << " to " << c.HighBit << ", colour "
                                     << std::hex << c.Colour;
        }
    }
}

TEST(FillRow, LeavesWhatItCannotFill) {
    uint8_t row[16] = {1, 2, 3, 4, 5, 6, 7, 8};
    const std::vector<uint8_t> before(std::begin(row), std::end(row));
    for (const int bits : {0, 9, 11, 25, -1}) {
        FillRowWithColor(Canvas(bits, rgb).Record, 0x01000001, row, 2);
    }
    FillRowWithColor(Canvas(8, rgb).Record, 0x01000001, row, -5);
    EXPECT_EQ(std::vector<uint8_t>(std::begin(row), std::end(row)), before);
}

} // namespace
} // namespace zkr::test
