// The types in the table of members, as the logic has them.
#pragma once

#include <cstdint>

namespace zkr::automation {

struct PlainTypes {
    using Handle = intptr_t;
    using Truth = int16_t;
    using Short = int16_t;
    using Long = int32_t;
    using Float = float;
    using Double = double;
    using Colour = uint32_t;
    using Text = const char*;
    using PictureIn = intptr_t;
    using PictureOut = intptr_t*;
    using RasterScaleModeConstants = int32_t;
    using GrayscaleTypes = int32_t;
    using RasterSupportLockConstants = int32_t;
    using RgnCombineModeConstants = int32_t;
    using RgnPolygonFillModeConstants = int32_t;
    using AnimationDisposalConstants = int32_t;
    using DIBTypeConstants = int32_t;
    using CurveTypeConstants = int32_t;
    using CurveCloseConstants = int32_t;
    using ResizeRgnConstants = int32_t;
    using BitmapCompressionConstants = int32_t;
};

} // namespace zkr::automation
