// Palette objects.
#include "platform/portable/palettes.h"
#include "platform/faults.h"
#include "platform/portable/device.h"

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

// What a context has selected that has selected none.
constexpr PALETTEENTRY DefaultEntries[20] = {
    {0, 0, 0, 0},       {128, 0, 0, 0},     {0, 128, 0, 0},     {128, 128, 0, 0},   {0, 0, 128, 0},
    {128, 0, 128, 0},   {0, 128, 128, 0},   {192, 192, 192, 0}, {192, 220, 192, 0}, {166, 202, 240, 0},
    {255, 251, 240, 0}, {160, 160, 164, 0}, {128, 128, 128, 0}, {255, 0, 0, 0},     {0, 255, 0, 0},
    {255, 255, 0, 0},   {0, 0, 255, 0},     {255, 0, 255, 0},   {0, 255, 255, 0},   {255, 255, 255, 0},
};

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
    return NearestEntry(WordOf(colour & 0xFFFFFF), palette->entries, static_cast<int>(palette->count));
}

HPALETTE SelectPalette(HDC handle, HPALETTE palette, BOOL) {
    const Pin<DeviceContext> context(handle);
    const bool stock = palette == StockHandle(PaletteObject::kind);
    if (!context || (!stock && !Pin<PaletteObject>(palette))) return nullptr;
    const std::scoped_lock lock(context->mutex);
    return std::exchange(context->state.palette, palette);
}

// On a palette display the palette's colours take the entries of the system palette that are free, in order,
// but for those that are shown already.
UINT RealizePalette(HDC handle) {
    const Pin<DeviceContext> context(handle);
    if (!context) return CLR_INVALID;
    const ContextLock lock(*context);
    Surface& surface = *context->state.surface;
    const Pin<PaletteObject> palette(context->state.palette);
    if (surface.staticColours == 0 || !palette) return 0;
    const auto size = static_cast<UINT>(surface.table.size());
    const UINT low = (surface.staticColours + 1) / 2, high = size - surface.staticColours / 2;
    UINT next = low, changed = 0;
    const auto shows = [&](UINT from, UINT to, ColourWord colour) {
        return std::any_of(surface.table.begin() + from, surface.table.begin() + to,
                           [&](const PALETTEENTRY& entry) { return WordOf(entry) == colour; });
    };
    for (UINT i = 0; i < palette->count && next < high; ++i) {
        const ColourWord colour = WordOf(palette->entries[i]);
        if (shows(0, next, colour) || shows(high, size, colour)) continue;
        PALETTEENTRY& place = surface.table[next++];
        if (WordOf(place) == colour) continue;
        place = palette->entries[i];
        place.peFlags = 0;
        ++changed;
    }
    return changed;
}

ColourWord LogicalColour(HPALETTE handle, UINT index) {
    const Pin<PaletteObject> palette(handle);
    if (palette) return WordOf(palette->entries[index % palette->count]);
    return WordOf(DefaultEntries[index % std::size(DefaultEntries)]);
}

int DescribePalette(HPALETTE handle, int size, void* out) {
    const Pin<PaletteObject> palette(handle);
    if (!palette) return 0;
    if (out == nullptr) return sizeof(WORD);
    if (size < static_cast<int>(sizeof(WORD))) return 0;
    const auto count = static_cast<WORD>(palette->count);
    std::memcpy(out, &count, sizeof count);
    return sizeof count;
}

void DefaultColours(int bitsPerPixel, PALETTEENTRY* out) {
    const UINT count = 1u << bitsPerPixel;
    std::fill_n(out, count, PALETTEENTRY{});
    if (bitsPerPixel == 1) out[1] = {255, 255, 255, 0};
    if (bitsPerPixel < 4) return;
    // The first seven and the last seven of the default palette with both grays between, or its two halves at
    // either end.
    const UINT half = bitsPerPixel == 4 ? 8 : 10;
    for (UINT i = 0; i < half; ++i) {
        out[i] = DefaultEntries[i];
        out[count - 1 - i] = DefaultEntries[19 - i];
    }
    if (bitsPerPixel == 4) out[8] = DefaultEntries[12];
}

ColourWord ResolveColour(COLORREF colour, const ContextState& state) {
    constexpr COLORREF IndexMark = 0x01000000;
    if ((colour & 0xFF000000) == IndexMark) return LogicalColour(state.palette, colour & 0xFFFF);
    return WordOf(colour & 0xFFFFFF);
}

} // namespace zkr::platform
