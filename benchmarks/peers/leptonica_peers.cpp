// Leptonica on the page. Its pixels lie in words of the machine's order; that makes no difference to the
// time.
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

const Adds adds([] {
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
