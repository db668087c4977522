// The tiled class: bands of rows, some in memory, the others in temporary files of which a few have a view.
// Running out of address space slows tiles down and never fails them, since a file can always be read and
// written.
#include "core/return_codes.h"
#include "core/row_copy.h"
#include "core/sizes.h"
#include "core/storage/budget.h"
#include "core/storage/storage_class.h"
#include "core/storage/tile_table.h"
#include "zkr13n/allocation.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <limits>

namespace zkr::storage {

namespace {

// A failing build is retried with smaller tiles as long as tiles hold more than this many rows.
constexpr uint64_t SmallestRetryRows = 8;

void Release(BitmapHandle& bitmap) {
    TileTable& table = TableOf(bitmap);
    ReleaseTiles(table, 0);
    Z_OsFree(&table);
}

// Calls move(tile, offset in the tile, place in the buffer, bytes) for the pieces of a transfer in each tile
// it touches; it tells the bytes moved or a code. A piece that fails does not keep the others from moving,
// and a transfer that runs past the last tile stops there. The result is the count of bytes or the first
// failure.
template <typename Move>
inline ReturnCode WalkTiles(BitmapHandle& bitmap, int32_t row, int32_t column, uint32_t bytes, Move move) {
    TileTable& table = TableOf(bitmap);
    TilePlace tile = LocateTile(table, row);
    uint64_t offset = static_cast<uint64_t>(tile.Row) * bitmap.BytesPerLine +
                      static_cast<uint64_t>(int64_t{ColumnOffset(bitmap.BitsPerPixel, column)});
    int64_t moved = 0, failure = 0;
    for (uint32_t place = 0; place < bytes && tile.Index < table.TileCount; ++tile.Index, offset = 0) {
        const uint64_t length = TileBytes(bitmap, tile.Index);
        if (offset >= length) continue;
        const auto piece = static_cast<uint32_t>(std::min<uint64_t>(bytes - place, length - offset));
        const int64_t result = move(table, tile.Index, offset, place, piece);
        if (result >= 0)
            moved += result;
        else if (failure == 0)
            failure = result;
        place += piece;
    }
    return static_cast<ReturnCode>(failure != 0 ? failure : moved);
}

ReturnCode Read(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    return WalkTiles(bitmap, row, column, bytes,
                     [buffer](TileTable& table, uint32_t index, uint64_t offset, uint32_t place,
                              uint32_t piece) -> int64_t {
                         const uint8_t* data = ReachTile(table, index);
                         if (data == nullptr) return ReadAt(table[index].File, offset, buffer + place, piece);
                         CopyFromBitmap(buffer + place, data + offset, piece);
                         return piece;
                     });
}

ReturnCode Write(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    const size_t size = bitmap.Size;
    return WalkTiles(bitmap, row, column, bytes,
                     [buffer, size](TileTable& table, uint32_t index, uint64_t offset, uint32_t place,
                                    uint32_t piece) -> int64_t {
                         uint8_t* data = ReachTile(table, index);
                         if (data == nullptr)
                             return WriteAt(table[index].File, offset, buffer + place, piece);
                         CopyToBitmap(data + offset, buffer + place, piece, size, Readers::Anyone);
                         return piece;
                     });
}

uint8_t* ReachRow(BitmapHandle& bitmap, int32_t row) {
    TileTable& table = TableOf(bitmap);
    const TilePlace tile = LocateTile(table, row);
    if (tile.Index >= table.TileCount) return nullptr;
    uint8_t* data = ReachTile(table, tile.Index);
    return data == nullptr ? nullptr : data + static_cast<size_t>(tile.Row) * bitmap.BytesPerLine;
}

void SetHeight(BitmapHandle& bitmap, uint64_t height) {
    bitmap.Height = static_cast<int32_t>(height);
    static_cast<void>(UpdatePlainSize(bitmap));
}

// Gives the last tile the length that it has in a bitmap of the new height.
bool FitLastTile(BitmapHandle& bitmap, int32_t height) {
    TileTable& table = TableOf(bitmap);
    if (table.TileCount == 0) return true;
    const uint32_t last = table.TileCount - 1;
    const uint64_t before = static_cast<uint64_t>(last) * table.RowsPerTile;
    const uint64_t rows = std::min<uint64_t>(static_cast<uint64_t>(height) - before, table.RowsPerTile);
    return ResizeTile(table, last, TileBytes(bitmap, last), rows * bitmap.BytesPerLine);
}

ReturnCode Grow(BitmapHandle& bitmap, int32_t height) {
    const uint32_t tileCount = TilesForHeight(height, TableOf(bitmap).RowsPerTile);
    if (tileCount > TableOf(bitmap).TileCount && !ResizeTable(bitmap, tileCount)) return code::OutOfMemory;
    if (!FitLastTile(bitmap, height)) return code::OutOfMemory;

    TileTable& table = TableOf(bitmap);
    for (uint32_t& index = table.TileCount; index < tileCount; ++index) {
        const uint64_t before = static_cast<uint64_t>(index) * table.RowsPerTile;
        const uint64_t rows = std::min<uint64_t>(static_cast<uint64_t>(height) - before, table.RowsPerTile);
        if (MakeFileTile(table[index], rows * bitmap.BytesPerLine)) continue;
        SetHeight(bitmap, before);
        return code::OutOfDiskSpace;
    }
    SetHeight(bitmap, static_cast<uint64_t>(height));
    return code::Success;
}

ReturnCode Shrink(BitmapHandle& bitmap, int32_t height) {
    TileTable& table = TableOf(bitmap);
    ReleaseTiles(table, TilesForHeight(height, table.RowsPerTile));
    table.ConventionalCount = std::min(table.ConventionalCount, table.TileCount);
    const bool fitted = FitLastTile(bitmap, height);
    const uint64_t rows = static_cast<uint64_t>(table.TileCount) * table.RowsPerTile;
    SetHeight(bitmap,
              fitted ? static_cast<uint64_t>(height) : std::min(rows, static_cast<uint64_t>(bitmap.Height)));
    return fitted ? code::Success : code::OutOfMemory;
}

ReturnCode ChangeHeight(BitmapHandle& bitmap, int32_t height) {
    if (!FitsSize(RowsBytes(bitmap, height))) return code::OutOfMemory;
    return height > bitmap.Height ? Grow(bitmap, height) : Shrink(bitmap, height);
}

ReturnCode AttemptTiles(BitmapHandle& bitmap, uint64_t tileSize) {
    const uint64_t rows = std::max<uint64_t>(tileSize / bitmap.BytesPerLine, 1);
    const auto rowsPerTile =
        static_cast<uint32_t>(std::min<uint64_t>(rows, std::numeric_limits<uint32_t>::max()));
    const TileBudget budget = ShareTiles(TilesForHeight(bitmap.Height, rowsPerTile),
                                         static_cast<uint64_t>(rowsPerTile) * bitmap.BytesPerLine);
    return MakeTiles(bitmap, {.RowsPerTile = rowsPerTile,
                              .ConventionalCount = budget.ConventionalCount,
                              .MaxMapped = budget.MaxMapped});
}

} // namespace

ReturnCode BuildTiled(BitmapHandle& bitmap) {
    const bool roomy = AvailableMemory() >= bitmap.Size;
    if (bitmap.Height < 1) return code::InvalidBitmap;
    uint64_t tileSize = TileSizeInForce();
    ReturnCode result = AttemptTiles(bitmap, tileSize);
    while (result != code::Success && roomy && tileSize > SmallestRetryRows * bitmap.BytesPerLine) {
        tileSize /= 2;
        result = AttemptTiles(bitmap, tileSize);
    }
    return result;
}

const StorageClass Tiled = {
    .MemoryType = MemoryTiled,
    .Release = Release,
    .Read = Read,
    .Write = Write,
    .ReachRow = ReachRow,
    .ChangeHeight = ChangeHeight,
    .UpdateSize = UpdatePlainSize,
};

} // namespace zkr::storage
