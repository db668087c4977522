// The three channels of a colour in the order in which they lie, the lowest first.
#pragma once

#include "colour/pixels/colour_value.h"

namespace zkr {

struct ChannelTriple {
    uint32_t First, Second, Third;

    static constexpr ChannelTriple Of(ColourValue colour, bool redFirst) {
        return redFirst ? ChannelTriple{colour.Red(), colour.Green(), colour.Blue()}
                        : ChannelTriple{colour.Blue(), colour.Green(), colour.Red()};
    }
    constexpr uint32_t AsColour(bool redFirst) const {
        return redFirst ? First | Second << 8 | Third << 16 : Third | Second << 8 | First << 16;
    }
    // The upper five bits of each channel side by side.
    constexpr uint32_t AsWord() const { return First >> 3 | Second >> 3 << 5 | Third >> 3 << 10; }
};

} // namespace zkr
