// libyuv's turns and mirrors of the photograph.
#include "../pictures.h"
#include "../turn_work.h"
#include "../work.h"

#include <libyuv.h>

#include <vector>

namespace bench {

namespace {

constexpr int Width = PhotographWidth;
constexpr int Height = PhotographHeight;

uint8_t* Target() {
    static std::vector<uint8_t> memory(PhotographPixels * 3);
    return memory.data();
}

const Adds adds([] {
    AddPeer(Turn8, {"libyuv", 1.5, [] {
                        libyuv::RotatePlane90(Data(PhotographBitmap(8, 0)), Width, Target(), Height, Width,
                                              Height);
                        Touch(Target());
                    }});
    AddPeer(FlipRows24, {"libyuv", 0.8, [] {
                             libyuv::CopyPlane(Data(PhotographBitmap(24, 1)), Width * 3, Target(), Width * 3,
                                               Width * 3, -Height);
                             Touch(Target());
                         }});
    AddPeer(MirrorRows24, {"libyuv", 0.8, [] {
                               libyuv::RGB24Mirror(Data(PhotographBitmap(24, 1)), Width * 3, Target(),
                                                   Width * 3, Width, Height);
                               Touch(Target());
                           }});
});

} // namespace

} // namespace bench
