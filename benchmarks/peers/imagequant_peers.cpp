// libimagequant finding 256 colours for the photograph, and matching it against the 256 given ones, on one
// thread and without dithering.
#include "../pictures.h"
#include "../work.h"

#include <libimagequant.h>

#include <vector>

namespace bench {

namespace {

const std::vector<liq_color>& Pixels() {
    static const std::vector<liq_color> pixels = [] {
        std::vector<liq_color> made(PhotographPixels);
        const uint8_t* pixel = Photograph().data();
        for (liq_color& colour : made) {
            colour = {pixel[2], pixel[1], pixel[0], 255};
            pixel += 3;
        }
        return made;
    }();
    return pixels;
}

liq_image* MakeImage(liq_attr* attributes) {
    return liq_image_create_rgba(attributes, Pixels().data(), PhotographWidth, PhotographHeight, 0);
}

// At its fastest.
void FindPalette() {
    liq_attr* attributes = liq_attr_create();
    liq_set_speed(attributes, 10);
    liq_image* image = MakeImage(attributes);
    liq_result* result = nullptr;
    if (liq_image_quantize(image, attributes, &result) == LIQ_OK) {
        Touch(liq_get_palette(result));
        liq_result_destroy(result);
    }
    liq_image_destroy(image);
    liq_attr_destroy(attributes);
}

void Remap() {
    static std::vector<uint8_t> indices(PhotographPixels);
    liq_attr* attributes = liq_attr_create();
    liq_image* image = MakeImage(attributes);
    // The palette is fixed; its colours are counted too, for without any there is nothing to quantise.
    liq_histogram* histogram = liq_histogram_create(attributes);
    std::vector<liq_histogram_entry> colours;
    for (const RGBQUAD& entry : Palette256()) {
        colours.push_back({{entry.rgbRed, entry.rgbGreen, entry.rgbBlue, 255}, 1});
        liq_histogram_add_fixed_color(histogram, colours.back().color, 0);
    }
    liq_histogram_add_colors(histogram, attributes, colours.data(), static_cast<int>(colours.size()), 0);
    liq_result* result = nullptr;
    if (liq_histogram_quantize(histogram, attributes, &result) == LIQ_OK) {
        liq_set_dithering_level(result, 0);
        liq_write_remapped_image(result, image, indices.data(), indices.size());
        liq_result_destroy(result);
    }
    Touch(indices.data());
    liq_histogram_destroy(histogram);
    liq_image_destroy(image);
    liq_attr_destroy(attributes);
}

const Adds adds([] {
    AddPeer(From24ToPalette, {"libimagequant, near exact", 25, Remap});
    AddPeer(OptimisedPalette, {"libimagequant", 8, FindPalette});
});

} // namespace

} // namespace bench
