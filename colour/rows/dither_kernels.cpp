// The kernels of dither_rows.h: every way of diffusing errors meets every rule for the index of a colour.
#include "colour/rows/dither_rows.h"

#include "colour/rows/error_lanes.h"

#include <bit>
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
// pixel with its error: source has its channels, early and late add up to its undivided error as it would be
// if the chosen colour were black. Early is there a little before late.

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
        template <int32_t divisor> ErrorLanes Next(ErrorLanes source, SumLanes early, SumLanes late) const {
            return AddQuotient<divisor>(source, early + late, LoadCell(of.weighted[index]));
        }
    };
    Choice operator()(const ClampedChannels& colour) const { return {*this, rule(colour.Quad)}; }
};

// Both colours, of which the lower is black, are followed up while it is being decided which it will be.
struct TwoLevelsChooser {
    ErrorLanes upper;
    SumLanes weighted;

    explicit TwoLevelsChooser(const IndexParameters& p)
        : upper(Channels(LoadQuad(p.Colours + 1))), weighted(LoadCell(p.Weighted[1])) {}

    struct Choice {
        const TwoLevelsChooser& of;
        ErrorLanes isUpper;

        uint8_t Index() const { return static_cast<uint8_t>(isUpper[0] & 1); }
        ErrorLanes Colour() const { return isUpper & of.upper; }
        template <int32_t divisor> ErrorLanes Next(ErrorLanes source, SumLanes early, SumLanes late) const {
            const ErrorLanes ifUpper = source + Divide<divisor>(Sum(early + of.weighted, late));
            const ErrorLanes ifLower = source + Divide<divisor>(Sum(early, late));
            return isUpper ? ifUpper : ifLower;
        }
    };
    Choice operator()(const ClampedChannels& colour) const {
        constexpr int32_t belowUpper = 128 * 8 - 4 - 1; // the gray is (sum + 4) / 8
        return {*this, WeighedSum(colour) > belowUpper};
    }
};

template <int32_t weight> inline SumLanes Plus(SumLanes sum, SumLanes error) {
    if constexpr (weight == 0)
        return sum;
    else
        return sum + Times<weight>(error);
}

constexpr int32_t NearPowerOfTwo(int32_t weight) {
    return weight == 0 ? 0 : static_cast<int32_t>(std::bit_floor(static_cast<uint32_t>(weight + 1)));
}

using Cells = int32_t (*)[4];

// The cells of one row below that the taps of a pixel reach, kept out of memory until the last of them has
// been met. Cells enter with what the row below them holds, so that all rows have moved up by one when the
// line ends.
template <size_t method, int32_t row, class = std::make_integer_sequence<int32_t, 2 * taps[method].Margin>>
class Window;
template <size_t method, int32_t row, int32_t... cell>
class Window<method, row, std::integer_sequence<int32_t, cell...>> {
    static constexpr const Taps& t = taps[method];
    static constexpr int32_t last = 2 * t.Margin;

  public:
    explicit Window(Cells at) : sums_{LoadCell(at[cell - t.Margin])...} {}
    void Step(Cells at, SumLanes entering, SumLanes error) {
        sums_[last] = Plus<t.Weight(row, t.Margin)>(entering, error);
        StoreCell(at[-t.Margin], Plus<t.Weight(row, -t.Margin)>(sums_[0], error));
        ((sums_[cell] = sums_[cell + 1]), ...);
        ((sums_[cell] = Plus<InnerWeight(cell)>(sums_[cell], error)), ...);
    }
    void Store(Cells at) const { (StoreCell(at[cell - t.Margin], sums_[cell]), ...); }

  private:
    // Of a cell that has moved on by one; that of the last cell is counted when it enters.
    static constexpr int32_t InnerWeight(int32_t place) {
        return place + 1 < last ? t.Weight(row, place + 1 - t.Margin) : 0;
    }

    SumLanes sums_[last + 1];
};

template <size_t method, class Rows = std::make_integer_sequence<int32_t, taps[method].Rows>> class Windows;
template <size_t method, int32_t... row>
class Windows<method, std::integer_sequence<int32_t, row...>> : Window<method, row + 1>... {
    static constexpr const Taps& t = taps[method];

  public:
    explicit Windows(const Cells (&rows)[mostErrorRows]) : Window<method, row + 1>(rows[row])... {}
    void Step(const Cells (&rows)[mostErrorRows], ptrdiff_t pixel, SumLanes error) {
        (Window<method, row + 1>::Step(rows[row] + pixel, Entering<row + 1>(rows, pixel), error), ...);
    }
    void Store(const Cells (&rows)[mostErrorRows], ptrdiff_t pixel) const {
        (Window<method, row + 1>::Store(rows[row] + pixel), ...);
    }

  private:
    template <int32_t below> static SumLanes Entering(const Cells (&rows)[mostErrorRows], ptrdiff_t pixel) {
        if constexpr (below < t.Rows)
            return LoadCell(rows[below][pixel + t.Margin]);
        else
            return SumLanes{};
    }
};

template <size_t method, class Choose>
void Diffuse(const uint8_t* quads, uint8_t* indices, size_t pixels, const IndexParameters& parameters,
             ErrorState& state) {
    constexpr const Taps& t = taps[method];
    constexpr int32_t nearPower =
        NearPowerOfTwo(t.Weight(0, 1)); // the only shift on the way to the next pixel
    const Choose choose(parameters);
    SumLanes first = LoadCell(state.Sums[0]);
    SumLanes second = LoadCell(state.Sums[1]);
    const Cells rows[mostErrorRows] = {state.Rows[0], state.Rows[1], state.Rows[2]};
    Windows<method> windows(rows);
    ErrorLanes pixel = Channels(LoadQuad(quads)) + LoadLanes<ErrorLanes>(state.Error);
    const auto count = static_cast<ptrdiff_t>(pixels);
    for (ptrdiff_t i = 0; i < count; ++i) {
        const ClampedChannels colour = Clamp(pixel);
        const auto choice = choose(colour);
        const SumLanes farthest = LoadCell(rows[0][i + t.Margin]);
        const auto channels = reinterpret_cast<SumLanes>(colour.Lanes);
        const SumLanes waiting = t.Margin == 1 ? farthest : first;
        pixel = choice.template Next<t.Divisor>(Channels(LoadQuad(quads + (i + 1) * 4)),
                                                Plus<t.Weight(0, 1) - nearPower>(waiting, channels),
                                                Plus<nearPower>(SumLanes{}, channels));
        indices[i] = choice.Index();
        const auto missed = reinterpret_cast<SumLanes>(colour.Lanes - choice.Colour());
        first = Plus<t.Weight(0, 2)>(t.Margin == 2 ? farthest : second, missed);
        second = farthest;
        windows.Step(rows, i, missed);
    }
    windows.Store(rows, count);
    std::memcpy(state.Error, &pixel, sizeof pixel);
    StoreCell(state.Sums[0], first);
    StoreCell(state.Sums[1], second);
    for (int32_t row = 0; row < t.Rows; ++row)
        state.Rows[row] += pixels;
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
