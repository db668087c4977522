// What palette objects must do alike on every system, beyond what the library's palette functions show.
#include "platform/faults.h"
#include "platform/graphics.h"

#include <gtest/gtest.h>

#include <vector>

namespace zkr {
namespace {

using namespace platform;

HPALETTE Make(const std::vector<PALETTEENTRY>& entries, WORD version = 0x300) {
    std::vector<uint8_t> bytes(sizeof(LOGPALETTE) + entries.size() * sizeof(PALETTEENTRY));
    auto* description = reinterpret_cast<LOGPALETTE*>(bytes.data());
    description->palVersion = version;
    description->palNumEntries = static_cast<WORD>(entries.size());
    std::copy(entries.begin(), entries.end(), description->palPalEntry);
    return CreatePalette(description);
}

TEST(Palettes, KeepToTheirEndAndAreGoneWhenDeleted) {
    HPALETTE palette = Make({{1, 2, 3, 4}, {5, 6, 7, 0}, {9, 10, 11, 0}});
    const PALETTEENTRY fresh[3] = {{20, 21, 22, 1}, {30, 31, 32, 0}, {40, 41, 42, 0}};
    EXPECT_EQ(SetPaletteEntries(palette, 2, 3, fresh), 1u);
    PALETTEENTRY got[4] = {};
    EXPECT_EQ(GetPaletteEntries(palette, 1, 10, got), 2u);
    EXPECT_EQ(got[0].peRed, 5);
    EXPECT_EQ(got[1].peGreen, 21);
    EXPECT_EQ(got[2].peRed, 0) << "nothing behind the end";
    EXPECT_EQ(GetPaletteEntries(palette, 0, 0, nullptr), 3u);
    EXPECT_NE(DeleteObject(palette), FALSE);
    WORD count = 0;
    EXPECT_EQ(GetObjectA(palette, sizeof count, &count), 0);
    EXPECT_EQ(GetPaletteEntries(palette, 0, 1, got), 0u);
    EXPECT_EQ(DeleteObject(palette), FALSE);
#ifndef _WIN32
    EXPECT_EQ(Make({}), nullptr);
    EXPECT_EQ(Make({{1, 2, 3, 0}}, 0x200), nullptr);
#endif
}

TEST(Palettes, FindTheNearestEntryAndTheFirstOfEquals) {
    HPALETTE palette =
        Make({{0, 0, 0, 0}, {100, 0, 0, 0}, {0, 100, 0, 0}, {0, 100, 0, 0}, {255, 255, 255, 0}});
    EXPECT_EQ(GetNearestPaletteIndex(palette, 0x006400), 2u) << "0x00BBGGRR: green";
    EXPECT_EQ(GetNearestPaletteIndex(palette, 0x000033), 1u) << "red 51 is nearer to 100 than to 0";
    EXPECT_EQ(GetNearestPaletteIndex(palette, 0xF0F0F0), 4u);
    DeleteObject(palette);
}

TEST(Screen, HasAContextThatTellsItsProperties) {
    HDC context = GetDC(nullptr);
    for (const int property : {HORZRES, VERTRES, BITSPIXEL})
        EXPECT_GT(GetDeviceCaps(context, property), 0);
    EXPECT_EQ(ReleaseDC(nullptr, context), 1);
    EXPECT_EQ(ReleaseDC(nullptr, context), 0);
}

} // namespace
} // namespace zkr
