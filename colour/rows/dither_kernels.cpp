// The kernels of dither_rows.h: every way of diffusing errors meets every rule for the index of a colour.
#include "colour/rows/dither_rows.h"

#include "colour/rows/error_lanes.h"

#include <utility>

namespace zkr::rows {
namespace {

inline uint32_t LoadQuad(const void* place) {
    uint32_t quad;
    std::memcpy(&quad, place, sizeof quad);
    return quad;
}
inline uint32_t Byte(uint32_t quad, uint32_t shift) {
    return quad >> shift & 0xFF;
}

// Rules: from a pixel of four bytes, the fourth of any value, to an index.

template <uint32_t shift> struct GrayRule {
    explicit GrayRule(const IndexParameters&) {}
    uint32_t operator()(uint32_t quad) const {
        return (2 * Byte(quad, 16) + 5 * Byte(quad, 8) + Byte(quad, 0) + 4) >> (3 + shift);
    }
};

struct SliceRule {
    Slice slices[3];
    uint32_t nonZero;
    explicit SliceRule(const IndexParameters& p)
        : slices{p.Slices[0], p.Slices[1], p.Slices[2]}, nonZero(p.NonZero) {}
    uint32_t operator()(uint32_t quad) const {
        const uint32_t index = (quad >> slices[0].Shift & slices[0].Mask) |
                               (quad >> slices[1].Shift & slices[1].Mask) |
                               (quad >> slices[2].Shift & slices[2].Mask);
        return index | (index != 0 ? nonZero : 0);
    }
};

struct CubeRule {
    explicit CubeRule(const IndexParameters&) {}
    uint32_t operator()(uint32_t quad) const {
        return Byte(quad, 16) / 51 * 36 + Byte(quad, 8) / 51 * 6 + Byte(quad, 0) / 51;
    }
};

struct TableRule {
    const IndexParameters& parameters;
    const uint8_t* known;
    explicit TableRule(const IndexParameters& p) : parameters(p), known(p.Known) {}
    uint32_t operator()(uint32_t quad) const {
        const uint32_t cell = (quad >> 9 & 0x7C00) | (quad >> 6 & 0x03E0) | (quad >> 3 & 0x001F);
        const uint32_t index = known[cell];
        return __builtin_expect(index == unknownIndex, 0) ? Ask(parameters, cell) : index;
    }
    [[gnu::noinline, gnu::cold]] static uint32_t Ask(const IndexParameters& p, uint32_t cell) {
        return p.Known[cell] = p.Find(p.FindContext, cell);
    }
};

template <class Rule>
void IndexRow(const uint8_t* __restrict quads, uint8_t* __restrict indices, size_t pixels,
              const IndexParameters& parameters) {
    const Rule rule(parameters);
    for (size_t i = 0; i < pixels; ++i)
        indices[i] = static_cast<uint8_t>(rule(LoadQuad(quads + i * 4)));
}

// Choosers: as rules, but they give what diffusion needs to know of the chosen colour. Next gives the next
// pixel with its error: source has its channels, waiting the errors so far, undivided, and own what this
// pixel would add if the chosen colour were black.

template <class Rule> struct Chooser {
    Rule rule;
    const RGBQUAD* colours;
    const int32_t (*weighted)[4];

    explicit Chooser(const IndexParameters& p) : rule(p), colours(p.Colours), weighted(p.Weighted) {}

    struct Choice {
        const Chooser& of;
        uint32_t index;

        uint8_t Index() const { return static_cast<uint8_t>(index); }
        ErrorLanes Colour() const { return Channels(LoadQuad(of.colours + index)); }
        template <int32_t divisor> ErrorLanes Next(ErrorLanes source, SumLanes waiting, SumLanes own) const {
            return AddQuotient<divisor>(source, waiting + own, LoadCell(of.weighted[index]));
        }
    };
    Choice operator()(const ClampedChannels& colour) const { return {*this, rule(colour.Quad)}; }
};

// Both colours are followed up while it is being decided which it will be.
struct TwoLevelsChooser {
    ErrorLanes colours[2];
    SumLanes weighted[2];

    explicit TwoLevelsChooser(const IndexParameters& p)
        : colours{Channels(LoadQuad(p.Colours)), Channels(LoadQuad(p.Colours + 1))},
          weighted{LoadCell(p.Weighted[0]), LoadCell(p.Weighted[1])} {}

    struct Choice {
        const TwoLevelsChooser& of;
        ErrorLanes isUpper;

        uint8_t Index() const { return static_cast<uint8_t>(isUpper[0] & 1); }
        ErrorLanes Colour() const { return isUpper ? of.colours[1] : of.colours[0]; }
        template <int32_t divisor> ErrorLanes Next(ErrorLanes source, SumLanes waiting, SumLanes own) const {
            const ErrorLanes ifUpper = Divide<divisor>(waiting + of.weighted[1] + own);
            const ErrorLanes ifLower = Divide<divisor>(waiting + of.weighted[0] + own);
            return source + (isUpper ? ifUpper : ifLower);
        }
    };
    Choice operator()(const ClampedChannels& colour) const {
        constexpr int32_t belowUpper = 128 * 8 - 4 - 1; // the gray is (sum + 4) / 8
        return {*this, WeighedSum(colour) > belowUpper};
    }
};

template <int32_t weight> inline void Add(int32_t (&cell)[4], SumLanes error) {
    if constexpr (weight != 0) StoreCell(cell, LoadCell(cell) + Times<weight>(error));
}
template <int32_t weight> inline SumLanes Plus(SumLanes sum, SumLanes error) {
    if constexpr (weight == 0)
        return sum;
    else
        return sum + Times<weight>(error);
}

// Spreads the error of one pixel over the rows below. The last cell that a row's taps reach is taken over
// from the row below it, so that all rows have moved up by one at the end of the line.
template <size_t method> struct Spreader {
    static constexpr const Taps& t = taps[method];

    template <int32_t row, int32_t... column>
    static void SpreadRow(int32_t (*const (&rows)[mostErrorRows])[4], SumLanes error,
                          std::integer_sequence<int32_t, column...>) {
        SumLanes last{};
        if constexpr (row < t.Rows) last = LoadCell(rows[row][t.Margin]);
        StoreCell(rows[row - 1][t.Margin], Plus<t.Weight(row, t.Margin)>(last, error));
        (Add<t.Weight(row, column - t.Margin)>(rows[row - 1][column - t.Margin], error), ...);
    }
    template <int32_t... row>
    static void Spread(int32_t (*const (&rows)[mostErrorRows])[4], SumLanes error,
                       std::integer_sequence<int32_t, row...>) {
        (SpreadRow<row + 1>(rows, error, std::make_integer_sequence<int32_t, 2 * t.Margin>()), ...);
    }
    static void Spread(int32_t (*const (&rows)[mostErrorRows])[4], SumLanes error) {
        Spread(rows, error, std::make_integer_sequence<int32_t, t.Rows>());
    }
};

template <size_t method, class Choose>
void Diffuse(const uint8_t* quads, uint8_t* indices, size_t pixels, const IndexParameters& parameters,
             ErrorState& state) {
    constexpr const Taps& t = taps[method];
    const Choose choose(parameters);
    SumLanes first = LoadCell(state.Sums[0]);
    SumLanes second = LoadCell(state.Sums[1]);
    int32_t(*rows[mostErrorRows])[4] = {state.Rows[0], state.Rows[1], state.Rows[2]};
    ErrorLanes pixel = Channels(LoadQuad(quads)) + LoadLanes<ErrorLanes>(state.Error);
    for (size_t i = 0; i < pixels; ++i) {
        const ClampedChannels colour = Clamp(pixel);
        const auto choice = choose(colour);
        const SumLanes farthest = LoadCell(rows[0][t.Margin]);
        const auto own = Plus<t.Weight(0, 1)>(SumLanes{}, reinterpret_cast<SumLanes>(colour.Lanes));
        pixel = choice.template Next<t.Divisor>(Channels(LoadQuad(quads + (i + 1) * 4)),
                                                t.Margin == 1 ? farthest : first, own);
        indices[i] = choice.Index();
        const auto missed = reinterpret_cast<SumLanes>(colour.Lanes - choice.Colour());
        first = Plus<t.Weight(0, 2)>(t.Margin == 2 ? farthest : second, missed);
        second = farthest;
        Spreader<method>::Spread(rows, missed);
        for (int32_t row = 0; row < t.Rows; ++row)
            ++rows[row];
    }
    std::memcpy(state.Error, &pixel, sizeof pixel);
    StoreCell(state.Sums[0], first);
    StoreCell(state.Sums[1], second);
    for (int32_t row = 0; row < t.Rows; ++row)
        state.Rows[row] = rows[row];
}

void Shift(uint8_t* bytes, size_t count, const uint8_t* up, const uint8_t* down) {
    for (; count > 0; bytes += patternBytes) {
        const size_t step = count < patternBytes ? count : patternBytes;
        for (size_t i = 0; i < step; ++i) {
            const int32_t value = bytes[i] + up[i] - down[i];
            bytes[i] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
        }
        count -= step;
    }
}

void Compare(uint8_t* bytes, size_t count, const uint8_t* thresholds, uint8_t mark) {
    for (; count > 0; bytes += patternBytes) {
        const size_t step = count < patternBytes ? count : patternBytes;
        for (size_t i = 0; i < step; ++i)
            bytes[i] = bytes[i] > thresholds[i] ? mark : 0;
        count -= step;
    }
}

template <size_t method> constexpr void PlaceDiffusion(DitherKernels& kernels) {
    DiffuseKernel* row = kernels.Diffuse[method];
    row[static_cast<size_t>(IndexRule::TwoLevels)] = Diffuse<method, TwoLevelsChooser>;
    row[static_cast<size_t>(IndexRule::FourLevels)] = Diffuse<method, Chooser<GrayRule<6>>>;
    row[static_cast<size_t>(IndexRule::Slices)] = Diffuse<method, Chooser<SliceRule>>;
    row[static_cast<size_t>(IndexRule::Cube)] = Diffuse<method, Chooser<CubeRule>>;
    row[static_cast<size_t>(IndexRule::Table)] = Diffuse<method, Chooser<TableRule>>;
}

template <size_t... method> constexpr DitherKernels MakeKernels(std::index_sequence<method...>) {
    DitherKernels kernels = {};
    kernels.Index[static_cast<size_t>(IndexRule::TwoLevels)] = IndexRow<GrayRule<7>>;
    kernels.Index[static_cast<size_t>(IndexRule::FourLevels)] = IndexRow<GrayRule<6>>;
    kernels.Index[static_cast<size_t>(IndexRule::Slices)] = IndexRow<SliceRule>;
    kernels.Index[static_cast<size_t>(IndexRule::Cube)] = IndexRow<CubeRule>;
    kernels.Index[static_cast<size_t>(IndexRule::Table)] = IndexRow<TableRule>;
    (PlaceDiffusion<method + 1>(kernels), ...);
    kernels.Shift = Shift;
    kernels.Compare = Compare;
    return kernels;
}

} // namespace

namespace ZKR_KERNEL_SET {
extern const DitherKernels ditherKernels;
constexpr DitherKernels ditherKernels = MakeKernels(std::make_index_sequence<diffusionMethods - 1>());
} // namespace ZKR_KERNEL_SET

} // namespace zkr::rows
