// Entries that stay and entries to be filled.
#include "colour/quantise/palette_slots.h"

#include "colour/palettes/system_palette.h"
#include "colour/quantise/colour_key.h"
#include "zkr13n/palettes.h"

#include <algorithm>

namespace zkr {

namespace {

constexpr RGBQUAD FreeEntry = {2, 2, 2, 2};

// What the flags of an entry of a palette object can say.
enum EntryFlags : uint8_t { EntryReserved = 1, EntryExplicit = 2, EntryNoCollapse = 4 };

// The colours that a display keeps for itself, by their places in its palette.
class StaticColours {
  public:
    StaticColours() : count_(GetStaticColors(colours_, 256)) {}

    // Entries that name their colour hold its place as a word, the green byte above the red one.
    void Replace(RGBQUAD& entry) const {
        const uint32_t place = entry.rgbRed | static_cast<uint32_t>(entry.rgbGreen) << 8;
        const uint32_t front = count_ / 2;
        if (place < front || (place < 256 && place >= 256 - (count_ - front))) entry = colours_[place];
    }

  private:
    RGBQUAD colours_[256];
    uint32_t count_;
};

} // namespace

PaletteSlots::PaletteSlots(uint32_t colors, bool withSystemColors, const RGBQUAD* palette) : colors_(colors) {
    std::fill(entries_, entries_ + 256, FreeEntry);
    if (withSystemColors) GetStaticColors(entries_, colors);
    uint32_t runs = 0;
    bool inRun = false;
    for (uint32_t i = 0; i < colors; ++i) {
        if (palette != nullptr && !IsFreeEntry(palette[i])) entries_[i] = palette[i];
        const bool isFree = IsFreeEntry(entries_[i]);
        freeCount_ += isFree ? 1 : 0;
        runs += isFree && !inRun ? 1 : 0;
        inRun = isFree;
        if (runs == 0 && (entries_[i].rgbReserved & 3) == 0) ++matchableBefore_;
    }
    isOneRun_ = runs == 1;
}

void PaletteSlots::Fill(const RGBQUAD* colours, uint32_t count, RGBQUAD* copy) {
    for (uint32_t i = 0, next = 0; i < colors_ && next < count; ++i) {
        if (!IsFreeEntry(entries_[i])) continue;
        entries_[i] = colours[next++];
        if (copy != nullptr) copy[i] = entries_[i];
    }
}

// Cells count the entries that dithering may choose.
void PaletteSlots::MoveTable(uint32_t* table) const {
    for (uint32_t i = 0; i < ColourKeys; ++i)
        if (table[i] != 0) table[i] += matchableBefore_;
}

bool ReadPaletteHandle(HPALETTE handle, RGBQUAD* entries, uint32_t colors) {
    std::fill(entries, entries + 256, RGBQUAD{0, 0, 0, 2});
    const uint32_t count = Z_GetPaletteEntries(handle, 0, std::min(colors, 256u), entries);
    const StaticColours statics;
    for (uint32_t i = 0; i < count; ++i) {
        RGBQUAD& entry = entries[i];
        if (entry.rgbReserved == EntryReserved || entry.rgbReserved == EntryNoCollapse) entry.rgbReserved = 0;
        if (entry.rgbReserved == EntryExplicit) statics.Replace(entry);
    }
    return count > 0;
}

} // namespace zkr
