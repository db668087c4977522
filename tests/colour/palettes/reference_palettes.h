// The palette rules written out plainly, one step after another: what the library's fast searches are held
// against. Nothing here is shared with the library.
#pragma once

#include "zkr13n/palettes.h"

#include <array>
#include <cstdint>
#include <vector>

namespace zkr::test {

struct Colour {
    unsigned red = 0;
    unsigned green = 0;
    unsigned blue = 0;
};

inline Colour ColourOf(const RGBQUAD& entry) {
    return {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
}
inline RGBQUAD EntryOf(unsigned red, unsigned green, unsigned blue, unsigned reserved = 0) {
    RGBQUAD entry{};
    entry.rgbRed = static_cast<uint8_t>(red);
    entry.rgbGreen = static_cast<uint8_t>(green);
    entry.rgbBlue = static_cast<uint8_t>(blue);
    entry.rgbReserved = static_cast<uint8_t>(reserved);
    return entry;
}

// The gray of a colour of 8 or 16 bits a channel.
inline unsigned GrayOf(Colour c) {
    return (2 * c.red + 5 * c.green + c.blue + 4) >> 3;
}

int ReferenceFindPaletteIndex(const RGBQUAD* palette, int entries, int red, int green, int blue);

// The default palette of 1 to 8 bits.
std::vector<RGBQUAD> ReferenceFixedPalette(int bits);

using PaletteMap = std::array<uint8_t, 256>;
// The index in target of every index in source. A null source is the 256-level gray ramp, a null target the
// 256-level gray scale.
PaletteMap ReferencePaletteMap(const RGBQUAD* source, int sourceEntries, const RGBQUAD* target,
                               int targetEntries);

} // namespace zkr::test
