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
