// The 256 raster operations of pattern, source and destination, as truth tables over whole words.
#pragma once

#include "platform/portable/types.h"

namespace zkr::platform {

class RasterOperation {
  public:
    // Bits 16 to 23 of the code: bit 4p + 2s + d is the result for the bits p, s and d.
    explicit RasterOperation(DWORD code) : table_(code >> 16 & 255) {}

    bool NeedsPattern() const { return ((table_ >> 4 ^ table_) & 0x0F) != 0; }
    bool NeedsSource() const { return ((table_ >> 2 ^ table_) & 0x33) != 0; }
    bool CopiesSource() const { return table_ == 0xCC; }
    bool CopiesPattern() const { return table_ == 0xF0; }

    // Changes count bits of the destination from firstBit of its first byte on, where the leftmost is the
    // highest. Pattern and source lie bit for bit under it; what is not needed may hold anything.
    void Run(uint8_t* destination, const uint8_t* source, const uint8_t* pattern, int firstBit,
             int count) const;

  private:
    uint32_t table_;
};

} // namespace zkr::platform
