// Parity cases of colour resolution: bitmaps and lists with given, fixed and optimised palettes.
#include "parity/digest.h"

#include "support/pixel_bits.h"
#include "zkr13n/allocation.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/palettes.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zkr::test {
namespace {

using Palette = std::array<RGBQUAD, 256>;

Palette RandomPalette(Seeded& seeded) {
    Palette palette;
    FillRandom(seeded, palette.data(), sizeof palette);
    return palette;
}

void AddForm(Digest& digest, const BitmapHandle& bitmap) {
    Palette entries{};
    digest.AddRecord(bitmap);
    digest.Add(Z_GetBitmapPaletteEntries(&bitmap, 0, 256, entries.data()));
    digest.Add(entries.data(), sizeof entries);
}

// Random pixels out of few or many values, with windows and level tables where there are any.
void MakePicture(Seeded& seeded, BitmapHandle& bitmap) {
    const Palette palette = RandomPalette(seeded);
    const int bits = Pick(seeded, Depths), width = seeded.Between(1, 90), height = seeded.Between(1, 12);
    const int order = bits == 12 ? 2 : seeded.Below(bits == 16 ? 3 : 2);
    Z_CreateBitmap(&bitmap, MemoryConventional, width, height, bits, order, palette.data(), 2, nullptr, 0);
    const int distinct = seeded.Below(2) ? seeded.Between(1, 300) : 1 << 20;
    std::vector<uint64_t> values(static_cast<size_t>(std::min(distinct, 2000)));
    FillRandom(seeded, values.data(), values.size() * sizeof(uint64_t));
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            WritePixel(row.data(), bits, x,
                       values[static_cast<size_t>(seeded.Below(static_cast<int>(values.size())))]);
        Z_PutBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
    }
    if (order != Z_ORDER_GRAY || seeded.Below(2)) return;
    bitmap.LowBit = seeded.Below(bits);
    bitmap.HighBit = seeded.Between(bitmap.LowBit, bits - 1);
    if (seeded.Below(2)) return;
    bitmap.LevelLUTLength = static_cast<uint32_t>(seeded.Between(1, 70000));
    bitmap.LevelLUT = static_cast<RGBQUAD*>(Z_OsAlloc(bitmap.LevelLUTLength * sizeof(RGBQUAD)));
    bitmap.Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
    FillRandom(seeded, bitmap.LevelLUT, bitmap.LevelLUTLength * sizeof(RGBQUAD));
}

void AddPicture(Digest& digest, BitmapHandle& bitmap) {
    AddForm(digest, bitmap);
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int y = 0; y < bitmap.Height; ++y) {
        digest.Add(Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine));
        digest.Add(row.data(), row.size());
    }
}

uint32_t RandomResolution(Seeded& seeded) {
    constexpr uint32_t choices[] = {0, 2, 1, 0x40, 0x10, 0x30, 0x200, 0x400, 0x80, 4, 0x100, 0x120};
    return Pick(seeded, choices) | static_cast<uint32_t>(seeded.Below(10)) << 16;
}

void ColourResolutionCase(Seeded& seeded, Digest& digest) {
    BitmapHandle source{}, target{};
    MakePicture(seeded, source);
    Palette palette = RandomPalette(seeded);
    const uint32_t flags = RandomResolution(seeded);
    const auto colors = static_cast<uint32_t>(seeded.Below(300));
    const int bits = Pick(seeded, Depths), kind = seeded.Below(4);
    HPALETTE handle =
        kind == 1 ? Z_CreatePalette(palette.data(), static_cast<uint32_t>(seeded.Between(1, 256))) : nullptr;
    const bool inPlace = seeded.Below(2) != 0;
    digest.Add(Z_ColorResBitmap(&source, inPlace ? &source : &target, bits, flags,
                                kind > 1 ? palette.data() : nullptr, handle, colors, nullptr, 0));
    BitmapHandle holder{};
    holder.Palette = handle;
    Z_FreeBitmap(&holder);
    AddPicture(digest, source);
    AddForm(digest, target);
    if (target.Flags & Z_FLAG_ALLOCATED) AddPicture(digest, target);
    digest.Add(palette.data(), sizeof palette);
    Z_FreeBitmap(&source);
    Z_FreeBitmap(&target);
}

void ColourResolutionOfListCase(Seeded& seeded, Digest& digest) {
    BitmapList list;
    Z_CreateBitmapList(&list);
    const int items = seeded.Below(4);
    for (int i = 0; i < items; ++i) {
        BitmapHandle item{};
        MakePicture(seeded, item);
        Z_InsertBitmapListItem(list, 9, &item);
    }
    Palette palette = RandomPalette(seeded);
    const uint32_t flags = RandomResolution(seeded);
    const auto colors = static_cast<uint32_t>(seeded.Below(300));
    const int bits = seeded.Between(1, 8);
    RGBQUAD* given = seeded.Below(2) ? palette.data() : nullptr;
    digest.Add(Z_ColorResBitmapList(list, bits, flags, given, nullptr, colors));
    digest.Add(palette.data(), sizeof palette);
    for (uint32_t i = 0; i < static_cast<uint32_t>(items); ++i) {
        BitmapHandle item{};
        Z_GetBitmapListItem(list, i, &item);
        AddPicture(digest, item);
    }
    Z_DestroyBitmapList(list);
}

constexpr Family Families[] = {
    {"colour-resolution", 1500, ColourResolutionCase},
    {"colour-resolution-of-lists", 300, ColourResolutionOfListCase},
};

} // namespace

std::span<const Family> ResolutionFamilies() {
    return Families;
}

} // namespace zkr::test
