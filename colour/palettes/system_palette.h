// The palette of a display that shows its colours through one.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr {

// Fills the two ends of an array of wanted entries with the colours that such a display keeps for itself: the
// first half of them (rounded down) at the front, the rest at the back; all reserved bytes are 0. Returns how
// many were written, at most wanted; 0 on any other display.
uint32_t GetStaticColors(RGBQUAD* colours, uint32_t wanted);

} // namespace zkr
