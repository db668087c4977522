// Puts the reader together from the kernels of row conversion.
#include "colour/quantise/key_reader.h"
#include "core/predicates.h"

#include "zkr13n/palettes.h"

namespace zkr {

using kernels::Source;
using kernels::Target;

namespace {

// Without a level table, the upper eight bits of the window.
GrayWindow WindowOf(const BitmapHandle& bitmap) {
    const int32_t maximum = HasActiveLevelTable(bitmap) ? bitmap.BitsPerPixel : 8;
    return MakeGrayWindow(bitmap.BitsPerPixel, maximum, bitmap.LowBit, bitmap.HighBit);
}

} // namespace

KeyReader::KeyReader(const BitmapHandle& bitmap)
    : width_(static_cast<size_t>(bitmap.Width)), window_(WindowOf(bitmap)), levels_(bitmap, window_.Mask),
      stages_(bitmap.BitsPerPixel) {
    if (bitmap.BitsPerPixel <= MostIndexedBits) {
        Z_GetBitmapPaletteEntries(&bitmap, 0, MostEntries, palette_);
        PlanIndices(bitmap.BitsPerPixel);
    } else if (HasGrayWords(bitmap)) {
        PlanGray(bitmap.BitsPerPixel);
    } else {
        stages_.Add(kernels::ColourForm(bitmap.BitsPerPixel), Target::Colour16,
                    {.SourceIsRgb = IsRedFirstUnlessBgr(bitmap.Order)});
    }
}

void KeyReader::PlanIndices(int32_t bits) {
    stages_.AddUnpack(bits);
    stages_.Add(Source::Index8, Target::Colour16, {.Table = palette_, .Mask = (1u << bits) - 1});
}

void KeyReader::PlanGray(int32_t bits) {
    stages_.AddUnpack(bits);
    kernels::RowParameters parameters{
        .Table = levels_.Entries(), .Mask = window_.Mask, .Shift = window_.Shift};
    if (levels_.Entries() != nullptr) return stages_.Add(Source::GrayLookup, Target::Colour16, parameters);
    parameters.Scale = kernels::StretchGray(0xFF, window_.Mask);
    stages_.Add(Source::GrayValue, Target::Gray8, parameters);
    stages_.Add(Source::Gray8, Target::Colour16);
}

} // namespace zkr
