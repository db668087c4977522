// The table of operations on regions that the rooms below reach through core/dispatch.h.
#include "core/dispatch.h"
#include "regions/bitmap_regions.h"
#include "regions/combine.h"
#include "regions/moves.h"
#include "regions/turns.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"

using namespace zkr;

namespace {

constinit const DispatchTable regionOperations = {
    .ReverseRegion = ReverseRegion,
    .CopyBitmapRegion = CopyBitmapRegion,
    .SetBitmapRgnFromMask = Z_SetBitmapRgnFromMask,
    .GetBitmapClipSegmentsMax = Z_GetBitmapClipSegmentsMax,
    .GetBitmapClipSegments = Z_GetBitmapClipSegments,
    .ScaleBitmapRegion = ScaleBitmapRegion,
    .CombineRegion = CombineRegion,
    .GetBitmapRgnBounds = Z_GetBitmapRgnBounds,
    .CopyZircRgn = Z_CopyZircRgn,
    .OffsetRegion = OffsetRegion,
    .FlipRegion = FlipRegion,
    .ShearRegion = ShearRegion,
    .RotateRegion = RotateRegion,
    .IntGetBitmapRgnHandle = Z_IntGetBitmapRgnHandle,
    .SetBitmapRgnColor = Z_SetBitmapRgnColor,
    .SetBitmapRgnRect = Z_SetBitmapRgnRect,
    .IsPtInBitmapRgn = Z_IsPtInBitmapRgn,
    .CreateMaskFromBitmapRgn = Z_CreateMaskFromBitmapRgn,
    .FlipBitmapRegion = FlipBitmapRegion,
    .GetBitmapRgnHandle = Z_GetBitmapRgnHandle,
    .FreeBitmapRgn = Z_FreeBitmapRgn,
};

} // namespace

void Z_CALL SetDisplayDispatch(void) {
    ExchangeDispatch(&regionOperations);
}
