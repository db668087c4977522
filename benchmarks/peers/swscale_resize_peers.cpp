// libswscale's reduction of gray by area.
#include "../pictures.h"
#include "../resize_work.h"
#include "../work.h"

extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include <vector>

namespace bench {

namespace {

const Adds adds([] {
    AddPeer(AreaReducedGray,
            {"libswscale", 0.3, [] {
                 static SwsContext* context =
                     sws_getContext(PhotographWidth, PhotographHeight, AV_PIX_FMT_GRAY8, ReducedWidth,
                                    ReducedHeight, AV_PIX_FMT_GRAY8, SWS_AREA, nullptr, nullptr, nullptr);
                 static std::vector<uint8_t> made(size_t{ReducedWidth + 4} * ReducedHeight);
                 const uint8_t* sources[4] = {Data(PhotographBitmap(0, 1))};
                 const int sourceLines[4] = {PhotographWidth};
                 uint8_t* targets[4] = {made.data()};
                 const int targetLines[4] = {ReducedWidth + 4};
                 sws_scale(context, sources, sourceLines, 0, PhotographHeight, targets, targetLines);
                 Touch(made.data());
             }});
});

} // namespace

} // namespace bench
