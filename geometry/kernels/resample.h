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

// A target pixel of the area rule: one source pixel by weight, whole ones behind it, and one more by weight. Where that
// has no weight it need not exist.
struct AverageColumn {
    double FirstWeight, LastWeight, Total;
    uint32_t First, Whole;
};

// A target pixel of the spline rule, at T between two source pixels, with what the derivatives there are multiplied by.
struct SplineColumn {
    uint32_t First, Second;
    float A, T;            // 1 - t and t
    float FirstM, SecondM; // (a^3 - a) / 6 and (t^3 - t) / 6
};

// The first `count` columns make a target row. Columns count source pixels from `base`, where the source begins.
template <class Column>
using ResampleRow = void (*)(const uint8_t* source, uint32_t base, const Column* columns, size_t count,
                             uint8_t* target);

struct SplineRow {
    // Second derivatives of a row of natural splines, one for each channel; scratch is as long as they are.
    void (*Solve)(const uint8_t* source, size_t pixels, float* derivatives, float* scratch);
    void (*Evaluate)(const uint8_t* source, const float* derivatives, uint32_t base,
                     const SplineColumn* columns, size_t count, uint8_t* target);
};

struct ResampleKernels {
    ResampleRow<LinearColumn> Linear[SampleTypes][ChannelLayouts];
    ResampleRow<AverageColumn> Average[SampleTypes][ChannelLayouts];
    SplineRow Spline[SampleTypes][ChannelLayouts];

    // sums += row * weight
    void (*AddWeighted[SampleTypes])(const uint8_t* row, double weight, double* sums, size_t samples);
    // target = sums / total, cut to a whole number
    void (*DivideWeighted[SampleTypes])(const double* sums, double total, uint8_t* target, size_t samples);
    void (*AddWhole[SampleTypes])(const uint8_t* row, uint64_t* sums, size_t samples);
    void (*DivideWhole[SampleTypes])(const uint64_t* sums, uint64_t rows, uint8_t* target, size_t samples);

    // weight / span of the way from one row to another, rounded down; weight is below span.
    void (*Blend[SampleTypes])(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span,
                               uint8_t* target, size_t samples);
    // Of 16 bits, where a falling value goes down by a whole step for each row and what is left is dropped.
    void (*BlendFalling)(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span,
                         uint8_t* target, size_t samples);

    // The second derivatives at the two inner ones of four rows.
    void (*SolveRows[SampleTypes])(const uint8_t* const rows[4], float* first, float* second, size_t samples);
    // t from 0 to 1 of the way from one row to another.
    void (*EvaluateRows[SampleTypes])(const uint8_t* first, const uint8_t* second, const float* firstM,
                                      const float* secondM, float t, uint8_t* target, size_t samples);
};

} // namespace zkr::kernels
