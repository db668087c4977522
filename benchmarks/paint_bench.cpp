// Painting on memory surfaces: the photograph as it is, scaled and dithered, with and without the paint table, and the
// page in levels of gray.
#include "paint_work.h"

#include "pictures.h"
#include "work.h"

#include <string>
#include <utility>

namespace bench {

std::vector<uint8_t>& PaintedMemory() {
    static std::vector<uint8_t> memory(PhotographPixels * 4);
    return memory;
}

namespace {

struct Painting {
    int32_t Width, Height, Bits;
    uint32_t Mode;
    int32_t Contrast = 0;
};

void Paint(BitmapHandle* bitmap, const Painting& painting) {
    RGBQUAD colours[256];
    Z_GetFixedPalette(colours, painting.Bits <= 8 ? painting.Bits : 1);
    if (painting.Mode == DISPLAY_SCALE_TO_GRAY) {
        for (int i = 0; i < 256; ++i) {
            const auto level = static_cast<uint8_t>(i);
            colours[i] = {level, level, level, 0};
        }
    }
    const SurfaceDescription description = {sizeof description,
                                            painting.Width,
                                            painting.Height,
                                            painting.Bits,
                                            painting.Width * painting.Bits / 8,
                                            1,
                                            PaintedMemory().data(),
                                            colours,
                                            painting.Bits <= 8 ? 1 << painting.Bits : 0,
                                            0};
    HDC context = nullptr;
    Z_CreateSurface(&description, &context);
    const uint32_t before = Z_SetDisplayMode(0xFFFFFFFF, painting.Mode);
    Z_SetPaintContrast(bitmap, painting.Contrast);
    const RECT whole = {0, 0, painting.Width, painting.Height};
    Z_PaintDC(context, bitmap, nullptr, nullptr, &whole, nullptr, 0x00CC0020);
    if (painting.Contrast != 0) { // the table is in use until it is made anew
        Z_SetPaintContrast(bitmap, 0);
        bitmap->Flags &= ~uint32_t{Z_FLAG_PAINT_LUT_ACTIVE};
    }
    Z_SetDisplayMode(0xFFFFFFFF, before);
    Z_DeleteSurface(context);
    Touch(PaintedMemory().data());
}

constexpr uint32_t Dithered = DISPLAY_DITHERED, Ordered = DISPLAY_DITHERED | DISPLAY_ORDERED;
constexpr int32_t Contrast = 200;

void AddPhotograph(int number, const std::string& name, const Painting& painting) {
    const auto pixels = static_cast<size_t>(painting.Width) * static_cast<size_t>(painting.Height);
    AddWork(number, {name, pixels, pixels * static_cast<size_t>(24 + painting.Bits) / 8,
                     [painting] { Paint(PhotographBitmap(24, Z_ORDER_BGR), painting); }});
}

// The same through the paint table, for which painting without it is the peer.
void AddWithTable(int number, int withTable, const std::string& name, Painting painting) {
    AddPhotograph(number, name, painting);
    AddPeer(withTable,
            {"without the table", 0.8, [painting] { Paint(PhotographBitmap(24, Z_ORDER_BGR), painting); }});
    painting.Contrast = Contrast;
    AddPhotograph(withTable, name + ", contrast", painting);
}

const Adds adds([] {
    constexpr int32_t width = PhotographWidth, height = PhotographHeight;
    AddPhotograph(PaintTo32, "paint 24 bits on 32", {width, height, 32, Dithered});
    AddPhotograph(PaintTo24, "paint 24 bits on 24", {width, height, 24, Dithered});
    AddPhotograph(PaintScaledTo32, "paint 24 bits at 0.37 on 32",
                  {PaintedWidth, PaintedHeight, 32, Dithered});
    AddWithTable(PaintOrderedTo8, PaintTableOrderedTo8, "paint 24 bits ordered on 8",
                 {width, height, 8, Ordered});
    AddWithTable(PaintOrderedTo4, PaintTableOrderedTo4, "paint 24 bits ordered on 4",
                 {width, height, 4, Ordered});
    AddWithTable(PaintDiffusedTo8, PaintTableDiffusedTo8, "paint 24 bits diffused on 8",
                 {width, height, 8, Dithered});
    AddWork(PaintPageToGray,
            {"paint page in gray at 1/4 on 8", PagePixels, PagePixels / 8 + PagePixels / 16, [] {
                 BitmapHandle* page = PageBitmap();
                 if (page->Palette == nullptr) Z_CreateBitmapFixedPalette(page);
                 Paint(page, {PaintedPageWidth, PaintedPageHeight, 8, DISPLAY_SCALE_TO_GRAY});
             }});
});

} // namespace

} // namespace bench
