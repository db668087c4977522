// The kernels of dither_rows.h: every way of diffusing errors meets every rule for the index of a colour.
#include "colour/kernels/dither_rows.h"

#include "colour/kernels/error_lanes.h"
#include "kernels/family.h"

#include <bit>
#include <utility>

namespace zkr::kernels {
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
        return __builtin_expect(index == UnknownIndex, 0) ? Ask(parameters, cell) : index;
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

template <class Rule, size_t rows> struct Chooser {
    Rule rule;
    const RGBQUAD* colours;
    const int32_t (*weighted)[4];

    explicit Chooser(const IndexParameters& p) : rule(p), colours(p.Colours), weighted(p.Weighted) {}

    struct Choice {
        const Chooser& of;
        uint32_t indices[rows];

        uint8_t Index(size_t row) const { return static_cast<uint8_t>(indices[row]); }
        ErrorLanes<rows> Colour() const {
            return SideBySide<rows>(
                [&](size_t row) { return Channels(LoadQuad(of.colours + indices[row])); });
        }
        template <int32_t divisor>
        ErrorLanes<rows> Next(ErrorLanes<rows> source, SumLanes<rows> early, SumLanes<rows> late) const {
            const SumLanes<rows> chosen =
                SideBySide<rows>([&](size_t row) { return LoadCell(of.weighted[indices[row]]); });
            return AddQuotient<divisor>(source, early + late, chosen);
        }
    };
    Choice operator()(const ClampedChannels<rows>& colour) const {
        Choice choice{*this, {}};
        for (size_t row = 0; row < rows; ++row)
            choice.indices[row] = rule(colour.Quad(row));
        return choice;
    }
};

// Both colours, of which the lower is black, are followed up while it is being decided which it will be.
template <size_t rows> struct TwoLevelsChooser {
    ErrorLanes<rows> upper;
    SumLanes<rows> weighted;

    explicit TwoLevelsChooser(const IndexParameters& p)
        : upper(SideBySide<rows>([&](size_t) { return Channels(LoadQuad(p.Colours + 1)); })),
          weighted(SideBySide<rows>([&](size_t) { return LoadCell(p.Weighted[1]); })) {}

    struct Choice {
        const TwoLevelsChooser& of;
        ErrorLanes<rows> isUpper;

        uint8_t Index(size_t row) const { return static_cast<uint8_t>(isUpper[row * 4] & 1); }
        ErrorLanes<rows> Colour() const { return isUpper & of.upper; }
        template <int32_t divisor>
        ErrorLanes<rows> Next(ErrorLanes<rows> source, SumLanes<rows> early, SumLanes<rows> late) const {
            const ErrorLanes<rows> ifUpper = source + Divide<divisor>(Sum(early + of.weighted, late));
            const ErrorLanes<rows> ifLower = source + Divide<divisor>(Sum(early, late));
            return isUpper ? ifUpper : ifLower;
        }
    };
    Choice operator()(const ClampedChannels<rows>& colour) const {
        constexpr int32_t belowUpper = 128 * 8 - 4 - 1; // the gray is (sum + 4) / 8
        return {*this, WeighedSum(colour) > belowUpper};
    }
};

template <int32_t weight, class V> inline V Plus(V sum, V error) {
    if constexpr (weight == 0)
        return sum;
    else
        return sum + Times<weight>(error);
}

constexpr int32_t NearPowerOfTwo(int32_t weight) {
    return weight == 0 ? 0 : static_cast<int32_t>(std::bit_floor(static_cast<uint32_t>(weight + 1)));
}

using Cells = int32_t (*)[4];

// How far a row so many rows below is behind.
constexpr ptrdiff_t Behind(size_t rows) {
    return static_cast<ptrdiff_t>(rows * RowLag);
}

// The cells of rows in the same lanes, by that of the first one.
template <size_t rows> inline SumLanes<rows> LoadCells(Cells at) {
    return SideBySide<rows>([&](size_t row) { return LoadCell(at[-Behind(row)]); });
}
template <size_t rows> inline void StoreCells(Cells at, SumLanes<rows> cells) {
    for (size_t row = 0; row < rows; ++row)
        StoreCell(at[-Behind(row)], LanesOfRow(cells, row));
}

// The cells of one row below that the taps of a pixel reach, kept out of memory until the last of them has
// been met. Cells enter with what the row below them holds, so that all rows have moved up by one when the
// line ends.
template <size_t method, size_t rows, int32_t row,
          class = std::make_integer_sequence<int32_t, 2 * DitherMethods[method].Diffusion.Margin>>
class Window;
template <size_t method, size_t rows, int32_t row, int32_t... cell>
class Window<method, rows, row, std::integer_sequence<int32_t, cell...>> {
    static constexpr const Taps& t = DitherMethods[method].Diffusion;
    static constexpr int32_t last = 2 * t.Margin;
    using Sums = SumLanes<rows>;

  public:
    explicit Window(Cells at) : sums_{LoadCells<rows>(at + cell - t.Margin)...} {}
    void Step(Cells at, Sums entering, Sums error) {
        sums_[last] = Plus<t.Weight(row, t.Margin)>(entering, error);
        StoreCells<rows>(at - t.Margin, Plus<t.Weight(row, -t.Margin)>(sums_[0], error));
        ((sums_[cell] = sums_[cell + 1]), ...);
        ((sums_[cell] = Plus<InnerWeight(cell)>(sums_[cell], error)), ...);
    }
    void Store(Cells at) const { (StoreCells<rows>(at + cell - t.Margin, sums_[cell]), ...); }

  private:
    // Of a cell that has moved on by one; that of the last cell is counted when it enters.
    static constexpr int32_t InnerWeight(int32_t place) {
        return place + 1 < last ? t.Weight(row, place + 1 - t.Margin) : 0;
    }

    Sums sums_[last + 1];
};

template <size_t method, size_t rows,
          class Rows = std::make_integer_sequence<int32_t, DitherMethods[method].Diffusion.Rows>>
class Windows;
template <size_t method, size_t rows, int32_t... row>
class Windows<method, rows, std::integer_sequence<int32_t, row...>> : Window<method, rows, row + 1>... {
    static constexpr const Taps& t = DitherMethods[method].Diffusion;
    using Sums = SumLanes<rows>;

  public:
    Windows(const Cells (&below)[MostErrorRows], ptrdiff_t pixel)
        : Window<method, rows, row + 1>(below[row] + pixel)... {}
    void Step(const Cells (&below)[MostErrorRows], ptrdiff_t pixel, Sums error) {
        (Window<method, rows, row + 1>::Step(below[row] + pixel, Entering<row + 1>(below, pixel), error),
         ...);
    }
    void Store(const Cells (&below)[MostErrorRows], ptrdiff_t pixel) const {
        (Window<method, rows, row + 1>::Store(below[row] + pixel), ...);
    }

  private:
    template <int32_t from> static Sums Entering(const Cells (&below)[MostErrorRows], ptrdiff_t pixel) {
        if constexpr (from < t.Rows)
            return LoadCells<rows>(below[from] + pixel + t.Margin);
        else
            return Sums{};
    }
};

// Rows that follow each other, in the same lanes. A strand and the next one differ only in the place of their
// rows, so that the steps of two can be done in turn: while one waits for its colours the other goes on.
// Places are those of the first row's pixel.
template <size_t method, size_t rows, class Choose> class Strand {
    static constexpr const Taps& t = DitherMethods[method].Diffusion;
    static constexpr int32_t nearPower =
        NearPowerOfTwo(t.Weight(0, 1)); // the only shift on the way to the next pixel
    using Sums = SumLanes<rows>;
    using Errors = ErrorLanes<rows>;

  public:
    Strand(const DitheredRow* work, const Cells (&below)[MostErrorRows], ptrdiff_t place)
        : pixel_(Source(work, 0) + SideBySide<rows>([&](size_t row) {
                     return LoadLanes<ErrorLanes<1>>(work[row].Errors.Error);
                 })),
          first_(SideBySide<rows>([&](size_t row) { return LoadCell(work[row].Errors.Sums[0]); })),
          second_(SideBySide<rows>([&](size_t row) { return LoadCell(work[row].Errors.Sums[1]); })),
          windows_(below, place) {}

    void Step(const Choose& choose, DitheredRow* work, size_t pixel, const Cells (&below)[MostErrorRows],
              ptrdiff_t place) {
        const ClampedChannels<rows> colour = Clamp(pixel_);
        const auto choice = choose(colour);
        const Sums farthest = LoadCells<rows>(below[0] + place + t.Margin);
        const Sums channels = AsSums(colour.Lanes);
        const Sums waiting = t.Margin == 1 ? farthest : first_;
        pixel_ = choice.template Next<t.Divisor>(Source(work, pixel + 1),
                                                 Plus<t.Weight(0, 1) - nearPower>(waiting, channels),
                                                 Plus<nearPower>(Sums{}, channels));
        for (size_t row = 0; row < rows; ++row)
            work[row].Indices[pixel] = choice.Index(row);
        const Sums missed = AsSums(colour.Lanes - choice.Colour());
        first_ = Plus<t.Weight(0, 2)>(t.Margin == 2 ? farthest : second_, missed);
        second_ = farthest;
        windows_.Step(below, place, missed);
    }

    void Store(DitheredRow* work, const Cells (&below)[MostErrorRows], ptrdiff_t place) const {
        windows_.Store(below, place);
        for (size_t row = 0; row < rows; ++row) {
            StoreCell(work[row].Errors.Error, LanesOfRow(pixel_, row));
            StoreCell(work[row].Errors.Sums[0], LanesOfRow(first_, row));
            StoreCell(work[row].Errors.Sums[1], LanesOfRow(second_, row));
        }
    }

  private:
    static Errors Source(const DitheredRow* work, size_t pixel) {
        return SideBySide<rows>([&](size_t row) { return Channels(LoadQuad(work[row].Quads + pixel * 4)); });
    }

    Errors pixel_;
    Sums first_;
    Sums second_;
    Windows<method, rows> windows_;
};

template <size_t method, size_t rows, class Choose, size_t... strand>
[[gnu::flatten]] void DiffuseStrands(std::index_sequence<strand...>, DitheredRow* work, size_t pixels,
                                     const IndexParameters& parameters) {
    const Choose choose(parameters);
    const auto& first = work->Errors.Rows;
    const Cells below[MostErrorRows] = {first[0], first[1], first[2]};
    Strand<method, rows, Choose> strands[] = {{work + strand * rows, below, -Behind(strand * rows)}...};
    for (size_t i = 0; i < pixels; ++i) {
        const auto place = static_cast<ptrdiff_t>(i);
        (strands[strand].Step(choose, work + strand * rows, i, below, place - Behind(strand * rows)), ...);
    }
    const auto end = static_cast<ptrdiff_t>(pixels);
    (strands[strand].Store(work + strand * rows, below, end - Behind(strand * rows)), ...);
    for (size_t row = 0; row < sizeof...(strand) * rows; ++row)
        for (int32_t level = 0; level < DitherMethods[method].Diffusion.Rows; ++level)
            work[row].Errors.Rows[level] += pixels;
}

template <size_t method, size_t rows, size_t strands, class Choose>
void Diffuse(DitheredRow* work, size_t pixels, const IndexParameters& parameters) {
    DiffuseStrands<method, rows, Choose>(std::make_index_sequence<strands>{}, work, pixels, parameters);
}

void Shift(uint8_t* bytes, size_t count, const uint8_t* up, const uint8_t* down) {
    for (; count > 0; bytes += PatternBytes) {
        const size_t step = count < PatternBytes ? count : PatternBytes;
        for (size_t i = 0; i < step; ++i) {
            const int32_t value = bytes[i] + up[i] - down[i];
            bytes[i] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
        }
        count -= step;
    }
}

void Compare(uint8_t* bytes, size_t count, const uint8_t* thresholds, uint8_t mark) {
    for (; count > 0; bytes += PatternBytes) {
        const size_t step = count < PatternBytes ? count : PatternBytes;
        for (size_t i = 0; i < step; ++i)
            bytes[i] = bytes[i] > thresholds[i] ? mark : 0;
        count -= step;
    }
}

template <size_t method, size_t rows, size_t strands>
constexpr void PlaceDiffusion(DiffuseKernel (&kernels)[IndexRules]) {
    const auto place = [&](IndexRule rule, DiffuseKernel kernel) {
        kernels[static_cast<size_t>(rule)] = kernel;
    };
    place(IndexRule::TwoLevels, Diffuse<method, rows, strands, TwoLevelsChooser<rows>>);
    place(IndexRule::FourLevels, Diffuse<method, rows, strands, Chooser<GrayRule<6>, rows>>);
    place(IndexRule::Slices, Diffuse<method, rows, strands, Chooser<SliceRule, rows>>);
    place(IndexRule::Cube, Diffuse<method, rows, strands, Chooser<CubeRule, rows>>);
    place(IndexRule::Table, Diffuse<method, rows, strands, Chooser<TableRule, rows>>);
}

// Rows go together where lanes have room for several; in two strands, unless one alone has more sums to keep
// than there are registers.
template <size_t method> constexpr void PlaceDiffusions(DitherKernels& kernels) {
    kernels.RowsTogether[method] = 1;
    if constexpr (DitherMethods[method].Diffuses()) {
        constexpr size_t strands = DitherMethods[method].Diffusion.Margin < 3 ? 2 : 1;
        static_assert(RowsInLanes * strands <= MostRowsTogether);
        PlaceDiffusion<method, 1, 1>(kernels.Diffuse[method]);
        if constexpr (RowsInLanes > 1) {
            kernels.RowsTogether[method] = RowsInLanes * strands;
            PlaceDiffusion<method, RowsInLanes, strands>(kernels.DiffuseTogether[method]);
        }
    }
}

template <size_t... method> constexpr DitherKernels MakeKernels(std::index_sequence<method...>) {
    DitherKernels kernels = {};
    kernels.Index[static_cast<size_t>(IndexRule::TwoLevels)] = IndexRow<GrayRule<7>>;
    kernels.Index[static_cast<size_t>(IndexRule::FourLevels)] = IndexRow<GrayRule<6>>;
    kernels.Index[static_cast<size_t>(IndexRule::Slices)] = IndexRow<SliceRule>;
    kernels.Index[static_cast<size_t>(IndexRule::Cube)] = IndexRow<CubeRule>;
    kernels.Index[static_cast<size_t>(IndexRule::Table)] = IndexRow<TableRule>;
    (PlaceDiffusions<method>(kernels), ...);
    kernels.Shift = Shift;
    kernels.Compare = Compare;
    return kernels;
}

} // namespace

template <>
constinit const DitherKernels
    Compiled<DitherKernels, ThisSet>::Table = MakeKernels(std::make_index_sequence<MethodCount>());

} // namespace zkr::kernels
