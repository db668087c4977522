// The rows of a rotation: from a source in any plain storage to a target in any storage.
#pragma once

#include "core/return_codes.h"
#include "geometry/kernels/rotate_kernels.h"
#include "geometry/row_progress.h"
#include "zkr13n/bitmap.h"

namespace zkr::geometry {

struct RotationPlan {
    kernels::RotateMethod Method;
    kernels::RotatePosition First; // of the target's first pixel in the source
    int32_t Cosine, Sine;
    uint32_t Fill; // colour value
};

// Fills target, which has the source's depth and order. Both are locked.
[[nodiscard]] ReturnCode RotateRows(BitmapHandle& target, BitmapHandle& source, const RotationPlan& plan,
                                    RowProgress& progress);

} // namespace zkr::geometry
