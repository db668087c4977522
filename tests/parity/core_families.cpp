// Parity cases of the core: records, storage classes, row transfer, copies.
#include "parity/digest.h"

#include "zkr13n/compressed_rows.h"
#include "zkr13n/copy.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace zkr::test {

void Digest::AddRecord(const BitmapHandle& b) {
    for (const void* pointer : {static_cast<const void*>(b.StorageHandle), static_cast<const void*>(b.Addr),
                                static_cast<const void*>(b.Palette), static_cast<const void*>(b.DitherData),
                                static_cast<const void*>(b.Region), static_cast<const void*>(b.LevelLUT),
                                static_cast<const void*>(b.PaintLUT)})
        Add(pointer != nullptr);
    for (const uint32_t number : {b.BytesPerLine, b.CurrentRow, b.Flags, b.ColorsUsed, b.PlaybackBackColor,
                                  b.TransparentColor, b.LevelLUTLength, b.Reserved})
        Add(int64_t{number});
    for (const int32_t number :
         {b.Width,           b.Height,         b.BitsPerPixel, b.ViewPerspective, b.Order,
          b.DitheringMethod, b.XResolution,    b.YResolution,  b.PlaybackLeft,    b.PlaybackTop,
          b.PlaybackDelay,   b.DisposalMethod, b.LowBit,       b.HighBit,         b.MinVal,
          b.MaxVal,          b.LevelLowBit,    b.LevelHighBit, b.PaintGamma,      b.PaintContrast,
          b.PaintIntensity})
        Add(int64_t{number});
    // How long a compressed strip is does not count.
    Add((b.Flags & Z_FLAG_SUPER_COMPRESSED) != 0 ? 0 : static_cast<int64_t>(b.Size));
    Add(static_cast<int64_t>(b.CurrentRowOffset));
}

namespace {

// Arguments of one call are drawn one after another here and below, since compilers differ in the order in
// which they work out the arguments of a call.
struct Shape {
    Shape(Seeded& seeded, int smallest, int largest)
        : width(seeded.Between(smallest, largest)), height(seeded.Between(smallest, largest)),
          bits(Pick(seeded, Depths)), order(seeded.Below(3)) {}
    int width, height, bits, order;
};

// ---- records

void RecordCase(Seeded& seeded, Digest& digest) {
    BitmapHandle bitmap;
    std::memset(&bitmap, 0xAA, sizeof bitmap);
    const int width = seeded.Below(3000), height = seeded.Below(3000), bits = seeded.Between(-1, 66);
    digest.Add(Z_InitBitmap(&bitmap, width, height, bits));
    digest.AddRecord(bitmap);
    digest.Add(Z_FreeBitmap(&bitmap));

    constexpr int Types[] = {0, 1, 2, 3, 4, 5, 8, 9, 16, 127, 128, 129, 256, 257};
    const int type = Pick(seeded, Types);
    const Shape shape(seeded, 0, 40);
    const int depth = seeded.Below(4) ? shape.bits : bits;
    const int perspective = seeded.Below(9);
    digest.Add(Z_CreateBitmap(&bitmap, type, shape.width, shape.height, depth, shape.order, nullptr,
                              perspective, nullptr, 0));
    digest.AddRecord(bitmap);
    BitmapHandle copy;
    const auto flags = static_cast<uint32_t>(seeded.Below(8));
    const Shape other(seeded, 0, 50);
    const ReturnCode code = Z_DupBitmapNewDim(&copy, &bitmap, other.width, other.height, other.bits, flags);
    digest.Add(code);
    if (code == Z_SUCCESS) {
        digest.AddRecord(copy);
        digest.Add(Z_FreeDuplicateBitmap(&copy, flags));
        digest.AddRecord(copy);
    }
    digest.Add(Z_FreeBitmap(&bitmap));
    digest.AddRecord(bitmap);
}

// ---- storage and rows

void FillBitmap(Seeded& seeded, BitmapHandle& bitmap, int firstRow) {
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int y = firstRow; y < bitmap.Height; ++y) {
        FillRandom(seeded, row.data(), row.size());
        Z_PutBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
    }
}

void AddPixels(Digest& digest, BitmapHandle& bitmap) {
    std::vector<uint8_t> rows(static_cast<size_t>(bitmap.Height) * bitmap.BytesPerLine);
    digest.Add(Z_GetBitmapRow(&bitmap, rows.data(), 0, static_cast<uint32_t>(rows.size())));
    digest.Add(rows.data(), rows.size());
}

void AddMemoryInfo(Digest& digest, BitmapHandle& bitmap) {
    int32_t info[6] = {};
    digest.Add(Z_GetBitmapMemoryInfo(&bitmap, info, info + 1, info + 2, info + 3, info + 4, info + 5));
    for (const int32_t number : info)
        digest.Add(number);
}

// Tiles of a few rows, some in memory and the rest in files, few of them mapped.
void RandomThresholds(Seeded& seeded, uint32_t bytesPerLine) {
    const int rows = seeded.Between(1, 12), rest = seeded.Below(20);
    const int largest = seeded.Below(2) ? 1 << 30 : 4000;
    const int inMemory = seeded.Between(-100, 8), mapped = seeded.Between(-100, 4);
    Z_SetMemoryThresholds(0, largest, static_cast<int>(bytesPerLine) * rows + rest, inMemory, mapped, 31);
}

// A random stretch of bytes that starts in a row and ends inside the bitmap, moved in or out.
void MoveRows(Seeded& seeded, Digest& digest, BitmapHandle& bitmap) {
    const int row = seeded.Below(bitmap.Height), column = seeded.Below(bitmap.Width);
    const auto left = static_cast<uint32_t>(bitmap.Height - row) * bitmap.BytesPerLine;
    const int longest = static_cast<int>(seeded.Below(2) ? bitmap.BytesPerLine : left);
    auto bytes = static_cast<uint32_t>(seeded.Between(1, longest));
    std::vector<uint8_t> buffer(bytes);
    FillRandom(seeded, buffer.data(), bytes);
    const int operation = seeded.Below(4);
    const uint32_t offset = static_cast<uint32_t>(column) * static_cast<uint32_t>(bitmap.BitsPerPixel) / 8;
    if (operation >= 2) bytes = std::min(bytes, left - offset);
    if (operation == 0) digest.Add(Z_GetBitmapRow(&bitmap, buffer.data(), row, bytes));
    if (operation == 1) digest.Add(Z_PutBitmapRow(&bitmap, buffer.data(), row, bytes));
    if (operation == 2) digest.Add(Z_GetBitmapRowCol(&bitmap, buffer.data(), row, column, bytes));
    if (operation == 3) digest.Add(Z_PutBitmapRowCol(&bitmap, buffer.data(), row, column, bytes));
    digest.Add(buffer.data(), buffer.size());
}

void PutSegments(Seeded& seeded, Digest& digest, BitmapHandle& bitmap) {
    std::vector<uint32_t> columns;
    for (int i = 2 * seeded.Between(1, 5); i > 0; --i)
        columns.push_back(static_cast<uint32_t>(seeded.Below(bitmap.Width + 1)));
    std::sort(columns.begin(), columns.end());
    const auto first = static_cast<int>(columns.front());
    std::vector<uint8_t> buffer(bitmap.BytesPerLine + 8);
    FillRandom(seeded, buffer.data(), buffer.size());
    // Segments are columns of the buffer; the offset moves them in the row.
    const int offset = seeded.Below(2) ? 0 : -seeded.Below(first + 1);
    const int row = seeded.Below(bitmap.Height), keepTopBits = seeded.Below(2);
    digest.Add(Z_PutBitmapRowSegments(&bitmap, buffer.data(), row, offset, columns.data(),
                                      static_cast<uint32_t>(columns.size()), keepTopBits));
}

void ChangeStorage(Seeded& seeded, Digest& digest, BitmapHandle& bitmap) {
    constexpr int Types[] = {1, 4, 128};
    const int type = Pick(seeded, Types), rows = seeded.Between(1, 9);
    const int conventional = seeded.Below(8), maxMapped = seeded.Below(5), mapped = seeded.Below(5);
    const auto flags = static_cast<uint32_t>(seeded.Below(64));
    digest.Add(Z_SetBitmapMemoryInfo(&bitmap, type, static_cast<int>(bitmap.BytesPerLine) * rows, 0,
                                     conventional, maxMapped, mapped, flags));
    AddMemoryInfo(digest, bitmap);
}

void ChangeHeight(Seeded& seeded, Digest& digest, BitmapHandle& bitmap) {
    const int before = bitmap.Height;
    digest.Add(Z_ChangeBitmapHeight(&bitmap, seeded.Between(1, 50)));
    FillBitmap(seeded, bitmap, before);
    digest.AddRecord(bitmap);
}

void StorageCase(Seeded& seeded, Digest& digest) {
    constexpr int Types[] = {1, 2, 4, 8, 128, 256};
    const int type = Pick(seeded, Types);
    const Shape shape(seeded, 1, 100);
    BitmapHandle bitmap;
    Z_InitBitmap(&bitmap, shape.width, shape.height, shape.bits);
    RandomThresholds(seeded, bitmap.BytesPerLine);
    std::vector<uint8_t> own(bitmap.Size);
    digest.Add(Z_CreateBitmap(&bitmap, type, shape.width, shape.height, shape.bits, shape.order, nullptr, 2,
                              own.data(), own.size()));
    AddMemoryInfo(digest, bitmap);
    FillBitmap(seeded, bitmap, 0);
    for (int i = 0; i < 25; ++i) {
        const int operation = seeded.Below(20);
        if (operation < 14)
            MoveRows(seeded, digest, bitmap);
        else if (operation < 18)
            PutSegments(seeded, digest, bitmap);
        else if (operation == 18)
            ChangeStorage(seeded, digest, bitmap);
        else if (!(bitmap.Flags & Z_FLAG_USER_DATA))
            ChangeHeight(seeded, digest, bitmap);
    }
    BitmapHandle copy;
    digest.Add(Z_CopyBitmap(&copy, &bitmap));
    AddPixels(digest, copy);
    AddPixels(digest, bitmap);
    digest.AddRecord(bitmap);
    digest.Add(Z_FreeBitmap(&copy));
    digest.Add(Z_FreeBitmap(&bitmap));
}

// ---- compressed rows

// Strokes and gaps, noise among them, now and then longer than a run can be.
void CompressedRowCase(Seeded& seeded, Digest& digest) {
    const int width = seeded.Between(1, seeded.Below(20) ? 3000 : 300000), rows = seeded.Between(1, 4);
    const auto stride = static_cast<size_t>((width + 31) / 32 * 4), most = static_cast<size_t>(width + 3);
    std::vector<uint8_t> bytes(static_cast<size_t>(rows) * stride);
    const int longest = Pick(seeded, {1, 5, 500, 9000});
    for (size_t place = 0; place < bytes.size();) {
        const uint8_t byte = seeded.Below(3) ? static_cast<uint8_t>(-seeded.Below(2)) : seeded.Byte();
        for (int count = seeded.Between(1, longest); count > 0 && place < bytes.size(); --count)
            bytes[place++] = byte;
    }
    std::vector<uint16_t> runs(static_cast<size_t>(rows) * most), other(runs.size());
    Z_CompressRows(runs.data(), bytes.data(), width, rows);
    digest.Add(runs.data(), runs.size() * sizeof(uint16_t));
    digest.Add(Z_MirrorCompressedBuffer(runs.data(), other.data(), rows));
    digest.Add(other.data(), other.size() * sizeof(uint16_t));
    digest.Add(Z_FlipCompressedBuffer(other.data(), runs.data(), rows));
    const int column = seeded.Below(width);
    Z_ExpandRow(runs.data(), bytes.data(), column, width - column);
    Z_CompressRow(other.data(), bytes.data(), column, width - column - seeded.Below(width - column));
    Z_ExpandRows(runs.data(), bytes.data(), width, rows);
    digest.Add(bytes.data(), bytes.size());
    digest.Add(other.data(), other.size() * sizeof(uint16_t));
}

void StripsCase(Seeded& seeded, Digest& digest) {
    BitmapHandle bitmap;
    const int width = seeded.Between(1, 100), height = seeded.Between(1, 50);
    const int bits = seeded.Below(2) ? 24 : 1;
    digest.Add(Z_CreateBitmap(&bitmap, MemorySuperCompressed, width, height, bits, Z_ORDER_BGR, nullptr, 2,
                              nullptr, 0));
    FillBitmap(seeded, bitmap, 0);
    for (int i = 0; i < 25; ++i) {
        const int operation = seeded.Below(8);
        if (operation < 6)
            MoveRows(seeded, digest, bitmap);
        else if (operation == 6)
            PutSegments(seeded, digest, bitmap);
        else
            digest.Add(Z_ChangeBitmapHeight(&bitmap, seeded.Between(1, 50)));
    }
    AddPixels(digest, bitmap);
    digest.Add(Z_FreeBitmap(&bitmap));
}

// ---- run-compressed bitmaps

// Wide rows make the heap grow; its size is in the record.
void RunBitmapCase(Seeded& seeded, Digest& digest) {
    BitmapHandle bitmap;
    const int width = seeded.Below(4) ? seeded.Between(1, 300) : seeded.Between(60000, 140000);
    digest.Add(Z_CreateBitmap(&bitmap, MemoryCompressed, width, seeded.Between(1, 12), 1, 0, nullptr, 2,
                              nullptr, 0));
    std::vector<uint16_t> list(static_cast<size_t>(width) + 3);
    for (int i = 0; i < 15; ++i) {
        const int operation = seeded.Below(8), row = seeded.Below(bitmap.Height);
        const int column = seeded.Below(width), part = seeded.Between(1, width - column);
        if (operation < 3) MoveRows(seeded, digest, bitmap);
        if (operation == 3) PutSegments(seeded, digest, bitmap);
        if (operation == 4) digest.Add(Z_TrimBitmapHeap(&bitmap));
        if (operation == 5)
            digest.Add(Z_GrowBitmapHeap(&bitmap, static_cast<uint32_t>(seeded.Below(500000))));
        if (operation == 6) ChangeHeight(seeded, digest, bitmap);
        if (operation == 7) {
            digest.Add(Z_GetBitmapRowColCompressed(&bitmap, nullptr, list.data(), row, column, part));
            digest.Add(Z_PutBitmapRowColCompressed(&bitmap, nullptr, list.data(), 0, width - part, part));
            digest.Add(list.data(), list.size() * 2);
        }
        digest.AddRecord(bitmap);
    }
    digest.Add(Z_ToggleBitmapCompression(&bitmap));
    AddPixels(digest, bitmap);
    digest.Add(Z_ToggleBitmapCompression(&bitmap));
    digest.AddRecord(bitmap);
    digest.Add(Z_FreeBitmap(&bitmap));
}

constexpr Family Families[] = {{"record", 2000, RecordCase},
                               {"storage", 400, StorageCase},
                               {"strips", 300, StripsCase},
                               {"compressed-row", 500, CompressedRowCase},
                               {"run-bitmap", 200, RunBitmapCase}};

} // namespace

std::span<const Family> CoreFamilies() {
    return Families;
}

} // namespace zkr::test
