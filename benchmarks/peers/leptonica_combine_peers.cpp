// Leptonica's raster operations on the page.
#include "../combine_work.h"
#include "../work.h"

#include <leptonica/allheaders.h>

#include <cstring>

namespace bench {

namespace {

PIX* PixOf(BitmapHandle* page) {
    PIX* made = pixCreate(PageWidth, PageHeight, 1);
    std::memcpy(pixGetData(made), Data(page), page->Size);
    return made;
}

void Add(int number, double ratio, l_int32 operation, l_int32 sourceLeft) {
    AddPeer(number, {"Leptonica", ratio, [=] {
                         static PIX* const source = PixOf(PictureOf(1));
                         static PIX* const target = PixOf(Ground(1));
                         pixRasterop(target, 0, 0, PageWidth, PageHeight, operation, source, sourceLeft, 0);
                         Touch(pixGetData(target));
                     }});
}

const Adds adds([] {
    Add(PageOr, 0.8, PIX_PAINT, 0);
    Add(PageAnd, 0.8, PIX_MASK, 0);
    Add(PageXor, 0.8, PIX_XOR, 0);
    Add(PageOrShifted, 1.2, PIX_PAINT, CombineShift);
});

} // namespace

} // namespace bench
