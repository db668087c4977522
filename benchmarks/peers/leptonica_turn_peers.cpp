// Leptonica's turns and shears of the page; what it shears keeps its size, and what leaves that is lost.
#include "../pictures.h"
#include "../turn_work.h"
#include "../work.h"

#include <leptonica/allheaders.h>

#include <cstring>

namespace bench {

namespace {

constexpr float RadiansInDegree = 3.14159265f / 180;

PIX* Page() {
    static PIX* page = [] {
        PIX* made = pixCreate(PageWidth, PageHeight, 1);
        std::memcpy(pixGetData(made), Data(PageBitmap()), PageBitmap()->Size);
        return made;
    }();
    return page;
}

// Of a result that is made anew each time.
template <typename Make> void AddTurn(int number, double ratio, Make make) {
    AddPeer(number, {"Leptonica", ratio, [make] {
                         PIX* made = make();
                         Touch(pixGetData(made));
                         pixDestroy(&made);
                     }});
}

const Adds adds([] {
    AddTurn(TurnPage, 6, [] { return pixRotate90(Page(), 1); });
    AddTurn(TurnRunsOfPage, 2, [] { return pixRotate90(Page(), 1); });
    AddTurn(HalfTurnPage, 5, [] { return pixRotate180(nullptr, Page()); });
    AddTurn(MirrorPage, 5, [] { return pixFlipLR(nullptr, Page()); });
    AddTurn(RotatePage, 4, [] {
        return pixRotateBySampling(Page(), PageWidth / 2, PageHeight / 2, RotationDegrees * RadiansInDegree,
                                   L_BRING_IN_WHITE);
    });
    AddTurn(ShearRowsPage, 1, [] {
        return pixHShear(nullptr, Page(), PageHeight, ShearDegrees * RadiansInDegree, L_BRING_IN_WHITE);
    });
    AddTurn(ShearColumnsPage, 4,
            [] { return pixVShear(nullptr, Page(), 0, ShearDegrees * RadiansInDegree, L_BRING_IN_WHITE); });
});

} // namespace

} // namespace bench
