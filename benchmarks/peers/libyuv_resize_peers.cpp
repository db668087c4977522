// libyuv's doubling of the photograph.
#include "../pictures.h"
#include "../resize_work.h"
#include "../work.h"

#include <libyuv.h>
#include <libyuv/scale_rgb.h>

#include <vector>

namespace bench {

namespace {

constexpr int Width = PhotographWidth, Height = PhotographHeight;

std::vector<uint8_t>& Target() {
    static std::vector<uint8_t> memory(PhotographPixels * 4 * 4);
    return memory;
}

const Adds adds([] {
    AddPeer(LinearDoubled24, {"libyuv", 1.5, [] {
                                  libyuv::RGBScale(Data(PhotographBitmap(24, 1)), Width * 3, Width, Height,
                                                   Target().data(), Width * 6, Width * 2, Height * 2,
                                                   libyuv::kFilterBilinear);
                                  Touch(Target().data());
                              }});
    AddPeer(LinearDoubled32, {"libyuv", 1, [] {
                                  libyuv::ARGBScale(Data(PhotographBitmap(32, 1)), Width * 4, Width, Height,
                                                    Target().data(), Width * 8, Width * 2, Height * 2,
                                                    libyuv::kFilterBilinear);
                                  Touch(Target().data());
                              }});
});

} // namespace

} // namespace bench
