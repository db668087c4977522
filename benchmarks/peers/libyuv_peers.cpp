// libyuv on the photograph.
#include "../pictures.h"
#include "../work.h"

#include <libyuv.h>

#include <vector>

namespace bench {

namespace {

constexpr int Width = PhotographWidth;
constexpr int Height = PhotographHeight;

std::vector<uint8_t>& Target() {
    static std::vector<uint8_t> memory(PhotographPixels * 4);
    return memory;
}

// 16-bit planes down to 8, of one value or three a pixel.
void Narrow(BitmapHandle* source, int valuesPerPixel) {
    libyuv::Convert16To8Plane(reinterpret_cast<const uint16_t*>(Data(source)), Width * valuesPerPixel,
                              Target().data(), Width * valuesPerPixel, 256, Width * valuesPerPixel, Height);
    Touch(Target().data());
}

void Gray() {
    libyuv::RGB24ToJ400(Data(PhotographBitmap(24, 1)), Width * 3, Target().data(), Width, Width, Height);
    Touch(Target().data());
}

const Adds adds([] {
    AddPeer(From32To24, {"libyuv", 0.8, [] {
                             libyuv::ARGBToRGB24(Data(PhotographBitmap(32, 1)), Width * 4, Target().data(),
                                                 Width * 3, Width, Height);
                             Touch(Target().data());
                         }});
    AddPeer(From24To32, {"libyuv", 0.8, [] {
                             libyuv::RGB24ToARGB(Data(PhotographBitmap(24, 1)), Width * 3, Target().data(),
                                                 Width * 4, Width, Height);
                             Touch(Target().data());
                         }});
    AddPeer(From24ToGray, {"libyuv", 0.9, Gray});
    AddPeer(GrayScale24, {"libyuv, the conversion alone", 0.5, Gray});
    AddPeer(FromGray16To8, {"libyuv", 0.8, [] { Narrow(PhotographBitmap(16, 2), 1); }});
    AddPeer(From48To24, {"libyuv", 0.9, [] { Narrow(PhotographBitmap(48, 1), 3); }});
});

} // namespace

} // namespace bench
