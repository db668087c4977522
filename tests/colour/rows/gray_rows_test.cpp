// The gray row functions against the same rule for single pixels, over every window of a pixel, and a few
// values worked out by hand.
#include "colour/rows/gray_rows.h"

#include "support/pixel_bits.h"
#include "support/seeded.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zkr::test {
namespace {

using Function = decltype(&rows::GrayRow12To8);

struct Form {
    Function function;
    int sourceBits;
    int targetBits;
};

constexpr Form Forms[] = {{rows::GrayRow12To8, 12, 8},   {rows::GrayRow12To12, 12, 12},
                          {rows::GrayRow12To16, 12, 16}, {rows::GrayRow16To8, 16, 8},
                          {rows::GrayRow16To12, 16, 12}, {rows::GrayRow16To16, 16, 16}};

// What one value becomes, told for each form by itself.
uint32_t Expected(const Form& form, const RGBQUAD* table, uint32_t value, uint32_t mask) {
    if (table != nullptr) {
        const RGBQUAD& entry = table[value];
        const uint32_t gray = (5u * entry.rgbGreen + 2u * entry.rgbRed + entry.rgbBlue + 4u) >> 3;
        if (form.targetBits == 8) return gray;
        if (form.targetBits == 16) return gray * 257;
        return form.sourceBits == 12 ? (gray << 4) + gray / 17 : gray * 4095 / 255;
    }
    if (form.targetBits == 8) return (mask < 255 ? value * 255 / mask : value) & 255;
    if (form.targetBits == 16) return static_cast<uint32_t>(uint64_t{value} * 65535 / mask);
    return (form.sourceBits == 16 && mask >= 4095 ? value : value * 4095 / mask) & 4095;
}

// Longer than the pieces that a row is cut into, and odd.
constexpr int Width = 1101;

std::vector<uint8_t> RandomRow(int bits, Seeded& seeded) {
    std::vector<uint8_t> row(RowBytes(Width, bits));
    for (uint8_t& byte : row)
        byte = seeded.Byte();
    return row;
}

void CheckWindow(const Form& form, const RGBQUAD* table, int bits, int shift, Seeded& seeded) {
    SCOPED_TRACE(std::to_string(form.sourceBits) + " to " + std::to_string(form.targetBits) + ", " +
                 std::to_string(bits) + " bits at " + std::to_string(shift) + (table ? ", table" : ""));
    std::vector<uint8_t> source = RandomRow(form.sourceBits, seeded);
    std::vector<uint8_t> expected = RandomRow(form.targetBits, seeded);
    std::vector<uint8_t> actual = expected;
    const uint32_t mask = (1u << bits) - 1;
    const auto windowShift = static_cast<uint32_t>(shift);
    for (int i = 0; i < Width; ++i) {
        const auto pixel = static_cast<uint32_t>(ReadPixel(source.data(), form.sourceBits, i));
        WritePixel(expected.data(), form.targetBits, i,
                   Expected(form, table, (pixel >> windowShift) & mask, mask));
    }
    form.function(Width, table, source.data(), actual.data(), mask, windowShift);
    ASSERT_EQ(actual, expected);
    if (form.targetBits > form.sourceBits) return;
    form.function(Width, table, source.data(), source.data(), mask, windowShift);
    for (int i = 0; i < Width; ++i)
        ASSERT_EQ(ReadPixel(source.data(), form.targetBits, i),
                  ReadPixel(expected.data(), form.targetBits, i))
            << "in place, pixel " << i;
}

TEST(GrayRows, EveryWindow) {
    Seeded seeded(7);
    std::vector<RGBQUAD> table(65536);
    for (RGBQUAD& entry : table)
        entry = {seeded.Byte(), seeded.Byte(), seeded.Byte(), seeded.Byte()};
    for (const Form& form : Forms)
        for (int bits = 1; bits <= form.sourceBits; ++bits)
            for (int shift = 0; shift + bits <= form.sourceBits; ++shift) {
                CheckWindow(form, nullptr, bits, shift, seeded);
                CheckWindow(form, table.data(), bits, shift, seeded);
                if (HasFatalFailure()) return;
            }
}

TEST(GrayRows, WorkedOutByHand) {
    const uint8_t source12[] = {0x34, 0x12, 0xAB}; // 0x234 and 0xAB1
    uint8_t target[4] = {};
    rows::GrayRow12To16(2, nullptr, source12, target, 0xF, 4); // 3 and 11 of 15
    EXPECT_EQ(target[0] | target[1] << 8, 0x3333);
    EXPECT_EQ(target[2] | target[3] << 8, 0xBBBB);
    rows::GrayRow12To8(1, nullptr, source12, target, 0x7F, 0); // 0x34 * 255 / 127 is 104.4
    EXPECT_EQ(target[0], 104);
    const RGBQUAD table[] = {{80, 160, 40, 0}}; // gray (80 + 800 + 80 + 4) / 8 is 120
    rows::GrayRow12To12(1, table, source12, target, 0, 0);
    EXPECT_EQ(target[0] | (target[1] & 0xF) << 8, 120 * 16 + 7);
}

} // namespace
} // namespace zkr::test
