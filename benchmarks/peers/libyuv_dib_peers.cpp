// libyuv from YUV to 24 bits. It has no way of its own from packed pixels: they pass through 32 bits, a few rows at a
// time so that these stay in cache.
#include "../dib_work.h"
#include "../work.h"

#include <libyuv.h>

#include <algorithm>
#include <vector>

namespace bench {

namespace {

constexpr int Width = PhotographWidth;
constexpr int Height = PhotographHeight;

std::vector<uint8_t>& Target() {
    static std::vector<uint8_t> memory(PhotographPixels * 3);
    return memory;
}

void Packed() {
    constexpr int rows = 8;
    static std::vector<uint8_t> wide(size_t{Width} * rows * 4);
    for (int y = 0; y < Height; y += rows) {
        const auto first = static_cast<size_t>(y) * Width;
        libyuv::YUY2ToARGB(PackedPhotograph().data() + first * 2, Width * 2, wide.data(), Width * 4, Width,
                           rows);
        libyuv::ARGBToRGB24(wide.data(), Width * 4, Target().data() + first * 3, Width * 3, Width, rows);
    }
    Touch(Target().data());
}

void Planar() {
    const uint8_t* y = PlanarPhotograph().data();
    libyuv::I420ToRGB24(y, Width, y + PhotographPixels, Width / 2, y + PhotographPixels * 5 / 4, Width / 2,
                        Target().data(), Width * 3, Width, Height);
    Touch(Target().data());
}

const Adds adds([] {
    AddPeer(FromPacked422, {"libyuv", 0.5, Packed});
    AddPeer(FromPlanar420, {"libyuv", 0.5, Planar});
});

} // namespace

} // namespace bench
