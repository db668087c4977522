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

/*
 * Sets the memory type that the calling thread's callers without a wish of their own ask for.
 * Z_AllocateBitmap itself does not look at it.
 *
 * type    in: MemoryConventional or MemoryDisk
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for any other type.
 */
Z_API ReturnCode Z_CALL Z_SetDefaultMemoryType(int32_t type);

/*
 * Reads the calling thread's default memory type, MemoryConventional at first.
 *
 * typeOut    out: MemoryConventional or MemoryDisk
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a null typeOut.
 */
Z_API ReturnCode Z_CALL Z_GetDefaultMemoryType(int32_t* typeOut);

/*
 * Sets the calling thread's thresholds for the storage of new bitmaps. Zero and positive values are absolute,
 * negative ones percentages of the quantity named.
 *
 * memoryReserve          in, bytes to leave free; percent of total physical memory and page file. At first 0.
 * maxConventionalSize    in, bytes of the largest conventional bitmap; percent of available physical memory
 * and page file. At first 0x7FFFFFFF. tileSize               in, bytes of a tile, and the size up to which a
 * bitmap is always conventional; 0, the first value, means 0x1000000. Not negative. conventionalTiles in:
 * tiles in memory at most; percent of all tiles. At first -100. mappedTiles            in: tiles of a file
 * mapped at one time; a share of the tiles in percent. At first 1. flags                  in: Z_THRESHOLD_...
 * bits of the values to be set; the others are ignored
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a negative tileSize or another value below -100. Values are
 * checked and set in the order of the arguments: those before a bad one are set, that one and those behind it
 * stay as they were.
 */
Z_API ReturnCode Z_CALL Z_SetMemoryThresholds(int32_t memoryReserve, int32_t maxConventionalSize,
                                              int32_t tileSize, int32_t conventionalTiles,
                                              int32_t mappedTiles, uint32_t flags);

/*
 * Reads the calling thread's thresholds as they were set.
 *
 * reserveOut, maxSizeOut, tileSizeOut, conventionalTilesOut, mappedTilesOut    out, each may be null: the
 * values of Z_SetMemoryThresholds in its order
 */
Z_API void Z_CALL Z_GetMemoryThresholds(int32_t* reserveOut, int32_t* maxSizeOut, int32_t* tileSizeOut,
                                        int32_t* conventionalTilesOut, int32_t* mappedTilesOut);
Z_API ReturnCode Z_CALL Z_GetBitmapMemoryInfo(BitmapHandle* bitmap, int32_t* typeOut, int32_t* tileSizeOut,
                                              int32_t* tileCountOut, int32_t* conventionalOut,
                                              int32_t* maxMappedOut, int32_t* mappedOut);
Z_API ReturnCode Z_CALL Z_SetBitmapMemoryInfo(BitmapHandle* bitmap, int32_t type, int32_t tileSize,
                                              int32_t tileCount, int32_t conventional, int32_t maxMapped,
                                              int32_t mapped, uint32_t flags);

/*
 * Sets the calling thread's directory for the files of disk bitmaps and tiles. At first it is the platform's.
 *
 * path    in: an existing directory, at most 259 bytes
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a path that is null, too long or no directory; the directory
 * then stays as it was.
 */
Z_API ReturnCode Z_CALL Z_SetTempDirectory(const char* path);

/*
 * Reads the calling thread's directory for temporary files.
 *
 * buffer    out: the path, cut to fit and always ended by a zero
 * size      in, bytes in buffer; with 0 nothing is written. 260 hold every path.
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a null buffer.
 */
Z_API ReturnCode Z_CALL Z_GetTempDirectory(char* buffer, uint32_t size);
Z_API void Z_CALL Z_AccessBitmap(BitmapHandle* bitmap);
Z_API void Z_CALL Z_ReleaseBitmap(BitmapHandle* bitmap);
Z_API int32_t Z_CALL Z_LockBitmap(BitmapHandle* bitmap);
Z_API void Z_CALL Z_UnlockBitmap(BitmapHandle* bitmap, int32_t previous);

Z_END_DECLS

#endif
