// One map a thread, kept in the thread's settings together with copies of the palettes that it is for, so
// that a palette that has changed in place is noticed.
#include "colour/palettes/kept_palette_map.h"

#include "colour/palettes/palette_map.h"
#include "core/thread_settings.h"

#include <cstring>

namespace zkr {

namespace {

// A palette as it was; without entries it is the gray levels.
struct KeptPalette {
    int32_t Count = -1; // none is kept
    RGBQUAD Entries[256];

    void Keep(const RGBQUAD* palette, int32_t entries) {
        Count = palette == nullptr ? 0 : entries;
        if (palette != nullptr) std::memcpy(Entries, palette, Bytes());
    }
    bool Is(const RGBQUAD* palette, int32_t entries) const {
        if (palette == nullptr) return Count == 0;
        return Count == entries && std::memcmp(Entries, palette, Bytes()) == 0;
    }
    size_t Bytes() const { return static_cast<size_t>(Count) * sizeof(RGBQUAD); }
};

struct KeptPaletteMap {
    KeptPalette Source;
    KeptPalette Target;
    PaletteMap Map;
};

} // namespace

const PaletteMap& PaletteMapFor(const RGBQUAD* source, int32_t sourceEntries, const RGBQUAD* target,
                                int32_t targetEntries, PaletteMap& spare) {
    auto* kept = OfThread<KeptPaletteMap>();
    if (kept != nullptr && kept->Source.Is(source, sourceEntries) && kept->Target.Is(target, targetEntries))
        return kept->Map;
    PaletteMap& map = kept != nullptr ? kept->Map : spare;
    map.IsIdentity = BuildPaletteMap(source, sourceEntries, target, targetEntries, map.Index) == 1;
    if (kept != nullptr) {
        kept->Source.Keep(source, sourceEntries);
        kept->Target.Keep(target, targetEntries);
    }
    return map;
}

} // namespace zkr
