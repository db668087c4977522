// Rows of samples made wider or narrower, and rows blended with each other. Floating point is worked out in the order in
// which it is written: regrouping changes bytes.
#include "geometry/kernels/resample.h"

#include "geometry/kernels/samples.h"
#include "kernels/family.h"
#if defined(__AVX2__)
#include "geometry/kernels/double_avx2.h"
#include "geometry/kernels/resample_avx2.h"
#include "geometry/kernels/spline_avx2.h"
#endif

#include <type_traits>

namespace zkr::kernels {

namespace {

template <typename Sample> constexpr double Largest = static_cast<Sample>(~0);

template <typename Number> constexpr Number Clamp(Number value, Number largest) {
    return value < 0 ? 0 : value > largest ? largest : value;
}

// Columns from one to another.
template <typename Sample, size_t channels>
void LinearBetween(const uint8_t* source, uint32_t base, const LinearColumns& columns, size_t from, size_t to,
                   uint8_t* target) {
    const bool isShort = sizeof(Sample) == 1 && columns.Pairs != nullptr;
    for (size_t i = from; i < to; ++i) {
        const LinearColumn& column = columns.At[i];
        const size_t first = size_t{column.First - base} * channels;
        const size_t second = size_t{column.Second - base} * channels;
        const uint64_t firstWeight = isShort ? columns.Pairs[i] & 0xFFFF : column.Span - column.Weight;
        for (size_t c = 0; c < channels; ++c) {
            const uint64_t sum = Load<Sample>(source, first + c) * firstWeight +
                                 Load<Sample>(source, second + c) * uint64_t{column.Weight};
            const uint64_t made = isShort ? sum * columns.Reciprocals[i] >> 16 : sum / column.Span;
            Store<Sample>(target, i * channels + c, static_cast<uint32_t>(made));
        }
    }
}

template <typename Sample, size_t channels>
void Linear(const uint8_t* source, uint32_t base, const LinearColumns& columns, size_t count,
            uint8_t* target) {
    size_t done = 0;
#if defined(__AVX2__)
    constexpr size_t pixelBytes = channels * sizeof(Sample);
    if (columns.Doubles) {
        const size_t first = FirstOfTwo(columns.At, count);
        LinearBetween<Sample, channels>(source, base, columns, 0, first, target);
        done = first + LinearDoubled<Sample, channels>(source, base, columns.At + first, count - first,
                                                       target + first * pixelBytes);
    }
    if constexpr (channels > 1)
        if (columns.Pairs != nullptr)
            done += LinearVectors<Sample, channels>(source, base, columns.From(done), count - done,
                                                    target + done * pixelBytes);
#endif
    LinearBetween<Sample, channels>(source, base, columns, done, count, target);
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

// The places of a pixel among the derivatives.
#if defined(__AVX2__)
template <size_t channels> constexpr size_t PlacesOf = channels > 1 ? DerivativePlaces : channels;
#else
template <size_t channels> constexpr size_t PlacesOf = channels;
#endif

// From a pixel on, with those before it done. Flat stretches cut the elimination.
template <typename Sample, size_t channels>
void Eliminate(const uint8_t* source, size_t first, size_t pixels, float* m, float* u) {
    constexpr size_t places = PlacesOf<channels>;
    for (size_t x = first; x + 1 < pixels; ++x)
        for (size_t c = 0; c < channels; ++c) {
            const size_t i = x * channels + c, at = x * places + c;
            const int32_t bend = (Load<Sample>(source, i + channels) + Load<Sample>(source, i - channels) -
                                  2 * Load<Sample>(source, i)) *
                                 6;
            m[at] = bend == 0 ? 0 : -1.0f / (m[at - places] + 4.0f);
            u[at] = bend == 0 ? 0 : (u[at - places] - static_cast<float>(bend)) * m[at];
        }
}

// From a pixel back to the second one.
template <size_t channels> void Substitute(size_t last, float* m, const float* u) {
    constexpr size_t places = PlacesOf<channels>;
    for (size_t x = last; x > 0; --x)
        for (size_t c = 0; c < channels; ++c)
            m[x * places + c] = m[x * places + c] * m[(x + 1) * places + c] + u[x * places + c];
}

// How many values of a row, counted from its start through all channels, keep what the elimination left: those of the first
// pixel, and those that a substitution does not reach which begins with the last pixel but one, where it has all three
// channels but else only the last, and which counts the pixels before that one.
template <typename Sample, size_t channels> size_t KeptValues(size_t pixels) {
    constexpr size_t lastCount = sizeof(Sample) == 1 ? channels : 1;
    const size_t begin = (pixels - 2) * channels + (channels == 3 ? 0 : channels - 1);
    const size_t count = (pixels - 3) * channels;
    return begin - (count >= lastCount ? count - lastCount + 1 : 0);
}

template <typename Sample, size_t channels>
void Solve(const uint8_t* source, size_t pixels, float* m, float* u) {
    constexpr size_t places = PlacesOf<channels>;
    std::memset(m, 0, places * sizeof(float));
    std::memset(u, 0, places * sizeof(float));
    std::memset(m + (pixels - 1) * places, 0, places * sizeof(float));
    if (pixels < 3) return;
    size_t left = 1;
#if defined(__AVX2__)
    if constexpr (channels > 1) left = EliminateParts<Sample, channels>(source, pixels, m, u);
#endif
    Eliminate<Sample, channels>(source, left, pixels, m, u);
    float kept[2 * places]; // of the second and third pixel
    std::memcpy(kept, m + places, sizeof kept);
    std::memcpy(m + (pixels - 2) * places, u + (pixels - 2) * places, channels * sizeof(float));
    left = pixels - 3;
#if defined(__AVX2__)
    if constexpr (channels > 1) {
        left = SubstituteParts<channels>(pixels - 3, m, u);
        if (left == DidNotMeet) {
            left = pixels - 3;
            Eliminate<Sample, channels>(source, 1, pixels, m, u);
            std::memcpy(m + (pixels - 2) * places, u + (pixels - 2) * places, channels * sizeof(float));
        }
    }
#endif
    Substitute<channels>(left, m, u);
    for (size_t i = channels; i < KeptValues<Sample, channels>(pixels); ++i)
        m[i / channels * places + i % channels] = kept[(i / channels - 1) * places + i % channels];
}

template <typename Sample> uint32_t Round(float value) {
    return static_cast<uint32_t>(
        Clamp(static_cast<int32_t>(value + 0.5f), static_cast<int32_t>(Largest<Sample>)));
}

// Columns from one to another.
template <typename Sample, size_t channels>
void EvaluateBetween(const uint8_t* source, const float* m, uint32_t base, const SplineColumn* columns,
                     size_t from, size_t to, uint8_t* target) {
    constexpr size_t places = PlacesOf<channels>;
    for (size_t i = from; i < to; ++i) {
        const SplineColumn& column = columns[i];
        const size_t first = size_t{column.First - base}, second = size_t{column.Second - base};
        for (size_t c = 0; c < channels; ++c) {
            const float value = column.A * Load<Sample>(source, first * channels + c) +
                                column.T * Load<Sample>(source, second * channels + c) +
                                column.FirstM * m[first * places + c] +
                                column.SecondM * m[second * places + c];
            Store<Sample>(target, i * channels + c, Round<Sample>(value));
        }
    }
}

template <typename Sample, size_t channels>
void Evaluate(const uint8_t* source, const float* m, uint32_t base, const SplineColumns& columns,
              size_t count, uint8_t* target) {
    size_t done = 0;
#if defined(__AVX2__)
    constexpr size_t pixelBytes = channels * sizeof(Sample);
    if constexpr (channels > 1) {
        if (columns.Doubles) {
            const size_t first = FirstOfTwo(columns.At, count);
            EvaluateBetween<Sample, channels>(source, m, base, columns.At, 0, first, target);
            done = first + SplineDoubled<Sample, channels>(source, m, base, columns.At + first, count - first,
                                                           target + first * pixelBytes);
        }
        done += EvaluateVectors<Sample, channels>(source, m, base, columns.At + done, count - done,
                                                  target + done * pixelBytes);
    }
#endif
    EvaluateBetween<Sample, channels>(source, m, base, columns.At, done, count, target);
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

template <typename Sample>
void AverageRows(const uint8_t* const* rows, const double* weights, size_t count, double total,
                 uint8_t* target, size_t samples) {
    size_t i = 0;
#if defined(__AVX2__)
    i = AverageRowVectors<Sample>(rows, weights, count, total, target, samples);
#endif
    for (; i < samples; ++i) {
        double sum = Load<Sample>(rows[0], i) * weights[0];
        for (size_t k = 1; k < count; ++k)
            sum += Load<Sample>(rows[k], i) * weights[k];
        Store<Sample>(target, i, static_cast<uint32_t>(sum / total));
    }
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
void SplineRows(const uint8_t* const rows[4], float t, uint8_t* target, size_t samples) {
    const uint8_t *const above = rows[0], *const first = rows[1], *const second = rows[2],
                         *const below = rows[3];
    const float s = 1.0f - t;
    const float firstFactor = (s * s * s - s) / 6.0f, secondFactor = (t * t * t - t) / 6.0f;
    size_t begin = 0;
#if defined(__AVX2__)
    if constexpr (sizeof(Sample) == 1)
        begin = SplineRowBytes(rows, {s, t, firstFactor, secondFactor}, target, samples);
#endif
    for (size_t i = begin; i < samples; ++i) {
        const int32_t a = Load<Sample>(above, i), b = Load<Sample>(first, i), c = Load<Sample>(second, i),
                      d = Load<Sample>(below, i);
        const float bend = static_cast<float>(a + c - 2 * b) * 1.5f;
        const float secondM = (static_cast<float>((d + b - 2 * c) * 6) - bend) * 0.266667f;
        const float firstM = bend - secondM / 4.0f;
        const float value = s * static_cast<float>(b) + t * static_cast<float>(c) + firstFactor * firstM +
                            secondFactor * secondM;
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
            .AverageRows = ZKR_SAMPLES(AverageRows),
            .Blend = ZKR_SAMPLES(Blend),
            .BlendFalling = BlendFalling,
            .SplineRows = ZKR_SAMPLES(SplineRows)};
}

} // namespace

template <> constinit const ResampleKernels Compiled<ResampleKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
