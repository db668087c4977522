// Z_PutBitmapRowSegments: pieces of a row, exact to the pixel at every depth. Pixels of 1 to 7 bits are
// packed from the top bit of a byte down, pixels of 12 bits from the bottom bit up; all others are whole
// bytes.
#include "core/segments.h"
#include "core/bit_merge.h"
#include "core/depth.h"
#include "core/exact_rows.h"
#include "core/flags.h"
#include "core/return_codes.h"
#include "core/row_copy.h"
#include "core/storage/compressed.h"
#include "core/storage/storage_class.h"
#include "zkr13n/rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace zkr {

namespace {

// How pixels are written: their bits, and how many of the last ones stay as the destination has them.
struct WrittenForm {
    uint32_t Bits;
    uint32_t KeptBits;
};

WrittenForm FormOf(const BitmapHandle& bitmap, bool keepTopBits) {
    const bool isGray = bitmap.BitsPerPixel == 16 && bitmap.Order == Z_ORDER_GRAY;
    return {static_cast<uint32_t>(bitmap.BitsPerPixel),
            keepTopBits && !isGray ? static_cast<uint32_t>(DepthOf(bitmap.BitsPerPixel).AlphaBits) : 0};
}

template <size_t pixelBytes, size_t writtenBytes>
void MergeFirstBytes(uint8_t* target, const uint8_t* source, uint64_t count) {
    for (; count > 0; --count, target += pixelBytes, source += pixelBytes)
        std::memcpy(target, source, writtenBytes);
}

void MergeBelowTopBit(uint8_t* target, const uint8_t* source, uint64_t count) {
    for (; count > 0; --count, target += 2, source += 2) {
        target[0] = source[0];
        target[1] = static_cast<uint8_t>((target[1] & 0x80) | (source[1] & 0x7F));
    }
}

template <typename Copy>
void MergePixels(WrittenForm form, BitPlace<uint8_t> target, BitPlace<const uint8_t> source, uint64_t count,
                 Copy copy) {
    if (form.Bits < 8) return BitMerge<true>(target, source, count * form.Bits).Run(copy);
    if (form.KeptBits == 0) return BitMerge<false>(target, source, count * form.Bits).Run(copy);
    uint8_t* to = target.Data + target.Bit / 8;
    const uint8_t* from = source.Data + source.Bit / 8;
    if (form.Bits == 16) return MergeBelowTopBit(to, from, count);
    if (form.Bits == 32) return MergeFirstBytes<4, 3>(to, from, count);
    MergeFirstBytes<8, 6>(to, from, count);
}

// A piece of a row that lies inside the bitmap.
struct Piece {
    uint32_t Column;       // in the row
    uint32_t SourceColumn; // in the buffer
    uint32_t Count;        // pixels
};

Piece ClippedPiece(const BitmapHandle& bitmap, int32_t columnOffset, uint32_t start, uint32_t end) {
    const int64_t from = std::max<int64_t>(int64_t{start} + columnOffset, 0);
    const int64_t to = std::min<int64_t>(int64_t{end} + columnOffset, bitmap.Width);
    if (to <= from) return {};
    return {.Column = static_cast<uint32_t>(from),
            .SourceColumn = static_cast<uint32_t>(from - columnOffset),
            .Count = static_cast<uint32_t>(to - from)};
}

// Where a row is not in memory its bytes are fetched, merged and written back, a fixed buffer at a time; a
// piece that fills whole bytes is only written.
ReturnCode MergeThroughStorage(BitmapHandle& bitmap, int32_t row, const uint8_t* buffer, WrittenForm form,
                               Piece piece) {
    const uint64_t bits = uint64_t{piece.Count} * form.Bits,
                   sourceBit = uint64_t{piece.SourceColumn} * form.Bits;
    if (form.KeptBits == 0 && (bits | sourceBit | uint64_t{piece.Column} * form.Bits) % 8 == 0)
        return WriteExactly(bitmap, buffer + sourceBit / 8, row, static_cast<int32_t>(piece.Column),
                            static_cast<uint32_t>(bits / 8));

    std::array<uint8_t, 4096> window;
    const uint32_t mostPixels = static_cast<uint32_t>((window.size() - 1) * 8 / form.Bits);
    while (piece.Count > 0) {
        const uint32_t count = std::min(piece.Count, mostPixels);
        const uint64_t firstBit = uint64_t{piece.Column} * form.Bits;
        const auto bytes = static_cast<uint32_t>((firstBit % 8 + uint64_t{count} * form.Bits + 7) / 8);
        const auto column = static_cast<int32_t>(piece.Column);

        ReturnCode result = ReadExactly(bitmap, window.data(), row, column, bytes);
        if (result != code::Success) return result;
        MergePixels(form, {window.data(), firstBit % 8}, {buffer, uint64_t{piece.SourceColumn} * form.Bits},
                    count, std::memcpy);
        result = WriteExactly(bitmap, window.data(), row, column, bytes);
        if (result != code::Success) return result;

        piece = {.Column = piece.Column + count,
                 .SourceColumn = piece.SourceColumn + count,
                 .Count = piece.Count - count};
    }
    return code::Success;
}

// A row of runs is rebuilt once for as many segments as follow one another from left to right.
ReturnCode MergeIntoRuns(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t columnOffset,
                         std::span<const uint32_t> segments) {
    if (bitmap.Addr == nullptr) return code::InvalidBitmap;
    if (row < 0 || row >= bitmap.Height) return code::InvalidArgument;
    for (size_t entry = 0; entry + 1 < segments.size();) {
        storage::RowRebuild rebuild(bitmap, row);
        for (; entry + 1 < segments.size(); entry += 2) {
            const Piece piece = ClippedPiece(bitmap, columnOffset, segments[entry], segments[entry + 1]);
            if (piece.Count == 0) continue;
            if (piece.Column < rebuild.Position()) break;
            rebuild.KeepTo(piece.Column);
            rebuild.PutBits(buffer + piece.SourceColumn / 8, piece.SourceColumn % 8, piece.Count);
        }
        if (!rebuild.Store()) return code::OutOfMemory;
    }
    return code::Success;
}

// Whole bytes that stand in memory are copied by copy(target, source, bytes).
template <typename Copy>
ReturnCode PutSegments(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t columnOffset,
                       std::span<const uint32_t> segments, bool keepTopBits, Copy copy) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    if (storageClass == nullptr) return code::OutOfMemory;
    if (storageClass == &storage::Compressed)
        return MergeIntoRuns(bitmap, buffer, row, columnOffset, segments);
    const WrittenForm form = FormOf(bitmap, keepTopBits);
    uint8_t* const data = storageClass->ReachRow(bitmap, row);

    for (size_t entry = 0; entry + 1 < segments.size(); entry += 2) {
        const Piece piece = ClippedPiece(bitmap, columnOffset, segments[entry], segments[entry + 1]);
        if (piece.Count == 0) continue;
        if (data != nullptr) {
            MergePixels(form, {data, uint64_t{piece.Column} * form.Bits},
                        {buffer, uint64_t{piece.SourceColumn} * form.Bits}, piece.Count, copy);
        } else {
            const ReturnCode result = MergeThroughStorage(bitmap, row, buffer, form, piece);
            if (result != code::Success) return result;
        }
    }
    return code::Success;
}

// A word whose top bit is the first pixel, as its bytes lie in memory.
uint32_t WordOfBytes(uint32_t bits) {
    if constexpr (std::endian::native == std::endian::big) return bits;
    return bits >> 24 | (bits >> 8 & 0xFF00) | (bits << 8 & 0xFF0000) | bits << 24;
}

// 2 to 16 bytes, by their first and last word.
inline void CopyShort(uint8_t* to, const uint8_t* from, size_t bytes) {
    const auto copyEnds = [=]<typename Word>(Word first) {
        Word last;
        std::memcpy(&first, from, sizeof(Word));
        std::memcpy(&last, from + bytes - sizeof(Word), sizeof(Word));
        std::memcpy(to, &first, sizeof(Word));
        std::memcpy(to + bytes - sizeof(Word), &last, sizeof(Word));
    };
    if (bytes >= 8) return copyEnds(uint64_t{});
    if (bytes >= 4) return copyEnds(uint32_t{});
    copyEnds(uint16_t{});
}

// Pieces inside a row of whole bytes in memory: most are short where a region has many.
template <size_t pixelBytes, typename Copy>
void CopyPieces(uint8_t* data, const uint8_t* buffer, std::span<const uint32_t> segments, Copy copy) {
    for (size_t entry = 0; entry + 1 < segments.size(); entry += 2) {
        const size_t first = size_t{segments[entry]} * pixelBytes;
        if (segments[entry + 1] - segments[entry] == 1) {
            std::memcpy(data + first, buffer + first, pixelBytes);
            continue;
        }
        if (segments[entry] >= segments[entry + 1]) continue;
        const size_t bytes = size_t{segments[entry + 1] - segments[entry]} * pixelBytes;
        if (bytes <= 16)
            CopyShort(data + first, buffer + first, bytes);
        else
            copy(data + first, buffer + first, bytes);
    }
}

// Pieces inside a row of bits in memory. Rows are as long as whole words of 32 bits, of which the first pixel is the
// top bit of the first byte.
void CopyBitPieces(uint8_t* data, const uint8_t* buffer, std::span<const uint32_t> segments) {
    const auto take = [=](size_t word, uint32_t bits) {
        const uint32_t mask = WordOfBytes(bits);
        uint32_t old, given;
        std::memcpy(&old, data + word * 4, 4);
        std::memcpy(&given, buffer + word * 4, 4);
        old ^= (old ^ given) & mask;
        std::memcpy(data + word * 4, &old, 4);
    };
    for (size_t entry = 0; entry + 1 < segments.size(); entry += 2) {
        const uint32_t start = segments[entry], end = segments[entry + 1];
        if (start >= end) continue;
        const size_t first = start / 32, last = (end - 1) / 32;
        const uint32_t head = UINT32_MAX >> start % 32, tail = UINT32_MAX << (31 - (end - 1) % 32);
        if (first == last) {
            take(first, head & tail);
            continue;
        }
        take(first, head);
        if (last > first + 1)
            std::memcpy(data + (first + 1) * 4, buffer + (first + 1) * 4, (last - first - 1) * 4);
        take(last, tail);
    }
}

} // namespace

ReturnCode StreamSegments(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row,
                          std::span<const uint32_t> segments) {
    const bool large = bitmap.Size >= SmallestStreamedBitmap;
    const auto copy = [large](uint8_t* to, const uint8_t* from, size_t bytes) {
        if (large && bytes >= SmallestStreamedRow)
            StreamPart(to, from, bytes);
        else
            CopyBytes(to, from, bytes);
    };
    const storage::StorageClass* const storageClass = storage::ClassOf(bitmap);
    uint8_t* const data = storageClass == nullptr ? nullptr : storageClass->ReachRow(bitmap, row);
    if (data != nullptr && storageClass != &storage::Compressed) {
        switch (bitmap.BitsPerPixel) {
        case 1: CopyBitPieces(data, buffer, segments); return code::Success;
        case 8: CopyPieces<1>(data, buffer, segments, copy); return code::Success;
        case 16: CopyPieces<2>(data, buffer, segments, copy); return code::Success;
        case 24: CopyPieces<3>(data, buffer, segments, copy); return code::Success;
        case 32: CopyPieces<4>(data, buffer, segments, copy); return code::Success;
        case 48: CopyPieces<6>(data, buffer, segments, copy); return code::Success;
        case 64: CopyPieces<8>(data, buffer, segments, copy); return code::Success;
        default: break;
        }
    }
    return PutSegments(bitmap, buffer, row, 0, segments, false, copy);
}

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_PutBitmapRowSegments(BitmapHandle* bitmap, const void* buffer, int32_t row,
                                         int32_t columnOffset, const uint32_t* segments,
                                         uint32_t segmentEntries, int32_t keepTopBits) {
    return PutSegments(*bitmap, static_cast<const uint8_t*>(buffer), row, columnOffset,
                       {segments, segmentEntries}, keepTopBits != 0, CopyBytes);
}
