// Tiles one by one: see tile_table.h. The views of file tiles are in tile_views.cpp.
#include "core/storage/tile_table.h"

#include "core/return_codes.h"
#include "core/sizes.h"
#include "zkr13n/allocation.h"
#include "zkr13n/files.h"

#include <algorithm>
#include <cstring>

namespace zkr::storage {

namespace {

// Bytes of a table; too large for any block where they do not fit.
uint64_t TableBytes(uint64_t tileCount) {
    return sizeof(TileTable) + tileCount * sizeof(Tile);
}

bool MakeMemoryTile(Tile& tile, uint64_t bytes) {
    tile.File = NoFile;
    return MapMemory(bytes, tile.Memory);
}

} // namespace

uint32_t TilesForHeight(int32_t height, uint32_t rowsPerTile) {
    return static_cast<uint32_t>((static_cast<uint64_t>(height) + rowsPerTile - 1) / rowsPerTile);
}

bool MakeFileTile(Tile& tile, uint64_t bytes) {
    tile.Memory = {};
    tile.File = CreateTemporaryFile(bytes);
    return tile.File != NoFile;
}

ReturnCode MakeTiles(BitmapHandle& bitmap, const TilePlan& plan) {
    const uint32_t tileCount = TilesForHeight(bitmap.Height, plan.RowsPerTile);
    const uint64_t tableBytes = TableBytes(tileCount);
    auto* table =
        FitsSize(tableBytes) ? static_cast<TileTable*>(Z_OsAlloc(static_cast<size_t>(tableBytes))) : nullptr;
    if (table == nullptr) return code::OutOfMemory;
    *table = {.TileCount = 0,
              .ConventionalCount = plan.ConventionalCount,
              .RowsPerTile = plan.RowsPerTile,
              .MappedCount = 0,
              .MaxMapped = plan.MaxMapped,
              .LastTile = 0};

    void* const before = bitmap.Addr;
    bitmap.Addr = table;
    for (uint32_t& index = table->TileCount; index < tileCount; ++index) {
        Tile& tile = (*table)[index];
        const uint64_t bytes = TileBytes(bitmap, index);
        if (index < table->ConventionalCount) {
            if (MakeMemoryTile(tile, bytes)) continue;
            table->MaxMapped += table->ConventionalCount - index;
            table->ConventionalCount = index;
        }
        if (MakeFileTile(tile, bytes)) continue;
        ReleaseTiles(*table, 0);
        Z_OsFree(table);
        bitmap.Addr = before;
        return code::OutOfDiskSpace;
    }
    bitmap.StorageHandle = nullptr;
    return code::Success;
}

bool ResizeTable(BitmapHandle& bitmap, uint32_t tileCount) {
    const uint64_t bytes = TableBytes(tileCount);
    void* table = FitsSize(bytes) ? Z_OsReAlloc(bitmap.Addr, static_cast<size_t>(bytes)) : nullptr;
    if (table == nullptr) return false;
    bitmap.Addr = table;
    return true;
}

void ReleaseTiles(TileTable& table, uint32_t first) {
    while (table.TileCount > first) {
        const uint32_t index = --table.TileCount;
        Tile& tile = table[index];
        if (tile.File == NoFile) {
            Unmap(tile.Memory);
            continue;
        }
        if (tile.Memory.View != nullptr) UnmapTile(table, index);
        Z_OsClose(tile.File, 0);
    }
}

bool ResizeTile(TileTable& table, uint32_t index, uint64_t oldBytes, uint64_t newBytes) {
    if (newBytes == oldBytes) return true;
    Tile& tile = table[index];
    if (tile.File != NoFile) {
        if (tile.Memory.View != nullptr) UnmapTile(table, index);
        return newBytes > oldBytes ? ExtendFile(tile.File, newBytes) : CutFile(tile.File, newBytes);
    }
    MappedView memory;
    if (!MapMemory(newBytes, memory)) return false;
    std::memcpy(memory.View, tile.Memory.View, static_cast<size_t>(std::min(oldBytes, newBytes)));
    Unmap(tile.Memory);
    tile.Memory = memory;
    return true;
}

ReturnCode MoveTileToMemory(TileTable& table, uint32_t index, uint64_t bytes) {
    Tile& tile = table[index];
    MappedView memory;
    if (!MapMemory(bytes, memory)) return code::OutOfMemory;
    if (tile.Memory.View != nullptr) {
        std::memcpy(memory.View, tile.Memory.View, static_cast<size_t>(bytes));
        UnmapTile(table, index);
    } else if (const int64_t read = ReadAt(tile.File, 0, memory.View, bytes);
               read != static_cast<int64_t>(bytes)) {
        Unmap(memory);
        return read == code::SeekFailed ? code::SeekFailed : code::ReadFailed;
    }
    Z_OsClose(tile.File, 0);
    tile.File = NoFile;
    tile.Memory = memory;
    return code::Success;
}

ReturnCode MoveTileToFile(TileTable& table, uint32_t index, uint64_t bytes) {
    Tile& tile = table[index];
    const intptr_t file = CreateTemporaryFile(bytes);
    if (file == NoFile) return code::OutOfDiskSpace;
    if (WriteAt(file, 0, tile.Memory.View, bytes) != static_cast<int64_t>(bytes)) {
        Z_OsClose(file, 0);
        return code::WriteFailed;
    }
    Unmap(tile.Memory);
    tile.File = file;
    return code::Success;
}

} // namespace zkr::storage
