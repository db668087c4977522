// The works of the exchange with device-independent bitmaps.
#pragma once

#include "pictures.h"

namespace bench {

enum DibWork {
    FromPacked422 = 5500,
    FromPlanar420,
    FromRuns8,
    AdoptBlock,
    CopyFromBlock,
    ToBlock24,
    UnmaskBlock
};

// Pixels of the photograph's size in YUV: packed as Y U Y V, or planes of Y, U and V one behind the other.
const std::vector<uint8_t>& PackedPhotograph();
const std::vector<uint8_t>& PlanarPhotograph();

} // namespace bench
