// The palettes that devices of each depth get before a bitmap is painted on them.
#include "core/test_bitmaps.h"
#include "zkr13n/dib.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/palettes.h"
#include "zkr13n/surface.h"

namespace zkr::test {
namespace {

enum class Expected { None, Fixed, Cube, Levels, Own };

struct Case {
    int Bits, Order;
    bool HasFixedPalette;
    uint32_t Mode;
    int DeviceBits;
    Expected Palette;
};
constexpr Case Cases[] = {
    {24, 1, false, 0x8, 1, Expected::Fixed},   {24, 1, false, 0x8, 4, Expected::Fixed},
    {24, 1, false, 0x8, 8, Expected::Fixed},   {24, 1, false, 0x8, 24, Expected::None},
    {24, 1, false, 0x108, 8, Expected::Cube},  {24, 1, false, 0x108, 4, Expected::Fixed},
    {24, 1, false, 0x0, 8, Expected::None},    {48, 1, false, 0x8, 32, Expected::None},
    {8, 0, false, 0x8, 8, Expected::Own},      {8, 0, false, 0x8, 4, Expected::Fixed},
    {8, 0, false, 0x88, 8, Expected::Fixed},   {8, 0, true, 0x88, 8, Expected::Own},
    {8, 0, false, 0x188, 8, Expected::Cube},   {3, 0, false, 0x8, 24, Expected::Own},
    {1, 0, true, 0x18, 8, Expected::Levels},   {1, 0, true, 0x18, 1, Expected::Own},
    {1, 0, true, 0x48, 8, Expected::Own},      {1, 0, false, 0x18, 24, Expected::Own},
    {16, 2, false, 0x0, 24, Expected::Levels}, {16, 2, false, 0x8, 8, Expected::Levels},
    {16, 2, false, 0x88, 8, Expected::Fixed},  {12, 2, false, 0x8, 4, Expected::Fixed},
};

RGBQUAD OwnColour(uint32_t i) {
    return {static_cast<uint8_t>(i * 3), static_cast<uint8_t>(i + 1), static_cast<uint8_t>(200 - i), 0};
}

// Entry i of what is expected, through the paint table where it plays a part.
RGBQUAD ExpectedEntry(const Case& c, uint32_t i, const uint8_t* table) {
    const auto level = [](uint32_t value) { return static_cast<uint8_t>(value); };
    const auto painted = [&](const RGBQUAD& q) {
        return RGBQUAD{table[q.rgbBlue], table[q.rgbGreen], table[q.rgbRed], 0};
    };
    const auto fixed = [](int bits, uint32_t entry) { return Z_IntGetFixedPalette(bits)[entry]; };
    switch (c.Palette) {
    case Expected::Fixed: return fixed(c.DeviceBits, i);
    case Expected::Cube:
        if (i >= 216) return {};
        return {level(i % 6 * 51), level(i / 6 % 6 * 51), level(i / 36 * 51), 0};
    case Expected::Levels: return {table[i], table[i], table[i], 0};
    default: return painted(c.HasFixedPalette ? fixed(c.Bits, i) : OwnColour(i));
    }
}

TEST(PaintPalette, OfEachDevice) {
    for (const bool isAdjusted : {false, true})
        for (const Case& c : Cases) {
            SCOPED_TRACE(&c - Cases);
            uint32_t pixels[8] = {};
            const SurfaceDescription description = {
                sizeof description, 4, 1, c.DeviceBits, 16, 0, pixels, nullptr, 0, 0};
            HDC context = nullptr;
            ASSERT_EQ(Z_CreateSurface(&description, &context), 1);
            Bitmap bitmap(5, 4, c.Bits);
            ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
            bitmap.Order = c.Order;
            RGBQUAD own[256];
            for (uint32_t i = 0; i < 256; ++i)
                own[i] = OwnColour(i);
            const uint32_t entries = c.Bits <= 8 ? 1u << c.Bits : 0;
            if (entries != 0)
                Z_CreateBitmapPalette(&bitmap, c.HasFixedPalette ? Z_IntGetFixedPalette(c.Bits) : own,
                                      entries);
            for (uint32_t i = 0; i < 256 && isAdjusted; ++i)
                bitmap.PaintLUT[i] = static_cast<uint8_t>(255 - i / 2);
            if (isAdjusted) bitmap.Flags |= Z_FLAG_PAINT_LUT_ACTIVE;
            const uint32_t before = Z_SetDisplayMode(~0u, c.Mode);
            HPALETTE palette = Z_CreatePaintPalette(context, &bitmap);
            Z_SetDisplayMode(~0u, before);
            ASSERT_EQ(palette == nullptr, c.Palette == Expected::None);
            RGBQUAD found[256];
            const uint32_t count = Z_GetPaletteEntries(palette, 0, 256, found);
            const uint32_t expected = c.Palette == Expected::Fixed  ? 1u << c.DeviceBits
                                      : c.Palette == Expected::Own  ? entries
                                      : c.Palette == Expected::None ? 0
                                                                    : 256;
            ASSERT_EQ(count, expected);
            for (uint32_t i = 0; i < count; ++i) {
                const RGBQUAD entry = ExpectedEntry(c, i, bitmap.PaintLUT);
                ASSERT_EQ(std::memcmp(&found[i], &entry, 4), 0) << i;
            }
            EXPECT_EQ(Z_DeleteObject(palette), palette != nullptr ? 1 : Z_ERROR_ARGUMENT);
            Z_DeleteSurface(context);
        }
}

TEST(PaintPalette, OfNothing) {
    EXPECT_EQ(Z_CreatePaintPalette(nullptr, nullptr), nullptr);
    BitmapHandle empty{};
    EXPECT_EQ(Z_CreatePaintPalette(nullptr, &empty), nullptr);
    Bitmap bitmap(5, 4, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    EXPECT_EQ(Z_CreatePaintPalette(nullptr, &bitmap), nullptr) << "without a palette";
}

} // namespace
} // namespace zkr::test
