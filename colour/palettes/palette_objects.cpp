// Palette objects of the platform, whose entries are red first, in terms of RGBQUADs, which are blue first.
// The fourth byte of both means the same and goes along.
#include "zkr13n/palettes.h"

#include "core/sizes.h"
#include "platform/graphics.h"

#include <algorithm>

using namespace zkr;
using namespace zkr::platform;

namespace {

// Some systems take the first entry as a word and drop the bits above.
constexpr uint32_t MostStart = 0xFFFF;

// As LOGPALETTE, with room for a whole palette.
struct WholeLogPalette {
    WORD palVersion;
    WORD palNumEntries;
    PALETTEENTRY palPalEntry[MostEntries];
};
constexpr WORD LogPaletteVersion = 0x300;

void Convert(const RGBQUAD* source, uint32_t count, PALETTEENTRY* destination) {
    std::transform(source, source + count, destination, [](const RGBQUAD& entry) {
        return PALETTEENTRY{entry.rgbRed, entry.rgbGreen, entry.rgbBlue, entry.rgbReserved};
    });
}

void Convert(const PALETTEENTRY* source, uint32_t count, RGBQUAD* destination) {
    std::transform(source, source + count, destination, [](const PALETTEENTRY& entry) {
        return RGBQUAD{entry.peBlue, entry.peGreen, entry.peRed, entry.peFlags};
    });
}

} // namespace

HPALETTE Z_CALL Z_CreatePalette(const RGBQUAD* palette, uint32_t entries) {
    if (palette == nullptr || entries == 0 || entries > MostEntries) return nullptr;
    WholeLogPalette logPalette;
    logPalette.palVersion = LogPaletteVersion;
    logPalette.palNumEntries = static_cast<WORD>(entries);
    Convert(palette, entries, logPalette.palPalEntry);
    return platform::CreatePalette(reinterpret_cast<const LOGPALETTE*>(&logPalette));
}

uint32_t Z_CALL Z_GetPaletteSize(HPALETTE palette) {
    WORD entries = 0;
    if (palette == nullptr || GetObjectA(palette, sizeof entries, &entries) == 0) return 0;
    return entries;
}

uint32_t Z_CALL Z_GetPaletteEntries(HPALETTE palette, uint32_t start, uint32_t count, RGBQUAD* destination) {
    if (palette == nullptr || destination == nullptr || start > MostStart) return 0;
    uint32_t done = 0;
    while (done < count) {
        PALETTEENTRY some[MostEntries];
        const uint32_t wanted = std::min(count - done, MostEntries);
        const uint32_t got = std::min(GetPaletteEntries(palette, start + done, wanted, some), wanted);
        Convert(some, got, destination + done);
        done += got;
        if (got < wanted) break;
    }
    return done;
}

uint32_t Z_CALL Z_SetPaletteEntries(HPALETTE palette, uint32_t start, uint32_t count, const RGBQUAD* source) {
    if (palette == nullptr || source == nullptr || start > MostStart) return 0;
    const uint32_t size = Z_GetPaletteSize(palette);
    count = std::min(count, size - std::min(size, start)); // what lies behind in the source is not read
    uint32_t done = 0;
    while (done < count) {
        PALETTEENTRY some[MostEntries];
        const uint32_t wanted = std::min(count - done, MostEntries);
        Convert(source + done, wanted, some);
        const uint32_t set = SetPaletteEntries(palette, start + done, wanted, some);
        done += set;
        if (set < wanted) break;
    }
    return done;
}

HPALETTE Z_CALL Z_DupPalette(HPALETTE palette) {
    RGBQUAD entries[MostEntries];
    const uint32_t size = Z_GetPaletteSize(palette);
    if (size > MostEntries) return nullptr;
    return Z_CreatePalette(entries, Z_GetPaletteEntries(palette, 0, size, entries));
}
