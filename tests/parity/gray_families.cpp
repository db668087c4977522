// Parity cases of gray, level tables, colour spaces and alpha.
#include "parity/subject.h"

#include "zkr13n/alpha.h"
#include "zkr13n/color_spaces.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"

#include <vector>

namespace zkr::test {
namespace {

void GrayCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    std::vector<RGBQUAD> palette(300);
    auto count = static_cast<uint32_t>(seeded.Below(300));
    digest.Add(Z_GetBitmapColorCountExt(&picture, &count, seeded.Below(2) ? palette.data() : nullptr));
    digest.Add(count);
    digest.Add(palette.data(), palette.size() * sizeof(RGBQUAD));
    digest.Add(Z_IsGrayScaleBitmap(&picture));
    if (seeded.Below(3) == 0) {
        picture.Flags |= Z_FLAG_SIGNED;
        digest.Add(Z_ClearNegativePixels(&picture));
        AddPixels(digest, picture);
    }
    constexpr int Bits[] = {8, 12, 16, 10, 24};
    digest.Add(Z_GrayScaleBitmap(&picture, Pick(seeded, Bits)));
    AddPixels(digest, picture);
}

void LevelsCase(Seeded& seeded, Digest& digest) {
    std::vector<RGBQUAD> table(256);
    Subject picture(seeded);
    const int low = seeded.Below(18), high = seeded.Below(18), use = seeded.Below(3);
    digest.Add(Z_WindowLevel(&picture, low, high, table.data(), 256, use));
    digest.AddRecord(picture);
    const int a = seeded.Between(-20, 600), b = seeded.Between(-20, 600), bit = seeded.Below(4);
    digest.Add(Z_WindowLevelFillLUT(
        table.data(), static_cast<uint32_t>(seeded.Below(257)),
        static_cast<uint32_t>(seeded.Next()) & 0xFFFFFF, static_cast<uint32_t>(seeded.Next()) & 0xFFFFFF, a,
        b, bit, seeded.Below(8), seeded.Between(-20, 50), seeded.Between(40, 500), seeded.Below(2)));
    digest.Add(table.data(), table.size() * sizeof(RGBQUAD));
}

void SpacesCase(Seeded& seeded, Digest& digest) {
    constexpr int Formats[2][7] = {{0, 1, 2, 3, 4, 5, 6}, {0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70}};
    const int depthClass = seeded.Below(2);
    std::vector<uint8_t> source(600 * 8), target(600 * 8);
    FillRandom(seeded, source.data(), source.size());
    for (const int from : Formats[depthClass]) {
        digest.Add(Z_ConvertColorSpace(source.data(), target.data(), seeded.Between(1, 600), from,
                                       Pick(seeded, Formats[depthClass])));
        digest.Add(target.data(), target.size());
    }
    const auto colour = static_cast<uint32_t>(seeded.Next());
    digest.Add(Z_RGBtoHSV(colour));
    digest.Add(Z_HSVtoRGB(colour));
}

void AlphaCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded), alpha(seeded);
    BitmapHandle plane{};
    digest.Add(Z_GetBitmapAlpha(&picture, &plane));
    AddPixels(digest, plane);
    digest.Add(Z_SetBitmapAlpha(&picture, seeded.Below(4) == 0 ? &plane : &alpha));
    AddPixels(digest, picture);
    Z_FreeBitmap(&plane);
}

constexpr Family Families[] = {{"gray", 1500, GrayCase},
                               {"levels", 500, LevelsCase},
                               {"spaces", 300, SpacesCase},
                               {"alpha", 600, AlphaCase}};

} // namespace

std::span<const Family> GrayFamilies() {
    return Families;
}

} // namespace zkr::test
