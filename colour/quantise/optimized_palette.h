// Palettes made for a picture or for the pictures of a list.
#pragma once

#include "zkr13n/lists.h"

#include <cstdint>

namespace zkr {

struct OptimizedPalette {
    uint32_t* MatchTable = nullptr; // leads every colour of the pictures to its entry; null unless quantised
    bool Quantised = false;         // the pictures have more colours than the palette
};

// Finds up to `colors` entries, 1 to 256, for a bitmap and sets colors to their number. A match table is made
// where it is wanted, of the run-time heap for the caller to free; after a failure there is none.
[[nodiscard]] ReturnCode BuildOptimizedPalette(BitmapHandle& bitmap, RGBQUAD* paletteOut, uint32_t& colors,
                                               bool wantsTable, OptimizedPalette& found, bool fewPeels);

// The same for the items of a list.
[[nodiscard]] ReturnCode BuildOptimizedPalette(BitmapList list, RGBQUAD* paletteOut, uint32_t& colors,
                                               bool wantsTable, OptimizedPalette& found);

} // namespace zkr
