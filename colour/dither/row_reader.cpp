// Puts a reader together from the kernels of row conversion.
#include "colour/dither/row_reader.h"

#include "colour/colour_value.h"
#include "colour/dither/dither_state.h"
#include "kernels/family.h"

#include <algorithm>
#include <cstring>

namespace zkr {

using kernels::RowParameters;
using kernels::Source;
using kernels::Target;

RowReader::RowReader(const DitherState& state, const BitmapHandle& bitmap)
    : bits_(static_cast<size_t>(state.SourceBits)) {
    const RowParameters colour{.SourceIsRgb = bitmap.Order != Z_ORDER_BGR};
    switch (state.SourceBits) {
    case 12:
        Add(kernels::Chosen<kernels::ConvertKernels>().Unpack12, {});
        AddGray(state, bitmap);
        break;
    case 16:
        bitmap.Order == Z_ORDER_GRAY ? AddGray(state, bitmap)
                                     : Add(Source::Colour16, Target::Colour32, colour);
        break;
    case 24: Add(Source::Colour24, Target::Colour32, colour); break;
    case 32: Add(Source::Colour32, Target::Colour32, colour); break;
    case 48: Add(Source::Deep48, Target::Colour32, colour); break;
    case 64: Add(Source::Deep64, Target::Colour32, colour); break;
    default:
        if (bits_ < 8)
            Add(kernels::Chosen<kernels::ConvertKernels>().Unpack[bits_],
                {.Table = kernels::IdentityMap.data()});
        Add(Source::Index8, Target::Colour32, {.Table = state.SourcePalette, .Mask = (1u << bits_) - 1});
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
    Add(Source::GrayValue, Target::Gray8,
        {.Mask = mask_, .Shift = shift_, .Scale = kernels::StretchGray(0xFF, mask_)});
    Add(Source::Gray8, Target::Colour32, {});
}

void RowReader::Add(kernels::RowKernel kernel, const RowParameters& parameters) {
    stages_[stageCount_++] = {kernel, parameters};
}

void RowReader::Add(Source source, Target target, const RowParameters& parameters) {
    Add(kernels::Chosen<kernels::ConvertKernels>()
            .Convert[static_cast<size_t>(source)][static_cast<size_t>(target)],
        parameters);
}

void RowReader::Read(const uint8_t* row, size_t first, size_t pixels, uint8_t* quads) {
    const uint8_t* from = row + first / 8 * bits_;
    for (int32_t i = 0; i < stageCount_; ++i) {
        const bool last = levels_ == nullptr && i == stageCount_ - 1;
        uint8_t* to = last ? quads : between_[i & 1];
        stages_[i].Kernel(from, to, pixels, stages_[i].Parameters);
        from = to;
    }
    if (levels_ != nullptr) LookUpLevels(from, pixels, quads);
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
