// libyuv's arithmetic, which takes the photograph's rows as bytes.
#include "../combine_work.h"
#include "../work.h"

#include <libyuv.h>

namespace bench {

namespace {

constexpr int RowBytes = PhotographWidth * 3;

template <typename Combine> void Add(int number, double ratio, Combine combine) {
    AddPeer(number, {"libyuv", ratio, [=] {
                         combine(Data(Ground(24)), Data(PictureOf(24)));
                         Touch(Data(Ground(24)));
                     }});
}

const Adds adds([] {
    Add(Add24, 0.8, [](uint8_t* to, const uint8_t* from) {
        libyuv::ARGBAdd(to, RowBytes, from, RowBytes, to, RowBytes, RowBytes / 4, PhotographHeight);
    });
    Add(Subtract24, 0.8, [](uint8_t* to, const uint8_t* from) {
        libyuv::ARGBSubtract(to, RowBytes, from, RowBytes, to, RowBytes, RowBytes / 4, PhotographHeight);
    });
    Add(Average24, 0.8, [](uint8_t* to, const uint8_t* from) {
        libyuv::InterpolatePlane(to, RowBytes, from, RowBytes, to, RowBytes, RowBytes, PhotographHeight, 128);
    });
    Add(Multiply24, 0.6, [](uint8_t* to, const uint8_t* from) {
        libyuv::ARGBMultiply(to, RowBytes, from, RowBytes, to, RowBytes, RowBytes / 4, PhotographHeight);
    });
});

} // namespace

} // namespace bench
