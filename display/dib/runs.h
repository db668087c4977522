// Run-length pictures of 8 and 4 bits.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>

namespace zkr::dib {

// Decodes into a blank bitmap of 8 or 4 bits, whose rows get what the runs reach. At most so many bytes are read; data
// that end early are no failure. `scratch` is a row of zeroes.
[[nodiscard]] ReturnCode DecodeRuns(BitmapHandle& bitmap, const uint8_t* data, size_t bytes,
                                    uint8_t* scratch);

} // namespace zkr::dib
