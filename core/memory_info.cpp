// What storage a live bitmap has, and its change: the tuning of tiles, or a rebuild in another class.
#include "core/copy.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/replacement.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/budget.h"
#include "core/storage/storage_class.h"
#include "core/storage/tile_table.h"
#include "zkr13n/allocation.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <limits>

namespace zkr {

namespace {

using storage::TileTable;

struct MemoryInfo {
    int32_t Type;
    int32_t TileSize;
    int32_t TileCount;
    int32_t Conventional;
    int32_t MaxMapped;
    int32_t Mapped;
};

ReturnCode ReadInfo(BitmapHandle* bitmap, MemoryInfo& info) {
    info = {};
    return Z_GetBitmapMemoryInfo(bitmap, &info.Type, &info.TileSize, &info.TileCount, &info.Conventional,
                                 &info.MaxMapped, &info.Mapped);
}

int32_t AsReported(uint64_t value) {
    return static_cast<int32_t>(std::min<uint64_t>(value, std::numeric_limits<int32_t>::max()));
}

void Report(int32_t* out, uint64_t value) {
    if (out != nullptr) *out = AsReported(value);
}

// A wish of the caller's, within 0 and the most that there can be.
uint32_t Capped(int32_t wish, uint32_t most) {
    return static_cast<uint32_t>(std::clamp<int64_t>(wish, 0, most));
}

int64_t RowsForTileSize(const BitmapHandle& bitmap, int32_t tileSize) {
    const int64_t rowBytes = bitmap.BytesPerLine;
    return (int64_t{tileSize} + rowBytes - 1) / rowBytes;
}

ReturnCode MoveTiles(BitmapHandle& bitmap, uint32_t conventional) {
    TileTable& table = storage::TableOf(bitmap);
    while (table.ConventionalCount < conventional) {
        const uint32_t index = table.ConventionalCount;
        const ReturnCode result = storage::MoveTileToMemory(table, index, storage::TileBytes(bitmap, index));
        if (result != code::Success) return result;
        ++table.ConventionalCount;
    }
    while (table.ConventionalCount > conventional) {
        const uint32_t index = table.ConventionalCount - 1;
        const ReturnCode result = storage::MoveTileToFile(table, index, storage::TileBytes(bitmap, index));
        if (result != code::Success) return result;
        --table.ConventionalCount;
    }
    return code::Success;
}

void SetViews(TileTable& table, uint32_t mapped) {
    while (table.MappedCount > mapped)
        storage::UnmapOldest(table);
    for (uint32_t index = table.ConventionalCount; index < table.TileCount && table.MappedCount < mapped;
         ++index)
        if (table[index].Memory.View == nullptr && !storage::MapTile(table, index)) return;
}

ReturnCode Tune(BitmapHandle& bitmap, const MemoryInfo& wish, uint32_t flags) {
    TileTable& table = storage::TableOf(bitmap);
    const uint32_t conventional = (flags & Z_MEMORY_INFO_CONVENTIONAL) != 0
                                      ? Capped(wish.Conventional, table.TileCount)
                                      : table.ConventionalCount;
    if ((flags & Z_MEMORY_INFO_MAX_MAPPED) != 0)
        table.MaxMapped = Capped(wish.MaxMapped, table.TileCount - conventional);
    const uint32_t mapped = (flags & Z_MEMORY_INFO_MAPPED) != 0
                                ? Capped(wish.Mapped, table.MaxMapped)
                                : std::min(table.MappedCount, table.MaxMapped);
    const ReturnCode result = MoveTiles(bitmap, conventional);
    if (result != code::Success) return result;
    SetViews(table, mapped);
    return code::Success;
}

// The storage of a rebuilt bitmap. A change into tiles above the tile size makes the tiles alone and leaves
// the record without flags; whoever looks for its storage finds none.
ReturnCode AllocateRebuilt(BitmapHandle& bitmap, const MemoryInfo& wish) {
    if (wish.Type != MemoryTiled) return Z_AllocateBitmap(&bitmap, wish.Type);
    if (bitmap.Size < storage::TileSizeInForce()) return Z_AllocateBitmap(&bitmap, MemoryConventional);
    const int64_t rows = std::max<int64_t>(RowsForTileSize(bitmap, wish.TileSize), 1);
    const auto rowsPerTile = static_cast<uint32_t>(rows);
    const uint32_t tileCount = storage::TilesForHeight(bitmap.Height, rowsPerTile);
    const uint32_t conventional = Capped(wish.Conventional, tileCount);
    return storage::MakeTiles(bitmap, {.RowsPerTile = rowsPerTile,
                                       .ConventionalCount = conventional,
                                       .MaxMapped = Capped(wish.MaxMapped, tileCount - conventional)});
}

ReturnCode Rebuild(BitmapHandle& bitmap, const MemoryInfo& wish) {
    BitmapReplacement replacement(&bitmap);
    BitmapHandle& rebuilt = replacement.record();
    ReturnCode result =
        Z_DupBitmapNewDim(&rebuilt, &bitmap, bitmap.Width, bitmap.Height, bitmap.BitsPerPixel, 0);
    if (result != code::Success) return result;
    result = AllocateRebuilt(rebuilt, wish);
    if (result == code::Success) result = CopyBitmapDataExactly(&rebuilt, &bitmap);
    if (result == code::Success) {
        replacement.CommitStorage();
        return code::Success;
    }
    const bool hasBareTiles = !HasFlag(rebuilt, flag::Allocated) && rebuilt.Addr != nullptr;
    if (hasBareTiles) storage::Tiled.Release(rebuilt);
    return result;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GetBitmapMemoryInfo(BitmapHandle* bitmap, int32_t* typeOut, int32_t* tileSizeOut,
                                        int32_t* tileCountOut, int32_t* conventionalOut,
                                        int32_t* maxMappedOut, int32_t* mappedOut) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (typeOut == nullptr) return code::InvalidArgument;
    const storage::StorageClass* storageClass = storage::ClassOf(*bitmap);
    if (storageClass == nullptr) return code::InvalidBitmap;
    *typeOut = storageClass->MemoryType;
    if (storageClass == &storage::Tiled) {
        const TileTable& table = storage::TableOf(*bitmap);
        Report(tileSizeOut, uint64_t{table.RowsPerTile} * bitmap->BytesPerLine);
        Report(tileCountOut, table.TileCount);
        Report(conventionalOut, table.ConventionalCount);
        Report(maxMappedOut, table.MaxMapped);
        Report(mappedOut, table.MappedCount);
    }
    return code::Success;
}

ReturnCode Z_CALL Z_SetBitmapMemoryInfo(BitmapHandle* bitmap, int32_t type, int32_t tileSize,
                                        int32_t tileCount, int32_t conventional, int32_t maxMapped,
                                        int32_t mapped, uint32_t flags) {
    MemoryInfo current;
    const ReturnCode result = ReadInfo(bitmap, current);
    if (result != code::Success) return result;

    MemoryInfo wish = current;
    if ((flags & Z_MEMORY_INFO_TYPE) != 0) wish.Type = type;
    if ((flags & Z_MEMORY_INFO_TILE_SIZE) != 0) wish.TileSize = tileSize;
    if ((flags & Z_MEMORY_INFO_TILE_COUNT) != 0) wish.TileCount = tileCount;
    if ((flags & Z_MEMORY_INFO_CONVENTIONAL) != 0) wish.Conventional = conventional;
    if ((flags & Z_MEMORY_INFO_MAX_MAPPED) != 0) wish.MaxMapped = maxMapped;
    if ((flags & Z_MEMORY_INFO_MAPPED) != 0) wish.Mapped = mapped;

    if (wish.Type != current.Type) return Rebuild(*bitmap, wish);
    if (current.Type != MemoryTiled) return code::Success;
    const bool otherTiles =
        (flags & Z_MEMORY_INFO_TILE_SIZE) != 0 &&
        RowsForTileSize(*bitmap, tileSize) != int64_t{storage::TableOf(*bitmap).RowsPerTile};
    return otherTiles ? Rebuild(*bitmap, wish) : Tune(*bitmap, wish, flags);
}
