// Leptonica's page in levels of gray at a quarter.
#include "../paint_work.h"
#include "../pictures.h"
#include "../work.h"

#include <leptonica/allheaders.h>

#include <cstring>

namespace bench {

namespace {

const Adds adds([] {
    AddPeer(PaintPageToGray, {"Leptonica", 1, [] {
                                  static PIX* page = [] {
                                      PIX* made = pixCreate(PageWidth, PageHeight, 1);
                                      std::memcpy(pixGetData(made), Data(PageBitmap()), PageBitmap()->Size);
                                      return made;
                                  }();
                                  PIX* gray = pixScaleToGray4(page);
                                  Touch(pixGetData(gray));
                                  pixDestroy(&gray);
                              }});
});

} // namespace

} // namespace bench
