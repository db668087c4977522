// Rows of a dithering run: piece by piece through reader, method and packer.
#include "colour/dither/dither_state.h"

#include "colour/dither/row_reader.h"
#include "core/assertion.h"
#include "kernels/family.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

using kernels::DitheredRow;
using kernels::DitherPiece;
using kernels::IndexRule;
using kernels::RowLag;

namespace {

constexpr uint32_t RedShift = 16, GreenShift = 8, BlueShift = 0;

// The uppermost bits of a channel, put into an index from a bit on.
constexpr kernels::Slice TopBits(uint32_t channelShift, uint32_t bits, uint32_t place) {
    return {channelShift + 8 - bits - place, ((1u << bits) - 1) << place};
}

struct SlicedPalette {
    kernels::Slice Slices[3];
    uint32_t NonZero = 0;
};

// The palettes of 8 colours and more, by bits. That of 16 is cut like that of 8 with red and blue exchanged,
// and of its colours only black and the bright ones are met.
constexpr SlicedPalette SlicedPalettes[] = {
    {{TopBits(RedShift, 1, 2), TopBits(GreenShift, 1, 1), TopBits(BlueShift, 1, 0)}},
    {{TopBits(RedShift, 1, 0), TopBits(GreenShift, 1, 1), TopBits(BlueShift, 1, 2)}, 8},
    {{TopBits(RedShift, 2, 3), TopBits(GreenShift, 2, 1), TopBits(BlueShift, 1, 0)}},
    {{TopBits(RedShift, 2, 4), TopBits(GreenShift, 2, 2), TopBits(BlueShift, 2, 0)}},
    {{TopBits(RedShift, 2, 5), TopBits(GreenShift, 3, 2), TopBits(BlueShift, 2, 0)}},
    {{TopBits(RedShift, 3, 5), TopBits(GreenShift, 3, 2), TopBits(BlueShift, 2, 0)}},
};

// The index of the entry that a cell of the match table leads to. Cells of a caller's table may hold
// anything; where no entry may be chosen all colours get index 0.
uint8_t FindIndex(void* context, uint32_t cell) {
    auto& state = *static_cast<DitherState*>(context);
    uint32_t& position = state.MatchTable[cell];
    if (position == 0) {
        const auto channel = [cell](uint32_t shift) { return static_cast<int32_t>(cell >> shift & 31) * 8; };
        position = static_cast<uint32_t>(Z_FindPaletteIndex(state.MatchPalette,
                                                            static_cast<int32_t>(state.MatchColors),
                                                            channel(10), channel(5), channel(0)) +
                                         1);
    }
    return position - 1 < state.MatchColors ? state.MatchPalette[position - 1].rgbReserved : 0;
}

IndexRule RuleOf(const DitherState& state) {
    if (UsesMatchTable(state)) return IndexRule::Table;
    switch (state.PaletteKind) {
    case PaletteFixed1: return IndexRule::TwoLevels;
    case PaletteFixed2: return IndexRule::FourLevels;
    case PaletteCube: return IndexRule::Cube;
    default: return IndexRule::Slices;
    }
}

// An ordered method at work on one line.
class OrderedLine {
  public:
    explicit OrderedLine(const DitherState& state) { // which is not run where the method is no ordered one
        using kernels::ThresholdSide;
        const kernels::ThresholdMatrix* matrix = MethodOf(state).Thresholds;
        if (matrix == nullptr) return;
        const uint8_t(&thresholds)[ThresholdSide] = matrix->Rows[state.LineCounter % ThresholdSide];
        comparesGray_ = state.PaletteKind == PaletteFixed1;
        comparesChannels_ = state.PaletteKind == PaletteFixed4;
        const size_t bytesEach = comparesGray_ ? 1 : 4;
        for (size_t i = 0; i < kernels::PatternBytes; ++i) {
            const uint8_t m = thresholds[i / bytesEach % ThresholdSide];
            const int32_t shift = kernels::ThresholdShift(m, FinenessBits(state));
            thresholds_[i] = m;
            up_[i] = static_cast<uint8_t>(std::max(shift, 0));
            down_[i] = static_cast<uint8_t>(std::max(-shift, 0));
        }
    }

    void Run(const DitherState& state, uint8_t* quads, uint8_t* indices, size_t pixels) const {
        if (comparesGray_) {
            kernels::PairOf(convert_, kernels::Source::Colour32, kernels::Target::Gray8)(quads, indices,
                                                                                         pixels, {});
            dither_.Compare(indices, pixels, thresholds_, 1);
            return;
        }
        if (comparesChannels_) {
            dither_.Compare(quads, pixels * 4, thresholds_, 0xFF);
        } else {
            dither_.Shift(quads, pixels * 4, up_, down_);
        }
        dither_.Index[static_cast<size_t>(state.Rule)](quads, indices, pixels, state.Index);
    }

  private:
    static int32_t FinenessBits(const DitherState& state) {
        constexpr int32_t likeCube = 6;
        if (UsesMatchTable(state)) return state.TargetBits;
        return state.PaletteKind == PaletteCube ? likeCube : state.PaletteKind - PaletteFixed1 + 1;
    }

    const kernels::ConvertKernels& convert_ = kernels::Chosen<kernels::ConvertKernels>();
    const kernels::DitherKernels& dither_ = kernels::Chosen<kernels::DitherKernels>();
    bool comparesGray_ = false;
    bool comparesChannels_ = false;
    uint8_t thresholds_[kernels::PatternBytes];
    uint8_t up_[kernels::PatternBytes];
    uint8_t down_[kernels::PatternBytes];
};

// Begins a line of a diffusing method: takes the sums of the first pixels out of the uppermost row and moves
// the rows up there.
kernels::ErrorState StartLine(const DitherState& state) {
    const kernels::Taps& taps = MethodOf(state).Diffusion;
    kernels::ErrorState line = {};
    for (int32_t row = 0; row < taps.Rows; ++row)
        line.Rows[row] = reinterpret_cast<int32_t(*)[4]>(state.BlueRows[row]) + taps.Margin;
    for (int32_t column = 0; column < taps.Margin; ++column) {
        int32_t(&sums)[4] = column == 0 ? line.Error : line.Sums[column - 1];
        std::memcpy(sums, line.Rows[0][column], sizeof sums);
        for (int32_t row = 1; row < taps.Rows; ++row)
            std::memcpy(line.Rows[row - 1][column], line.Rows[row][column], sizeof sums);
        std::memset(line.Rows[taps.Rows - 1][column], 0, sizeof sums);
    }
    for (int32_t& error : line.Error)
        error /= taps.Divisor;
    return line;
}

// A row that has become wider ends where the error rows end.
size_t WidthOf(const DitherState& state, const BitmapHandle& bitmap) {
    const int32_t widest =
        state.ErrorRowCount > 0 ? state.ErrorRowLength - 2 * MethodOf(state).Diffusion.Margin : bitmap.Width;
    return static_cast<size_t>(std::clamp(bitmap.Width, 0, std::max(widest, 0)));
}

// Packs indices, of which the target's bits are kept; other pixels of the last byte stay as they are.
void PackIndices(const DitherState& state, uint8_t* indices, size_t pixels, uint8_t* row, size_t first) {
    const int32_t bits = state.TargetBits;
    if (bits < 1 || bits > 8) return;
    uint8_t* target = row + first / 8 * static_cast<size_t>(bits);
    if (bits == 8) {
        std::memcpy(target, indices, pixels);
        return;
    }
    if (state.TargetColors > 1u << bits) {
        for (size_t i = 0; i < pixels; ++i)
            indices[i] = static_cast<uint8_t>(indices[i] & ((1u << bits) - 1));
    }
    kernels::Chosen<kernels::ConvertKernels>().Pack[bits](indices, target, pixels, {});
}

} // namespace

void PrepareIndex(DitherState& state) {
    state.Rule = RuleOf(state);
    kernels::IndexParameters& index = state.Index;
    if (state.Rule == IndexRule::Slices) {
        const SlicedPalette& sliced = SlicedPalettes[state.PaletteKind - PaletteFixed3];
        std::copy(std::begin(sliced.Slices), std::end(sliced.Slices), index.Slices);
        index.NonZero = sliced.NonZero;
    }
    if (state.Rule == IndexRule::Table) std::memset(state.Known, kernels::UnknownIndex, sizeof state.Known);
    index.Known = state.Known;
    index.Find = FindIndex;
    index.FindContext = &state;
    index.Colours = state.TargetPalette;
    index.Weighted = state.Weighted;
    if (state.ErrorRowCount == 0) return;
    const int32_t weight = MethodOf(state).Diffusion.Weight(0, 1);
    for (size_t i = 0; i < std::size(state.Weighted); ++i) {
        const RGBQUAD& colour = state.TargetPalette[i];
        const int32_t channels[4] = {colour.rgbBlue, colour.rgbGreen, colour.rgbRed, colour.rgbReserved};
        for (size_t lane = 0; lane < 4; ++lane)
            state.Weighted[i][lane] = -channels[lane] * weight;
    }
}

void DitherRow(DitherState& state, const BitmapHandle& bitmap, const uint8_t* source, uint8_t* target) {
    const bool diffuses = state.ErrorRowCount > 0;
    const bool ordered = MethodOf(state).IsOrdered();
    const size_t width = WidthOf(state, bitmap);
    const kernels::DitherKernels& kernels = kernels::Chosen<kernels::DitherKernels>();
    const auto rule = static_cast<size_t>(state.Rule);

    RowReader reader(state, bitmap);
    const OrderedLine thresholds(state);
    DitheredRow row;
    if (diffuses) row.Errors = StartLine(state);
    if (ordered) ++state.LineCounter;
    for (size_t first = 0; first < width; first += DitherPiece) {
        const size_t pixels = std::min(DitherPiece, width - first);
        reader.Read(source, first, pixels, row.Quads);
        if (diffuses) {
            std::memset(row.Quads + pixels * 4, 0, 4);
            kernels.Diffuse[state.Method][rule](&row, pixels, state.Index);
        } else if (ordered) {
            thresholds.Run(state, row.Quads, row.Indices, pixels);
        } else {
            kernels.Index[rule](row.Quads, row.Indices, pixels, state.Index);
        }
        PackIndices(state, row.Indices, pixels, target, first);
    }
}

size_t RowsTogether(const DitherState& state) {
    constexpr int32_t narrow = 128; // beginning and end of rows, which are not shared, cost more than is won
    const bool gains = state.ErrorRowCount > 0 && state.ErrorRowLength >= narrow;
    return gains ? kernels::Chosen<kernels::DitherKernels>().RowsTogether[state.Method] : 1;
}

void DitherRowsTogether(DitherState& state, const BitmapHandle& bitmap, const uint8_t* sources,
                        uint8_t* targets, size_t targetBytes, size_t count) {
    if (count == 1 || count != RowsTogether(state)) {
        for (size_t row = 0; row < count; ++row)
            DitherRow(state, bitmap, sources + row * bitmap.BytesPerLine, targets + row * targetBytes);
        return;
    }
    const size_t width = WidthOf(state, bitmap);
    ZKR_ASSERT(count <= kernels::MostRowsTogether);
    const size_t lowestLag = (count - 1) * RowLag;
    const kernels::DitherKernels& kernels = kernels::Chosen<kernels::DitherKernels>();
    const auto rule = static_cast<size_t>(state.Rule);

    RowReader reader(state, bitmap);
    DitheredRow work[kernels::MostRowsTogether];
    size_t step = 0;
    for (size_t at = 0; at < width + lowestLag; at += step) {
        // Where the lowest row has not begun or the uppermost is at its end they go one by one.
        const size_t shared = at >= lowestLag && at < width ? (width - at) / RowLag * RowLag : 0;
        step = shared > 0 ? std::min(shared, DitherPiece) : RowLag;
        const auto forEachRow = [&](auto visit) {
            for (size_t row = 0; row < count; ++row) {
                const size_t first = at - row * RowLag; // wraps for a row that has not begun
                if (first < width) visit(row, first, std::min(step, width - first));
            }
        };
        forEachRow([&](size_t row, size_t first, size_t pixels) {
            if (first == 0) work[row].Errors = StartLine(state);
            reader.Read(sources + row * bitmap.BytesPerLine, first, pixels, work[row].Quads);
            std::memset(work[row].Quads + pixels * 4, 0, 4);
            if (shared == 0) kernels.Diffuse[state.Method][rule](&work[row], pixels, state.Index);
        });
        if (shared > 0) kernels.DiffuseTogether[state.Method][rule](work, step, state.Index);
        forEachRow([&](size_t row, size_t first, size_t pixels) {
            PackIndices(state, work[row].Indices, pixels, targets + row * targetBytes, first);
        });
    }
}

} // namespace zkr
