// Leptonica on the page, and its quantiser on the photograph. Its pixels lie in words of the machine's order;
// that makes no difference to the time.
#include "../pictures.h"
#include "../work.h"

#include <leptonica/allheaders.h>

#include <cstring>

namespace bench {

namespace {

PIX* Page() {
    static PIX* page = [] {
        PIX* made = pixCreate(PageWidth, PageHeight, 1);
        std::memcpy(pixGetData(made), Data(PageBitmap()), PageBitmap()->Size);
        return made;
    }();
    return page;
}

// The photograph in words of red, green, blue and nothing, from the highest byte.
PIX* Colours() {
    static PIX* photograph = [] {
        PIX* made = pixCreate(PhotographWidth, PhotographHeight, 32);
        l_uint32* word = pixGetData(made);
        const uint8_t* pixel = Photograph().data();
        for (size_t i = 0; i < PhotographPixels; ++i, pixel += 3)
            composeRGBPixel(pixel[2], pixel[1], pixel[0], word++);
        return made;
    }();
    return photograph;
}

PIX* MedianCut(bool diffused) {
    return pixMedianCutQuantGeneral(Colours(), diffused ? 1 : 0, 8, 256, 5, 1, 0);
}

double MedianCutDecibels(bool diffused) {
    PIX* made = MedianCut(diffused);
    PIXCMAP* map = pixGetColormap(made);
    RGBQUAD palette[256] = {};
    for (int i = 0; i < pixcmapGetCount(map); ++i) {
        l_int32 red, green, blue;
        pixcmapGetColor(map, i, &red, &green, &blue);
        palette[i] = {static_cast<uint8_t>(blue), static_cast<uint8_t>(green), static_cast<uint8_t>(red), 0};
    }
    pixEndianByteSwap(made);
    const double decibels =
        DecibelsOf(reinterpret_cast<const uint8_t*>(pixGetData(made)), PhotographWidth, palette);
    pixDestroy(&made);
    return decibels;
}

void AddMedianCut(int number, double ratioToReach, bool diffused) {
    AddPeer(number, {"Leptonica median cut", ratioToReach,
                     [=] {
                         PIX* made = MedianCut(diffused);
                         Touch(pixGetData(made));
                         pixDestroy(&made);
                     },
                     1, false, [=] { return MedianCutDecibels(diffused); }});
}

const Adds adds([] {
    AddMedianCut(Optimised, 1, false);
    AddMedianCut(OptimisedDiffused, 2, true);
    AddPeer(From1To8, {"Leptonica", 4, [] {
                           static PIX* target = pixCreate(PageWidth, PageHeight, 8);
                           pixConvert1To8(target, Page(), 0, 255);
                           Touch(pixGetData(target));
                       }});
    // In place, which spares it a copy.
    AddPeer(FlipRuns, {"Leptonica on packed bits", 5, [] {
                           static PIX* page = pixCopy(nullptr, Page());
                           pixFlipTB(page, page);
                           Touch(pixGetData(page));
                       }});
    AddPeer(MirrorRuns, {"Leptonica on packed bits", 2, [] {
                             static PIX* page = pixCopy(nullptr, Page());
                             pixFlipLR(page, page);
                             Touch(pixGetData(page));
                         }});
    AddPeer(ShiftPage, {"Leptonica raster operation", 0.8, [] {
                            static PIX* target = pixCreate(PageWidth, PageHeight, 1);
                            pixRasterop(target, 0, 0, PageWidth - ShiftedBy, PageHeight, PIX_SRC, Page(),
                                        ShiftedBy, 0);
                            Touch(pixGetData(target));
                        }});
});

} // namespace

} // namespace bench
