// What histograms count of pixels of every form.
#include "colour/pictures.h"
#include "colour/pixels/pixel_model.h"
#include "colour/quantise/histogram.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

uint16_t KeyOf(const PixelModel& model, uint64_t pixel) {
    Colour c;
    if (model.IsGray() && !model.HasLevels()) {
        const auto [value, largest] = model.GrayValue(pixel, 8);
        c.red = c.green = c.blue = static_cast<unsigned>(value * 255 / largest);
    } else {
        c = model.Colour8(pixel);
    }
    return static_cast<uint16_t>(c.red / 8 * 1024 + c.green / 8 * 32 + c.blue / 8);
}

void ExpectKeys(ColourPicture& picture, PictureForm form) {
    SCOPED_TRACE(form.Name());
    const PixelModel model(picture);
    std::vector<uint16_t> keys;
    for (int32_t y = 0; y < picture.Height; ++y)
        for (int32_t x = 0; x < picture.Width; ++x)
            keys.push_back(KeyOf(model, picture.Pixel(y, x)));
    Histogram wanted, got;
    wanted.Add(keys.data(), keys.size());
    ASSERT_EQ(got.Add(picture), code::Success);
    ASSERT_EQ(got.ColourCount(), wanted.ColourCount());
    for (uint32_t i = 0; i < wanted.ColourCount(); ++i) {
        const int32_t colour = wanted.Colours()[i];
        ASSERT_EQ(got.Colours()[i], colour) << "the " << i << "th in order";
        ASSERT_EQ(got.Population(static_cast<uint32_t>(colour)),
                  wanted.Population(static_cast<uint32_t>(colour)));
    }
}

TEST(KeyReader, ReadsEveryForm) {
    for (const PictureForm form : AllForms)
        for (const int32_t width : {1, 7, 530, 1030}) {
            ColourPicture picture(form, width, 3, static_cast<uint64_t>(width));
            ExpectKeys(picture, form);
        }
}

TEST(KeyReader, GoesThroughWindowsAndLevelTables) {
    for (const PictureForm form : {PictureForm{12, 2}, PictureForm{16, 2}})
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
