// The rows of a colour resolution: out of the source, into the form of the target, to the caller's callback
// and into the target. Progress is reported; a result other than code::Success ends the work.
#pragma once

#include "zkr13n/color_resolution.h"

namespace zkr {

struct RowReceiver {
    ColorResCallback Callback; // null for none
    intptr_t UserData;
};

// `form` is the target's record; stored is the same, or null where no pixels are kept. The source has a
// dithering run.
[[nodiscard]] ReturnCode ResolveByDithering(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored,
                                            const RowReceiver& receiver);

// palette has 256 entries; of a target above 8 bits it plays no part.
[[nodiscard]] ReturnCode ResolveByConversion(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored,
                                             const RGBQUAD* palette, const RowReceiver& receiver);

} // namespace zkr
