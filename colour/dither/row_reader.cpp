// Puts a reader together from the kernels of row conversion.
#include "colour/dither/row_reader.h"
#include "core/predicates.h"

#include "colour/dither/dither_state.h"
#include "colour/pixels/colour_value.h"

#include <algorithm>
#include <cstring>

namespace zkr {

using kernels::Source;
using kernels::Target;

RowReader::RowReader(const DitherState& state, const BitmapHandle& bitmap) : stages_(state.SourceBits) {
    const int32_t bits = state.SourceBits;
    stages_.AddUnpack(bits);
    if (bits <= MostIndexedBits) {
        stages_.Add(Source::Index8, Target::Colour32,
                    {.Table = state.SourcePalette, .Mask = (1u << bits) - 1});
    } else if (DepthOf(bits).Kind == PixelKind::Gray || (bits == 16 && bitmap.Order == Z_ORDER_GRAY)) {
        AddGray(state, bitmap);
    } else {
        stages_.Add(kernels::ColourForm(bits), Target::Colour32,
                    {.SourceIsRgb = IsRedFirstUnlessBgr(bitmap.Order)});
    }
}

void RowReader::AddGray(const DitherState& state, const BitmapHandle& bitmap) {
    mask_ = static_cast<uint32_t>(state.GrayMask);
    shift_ = static_cast<uint32_t>(std::clamp(state.GrayShift, 0, 31));
    if (HasActiveLevelTable(bitmap)) {
        levels_ = bitmap.LevelLUT;
        levelCount_ = bitmap.LevelLUTLength;
        return;
    }
    stages_.Add(Source::GrayValue, Target::Gray8,
                {.Mask = mask_, .Shift = shift_, .Scale = kernels::StretchGray(0xFF, mask_)});
    stages_.Add(Source::Gray8, Target::Colour32);
}

void RowReader::Read(const uint8_t* row, size_t first, size_t pixels, uint8_t* quads) {
    if (levels_ == nullptr) return stages_.Read(row, first, pixels, quads);
    LookUpLevels(stages_.Read(row, first, pixels), pixels, quads);
}

// Values beyond a table that is shorter than the window are black.
void RowReader::LookUpLevels(const uint8_t* words, size_t pixels, uint8_t* quads) const {
    for (size_t i = 0; i < pixels; ++i) {
        uint16_t word;
        std::memcpy(&word, words + i * 2, sizeof word);
        const uint32_t value = word >> shift_ & mask_;
        const RGBQUAD colour = value < levelCount_ ? levels_[value] : RGBQUAD{};
        std::memcpy(quads + i * 4, &colour, sizeof colour);
    }
}

} // namespace zkr
