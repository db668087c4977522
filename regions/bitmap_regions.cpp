// Flip and scale of the region that a bitmap has.
#include "regions/bitmap_regions.h"

#include "regions/moves.h"
#include "regions/scale.h"

namespace zkr {

ReturnCode FlipBitmapRegion(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    return bitmap->Region == nullptr ? code::Success : FlipRegion(RegionOf(*bitmap), bitmap->Height);
}

ReturnCode ScaleBitmapRegion(BitmapHandle* bitmap, int32_t xNumerator, int32_t yNumerator) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (bitmap->Region == nullptr) return code::Success;
    return ScaleRegion(RegionOf(*bitmap), {xNumerator, bitmap->Width, yNumerator, bitmap->Height});
}

} // namespace zkr
