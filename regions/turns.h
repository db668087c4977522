// Regions that follow a bitmap through rotation and shear, in place.
#pragma once

#include "regions/run_store.h"

namespace zkr {

// Turns a bitmap's region clockwise by an angle in hundredths of a degree. The bitmap has its new dimensions already;
// a mirrored view turns the other way.
[[nodiscard]] ReturnCode RotateRegion(BitmapHandle* bitmap, int32_t oldWidth, int32_t oldHeight,
                                      int32_t angleHundredths);

// Slides the rows of a bitmap's region to the right by their distance from the picture's first row times the tangent
// of the angle's magnitude, in hundredths of a degree.
[[nodiscard]] ReturnCode ShearRegion(BitmapHandle* bitmap, int32_t angleHundredths);

} // namespace zkr
