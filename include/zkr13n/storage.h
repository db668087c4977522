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
 * Sets the calling thread's thresholds for the storage of new bitmaps. Zero and positive values are
 * absolute, negative ones percentages of the quantity named.
 *
 * memoryReserve        in: bytes to leave free, 0 at first; percent of total physical memory and page file
 * maxConventionalSize  in: bytes of the largest conventional bitmap, 0x7FFFFFFF at first; percent of
 *                      available physical memory and page file
 * tileSize             in: bytes of a tile, and the size up to which a bitmap is always conventional; 0,
 *                      the first value, means 0x1000000. Not negative.
 * conventionalTiles    in: tiles in memory at most, -100 at first; percent of all tiles
 * mappedTiles          in: file tiles that have a view at one time, 1 at first; -p means p / (100 - p) of
 *                      the tiles that are not in memory, at least one, and -100 as many as tiles may be in
 *                      memory
 * flags                in: Z_THRESHOLD_... bits of the values to be set; the others are ignored
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a negative tileSize or another value below -100. Values are
 * checked and set in the order of the arguments: those before a bad one are set, that one and those behind
 * it stay as they were.
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

/*
 * Tells where a bitmap's data lies.
 *
 * bitmap           in: an allocated bitmap
 * typeOut          out: MemoryConventional (also for user and global bitmaps), MemoryTiled, MemoryDisk,
 *                  MemoryCompressed or MemorySuperCompressed
 * tileSizeOut      out, may be null: bytes of a tile
 * tileCountOut     out, may be null: the tiles
 * conventionalOut  out, may be null: tiles in memory, the first ones of the bitmap
 * maxMappedOut     out, may be null: file tiles that may have a view at one time
 * mappedOut        out, may be null: file tiles that have one now
 *
 * The five values about tiles are written for a tiled bitmap only, and a value above 0x7FFFFFFF as that.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_ARGUMENT for a
 * null typeOut.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapMemoryInfo(BitmapHandle* bitmap, int32_t* typeOut, int32_t* tileSizeOut,
                                              int32_t* tileCountOut, int32_t* conventionalOut,
                                              int32_t* maxMappedOut, int32_t* mappedOut);

/*
 * Tunes the tiles of a bitmap, or moves its data into another storage class. Palette, region, tables and
 * settings of the bitmap stay as they are.
 *
 * bitmap        in, changed: an allocated bitmap
 * type          in: the class wanted, as for Z_AllocateBitmap. Another class than the present one rebuilds
 *               the bitmap.
 * tileSize      in: bytes of a tile. Another number of rows in a tile, rounded up, rebuilds a tiled
 *               bitmap.
 * tileCount     in: not looked at, since it follows from the tile size
 * conventional  in: tiles in memory, cut to what there are. Tiles move between memory and files.
 * maxMapped     in: file tiles that may have a view at one time, cut to the number of file tiles
 * mapped        in: file tiles that shall have a view now, cut to maxMapped; views go, oldest first, or
 *               are added from the first file tile on as long as they can be made
 * flags         in: Z_MEMORY_INFO_... bits of the values that are given; the others stay as they are
 *
 * A bitmap that is not tiled can only be rebuilt; the other values are ignored then. A change into tiles
 * makes a conventional bitmap below the thread's tile size, and is refused with Z_ERROR_BITMAP from that
 * size on, also where only the size of the tiles was to change. A change out of tiles works.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated, for tiles as said, and for
 * MemoryUser, since the pixels would have no place; the failures of Z_AllocateBitmap, Z_ERROR_ARGUMENT for
 * another type among them; Z_ERROR_SEEK, Z_ERROR_READ or Z_ERROR_WRITE when a row cannot be moved;
 * Z_ERROR_MEMORY when there is no memory for a row; or what the copy status callback
 * (Z_SetCopyStatusCallBack) returned to stop the copy. After a rebuild that fails the bitmap is as it was.
 * Tuning fails with Z_ERROR_MEMORY, Z_ERROR_DISK_SPACE, Z_ERROR_SEEK, Z_ERROR_READ or Z_ERROR_WRITE when a
 * tile cannot be moved; the tiles before it have moved then. No failure loses a pixel.
 */
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

/*
 * Makes Addr of a global bitmap valid until Z_ReleaseBitmap: its block is locked. Does nothing for any
 * other class, for a bitmap that is locked already, and for null.
 *
 * bitmap    in, changed
 */
Z_API void Z_CALL Z_AccessBitmap(BitmapHandle* bitmap);

/*
 * Ends what Z_AccessBitmap began: unlocks the block of a global bitmap and clears Addr. Does nothing
 * otherwise.
 *
 * bitmap    in, changed
 */
Z_API void Z_CALL Z_ReleaseBitmap(BitmapHandle* bitmap);

/*
 * Locks a bitmap for a stretch of work with its rows. Pairs of Z_LockBitmap and Z_UnlockBitmap nest, and
 * hand the state over in the result instead of a count.
 *
 * bitmap    in, changed
 *
 * Returns 1 when the bitmap was locked already; 0 otherwise, after Z_AccessBitmap; Z_ERROR_BITMAP for
 * null.
 */
Z_API int32_t Z_CALL Z_LockBitmap(BitmapHandle* bitmap);

/*
 * Ends the stretch that Z_LockBitmap began, with Z_ReleaseBitmap where that call was the one that locked.
 *
 * bitmap      in, changed
 * previous    in: the result of Z_LockBitmap
 */
Z_API void Z_CALL Z_UnlockBitmap(BitmapHandle* bitmap, int32_t previous);

/*
 * Gives memory back that the end of a run-compressed bitmap's heap does not use: where the last of its blocks
 * is free and longer than 128 bytes it is cut to 128, and Size becomes what the heap takes then.
 *
 * bitmap    in, changed: allocated, with Z_FLAG_COMPRESSED
 *
 * Returns 1 when it was cut; 0 when there was nothing to cut or the heap could not be resized;
 * Z_ERROR_ARGUMENT for another bitmap, or null.
 */
Z_API int32_t Z_CALL Z_TrimBitmapHeap(BitmapHandle* bitmap);

/*
 * Makes room in a run-compressed bitmap's heap, so that rows can be written without growing it row by row.
 * The heap grows in steps of 262144 bytes and never shrinks here; Size becomes what it takes then.
 *
 * bitmap    in, changed: allocated, with Z_FLAG_COMPRESSED
 * bytes     in: bytes in one piece that shall be free at the end of the heap. A row takes 2 for each of its
 *           runs, rounded up to 4, and 24.
 *
 * Returns 1 when there is room, also when there was before; 0 when memory is short or the heap would pass 4
 * GiB; Z_ERROR_ARGUMENT for another bitmap, or null.
 */
Z_API int32_t Z_CALL Z_GrowBitmapHeap(BitmapHandle* bitmap, uint32_t bytes);

Z_END_DECLS

#endif
