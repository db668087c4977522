// The control block of a tiled bitmap, and what can happen to one tile: it is made in memory or as a
// temporary file, a file tile gets and loses a view, tiles change their length and move between memory and
// file.
//
// Invariants: tiles 0 to ConventionalCount - 1 are memory tiles; MappedCount file tiles have a view, and
// their numbers stand in the queue, oldest first, at positions 0 to MappedCount - 1.
#pragma once

#include "core/storage/mapping.h"
#include "core/storage/temporary_file.h"
#include "zkr13n/bitmap.h"

#include <algorithm>
#include <cstdint>

namespace zkr::storage {

struct Tile {
    MappedView Memory; // data of the tile; empty for a file tile without a view
    intptr_t File;     // NoFile for a memory tile
    uint32_t MapQueue; // not about this tile: entry of the queue of mapped tiles, kept here to need no second
                       // block
};

struct alignas(Tile) TileTable {
    uint32_t TileCount;
    uint32_t ConventionalCount;
    uint32_t RowsPerTile; // rows in each tile but the last, which holds the rest
    uint32_t MappedCount;
    uint32_t MaxMapped;
    uint32_t LastTile; // the tile last located by a row

    Tile* Tiles() { return reinterpret_cast<Tile*>(this + 1); }
    Tile& operator[](uint32_t index) { return Tiles()[index]; }
};

inline TileTable& TableOf(const BitmapHandle& bitmap) {
    return *static_cast<TileTable*>(bitmap.Addr);
}

// The number of tiles for a height.
uint32_t TilesForHeight(int32_t height, uint32_t rowsPerTile);

// Bytes of one tile of a bitmap with its present Height.
inline uint64_t TileBytes(const BitmapHandle& bitmap, uint32_t index) {
    const TileTable& table = TableOf(bitmap);
    const uint64_t before = static_cast<uint64_t>(index) * table.RowsPerTile;
    const uint64_t left = static_cast<uint64_t>(bitmap.Height) - before;
    return std::min<uint64_t>(left, table.RowsPerTile) * bitmap.BytesPerLine;
}

struct TilePlace {
    uint32_t Index;
    uint32_t Row; // in the tile
};

// The tile of a row. Rows of the tile last located need no division.
inline TilePlace LocateTile(TileTable& table, int32_t row) {
    const auto target = static_cast<uint32_t>(row);
    const uint32_t inLast = target - table.LastTile * table.RowsPerTile;
    if (inLast < table.RowsPerTile) return {table.LastTile, inLast};
    const TilePlace place = {target / table.RowsPerTile, target % table.RowsPerTile};
    if (place.Index < table.TileCount) table.LastTile = place.Index;
    return place;
}

struct TilePlan {
    uint32_t RowsPerTile;
    uint32_t ConventionalCount;
    uint32_t MaxMapped;
};

// Makes the table and all tiles for the record's dimensions: memory tiles first, then temporary files. Memory
// tiles that cannot be made become file tiles. On failure (OutOfMemory, OutOfDiskSpace) nothing is left.
[[nodiscard]] ReturnCode MakeTiles(BitmapHandle& bitmap, const TilePlan& plan);

// Room for so many tiles; the table may move. On failure the old one stays.
bool ResizeTable(BitmapHandle& bitmap, uint32_t tileCount);

bool MakeFileTile(Tile& tile, uint64_t bytes);

// Releases tiles from the last one down to first, and lowers TileCount.
void ReleaseTiles(TileTable& table, uint32_t first);

// A view for a file tile without one, if need be at the price of the oldest ones; null when none can be made.
uint8_t* ViewTile(TileTable& table, uint32_t index);

// The tile's data; null when it has to be reached through its file.
inline uint8_t* ReachTile(TileTable& table, uint32_t index) {
    uint8_t* const data = table[index].Memory.View;
    return data != nullptr ? data : ViewTile(table, index);
}

// Gives a file tile a view at the end of the queue.
bool MapTile(TileTable& table, uint32_t index);

// Takes the view from a file tile that has one, or from the oldest in the queue.
void UnmapTile(TileTable& table, uint32_t index);
void UnmapOldest(TileTable& table);

// Changes a tile's length. On failure the tile has its old length and data.
bool ResizeTile(TileTable& table, uint32_t index, uint64_t oldBytes, uint64_t newBytes);

// Move a tile between file and memory. On failure the tile stays as it was.
[[nodiscard]] ReturnCode MoveTileToMemory(TileTable& table, uint32_t index, uint64_t bytes);
[[nodiscard]] ReturnCode MoveTileToFile(TileTable& table, uint32_t index, uint64_t bytes);

} // namespace zkr::storage
