// Parity cases of colour resolution: bitmaps and lists with given, fixed and optimised palettes.
#include "parity/subject.h"

#include "zkr13n/color_resolution.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

void AddPicture(Digest& digest, BitmapHandle& bitmap) {
    RGBQUAD entries[256] = {};
    digest.AddRecord(bitmap);
    digest.Add(Z_GetBitmapPaletteEntries(&bitmap, 0, 256, entries));
    digest.Add(entries, sizeof entries);
    AddPixels(digest, bitmap);
}

// A bitmap into a target or in place, or a list.
void ColourResolutionCase(Seeded& seeded, Digest& digest) {
    BitmapList list;
    Z_CreateBitmapList(&list);
    const int kind = seeded.Below(3), items = kind == 0 ? seeded.Below(4) : 1;
    for (int i = 0; i < items; ++i) {
        Subject item(seeded);
        Z_InsertBitmapListItem(list, 9, &item);
        static_cast<BitmapHandle&>(item) = {};
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
