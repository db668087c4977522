// The warp by whole pieces whose pixels all lie well inside the source: places by a cubic instead of two divisions for
// each pixel, and blends in single precision. Both are close, not exact. Where that could make another pixel or another
// byte, which is seen from how far a value is from a whole number, the exact way is gone.
#pragma once

#include "geometry/kernels/warp_kernels.h"

#include <immintrin.h>

namespace zkr::kernels {
namespace {

constexpr double HalfPiece = WarpPiecePixels / 2;

inline __m128d Magnitude(__m128d value) {
    return _mm_andnot_pd(_mm_set1_pd(-0.0), value);
}

// In a row u = U + S t / (1 + e t), where t counts pixels from the middle of the piece. Where e t is small
// t (1 - e t (1 - e t)) stands for t / (1 + e t). The lanes of a pair are columns and rows.
struct WarpCourse {
    __m128d Constant; // counted from the corner of the source
    __m128d Factor[3];
    __m128d Reach;  // from the middle of the piece to its ends, about
    __m128d Margin; // how far places by the course and those that are worked out exactly can lie apart

    __m128d At(double t) const {
        const __m128d time = _mm_set1_pd(t);
        __m128d sum = _mm_add_pd(_mm_mul_pd(Factor[2], time), Factor[1]);
        sum = _mm_add_pd(_mm_mul_pd(sum, time), Factor[0]);
        return _mm_add_pd(_mm_mul_pd(sum, time), Constant);
    }
};

inline double ValueAt(const WarpMapping& mapping, size_t k, double x) {
    return x * mapping.XFactor[k] + mapping.YPart[k] + mapping.Constant[k];
}

// Columns and rows are u and v times one less than the source's size, and `moved` on. False where the course could be off
// by the margin that is allowed, or leaves the source or those of its columns and rows that have so many beside them.
inline bool SetOut(const WarpMapping& mapping, const WarpSource& source, int32_t x, double moved,
                   int32_t columnsBeside, int32_t rowsBeside, double allowed, double allowedForReach,
                   WarpCourse& course) {
    // Both ways make a few roundings each, of terms of these sizes.
    constexpr double roundings = 64 * 0x1p-53, largestBend = 0x1p-7, largestPlace = 0x1p29;
    const double middle = x + HalfPiece, farthest = middle + HalfPiece;
    const double w = ValueAt(mapping, 2, middle), inverse = 1 / w;
    const double e = mapping.XFactor[2] * inverse, bend = HalfPiece * __builtin_fabs(e);
    if (!(bend <= largestBend)) return false;
    const double wSize = farthest * __builtin_fabs(mapping.XFactor[2]) + __builtin_fabs(mapping.YPart[2]) +
                         __builtin_fabs(mapping.Constant[2]);

    const __m128d xFactor = _mm_loadu_pd(mapping.XFactor), yPart = _mm_loadu_pd(mapping.YPart),
                  constant = _mm_loadu_pd(mapping.Constant), over = _mm_set1_pd(inverse);
    const __m128d size = _mm_set_pd(source.Height, source.Width), scale = _mm_sub_pd(size, _mm_set1_pd(1));
    const __m128d parts = _mm_add_pd(_mm_mul_pd(_mm_set1_pd(farthest), Magnitude(xFactor)),
                                     _mm_add_pd(Magnitude(yPart), Magnitude(constant)));
    const __m128d u =
        _mm_mul_pd(_mm_add_pd(_mm_add_pd(_mm_mul_pd(_mm_set1_pd(middle), xFactor), yPart), constant), over);
    const __m128d slope =
        _mm_mul_pd(_mm_sub_pd(xFactor, _mm_mul_pd(u, _mm_set1_pd(mapping.XFactor[2]))), over);
    const __m128d rate = _mm_mul_pd(scale, slope), bent = _mm_mul_pd(rate, _mm_set1_pd(-e));
    course.Constant = _mm_add_pd(_mm_mul_pd(scale, u), _mm_set1_pd(moved));
    course.Factor[0] = rate;
    course.Factor[1] = bent;
    course.Factor[2] = _mm_mul_pd(bent, _mm_set1_pd(-e));
    course.Reach = _mm_mul_pd(Magnitude(rate), _mm_set1_pd(HalfPiece));

    const __m128d twice = _mm_add_pd(course.Reach, course.Reach);
    const __m128d corner = _mm_set_pd(source.Top, source.Left);
    const __m128d place = _mm_add_pd(_mm_add_pd(Magnitude(course.Constant), corner), twice);
    const __m128d wParts = _mm_mul_pd(
        _mm_add_pd(Magnitude(u), _mm_mul_pd(_mm_set1_pd(HalfPiece), Magnitude(slope))), _mm_set1_pd(wSize));
    const __m128d terms =
        _mm_mul_pd(_mm_mul_pd(scale, _mm_add_pd(parts, wParts)), _mm_set1_pd(__builtin_fabs(inverse)));
    course.Margin = _mm_add_pd(_mm_mul_pd(_mm_set1_pd(roundings), _mm_add_pd(terms, place)),
                               _mm_mul_pd(twice, _mm_set1_pd(bend * bend * bend)));
    course.Margin = _mm_add_pd(course.Margin,
                               _mm_mul_pd(_mm_add_pd(twice, _mm_set1_pd(1)), _mm_set1_pd(allowedForReach)));

    // The course goes one way, so that what lies between its ends does so.
    const __m128d from = course.At(-HalfPiece), to = course.At(HalfPiece);
    const __m128d least = _mm_min_pd(from, to), most = _mm_max_pd(from, to);
    const __m128d end = _mm_sub_pd(size, _mm_set_pd(rowsBeside, columnsBeside));
    const __m128d fits = _mm_and_pd(
        _mm_and_pd(_mm_cmple_pd(course.Margin, _mm_set1_pd(allowed)),
                   _mm_cmplt_pd(place, _mm_set1_pd(largestPlace))),
        _mm_and_pd(_mm_cmpge_pd(least, course.Margin), _mm_cmplt_pd(_mm_add_pd(most, course.Margin), end)));
    return _mm_movemask_pd(fits) == 3;
}

// Single values of a course in all lanes.
inline __m256d InDoubles(__m128d pair, size_t k) {
    return _mm256_broadcastsd_pd(k == 0 ? pair : _mm_unpackhi_pd(pair, pair));
}
inline __m256 InFloats(__m128d pair, size_t k) {
    return _mm256_broadcastss_ps(_mm_cvtpd_ps(k == 0 ? pair : _mm_unpackhi_pd(pair, pair)));
}

// The places of the nearest pixels, in single precision. False where one is too near the border of two pixels.
inline bool FollowNearest(const WarpMapping& mapping, const WarpSource& source, int32_t x, WarpPiece& piece) {
    constexpr double allowed = 0x1p-8, singleRounding = 0x1p-21;
    if (source.Pitch == 0) return false;
    WarpCourse course;
    if (!SetOut(mapping, source, x, 0.5, 1, 0, allowed, singleRounding, course)) return false;
    const __m128d begin = _mm_floor_pd(course.Constant);
    course.Constant = _mm_sub_pd(course.Constant, begin);
    const __m128i wholes = _mm_cvttpd_epi32(begin);
    const int32_t base =
        _mm_cvtsi128_si32(wholes) * source.PixelBytes + _mm_extract_epi32(wholes, 1) * source.Pitch;
    const __m256i bytes[2] = {_mm256_set1_epi32(source.PixelBytes), _mm256_set1_epi32(source.Pitch)};
    __m256 factor[2][4], farthest[2] = {_mm256_setzero_ps(), _mm256_setzero_ps()};
    for (size_t k = 0; k < 2; ++k) {
        factor[k][0] = InFloats(course.Constant, k);
        for (size_t i = 0; i < 3; ++i)
            factor[k][i + 1] = InFloats(course.Factor[i], k);
    }
    const __m256 half = _mm256_set1_ps(0.5f), sign = _mm256_set1_ps(-0.0f);
    __m256 t = _mm256_setr_ps(0, 1, 2, 3, 4, 5, 6, 7);
    t = _mm256_sub_ps(t, _mm256_set1_ps(static_cast<float>(HalfPiece)));
    for (size_t i = 0; i < WarpPiecePixels; i += 8) {
        __m256i place = _mm256_set1_epi32(base);
        for (size_t k = 0; k < 2; ++k) {
            __m256 sum = _mm256_add_ps(_mm256_mul_ps(factor[k][3], t), factor[k][2]);
            sum = _mm256_add_ps(_mm256_mul_ps(sum, t), factor[k][1]);
            sum = _mm256_add_ps(_mm256_mul_ps(sum, t), factor[k][0]);
            const __m256 whole = _mm256_floor_ps(sum);
            const __m256 rest = _mm256_sub_ps(_mm256_sub_ps(sum, whole), half);
            farthest[k] = _mm256_max_ps(farthest[k], _mm256_andnot_ps(sign, rest));
            place = _mm256_add_epi32(place, _mm256_mullo_epi32(_mm256_cvttps_epi32(whole), bytes[k]));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(piece.Place + i), place);
        t = _mm256_add_ps(t, _mm256_set1_ps(8));
    }
    const __m128d least = _mm_sub_pd(_mm_set1_pd(0.5), course.Margin);
    const __m256 near = _mm256_or_ps(_mm256_cmp_ps(farthest[0], InFloats(least, 0), _CMP_GE_OQ),
                                     _mm256_cmp_ps(farthest[1], InFloats(least, 1), _CMP_GE_OQ));
    return _mm256_movemask_ps(near) == 0;
}

// The places of pixels that have two columns to the right and a row below, and what is left behind their whole numbers.
inline bool FollowAround(const WarpMapping& mapping, const WarpSource& source, int32_t x, WarpPiece& piece) {
    constexpr double allowed = 0x1p-23, wholeLimit = 0x1.8p52;
    if (source.Pitch == 0) return false;
    WarpCourse course;
    if (!SetOut(mapping, source, x, 0, 2, 1, allowed, 0, course)) return false;
    // Adding the limit rounds to the nearest whole number, and leaves that in the low half of the lane.
    const __m256d limit = _mm256_set1_pd(wholeLimit), sign = _mm256_set1_pd(-0.0);
    const __m256i bytes[2] = {_mm256_set1_epi32(source.PixelBytes), _mm256_set1_epi32(source.Pitch)};
    __m256d factor[2][4], farthest[2] = {_mm256_setzero_pd(), _mm256_setzero_pd()};
    const __m128d constant = _mm_sub_pd(course.Constant, _mm_set1_pd(0.5));
    for (size_t k = 0; k < 2; ++k) {
        factor[k][0] = InDoubles(constant, k);
        for (size_t i = 0; i < 3; ++i)
            factor[k][i + 1] = InDoubles(course.Factor[i], k);
    }
    __m256d t = _mm256_sub_pd(_mm256_setr_pd(0, 1, 2, 3), _mm256_set1_pd(HalfPiece));
    for (size_t i = 0; i < WarpPiecePixels; i += 8) {
        __m256i place = _mm256_setzero_si256();
        const __m256d later = _mm256_add_pd(t, _mm256_set1_pd(4));
        for (size_t k = 0; k < 2; ++k) {
            const auto follow = [&](__m256d time, __m128& rest) {
                __m256d sum = _mm256_add_pd(_mm256_mul_pd(factor[k][3], time), factor[k][2]);
                sum = _mm256_add_pd(_mm256_mul_pd(sum, time), factor[k][1]);
                sum = _mm256_add_pd(_mm256_mul_pd(sum, time), factor[k][0]);
                const __m256d whole = _mm256_add_pd(sum, limit);
                const __m256d left = _mm256_sub_pd(sum, _mm256_sub_pd(whole, limit));
                farthest[k] = _mm256_max_pd(farthest[k], _mm256_andnot_pd(sign, left));
                rest = _mm256_cvtpd_ps(left);
                return _mm256_castpd_ps(whole);
            };
            __m128 rests[2];
            const __m256 first = follow(t, rests[0]), second = follow(later, rests[1]);
            const __m256i wholes =
                _mm256_permute4x64_epi64(_mm256_castps_si256(_mm256_shuffle_ps(first, second, 0x88)), 0xD8);
            place = _mm256_add_epi32(place, _mm256_mullo_epi32(wholes, bytes[k]));
            _mm256_storeu_ps(piece.Rest[k] + i,
                             _mm256_add_ps(_mm256_set_m128(rests[1], rests[0]), _mm256_set1_ps(0.5f)));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(piece.Place + i), place);
        t = _mm256_add_pd(later, _mm256_set1_pd(4));
    }
    const __m128d least = _mm_sub_pd(_mm_set1_pd(0.5), course.Margin);
    const __m256d near = _mm256_or_pd(_mm256_cmp_pd(farthest[0], InDoubles(least, 0), _CMP_GE_OQ),
                                      _mm256_cmp_pd(farthest[1], InDoubles(least, 1), _CMP_GE_OQ));
    return _mm256_movemask_pd(near) == 0;
}

// Two pixels of a piece, each in a half of the vectors.
template <size_t channels> struct PixelPair {
    __m256i Wholes;
    __m256 Doubt; // how far the blend is from the middle between two whole numbers

    // From the samples of the upper row at `left` and `right`; tx and ty are those of the first pixel, the second's behind.
    PixelPair(const uint8_t* left, const uint8_t* right, size_t pitch, const float* tx, const float* ty) {
        const __m256 across = Spread(tx), down = Spread(ty);
        const __m256 above = Across(left, right, across);
        const __m256 below = Across(left + pitch, right + pitch, across);
        const __m256 sum = _mm256_add_ps(above, _mm256_mul_ps(_mm256_sub_ps(below, above), down));
        Wholes = _mm256_cvttps_epi32(sum);
        const __m256 rest = _mm256_sub_ps(sum, _mm256_cvtepi32_ps(Wholes));
        Doubt = _mm256_andnot_ps(_mm256_set1_ps(-0.0f), _mm256_sub_ps(rest, _mm256_set1_ps(0.5f)));
    }

  private:
    static __m256 Spread(const float* two) {
        double both;
        std::memcpy(&both, two, sizeof both);
        return _mm256_permutevar_ps(_mm256_castpd_ps(_mm256_set1_pd(both)),
                                    _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
    }
    static __m256 Across(const uint8_t* left, const uint8_t* right, __m256 tx) {
        constexpr char z = -1, n = channels; // nothing, and the next pixel
        constexpr char last = channels == 4 ? 3 : z, nextLast = channels == 4 ? n + 3 : z;
        const __m256i firsts =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, z, z, z, 1, z, z, z, 2, z, z, z, last, z, z, z));
        const __m256i nexts = _mm256_broadcastsi128_si256(
            _mm_setr_epi8(n, z, z, z, n + 1, z, z, z, n + 2, z, z, z, nextLast, z, z, z));
        const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(left));
        const __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(right));
        const __m256i both = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
        const __m256i first = _mm256_shuffle_epi8(both, firsts), next = _mm256_shuffle_epi8(both, nexts);
        return _mm256_add_ps(_mm256_cvtepi32_ps(first),
                             _mm256_mul_ps(_mm256_cvtepi32_ps(_mm256_sub_epi32(next, first)), tx));
    }
};

// Draws a piece that follows its course. exactly(i) draws a pixel whose blend is too near a whole number.
template <size_t channels, class Exactly>
void BlendCourse(const WarpSource& source, const WarpPiece& piece, uint8_t* target, Exactly exactly) {
    // Single precision and the margin of places make up for less than this.
    constexpr float nearness = 1.0f / 2048;
    constexpr char z = -1;
    const __m256 middle = _mm256_set1_ps(0.5f - nearness);
    const __m128i together = channels == 4
                                 ? _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15)
                                 : _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, z, z, z, z);
    // The fourth of three channels is always a whole number.
    const __m256 channelLanes = _mm256_castsi256_ps(
        _mm256_setr_epi32(-1, -1, -1, channels == 4 ? -1 : 0, -1, -1, -1, channels == 4 ? -1 : 0));
    const auto pitch = static_cast<size_t>(source.Pitch);
    const auto pair = [&](size_t i) {
        return PixelPair<channels>(source.First + piece.Place[i], source.First + piece.Place[i + 1], pitch,
                                   piece.Rest[0] + i, piece.Rest[1] + i);
    };
    for (size_t i = 0; i < WarpPiecePixels; i += 4, target += 4 * channels) {
        const PixelPair<channels> first = pair(i), second = pair(i + 2);
        const __m256i words = _mm256_packus_epi32(first.Wholes, second.Wholes);
        const __m256i bytes = _mm256_packus_epi16(words, words);
        const __m128i pixels =
            _mm_unpacklo_epi32(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1));
        const __m128i packed = _mm_shuffle_epi8(pixels, together);
        // What is behind three channels of four pixels is drawn later, but for the last ones.
        if (channels == 4 || i + 4 < WarpPiecePixels) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(target), packed);
        } else {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(target), packed);
            const int rest = _mm_extract_epi32(packed, 2);
            std::memcpy(target + 8, &rest, sizeof rest);
        }
        const auto isNear = [&](__m256 doubt) {
            return static_cast<unsigned>(
                _mm256_movemask_ps(_mm256_and_ps(_mm256_cmp_ps(doubt, middle, _CMP_GT_OQ), channelLanes)));
        };
        if (isNear(_mm256_max_ps(first.Doubt, second.Doubt)) == 0) [[likely]]
            continue;
        const unsigned near = isNear(first.Doubt) | isNear(second.Doubt) << 8;
        for (size_t k = 0; k < 4; ++k)
            if ((near >> 4 * k & 0xF) != 0) exactly(i + k);
    }
}

} // namespace
} // namespace zkr::kernels
