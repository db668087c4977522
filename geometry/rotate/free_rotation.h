// Rotation about the centre by an angle for which there is no exact turn.
#pragma once

#include "core/return_codes.h"
#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr::geometry {

struct RotationRequest {
    int32_t Angle;  // anticlockwise, 0 to 35999 hundredths of a degree, before the view is looked at
    uint32_t Flags; // ROTATE_...
    uint32_t Fill;  // colour value
    uint32_t Start; // of the percentages to report
    uint32_t End;
    int32_t RegionAngle; // the caller's, for the region
};

// Replaces an allocated bitmap by its rotation. On failure it is as it was, but for compressed storage, which may
// have become plain.
[[nodiscard]] ReturnCode RotateFreely(BitmapHandle& bitmap, const RotationRequest& request);

} // namespace zkr::geometry
