// Rows of samples made wider or narrower, and rows blended with each other. Floating point is worked out in the order in
// which it is written: regrouping changes bytes.
#include "geometry/kernels/resample.h"

#include "kernels/family.h"

#include <cstring>

namespace zkr::kernels {

namespace {

template <typename Sample> Sample Load(const uint8_t* row, size_t index) {
    Sample sample;
    std::memcpy(&sample, row + index * sizeof(Sample), sizeof(Sample));
    return sample;
}
template <typename Sample> void Store(uint8_t* row, size_t index, uint32_t value) {
    const auto sample = static_cast<Sample>(value);
    std::memcpy(row + index * sizeof(Sample), &sample, sizeof(Sample));
}

template <typename Sample> constexpr double Largest = static_cast<Sample>(~0);

template <typename Number> constexpr Number Clamp(Number value, Number largest) {
    return value < 0 ? 0 : value > largest ? largest : value;
}

template <typename Sample, size_t channels>
void Linear(const uint8_t* source, uint32_t base, const LinearColumn* columns, size_t count,
            uint8_t* target) {
    for (size_t i = 0; i < count; ++i) {
        const LinearColumn& column = columns[i];
        const size_t first = size_t{column.First - base} * channels;
        const size_t second = size_t{column.Second - base} * channels;
        for (size_t c = 0; c < channels; ++c) {
            const uint64_t sum = uint64_t{Load<Sample>(source, first + c)} * (column.Span - column.Weight) +
                                 uint64_t{Load<Sample>(source, second + c)} * column.Weight;
            Store<Sample>(target, i * channels + c, static_cast<uint32_t>(sum / column.Span));
        }
    }
}

template <typename Sample, size_t channels>
void Average(const uint8_t* source, uint32_t base, const AverageColumn* columns, size_t count,
             uint8_t* target) {
    for (size_t i = 0; i < count; ++i) {
        const AverageColumn& column = columns[i];
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

template <typename Sample>
void Blend(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span, uint8_t* target,
           size_t samples) {
    for (size_t i = 0; i < samples; ++i) {
        const uint64_t sum =
            uint64_t{Load<Sample>(first, i)} * (span - weight) + uint64_t{Load<Sample>(second, i)} * weight;
        Store<Sample>(target, i, static_cast<uint32_t>(sum / span));
    }
}

void BlendFalling(const uint8_t* first, const uint8_t* second, uint32_t weight, uint32_t span,
                  uint8_t* target, size_t samples) {
    for (size_t i = 0; i < samples; ++i) {
        const uint64_t from = Load<uint16_t>(first, i), to = Load<uint16_t>(second, i);
        const uint64_t value =
            to >= from ? from + (to - from) * weight / span : from - (from - to) / span * weight;
        Store<uint16_t>(target, i, static_cast<uint32_t>(value));
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
