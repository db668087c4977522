// The outline and the colour overlay, pixel by pixel on a canvas, and how often what they keep is made.
#include "zkr13n/region_paint.h"

#include "core/test_bitmaps.h"
#include "platform/canvas.h"
#include "zkr13n/region.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

constexpr int Side = 40;

struct Selection : Bitmap {
    Selection() : Bitmap(Side, Side, 8) {
        ViewPerspective = 0;
        Z_AllocateBitmap(this, MemoryConventional);
        const RECT ellipse = {5, 8, 31, 29}, corner = {20, 20, 36, 34};
        EXPECT_EQ(Z_SetBitmapRgnEllipse(this, nullptr, &ellipse, Z_RGN_SET), 1);
        EXPECT_EQ(Z_SetBitmapRgnRect(this, nullptr, &corner, Z_RGN_OR), 1);
    }
    bool Has(int x, int y) { return Z_IsPtInBitmapRgn(this, y, x) != 0; }
};

// A pixel belongs to the outline where the moved region and the meeting of the two other copies differ.
bool InOutline(Selection& selection, int x, int y, uint32_t type) {
    const int px = x + 1, py = y + 1; // the band is moved back in the end
    const bool moved = selection.Has(px - 1, py - 1);
    const bool right = (type & 1) != 0 ? selection.Has(px, py) : selection.Has(px - 2, py);
    const bool below = (type & 1) != 0 ? selection.Has(px - 2, py - 2) : selection.Has(px, py - 2);
    return moved != (right && below);
}

TEST(RegionPainting, OutlineIsStripedAndMarches) {
    constexpr unsigned stripes[] = {0x0F, 0x87, 0xC3, 0xE1, 0xF0, 0x78, 0x3C, 0x1E};
    Selection selection;
    for (const int bits : {8, 24, 32}) {
        for (uint32_t type = 0; type < 10; ++type) {
            Canvas canvas(Side, Side, bits, 3);
            const uint32_t text = canvas.info.Colour(bits > 8 ? 0x123456 : 9),
                           back = canvas.info.Colour(bits > 8 ? 0x9ABCDE : 200);
            const auto reversed = [](uint32_t c) { return (c & 255) << 16 | (c & 0xFF00) | c >> 16; };
            platform::SetTextColor(canvas.context, reversed(text));
            platform::SetBkColor(canvas.context, reversed(back));
            std::vector<uint32_t> expected = canvas.Pixels();
            for (int y = 0; y < Side; ++y)
                for (int x = 0; x < Side; ++x)
                    if (InOutline(selection, x, y, type)) {
                        const unsigned row = stripes[(7 - static_cast<unsigned>(y & 7) + type) & 7];
                        expected[canvas.At(x, y)] =
                            canvas.info.Nearest((row >> (7 - (x & 7)) & 1) != 0 ? back : text);
                    }
            ASSERT_EQ(Z_FrameBitmapRgn(canvas.context, &selection, nullptr, type), 1);
            ASSERT_EQ(canvas.Pixels(), expected) << bits << " bits, type " << type;
        }
    }
    EXPECT_EQ(Z_FrameBitmapRgn(nullptr, &selection, nullptr, 0), 1);
    EXPECT_EQ(Z_FrameBitmapRgn(nullptr, nullptr, nullptr, 0), 1);
}

TEST(RegionPainting, ColourTurnsBitsInsideTheRegion) {
    Selection selection;
    auto* const region = static_cast<RegionHandle*>(selection.Region);
    HBITMAP kept = nullptr;
    for (const auto& [dx, dy] : {std::pair{0, 0}, {3, -2}, {-9, 4}}) {
        Canvas canvas(Side, Side, 24, 4);
        std::vector<uint32_t> expected = canvas.Pixels();
        for (int y = 0; y < Side; ++y)
            for (int x = 0; x < Side; ++x)
                if (selection.Has(x - dx, y - dy)) expected[canvas.At(x, y)] ^= 0x00C08040;
        platform::SetTextColor(canvas.context, 0x111111);
        platform::SetBkColor(canvas.context, 0x222222);
        const RegionXform xform = {0, 1, 1, 1, 1, dx, dy};
        ASSERT_EQ(Z_ColorBitmapRgn(canvas.context, &selection, &xform, 0x4080C0), 1);
        ASSERT_EQ(canvas.Pixels(), expected);
        EXPECT_EQ(platform::SetTextColor(canvas.context, 0), 0x111111u);
        EXPECT_EQ(platform::SetBkColor(canvas.context, 0), 0x222222u);
        if (kept == nullptr) kept = region->MaskBitmap;
        EXPECT_EQ(region->MaskBitmap, kept); // offsets alone make no new one
    }
    Canvas canvas(Side, Side, 24, 5);
    const RegionXform twice = {0, 2, 1, 2, 1, 0, 0}, none = {6, 1, 1, 1, 1, 0, 0};
    ASSERT_EQ(Z_ColorBitmapRgn(canvas.context, &selection, &twice, 0), 1);
    EXPECT_EQ(region->MaskXform.XNumerator, 2);
    EXPECT_EQ(Z_ColorBitmapRgn(canvas.context, &selection, &none, 0), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_ColorBitmapRgn(canvas.context, nullptr, nullptr, 0), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_ColorBitmapRgn(nullptr, &selection, nullptr, 0), Z_ERROR_ARGUMENT);
    ASSERT_EQ(Z_OffsetBitmapRgn(&selection, 1, 1), 1);
    EXPECT_EQ(region->MaskBitmap, nullptr);

    const std::vector<uint32_t> before = canvas.Pixels();
    const RECT nothing = {0, 0, 0, 0};
    ASSERT_EQ(Z_SetBitmapRgnRect(&selection, nullptr, &nothing, Z_RGN_AND), 1);
    EXPECT_EQ(Z_ColorBitmapRgn(canvas.context, &selection, nullptr, 0xFFFFFF), 1);
    ASSERT_EQ(Z_FreeBitmapRgn(&selection), 1);
    EXPECT_EQ(Z_ColorBitmapRgn(nullptr, &selection, nullptr, 0xFFFFFF), 1);
    EXPECT_EQ(canvas.Pixels(), before);
}

} // namespace
} // namespace zkr::test
