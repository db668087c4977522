// The kernels that take rows of samples to rows of other widths, and blend rows with each other. Samples are of 8 or 16
// bits, interleaved in one, three or four channels; what is chosen by them comes in this order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

inline constexpr size_t SampleTypes = 2;    // 8 and 16 bits
inline constexpr size_t ChannelLayouts = 3; // 1, 3 and 4 channels

// A target pixel of the linear rule: Weight / Span of the way from one source pixel to another, rounded down.
struct LinearColumn {
    uint32_t First, Second;
    uint32_t Weight, Span; // Weight is below Span
};

// The widest span of which a sum of two weighted samples is divided by a multiplication.
inline constexpr uint32_t LongestShortSpan = 16;

// Columns one behind the other, and where no span is longer than that their numbers as vectors want them.
struct LinearColumns {
    const LinearColumn* At;
    const uint32_t* Pairs;       // the weights of both pixels, 16 bits each; null where a span is longer
    const uint32_t* Reciprocals; // 65536 / span + 1
    const float* Inverses;       // 1 / span
    bool Doubles;                // of a row of twice the width

    LinearColumns From(size_t first) const {
        return Pairs == nullptr
                   ? LinearColumns{At + first, nullptr, nullptr, nullptr, false}
                   : LinearColumns{At + first, Pairs + first, Reciprocals + first, Inverses + first, Doubles};
    }
};

// A target pixel of the area rule: one source pixel by weight, whole ones behind it, and one more by weight. Where that
// has no weight it need not exist.
struct AverageColumn {
    double FirstWeight, LastWeight, Total;
    uint32_t First, Whole;
};

// Columns one behind the other. The first Steady of them have Whole or one more whole pixels; they are told as so many,
// and behind them two pixels by weight, of which the first may be whole and the other may have none.
struct AverageColumns {
    const AverageColumn* At;
    const uint32_t* Places; // of the first pixels
    const double* First;
    const double* Middle;
    const double* Last;
    const double* Total;
    uint32_t Whole;
    size_t Steady;

    AverageColumns From(size_t first) const {
        return {At + first,   Places + first, First + first, Middle + first,
                Last + first, Total + first,  Whole,         Steady > first ? Steady - first : 0};
    }
};

// A target pixel of the spline rule, at T between two source pixels, with what the derivatives there are multiplied by.
struct SplineColumn {
    uint32_t First, Second;
    float A, T;            // 1 - t and t
    float FirstM, SecondM; // (a^3 - a) / 6 and (t^3 - t) / 6
};

struct SplineColumns {
    const SplineColumn* At;
    bool Doubles; // of a row of twice the width
};

// The first `count` columns make a target row. Columns count source pixels from `base`, where the source begins; no byte
// is read behind the pixels that they need.
template <class Columns>
using ResampleRow = void (*)(const uint8_t* source, uint32_t base, const Columns& columns, size_t count,
                             uint8_t* target);

// The most values that a pixel has among the derivatives of a row.
inline constexpr size_t DerivativePlaces = 4;

struct SplineRow {
    // Second derivatives of a row of natural splines; scratch is as long as they are.
    void (*Solve)(const uint8_t* source, size_t pixels, float* derivatives, float* scratch);
    void (*Evaluate)(const uint8_t* source, const float* derivatives, uint32_t base,
                     const SplineColumns& columns, size_t count, uint8_t* target);
};

struct ResampleKernels {
    ResampleRow<LinearColumns> Linear[SampleTypes][ChannelLayouts];
    ResampleRow<AverageColumns> Average[SampleTypes][ChannelLayouts];
    SplineRow Spline[SampleTypes][ChannelLayouts];

    // sums += row * weight
    void (*AddWeighted[SampleTypes])(const uint8_t* row, double weight, double* sums, size_t samples);
    // target = sums / total, cut to a whole number
    void (*DivideWeighted[SampleTypes])(const double* sums, double total, uint8_t* target, size_t samples);

    // target = the sum of rows by weights, added in their order, / total, cut to a whole number
    void (*AverageRows[SampleTypes])(const uint8_t* const* rows, const double* weights, size_t count,
                                     double total, uint8_t* target, size_t samples);

    // weight / span of the way from one row to another, rounded down; weight is below span.
    void (*Blend[SampleTypes])(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span,
                               uint8_t* target, size_t samples);
    // Of 16 bits, where a falling value goes down by a whole step for each row and what is left is dropped.
    void (*BlendFalling)(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span,
                         uint8_t* target, size_t samples);

    // t from 0 to 1 of the way between the two inner ones of four rows.
    void (*SplineRows[SampleTypes])(const uint8_t* const rows[4], float t, uint8_t* target, size_t samples);
};

} // namespace zkr::kernels
