// All operators work on vectors of bytes or words as they lie in the rows; a row that is shorter than a vector fills up
// one. Where a product or a quotient needs more room, the even and the odd samples are worked out in lanes of twice the
// width.
#include "geometry/kernels/combine_kernels.h"

#include "kernels/family.h"

#include <cstring>
#include <type_traits>
#include <utility>

#if defined(__AVX2__)
#include "colour/kernels/packing_avx2.h"
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

#if defined(__AVX2__)
constexpr size_t VectorBytes = 32;
#else
constexpr size_t VectorBytes = 16;
#endif

typedef uint8_t ByteLanes __attribute__((vector_size(VectorBytes)));
typedef uint16_t WordLanes __attribute__((vector_size(VectorBytes)));
typedef uint32_t DoubleLanes __attribute__((vector_size(VectorBytes)));
typedef int32_t SignedLanes __attribute__((vector_size(VectorBytes)));
typedef float FloatLanes __attribute__((vector_size(VectorBytes)));

template <typename Vector> inline Vector Load(const uint8_t* from) {
    Vector vector;
    std::memcpy(&vector, from, sizeof vector);
    return vector;
}

// Memory that the cache is asked for may lie behind the row.
inline void AskAhead(const uint8_t* place) {
    constexpr uintptr_t distance = 1024;
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(place) + distance));
}

// So many bytes, fewer than a vector has, in at most two moves that overlap; or a few single ones.
inline void CopyFew(uint8_t* to, const uint8_t* from, size_t bytes) {
    const auto ends = [=]<size_t size>(std::integral_constant<size_t, size>) {
        uint8_t first[size], last[size];
        std::memcpy(first, from, size);
        std::memcpy(last, from + bytes - size, size);
        std::memcpy(to, first, size);
        std::memcpy(to + bytes - size, last, size);
    };
    if (bytes >= 16)
        ends(std::integral_constant<size_t, 16>());
    else if (bytes >= 8)
        ends(std::integral_constant<size_t, 8>());
    else if (bytes >= 4)
        ends(std::integral_constant<size_t, 4>());
    else
        for (size_t i = 0; i < bytes; ++i)
            to[i] = from[i];
}

// result[i] = make(target[i], source[i]), in lanes. An operand that is not read is zero. The last vector may overlap the
// one before, and is made before anything is written.
template <typename Vector, bool readsTarget = true, bool readsSource = true, typename Make>
inline void Combine(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes, Make make) {
    const auto made = [&](size_t at) {
        return make(readsTarget ? Load<Vector>(target + at) : Vector{},
                    readsSource ? Load<Vector>(source + at) : Vector{});
    };
    if (bytes >= sizeof(Vector)) {
        const size_t last = bytes - sizeof(Vector);
        const Vector end = made(last);
        size_t i = 0;
        for (; i + 2 * sizeof(Vector) <= last; i += 2 * sizeof(Vector)) {
            const Vector first = made(i), second = made(i + sizeof(Vector));
            if (readsTarget) AskAhead(target + i);
            if (readsSource) AskAhead(source + i);
            std::memcpy(result + i, &first, sizeof first);
            std::memcpy(result + i + sizeof(Vector), &second, sizeof second);
        }
        for (; i < last; i += sizeof(Vector)) {
            const Vector vector = made(i);
            std::memcpy(result + i, &vector, sizeof vector);
        }
        std::memcpy(result + last, &end, sizeof end);
        return;
    }
    uint8_t few[2][sizeof(Vector)] = {};
    if (readsTarget) CopyFew(few[0], target, bytes);
    if (readsSource) CopyFew(few[1], source, bytes);
    const Vector vector = make(Load<Vector>(few[0]), Load<Vector>(few[1]));
    std::memcpy(few[0], &vector, sizeof vector);
    CopyFew(result, few[0], bytes);
}

template <unsigned table>
void CombineByTable(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes) {
    constexpr bool readsTarget = (table >> 1 & 5) != (table & 5), readsSource = table >> 2 != (table & 3);
    Combine<DoubleLanes, readsTarget, readsSource>(
        result, target, source, bytes, [](DoubleLanes d, DoubleLanes s) {
            constexpr auto term = [](unsigned bit) { return -(table >> bit & 1); };
            return (d & s & term(3)) | (~d & s & term(2)) | (d & ~s & term(1)) | (~d & ~s & term(0));
        });
}

template <typename Lanes> inline Lanes Smaller(Lanes a, Lanes b) {
    return a < b ? a : b;
}
template <typename Lanes> inline Lanes Larger(Lanes a, Lanes b) {
    return a > b ? a : b;
}

// The even and the odd lanes of a vector, worked out in lanes of twice their width.
template <typename Wide, typename Lanes, typename Make>
inline Lanes InWideLanes(Lanes d, Lanes s, Make make) {
    constexpr int bits = 8 * sizeof(d[0]);
    constexpr unsigned low = (1u << bits) - 1;
    const auto wideD = reinterpret_cast<Wide>(d), wideS = reinterpret_cast<Wide>(s);
    const Wide even = make(wideD & low, wideS & low), odd = make(wideD >> bits, wideS >> bits);
    return reinterpret_cast<Lanes>(even | odd << bits);
}

// Of lanes of 32 bits with values up to 255.
inline DoubleLanes QuotientOfBytes(DoubleLanes dividend, DoubleLanes divisor, float maximum) {
    const FloatLanes above =
        __builtin_convertvector(reinterpret_cast<SignedLanes>(dividend), FloatLanes) * maximum;
    const FloatLanes quotient =
        above / __builtin_convertvector(reinterpret_cast<SignedLanes>(divisor), FloatLanes);
    const FloatLanes limit = FloatLanes{} + maximum;
    // What is no number is not below the limit either.
    return reinterpret_cast<DoubleLanes>(
        __builtin_convertvector(quotient < limit ? quotient : limit, SignedLanes));
}

inline ByteLanes Quotient(ByteLanes dividend, ByteLanes divisor, uint32_t maximum) {
    const auto limit = static_cast<float>(maximum);
    const auto wideDividend = reinterpret_cast<DoubleLanes>(dividend);
    const auto wideDivisor = reinterpret_cast<DoubleLanes>(divisor);
    DoubleLanes all = {};
    for (int shift = 0; shift < 32; shift += 8)
        all |= QuotientOfBytes(wideDividend >> shift & 255, wideDivisor >> shift & 255, limit) << shift;
    return reinterpret_cast<ByteLanes>(all);
}

// Products of two words need the bits of a double.
inline WordLanes Quotient(WordLanes dividend, WordLanes divisor, uint32_t maximum) {
    constexpr size_t count = VectorBytes / 2;
    uint16_t above[count], below[count];
    int32_t quotients[count];
    std::memcpy(above, &dividend, sizeof above);
    std::memcpy(below, &divisor, sizeof below);
    const double limit = maximum;
    for (size_t i = 0; i < count; ++i) {
        const double quotient = above[i] * limit / below[i];
        quotients[i] = static_cast<int32_t>(quotient < limit ? quotient : limit);
    }
    WordLanes lanes;
    for (size_t i = 0; i < count; ++i)
        lanes[i] = static_cast<uint16_t>(quotients[i]);
    return lanes;
}

// The quotient of a product t and the maximum, which has so many bits, is (t + (t >> bits) + 1) >> bits.
inline ByteLanes Scaled(ByteLanes d, ByteLanes s, uint32_t maximum) {
    const int bits = __builtin_popcount(maximum);
    return InWideLanes<WordLanes>(d, s, [bits](WordLanes a, WordLanes b) {
        const WordLanes product = a * b;
        return (product + (product >> bits) + 1) >> bits;
    });
}
inline WordLanes Scaled(WordLanes d, WordLanes s, uint32_t maximum) {
    const int bits = __builtin_popcount(maximum);
    return InWideLanes<DoubleLanes>(d, s, [bits](DoubleLanes a, DoubleLanes b) {
        const DoubleLanes product = a * b;
        return (product + (product >> bits) + 1) >> bits;
    });
}

template <SampleOperator op, typename Lanes> inline Lanes Operate(Lanes d, Lanes s, uint32_t maximum) {
    using Sample = std::remove_cvref_t<decltype(d[0])>;
    const Lanes limit = Lanes{} + static_cast<Sample>(maximum);
    switch (op) {
    case SampleOperator::Add: {
        const Lanes sum = d + s;
        return Smaller<Lanes>(sum | reinterpret_cast<Lanes>(sum < d), limit);
    }
    case SampleOperator::SubtractSource: return Larger(d, s) - s;
    case SampleOperator::SubtractTarget: return Larger(d, s) - d;
    case SampleOperator::Multiply: return Scaled(d, s, maximum);
    case SampleOperator::DivideBySource: return Quotient(d, s, maximum);
    case SampleOperator::DivideByTarget: return Quotient(s, d, maximum);
    case SampleOperator::Average: return (d & s) + ((d ^ s) >> 1);
    case SampleOperator::Minimum: return Smaller(d, s);
    default: return Larger(d, s);
    }
}

template <SampleOperator op, typename Lanes>
void CombineLanes(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes,
                  const SampleRange& range) {
    using Sample = std::remove_cvref_t<decltype(Lanes{}[0])>;
    const auto flipD = static_cast<Sample>(range.TargetFlip), flipS = static_cast<Sample>(range.SourceFlip),
               flip = static_cast<Sample>(range.ResultFlip);
    const uint32_t maximum = range.Maximum;
    Combine<Lanes>(result, target, source, bytes, [=](Lanes d, Lanes s) -> Lanes {
        return Operate<op, Lanes>(d ^ flipD, s ^ flipS, maximum) ^ flip;
    });
}

// Samples side by side in a byte or a word.
template <SampleOperator op, typename Lanes, int bits, int fields>
void CombineFields(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes,
                   const SampleRange& range) {
    using Word = std::remove_cvref_t<decltype(Lanes{}[0])>;
    constexpr Word mask = (1 << bits) - 1;
    const auto flipD = static_cast<Word>(range.TargetFlip), flipS = static_cast<Word>(range.SourceFlip),
               flip = static_cast<Word>(range.ResultFlip);
    Combine<Lanes>(result, target, source, bytes, [=](Lanes d, Lanes s) -> Lanes {
        d ^= flipD;
        s ^= flipS;
        Lanes all = {};
        for (int shift = 0; shift < bits * fields; shift += bits)
            all |= Operate<op, Lanes>(d >> shift & mask, s >> shift & mask, mask) << shift;
        return all ^ flip;
    });
}

void MultiplyAnyWords(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes,
                      const SampleRange& range) {
    const auto flipD = static_cast<uint16_t>(range.TargetFlip),
               flipS = static_cast<uint16_t>(range.SourceFlip),
               flip = static_cast<uint16_t>(range.ResultFlip);
    const uint32_t maximum = range.Maximum;
    Combine<WordLanes>(result, target, source, bytes, [=](WordLanes d, WordLanes s) -> WordLanes {
        return InWideLanes<DoubleLanes>(
                   d ^ flipD, s ^ flipS,
                   [maximum](DoubleLanes a, DoubleLanes b) { return (a * b / maximum) & 0xFFFF; }) ^
               flip;
    });
}

void ReadWindow(const uint8_t* words, uint8_t* values, size_t count, uint32_t mask, uint32_t shift) {
    const auto bits = static_cast<uint16_t>(mask);
    const int places = static_cast<int>(shift);
    Combine<WordLanes, true, false>(
        values, words, nullptr, count * 2,
        [=](WordLanes word, WordLanes) -> WordLanes { return word >> places & bits; });
}

void WriteWindow(const uint8_t* values, uint8_t* words, size_t count, uint32_t mask, uint32_t shift) {
    const auto bits = static_cast<uint16_t>(mask);
    const int places = static_cast<int>(shift);
    Combine<WordLanes, true, false>(
        words, values, nullptr, count * 2,
        [=](WordLanes value, WordLanes) -> WordLanes { return (value & bits) << places; });
}

#if defined(__AVX2__)

// Indices that cross the borders of bytes, 32 at a time. The moves take in, and write over, a part of what follows.
template <SampleOperator op, size_t bits>
[[gnu::flatten]] size_t CombineUnits(uint8_t* result, const uint8_t* target, const uint8_t* source,
                                     size_t pixels, const SampleRange& range) {
    constexpr size_t unitBytes = UnitPixels * bits / 8;
    const UnpackStep<bits> unpacking({.Table = IdentityMap.data()});
    const PackStep<bits> packing({});
    // Eight pixels, and the eight behind them, in each half of a vector.
    const __m256i nextPairs = _mm256_add_epi8(unpacking.pairs, _mm256_set1_epi8(bits));
    const auto unpack = [&](const uint8_t* packed) {
        const __m256i both = LoadHalves(packed, packed + 2 * bits);
        const auto eight = [&](__m256i pairs) {
            const __m256i top = _mm256_mullo_epi16(_mm256_shuffle_epi8(both, pairs), unpacking.factors);
            return _mm256_srli_epi16(top, 16 - bits);
        };
        return reinterpret_cast<ByteLanes>(_mm256_packus_epi16(eight(unpacking.pairs), eight(nextPairs)));
    };
    const auto flipD = static_cast<uint8_t>(range.TargetFlip), flipS = static_cast<uint8_t>(range.SourceFlip),
               flip = static_cast<uint8_t>(range.ResultFlip);
    const uint32_t maximum = range.Maximum;
    size_t done = 0;
    for (; pixels - done >= 2 * UnitPixels; done += UnitPixels) {
        const ByteLanes combined =
            Operate<op, ByteLanes>(unpack(target) ^ flipD, unpack(source) ^ flipS, maximum) ^ flip;
        uint8_t samples[UnitPixels];
        std::memcpy(samples, &combined, sizeof samples);
        packing(result, samples);
        target += unitBytes, source += unitBytes, result += unitBytes;
    }
    return done;
}

template <size_t bits, size_t... op>
constexpr void SetUnits(CombineKernels& kernels, std::index_sequence<op...>) {
    ((kernels.Units[bits][op] = CombineUnits<static_cast<SampleOperator>(op), bits>), ...);
}

#endif

// One of the two steps does nothing.
template <typename Lanes> inline Lanes Lit(Lanes pixels, Lanes gray) {
    const Lanes middle = Lanes{} + uint8_t{128};
    const Lanes up = Larger(gray, middle) - middle, down = middle - Smaller(gray, middle);
    const Lanes sum = pixels + up;
    const Lanes bright = sum | reinterpret_cast<Lanes>(sum < pixels);
    return Larger(bright, down) - down;
}

void UnderlaySingly(uint8_t* pixels, const uint8_t* gray, size_t count) {
    for (size_t i = 0; i < count; ++i)
        for (size_t channel = 0; channel < 3; ++channel) {
            uint8_t& value = pixels[3 * i + channel];
            const int lit = value + gray[i] - 128;
            value = static_cast<uint8_t>(lit < 0 ? 0 : lit > 255 ? 255 : lit);
        }
}

#if defined(__AVX2__)

// 32 pixels: each gray value thrice, by shuffles within the halves of a vector.
void Underlay(uint8_t* pixels, const uint8_t* gray, size_t count) {
    typedef char Shuffle __attribute__((vector_size(16)));
    static constexpr Shuffle thrice[3] = {{0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5},
                                          {5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10},
                                          {10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15}};
    size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gray + i));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gray + i + 16));
        const auto part = [&](__m128i from, size_t third) {
            return _mm_shuffle_epi8(from, reinterpret_cast<__m128i>(thrice[third]));
        };
        const __m256i spread[3] = {_mm256_setr_m128i(part(first, 0), part(first, 1)),
                                   _mm256_setr_m128i(part(first, 2), part(second, 0)),
                                   _mm256_setr_m128i(part(second, 1), part(second, 2))};
        for (size_t third = 0; third < 3; ++third) {
            uint8_t* const at = pixels + i * 3 + third * 32;
            const ByteLanes lit = Lit(Load<ByteLanes>(at), reinterpret_cast<ByteLanes>(spread[third]));
            std::memcpy(at, &lit, sizeof lit);
        }
    }
    UnderlaySingly(pixels + i * 3, gray + i, count - i);
}

#else

void Underlay(uint8_t* pixels, const uint8_t* gray, size_t count) {
    uint8_t spread[3 * VectorBytes];
    size_t i = 0;
    for (; i + VectorBytes <= count; i += VectorBytes) {
        for (size_t k = 0; k < VectorBytes; ++k)
            spread[3 * k] = spread[3 * k + 1] = spread[3 * k + 2] = gray[i + k];
        for (size_t at = 0; at < sizeof spread; at += VectorBytes) {
            const ByteLanes lit = Lit(Load<ByteLanes>(pixels + i * 3 + at), Load<ByteLanes>(spread + at));
            std::memcpy(pixels + i * 3 + at, &lit, sizeof lit);
        }
    }
    UnderlaySingly(pixels + i * 3, gray + i, count - i);
}

#endif

template <size_t... table> constexpr void SetTables(CombineKernels& kernels, std::index_sequence<table...>) {
    ((kernels.Bits[table] = CombineByTable<table>), ...);
}

template <size_t... op> constexpr void SetOperators(CombineKernels& kernels, std::index_sequence<op...>) {
    ((kernels.Bytes[op] = CombineLanes<static_cast<SampleOperator>(op), ByteLanes>), ...);
    ((kernels.Words[op] = CombineLanes<static_cast<SampleOperator>(op), WordLanes>), ...);
    ((kernels.Pairs[op] = CombineFields<static_cast<SampleOperator>(op), ByteLanes, 4, 2>), ...);
    ((kernels.Fours[op] = CombineFields<static_cast<SampleOperator>(op), ByteLanes, 2, 4>), ...);
    ((kernels.Colour16[op] = CombineFields<static_cast<SampleOperator>(op), WordLanes, 5, 3>), ...);
}

constexpr CombineKernels MakeKernels() {
    CombineKernels kernels{};
    SetTables(kernels, std::make_index_sequence<16>());
    SetOperators(kernels, std::make_index_sequence<SampleOperators>());
#if defined(__AVX2__)
    constexpr auto operators = std::make_index_sequence<SampleOperators>();
    SetUnits<3>(kernels, operators);
    SetUnits<5>(kernels, operators);
    SetUnits<6>(kernels, operators);
    SetUnits<7>(kernels, operators);
#endif
    kernels.MultiplyAnyWords = MultiplyAnyWords;
    kernels.ReadWindow = ReadWindow;
    kernels.WriteWindow = WriteWindow;
    kernels.Underlay = Underlay;
    return kernels;
}

} // namespace

template <> constinit const CombineKernels Compiled<CombineKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
