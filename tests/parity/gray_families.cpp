// Parity cases of gray, level tables, colour spaces and alpha.
#include "parity/digest.h"

#include "zkr13n/allocation.h"
#include "zkr13n/alpha.h"
#include "zkr13n/color_spaces.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"
#include "zkr13n/palettes.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <vector>

namespace zkr::test {
namespace {

// A bitmap of any depth and order whose pixels are of few values, with a window and a level table.
struct Picture : BitmapHandle {
    Picture(Seeded& seeded, int bits) : BitmapHandle{} {
        std::vector<RGBQUAD> palette(256);
        FillRandom(seeded, palette.data(), palette.size() * sizeof(RGBQUAD));
        const int order = bits == 12 ? 2 : seeded.Below(bits == 16 ? 3 : 2);
        Z_CreateBitmap(this, MemoryConventional, seeded.Between(1, 90), seeded.Between(1, 9), bits, order,
                       palette.data(), Pick(seeded, Views), nullptr, 0);
        std::vector<uint8_t> row(BytesPerLine);
        const uint8_t mask = Pick(seeded, Masks);
        for (int y = 0; y < Height; ++y) {
            for (uint8_t& byte : row)
                byte = seeded.Byte() & mask;
            Z_PutBitmapRow(this, row.data(), y, BytesPerLine);
        }
        if (order != 2 || seeded.Below(2) == 0) return;
        std::vector<RGBQUAD> levels(static_cast<size_t>(seeded.Between(1, 5000)));
        FillRandom(seeded, levels.data(), levels.size() * sizeof(RGBQUAD));
        const int low = seeded.Below(bits);
        Z_WindowLevel(this, low, seeded.Between(low, bits - 1), levels.data(),
                      static_cast<uint32_t>(levels.size()), seeded.Below(2));
    }
    ~Picture() { Z_FreeBitmap(this); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    static constexpr int Views[] = {0, 1, 2, 3, 4, 5, 7, 8};
    static constexpr uint8_t Masks[] = {0xFF, 0x81, 0x11};
};

void AddPixels(Digest& digest, BitmapHandle& bitmap) {
    digest.AddRecord(bitmap);
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int y = 0; y < bitmap.Height; ++y) {
        Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
        digest.Add(row.data(),
                   static_cast<size_t>(bitmap.Width) * static_cast<size_t>(bitmap.BitsPerPixel) / 8);
    }
}

void GrayCase(Seeded& seeded, Digest& digest) {
    Picture picture(seeded, Pick(seeded, Depths));
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
    Picture picture(seeded, Pick(seeded, Depths)), alpha(seeded, Pick(seeded, Depths));
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
