// Parity cases of the colour family: conversion, palette objects, palettes of bitmaps.
#include "parity/digest.h"

#include "zkr13n/convert.h"
#include "zkr13n/dither.h"
#include "zkr13n/palettes.h"

#include <array>
#include <vector>

namespace zkr::test {
namespace {

using Palette = std::array<RGBQUAD, 256>;

// Now and then of a few colours only, so that distances tie.
Palette RandomPalette(Seeded& seeded) {
    Palette palette;
    FillRandom(seeded, palette.data(), sizeof palette);
    if (seeded.Below(3) == 0)
        for (RGBQUAD& entry : palette) {
            entry.rgbRed = static_cast<uint8_t>(entry.rgbRed & 0xC0);
            entry.rgbGreen = static_cast<uint8_t>(entry.rgbGreen & 0xC0);
            entry.rgbBlue = static_cast<uint8_t>(entry.rgbBlue & 0xC0);
        }
    return palette;
}

// A table that any 16-bit word can index.
const RGBQUAD* LevelTable() {
    static const std::vector<RGBQUAD> table = [] {
        std::vector<RGBQUAD> entries(65536);
        Seeded seeded(65536);
        FillRandom(seeded, entries.data(), entries.size() * sizeof(RGBQUAD));
        return entries;
    }();
    return table.data();
}

int RandomDepth(Seeded& seeded) {
    return seeded.Below(15) == 0 ? 0 : Pick(seeded, Depths);
}

void ConvertCase(Seeded& seeded, Digest& digest) {
    const int sourceBits = RandomDepth(seeded), targetBits = RandomDepth(seeded);
    const int sourceOrder = sourceBits == 12 ? 2 : seeded.Below(sourceBits == 16 ? 3 : 2);
    const int targetOrder = targetBits == 12 ? 2 : seeded.Below(targetBits <= 16 ? 3 : 2);
    const Palette from = RandomPalette(seeded), to = RandomPalette(seeded);
    uint32_t flags = 0;
    int windowBits = 0;
    if (sourceOrder == 2 && seeded.Below(3) == 0) {
        flags = Z_CONVERT_SOURCE_WINDOW;
        windowBits = sourceBits == 0 ? 8 : sourceBits;
    } else if (targetOrder == 2 && seeded.Below(3) == 0) {
        flags = Z_CONVERT_TARGET_WINDOW;
        windowBits = targetBits == 0 ? 8 : targetBits;
    }
    const int low = windowBits ? seeded.Below(windowBits) : -1;
    const int high = windowBits ? seeded.Between(low, windowBits - 1) : -1;
    const int width = seeded.Between(1, 300);
    std::vector<uint8_t> row(300 * 8);
    FillRandom(seeded, row.data(), row.size());
    const RGBQUAD* sourcePalette = seeded.Below(2) == 0 ? nullptr
                                   : sourceBits > 8     ? LevelTable()
                                                        : from.data();
    const RGBQUAD* targetPalette = seeded.Below(2) == 0 ? nullptr : to.data();
    digest.Add(Z_ConvertBufferExt(row.data(), width, sourceBits, targetBits, sourceOrder, targetOrder,
                                  sourcePalette, targetPalette, flags, low, high));
    digest.Add(row.data(), row.size());
}

void AddPalette(Digest& digest, HPALETTE palette) {
    Palette entries{};
    digest.Add(palette != nullptr);
    digest.Add(Z_GetPaletteSize(palette));
    digest.Add(Z_GetPaletteEntries(palette, 0, 256, entries.data()));
    digest.Add(entries.data(), sizeof entries);
}

// A record that owns nothing but a palette object gives it back.
void Release(HPALETTE palette) {
    BitmapHandle holder{};
    holder.Palette = palette;
    Z_FreeBitmap(&holder);
}

// Palette objects: on one platform the system's own, on the other the library's.
void PaletteObjectCase(Seeded& seeded, Digest& digest) {
    Palette entries = RandomPalette(seeded);
    const auto count = static_cast<uint32_t>(seeded.Between(1, 256));
    HPALETTE palette = seeded.Below(4)   ? Z_CreatePalette(entries.data(), count)
                       : seeded.Below(2) ? Z_CreateGrayPalette(seeded.Below(9))
                                         : Z_CreateFixedPalette(seeded.Below(9));
    AddPalette(digest, palette);
    for (int i = 0; i < 8; ++i) {
        const auto start = static_cast<uint32_t>(seeded.Below(256));
        const auto wanted = static_cast<uint32_t>(seeded.Between(1, 256 - static_cast<int>(start)));
        if (seeded.Below(2)) {
            digest.Add(Z_SetPaletteEntries(palette, start, wanted, entries.data()));
            AddPalette(digest, palette);
        } else {
            digest.Add(Z_GetPaletteEntries(palette, start, wanted, entries.data()));
            digest.Add(entries.data(), sizeof entries);
        }
    }
    HPALETTE copy = Z_DupPalette(palette);
    Release(palette);
    AddPalette(digest, copy);
    Release(copy);
}

void AddBitmapPalette(Digest& digest, const BitmapHandle& bitmap) {
    Palette entries{};
    digest.AddRecord(bitmap);
    digest.Add(Z_GetBitmapPaletteEntries(&bitmap, 0, 256, entries.data()));
    digest.Add(entries.data(), sizeof entries);
}

void BitmapPaletteCase(Seeded& seeded, Digest& digest) {
    Palette entries = RandomPalette(seeded);
    BitmapHandle bitmap;
    const int bits = seeded.Between(1, 8);
    const RGBQUAD* palette = seeded.Below(3) ? entries.data() : nullptr;
    digest.Add(Z_CreateBitmap(&bitmap, 1, 8, 8, bits, 0, palette, 2, nullptr, 0));
    for (int i = 0; i < 12; ++i) {
        const int start = seeded.Below(static_cast<int>(bitmap.ColorsUsed) + 1), count = seeded.Below(40);
        Palette other = RandomPalette(seeded);
        const int operation = seeded.Below(7);
        if (operation == 0) digest.Add(Z_PutBitmapColors(&bitmap, start, count, other.data()));
        if (operation == 1) {
            digest.Add(Z_GetBitmapColors(&bitmap, start, count, other.data()));
            digest.Add(other.data(), sizeof other);
        }
        if (operation == 2) digest.Add(Z_SetPaletteType(&bitmap, seeded.Below(2)));
        if (operation == 3) {
            HPALETTE wanted = Z_CreatePalette(other.data(), static_cast<uint32_t>(seeded.Between(1, 256)));
            digest.Add(Z_SetBitmapPalette(&bitmap, wanted));
            Release(wanted);
        }
        if (operation == 4) digest.Add(Z_CompareBitmapToPalette(&bitmap, entries.data(), bitmap.ColorsUsed));
        if (operation == 5) {
            HPALETTE copy = Z_DupBitmapPalette(&bitmap);
            AddPalette(digest, copy);
            Release(copy);
        }
        if (operation == 6) {
            BitmapHandle copy{};
            digest.Add(Z_CopyBitmapPalette(&copy, &bitmap));
            AddBitmapPalette(digest, copy);
            Z_FreeBitmap(&copy);
        }
        AddBitmapPalette(digest, bitmap);
    }
    digest.Add(Z_FreeBitmap(&bitmap));
    digest.AddRecord(bitmap);
}

// A run of rows of noise on a ramp, through a palette of any kind.
void DitherCase(Seeded& seeded, Digest& digest) {
    const Palette from = RandomPalette(seeded), to = RandomPalette(seeded);
    const int bits = Pick(seeded, Depths), width = seeded.Between(1, 200), targetBits = seeded.Between(1, 8);
    const auto colors = static_cast<uint32_t>(seeded.Between(1, 256));
    BitmapHandle bitmap;
    digest.Add(Z_CreateBitmap(&bitmap, 1, width, 1, bits, seeded.Below(3), from.data(), 1, nullptr, 0));
    bitmap.DitheringMethod = seeded.Below(9);
    digest.Add(
        Z_StartDitheringExt(&bitmap, seeded.Below(2) ? to.data() : nullptr, colors, targetBits, nullptr));
    std::vector<uint8_t> source(200 * 8), target(200);
    for (int y = 0; y < 10; ++y) {
        for (size_t i = 0; i < source.size(); ++i)
            source[i] = static_cast<uint8_t>(i / 3 + static_cast<size_t>(seeded.Below(64)));
        digest.Add(Z_DitherLine(&bitmap, source.data(), target.data()));
        digest.Add(target.data(), target.size());
    }
    digest.Add(Z_StopDithering(&bitmap));
    Z_FreeBitmap(&bitmap);
}

constexpr Family Families[] = {{"convert", 6000, ConvertCase},
                               {"dither", 2000, DitherCase},
                               {"palette-object", 500, PaletteObjectCase},
                               {"bitmap-palette", 500, BitmapPaletteCase}};

} // namespace

std::span<const Family> ColourFamilies() {
    return Families;
}

} // namespace zkr::test
