// What histograms count of pixels of every form.
#include "colour/pictures.h"
#include "colour/quantise/histogram.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

uint16_t KeyOf(uint32_t red, uint32_t green, uint32_t blue) {
    return static_cast<uint16_t>(red / 8 * 1024 + green / 8 * 32 + blue / 8);
}

uint16_t KeyOfGray(const ColourPicture& picture, uint64_t pixel) {
    const bool table = (picture.Flags & flag::LevelLUTActive) != 0;
    const int bits = std::min(picture.HighBit - picture.LowBit + 1, table ? 16 : 8);
    const auto value = static_cast<uint32_t>(pixel >> (picture.HighBit - bits + 1)) & ((1u << bits) - 1);
    if (table) {
        if (value >= picture.LevelLUTLength) return 0;
        const RGBQUAD& entry = picture.LevelLUT[value];
        return KeyOf(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
    }
    const uint32_t gray = bits < 8 ? value * 255 / ((1u << bits) - 1) : value;
    return KeyOf(gray, gray, gray);
}

uint16_t KeyOfPixel(ColourPicture& picture, PixelForm form, int32_t y, int32_t x) {
    const uint64_t pixel = picture.Pixel(y, x);
    if (form.IsGrayWord()) return KeyOfGray(picture, pixel);
    if (form.Bits <= 8) {
        RGBQUAD palette[256] = {};
        Z_GetBitmapPaletteEntries(&picture, 0, 256, palette);
        const RGBQUAD& entry = palette[pixel];
        return KeyOf(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
    }
    const int step = form.Bits == 16 ? 5 : form.Bits >= 48 ? 16 : 8;
    const auto upper = [&](int place) {
        return static_cast<uint32_t>(pixel >> (step * place + step - 5)) % 32;
    };
    const bool isRgb = form.Order == Z_ORDER_RGB;
    return KeyOf(upper(isRgb ? 0 : 2) * 8, upper(1) * 8, upper(isRgb ? 2 : 0) * 8);
}

void ExpectKeys(ColourPicture& picture, PixelForm form) {
    SCOPED_TRACE(form.Name());
    std::vector<uint16_t> keys;
    for (int32_t y = 0; y < picture.Height; ++y)
        for (int32_t x = 0; x < picture.Width; ++x)
            keys.push_back(KeyOfPixel(picture, form, y, x));
    Histogram wanted, got;
    wanted.Add(keys.data(), keys.size());
    ASSERT_EQ(got.Add(picture), code::Success);
    ASSERT_EQ(got.colourCount(), wanted.colourCount());
    for (uint32_t i = 0; i < wanted.colourCount(); ++i) {
        const int32_t colour = wanted.colours()[i];
        ASSERT_EQ(got.colours()[i], colour) << "the " << i << "th in order";
        ASSERT_EQ(got.Population(static_cast<uint32_t>(colour)),
                  wanted.Population(static_cast<uint32_t>(colour)));
    }
}

TEST(KeyReader, ReadsEveryForm) {
    for (const PixelForm form : AllForms)
        for (const int32_t width : {1, 7, 530, 1030}) {
            ColourPicture picture(form, width, 3, static_cast<uint64_t>(width));
            ExpectKeys(picture, form);
        }
}

TEST(KeyReader, GoesThroughWindowsAndLevelTables) {
    for (const PixelForm form : {PixelForm{12, 2}, PixelForm{16, 2}})
        for (const auto& [low, high] : {std::pair{0, form.Bits - 1}, {2, 11}, {0, 4}, {3, 9}})
            for (const uint32_t length : {0u, 65536u, 40u}) {
                ColourPicture picture(form, 300, 4, 7);
                picture.LowBit = low, picture.HighBit = high;
                if (length > 0) picture.SetLevels(length, length);
                ExpectKeys(picture, form);
            }
}

} // namespace
} // namespace zkr::test
