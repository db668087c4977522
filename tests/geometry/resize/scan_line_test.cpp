// The steppers and the line resizer against the rule told for one pixel and one row.
#include "support/row_harness.h"

#include "zkr13n/resize.h"

#include <gtest/gtest.h>

#include <vector>

namespace zkr::test {
namespace {

constexpr int Depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

struct Steps {
    uint32_t First, Step, Error, Remainder;
    int32_t Denominator;
    uint32_t Pixels;

    uint64_t SourceOf(uint32_t pixel) const {
        return First + uint64_t{pixel} * Step +
               (Error + uint64_t{pixel} * Remainder) / static_cast<uint32_t>(Denominator);
    }
    size_t SourceBytes(int bits) const { return RowBytes(static_cast<int>(SourceOf(Pixels - 1)) + 1, bits); }
};

std::vector<uint8_t> RandomRow(size_t bytes, Seeded& seeded) {
    std::vector<uint8_t> row(bytes);
    FillRow(row, RowContent::Random, seeded);
    return row;
}

// With a step of 0 where the depth does not read it.
Steps RandomSteps(Seeded& seeded, bool enlarges) {
    const int denominator = seeded.Between(1, 300);
    return {static_cast<uint32_t>(seeded.Below(20)),
            static_cast<uint32_t>(enlarges ? 0 : seeded.Between(1, 4)),
            static_cast<uint32_t>(seeded.Below(denominator)),
            static_cast<uint32_t>(seeded.Below(denominator + (enlarges ? 1 : 0))),
            denominator,
            static_cast<uint32_t>(seeded.Between(1, 270))};
}

TEST(ScanLine, EachPixelIsTheOneThatTheStepsTell) {
    Seeded seeded(1);
    for (int round = 0; round < 60; ++round)
        for (const int bits : Depths)
            for (const bool enlarges : {false, true}) {
                const Steps steps = RandomSteps(seeded, enlarges);
                const std::vector<uint8_t> source = RandomRow(steps.SourceBytes(bits), seeded);
                const size_t bytes = RowBytes(static_cast<int>(steps.Pixels), bits);
                std::vector<uint8_t> there = RandomRow(bytes + 3, seeded), back = there, expected = there;
                const std::vector<uint8_t> before = there;
                const bool packs = bits < 8 || bits == 12;
                if (packs) std::fill_n(expected.begin(), bytes + 2, uint8_t{0});
                std::vector<uint8_t> expectedBack = before;
                for (uint32_t k = 0; k < steps.Pixels; ++k) {
                    const uint64_t pixel =
                        ReadPixel(source.data(), bits, static_cast<int>(steps.SourceOf(k)));
                    WritePixel(expected.data(), bits, static_cast<int>(k), pixel);
                    WritePixel(expectedBack.data(), bits, static_cast<int>(k), pixel);
                }
                // Where the step is not to be read it has a value that would be seen.
                const uint32_t step = enlarges && bits < 8 ? 77 : steps.Step;
                Z_GetResizedScanLine(bits, static_cast<uint32_t>(bytes) + 2, steps.First, step, steps.Error,
                                     steps.Remainder, source.data(), there.data(), steps.Pixels,
                                     steps.Denominator, enlarges);
                Z_ReverseGetResizedScanLine(bits, static_cast<uint32_t>(bytes) + 2, steps.First, step,
                                            steps.Error, steps.Remainder, source.data(), back.data(),
                                            steps.Pixels, steps.Denominator, enlarges);
                ASSERT_EQ(there, expected) << bits << " bits, enlarges " << enlarges;
                ASSERT_EQ(back, expectedBack) << bits << " bits, enlarges " << enlarges;
            }
}

TEST(ScanLine, DepthsThatThereAreNotLeaveTheTarget) {
    const std::vector<uint8_t> source(32, 0xFF);
    for (const int bits : {0, -1, 9, 20, 65}) {
        std::vector<uint8_t> target(8, 0x5A);
        Z_GetResizedScanLine(bits, 8, 0, 1, 0, 0, source.data(), target.data(), 2, 2, 0);
        Z_ReverseGetResizedScanLine(bits, 8, 0, 1, 0, 0, source.data(), target.data(), 2, 2, 0);
        EXPECT_EQ(target, std::vector<uint8_t>(8, 0x5A));
    }
}

TEST(LineResize, RowsInOrderGiveTheWholePicture) {
    Seeded seeded(2);
    for (int round = 0; round < 400; ++round) {
        const int bits = Depths[seeded.Below(14)], oldWidth = seeded.Between(1, 150),
                  oldHeight = seeded.Between(1, 40);
        const int newWidth = seeded.Between(1, 150), newHeight = seeded.Between(1, 90);
        ResizeLineState* state = nullptr;
        ASSERT_EQ(Z_StartResize(oldWidth, oldHeight, newWidth, newHeight, &state), 1);
        int total = 0;
        for (int y = 0; y < oldHeight; ++y) {
            std::vector<uint8_t> row = RandomRow(RowBytes(std::max(oldWidth, newWidth), bits), seeded);
            const std::vector<uint8_t> before = row;
            int32_t width = 0, repeat = -1;
            ASSERT_EQ(Z_Resize(row.data(), static_cast<uint32_t>(y), bits, &width, &repeat, state), repeat);
            ASSERT_EQ(width, newWidth);
            total += repeat;
            ASSERT_TRUE(repeat != 0 || row == before);
            for (int x = 0; x < newWidth && repeat != 0; ++x)
                ASSERT_EQ(ReadPixel(row.data(), bits, x),
                          ReadPixel(before.data(), bits, x * oldWidth / newWidth))
                    << bits << " bits, pixel " << x << " of " << newWidth << " from " << oldWidth;
        }
        EXPECT_EQ(total, newHeight);
        EXPECT_EQ(Z_StopResize(state), 1);
    }
}

// 3 rows become 8: two, and a third of the remainder of 2, each; rows that do not follow each other count from
// the remainder that belongs to their place.
TEST(LineResize, AnyOrderOfRows) {
    ResizeLineState* state = nullptr;
    ASSERT_EQ(Z_StartResize(5, 3, 5, 8, &state), 1);
    uint8_t row[8] = {};
    int32_t width = 0, repeat = 0;
    const struct {
        uint32_t Row;
        int32_t Repeat;
    } steps[] = {{0, 2}, {1, 3}, {2, 3}, {1, 2}, {0, 3}, {1, 3}, {2, 3}, {0, 2}, {2, 3}};
    for (const auto& step : steps) {
        EXPECT_EQ(Z_Resize(row, step.Row, 8, &width, &repeat, state), step.Repeat) << step.Row;
        EXPECT_EQ(repeat, step.Repeat);
    }
    EXPECT_EQ(Z_StopResize(state), 1);
}

TEST(LineResize, SizesAreCompletedOrRefused) {
    const struct {
        int32_t OldWidth, OldHeight, NewWidth, NewHeight;
        int32_t ExpectedWidth; // 0: refused
    } cases[] = {{100, 50, 30, 0, 30},     {3, 7, 0, 4, 2},    {5, 2, 0, 1, 3},    {100, 1, 0, 0, 0},
                 {1, 100, 0, 49, 0},       {1, 100, 0, 50, 1}, {10, 10, -1, 5, 0}, {0, 10, 5, 5, 0},
                 {2000000000, 1, 0, 2, 0}, {10, 10, 5, -1, 0}};
    for (const auto& c : cases) {
        auto* const untouched = reinterpret_cast<ResizeLineState*>(8);
        ResizeLineState* state = untouched;
        const ReturnCode result = Z_StartResize(c.OldWidth, c.OldHeight, c.NewWidth, c.NewHeight, &state);
        EXPECT_EQ(result, c.ExpectedWidth != 0 ? Z_SUCCESS : Z_ERROR_ARGUMENT);
        if (result != 1) {
            EXPECT_EQ(state, untouched);
            continue;
        }
        uint8_t row[800] = {};
        int32_t width = 0, repeat = 0;
        Z_Resize(row, 0, 1, &width, &repeat, state);
        EXPECT_EQ(width, c.ExpectedWidth);
        Z_StopResize(state);
    }
    EXPECT_EQ(Z_StartResize(1, 1, 1, 1, nullptr), Z_ERROR_ARGUMENT);
}

} // namespace
} // namespace zkr::test
