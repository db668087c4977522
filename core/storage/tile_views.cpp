// The views of file tiles: a queue, first in, first out. A re-read does not refresh a tile's place in it.
#include "core/storage/tile_table.h"

namespace zkr::storage {

bool MapTile(TileTable& table, uint32_t index) {
    Tile& tile = table[index];
    if (!MapFile(tile.File, tile.Memory)) return false;
    table[table.MappedCount++].MapQueue = index;
    return true;
}

void UnmapTile(TileTable& table, uint32_t index) {
    Unmap(table[index].Memory);
    uint32_t place = 0;
    while (table[place].MapQueue != index)
        ++place;
    --table.MappedCount;
    for (; place < table.MappedCount; ++place)
        table[place].MapQueue = table[place + 1].MapQueue;
}

void UnmapOldest(TileTable& table) {
    UnmapTile(table, table[0].MapQueue);
}

uint8_t* ViewTile(TileTable& table, uint32_t index) {
    Tile& tile = table[index];
    if (table.MappedCount < table.MaxMapped && MapTile(table, index)) return tile.Memory.View;
    while (table.MappedCount > 0) {
        UnmapOldest(table);
        if (MapTile(table, index)) return tile.Memory.View;
    }
    return nullptr;
}

} // namespace zkr::storage
