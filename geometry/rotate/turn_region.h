// How the region follows a rotation.
#pragma once

#include "core/dispatch.h"
#include "zkr13n/bitmap.h"

namespace zkr::geometry {

// Turns the region that result shares with the source it is made from. Where that fails the source is what remains,
// and it has to know what has become of its region.
[[nodiscard]] inline ReturnCode TurnRegion(BitmapHandle& result, BitmapHandle& source, int32_t angle) {
    const ReturnCode status = Dispatch().RotateRegion(&result, source.Width, source.Height, angle);
    source.Region = result.Region;
    return status;
}

} // namespace zkr::geometry
