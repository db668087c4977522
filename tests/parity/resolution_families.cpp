// Parity cases of colour resolution: bitmaps and lists with given, fixed and optimised palettes.
#include "parity/digest.h"

#include "support/pixel_bits.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/palettes.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <vector>

namespace zkr::test {
namespace {

// Random pixels out of few or many values.
BitmapHandle MakePicture(Seeded& seeded) {
    RGBQUAD palette[256];
    FillRandom(seeded, palette, sizeof palette);
    const int bits = Pick(seeded, Depths), width = seeded.Between(1, 90), height = seeded.Between(1, 12);
    const int order = bits == 12 ? 2 : seeded.Below(bits == 16 ? 3 : 2);
    BitmapHandle bitmap;
    Z_CreateBitmap(&bitmap, MemoryConventional, width, height, bits, order, palette, 2, nullptr, 0);
    std::vector<uint64_t> values(static_cast<size_t>(seeded.Between(1, seeded.Below(2) ? 300 : 2000)));
    FillRandom(seeded, values.data(), values.size() * sizeof(uint64_t));
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            WritePixel(row.data(), bits, x, values[static_cast<size_t>(seeded.Below(int(values.size())))]);
        Z_PutBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
    }
    bitmap.LowBit = seeded.Below(bits);
    bitmap.HighBit = seeded.Between(bitmap.LowBit, bits - 1);
    return bitmap;
}

void AddPicture(Digest& digest, BitmapHandle& bitmap) {
    RGBQUAD entries[256] = {};
    digest.AddRecord(bitmap);
    digest.Add(Z_GetBitmapPaletteEntries(&bitmap, 0, 256, entries));
    digest.Add(entries, sizeof entries);
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int y = 0; y < bitmap.Height && (bitmap.Flags & Z_FLAG_ALLOCATED); ++y) {
        digest.Add(Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine));
        digest.Add(row.data(), row.size());
    }
}

// A bitmap into a target or in place, or a list.
void ColourResolutionCase(Seeded& seeded, Digest& digest) {
    BitmapList list;
    Z_CreateBitmapList(&list);
    const int kind = seeded.Below(3), items = kind == 0 ? seeded.Below(4) : 1;
    for (int i = 0; i < items; ++i) {
        const BitmapHandle item = MakePicture(seeded);
        Z_InsertBitmapListItem(list, 9, &item);
    }
    RGBQUAD palette[256];
    FillRandom(seeded, palette, sizeof palette);
    constexpr uint32_t choices[] = {0, 2, 1, 0x40, 0x10, 0x30, 0x200, 0x400, 0x80, 4, 0x100, 0x120};
    const uint32_t flags = Pick(seeded, choices) | static_cast<uint32_t>(seeded.Below(10)) << 16;
    const auto colors = static_cast<uint32_t>(seeded.Below(300));
    const int bits = Pick(seeded, Depths), given = seeded.Below(4);
    BitmapHandle holder{}, target{}, item{};
    if (given == 1) holder.Palette = Z_CreatePalette(palette, static_cast<uint32_t>(seeded.Between(1, 256)));
    const auto handle = static_cast<HPALETTE>(holder.Palette);
    RGBQUAD* const entries = given > 1 ? palette : nullptr;
    if (kind == 0) digest.Add(Z_ColorResBitmapList(list, bits, flags, entries, handle, colors));
    for (int i = 0; i < items; ++i) {
        Z_GetBitmapListItem(list, static_cast<uint32_t>(i), &item);
        if (kind > 0)
            digest.Add(Z_ColorResBitmap(&item, kind == 1 ? &item : &target, bits, flags, entries, handle,
                                        colors, nullptr, 0));
        Z_SetBitmapListItem(list, static_cast<uint32_t>(i), &item);
        AddPicture(digest, item);
    }
    AddPicture(digest, target);
    digest.Add(palette, sizeof palette);
    Z_FreeBitmap(&target);
    Z_FreeBitmap(&holder);
    Z_DestroyBitmapList(list);
}

constexpr Family Families[] = {{"colour-resolution", 1500, ColourResolutionCase}};

} // namespace

std::span<const Family> ResolutionFamilies() {
    return Families;
}

} // namespace zkr::test
