// A row's way through the source is cut where it enters and leaves the source, and where it comes so near to an edge
// that neighbours lie outside. Between the cuts no pixel is tested, and two pixels at a time are interpolated with
// their channels in lanes; at the edges they are taken one by one.
#include "geometry/kernels/rotate_kernels.h"

#include "geometry/kernels/rotate_forms.h"
#include "geometry/kernels/rotate_spans.h"
#include "kernels/family.h"

#include <algorithm>
#include <type_traits>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

typedef float FourFloats __attribute__((vector_size(16)));
typedef float EightFloats __attribute__((vector_size(32)));

inline const uint8_t* RowOf(const RotateSource& source, int32_t y) {
    return source.Source + y * source.Stride;
}

inline bool Holds(const RotateSource& source, int32_t x, int32_t y) {
    return x >= source.Left && x < source.Right && y >= source.Top && y < source.Bottom;
}

template <class Form>
inline void CopyPixel(const RotateSource& source, uint8_t* target, const uint8_t* row, int32_t x) {
    if constexpr (std::is_same_v<Form, BitsForm>)
        *target = BitsForm::Value(row, x, source.Bits);
    else
        Form::Copy(target, row, x);
}

template <class Form> inline Four ReadOrFill(const RotateSource& source, int32_t x, int32_t y) {
    return Holds(source, x, y) ? Form::Read(RowOf(source, y), x) : Form::Read(source.Fill, 0);
}

// ---- interpolation, of one pixel or two

// The value moved towards a neighbour; distance is that from the pixel's centre.
template <typename Lanes> inline Lanes Blended(Lanes value, Lanes neighbour, Lanes distance) {
    const Lanes product = (neighbour - value) * distance;
    // Truncated, where a shift would round down.
    return value + ((product + (product >> 31 & (RotateUnit - 1))) >> RotateFractionBits);
}

// The weights of a spline through four samples between the second and the third, at t from 0 to 1.
template <typename Lanes> struct SplineWeights {
    Lanes First, Second, FirstCurve, SecondCurve;

    explicit SplineWeights(Lanes t) {
        const Lanes a = 1.0f - t;
        First = a;
        Second = t;
        FirstCurve = (a * a * a - a) / 6.0f;
        SecondCurve = (t * t * t - t) / 6.0f;
    }
    SplineWeights() = default;
};

// The curvature at the third sample takes the second one itself where one would expect that one's curvature. All
// sums and differences of samples are exact.
template <typename Lanes, typename Whole>
[[gnu::always_inline]] inline Whole SplineOf(const SplineWeights<Lanes>& weights, Lanes s0, Lanes s1,
                                             Lanes s2, Lanes s3, int32_t most) {
    const Lanes e = s1 + s3 - (s2 + s2);
    const Lanes curve = (6.0f * e - s1) * 0.266667f;
    const Lanes m2 = reinterpret_cast<Lanes>(reinterpret_cast<Whole>(curve) & (e != 0.0f));
    const Lanes m1 = (s0 + s2 - (s1 + s1)) * 1.5f - m2 / 4.0f;
    const Lanes value =
        weights.First * s1 + weights.Second * s2 + weights.FirstCurve * m1 + weights.SecondCurve * m2 + 0.5f;
    Whole whole = __builtin_convertvector(value, Whole);
    const Whole highest = Whole{} + most;
    whole = whole > 0 ? whole : Whole{};
    return whole < highest ? whole : highest;
}

// ---- one pixel, wherever it lies

template <class Form>
inline void LinearPixel(const RotateSource& source, const RotatePosition& at, uint8_t* target) {
    Four value = Form::Read(RowOf(source, at.Y), at.X);
    const auto blend = [&](int32_t x, int32_t y, int32_t fraction) {
        if (fraction == 0) return;
        value =
            Blended(value, ReadOrFill<Form>(source, x, y), Four{} + (fraction < 0 ? -fraction : fraction));
    };
    blend(at.X + (at.FractionX > 0 ? 1 : -1), at.Y, at.FractionX);
    blend(at.X, at.Y + (at.FractionY > 0 ? 1 : -1), at.FractionY);
    Form::Write(target, value);
}

inline FourFloats PlaceOf(int32_t fraction) {
    const int32_t folded = fraction < 0 ? fraction + RotateUnit : fraction;
    return FourFloats{} + static_cast<float>(folded) / static_cast<float>(RotateUnit);
}

// The top bit of 16-bit colour, which no channel has: set where any of the four pixels around has it.
inline void SetTopBit(uint8_t* target, uint32_t words) {
    target[1] = static_cast<uint8_t>(target[1] | (words >> 8 & 0x80));
}

template <class Form>
inline void CubicPixel(const RotateSource& source, const RotatePosition& at, uint8_t* target) {
    const int32_t left = at.X - (at.FractionX < 0 ? 1 : 0), top = at.Y - (at.FractionY < 0 ? 1 : 0);
    const SplineWeights<FourFloats> across(PlaceOf(at.FractionX)), down(PlaceOf(at.FractionY));
    FourFloats rows[4];
    for (int32_t y = 0; y < 4; ++y) {
        FourFloats s[4];
        for (int32_t x = 0; x < 4; ++x)
            s[x] = __builtin_convertvector(ReadOrFill<Form>(source, left - 1 + x, top - 1 + y) << Form::Scale,
                                           FourFloats);
        rows[y] = __builtin_convertvector(
            (SplineOf<FourFloats, Four>(across, s[0], s[1], s[2], s[3], Form::Most)), FourFloats);
    }
    Form::Write(target, SplineOf<FourFloats, Four>(down, rows[0], rows[1], rows[2], rows[3], Form::Most) >>
                            Form::Scale);
    if constexpr (std::is_same_v<Form, Colour16Form>) {
        uint32_t words = 0;
        for (int32_t y = 0; y < 2; ++y)
            for (int32_t x = 0; x < 2; ++x)
                words |= Holds(source, left + x, top + y) ? Form::Word(RowOf(source, top + y), left + x)
                                                          : Form::Word(source.Fill, 0);
        SetTopBit(target, words);
    }
}

template <class Form, RotateMethod method>
inline void AnyPixel(const RotateSource& source, const RotatePosition& at, uint8_t* target) {
    if (!Holds(source, at.X, at.Y))
        CopyPixel<Form>(source, target, source.Fill, 0);
    else if constexpr (method == RotateMethod::Linear)
        LinearPixel<Form>(source, at, target);
    else if constexpr (method == RotateMethod::Cubic)
        CubicPixel<Form>(source, at, target);
    else
        CopyPixel<Form>(source, target, RowOf(source, at.Y), at.X);
}

// ---- pixels whose neighbours all lie in the source

// Both axes of a walk, for a few steps at a time.
struct Walk {
    static constexpr int32_t Most = 64;

    int32_t X[Most], FractionX[Most], Y[Most], FractionY[Most];

    void Make(const RotateSource& source, const RotatePosition& at) {
        MakeAxis(at.X, at.FractionX, source.StepX, X, FractionX);
        MakeAxis(at.Y, at.FractionY, source.StepY, Y, FractionY);
    }

  private:
    static void MakeAxis(int32_t whole, int32_t fraction, int32_t step, int32_t* wholes, int32_t* fractions) {
        const int32_t bias = AxisWalk::Bias(step);
        for (int32_t i = 0; i < Most; ++i) {
            const int32_t sum = fraction + i * step;
            const int32_t units = (sum + bias) >> RotateFractionBits;
            wholes[i] = whole + units;
            fractions[i] = sum - units * RotateUnit;
        }
    }
};

inline Eight Pair(int32_t a, int32_t b) {
    return Both(Four{} + a, Four{} + b);
}

// Two pixels of a walk, from step i on.
template <class Form>
inline void LinearPair(const RotateSource& source, const Walk& walk, int32_t i, uint8_t* target) {
    const int32_t xa = walk.X[i], xb = walk.X[i + 1];
    const int32_t fxa = walk.FractionX[i], fxb = walk.FractionX[i + 1];
    const int32_t fya = walk.FractionY[i], fyb = walk.FractionY[i + 1];
    const uint8_t* const a = RowOf(source, walk.Y[i]);
    const uint8_t* const b = RowOf(source, walk.Y[i + 1]);
    // Towards a neighbour at no distance nothing moves.
    const auto side = [](int32_t fraction) { return fraction >> 31 | 1; };
    const auto size = [](int32_t fraction) { return fraction < 0 ? -fraction : fraction; };
    Eight value = Form::ReadWide(a, xa, b, xb);
    value = Blended(value, Form::ReadWide(a, xa + side(fxa), b, xb + side(fxb)), Pair(size(fxa), size(fxb)));
    value =
        Blended(value, Form::ReadWide(a + side(fya) * source.Stride, xa, b + side(fyb) * source.Stride, xb),
                Pair(size(fya), size(fyb)));
    Form::WriteWide(target, value);
}

#if defined(__AVX2__)

// Whether places in the source can be told by offsets of 32 bits.
inline bool HasShortOffsets(const RotateSource& source) {
    return source.Stride <= INT32_MAX / (source.Bottom + int64_t{1});
}

// Eight steps of a walk at a time.
class EightSteps {
  public:
    static constexpr int32_t Most = 1 << 15; // steps, whose fractions add up to less than 31 bits

    EightSteps(const RotateSource& source, const RotatePosition& at)
        : x_(First(at.FractionX, source.StepX)), y_(First(at.FractionY, source.StepY)),
          dx_(_mm256_set1_epi32(source.StepX * 8)), dy_(_mm256_set1_epi32(source.StepY * 8)),
          firstX_(_mm256_set1_epi32(at.X)), firstY_(_mm256_set1_epi32(at.Y)),
          biasX_(_mm256_set1_epi32(AxisWalk::Bias(source.StepX))),
          biasY_(_mm256_set1_epi32(AxisWalk::Bias(source.StepY))) {}

    __m256i X() const { return _mm256_add_epi32(_mm256_srai_epi32(x_, RotateFractionBits), firstX_); }
    __m256i Y() const { return _mm256_add_epi32(_mm256_srai_epi32(y_, RotateFractionBits), firstY_); }
    __m256i FractionX() const { return Fraction(x_, biasX_); }
    __m256i FractionY() const { return Fraction(y_, biasY_); }
    void Next() {
        x_ = _mm256_add_epi32(x_, dx_);
        y_ = _mm256_add_epi32(y_, dy_);
    }

  private:
    static __m256i First(int32_t fraction, int32_t step) {
        return _mm256_add_epi32(
            _mm256_set1_epi32(fraction + AxisWalk::Bias(step)),
            _mm256_mullo_epi32(_mm256_set1_epi32(step), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7)));
    }
    static __m256i Fraction(__m256i sum, __m256i bias) {
        return _mm256_sub_epi32(_mm256_and_si256(sum, _mm256_set1_epi32(RotateUnit - 1)), bias);
    }
    __m256i x_, y_, dx_, dy_, firstX_, firstY_, biasX_, biasY_;
};

// Where the pixels of eight steps lie, and on either axis the neighbours on the side of the fraction and four times
// the distance from the pixel towards them.
struct Surroundings {
    alignas(32) int32_t Pixel[8], AcrossNeighbour[8], DownNeighbour[8];
    alignas(32) uint32_t AcrossDistance[8], DownDistance[8];

    Surroundings(const EightSteps& steps, __m256i bytes, __m256i stride) {
        const auto store = [](void* to, __m256i v) { _mm256_store_si256(static_cast<__m256i*>(to), v); };
        const __m256i pixel =
            _mm256_add_epi32(_mm256_mullo_epi32(steps.X(), bytes), _mm256_mullo_epi32(steps.Y(), stride));
        const __m256i x = steps.FractionX(), y = steps.FractionY();
        // A step with the sign of the fraction; at no distance the neighbour does not matter.
        const auto beside = [pixel](__m256i fraction, __m256i step) {
            const __m256i side = _mm256_or_si256(_mm256_srai_epi32(fraction, 31), _mm256_set1_epi32(1));
            return _mm256_add_epi32(pixel, _mm256_sign_epi32(step, side));
        };
        store(Pixel, pixel);
        store(AcrossNeighbour, beside(x, bytes));
        store(DownNeighbour, beside(y, stride));
        store(AcrossDistance, _mm256_slli_epi32(_mm256_abs_epi32(x), 2));
        store(DownDistance, _mm256_slli_epi32(_mm256_abs_epi32(y), 2));
    }
};

// Four pixels of bytes as words. The distances times four fill 16 bits, so that the upper half of a product is what
// the division leaves; signs are taken out, since it truncates.
template <class Form>
inline void LinearFour(const uint8_t* source, const Surroundings& around, size_t first, uint8_t* target) {
    const auto read = [source, first](const int32_t* places) {
        const auto pixel = [&](size_t i) {
            return static_cast<int32_t>(Form::PixelWord(source + places[first + i]));
        };
        return _mm256_cvtepu8_epi16(_mm_setr_epi32(pixel(0), pixel(1), pixel(2), pixel(3)));
    };
    const auto spread = [first](const uint32_t* distances) {
        const __m128i four = _mm_load_si128(reinterpret_cast<const __m128i*>(distances + first));
        const __m256i words = _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 8, 9, 8, 9, 8, 9, 8, 9, 0, 1, 0, 1, 0,
                                               1, 0, 1, 8, 9, 8, 9, 8, 9, 8, 9);
        return _mm256_shuffle_epi8(_mm256_cvtepu32_epi64(four), words);
    };
    const auto blended = [](__m256i value, __m256i neighbour, __m256i distance) {
        const __m256i difference = _mm256_sub_epi16(neighbour, value);
        const __m256i moved = _mm256_mulhi_epu16(_mm256_abs_epi16(difference), distance);
        return _mm256_add_epi16(value, _mm256_sign_epi16(moved, difference));
    };
    __m256i value = read(around.Pixel);
    value = blended(value, read(around.AcrossNeighbour), spread(around.AcrossDistance));
    value = blended(value, read(around.DownNeighbour), spread(around.DownDistance));
    const __m128i pixels =
        _mm_packus_epi16(_mm256_castsi256_si128(value), _mm256_extracti128_si256(value, 1));
    if constexpr (Form::Bytes == 4) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target), pixels);
    } else {
        const __m128i joined =
            _mm_shuffle_epi8(pixels, _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(target), joined);
        const int32_t last = _mm_extract_epi32(joined, 2);
        std::memcpy(target + 8, &last, 4);
    }
}

#endif

// As many pixels of bytes as eights fit into the count, linearly; the number of them.
template <class Form>
inline int32_t LinearEights(const RotateSource& source, const RotatePosition& at, uint8_t* target,
                            int32_t count) {
    int32_t made = 0;
#if defined(__AVX2__)
    if constexpr (Form::Most == 255 && Form::Wide == 4) {
        if (!HasShortOffsets(source)) return 0;
        count = std::min(count, EightSteps::Most);
        const __m256i bytes = _mm256_set1_epi32(static_cast<int32_t>(Form::Bytes));
        const __m256i stride = _mm256_set1_epi32(static_cast<int32_t>(source.Stride));
        EightSteps steps(source, at);
        for (; made + 8 <= count; made += 8, steps.Next(), target += 8 * Form::Bytes) {
            const Surroundings around(steps, bytes, stride);
            LinearFour<Form>(source.Source, around, 0, target);
            LinearFour<Form>(source.Source, around, 4, target + 4 * Form::Bytes);
        }
    }
#else
    static_cast<void>(source), static_cast<void>(at), static_cast<void>(target), static_cast<void>(count);
#endif
    return made;
}

// The weights of the steps of a walk along one axis, and the pixels that lie in front of their places.
struct WalkWeights {
    float First[Walk::Most], Second[Walk::Most], FirstCurve[Walk::Most], SecondCurve[Walk::Most];
    int32_t Before[Walk::Most];

    WalkWeights(const int32_t* wholes, const int32_t* fractions) {
        for (int32_t i = 0; i < Walk::Most; ++i) {
            const int32_t below = fractions[i] >> 31;
            Before[i] = wholes[i] + below;
            const float t =
                static_cast<float>(fractions[i] + (below & RotateUnit)) / static_cast<float>(RotateUnit);
            const SplineWeights<float> weights(t);
            First[i] = weights.First;
            Second[i] = weights.Second;
            FirstCurve[i] = weights.FirstCurve;
            SecondCurve[i] = weights.SecondCurve;
        }
    }

    [[gnu::always_inline]] SplineWeights<EightFloats> Of(int32_t i) const { return Pair(i, i); }
    [[gnu::always_inline]] SplineWeights<EightFloats> Pair(int32_t i, int32_t k) const {
        const auto both = [i, k](const float* weights) {
            return __builtin_shufflevector(FourFloats{} + weights[i], FourFloats{} + weights[k], 0, 1, 2, 3,
                                           4, 5, 6, 7);
        };
        SplineWeights<EightFloats> pair;
        pair.First = both(First), pair.Second = both(Second);
        pair.FirstCurve = both(FirstCurve), pair.SecondCurve = both(SecondCurve);
        return pair;
    }
};

// Two rows of a pixel's surroundings at once.
template <class Form>
[[gnu::always_inline]] inline EightFloats CubicRows(const SplineWeights<EightFloats>& weights,
                                                    const uint8_t* a, const uint8_t* b, int32_t x) {
    Eight pixels[4];
    Form::ReadFour(a, b, x - 1, pixels);
    EightFloats samples[4];
    for (size_t i = 0; i < 4; ++i)
        samples[i] = __builtin_convertvector(pixels[i] << Form::Scale, EightFloats);
    return __builtin_convertvector(
        (SplineOf<EightFloats, Eight>(weights, samples[0], samples[1], samples[2], samples[3], Form::Most)),
        EightFloats);
}

template <class Form>
[[gnu::always_inline]] inline void CubicPair(const RotateSource& source, const WalkWeights& across,
                                             const WalkWeights& down, int32_t i, uint8_t* target) {
    EightFloats upper[2], lower[2];
    for (int32_t k = 0; k < 2; ++k) {
        const uint8_t* const row = RowOf(source, down.Before[i + k]);
        const SplineWeights<EightFloats> weights = across.Of(i + k);
        const int32_t x = across.Before[i + k];
        upper[k] = CubicRows<Form>(weights, row - source.Stride, row, x);
        lower[k] = CubicRows<Form>(weights, row + source.Stride, row + 2 * source.Stride, x);
    }
    const auto first = [](const EightFloats(&rows)[2]) {
        return __builtin_shufflevector(rows[0], rows[1], 0, 1, 2, 3, 8, 9, 10, 11);
    };
    const auto second = [](const EightFloats(&rows)[2]) {
        return __builtin_shufflevector(rows[0], rows[1], 4, 5, 6, 7, 12, 13, 14, 15);
    };
    const Eight value = SplineOf<EightFloats, Eight>(down.Pair(i, i + 1), first(upper), second(upper),
                                                     first(lower), second(lower), Form::Most);
    Form::WriteWide(target, value >> Form::Scale);
    if constexpr (std::is_same_v<Form, Colour16Form>)
        for (int32_t k = 0; k < 2; ++k) {
            const uint8_t* const row = RowOf(source, down.Before[i + k]);
            const int32_t x = across.Before[i + k];
            SetTopBit(target + k * 2, Form::Word(row, x) | Form::Word(row, x + 1) |
                                          Form::Word(row + source.Stride, x) |
                                          Form::Word(row + source.Stride, x + 1));
        }
}

// As many of the nearest pixels as eights fit into the count; the number of them.
template <class Form>
inline int32_t NearestEights(const RotateSource& source, const RotatePosition& at, uint8_t* target,
                             int32_t count) {
    int32_t made = 0;
#if defined(__AVX2__) && defined(__x86_64__)
    if (!HasShortOffsets(source)) return 0;
    count = std::min(count, EightSteps::Most);
    const __m256i stride = _mm256_set1_epi32(static_cast<int32_t>(source.Stride));
    EightSteps steps(source, at);
    if constexpr (std::is_same_v<Form, BitsForm>) {
        if (source.Bits != 1) return 0;
        for (; made + 8 <= count; made += 8, steps.Next()) {
            const __m256i x = steps.X();
            const __m256i bytes =
                _mm256_add_epi32(_mm256_mullo_epi32(steps.Y(), stride), _mm256_srai_epi32(x, 3));
            const __m256i words =
                _mm256_i32gather_epi32(reinterpret_cast<const int*>(source.Source), bytes, 1);
            // The bit of the pixel, in the first byte of its word, becomes the sign.
            const __m256i shift =
                _mm256_or_si256(_mm256_and_si256(x, _mm256_set1_epi32(7)), _mm256_set1_epi32(24));
            const int32_t signs = _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_sllv_epi32(words, shift)));
            const uint64_t pixels = _pdep_u64(static_cast<uint64_t>(signs), 0x0101010101010101u);
            std::memcpy(target + made, &pixels, 8);
        }
    } else if constexpr (!std::is_same_v<Form, Gray12Form>) {
        const __m256i bytes = _mm256_set1_epi32(static_cast<int32_t>(Form::TargetBytes));
        for (; made + 8 <= count; made += 8, steps.Next()) {
            alignas(32) int32_t places[8];
            _mm256_store_si256(reinterpret_cast<__m256i*>(places),
                               _mm256_add_epi32(_mm256_mullo_epi32(steps.Y(), stride),
                                                _mm256_mullo_epi32(steps.X(), bytes)));
            for (size_t i = 0; i < 8; ++i, target += Form::TargetBytes)
                std::memcpy(target, source.Source + places[i], Form::Wide);
        }
    }
#else
    static_cast<void>(source), static_cast<void>(at), static_cast<void>(target), static_cast<void>(count);
#endif
    return made;
}

// Makes pixels up to before the last one, whose overrun would leave the row, and tells how many.
template <class Form, RotateMethod method>
inline int32_t InnerPixels(const RotateSource& source, const RotatePosition& at, uint8_t* target,
                           int32_t count) {
    if constexpr (method == RotateMethod::Nearest)
        if (const int32_t made = NearestEights<Form>(source, at, target, count - 1); made > 0) return made;
    if constexpr (method == RotateMethod::Linear)
        if (const int32_t made = LinearEights<Form>(source, at, target, count - 1); made > 0) return made;
    const int32_t most = std::min(count - 1, Walk::Most) & ~1;
    if (most <= 0) return 0;
    Walk walk;
    walk.Make(source, at);
    if constexpr (method == RotateMethod::Linear) {
        for (int32_t i = 0; i < most; i += 2, target += 2 * Form::TargetBytes)
            LinearPair<Form>(source, walk, i, target);
    } else if constexpr (method == RotateMethod::Cubic) {
        const WalkWeights across(walk.X, walk.FractionX), down(walk.Y, walk.FractionY);
        for (int32_t i = 0; i < most; i += 2, target += 2 * Form::TargetBytes)
            CubicPair<Form>(source, across, down, i, target);
    } else if constexpr (std::is_same_v<Form, BitsForm>) {
        for (int32_t i = 0; i < most; ++i)
            target[i] = BitsForm::Value(RowOf(source, walk.Y[i]), walk.X[i], source.Bits);
    } else {
        for (int32_t i = 0; i < most; ++i, target += Form::TargetBytes)
            Form::CopyWide(target, RowOf(source, walk.Y[i]), walk.X[i]);
    }
    return most;
}

// ---- rows

// How far from the edges of the source a place has to be, so that nothing outside is looked at or read. What is read
// behind a pixel lies in the row below.
template <class Form, RotateMethod method> struct Reach {
    static constexpr int32_t Side = method == RotateMethod::Cubic    ? 2
                                    : method == RotateMethod::Linear ? 1
                                                                     : 0;
    static constexpr int32_t Bottom = Side + (Form::Overrun != 0 ? 1 : 0);
};

template <class Form, RotateMethod method> class RowMaker {
  public:
    RowMaker(const RotateSource& source, RotatePosition& at, uint8_t* target)
        : source_(source), at_(at), target_(target) {}

    void Make(int32_t count) {
        for (; count > 0 && !CanWalk(); --count)
            OnePixel();
        if (count <= 0) return;
        const AxisWalk x(at_.X, at_.FractionX, source_.StepX), y(at_.Y, at_.FractionY, source_.StepY);
        constexpr int32_t side = Reach<Form, method>::Side, bottom = Reach<Form, method>::Bottom;
        const Span outer =
            y.Within(source_.Top, source_.Bottom, x.Within(source_.Left, source_.Right, {0, count}));
        const Span inner = y.Within(source_.Top + side, source_.Bottom - bottom,
                                    x.Within(source_.Left + side, source_.Right - side, outer));
        FillTo(outer.First);
        PixelsTo(inner.First, x, y);
        for (int32_t made = 1; made > 0;) {
            x.At(done_, at_.X, at_.FractionX);
            y.At(done_, at_.Y, at_.FractionY);
            made = InnerPixels<Form, method>(source_, at_, target_, inner.End - done_);
            target_ += static_cast<size_t>(made) * Form::TargetBytes;
            done_ += made;
        }
        PixelsTo(outer.End, x, y);
        FillTo(count);
        x.At(count, at_.X, at_.FractionX);
        y.At(count, at_.Y, at_.FractionY);
    }

  private:
    bool CanWalk() const {
        return AxisWalk::CanStart(at_.FractionX, source_.StepX) &&
               AxisWalk::CanStart(at_.FractionY, source_.StepY);
    }
    void OnePixel() {
        AnyPixel<Form, method>(source_, at_, target_);
        at_.Step(source_.StepX, source_.StepY);
        target_ += Form::TargetBytes;
    }
    // Of which the walk needs no place.
    void FillTo(int32_t end) {
        if (done_ >= end) return;
        CopyPixel<Form>(source_, target_, source_.Fill, 0);
        const size_t bytes = static_cast<size_t>(end - done_) * Form::TargetBytes;
        for (size_t filled = Form::TargetBytes; filled < bytes; filled *= 2)
            std::memcpy(target_ + filled, target_, std::min(filled, bytes - filled));
        target_ += bytes;
        done_ = end;
    }
    void PixelsTo(int32_t end, const AxisWalk& x, const AxisWalk& y) {
        if (done_ >= end) return;
        x.At(done_, at_.X, at_.FractionX);
        y.At(done_, at_.Y, at_.FractionY);
        for (; done_ < end; ++done_)
            OnePixel();
    }

    const RotateSource& source_;
    RotatePosition& at_;
    uint8_t* target_;
    int32_t done_ = 0; // pixels since the walk began
};

template <class Form, RotateMethod method>
void RotateRow(const RotateSource& source, RotatePosition& at, uint8_t* target, int32_t count) {
    RowMaker<Form, method>(source, at, target).Make(count);
}

// ---- the table

template <RotateMethod method> constexpr void FillRow(RotateKernels& all) {
    auto& row = all.Kernels[static_cast<size_t>(method)];
    const auto put = [&row](RotateForm form, RotateKernel kernel) {
        row[static_cast<size_t>(form)] = kernel;
    };
    put(RotateForm::Bits, RotateRow<BitsForm, RotateMethod::Nearest>);
    put(RotateForm::Gray8, RotateRow<WholeForm<uint8_t, 1>, method>);
    put(RotateForm::Gray12, RotateRow<Gray12Form, method>);
    put(RotateForm::Gray16, RotateRow<WholeForm<uint16_t, 1>, method>);
    put(RotateForm::Colour16, RotateRow<Colour16Form, method>);
    put(RotateForm::Bytes3, RotateRow<WholeForm<uint8_t, 3>, method>);
    put(RotateForm::Bytes4, RotateRow<WholeForm<uint8_t, 4>, method>);
    put(RotateForm::Words3, RotateRow<WholeForm<uint16_t, 3>, method>);
    put(RotateForm::Words4, RotateRow<WholeForm<uint16_t, 4>, method>);
}

constexpr RotateKernels MakeKernels() {
    RotateKernels all{};
    FillRow<RotateMethod::Nearest>(all);
    FillRow<RotateMethod::Linear>(all);
    FillRow<RotateMethod::Cubic>(all);
    return all;
}

} // namespace

template <> constinit const RotateKernels Compiled<RotateKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
