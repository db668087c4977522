// Colour values from one bitmap's terms into another's, rule by rule.
#include "colour/palettes/reference_palettes.h"
#include "zkr13n/colour_values.h"

#include <gtest/gtest.h>

namespace zkr::test {
namespace {

// A record is all that a translation looks at; palettes are blocks.
struct Terms : BitmapHandle {
    Terms(int bits, int order, std::vector<RGBQUAD> palette = {})
        : BitmapHandle{}, Colours(std::move(palette)) {
        BitsPerPixel = bits;
        Order = order;
        if (Colours.empty()) return;
        Palette = Colours.data();
        ColorsUsed = static_cast<uint32_t>(Colours.size());
        Flags = Z_FLAG_PALETTE_IS_BLOCK;
    }
    Terms& WithLevels(std::vector<RGBQUAD> levels, bool active) {
        Levels = std::move(levels);
        LevelLUT = Levels.data();
        LevelLUTLength = static_cast<uint32_t>(Levels.size());
        if (active) Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
        return *this;
    }
    std::vector<RGBQUAD> Colours;
    std::vector<RGBQUAD> Levels;
};

TEST(TranslateBitmapColor, FollowsItsRules) {
    const RGBQUAD black = EntryOf(0, 0, 0), red = EntryOf(200, 0, 0), blue = EntryOf(0, 0, 200);
    const Terms indexed(8, Z_ORDER_RGB, {blue, red, black});
    const Terms alike(4, Z_ORDER_RGB, {EntryOf(9, 9, 9), EntryOf(200, 0, 0, 1)});
    const Terms other(4, Z_ORDER_RGB, {black, blue, red});
    const Terms bare(8, Z_ORDER_RGB);
    const Terms colour(24, Z_ORDER_BGR);
    const Terms gray(16, Z_ORDER_GRAY);
    const Terms gray12(12, Z_ORDER_BGR);
    Terms idle(16, Z_ORDER_GRAY), active(16, Z_ORDER_GRAY);
    idle.WithLevels({black, red}, false);
    active.WithLevels({black, EntryOf(0x34, 0x12, 0), EntryOf(0x10, 0x10, 0x10)}, true);

    const struct {
        const char* What;
        const BitmapHandle* Target;
        const BitmapHandle* Source;
        uint32_t Colour;
        uint32_t Expected;
    } cases[] = {
        {"no target", nullptr, &indexed, 0x01000001, 0x01000001},
        {"no target, 16-bit gray", nullptr, nullptr, 0x04001234, 0x04001234},

        {"16-bit gray to gray", &gray, nullptr, 0x04001234, 0x04001234},
        {"16-bit gray to 12 bits in a colour order", &gray12, nullptr, 0x04001234, 0x04001234},
        {"16-bit gray past an idle table", &idle, nullptr, 0x04001234, 0x04001234},
        {"16-bit gray through a table, by its upper byte", &active, nullptr, 0x04001234, 0x01000002},
        {"16-bit gray to colour", &colour, nullptr, 0x0400C834, 0x00C8C8C8},
        {"16-bit gray with an index mark to colour", &colour, &indexed, 0x05C83456, 0x00343434},
        {"16-bit gray to indices", &indexed, nullptr, 0x04000AFF, 0x01000002},

        {"index without a source, to colour", &colour, nullptr, 0x01000001, 0},
        {"index without a source, to indices", &indexed, nullptr, 0x01000001, 0x01000002},
        {"index of a source that has none", &colour, &gray, 0x01000001, 0},
        {"index beyond the source", &other, &indexed, 0x01000003, 0x01000000},
        {"index of a source without a palette", &indexed, &bare, 0x01000000, 0x01000002},
        {"index to colour", &colour, &indexed, 0x01000001, 0x000000C8},
        {"index that means the same", &alike, &indexed, 0x01000001, 0x01000001},
        {"index that means something else", &other, &indexed, 0x01000001, 0x01000002},
        {"index that the target has not", &alike, &indexed, 0x01000002, 0x01000000},

        {"plain colour to colour", &colour, &indexed, 0x00112233, 0x00112233},
        {"other top byte to colour", &colour, &indexed, 0x02112233, 0x02112233},
        {"plain colour to indices", &other, nullptr, 0x00B00000, 0x01000001},
        {"other top byte to indices", &other, nullptr, 0x10B00001, 0x01000001},
        {"target without a palette", &bare, nullptr, 0x00B00000, 0x01000000},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Z_TranslateBitmapColor(c.Target, c.Source, c.Colour), c.Expected) << c.What;
    }
}

TEST(TranslateBitmapColor, LeavesOutTheLastOfAllLevels) {
    Terms target(16, Z_ORDER_GRAY);
    std::vector<RGBQUAD> levels(65536, EntryOf(255, 255, 255));
    levels[65534] = EntryOf(0x10, 0x10, 0x10);
    levels[65535] = EntryOf(0x12, 0x12, 0x12);
    target.WithLevels(levels, true);
    EXPECT_EQ(Z_TranslateBitmapColor(&target, nullptr, 0x04001234), 0x0100FFFEu);
}

} // namespace
} // namespace zkr::test
