// Masks and regions as pixman has them.
#pragma once

#include "../pictures.h"

#include <pixman.h>

namespace bench {

// Of a 1-bit bitmap: pixman's first pixel lies in the lowest bit. The image is kept for good.
inline pixman_image_t* PixmanMaskOf(const BitmapHandle* mask) {
    pixman_image_t* image = pixman_image_create_bits(PIXMAN_a1, mask->Width, mask->Height, nullptr,
                                                     static_cast<int>(mask->BytesPerLine));
    auto* bytes = reinterpret_cast<uint8_t*>(pixman_image_get_data(image));
    const auto* source = static_cast<const uint8_t*>(mask->Addr);
    for (size_t i = 0; i < mask->Size; ++i)
        for (int bit = 0; bit < 8; ++bit)
            if ((source[i] >> bit & 1) != 0) bytes[i] |= static_cast<uint8_t>(0x80 >> bit);
    return image;
}

inline pixman_region32_t* PixmanRegionOf(const BitmapHandle* mask) {
    auto* region = new pixman_region32_t;
    pixman_image_t* image = PixmanMaskOf(mask);
    pixman_region32_init_from_image(region, image);
    pixman_image_unref(image);
    return region;
}

} // namespace bench
