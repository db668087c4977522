// The map between two palettes for whole rows: the one last built for a thread is kept, since one row after
// the other asks for the same.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr {

struct PaletteMap {
    uint8_t Index[256];
    bool IsIdentity;
};

// The map that BuildPaletteMap makes of 1 to 256 entries each; a null source or target is the 256 gray
// levels. It stands until the thread asks for another map, or in spare where there is no memory to keep it.
const PaletteMap& PaletteMapFor(const RGBQUAD* source, int32_t sourceEntries, const RGBQUAD* target,
                                int32_t targetEntries, PaletteMap& spare);

} // namespace zkr
