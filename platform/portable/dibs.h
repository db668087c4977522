// Device-independent bitmaps in memory: what their headers say.
#pragma once

#include "platform/portable/device.h"

#include <array>

namespace zkr::platform {

struct Dib {
    Pixels pixels; // without a colour table, which is below
    bool topDown = false;
    ptrdiff_t rowBytes = 0;
    std::array<PALETTEENTRY, 256> table{};

    uint8_t* FirstInMemory() const { return pixels.Row(topDown ? 0 : pixels.height - 1); }
};

// Reads a header of plain rows and its colours, which with DIB_PAL_COLORS are indices into a context's
// palette. False, with the last error set, for what is no such header; the bits are not looked at.
bool ReadDib(const BITMAPINFO* info, const void* bits, UINT usage, const ContextState& state, Dib& out);

// Where the colours of a header stand.
inline const void* ColoursOf(const BITMAPINFO* info) {
    return reinterpret_cast<const uint8_t*>(info) + info->bmiHeader.biSize;
}

} // namespace zkr::platform
