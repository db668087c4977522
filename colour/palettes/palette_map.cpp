// Four kinds of map, told apart by which of the two palettes are there.
#include "colour/palettes/palette_map.h"

#include "colour/gray/gray_of.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

int32_t BuildPaletteMap(const RGBQUAD* source, int32_t sourceEntries, const RGBQUAD* target,
                        int32_t targetEntries, uint8_t* map) {
    if (source == nullptr && target == nullptr) return 1;

    const int32_t entries = source == nullptr ? 256 : std::clamp(sourceEntries, 0, 256);
    const bool beginsAlike = source != nullptr && target != nullptr && targetEntries >= entries &&
                             std::memcmp(source, target, static_cast<size_t>(entries) * sizeof(RGBQUAD)) == 0;
    bool identity = true;
    for (int32_t i = 0; i < entries; ++i) {
        const RGBQUAD colour = source == nullptr ? GrayRampEntry(static_cast<uint32_t>(i), 256) : source[i];
        const int32_t index = beginsAlike         ? i
                              : target == nullptr ? GrayOf(colour)
                                                  : Z_FindPaletteIndex(target, targetEntries, colour.rgbRed,
                                                                       colour.rgbGreen, colour.rgbBlue);
        map[i] = static_cast<uint8_t>(index);
        identity = identity && index == i;
    }
    return identity ? 1 : 0;
}

} // namespace zkr
