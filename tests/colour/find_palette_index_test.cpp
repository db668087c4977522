// The nearest entry of a palette: the vector search of every instruction set against the plain scan, and the
// rules for ties, exact matches and the palette's ends worked out by hand.
#include "colour/reference_palettes.h"
#include "colour/rows/kernel_set.h"
#include "colour/rows/palette_match.h"
#include "support/random_palettes.h"
#include "support/seeded.h"

#include <gtest/gtest.h>

namespace zkr::test {
namespace {

class FindPaletteIndex : public ::testing::TestWithParam<rows::RowKernels> {
  protected:
    int Find(const std::vector<RGBQUAD>& palette, int red, int green, int blue) const {
        return GetParam().Match.Find(palette.data(), static_cast<int32_t>(palette.size()), red, green, blue);
    }
};

TEST_P(FindPaletteIndex, DecidesTiesAndEndsAsTold) {
    const RGBQUAD black = EntryOf(0, 0, 0, 7), white = EntryOf(255, 255, 255, 9);
    const RGBQUAD middle = EntryOf(100, 90, 80);
    const RGBQUAD class1 = EntryOf(100, 120, 80), class2 = EntryOf(100, 60, 80);
    const RGBQUAD class0 = EntryOf(130, 90, 80), class0Too = EntryOf(100, 90, 50);
    // Twelve entries that are far from all colours below, so that vectors are at work too.
    const std::vector<RGBQUAD> distant(12, EntryOf(255, 0, 255));
    const auto with = [&](std::initializer_list<RGBQUAD> first, std::initializer_list<RGBQUAD> last = {}) {
        std::vector<RGBQUAD> palette(first);
        palette.insert(palette.end(), distant.begin(), distant.end());
        palette.insert(palette.end(), last);
        return palette;
    };
    const struct {
        const char* What;
        std::vector<RGBQUAD> Palette;
        int Red, Green, Blue;
        int Expected;
    } cases[] = {
        {"no entries, black", {}, 0, 0, 0, -1},
        {"no entries, white", {}, 255, 255, 255, -1},
        {"one entry", {white}, 0, 0, 0, 0},
        {"black at both ends goes to the front", with({black}, {black}), 0, 0, 0, 0},
        {"black at the back before black in the middle", with({middle, black}, {black}), 0, 0, 0, 14},
        {"black in the middle", with({middle, black, black}, {middle}), 0, 0, 0, 1},
        {"white at both ends goes to the back", with({white}, {white}), 255, 255, 255, 13},
        {"white at the front before white in the middle", with({white, white}, {middle}), 255, 255, 255, 0},
        {"white in the middle", with({middle, white, white}, {middle}), 255, 255, 255, 1},
        {"exact match stops", with({middle, middle}, {middle}), 100, 90, 80, 0},
        {"exact match ends a tie of the target's class",
         with({EntryOf(100, 90, 81), middle, EntryOf(100, 90, 79)}), 100, 90, 80, 1},
        // (100, 90, 80) has class 0; each of these is 30 away from it.
        {"neither of the class: the first stays", with({class1, class2}), 100, 90, 80, 0},
        {"a later one of the class displaces", with({class1, class0}), 100, 90, 80, 1},
        {"a later one of another class does not", with({class0, class2}), 100, 90, 80, 0},
        {"the last of the class, even in another vector", with({class1, class0}, {class0Too, class2}), 100,
         90, 80, 14},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Find(c.Palette, c.Red, c.Green, c.Blue), c.Expected) << c.What;
    }
}

TEST_P(FindPaletteIndex, AgreesWithPlainScan) {
    Seeded seeded(1);
    for (int round = 0; round < 2000; ++round) {
        const int entries = round % 16 == 0 ? seeded.Between(257, 1100) : seeded.Between(0, 256);
        const RandomPalette palette(seeded, entries);
        for (int i = 0; i < 60; ++i) {
            const Colour c = palette.Target(seeded);
            const int red = static_cast<int>(c.red), green = static_cast<int>(c.green),
                      blue = static_cast<int>(c.blue);
            ASSERT_EQ(Find(palette.Entries, red, green, blue),
                      ReferenceFindPaletteIndex(palette.Entries.data(), entries, red, green, blue))
                << entries << " entries in steps of " << palette.Grain << ", colour " << red << ", " << green
                << ", " << blue;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllSets, FindPaletteIndex, ::testing::ValuesIn(rows::UsableKernelSets()),
                         [](const auto& each) { return std::string(each.param.Name); });

} // namespace
} // namespace zkr::test
