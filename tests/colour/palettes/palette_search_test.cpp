// The search kept for whole rows: the same indices as the plain scan for any palette and any rows, with
// either instruction set, whether cubes are known or not.
#include "colour/kernels/palette_match.h"
#include "colour/palettes/palette_search.h"
#include "colour/palettes/reference_palettes.h"
#include "kernels/family.h"
#include "support/random_palettes.h"
#include "support/seeded.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace zkr::test {
namespace {

std::vector<uint8_t> QuadsOf(const std::vector<Colour>& colours, Seeded& seeded) {
    std::vector<uint8_t> quads;
    for (const Colour& c : colours) {
        for (const unsigned byte : {c.blue, c.green, c.red, unsigned{seeded.Byte()}}) {
            quads.push_back(static_cast<uint8_t>(byte));
        }
    }
    return quads;
}

std::vector<uint8_t> PlainScan(const std::vector<Colour>& colours, const std::vector<RGBQUAD>& palette) {
    std::vector<uint8_t> indices;
    for (const Colour& c : colours) {
        indices.push_back(static_cast<uint8_t>(ReferenceFindPaletteIndex(
            palette.data(), static_cast<int>(palette.size()), static_cast<int>(c.red),
            static_cast<int>(c.green), static_cast<int>(c.blue))));
    }
    return indices;
}

void ExpectAsPlainScan(PaletteSearch& search, const std::vector<Colour>& colours,
                       const std::vector<RGBQUAD>& palette, Seeded& seeded) {
    constexpr uint8_t guard = 0xA7;
    const std::vector<uint8_t> quads = QuadsOf(colours, seeded);
    std::vector<uint8_t> indices(colours.size() + 1, guard);
    search.MatchRow(quads.data(), indices.data(), colours.size());
    EXPECT_EQ(indices.back(), guard);
    indices.pop_back();
    ASSERT_EQ(indices, PlainScan(colours, palette)) << palette.size() << " entries";
}

// Rows as pictures have them, where the same cubes come again and again, and rows of unrelated colours.
std::vector<Colour> RandomRow(const RandomPalette& palette, Seeded& seeded) {
    std::vector<Colour> row;
    const int pixels = seeded.Below(4) == 0 ? seeded.Below(20) : seeded.Below(300);
    const bool smooth = seeded.Below(3) != 0;
    Colour colour = palette.Target(seeded);
    for (int i = 0; i < pixels; ++i) {
        if (!smooth || seeded.Below(64) == 0) colour = palette.Target(seeded);
        row.push_back(colour);
        for (unsigned* channel : {&colour.red, &colour.green, &colour.blue}) {
            *channel = (*channel + static_cast<unsigned>(seeded.Between(-2, 2))) & 255;
        }
    }
    return row;
}

class PaletteSearchRows : public ::testing::TestWithParam<kernels::InstructionSet> {
  protected:
    const kernels::MatchKernels& Kernels() const {
        return kernels::KernelsOf<kernels::MatchKernels>(GetParam());
    }
};

TEST_P(PaletteSearchRows, AgreeWithPlainScan) {
    Seeded seeded(4);
    const auto search = std::make_unique<PaletteSearch>();
    for (int round = 0; round < 60; ++round) {
        const RandomPalette palette(seeded, round < 4 ? round + 1 : seeded.Between(1, 256));
        const int entries = static_cast<int>(palette.Entries.size());
        search->Prepare(palette.Entries.data(), entries, Kernels());
        for (int row = 0; row < 12; ++row) {
            ExpectAsPlainScan(*search, RandomRow(palette, seeded), palette.Entries, seeded);
        }
    }
}

// One colour, in palettes of any length.
TEST_P(PaletteSearchRows, AgreeForSingleColours) {
    Seeded seeded(1);
    for (int round = 0; round < 2000; ++round) {
        const int entries = round % 16 == 0 ? seeded.Between(257, 1100) : seeded.Between(0, 256);
        const RandomPalette palette(seeded, entries);
        for (int i = 0; i < 60; ++i) {
            const Colour c = palette.Target(seeded);
            const int red = static_cast<int>(c.red), green = static_cast<int>(c.green),
                      blue = static_cast<int>(c.blue);
            ASSERT_EQ(Kernels().Find(palette.Entries.data(), entries, red, green, blue),
                      ReferenceFindPaletteIndex(palette.Entries.data(), entries, red, green, blue))
                << entries << " entries in steps of " << palette.Grain << ", colour " << red << ", " << green
                << ", " << blue;
        }
    }
}

// Gray ramps and the regular fixed palettes tie at every midpoint; the same row comes until its cubes are
// known.
TEST_P(PaletteSearchRows, AgreeOnRegularPalettes) {
    Seeded seeded(5);
    const auto search = std::make_unique<PaletteSearch>();
    std::vector<Colour> row;
    for (unsigned i = 0; i < 256; ++i)
        row.push_back({i, i, i});
    for (unsigned i = 0; i < 256; ++i)
        row.push_back({i, 255 - i, i ^ 18});
    for (int bits = 1; bits <= 8; ++bits) {
        for (const bool ramp : {false, true}) {
            std::vector<RGBQUAD> palette = ReferenceFixedPalette(bits);
            const unsigned last = static_cast<unsigned>(palette.size()) - 1;
            for (unsigned i = 0; ramp && i <= last; ++i) {
                palette[i] = EntryOf(i * 255 / last, i * 255 / last, i * 255 / last);
            }
            search->Prepare(palette.data(), static_cast<int>(palette.size()), Kernels());
            for (int again = 0; again < 8; ++again)
                ExpectAsPlainScan(*search, row, palette, seeded);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllSets, PaletteSearchRows, ::testing::ValuesIn(kernels::UsableSets()),
                         [](const auto& each) { return std::string(kernels::NameOf(each.param)); });

TEST(PaletteSearchFor, FollowsThePaletteOfTheThread) {
    std::vector<RGBQUAD> palette = {EntryOf(0, 0, 0), EntryOf(200, 0, 0), EntryOf(0, 200, 0)};
    PaletteSearch* search = PaletteSearchFor(palette.data(), 3);
    ASSERT_NE(search, nullptr);
    EXPECT_EQ(search->Match(250, 10, 10), 1);
    palette[1] = EntryOf(0, 0, 200); // the same block, other colours
    EXPECT_EQ(PaletteSearchFor(palette.data(), 3)->Match(250, 10, 10), 0);
    EXPECT_EQ(PaletteSearchFor(palette.data(), 1)->Match(0, 250, 10), 0);
    const std::vector<RGBQUAD> same = palette;
    EXPECT_EQ(PaletteSearchFor(palette.data(), 3), PaletteSearchFor(same.data(), 3));

    std::thread([&] { EXPECT_NE(PaletteSearchFor(palette.data(), 3), search); }).join();
    for (const int entries : {0, -1, 257})
        EXPECT_EQ(PaletteSearchFor(palette.data(), entries), nullptr);
}

} // namespace
} // namespace zkr::test
