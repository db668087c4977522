// Without shuffles of bytes the ends stay with the plain loops of the caller.
#include "colour/kernels/mirror_ends.h"

#include "kernels/family.h"

#include <array>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

#if defined(__AVX2__)

// The pixels of 32 bytes in the opposite order: groups of so many bits in each byte, or pixels of so many bytes.
template <size_t groupBits, size_t pixelBytes> struct WholePiece {
    static constexpr size_t Bytes = 32;
    __m256i Pixels;

    explicit WholePiece(const uint8_t* from) {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
        if constexpr (groupBits < 8) v = Grouped(v);
        alignas(16) static constexpr auto places = [] {
            std::array<uint8_t, 16> table{};
            for (size_t i = 0; i < 16; ++i)
                table[i] = static_cast<uint8_t>((16 / pixelBytes - 1 - i / pixelBytes) * pixelBytes +
                                                i % pixelBytes);
            return table;
        }();
        const __m128i lane = _mm_load_si128(reinterpret_cast<const __m128i*>(places.data()));
        v = _mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(lane));
        Pixels = _mm256_permute2x128_si256(v, v, 1);
    }
    void Store(uint8_t* to) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), Pixels); }

  private:
    // Half bytes through a table of what each becomes, in the other half.
    static __m256i Grouped(__m256i v) {
        alignas(16) static constexpr auto table = [] {
            std::array<uint8_t, 16> reversed{};
            for (size_t value = 0; value < 16; ++value)
                for (size_t bit = 0; bit < 4; bit += groupBits)
                    reversed[value] = static_cast<uint8_t>(
                        reversed[value] | (value >> bit & ((1u << groupBits) - 1)) << (4 - groupBits - bit));
            return reversed;
        }();
        const __m256i lookUp =
            _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(table.data())));
        const __m256i half = _mm256_set1_epi8(15);
        const __m256i low = _mm256_shuffle_epi8(lookUp, _mm256_and_si256(v, half));
        const __m256i high = _mm256_shuffle_epi8(lookUp, _mm256_and_si256(_mm256_srli_epi16(v, 4), half));
        return _mm256_or_si256(_mm256_slli_epi16(low, 4), high);
    }
};

// 48 bytes of pixels of 3 or 6: each vector of the result takes bytes of its opposite and of that one's neighbours.
template <size_t pixelBytes> struct ThreefoldPiece {
    static constexpr size_t Bytes = 48;
    __m128i Parts[3];

    explicit ThreefoldPiece(const uint8_t* from) {
        __m128i v[3];
        for (size_t i = 0; i < 3; ++i)
            v[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 16 * i));
        const auto taken = [&v](size_t part, size_t source) {
            return _mm_shuffle_epi8(
                v[source], _mm_load_si128(reinterpret_cast<const __m128i*>(Places[part][source].data())));
        };
        Parts[0] = _mm_or_si128(taken(0, 2), taken(0, 1));
        Parts[1] = _mm_or_si128(_mm_or_si128(taken(1, 0), taken(1, 1)), taken(1, 2));
        Parts[2] = _mm_or_si128(taken(2, 0), taken(2, 1));
    }
    void Store(uint8_t* to) const {
        for (size_t i = 0; i < 3; ++i)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 16 * i), Parts[i]);
    }

  private:
    using Table = std::array<std::array<std::array<uint8_t, 16>, 3>, 3>;
    alignas(16) static constexpr Table Places = [] {
        Table table{};
        for (size_t byte = 0; byte < Bytes; ++byte) {
            const size_t from = (Bytes / pixelBytes - 1 - byte / pixelBytes) * pixelBytes + byte % pixelBytes;
            for (size_t source = 0; source < 3; ++source)
                table[byte / 16][source][byte % 16] =
                    from / 16 == source ? static_cast<uint8_t>(from % 16) : uint8_t{0x80};
        }
        return table;
    }();
};

template <class Piece> size_t ExchangeEnds(uint8_t* row, size_t bytes) {
    size_t done = 0;
    for (; 2 * (done + Piece::Bytes) <= bytes; done += Piece::Bytes) {
        uint8_t* const left = row + done;
        uint8_t* const right = row + bytes - done - Piece::Bytes;
        const Piece first(left), last(right);
        last.Store(left);
        first.Store(right);
    }
    return done;
}

template <size_t groupBits, size_t pixelBytes>
constexpr auto Whole = ExchangeEnds<WholePiece<groupBits, pixelBytes>>;
template <size_t pixelBytes> constexpr auto Threefold = ExchangeEnds<ThreefoldPiece<pixelBytes>>;

#else

size_t NoEnds(uint8_t*, size_t) {
    return 0;
}
template <size_t, size_t> constexpr auto Whole = NoEnds;
template <size_t> constexpr auto Threefold = NoEnds;

#endif

void Shift(uint8_t* row, size_t bytes, uint32_t bits) {
    for (size_t i = 0; i + 1 < bytes; ++i)
        row[i] = static_cast<uint8_t>(row[i] << bits | row[i + 1] >> (8 - bits));
    if (bytes > 0) row[bytes - 1] = static_cast<uint8_t>(row[bytes - 1] << bits);
}

} // namespace

template <>
constinit const MirrorKernels Compiled<MirrorKernels, ThisSet>::Table = {.Ends1 = Whole<1, 1>,
                                                                         .Ends2 = Whole<2, 1>,
                                                                         .Ends4 = Whole<4, 1>,
                                                                         .Ends8 = Whole<8, 1>,
                                                                         .Ends16 = Whole<8, 2>,
                                                                         .Ends24 = Threefold<3>,
                                                                         .Ends32 = Whole<8, 4>,
                                                                         .Ends48 = Threefold<6>,
                                                                         .Ends64 = Whole<8, 8>,
                                                                         .Shift = Shift};

} // namespace zkr::kernels
