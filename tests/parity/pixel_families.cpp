// Parity cases of single pixels, rectangles and fills.
#include "parity/subject.h"

#include "zkr13n/copy.h"
#include "zkr13n/fill.h"
#include "zkr13n/pixels.h"

namespace zkr::test {
namespace {

void PixelsCase(Seeded& seeded, Digest& digest) {
    Subject bitmap(seeded);
    for (int i = 0; i < 40; ++i) {
        const int row = seeded.Between(-1, bitmap.Height), column = seeded.Between(-1, bitmap.Width);
        const auto colour = static_cast<uint32_t>(seeded.Next());
        constexpr uint32_t Forms[] = {0, 0, 1, 2, 4, 5, 255};
        const uint32_t form = Pick(seeded, Forms) << 24;
        digest.Add(Z_GetPixelColor(&bitmap, row, column));
        digest.Add(Z_PutPixelColor(&bitmap, row, column, form | (colour & 0xFFFFFF)));
        if (row < 0 || row >= bitmap.Height || column < 0 || column >= bitmap.Width) continue;
        uint8_t data[8] = {};
        const auto size = static_cast<uint32_t>(seeded.Between(1, 8));
        digest.Add(Z_GetPixelData(&bitmap, data, row, column, size));
        digest.Add(data, sizeof data);
        if (seeded.Below(2) != 0) digest.Add(Z_PutPixelData(&bitmap, &colour, row, column, 4));
    }
    AddPixels(digest, bitmap);
}

void RectanglesCase(Seeded& seeded, Digest& digest) {
    Subject bitmap(seeded);
    for (int i = 0; i < 6; ++i) {
        const int left = seeded.Between(-20, bitmap.Width + 2), top = seeded.Between(-8, bitmap.Height + 2);
        const int width = seeded.Between(0, bitmap.Width + 30), height = seeded.Between(0, bitmap.Height + 9);
        BitmapHandle copy{};
        const int operation = seeded.Below(8);
        if (operation == 0) digest.Add(Z_TrimBitmap(&bitmap, left, top, width, height));
        if (operation == 1) digest.Add(Z_CopyBitmapRect(nullptr, &bitmap, left, top, width, height));
        if (operation > 1 && operation < 5)
            digest.Add(Z_CopyBitmapRect(&copy, &bitmap, left, top, width, height));
        if (operation > 4 && operation < 7)
            digest.Add(Z_CopyBitmapRect2(&copy, &bitmap, left, top, width, height,
                                         operation == 5 ? +MemoryDisk : +MemoryTiled));
        if (operation == 7) digest.Add(Z_CopyBitmap2(&copy, &bitmap, MemoryConventional));
        digest.Add(copy.Flags);
        AddPixels(digest, copy);
        AddPixels(digest, bitmap);
        Z_FreeBitmap(&copy);
    }
}

// Which index a colour is nearest to is the platform's business, so that indices are given as such.
void FillsCase(Seeded& seeded, Digest& digest) {
    Subject bitmap(seeded);
    const auto colour = static_cast<uint32_t>(seeded.Next());
    digest.Add(Z_FillBitmap(&bitmap, bitmap.BitsPerPixel <= 8 ? 0x01000000 | (colour & 0xFFFF) : colour));
    AddPixels(digest, bitmap);
    digest.Add(Z_ClearBitmap(&bitmap));
    AddPixels(digest, bitmap);
}

constexpr Family Families[] = {
    {"pixels", 400, PixelsCase}, {"rectangles", 300, RectanglesCase}, {"fills", 200, FillsCase}};

} // namespace

std::span<const Family> PixelFamilies() {
    return Families;
}

} // namespace zkr::test
