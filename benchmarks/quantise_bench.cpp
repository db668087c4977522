// Optimised palettes: a picture of 24 bits to 256 colours of its own.
#include "pictures.h"
#include "work.h"

namespace bench {

namespace {

constexpr size_t ReadAndWritten = PhotographPixels * 4;

// Whole, as a program would do it: palette, target and pixels.
void Reduce(uint32_t flags) {
    BitmapHandle target;
    Z_ColorResBitmap(PhotographBitmap(24, Z_ORDER_BGR), &target, 8, flags, nullptr, nullptr, 256, nullptr, 0);
    Touch(target.Addr);
    Z_FreeBitmap(&target);
}

void FindPalette() {
    static BitmapList list = [] {
        BitmapList made = nullptr;
        Z_CreateBitmapList(&made);
        Z_InsertBitmapListItem(made, 0, PhotographBitmap(24, Z_ORDER_BGR));
        return made;
    }();
    RGBQUAD palette[256];
    uint32_t colors = 256;
    int32_t quantised = 0;
    Z_CreateBitmapListOptPal(list, palette, &colors, nullptr, &quantised);
    Touch(palette);
}

double ReducedQuality(uint32_t flags) {
    BitmapHandle target;
    Z_ColorResBitmap(PhotographBitmap(24, Z_ORDER_BGR), &target, 8, flags, nullptr, nullptr, 256, nullptr, 0);
    RGBQUAD palette[256];
    Z_GetBitmapPaletteEntries(&target, 0, 256, palette);
    const double quality = DecibelsOf(Data(&target), target.BytesPerLine, palette);
    Z_FreeBitmap(&target);
    return quality;
}

const Adds adds([] {
    AddWork(Optimised, {"24 to 256 colours of its own", PhotographPixels, ReadAndWritten, [] { Reduce(0); },
                        [] { return ReducedQuality(0); }});
    AddWork(OptimisedDiffused, {"the same, Floyd-Steinberg", PhotographPixels, ReadAndWritten,
                                [] { Reduce(0x010000); }, [] { return ReducedQuality(0x010000); }});
    AddWork(OptimisedPalette, {"the palette alone", PhotographPixels, PhotographPixels * 3, FindPalette});
});

} // namespace

} // namespace bench
