// The palette of the display. Where the display can be chosen it is a palette display of known colours;
// elsewhere the calls are held against what the display itself tells.
#include "colour/palettes/reference_palettes.h"
#include "colour/palettes/system_palette.h"
#include "platform/graphics.h"

#include <gtest/gtest.h>

#include <cstring>

#ifndef _WIN32
#include "support/screen.h"
#endif

namespace zkr::test {
namespace {

#ifdef _WIN32

TEST(SystemPalette, IsThereOnAPaletteDisplayAlone) {
    const HDC screen = platform::GetDC(nullptr);
    const bool hasPalette = (platform::GetDeviceCaps(screen, RASTERCAPS) & RC_PALETTE) != 0;
    const int size = platform::GetDeviceCaps(screen, SIZEPALETTE);
    const int reserved = platform::GetDeviceCaps(screen, NUMRESERVED);
    platform::ReleaseDC(nullptr, screen);

    const HPALETTE palette = Z_CreateSystemPalette();
    EXPECT_EQ(Z_GetPaletteSize(palette), hasPalette ? static_cast<uint32_t>(size) : 0u);
    if (palette != nullptr) platform::DeleteObject(palette);
    RGBQUAD colours[256];
    EXPECT_EQ(GetStaticColors(colours, 256), hasPalette ? static_cast<uint32_t>(reserved) : 0u);
}

#else

TEST(SystemPalette, IsCopiedFromAPaletteDisplay) {
    const Screen screen(8, 20);
    const HPALETTE palette = Z_CreateSystemPalette();
    ASSERT_EQ(Z_GetPaletteSize(palette), 256u);
    RGBQUAD entries[256];
    Z_GetPaletteEntries(palette, 0, 256, entries);
    EXPECT_EQ(std::memcmp(entries, screen.Colours, sizeof entries), 0);
    platform::DeleteObject(palette);
}

TEST(SystemPalette, IsMissingOnOtherDisplays) {
    RGBQUAD colours[16];
    EXPECT_EQ(Z_CreateSystemPalette(), nullptr);
    const Screen screen(32, 0);
    EXPECT_EQ(Z_CreateSystemPalette(), nullptr);
    EXPECT_EQ(GetStaticColors(colours, 16), 0u);
}

TEST(StaticColors, GoToBothEnds) {
    const Screen screen(8, 21);
    for (const auto& [wanted, count] :
         {std::pair{256u, 21u}, {64u, 21u}, {21u, 21u}, {5u, 5u}, {1u, 1u}, {0u, 0u}}) {
        RGBQUAD colours[256];
        for (RGBQUAD& colour : colours)
            colour = EntryOf(1, 2, 3, 4);
        ASSERT_EQ(GetStaticColors(colours, wanted), count);
        for (unsigned i = 0; i < 256; ++i) {
            const unsigned front = count / 2, back = count - front;
            const bool isBack = i < wanted && i >= wanted - back;
            const unsigned red = i < front ? i : isBack ? 256 - (wanted - i) : 1;
            ASSERT_EQ(colours[i].rgbRed, red) << i << " of " << wanted;
            ASSERT_EQ(colours[i].rgbReserved, i < front || isBack ? 0 : 4);
        }
    }
}

#endif

} // namespace
} // namespace zkr::test
