// The map from the indices of one palette to those of another.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr {

// Writes map[i], the index in target of entry i of source, for every source entry, at most 256 of them.
//
// A null source is the ramp of 256 gray levels, a null target the scale of 256 gray levels; without either
// nothing is written. Where target begins with the very entries of source, the reserved byte included, the
// map is the identity; otherwise each entry goes to the one nearest to it. Returns 1 when the map is the
// identity, else 0.
int32_t BuildPaletteMap(const RGBQUAD* source, int32_t sourceEntries, const RGBQUAD* target,
                        int32_t targetEntries, uint8_t* map);

} // namespace zkr
