/*
 * BitmapHandle, the record that describes one bitmap, and the functions that start and end a bitmap's life.
 */
#ifndef ZKR13N_BITMAP_H
#define ZKR13N_BITMAP_H

#include "codes.h"

Z_BEGIN_DECLS

/*
 * One bitmap. The caller owns the record, the library owns what it points at until Z_FreeBitmap. The record
 * is plain data: a copy of it refers to the same storage. On 32 bits it is exactly 39 words of 32 bits; on 64
 * bits pointers, handles and the two byte counts Size and CurrentRowOffset are 64 bits wide.
 */
typedef struct BitmapHandle {
    HANDLE StorageHandle;    /* what owns the data: mapping, global memory or file; 0 for other classes */
    void* Addr;              /* row 0 where the data lies in one block of memory, or a control block */
    int32_t Width;           /* pixels in a row */
    int32_t Height;          /* rows */
    int32_t BitsPerPixel;    /* 1 to 8, 12, 16, 24, 32, 48 or 64 */
    uint32_t BytesPerLine;   /* bytes in a row, a multiple of 4 */
    size_t CurrentRowOffset; /* byte offset of CurrentRow, kept by the row functions */
    uint32_t CurrentRow;     /* the row last reached */
    uint32_t Flags;          /* Z_FLAG_... */
    uint32_t ColorsUsed;     /* palette entries up to 8 bits per pixel, else 0 */
    void* Palette;           /* HPALETTE, or with Z_FLAG_PALETTE_IS_BLOCK a block of RGBQUADs; 0 for none */
    int32_t ViewPerspective; /* where row 0 and column 0 lie on the picture: VIEW_... */
    int32_t Order;           /* Z_ORDER_... */
    size_t Size;             /* bytes of data */
    void* DitherData;        /* state of a dithering run */
    int32_t DitheringMethod; /* how colours are to be reduced */
    void* Region;            /* region of interest, 0 for none */
    int32_t XResolution;     /* dots per inch */
    int32_t YResolution;     /* dots per inch */
    int32_t PlaybackLeft;    /* place of an animation frame on its canvas, pixels */
    int32_t PlaybackTop;     /* likewise */
    int32_t PlaybackDelay;   /* milliseconds that a frame stays */
    uint32_t PlaybackBackColor; /* colour value of the canvas */
    uint32_t TransparentColor;  /* colour value, valid with Z_FLAG_PLAYBACK_TRANSPARENCY */
    int32_t DisposalMethod;     /* what happens to a frame when the next one comes */
    int32_t LowBit;             /* lowest bit of a gray value */
    int32_t HighBit;            /* highest bit of a gray value */
    RGBQUAD* LevelLUT;          /* level table of a gray bitmap, null for none */
    uint32_t LevelLUTLength;    /* entries in LevelLUT */
    uint32_t AlignOffset;       /* bytes between the start of the mapped view and Addr */
    int32_t MinVal;             /* smallest gray value */
    int32_t MaxVal;             /* largest gray value */
    int32_t LevelLowBit;        /* lowest bit that the level table was made for */
    int32_t LevelHighBit;       /* highest bit that the level table was made for */
    int32_t PaintGamma;         /* hundredths, 100 means no change */
    int32_t PaintContrast;      /* -1000 to 1000 */
    int32_t PaintIntensity;     /* -1000 to 1000 */
    uint8_t* PaintLUT;          /* 256-byte table applied when painting */
    uint32_t Reserved;          /* zero */
} BitmapHandle;

/* Bits of BitmapHandle.Flags. */
enum {
    Z_FLAG_ALLOCATED = 1 << 0,             /* the record has storage */
    Z_FLAG_MEMORY = 1 << 1,                /* the data is reachable in memory */
    Z_FLAG_DISK = 1 << 2,                  /* the data lies in a temporary file */
    Z_FLAG_LOCKED = 1 << 4,                /* a global-memory bitmap is locked */
    Z_FLAG_PLAYBACK_WAIT_INPUT = 1 << 6,   /* an animation waits for input after this frame */
    Z_FLAG_PLAYBACK_TRANSPARENCY = 1 << 7, /* TransparentColor applies */
    Z_FLAG_COMPRESSED = 1 << 8,            /* 1-bit rows held as runs */
    Z_FLAG_SIGNED = 1 << 9,                /* pixel values are signed */
    Z_FLAG_USER_DATA = 1 << 10,            /* the caller owns the data */
    Z_FLAG_LEVEL_LUT_ACTIVE = 1 << 11,     /* LevelLUT replaces the colours of a gray bitmap */
    Z_FLAG_GLOBAL = 1 << 12,               /* StorageHandle is a global memory block */
    Z_FLAG_PAINT_LUT_ACTIVE = 1 << 13,     /* PaintLUT is applied when painting */
    Z_FLAG_TILED = 1 << 14,                /* the data lies in tiles */
    Z_FLAG_SUPER_COMPRESSED = 1 << 15,     /* rows held in compressed strips */
    Z_FLAG_REGION_UNCLIPPED = 1 << 16,     /* the region is clipped when read, not when built */
    Z_FLAG_PALETTE_IS_BLOCK = 1 << 17      /* Palette is a block from Z_OsAlloc, not a palette object */
};

/* Values of BitmapHandle.Order. */
enum {
    Z_ORDER_RGB = 0, /* red in the low position */
    Z_ORDER_BGR = 1, /* blue in the low position */
    Z_ORDER_GRAY = 2 /* gray */
};

/*
 * Values of BitmapHandle.ViewPerspective: the corner of the picture where the first pixel of storage lies. Where left
 * or right is named first, the rows of storage are columns of the picture. There is no 6.
 */
enum {
    VIEW_TOP_LEFT = 0,
    VIEW_TOP_RIGHT = 1,
    VIEW_BOTTOM_LEFT = 2, /* of a new bitmap */
    VIEW_BOTTOM_RIGHT = 3,
    VIEW_RIGHT_TOP = 4,
    VIEW_LEFT_TOP = 5,
    VIEW_RIGHT_BOTTOM = 7,
    VIEW_LEFT_BOTTOM = 8
};

/* Bits of the flags argument of Z_DupBitmapNewDim and Z_FreeDuplicateBitmap. */
enum { Z_DUP_DATA = 1, Z_DUP_PALETTE = 2, Z_DUP_REGION = 4 };

/*
 * Sets a record up for a bitmap of some dimensions, without storage. Resolution and dithering method come
 * from the calling thread's defaults; LowBit to HighBit spans the pixel; Order is Z_ORDER_RGB below 9
 * bits, Z_ORDER_GRAY at 12 and Z_ORDER_BGR at the other depths. Whatever the record held is overwritten
 * without being freed.
 *
 * bitmap          out
 * width, height   in, pixels. They are not checked here, and sizes that BytesPerLine or Size cannot hold
 *                 are stored as the largest value of the field; Z_AllocateBitmap refuses both.
 * bitsPerPixel    in: 1 to 8, 12, 16, 24, 32, 48 or 64
 *
 * Three zeroes give a cleared record.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITS_PER_PIXEL for another depth, with the record cleared; Z_ERROR_BITMAP for
 * null.
 */
Z_API ReturnCode Z_CALL Z_InitBitmap(BitmapHandle* bitmap, int32_t width, int32_t height,
                                     int32_t bitsPerPixel);

/*
 * Gives an initialised record its storage, blank where it is new, and an identity paint table.
 *
 * bitmap        in, changed: a record from Z_InitBitmap, or one that Z_FreeBitmap has emptied
 * memoryType    in: one of the types below
 *
 * MemoryConventional         one block of memory if the thresholds allow it, else tiles, else a file
 * MemoryUser                 the caller's data, see Z_SetBitmapDataPointer
 * MemoryTiled                tiles above the tile size, else as MemoryConventional
 * MemoryNoTiled              as MemoryConventional, but no tiles; may go with MemoryConventional
 * MemoryDisk                 a temporary file
 * MemoryNoDisk               as MemoryConventional, but no file for a bitmap above the tile size that the
 *                            thresholds allow to be conventional
 * MemoryCompressed           1-bit rows as runs, at 1 bit per pixel with the document capability unlocked;
 *                            may go with MemoryConventional or MemoryNoDisk, one of which must be there to
 *                            be taken where runs are refused
 * MemorySuperCompressed      rows in compressed strips (filter.h), at 1 and 24 bits per pixel with the
 *                            document capability unlocked; may go with MemoryConventional, likewise
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for null; Z_ERROR_DIMENSIONS for an empty bitmap, a negative width or
 * height, and sizes that BytesPerLine or Size cannot hold; Z_ERROR_EXTENDED_GRAY_LOCKED for gray order, 48
 * and 64 bits while that capability is locked; Z_ERROR_ARGUMENT for another memory type; Z_ERROR_MEMORY
 * when no storage can be made; Z_ERROR_WRITE when the file of a disk bitmap cannot be extended;
 * Z_ERROR_COLOUR_FILTER (24 bits) and Z_ERROR_FAX_FILTER (1 bit) when the module for compressed strips
 * cannot be loaded. On failure the record has no storage and no paint table, and its dimensions stay.
 */
Z_API ReturnCode Z_CALL Z_AllocateBitmap(BitmapHandle* bitmap, int32_t memoryType);

/*
 * Initialises a record, gives it storage, and sets what bitmaps usually need.
 *
 * bitmap           out: whatever the record held is overwritten without being freed
 * memoryType       in: as for Z_AllocateBitmap
 * width, height    in, pixels: from 1
 * bitsPerPixel     in: as for Z_InitBitmap, or 0 for 8 bits with a gray palette
 * order            in: Z_ORDER_..., from 9 bits per pixel; ignored below
 * palette          in, may be null: 1 << bitsPerPixel entries, up to 8 bits per pixel; null gives the
 *                  fixed palette
 * viewPerspective  in: 0 to 5, 7 or 8, stored as it is
 * data             in, may be null: with MemoryUser the pixels, which stay the caller's and must outlive
 *                  the bitmap
 * dataSize         in, bytes: with data exactly Size
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null bitmap and for data of another size; the failures of
 * Z_InitBitmap and Z_AllocateBitmap. On failure the record has no storage.
 */
Z_API ReturnCode Z_CALL Z_CreateBitmap(BitmapHandle* bitmap, int32_t memoryType, int32_t width,
                                       int32_t height, int32_t bitsPerPixel, int32_t order,
                                       const RGBQUAD* palette, int32_t viewPerspective, void* data,
                                       size_t dataSize);

/*
 * Releases everything that a bitmap owns: region, palette, storage, level table and paint table. Its
 * dimensions stay, so that the record can be given new storage. The data of a user bitmap and DitherData
 * are left alone.
 *
 * bitmap    in, changed. Region and palette of a record without storage are released too.
 *
 * Returns Z_SUCCESS when storage was released, 0 for a record without any, Z_ERROR_BITMAP for null.
 */
Z_API ReturnCode Z_CALL Z_FreeBitmap(BitmapHandle* bitmap);

/*
 * Frees a bitmap, with or without its palette and region.
 *
 * bitmap             in, changed; a record without storage, or null, is left alone
 * ownsAttachments    in: 0 takes palette and region out of the record and leaves them to another owner,
 *                    any other value frees them too
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_FreeImage(BitmapHandle* bitmap, int32_t ownsAttachments);

/*
 * Copies a record word by word. Both records then refer to the same storage, palette and region, and only
 * one of them may be freed.
 *
 * destination    out: whatever the record held is overwritten without being freed
 * source         in
 */
Z_API void Z_CALL Z_CopyBitmapHandle(BitmapHandle* destination, const BitmapHandle* source);

/*
 * Points a user bitmap at the caller's memory.
 *
 * bitmap      in, changed: allocated with MemoryUser
 * data        in, may be null: row 0, with the other rows BytesPerLine bytes apart behind it; it stays the
 *             caller's. Null leaves the bitmap without pixels.
 * dataSize    in, bytes: exactly Size, unless data is null
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for a bitmap of another class or
 * another dataSize, with the pointer as it was.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapDataPointer(BitmapHandle* bitmap, void* data, size_t dataSize);

/*
 * Makes a record of new dimensions that inherits everything else from another: view perspective, order,
 * resolution, playback fields, palette and region, and with data the gray window (at the same depth) and
 * the paint table. Pixels are not copied.
 *
 * destination     out: whatever the record held is overwritten without being freed
 * source          in: an allocated bitmap
 * width, height   in, pixels
 * bitsPerPixel    in: as for Z_InitBitmap. Another value makes a record without dimensions, which inherits
 *                 all the same.
 * flags           in: Z_DUP_DATA gives it storage, compressed, super-compressed or on disk where the
 *                 source is, else conventional; Z_DUP_PALETTE a palette of its own; Z_DUP_REGION a region
 *                 of its own. Without them palette and region are shared, and Z_FreeDuplicateBitmap must
 *                 free the record.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null destination and for a source that is null or not allocated;
 * the failures of Z_AllocateBitmap; Z_ERROR_MEMORY or another failure of copying region or level table. On
 * failure the destination has no storage and owns nothing.
 */
Z_API ReturnCode Z_CALL Z_DupBitmapNewDim(BitmapHandle* destination, BitmapHandle* source, int32_t width,
                                          int32_t height, int32_t bitsPerPixel, uint32_t flags);

/*
 * Undoes Z_DupBitmapNewDim.
 *
 * bitmap    in, changed
 * flags     in: those of Z_DupBitmapNewDim. Without Z_DUP_PALETTE and Z_DUP_REGION palette and region are
 *           taken out of the record and live on in their owner; without Z_DUP_DATA storage is left alone.
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_FreeDuplicateBitmap(BitmapHandle* bitmap, uint32_t flags);

/*
 * Adds rows at the end of a bitmap, or takes rows from there. New rows are blank.
 *
 * bitmap    in, changed: allocated, not locked, not a user bitmap. Size becomes the bytes of data, and in
 *           conventional, global and disk storage AlignOffset is counted in.
 * height    in, rows: from 0
 *
 * Returns Z_SUCCESS, also where nothing changes; Z_ERROR_BITMAP for a bitmap that is null or not
 * allocated; Z_ERROR_ARGUMENT for one that is locked or a user bitmap; Z_ERROR_DIMENSIONS for a negative
 * height; Z_ERROR_MEMORY when the storage cannot be resized, with the bitmap as it was, or in tiles that
 * were to become fewer with the last tile as long as it was, or in runs that were to become fewer with the
 * rows gone that were to go; Z_ERROR_DISK_SPACE when the file of a new tile
 * cannot be made, with the tiles before it added: Height tells how many rows there are.
 */
Z_API ReturnCode Z_CALL Z_ChangeBitmapHeight(BitmapHandle* bitmap, int32_t height);

/*
 * Works Size out anew: BytesPerLine * Height; for compressed strips the bytes that they take; for runs the
 * sum of their lists' lengths, in words of 16 bits and not in bytes, until the next row is written.
 *
 * bitmap    in, changed: an allocated bitmap
 *
 * Returns Z_SUCCESS, or Z_ERROR_BITMAP for a bitmap that is null or not allocated, or compressed without
 * its control block; Size then stays as it was.
 */
Z_API ReturnCode Z_CALL Z_UpdateBitmapSize(BitmapHandle* bitmap);

Z_END_DECLS

#endif
