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
    int32_t ViewPerspective; /* where row 0 and column 0 lie on the picture: 0 to 5, 7, 8 */
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

/* Bits of the flags argument of Z_DupBitmapNewDim and Z_FreeDuplicateBitmap. */
enum { Z_DUP_DATA = 1, Z_DUP_PALETTE = 2, Z_DUP_REGION = 4 };

Z_API ReturnCode Z_CALL Z_InitBitmap(BitmapHandle* bitmap, int32_t width, int32_t height,
                                     int32_t bitsPerPixel);
Z_API ReturnCode Z_CALL Z_AllocateBitmap(BitmapHandle* bitmap, int32_t memoryType);
Z_API ReturnCode Z_CALL Z_CreateBitmap(BitmapHandle* bitmap, int32_t memoryType, int32_t width,
                                       int32_t height, int32_t bitsPerPixel, int32_t order,
                                       const RGBQUAD* palette, int32_t viewPerspective, void* data,
                                       size_t dataSize);
Z_API ReturnCode Z_CALL Z_FreeBitmap(BitmapHandle* bitmap);
Z_API ReturnCode Z_CALL Z_FreeImage(BitmapHandle* bitmap, int32_t ownsAttachments);
Z_API void Z_CALL Z_CopyBitmapHandle(BitmapHandle* destination, const BitmapHandle* source);
Z_API ReturnCode Z_CALL Z_SetBitmapDataPointer(BitmapHandle* bitmap, void* data, size_t dataSize);
Z_API ReturnCode Z_CALL Z_DupBitmapNewDim(BitmapHandle* destination, BitmapHandle* source, int32_t width,
                                          int32_t height, int32_t bitsPerPixel, uint32_t flags);
Z_API ReturnCode Z_CALL Z_FreeDuplicateBitmap(BitmapHandle* bitmap, uint32_t flags);
Z_API ReturnCode Z_CALL Z_ChangeBitmapHeight(BitmapHandle* bitmap, int32_t height);
Z_API ReturnCode Z_CALL Z_UpdateBitmapSize(BitmapHandle* bitmap);

Z_END_DECLS

#endif
