// Rows of samples made wider or narrower, and rows blended with each other. Floating point is worked out in the order in
// which it is written: regrouping changes bytes.
#include "geometry/kernels/resample.h"

#include "geometry/kernels/samples.h"
#include "kernels/family.h"
#if defined(__AVX2__)
#include "geometry/kernels/resample_avx2.h"
#endif

#include <type_traits>

namespace zkr::kernels {

namespace {

template <typename Sample> constexpr double Largest = static_cast<Sample>(~0);

template <typename Number> constexpr Number Clamp(Number value, Number largest) {
    return value < 0 ? 0 : value > largest ? largest : value;
}

template <typename Sample, size_t channels>
void Linear(const uint8_t* source, uint32_t base, const LinearColumns& columns, size_t count,
            uint8_t* target) {
    size_t i = 0;
#if defined(__AVX2__)
    if constexpr (channels > 1)
        if (columns.Pairs != nullptr)
            i = LinearVectors<Sample, channels>(source, base, columns, count, target);
#endif
    for (; i < count; ++i) {
        const LinearColumn& column = columns.At[i];
        const size_t first = size_t{column.First - base} * channels;
        const size_t second = size_t{column.Second - base} * channels;
        const bool isShort = sizeof(Sample) == 1 && columns.Pairs != nullptr;
        const uint64_t firstWeight = isShort ? columns.Pairs[i] & 0xFFFF : column.Span - column.Weight;
        for (size_t c = 0; c < channels; ++c) {
            const uint64_t sum = Load<Sample>(source, first + c) * firstWeight +
                                 Load<Sample>(source, second + c) * uint64_t{column.Weight};
            Store<Sample>(target, i * channels + c,
                          static_cast<uint32_t>(isShort ? sum * columns.Reciprocals[i] >> 16 : sum / column.Span));
        }
    }
}

template <typename Sample, size_t channels>
void Average(const uint8_t* source, uint32_t base, const AverageColumns& columns, size_t count,
             uint8_t* target) {
    size_t i = 0;
#if defined(__AVX2__)
    i = AverageVectors<Sample, channels>(source, base, columns, count, target);
#endif
    for (; i < count; ++i) {
        const AverageColumn& column = columns.At[i];
        const size_t first = size_t{column.First - base} * channels;
        const size_t last = first + (size_t{column.Whole} + 1) * channels;
        for (size_t c = 0; c < channels; ++c) {
            double sum = Load<Sample>(source, first + c) * column.FirstWeight;
            for (size_t at = first + channels; at < last; at += channels)
                sum += Load<Sample>(source, at + c);
            if (column.LastWeight != 0) sum += Load<Sample>(source, last + c) * column.LastWeight;
            const double mean = Clamp(sum / column.Total, Largest<Sample>);
            Store<Sample>(target, i * channels + c, static_cast<uint32_t>(mean));
        }
    }
}

// Flat stretches cut the elimination.
template <typename Sample, size_t channels>
void Eliminate(const uint8_t* source, size_t pixels, float* m, float* u) {
    for (size_t c = 0; c < channels; ++c)
        m[c] = u[c] = m[(pixels - 1) * channels + c] = 0;
    for (size_t i = channels; i < (pixels - 1) * channels; ++i) {
        const int32_t bend = (Load<Sample>(source, i + channels) + Load<Sample>(source, i - channels) -
                              2 * Load<Sample>(source, i)) *
                             6;
        m[i] = bend == 0 ? 0 : -1.0f / (m[i - channels] + 4.0f);
        u[i] = bend == 0 ? 0 : (u[i - channels] - static_cast<float>(bend)) * m[i];
    }
}

// Which values take part is as much the rule as how: of the last pixel but one all three channels, else only the last of
// them; and the first values of the row that are not reached keep what the elimination left.
template <typename Sample, size_t channels>
void Solve(const uint8_t* source, size_t pixels, float* m, float* u) {
    if (pixels < 3) {
        for (size_t i = 0; i < pixels * channels; ++i)
            m[i] = 0;
        return;
    }
    Eliminate<Sample, channels>(source, pixels, m, u);
    constexpr size_t lastCount = sizeof(Sample) == 1 ? channels : 1;
    size_t at = (pixels - 1) * channels;
    for (size_t taken = channels == 3 ? 3 : 1; taken > 0; --taken) {
        --at;
        m[at] = u[at];
    }
    for (size_t count = (pixels - 3) * channels; count >= lastCount; --count) {
        --at;
        m[at] = m[at] * m[at + channels] + u[at];
    }
}

template <typename Sample> uint32_t Round(float value) {
    return static_cast<uint32_t>(
        Clamp(static_cast<int32_t>(value + 0.5f), static_cast<int32_t>(Largest<Sample>)));
}

template <typename Sample, size_t channels>
void Evaluate(const uint8_t* source, const float* m, uint32_t base, const SplineColumn* columns, size_t count,
              uint8_t* target) {
    for (size_t i = 0; i < count; ++i) {
        const SplineColumn& column = columns[i];
        const size_t first = size_t{column.First - base} * channels;
        const size_t second = size_t{column.Second - base} * channels;
        for (size_t c = 0; c < channels; ++c) {
            const float value = column.A * Load<Sample>(source, first + c) +
                                column.T * Load<Sample>(source, second + c) + column.FirstM * m[first + c] +
                                column.SecondM * m[second + c];
            Store<Sample>(target, i * channels + c, Round<Sample>(value));
        }
    }
}

template <typename Sample> void AddWeighted(const uint8_t* row, double weight, double* sums, size_t samples) {
    for (size_t i = 0; i < samples; ++i)
        sums[i] += Load<Sample>(row, i) * weight;
}

template <typename Sample>
void DivideWeighted(const double* sums, double total, uint8_t* target, size_t samples) {
    for (size_t i = 0; i < samples; ++i)
        Store<Sample>(target, i, static_cast<uint32_t>(sums[i] / total));
}

template <typename Sample> void AddWhole(const uint8_t* row, uint64_t* sums, size_t samples) {
    for (size_t i = 0; i < samples; ++i)
        sums[i] += Load<Sample>(row, i);
}

template <typename Sample>
void DivideWhole(const uint64_t* sums, uint64_t rows, uint8_t* target, size_t samples) {
    for (size_t i = 0; i < samples; ++i)
        Store<Sample>(target, i, static_cast<uint32_t>(sums[i] / rows));
}

// The longest span by which sums are divided with a multiplication by 2^shift / span + 1: what that is too much must not
// reach a whole in any sum.
template <typename Sample>
constexpr uint32_t LongestMultipliedSpan = sizeof(Sample) == 1 ? LongestShortSpan : 256;
template <typename Sample> constexpr uint32_t ReciprocalShift = sizeof(Sample) == 1 ? 16 : 32;

template <typename Sample>
void Blend(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span, uint8_t* target,
           size_t samples) {
    using Sum = std::conditional_t<sizeof(Sample) == 1, uint16_t, uint32_t>;
    using Product = std::conditional_t<sizeof(Sample) == 1, uint32_t, uint64_t>;
    if (span > LongestMultipliedSpan<Sample>) {
        for (size_t i = 0; i < samples; ++i) {
            const uint64_t sum = uint64_t{Load<Sample>(first, i)} * (span - weight) +
                                 uint64_t{Load<Sample>(second, i)} * weight;
            Store<Sample>(target, i, static_cast<uint32_t>(sum / span));
        }
        return;
    }
    if (span == 2) {
        for (size_t i = 0; i < samples; ++i) {
            const uint32_t a = Load<Sample>(first, i), b = Load<Sample>(second, i);
            Store<Sample>(target, i, (a & b) + ((a ^ b) >> 1));
        }
        return;
    }
    const auto reciprocal = static_cast<Product>((uint64_t{1} << ReciprocalShift<Sample>) / span + 1);
    const auto a = static_cast<Sum>(span - weight), b = static_cast<Sum>(weight);
    for (size_t i = 0; i < samples; ++i) {
        const auto sum = static_cast<Sum>(Load<Sample>(first, i) * a + Load<Sample>(second, i) * b);
        Store<Sample>(target, i, static_cast<uint32_t>(sum * reciprocal >> ReciprocalShift<Sample>));
    }
}

void BlendFalling(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span,
                  uint8_t* target, size_t samples) {
    if (span == 2) {
        for (size_t i = 0; i < samples; ++i) {
            const uint16_t from = Load<uint16_t>(first, i), to = Load<uint16_t>(second, i);
            const uint32_t step = static_cast<uint32_t>(to > from ? to - from : from - to) >> 1;
            Store<uint16_t>(target, i, to > from ? from + step : from - step);
        }
        return;
    }
    const bool multiplies = span <= LongestMultipliedSpan<uint16_t>;
    const uint64_t reciprocal = (uint64_t{1} << 32) / span + 1;
    for (size_t i = 0; i < samples; ++i) {
        const uint32_t from = Load<uint16_t>(first, i), to = Load<uint16_t>(second, i);
        const uint64_t rise = uint64_t{to >= from ? to - from : 0} * weight,
                       fall = to >= from ? 0 : from - to;
        const uint64_t up = multiplies ? rise * reciprocal >> 32 : rise / span;
        const uint64_t down = (multiplies ? fall * reciprocal >> 32 : fall / span) * weight;
        Store<uint16_t>(target, i, static_cast<uint32_t>(from + up - down));
    }
}

template <typename Sample>
void SolveRows(const uint8_t* const rows[4], float* first, float* second, size_t samples) {
    for (size_t i = 0; i < samples; ++i) {
        const int32_t a = Load<Sample>(rows[0], i), b = Load<Sample>(rows[1], i),
                      c = Load<Sample>(rows[2], i), d = Load<Sample>(rows[3], i);
        const float m1 = static_cast<float>(a + c - 2 * b) * 1.5f;
        const float m2 = (static_cast<float>((d + b - 2 * c) * 6) - m1) * 0.266667f;
        first[i] = m1 - m2 / 4.0f;
        second[i] = m2;
    }
}

template <typename Sample>
void EvaluateRows(const uint8_t* first, const uint8_t* second, const float* firstM, const float* secondM,
                  float t, uint8_t* target, size_t samples) {
    const float a = 1.0f - t;
    const float firstFactor = (a * a * a - a) / 6.0f, secondFactor = (t * t * t - t) / 6.0f;
    for (size_t i = 0; i < samples; ++i) {
        const float value = a * Load<Sample>(first, i) + t * Load<Sample>(second, i) +
                            firstFactor * firstM[i] + secondFactor * secondM[i];
        Store<Sample>(target, i, Round<Sample>(value));
    }
}

#define ZKR_LAYOUTS(kernel, Sample)                                                                          \
    { kernel<Sample, 1>, kernel<Sample, 3>, kernel<Sample, 4> }
#define ZKR_SPLINES(Sample)                                                                                  \
    {                                                                                                        \
        {Solve<Sample, 1>, Evaluate<Sample, 1>}, {Solve<Sample, 3>, Evaluate<Sample, 3>}, {                  \
            Solve<Sample, 4>, Evaluate<Sample, 4>                                                            \
        }                                                                                                    \
    }
#define ZKR_SAMPLES(kernel)                                                                                  \
    { kernel<uint8_t>, kernel<uint16_t> }

constexpr ResampleKernels MakeKernels() {
    return {.Linear = {ZKR_LAYOUTS(Linear, uint8_t), ZKR_LAYOUTS(Linear, uint16_t)},
            .Average = {ZKR_LAYOUTS(Average, uint8_t), ZKR_LAYOUTS(Average, uint16_t)},
            .Spline = {ZKR_SPLINES(uint8_t), ZKR_SPLINES(uint16_t)},
            .AddWeighted = ZKR_SAMPLES(AddWeighted),
            .DivideWeighted = ZKR_SAMPLES(DivideWeighted),
            .AddWhole = ZKR_SAMPLES(AddWhole),
            .DivideWhole = ZKR_SAMPLES(DivideWhole),
            .Blend = ZKR_SAMPLES(Blend),
            .BlendFalling = BlendFalling,
            .SolveRows = ZKR_SAMPLES(SolveRows),
            .EvaluateRows = ZKR_SAMPLES(EvaluateRows)};
}

} // namespace

template <> constinit const ResampleKernels Compiled<ResampleKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
