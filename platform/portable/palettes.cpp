// Palette objects.
#include "platform/faults.h"
#include "platform/portable/graphics.h"
#include "platform/portable/handle_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <span>

namespace zkr::platform {

namespace {

constexpr WORD PaletteVersion = 0x300;

struct PaletteObject final : Object {
    static constexpr ObjectKind kind = ObjectKind::Palette;

    PALETTEENTRY* entries = nullptr;
    UINT count = 0;

    // The part of [start, start + length) that exists.
    std::span<PALETTEENTRY> Range(UINT start, UINT length) {
        if (start >= count) return {};
        return {entries + start, std::min(length, count - start)};
    }
    void Release() override {
        std::free(entries);
        delete this;
    }
};

int Square(int difference) {
    return difference * difference;
}

} // namespace

HPALETTE CreatePalette(const LOGPALETTE* description) {
    if (description == nullptr || description->palVersion != PaletteVersion ||
        description->palNumEntries == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const size_t bytes = description->palNumEntries * sizeof(PALETTEENTRY);
    auto* palette = fault::Due(fault::Palette) ? nullptr : new (std::nothrow) PaletteObject;
    if (palette != nullptr) {
        palette->entries = static_cast<PALETTEENTRY*>(std::malloc(bytes));
        palette->count = description->palNumEntries;
        if (palette->entries != nullptr) {
            // Not through the array of one that the record declares: its entries run on behind it.
            const auto* source =
                reinterpret_cast<const uint8_t*>(description) + offsetof(LOGPALETTE, palPalEntry);
            std::memcpy(palette->entries, source, bytes);
            if (HANDLE handle = InsertHandle(PaletteObject::kind, *palette))
                return static_cast<HPALETTE>(handle);
        }
        palette->Release();
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

int GetObjectA(HGDIOBJ object, int size, void* out) {
    const Pin<PaletteObject> palette(object);
    if (!palette) return 0;
    if (out == nullptr) return sizeof(WORD);
    if (size < static_cast<int>(sizeof(WORD))) return 0;
    const auto count = static_cast<WORD>(palette->count);
    std::memcpy(out, &count, sizeof count);
    return sizeof count;
}

UINT GetPaletteEntries(HPALETTE handle, UINT start, UINT count, PALETTEENTRY* out) {
    const Pin<PaletteObject> palette(handle);
    if (!palette) return 0;
    if (out == nullptr) return palette->count;
    const auto range = palette->Range(start, count);
    std::copy(range.begin(), range.end(), out);
    return static_cast<UINT>(range.size());
}

UINT SetPaletteEntries(HPALETTE handle, UINT start, UINT count, const PALETTEENTRY* entries) {
    const Pin<PaletteObject> palette(handle);
    if (!palette || entries == nullptr) return 0;
    const auto range = palette->Range(start, count);
    std::copy_n(entries, range.size(), range.begin());
    return static_cast<UINT>(range.size());
}

UINT GetNearestPaletteIndex(HPALETTE handle, COLORREF colour) {
    const Pin<PaletteObject> palette(handle);
    if (!palette) return CLR_INVALID;
    const int red = colour & 255, green = colour >> 8 & 255, blue = colour >> 16 & 255;
    UINT best = 0;
    int bestDistance = std::numeric_limits<int>::max();
    for (UINT i = 0; i < palette->count && bestDistance > 0; ++i) {
        const PALETTEENTRY& entry = palette->entries[i];
        const int distance =
            Square(entry.peRed - red) + Square(entry.peGreen - green) + Square(entry.peBlue - blue);
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

} // namespace zkr::platform
