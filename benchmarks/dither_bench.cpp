// Whole pictures dithered: rows out of a conventional bitmap, indices into another.
#include "pictures.h"
#include "work.h"

#include <string>
#include <vector>

namespace bench {

namespace {

void DitherAll(int32_t method, const RGBQUAD* palette, uint32_t colors, int32_t targetBits) {
    static std::vector<uint8_t> target(size_t{PhotographWidth});
    BitmapHandle source = *PhotographBitmap(24, Z_ORDER_BGR);
    source.DitheringMethod = method;
    Z_StartDitheringExt(&source, palette, colors, targetBits, nullptr);
    std::vector<uint8_t> row(source.BytesPerLine);
    for (int32_t y = 0; y < source.Height; ++y) {
        Z_GetBitmapRow(&source, row.data(), y, source.BytesPerLine);
        Z_DitherLine(&source, row.data(), target.data());
    }
    Z_StopDithering(&source);
    Touch(target.data());
}

void Add(int number, const std::string& name, int32_t method, const RGBQUAD* palette, uint32_t colors,
         int32_t targetBits) {
    AddWork(number, {name, PhotographPixels, PhotographPixels * static_cast<size_t>(24 + targetBits) / 8,
                     [=] { DitherAll(method, palette, colors, targetBits); }});
}

const Adds adds([] {
    const RGBQUAD* given = Palette256().data();
    Add(BitonalFloydSteinberg, "24 to 1, Floyd-Steinberg", DitherFloydSteinberg, nullptr, 2, 1);
    Add(PaletteFloydSteinberg, "24 to 256, Floyd-Steinberg", DitherFloydSteinberg, given, 256, 8);
    Add(PaletteStucki, "24 to 256, Stucki", DitherStucki, given, 256, 8);
    Add(PaletteBurkes, "24 to 256, Burkes", DitherBurkes, given, 256, 8);
    Add(PaletteSierra, "24 to 256, Sierra", DitherSierra, given, 256, 8);
    Add(PaletteStevensonArce, "24 to 256, Stevenson-Arce", DitherStevensonArce, given, 256, 8);
    Add(PaletteJarvis, "24 to 256, Jarvis", DitherJarvis, given, 256, 8);
    Add(BitonalOrdered, "24 to 1, ordered", DitherOrdered, nullptr, 2, 1);
    Add(FixedOrdered, "24 to 256 fixed, ordered", DitherOrdered, nullptr, 256, 8);
});

} // namespace

} // namespace bench
