// The nearest entry of a palette: the vector search of every instruction set against the plain scan, over palettes
// in which ties, exact matches and black and white at the ends are frequent.
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
