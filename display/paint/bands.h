// Rows brought to a device in bands of limited memory.
#pragma once

#include "display/modes/paint_state.h"
#include "display/paint/band_rows.h"
#include "display/paint/placement.h"

#include <cstdint>

namespace zkr {

struct BandTarget {
    HDC Context;
    const Placement& Placed;
    Area Seen; // of the device; bands beside it are left out
    uint32_t Operation;
    PaintState& State; // with the colours of the block
    bool ByIndex;      // up to 8 bits pixels are indices into the device's palette
};

// A band's bytes, but for bands of one row.
inline constexpr size_t MostBandBytes = 262144;

// Paints a part of the scaled picture, which is not empty and lies within the columns of the rows.
[[nodiscard]] ReturnCode PaintBands(const BandTarget& target, BandRows& rows, const Area& part);

} // namespace zkr
