// Whole pictures dithered: rows out of a conventional bitmap, indices into a new one.
#include "pictures.h"
#include "work.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

namespace {

// Row by row, which is as callers do it who have no bitmap for the indices.
void DitherLines() {
    static std::vector<uint8_t> target(size_t{PhotographWidth});
    BitmapHandle source = *PhotographBitmap(24, Z_ORDER_BGR);
    source.DitheringMethod = DitherFloydSteinberg;
    Z_StartDithering(&source, Palette256().data(), 256);
    std::vector<uint8_t> row(source.BytesPerLine);
    for (int32_t y = 0; y < source.Height; ++y) {
        Z_GetBitmapRow(&source, row.data(), y, source.BytesPerLine);
        Z_DitherLine(&source, row.data(), target.data());
    }
    Z_StopDithering(&source);
    Touch(target.data());
}

enum class Target { Bitonal, Given, Fixed };

void DitherBitmap(int32_t method, Target kind) {
    static std::vector<RGBQUAD> given = Palette256();
    const bool isGiven = kind == Target::Given;
    const uint32_t choice = isGiven ? COLORRES_USER_PALETTE : COLORRES_FIXED_PALETTE;
    BitmapHandle target;
    Z_ColorResBitmap(PhotographBitmap(24, Z_ORDER_BGR), &target, kind == Target::Bitonal ? 1 : 8,
                     choice | static_cast<uint32_t>(method) << 16, isGiven ? given.data() : nullptr, nullptr,
                     0, nullptr, 0);
    Touch(target.Addr);
    Z_FreeBitmap(&target);
}

void Add(int number, const std::string& name, size_t targetBits, std::function<void()> run) {
    AddWork(number, {name, PhotographPixels, PhotographPixels * (24 + targetBits) / 8, std::move(run)});
}
void Add(int number, const std::string& name, int32_t method, Target kind) {
    Add(number, name, kind == Target::Bitonal ? 1 : 8, [=] { DitherBitmap(method, kind); });
}

const Adds adds([] {
    Add(BitonalFloydSteinberg, "24 to 1, Floyd-Steinberg", DitherFloydSteinberg, Target::Bitonal);
    Add(PaletteFloydSteinberg, "24 to 256, Floyd-Steinberg", DitherFloydSteinberg, Target::Given);
    Add(LinesFloydSteinberg, "the same by Z_DitherLine", 8, DitherLines);
    Add(PaletteStucki, "24 to 256, Stucki", DitherStucki, Target::Given);
    Add(PaletteBurkes, "24 to 256, Burkes", DitherBurkes, Target::Given);
    Add(PaletteSierra, "24 to 256, Sierra", DitherSierra, Target::Given);
    Add(PaletteStevensonArce, "24 to 256, Stevenson-Arce", DitherStevensonArce, Target::Given);
    Add(PaletteJarvis, "24 to 256, Jarvis", DitherJarvis, Target::Given);
    Add(BitonalOrdered, "24 to 1, ordered", DitherOrdered, Target::Bitonal);
    Add(FixedOrdered, "24 to 256 fixed, ordered", DitherOrdered, Target::Fixed);
});

} // namespace

} // namespace bench
