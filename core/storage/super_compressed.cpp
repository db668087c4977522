// The super-compressed class: strips of 16 rows, each compressed by a filter module into a mapping of its
// own. One strip at a time lies in a buffer of plain rows, where it is read and written; it is compressed
// again when another strip takes its place. Rows reach callers through that buffer alone.
#include "core/return_codes.h"
#include "core/row_copy.h"
#include "core/sizes.h"
#include "core/storage/filter_modules.h"
#include "core/storage/mapping.h"
#include "core/storage/storage_class.h"
#include "zkr13n/allocation.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace zkr::storage {

namespace {

constexpr int32_t StripRows = 16;
constexpr int32_t NoStrip = -StripRows; // as CurrentStrip
constexpr size_t BufferAlignment = 32;
constexpr uint64_t SaveBufferRows = 32; // compressed rows may be longer than plain ones

struct Strip {
    MappedView Data;    // empty while the strip has none and is blank
    uint32_t Bytes;     // of Data
    uint32_t Rows;      // StripRows, but for the last strip
    uint32_t SavedRows; // the rows that Data holds
    uint32_t ValidRows; // the first of them; those that a change of height has cut stay cut
};

struct alignas(Strip) SuperBlock {
    int32_t StripCount;
    int32_t CurrentStrip; // first row of the strip in StripBuffer
    uint8_t* StripBuffer;
    void* StripBufferBase;
    uint32_t Dirty; // StripBuffer holds changes that are not saved
    BITMAPINFOHEADER* StripHeader;
    uint8_t* SaveBuffer;
    uint32_t SaveBufferSize;
    Filter FilterIndex;
    int32_t FilterQuality;
    int32_t FilterParameter;

    Strip* Strips() { return reinterpret_cast<Strip*>(this + 1); }
    Strip& operator[](int32_t index) { return Strips()[index]; }
};

SuperBlock* BlockOf(const BitmapHandle& bitmap) {
    return static_cast<SuperBlock*>(bitmap.Addr);
}

int32_t StripsForHeight(int32_t height) {
    return static_cast<int32_t>((int64_t{height} + StripRows - 1) / StripRows);
}

// The rows that a bitmap of some height has in its last strip.
uint32_t RowsOfLast(int32_t height) {
    return static_cast<uint32_t>(height - (StripsForHeight(height) - 1) * StripRows);
}

uint64_t BlockBytes(int32_t stripCount) {
    return sizeof(SuperBlock) + static_cast<uint64_t>(stripCount) * sizeof(Strip);
}

void AppendStrips(SuperBlock& block, int32_t height) {
    const int32_t count = StripsForHeight(height);
    for (int32_t& index = block.StripCount; index < count; ++index)
        block[index] = {.Data = {},
                        .Bytes = 0,
                        .Rows = index + 1 < count ? StripRows : RowsOfLast(height),
                        .SavedRows = 0,
                        .ValidRows = 0};
}

// Compresses the strip in the buffer. On failure what had been saved of it before stays.
bool SaveStrip(BitmapHandle& bitmap, SuperBlock& block) {
    Strip& strip = block[block.CurrentStrip / StripRows];
    block.StripHeader->biHeight = -static_cast<int32_t>(strip.Rows);
    uint32_t bytes = block.SaveBufferSize;
    const int32_t result = EntriesOf(block.FilterIndex)
                               .Save(block.StripBuffer, block.StripHeader, block.SaveBuffer, &bytes,
                                     block.FilterParameter, 0, block.FilterQuality, 0, 0);
    MappedView data;
    if (result != Z_FILTER_SUCCESS || bytes > block.SaveBufferSize || !MapMemory(bytes, data)) return false;
    std::memcpy(data.View, block.SaveBuffer, bytes);
    Unmap(strip.Data);
    bitmap.Size -= strip.Bytes;
    bitmap.Size += bytes;
    strip.Data = data;
    strip.Bytes = bytes;
    strip.SavedRows = strip.ValidRows = strip.Rows;
    return true;
}

bool LoadStrip(const BitmapHandle& bitmap, SuperBlock& block, int32_t index) {
    const Strip& strip = block[index];
    if (strip.Data.View != nullptr &&
        EntriesOf(block.FilterIndex)
                .Load(strip.Data.View, strip.Bytes, block.StripBuffer, block.FilterQuality, bitmap.Width,
                      static_cast<int32_t>(strip.SavedRows), bitmap.BitsPerPixel, 0, 0) != Z_FILTER_SUCCESS)
        return false;
    std::memset(block.StripBuffer + size_t{strip.ValidRows} * bitmap.BytesPerLine, 0,
                size_t{strip.Rows - strip.ValidRows} * bitmap.BytesPerLine);
    return true;
}

// Brings the strip of a row into the buffer. A strip that cannot be saved stays there; after one that cannot
// be loaded there is none.
bool ReachStrip(BitmapHandle& bitmap, SuperBlock& block, int64_t row) {
    if (block.CurrentStrip >= 0 && row >= block.CurrentStrip && row < block.CurrentStrip + int64_t{StripRows})
        return true;
    if (block.Dirty != 0 && !SaveStrip(bitmap, block)) return false;
    block.Dirty = 0;
    if (row < 0 || row >= bitmap.Height) return false;
    const auto index = static_cast<int32_t>(row / StripRows);
    block.CurrentStrip = LoadStrip(bitmap, block, index) ? index * StripRows : NoStrip;
    return block.CurrentStrip != NoStrip;
}

// Calls move(place in the strip buffer, place in the caller's buffer, bytes) for the pieces of a transfer in
// each strip that it touches. The result is the count of bytes moved before a strip could not be reached.
template <typename Move>
ReturnCode WalkStrips(BitmapHandle& bitmap, int32_t row, int32_t column, uint32_t bytes, Move move) {
    SuperBlock* block = BlockOf(bitmap);
    if (block == nullptr) return code::InvalidBitmap;
    uint64_t offset = static_cast<uint64_t>(row % StripRows) * bitmap.BytesPerLine +
                      static_cast<uint64_t>(int64_t{ColumnOffset(bitmap.BitsPerPixel, column)});
    uint32_t moved = 0;
    for (int64_t at = row; moved < bytes && ReachStrip(bitmap, *block, at);
         at = (at / StripRows + 1) * StripRows, offset = 0) {
        const uint64_t length =
            uint64_t{(*block)[block->CurrentStrip / StripRows].Rows} * bitmap.BytesPerLine;
        if (offset >= length) continue;
        const auto piece = static_cast<uint32_t>(std::min<uint64_t>(bytes - moved, length - offset));
        move(*block, block->StripBuffer + offset, moved, piece);
        moved += piece;
    }
    return static_cast<ReturnCode>(moved);
}

ReturnCode Read(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    return WalkStrips(bitmap, row, column, bytes,
                      [buffer](SuperBlock&, const uint8_t* data, uint32_t place, uint32_t piece) {
                          CopyBytes(buffer + place, data, piece);
                      });
}

ReturnCode Write(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    return WalkStrips(bitmap, row, column, bytes,
                      [buffer](SuperBlock& block, uint8_t* data, uint32_t place, uint32_t piece) {
                          CopyBytes(data, buffer + place, piece);
                          block.Dirty = 1;
                      });
}

void ReleaseStrips(BitmapHandle& bitmap, SuperBlock& block, int32_t first) {
    while (block.StripCount > first) {
        Strip& strip = block[--block.StripCount];
        Unmap(strip.Data);
        bitmap.Size -= strip.Bytes;
    }
}

// Rows that a strip gains are blank, in the buffer too.
void SetRows(const BitmapHandle& bitmap, SuperBlock& block, int32_t index, uint32_t rows) {
    Strip& strip = block[index];
    if (rows > strip.Rows && block.CurrentStrip == index * StripRows)
        std::memset(block.StripBuffer + size_t{strip.Rows} * bitmap.BytesPerLine, 0,
                    size_t{rows - strip.Rows} * bitmap.BytesPerLine);
    strip.Rows = rows;
    strip.ValidRows = std::min(strip.ValidRows, rows);
}

ReturnCode Grow(BitmapHandle& bitmap, int32_t height) {
    const int32_t before = BlockOf(bitmap)->StripCount, count = StripsForHeight(height);
    if (count > before) {
        const uint64_t bytes = BlockBytes(count);
        void* block = FitsSize(bytes) ? Z_OsReAlloc(bitmap.Addr, static_cast<size_t>(bytes)) : nullptr;
        if (block == nullptr) return code::OutOfMemory;
        bitmap.Addr = block;
    }
    SuperBlock& block = *BlockOf(bitmap);
    if (before > 0) SetRows(bitmap, block, before - 1, count > before ? StripRows : RowsOfLast(height));
    AppendStrips(block, height);
    bitmap.Height = height;
    return code::Success;
}

ReturnCode Shrink(BitmapHandle& bitmap, int32_t height) {
    SuperBlock& block = *BlockOf(bitmap);
    ReleaseStrips(bitmap, block, StripsForHeight(height));
    if (block.StripCount > 0) SetRows(bitmap, block, block.StripCount - 1, RowsOfLast(height));
    if (block.CurrentStrip >= height) {
        block.CurrentStrip = NoStrip;
        block.Dirty = 0;
    }
    bitmap.Height = height;
    return code::Success;
}

ReturnCode ChangeHeight(BitmapHandle& bitmap, int32_t height) {
    if (bitmap.Addr == nullptr) return code::InvalidBitmap;
    if (!FitsSize(RowsBytes(bitmap, height))) return code::OutOfMemory;
    return height > bitmap.Height ? Grow(bitmap, height) : Shrink(bitmap, height);
}

ReturnCode UpdateSize(BitmapHandle& bitmap) {
    SuperBlock* block = BlockOf(bitmap);
    if (block == nullptr) return code::InvalidBitmap;
    bitmap.Size = 0;
    for (int32_t index = 0; index < block->StripCount; ++index)
        bitmap.Size += (*block)[index].Bytes;
    return code::Success;
}

void FreeBlock(SuperBlock* block) {
    Z_OsFree(block->StripHeader);
    Z_Free(block->StripBufferBase);
    Z_Free(block->SaveBuffer);
    Z_OsFree(block);
}

void Release(BitmapHandle& bitmap) {
    SuperBlock* block = BlockOf(bitmap);
    if (block == nullptr) return;
    ReleaseStrips(bitmap, *block, 0);
    static_cast<void>(UpdatePlainSize(bitmap)); // a record of no Size could not be given storage again
    ReleaseFilter(block->FilterIndex);
    FreeBlock(block);
}

// The buffers of a block: plain rows, which begin blank, and the output of the filter.
bool MakeBuffers(const BitmapHandle& bitmap, SuperBlock& block) {
    const uint64_t plainBytes = RowsBytes(bitmap, StripRows) + BufferAlignment - 1;
    const uint64_t saveBytes = RowsBytes(bitmap, SaveBufferRows);
    if (!FitsSize(plainBytes) || saveBytes > std::numeric_limits<uint32_t>::max()) return false;
    block.StripHeader = static_cast<BITMAPINFOHEADER*>(Z_OsAllocInit(sizeof(BITMAPINFOHEADER), 1));
    block.StripBufferBase = Z_Calloc(1, static_cast<size_t>(plainBytes));
    block.SaveBuffer = static_cast<uint8_t*>(Z_Malloc(static_cast<size_t>(saveBytes)));
    block.SaveBufferSize = static_cast<uint32_t>(saveBytes);
    if (block.StripHeader == nullptr || block.StripBufferBase == nullptr || block.SaveBuffer == nullptr)
        return false;
    const auto base = reinterpret_cast<uintptr_t>(block.StripBufferBase);
    block.StripBuffer = static_cast<uint8_t*>(block.StripBufferBase) +
                        (BufferAlignment - base % BufferAlignment) % BufferAlignment;
    return true;
}

SuperBlock* MakeBlock(const BitmapHandle& bitmap, Filter filter) {
    const uint64_t bytes = BlockBytes(StripsForHeight(bitmap.Height));
    auto* block =
        FitsSize(bytes) ? static_cast<SuperBlock*>(Z_OsAllocInit(static_cast<size_t>(bytes), 1)) : nullptr;
    if (block == nullptr) return nullptr;
    if (!MakeBuffers(bitmap, *block)) {
        FreeBlock(block);
        return nullptr;
    }
    block->StripHeader->biSize = sizeof(BITMAPINFOHEADER);
    block->StripHeader->biWidth = bitmap.Width;
    block->StripHeader->biBitCount = static_cast<uint16_t>(bitmap.BitsPerPixel);
    block->FilterIndex = filter;
    block->FilterQuality = filter == Filter::Colour ? 20 : 68;
    block->FilterParameter = filter == Filter::Colour ? -1 : 0;
    AppendStrips(*block, bitmap.Height);
    return block;
}

} // namespace

ReturnCode BuildSuperCompressed(BitmapHandle& bitmap) {
    if (bitmap.BitsPerPixel != 24 && bitmap.BitsPerPixel != 1) return code::InvalidArgument;
    const Filter filter = bitmap.BitsPerPixel == 24 ? Filter::Colour : Filter::Bitonal;
    const ReturnCode result = AcquireFilter(filter);
    if (result != code::Success) return result;
    SuperBlock* block = bitmap.Height < 1 ? nullptr : MakeBlock(bitmap, filter);
    if (block == nullptr) {
        ReleaseFilter(filter);
        return bitmap.Height < 1 ? code::InvalidBitmap : code::OutOfMemory;
    }
    bitmap.Addr = block;
    bitmap.StorageHandle = nullptr;
    bitmap.Size = 0;
    return code::Success;
}

const StorageClass SuperCompressed = {
    .MemoryType = MemorySuperCompressed,
    .Release = Release,
    .Read = Read,
    .Write = Write,
    // A write through an address would go unnoticed.
    .ReachRow = [](BitmapHandle&, int32_t) -> uint8_t* { return nullptr; },
    .ChangeHeight = ChangeHeight,
    .UpdateSize = UpdateSize,
};

} // namespace zkr::storage
