// Leptonica's scaling of the page.
#include "../pictures.h"
#include "../resize_work.h"
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

void AddScaled(int number, const char* name, double ratio, PIX* (*scale)(PIX*)) {
    AddPeer(number, {name, ratio, [=] {
                         PIX* made = scale(Page());
                         Touch(pixGetData(made));
                         pixDestroy(&made);
                     }});
}

const Adds adds([] {
    AddScaled(StrokesQuarter, "Leptonica rank cascade", 0.8,
              [](PIX* page) { return pixReduceRankBinaryCascade(page, 1, 1, 0, 0); });
    AddScaled(StrokesReduced, "Leptonica scale", 3, [](PIX* page) { return pixScale(page, 0.3f, 0.3f); });
    AddScaled(StrokesDoubled, "Leptonica scale", 4, [](PIX* page) { return pixScale(page, 2, 2); });
});

} // namespace

} // namespace bench
