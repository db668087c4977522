// The nearest colour of a table, for many colours: each part of the colour cube keeps the entries that can be the
// nearest one of a colour in it.
#pragma once

#include "platform/portable/graphics.h"

#include <cstddef>

namespace zkr::platform {

// The first one of those with the least sum of squared differences of red, green and blue. Colours are words with
// blue in the low byte.
uint32_t NearestEntry(uint32_t colour, const PALETTEENTRY* entries, int count);

class NearestTable {
  public:
    NearestTable(const PALETTEENTRY* entries, int count); // at most 256, which must stay
    ~NearestTable();
    NearestTable(const NearestTable&) = delete;
    NearestTable& operator=(const NearestTable&) = delete;

    uint32_t Find(uint32_t colour);

  private:
    struct Cell {
        uint16_t count; // 0: not looked at yet
        uint8_t entries[256];
    };

    const Cell& CellOf(uint32_t colour);

    const PALETTEENTRY* entries_;
    int count_;
    Cell* cells_; // 16 x 16 x 16 of them; null where memory is short
};

} // namespace zkr::platform
