// Palettes that make ties: their colours lie on a grid whose grain is drawn anew, and some are repeated,
// black or white at the ends among them.
#pragma once

#include "colour/palettes/reference_palettes.h"
#include "support/seeded.h"

#include <vector>

namespace zkr::test {

struct RandomPalette {
    RandomPalette(Seeded& seeded, int entries) : Grain(1 << seeded.Below(8)) {
        for (int i = 0; i < entries; ++i) {
            const bool again = i > 0 && seeded.Below(4) == 0;
            Entries.push_back(again ? Entries[static_cast<size_t>(seeded.Below(i))] : Entry(seeded));
        }
        if (entries > 0 && seeded.Below(2) == 0) Entries.front() = End(seeded);
        if (entries > 0 && seeded.Below(2) == 0) Entries.back() = End(seeded);
    }

    // A colour to look for: any, one between the grid's lines, an entry, black or white.
    Colour Target(Seeded& seeded) const {
        switch (seeded.Below(8)) {
        case 0: return {0, 0, 0};
        case 1: return {255, 255, 255};
        case 2:
            if (!Entries.empty()) {
                return ColourOf(Entries[static_cast<size_t>(seeded.Below(static_cast<int>(Entries.size())))]);
            }
            [[fallthrough]];
        case 3:
        case 4: return {seeded.Byte(), seeded.Byte(), seeded.Byte()};
        default: return {Between(seeded), Between(seeded), Between(seeded)};
        }
    }

    int Grain;
    std::vector<RGBQUAD> Entries;

  private:
    unsigned OnGrid(Seeded& seeded) const { return static_cast<unsigned>(seeded.Byte() / Grain * Grain); }
    unsigned Between(Seeded& seeded) const { return OnGrid(seeded) + static_cast<unsigned>(Grain / 2); }
    RGBQUAD Entry(Seeded& seeded) const {
        return EntryOf(OnGrid(seeded), OnGrid(seeded), OnGrid(seeded), seeded.Byte());
    }
    static RGBQUAD End(Seeded& seeded) {
        const unsigned level = seeded.Below(2) == 0 ? 0 : 255;
        return EntryOf(level, level, level, seeded.Byte());
    }
};

} // namespace zkr::test
