// Puts the reader together from the kernels of row conversion.
#include "colour/quantise/key_reader.h"

#include "kernels/family.h"
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
    : width_(static_cast<size_t>(bitmap.Width)), bits_(static_cast<size_t>(bitmap.BitsPerPixel)),
      window_(WindowOf(bitmap)), levels_(bitmap, window_.Mask) {
    if (bits_ <= 8) {
        Z_GetBitmapPaletteEntries(&bitmap, 0, 256, palette_);
        PlanIndices();
    } else if (HasGrayWords(bitmap)) {
        PlanGray();
    } else {
        const Source source = bits_ == 16   ? Source::Colour16
                              : bits_ == 24 ? Source::Colour24
                              : bits_ == 32 ? Source::Colour32
                              : bits_ == 48 ? Source::Deep48
                                            : Source::Deep64;
        Append(source, Target::Colour16, {.SourceIsRgb = bitmap.Order != Z_ORDER_BGR});
    }
}

void KeyReader::PlanIndices() {
    if (bits_ < 8)
        stages_.Append(kernels::Chosen<kernels::ConvertKernels>().Unpack[bits_],
                       {.Table = kernels::IdentityMap.data()});
    Append(Source::Index8, Target::Colour16, {.Table = palette_, .Mask = (1u << bits_) - 1});
}

void KeyReader::PlanGray() {
    if (bits_ == 12) stages_.Append(kernels::Chosen<kernels::ConvertKernels>().Unpack12);
    kernels::RowParameters parameters{
        .Table = levels_.Entries(), .Mask = window_.Mask, .Shift = window_.Shift};
    if (levels_.Entries() != nullptr) return Append(Source::GrayLookup, Target::Colour16, parameters);
    parameters.Scale = kernels::StretchGray(0xFF, window_.Mask);
    Append(Source::GrayValue, Target::Gray8, parameters);
    Append(Source::Gray8, Target::Colour16, {});
}

void KeyReader::Append(Source source, Target target, const kernels::RowParameters& parameters) {
    stages_.Append(kernels::Chosen<kernels::ConvertKernels>()
                       .Convert[static_cast<size_t>(source)][static_cast<size_t>(target)],
                   parameters);
}

} // namespace zkr
