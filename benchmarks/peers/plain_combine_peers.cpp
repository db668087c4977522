// The underlay as a plain loop over pixels, which is compiled with -O3.
#include "../combine_work.h"
#include "../work.h"

#include <vector>

namespace bench {

namespace {

// (2 red + 5 green + blue + 4) >> 3
std::vector<uint8_t> GrayTexture() {
    std::vector<uint8_t> gray(size_t{TextureSide} * TextureSide);
    const uint8_t* pixel = Data(CanvasTexture());
    for (uint8_t& value : gray) {
        value = static_cast<uint8_t>((2 * pixel[2] + 5 * pixel[1] + pixel[0] + 4) >> 3);
        pixel += 3;
    }
    return gray;
}

void Underlay() {
    const std::vector<uint8_t> gray = GrayTexture();
    uint8_t* pixel = Data(Ground(24));
    for (int32_t y = 0; y < PhotographHeight; ++y)
        for (int32_t x = 0; x < PhotographWidth; ++x, pixel += 3) {
            const int lit = gray[static_cast<size_t>(y % TextureSide * TextureSide + x % TextureSide)] - 128;
            for (int channel = 0; channel < 3; ++channel) {
                const int value = pixel[channel] + lit;
                pixel[channel] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
            }
        }
    Touch(Data(Ground(24)));
}

const Adds adds([] { AddPeer(Underlay24, {"a loop at -O3", 2, Underlay}); });

} // namespace

} // namespace bench
