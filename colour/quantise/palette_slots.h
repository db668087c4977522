// The palette of a target while it is put together: entries that stay, and free ones to be filled with
// colours that are found.
#pragma once

#include "zkr13n/platform_types.h"

#include <cstdint>

namespace zkr {

// An entry to be filled, by its fourth byte.
constexpr bool IsFreeEntry(const RGBQUAD& entry) {
    return (entry.rgbReserved & 3) == 2;
}

class PaletteSlots {
  public:
    // `colors` entries, at most 256, and the static colours of the display at their ends where that is
    // wanted. Then the entries of palette, where it is not null, that are not free.
    PaletteSlots(uint32_t colors, bool withSystemColors, const RGBQUAD* palette);

    uint32_t FreeCount() const { return freeCount_; }

    // Whether the free entries lie side by side; not where there is none.
    bool IsOneRun() const { return isOneRun_; }

    // Puts colours into the free entries, from the first on. What is left of these can still be told by its
    // fourth byte, which keeps it from being matched. They go into the same places of copy, where it is not
    // null.
    void Fill(const RGBQUAD* colours, uint32_t count, RGBQUAD* copy);

    // Makes a match table of those colours one of the whole palette. The free entries are one run.
    void MoveTable(uint32_t* table) const;

    // 256 of them; those behind the palette are like free ones.
    RGBQUAD* Entries() { return entries_; }

  private:
    RGBQUAD entries_[256];
    uint32_t colors_;
    uint32_t freeCount_ = 0;
    uint32_t matchableBefore_ = 0; // entries in front of the first free one that dithering may choose
    bool isOneRun_ = false;
};

// Reads a palette object into 256 entries, as many as there are of colors, and makes of their flags what
// slots take them for: ordinary, a static colour of the display, or free. What the object does not have is
// free. False for an object without entries.
bool ReadPaletteHandle(HPALETTE handle, RGBQUAD* entries, uint32_t colors);

} // namespace zkr
