// Regions of the pixels of a colour, or of colours in a range.
#include "colour/gray/gray_window.h"
#include "colour/gray/level_table.h"
#include "colour/pixels/colour_value.h"
#include "core/predicates.h"
#include "core/sizes.h"
#include "regions/combine.h"
#include "regions/pixel_test.h"
#include "zkr13n/palettes.h"
#include "zkr13n/region_colours.h"

#include <algorithm>

using namespace zkr;

namespace {

// The indices of the entries that lie in a range; of single colours the first one alone.
ReturnCode FindIndices(const BitmapHandle& bitmap, const ColourRange& range, bool firstOnly,
                       kernels::ByteSet& set) {
    const uint32_t entries = std::min(bitmap.ColorsUsed, MostEntries);
    RGBQUAD palette[MostEntries];
    const ReturnCode status = Z_GetBitmapColors(&bitmap, 0, static_cast<int32_t>(entries), palette);
    if (status != code::Success) return status;
    for (uint32_t i = 0; i < entries; ++i) {
        if (!range.Takes(palette[i])) continue;
        set.Include(i);
        if (firstOnly) break;
    }
    return code::Success;
}

ReturnCode CombineIndices(BitmapHandle& bitmap, const kernels::ByteSet& set, uint32_t mode) {
    OwnedRegion found;
    ReturnCode status;
    if (set == kernels::ByteSet{}) {
        status = RectRegion(found, {});
    } else {
        PixelTest test(bitmap);
        test.TakeIndices(set);
        status = RegionOfPixels(bitmap, test, found);
    }
    return status == code::Success ? CombineRegion(&bitmap, nullptr, found.Release(), mode) : status;
}

ReturnCode CombineColours(BitmapHandle& bitmap, const ColourRange& range, uint32_t mode) {
    const GrayWindow window =
        MakeGrayWindow(bitmap.BitsPerPixel, bitmap.BitsPerPixel, bitmap.LowBit, bitmap.HighBit);
    const LevelTable levels(bitmap, window.Mask);
    if (!levels) return code::OutOfMemory;
    PixelTest test(bitmap);
    OwnedRegion found;
    ReturnCode status = test.TakeColours(bitmap, range, levels.Entries());
    if (status == code::Success) status = RegionOfPixels(bitmap, test, found);
    return status == code::Success ? CombineRegion(&bitmap, nullptr, found.Release(), mode) : status;
}

ReturnCode CombineRange(BitmapHandle* bitmap, const ColourRange& range, bool firstOnly, uint32_t mode) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (bitmap->BitsPerPixel > MostIndexedBits) return CombineColours(*bitmap, range, mode);
    kernels::ByteSet indices{};
    const ReturnCode status = FindIndices(*bitmap, range, firstOnly, indices);
    return status == code::Success ? CombineIndices(*bitmap, indices, mode) : status;
}

} // namespace

ReturnCode Z_CALL Z_SetBitmapRgnColor(BitmapHandle* bitmap, uint32_t color, uint32_t mode) {
    const bool isIndex = color >> 24 == ColourValue::IndexForm;
    if (IsAllocated(bitmap) && isIndex && bitmap->BitsPerPixel <= MostIndexedBits) {
        kernels::ByteSet indices{};
        indices.Include(color & ((1u << bitmap->BitsPerPixel) - 1));
        return CombineIndices(*bitmap, indices, mode);
    }
    return CombineRange(bitmap, {.Lower = color, .Upper = color}, true, mode);
}

ReturnCode Z_CALL Z_SetBitmapRgnColorRGBRange(BitmapHandle* bitmap, uint32_t lower, uint32_t upper,
                                              uint32_t mode) {
    return CombineRange(bitmap, {.Lower = lower, .Upper = upper}, false, mode);
}

ReturnCode Z_CALL Z_SetBitmapRgnColorHSVRange(BitmapHandle* bitmap, uint32_t lower, uint32_t upper,
                                              uint32_t mode) {
    return CombineRange(bitmap, {.Lower = lower, .Upper = upper, .IsHsv = true}, false, mode);
}
