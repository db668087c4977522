// The depth and order in which a device-independent bitmap holds what a bitmap has.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr::dib {

struct HeldForm {
    int32_t Bits;
    uint32_t Flags; // COLORRES_...
    bool IsChange;  // from what the bitmap has
};

HeldForm HeldFormOf(const BitmapHandle& bitmap);

// Makes a bitmap of such a form of another; the target may be the source.
[[nodiscard]] ReturnCode BringToForm(BitmapHandle& source, BitmapHandle& target, const HeldForm& form);

// The palette of a bitmap of up to 8 bits, or a gray ramp where it has none. Gives how many of the colours its pixels
// may name, 1 to 2^bits; entries without a colour are black.
uint32_t ColoursOf(const BitmapHandle& bitmap, RGBQUAD (&colours)[256]);

} // namespace zkr::dib
