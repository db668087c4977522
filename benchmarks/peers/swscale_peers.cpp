// libswscale: indexed pictures and bitonal pages to colour, and ordered dithering.
#include "../paint_work.h"
#include "../pictures.h"
#include "../work.h"

extern "C" {
#include <libavutil/log.h>
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include <cstring>
#include <map>
#include <vector>

namespace bench {

namespace {

void Scale(SwsContext* context, BitmapHandle* source, const uint8_t* palette, uint8_t* target,
           int targetLine) {
    const uint8_t* sources[4] = {Data(source), palette, nullptr, nullptr};
    const int sourceLines[4] = {static_cast<int>(source->BytesPerLine), 0, 0, 0};
    uint8_t* targets[4] = {target, nullptr, nullptr, nullptr};
    const int targetLines[4] = {targetLine, 0, 0, 0};
    sws_scale(context, sources, sourceLines, 0, source->Height, targets, targetLines);
    Touch(target);
}

SwsContext* Context(int width, int height, AVPixelFormat from, AVPixelFormat to) {
    return sws_getContext(width, height, from, width, height, to, SWS_POINT, nullptr, nullptr, nullptr);
}

void AddOrdered(int number, AVPixelFormat to, int targetLine) {
    AddPeer(number, {"libswscale", 4, [=] {
                         static std::vector<uint8_t> target(PhotographPixels);
                         static std::map<AVPixelFormat, SwsContext*> contexts;
                         SwsContext*& context = contexts[to];
                         if (context == nullptr)
                             context = Context(PhotographWidth, PhotographHeight, AV_PIX_FMT_BGR24, to);
                         Scale(context, PhotographBitmap(24, Z_ORDER_BGR), nullptr, target.data(),
                               targetLine);
                     }});
}

const Adds adds([] {
    av_log_set_level(AV_LOG_ERROR); // what it does without is no news to whoever reads the table
    AddPeer(FromPaletteTo32,
            {"libswscale", 1.2, [] {
                 static SwsContext* context =
                     Context(PhotographWidth, PhotographHeight, AV_PIX_FMT_PAL8, AV_PIX_FMT_BGRA);
                 static std::vector<uint8_t> target(PhotographPixels * 4);
                 uint8_t palette[1024];
                 std::memcpy(palette, Palette256().data(), sizeof palette);
                 Scale(context, PhotographBitmap(8, 0), palette, target.data(), PhotographWidth * 4);
             }});
    AddPeer(From1To24, {"libswscale", 10, [] {
                            static SwsContext* context =
                                Context(PageWidth, PageHeight, AV_PIX_FMT_MONOBLACK, AV_PIX_FMT_BGR24);
                            static std::vector<uint8_t> target(PagePixels * 3);
                            Scale(context, PageBitmap(), nullptr, target.data(), PageWidth * 3);
                        }});
    AddOrdered(BitonalOrdered, AV_PIX_FMT_MONOBLACK, PhotographWidth / 8);
    AddOrdered(FixedOrdered, AV_PIX_FMT_RGB8, PhotographWidth);
    AddOrdered(PaintOrderedTo8, AV_PIX_FMT_RGB8, PhotographWidth);
    AddOrdered(PaintOrderedTo4, AV_PIX_FMT_RGB4, PhotographWidth / 2);
});

} // namespace

} // namespace bench
