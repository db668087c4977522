// The palette of a bitmap in its two forms: a palette object of the platform, or a block of RGBQUADs.
#include "colour/gray/gray_of.h"
#include "core/attachments.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "platform/graphics.h"
#include "zkr13n/allocation.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

using namespace zkr;

namespace {

bool IsBlock(const BitmapHandle& bitmap) {
    return HasFlag(bitmap, flag::PaletteIsBlock);
}

HPALETTE Object(const BitmapHandle& bitmap) {
    return static_cast<HPALETTE>(bitmap.Palette);
}

RGBQUAD* CreateBlock(const RGBQUAD* palette, uint32_t entries) {
    if (palette == nullptr || entries == 0 || entries > MostEntries) return nullptr;
    void* block = Z_OsAlloc(entries * sizeof(RGBQUAD));
    if (block != nullptr) std::memcpy(block, palette, entries * sizeof(RGBQUAD));
    return static_cast<RGBQUAD*>(block);
}

void* CreateInForm(bool asBlock, const RGBQUAD* palette, uint32_t entries) {
    if (asBlock) return CreateBlock(palette, entries);
    return Z_CreatePalette(palette, entries);
}

// A palette object for a bitmap in either form, kept for a scope.
class PaletteObject {
  public:
    explicit PaletteObject(const BitmapHandle& bitmap)
        : made_(bitmap.Palette != nullptr && IsBlock(bitmap) ? Z_DupBitmapPalette(&bitmap) : nullptr),
          object_(IsBlock(bitmap) ? made_ : Object(bitmap)) {}
    ~PaletteObject() {
        if (made_ != nullptr) platform::DeleteObject(made_);
    }
    PaletteObject(const PaletteObject&) = delete;
    PaletteObject& operator=(const PaletteObject&) = delete;
    HPALETTE Get() const { return object_; }

  private:
    HPALETTE made_;
    HPALETTE object_;
};

} // namespace

uint32_t Z_CALL Z_GetNearestPaletteIndex(const BitmapHandle* bitmap, uint32_t colour) {
    if (bitmap == nullptr) return 0;
    const PaletteObject palette(*bitmap);
    if (palette.Get() == nullptr) return 0;
    const uint32_t index = platform::GetNearestPaletteIndex(palette.Get(), colour);
    return index == CLR_INVALID ? 0 : index;
}

uint32_t Z_CALL Z_GetBitmapPaletteEntries(const BitmapHandle* bitmap, uint32_t start, uint32_t count,
                                          RGBQUAD* destination) {
    if (bitmap == nullptr || bitmap->Palette == nullptr || destination == nullptr) return 0;
    if (!IsBlock(*bitmap)) return Z_GetPaletteEntries(Object(*bitmap), start, count, destination);

    if (start >= bitmap->ColorsUsed) return 0;
    // The range limits the count but does not move the source.
    const uint32_t entries = std::min(count, bitmap->ColorsUsed - start);
    std::memcpy(destination, bitmap->Palette, entries * sizeof(RGBQUAD));
    return entries;
}

ReturnCode Z_CALL Z_CreateBitmapPalette(BitmapHandle* bitmap, const RGBQUAD* palette, uint32_t entries) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    void* created = CreateInForm(IsBlock(*bitmap), palette, entries);
    if (created == nullptr) return code::OutOfMemory;
    bitmap->Palette = created;
    bitmap->ColorsUsed = entries;
    return code::Success;
}

ReturnCode Z_CALL Z_GetBitmapColors(const BitmapHandle* bitmap, int32_t start, int32_t count,
                                    RGBQUAD* destination) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (start < 0 || count <= 0 || bitmap->BitsPerPixel > 8) return code::InvalidArgument;
    const uint32_t got = Z_GetBitmapPaletteEntries(bitmap, static_cast<uint32_t>(start),
                                                   static_cast<uint32_t>(count), destination);
    return got == static_cast<uint32_t>(count) ? code::Success : code::InvalidArgument;
}

ReturnCode Z_CALL Z_PutBitmapColors(BitmapHandle* bitmap, int32_t start, int32_t count,
                                    const RGBQUAD* source) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const bool inRange = start >= 0 && int64_t{start} + count <= int64_t{bitmap->ColorsUsed} &&
                         bitmap->ColorsUsed <= MostEntries;
    if (!inRange || bitmap->BitsPerPixel > 8) return code::InvalidArgument;
    if (count > 0 && source == nullptr) return code::InvalidArgument;

    RGBQUAD entries[MostEntries] = {};
    Z_GetBitmapPaletteEntries(bitmap, 0, bitmap->ColorsUsed, entries);
    for (int32_t i = 0; i < count; ++i)
        entries[start + i] = source[i];
    ReleasePalette(*bitmap);
    Z_CreateBitmapPalette(bitmap, entries, bitmap->ColorsUsed);
    return code::Success;
}

ReturnCode Z_CALL Z_CreateBitmapGrayPalette(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    const int32_t bits = bitmap->BitsPerPixel;
    if (bits < 1 || bits > 8) return code::InvalidBitsPerPixel;
    if (!IsBlock(*bitmap)) {
        const HPALETTE palette = Z_CreateGrayPalette(bits);
        if (palette == nullptr) return code::OutOfMemory;
        bitmap->Palette = palette; // ColorsUsed stays, in this form alone
        return code::Success;
    }
    RGBQUAD ramp[MostEntries];
    const uint32_t entries = 1u << bits;
    for (uint32_t i = 0; i < entries; ++i)
        ramp[i] = GrayRampEntry(i, entries);
    return Z_CreateBitmapPalette(bitmap, ramp, entries);
}

ReturnCode Z_CALL Z_CreateBitmapFixedPalette(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    for (int32_t bits = 1; bits <= 8; ++bits) {
        if (bitmap->ColorsUsed == 1u << bits) {
            return Z_CreateBitmapPalette(bitmap, Z_IntGetFixedPalette(bits), bitmap->ColorsUsed);
        }
    }
    return code::General;
}

ReturnCode Z_CALL Z_CopyBitmapPalette(BitmapHandle* destination, const BitmapHandle* source) {
    if (destination == nullptr || source == nullptr) return code::InvalidBitmap;
    void* copy = nullptr;
    if (source->Palette != nullptr) {
        copy =
            IsBlock(*source)
                ? static_cast<void*>(CreateBlock(static_cast<RGBQUAD*>(source->Palette), source->ColorsUsed))
                : Z_DupPalette(Object(*source));
        if (copy == nullptr) return code::General;
    }
    const uint32_t form = copy != nullptr ? source->Flags & flag::PaletteIsBlock : 0;
    destination->Palette = copy;
    destination->ColorsUsed = copy != nullptr ? source->ColorsUsed : 0;
    destination->Flags = (destination->Flags & ~flag::PaletteIsBlock) | form;
    return code::Success;
}

HPALETTE Z_CALL Z_DupBitmapPalette(const BitmapHandle* bitmap) {
    if (bitmap == nullptr || bitmap->Palette == nullptr) return nullptr;
    if (!IsBlock(*bitmap)) return Z_DupPalette(Object(*bitmap));
    return Z_CreatePalette(static_cast<const RGBQUAD*>(bitmap->Palette), bitmap->ColorsUsed);
}

int32_t Z_CALL Z_CompareBitmapToPalette(const BitmapHandle* bitmap, const RGBQUAD* palette,
                                        uint32_t entries) {
    if (bitmap == nullptr || (palette == nullptr && entries > 0)) return 0;
    RGBQUAD own[MostEntries];
    const uint32_t count = Z_GetBitmapPaletteEntries(bitmap, 0, std::min(entries, MostEntries), own);
    if (count == 0) return entries == 0 ? 1 : 0;
    const bool equal = std::equal(own, own + count, palette, [](const RGBQUAD& a, const RGBQUAD& b) {
        return a.rgbRed == b.rgbRed && a.rgbGreen == b.rgbGreen && a.rgbBlue == b.rgbBlue;
    });
    return equal ? 1 : 0;
}

ReturnCode Z_CALL Z_SetBitmapPalette(BitmapHandle* bitmap, HPALETTE palette) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const uint32_t entries = Z_GetPaletteSize(palette);
    if (entries < 2 || entries > MostEntries) return code::InvalidArgument;
    const HPALETTE copy = Z_DupPalette(palette); // before the old one goes: it may be the same
    ReleasePalette(*bitmap);
    bitmap->Palette = copy;
    bitmap->ColorsUsed = entries;
    bitmap->Flags &= ~flag::PaletteIsBlock;
    return code::Success;
}

ReturnCode Z_CALL Z_SetPaletteType(BitmapHandle* bitmap, int32_t type) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const bool toBlock = type != 0;
    if (bitmap->Palette == nullptr || toBlock == IsBlock(*bitmap)) return code::Success;

    RGBQUAD entries[MostEntries];
    const uint32_t count =
        Z_GetBitmapPaletteEntries(bitmap, 0, std::min(bitmap->ColorsUsed, MostEntries), entries);
    void* palette = CreateInForm(toBlock, entries, count);
    if (palette == nullptr) return code::OutOfMemory;
    ReleasePalette(*bitmap);
    bitmap->Palette = palette;
    bitmap->ColorsUsed = count;
    bitmap->Flags ^= flag::PaletteIsBlock;
    return code::Success;
}
