// Transpositions in tiles that stay in cache. Whole bytes are gathered sixteen rows at a time, so that rows of the
// target grow by vectors; where pixels are bits, the top bits of such vectors are eight rows of the target.
#include "geometry/kernels/turn_kernels.h"

#include "kernels/family.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

// A rectangle of a block: pixels, ends not included.
struct Tile {
    size_t Left, Right, Top, Bottom;
};

inline const uint8_t* SourceRow(const TurnBlock& block, size_t y) {
    return block.Source + static_cast<ptrdiff_t>(y) * block.SourceStride;
}
inline uint8_t* TargetRow(const TurnBlock& block, size_t x) {
    return block.Target + static_cast<ptrdiff_t>(x) * block.TargetStride;
}

// Pixels of whole bytes, one by one. Where a pixel has a neighbour to overrun into, it is moved as a power of two.
template <size_t bytes> inline void TurnTile(const TurnBlock& block, const Tile& tile) {
    constexpr size_t wide = bytes == 3 ? 4 : bytes == 6 ? 8 : bytes;
    for (size_t x = tile.Left; x < tile.Right; ++x) {
        const uint8_t* from = SourceRow(block, tile.Top) + x * bytes;
        uint8_t* to = TargetRow(block, x) + tile.Top * bytes;
        size_t y = tile.Top;
        if (x + 1 < block.Columns)
            for (; y + 1 < tile.Bottom; ++y, from += block.SourceStride, to += bytes)
                std::memcpy(to, from, wide);
        for (; y < tile.Bottom; ++y, from += block.SourceStride, to += bytes)
            std::memcpy(to, from, bytes);
    }
}

template <size_t bytes> void TurnPixels(const TurnBlock& block) {
    constexpr size_t side = 64;
    for (size_t y = 0; y < block.Rows; y += side)
        for (size_t x = 0; x < block.Columns; x += side)
            TurnTile<bytes>(block, {x, std::min(x + side, block.Columns), y, std::min(y + side, block.Rows)});
}

// Any fields of bits. Eight pixels fill whole bytes at every depth.
void TurnFields(const TurnBlock& block) {
    const auto bits = static_cast<size_t>(block.Bits);
    const bool isGray = bits == 12;
    const uint32_t mask = (1u << bits) - 1;
    const size_t fields = isGray ? 2 : 8;
    for (size_t y = 0; y < block.Rows; y += fields) {
        const size_t rows = std::min(fields, block.Rows - y);
        const size_t bytes = (rows * bits + 7) / 8;
        for (size_t x = 0; x < block.Columns; ++x) {
            const size_t byte = x * bits / 8, bit = x * bits % 8;
            const bool crosses = bit + bits > 8;
            uint64_t packed = 0;
            for (size_t i = 0; i < rows; ++i) {
                const uint8_t* const from = SourceRow(block, y + i) + byte;
                if (isGray) {
                    const uint32_t pair = from[0] | static_cast<uint32_t>(from[1]) << 8;
                    packed |= uint64_t{pair >> bit & mask} << (i * bits);
                } else {
                    const uint32_t pair = static_cast<uint32_t>(from[0]) << 8 | (crosses ? from[1] : 0u);
                    packed |= uint64_t{pair >> (16 - bit - bits) & mask} << (64 - (i + 1) * bits);
                }
            }
            if (!isGray) packed = __builtin_bswap64(packed);
            std::memcpy(TargetRow(block, x) + y * bits / 8, &packed, bytes);
        }
    }
}

#if defined(__SSE2__)

// Sixteen columns of bytes of sixteen rows, as vectors of a column each. The rows are those of at(0) to at(15).
template <typename At> inline void GatherBytes(At at, __m128i (&columns)[16]) {
    __m128i a[16], b[16];
    for (size_t i = 0; i < 16; ++i)
        a[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at(i)));
    const auto interleave = [](const __m128i(&from)[16], __m128i(&to)[16]) {
        for (size_t i = 0; i < 8; ++i) {
            to[2 * i] = _mm_unpacklo_epi8(from[i], from[i + 8]);
            to[2 * i + 1] = _mm_unpackhi_epi8(from[i], from[i + 8]);
        }
    };
    interleave(a, b);
    interleave(b, a);
    interleave(a, b);
    interleave(b, columns);
}

// The tiles of so many bytes and rows that a block has whole, and the rest by single pixels.
template <size_t pixelsOfTile, size_t rowsOfTile, typename Whole, typename Rest>
inline void InTiles(const TurnBlock& block, Whole whole, Rest rest) {
    const size_t right = block.Columns / pixelsOfTile * pixelsOfTile;
    const size_t bottom = block.Rows / rowsOfTile * rowsOfTile;
    for (size_t x = 0; x < right; x += pixelsOfTile)
        for (size_t y = 0; y < bottom; y += rowsOfTile)
            whole(x, y);
    if (right < block.Columns) rest(Tile{right, block.Columns, 0, bottom});
    if (bottom < block.Rows) rest(Tile{0, block.Columns, bottom, block.Rows});
}

void Turn8(const TurnBlock& block) {
    InTiles<16, 16>(
        block,
        [&](size_t x, size_t y) {
            __m128i columns[16];
            GatherBytes([&](size_t i) { return SourceRow(block, y + i) + x; }, columns);
            for (size_t i = 0; i < 16; ++i)
                _mm_storeu_si128(reinterpret_cast<__m128i*>(TargetRow(block, x + i) + y), columns[i]);
        },
        [&](const Tile& tile) { TurnTile<1>(block, tile); });
}

// What is left of a block beside its whole tiles, as a block of its own. The tile begins at whole bytes of both.
inline void TurnRest(const TurnBlock& block, const Tile& tile) {
    const auto bits = static_cast<size_t>(block.Bits);
    TurnFields({.Source = SourceRow(block, tile.Top) + tile.Left * bits / 8,
                .SourceStride = block.SourceStride,
                .Target = TargetRow(block, tile.Left) + tile.Top * bits / 8,
                .TargetStride = block.TargetStride,
                .Columns = tile.Right - tile.Left,
                .Rows = tile.Bottom - tile.Top,
                .Bits = block.Bits});
}

void Turn4(const TurnBlock& block) {
    InTiles<32, 16>(
        block,
        [&](size_t x, size_t y) {
            __m128i columns[16];
            GatherBytes([&](size_t i) { return SourceRow(block, y + i) + x / 2; }, columns);
            const __m128i low = _mm_set1_epi16(0x0F), high = _mm_set1_epi16(0xF0);
            for (size_t i = 0; i < 16; ++i) {
                const __m128i v = columns[i];
                const __m128i first = _mm_or_si128(_mm_and_si128(v, high), _mm_srli_epi16(v, 12));
                const __m128i second = _mm_or_si128(_mm_slli_epi16(_mm_and_si128(v, low), 4),
                                                    _mm_and_si128(_mm_srli_epi16(v, 8), low));
                const __m128i both = _mm_packus_epi16(first, second);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(TargetRow(block, x + 2 * i) + y / 2), both);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(TargetRow(block, x + 2 * i + 1) + y / 2),
                                 _mm_unpackhi_epi64(both, both));
            }
        },
        [&](const Tile& tile) { TurnRest(block, tile); });
}

#if defined(__AVX2__)

// Rows of 32 bytes as vectors, transposed: eight rows of eight dwords, or four of four quadwords.
inline void Transpose(__m256i (&rows)[8]) {
    __m256i a[8], b[8];
    for (size_t i = 0; i < 8; i += 2) {
        a[i] = _mm256_unpacklo_epi32(rows[i], rows[i + 1]);
        a[i + 1] = _mm256_unpackhi_epi32(rows[i], rows[i + 1]);
    }
    for (size_t i = 0; i < 8; i += 4)
        for (size_t k = 0; k < 2; ++k) {
            b[i + 2 * k] = _mm256_unpacklo_epi64(a[i + k], a[i + k + 2]);
            b[i + 2 * k + 1] = _mm256_unpackhi_epi64(a[i + k], a[i + k + 2]);
        }
    for (size_t i = 0; i < 4; ++i) {
        rows[i] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x20);
        rows[i + 4] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x31);
    }
}
inline void Transpose(__m256i (&rows)[4]) {
    const __m256i a = _mm256_unpacklo_epi64(rows[0], rows[1]), b = _mm256_unpackhi_epi64(rows[0], rows[1]);
    const __m256i c = _mm256_unpacklo_epi64(rows[2], rows[3]), d = _mm256_unpackhi_epi64(rows[2], rows[3]);
    rows[0] = _mm256_permute2x128_si256(a, c, 0x20);
    rows[1] = _mm256_permute2x128_si256(b, d, 0x20);
    rows[2] = _mm256_permute2x128_si256(a, c, 0x31);
    rows[3] = _mm256_permute2x128_si256(b, d, 0x31);
}

// Vectors of pixels that are powers of two, and of those that lack a quarter of one: these lie in 24 bytes.
template <size_t bytes> inline __m256i LoadPixels(const uint8_t* from) {
    if constexpr (bytes == 4 || bytes == 8) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    } else {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 8));
        constexpr char no = -1;
        const __m256i spread = bytes == 3
                                   ? _mm256_setr_epi8(0, 1, 2, no, 3, 4, 5, no, 6, 7, 8, no, 9, 10, 11, no, 4,
                                                      5, 6, no, 7, 8, 9, no, 10, 11, 12, no, 13, 14, 15, no)
                                   : _mm256_setr_epi8(0, 1, 2, 3, 4, 5, no, no, 6, 7, 8, 9, 10, 11, no, no, 4,
                                                      5, 6, 7, 8, 9, no, no, 10, 11, 12, 13, 14, 15, no, no);
        return _mm256_shuffle_epi8(_mm256_set_m128i(second, first), spread);
    }
}
template <size_t bytes> inline void StorePixels(uint8_t* to, __m256i pixels) {
    if constexpr (bytes == 4 || bytes == 8) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), pixels);
    } else {
        constexpr char no = -1;
        const __m128i gather = bytes == 3
                                   ? _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, no, no, no, no)
                                   : _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, no, no, no, no);
        const __m256i gathered = _mm256_shuffle_epi8(pixels, _mm256_broadcastsi128_si256(gather));
        const __m256i joined =
            _mm256_permutevar8x32_epi32(gathered, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(joined));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 16), _mm256_extracti128_si256(joined, 1));
    }
}

constexpr size_t StreamedRows = 64;

// Writes whole lines past the caches. `made` has room for a line before it.
inline void StreamLines(uint8_t* to, uint8_t* made, size_t bytes, uint8_t* pending, bool isFirst) {
    const size_t before = reinterpret_cast<uintptr_t>(to) % LineBytes;
    if (before != 0 && isFirst) {
        // The line begins with what is not of this row.
        const size_t head = LineBytes - before;
        std::memcpy(to, made, head);
        to += head, made += head, bytes -= head;
    } else {
        std::memcpy(made - before, pending, before);
        to -= before, made -= before, bytes += before;
    }
    for (; bytes >= LineBytes; to += LineBytes, made += LineBytes, bytes -= LineBytes)
        for (size_t i = 0; i < LineBytes; i += sizeof(__m256i))
            _mm256_stream_si256(reinterpret_cast<__m256i*>(to + i),
                                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(made + i)));
    std::memcpy(pending, made, bytes);
}

// Tiles are made beside the target: its rows lie far apart, so that each line would be read before it is written, and
// written more than once.
template <size_t bytes> void TurnStreamed(const TurnBlock& block) {
    constexpr size_t side = bytes <= 4 ? 8 : 4, most = 64, stride = LineBytes + StreamedRows * bytes;
    alignas(LineBytes) uint8_t tile[most * stride];
    uint8_t* const made = tile + LineBytes;
    for (size_t left = 0; left < block.Columns; left += most) {
        const size_t columns = std::min(most, block.Columns - left), right = columns / side * side;
        for (size_t y = 0; y < StreamedRows; y += side) {
            for (size_t x = 0; x < right; x += side) {
                __m256i rows[side];
                for (size_t i = 0; i < side; ++i)
                    rows[i] = LoadPixels<bytes>(SourceRow(block, y + i) + (left + x) * bytes);
                Transpose(rows);
                for (size_t i = 0; i < side; ++i)
                    StorePixels<bytes>(made + (x + i) * stride + y * bytes, rows[i]);
            }
            for (size_t x = right; x < columns; ++x)
                for (size_t i = y; i < y + side; ++i)
                    std::memcpy(made + x * stride + i * bytes, SourceRow(block, i) + (left + x) * bytes,
                                bytes);
        }
        for (size_t x = 0; x < columns; ++x)
            StreamLines(TargetRow(block, left + x), made + x * stride, StreamedRows * bytes,
                        block.Pending + (left + x) * LineBytes, block.IsFirst);
    }
    _mm_sfence();
}

// Squares of pixels, down bands of rows: the lines of a band stay in cache while the squares go through it.
template <size_t bytes> void TurnSquares(const TurnBlock& block) {
    constexpr size_t side = bytes <= 4 ? 8 : 4, band = 64;
    const size_t right = block.Columns / side * side, bottom = block.Rows / side * side;
    if (block.Pending != nullptr && block.Rows == StreamedRows) return TurnStreamed<bytes>(block);
    for (size_t top = 0; top < bottom; top += band)
        for (size_t x = 0; x < right; x += side)
            for (size_t y = top; y < std::min(top + band, bottom); y += side) {
                __m256i rows[side];
                for (size_t i = 0; i < side; ++i)
                    rows[i] = LoadPixels<bytes>(SourceRow(block, y + i) + x * bytes);
                Transpose(rows);
                for (size_t i = 0; i < side; ++i)
                    StorePixels<bytes>(TargetRow(block, x + i) + y * bytes, rows[i]);
            }
    if (right < block.Columns) TurnTile<bytes>(block, {right, block.Columns, 0, bottom});
    if (bottom < block.Rows) TurnTile<bytes>(block, {0, block.Columns, bottom, block.Rows});
}

#else

constexpr size_t StreamedRows = 0;
template <size_t bytes> void TurnSquares(const TurnBlock& block) {
    TurnPixels<bytes>(block);
}

#endif

// The top bits of bytes come out with the first byte lowest, and the first pixel is the top bit of its byte: so
// rows are taken in the opposite order by eights.
inline size_t OppositeByEights(size_t row) {
    return row ^ 7;
}

#if defined(__AVX2__)
// Of 32 rows and 128 columns.
inline void TurnTile1(const uint8_t* source, ptrdiff_t sourceStride, uint8_t* target,
                      ptrdiff_t targetStride) {
    __m128i first[16], second[16];
    const auto from = [&](size_t i) {
        return source + static_cast<ptrdiff_t>(OppositeByEights(i)) * sourceStride;
    };
    GatherBytes(from, first);
    GatherBytes([&](size_t i) { return from(i + 16); }, second);
    for (size_t i = 0; i < 16; ++i) {
        __m256i v = _mm256_set_m128i(second[i], first[i]);
        for (size_t bit = 0; bit < 8; ++bit, target += targetStride) {
            const int top = _mm256_movemask_epi8(v);
            std::memcpy(target, &top, 4);
            v = _mm256_add_epi8(v, v);
        }
    }
}

// Squares whose rows are lines of cache go through copies that lie close together: between rows that lie apart, each
// line would be waited for by itself, while of a plain copy many are on their way at once.
void Turn1(const TurnBlock& block) {
    constexpr size_t side = 512, bytes = side / 8;
    alignas(64) uint8_t rows[side * bytes], columns[side * bytes];
    std::memset(rows, 0, sizeof rows);
    for (size_t x = 0; x < block.Columns; x += side)
        for (size_t y = 0; y < block.Rows; y += side) {
            const size_t width = std::min(side, block.Columns - x), height = std::min(side, block.Rows - y);
            for (size_t i = 0; i < height; ++i)
                if (width == side)
                    std::memcpy(rows + i * bytes, SourceRow(block, y + i) + x / 8, bytes);
                else
                    std::memcpy(rows + i * bytes, SourceRow(block, y + i) + x / 8, (width + 7) / 8);
            // What is left of other squares must not get into the bits behind the last row.
            if (height % 32 != 0) std::memset(rows + height * bytes, 0, (32 - height % 32) * bytes);
            for (size_t i = 0; i < width; i += 128)
                for (size_t k = 0; k < height; k += 32)
                    TurnTile1(rows + k * bytes + i / 8, bytes, columns + i * bytes + k / 8, bytes);
            for (size_t i = 0; i < width; ++i)
                if (height == side)
                    std::memcpy(TargetRow(block, x + i) + y / 8, columns + i * bytes, bytes);
                else
                    std::memcpy(TargetRow(block, x + i) + y / 8, columns + i * bytes, (height + 7) / 8);
        }
}
#else
void Turn1(const TurnBlock& block) {
    InTiles<128, 16>(
        block,
        [&](size_t x, size_t y) {
            __m128i columns[16];
            GatherBytes([&](size_t i) { return SourceRow(block, y + OppositeByEights(i)) + x / 8; }, columns);
            uint8_t* to = TargetRow(block, x) + y / 8;
            for (__m128i v : columns)
                for (size_t bit = 0; bit < 8; ++bit, to += block.TargetStride) {
                    const int top = _mm_movemask_epi8(v);
                    std::memcpy(to, &top, 2);
                    v = _mm_add_epi8(v, v);
                }
        },
        [&](const Tile& tile) { TurnRest(block, tile); });
}
#endif

#else

constexpr size_t StreamedRows = 0;
constexpr auto Turn1 = TurnFields, Turn4 = TurnFields;
constexpr auto Turn8 = TurnPixels<1>;
template <size_t bytes> void TurnSquares(const TurnBlock& block) {
    TurnPixels<bytes>(block);
}

#endif

} // namespace

template <>
constinit const TurnKernels Compiled<TurnKernels, ThisSet>::Table = {
    .Turn1 = Turn1,
    .Turn4 = Turn4,
    .Turn8 = Turn8,
    .Turn16 = TurnPixels<2>,
    .Turn24 = TurnSquares<3>,
    .Turn32 = TurnSquares<4>,
    .Turn48 = TurnSquares<6>,
    .Turn64 = TurnSquares<8>,
    .TurnFields = TurnFields,
    .StreamedRows = static_cast<int32_t>(StreamedRows),
};

} // namespace zkr::kernels
