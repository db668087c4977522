/*
 * Where a bitmap's data lives: memory types, thresholds, the tuning of live bitmaps, and locking.
 */
#ifndef ZKR13N_STORAGE_H
#define ZKR13N_STORAGE_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* Memory types of Z_AllocateBitmap and Z_CreateBitmap. Only the combinations named there are accepted. */
enum {
    MemoryConventional = 1,      /* prefer a mapped block */
    MemoryUser = 2,              /* the caller supplies the data */
    MemoryTiled = 4,             /* skip the mapped block above the tile size */
    MemoryNoTiled = 8,           /* never tile */
    MemoryDisk = 128,            /* go straight to a temporary file */
    MemoryNoDisk = 256,          /* no temporary file */
    MemoryCompressed = 512,      /* 1-bit rows as runs */
    MemorySuperCompressed = 1024 /* rows in compressed strips */
};

/* Bits of the flags argument of Z_SetMemoryThresholds. */
enum {
    Z_THRESHOLD_MEMORY_RESERVE = 1,
    Z_THRESHOLD_MAX_CONVENTIONAL_SIZE = 2,
    Z_THRESHOLD_TILE_SIZE = 4,
    Z_THRESHOLD_CONVENTIONAL_TILES = 8,
    Z_THRESHOLD_MAPPED_TILES = 16
};

/* Bits of the flags argument of Z_SetBitmapMemoryInfo. */
enum {
    Z_MEMORY_INFO_TYPE = 1,
    Z_MEMORY_INFO_TILE_SIZE = 2,
    Z_MEMORY_INFO_TILE_COUNT = 4,
    Z_MEMORY_INFO_CONVENTIONAL = 8,
    Z_MEMORY_INFO_MAX_MAPPED = 16,
    Z_MEMORY_INFO_MAPPED = 32
};

Z_API ReturnCode Z_CALL Z_SetDefaultMemoryType(int32_t type);
Z_API ReturnCode Z_CALL Z_GetDefaultMemoryType(int32_t* typeOut);
Z_API ReturnCode Z_CALL Z_SetMemoryThresholds(int32_t memoryReserve, int32_t maxConventionalSize,
                                              int32_t tileSize, int32_t conventionalTiles,
                                              int32_t mappedTiles, uint32_t flags);
Z_API void Z_CALL Z_GetMemoryThresholds(int32_t* reserveOut, int32_t* maxSizeOut, int32_t* tileSizeOut,
                                        int32_t* conventionalTilesOut, int32_t* mappedTilesOut);
Z_API ReturnCode Z_CALL Z_GetBitmapMemoryInfo(BitmapHandle* bitmap, int32_t* typeOut, int32_t* tileSizeOut,
                                              int32_t* tileCountOut, int32_t* conventionalOut,
                                              int32_t* maxMappedOut, int32_t* mappedOut);
Z_API ReturnCode Z_CALL Z_SetBitmapMemoryInfo(BitmapHandle* bitmap, int32_t type, int32_t tileSize,
                                              int32_t tileCount, int32_t conventional, int32_t maxMapped,
                                              int32_t mapped, uint32_t flags);
Z_API ReturnCode Z_CALL Z_SetTempDirectory(const char* path);
Z_API ReturnCode Z_CALL Z_GetTempDirectory(char* buffer, uint32_t size);
Z_API void Z_CALL Z_AccessBitmap(BitmapHandle* bitmap);
Z_API void Z_CALL Z_ReleaseBitmap(BitmapHandle* bitmap);
Z_API int32_t Z_CALL Z_LockBitmap(BitmapHandle* bitmap);
Z_API void Z_CALL Z_UnlockBitmap(BitmapHandle* bitmap, int32_t previous);

Z_END_DECLS

#endif
