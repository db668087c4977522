/*
 * Surfaces: the display of systems that have none of their own. A host describes pixels in its memory and
 * gets a device context, which every function of the library that takes an HDC accepts; one surface can serve
 * as the screen of the process. And the platform's regions, palettes and blocks of memory that a host owns. On Windows the
 * system's own functions do this and the family does not exist.
 */
#ifndef ZKR13N_SURFACE_H
#define ZKR13N_SURFACE_H

#include "codes.h"

#ifndef _WIN32

Z_BEGIN_DECLS

/* What a surface is made of. */
typedef struct SurfaceDescription {
    uint32_t StructSize;  /* sizeof(SurfaceDescription) */
    int32_t Width;        /* pixels, 1 and more */
    int32_t Height;       /* rows, 1 and more */
    int32_t BitsPerPixel; /* 1, 4, 8: index of a colour, the leftmost pixel in the highest bits; 16: five bits
                             each of red, green, blue from bit 14 down, low byte first; 24, 32: blue, green,
                             red and, with 32, a byte without meaning */
    int32_t Pitch;   /* bytes from one row to the next in memory, at least (Width * BitsPerPixel + 7) / 8 */
    int32_t TopDown; /* 0: the first row in memory is the lowest of the picture; else the uppermost */
    void* Bits;      /* the first row in memory; Height * Pitch bytes that stay the host's */
    const RGBQUAD* Colors; /* with 1, 4 and 8 bits: what the indices mean; may be null with ColorCount 0 */
    int32_t ColorCount;    /* entries of Colors, 0 to 2^BitsPerPixel; the rest of the table is black */
    int32_t StaticColors;  /* 0, or with 8 bits: the surface is a palette display whose system palette is
                              Colors  and keeps this many entries, 1 to 256, one half at either end */
} SurfaceDescription;

/*
 * Makes a surface on the host's pixels and gives a device context for it.
 *
 * description  in: the pixels; the record and Colors are copied, Bits must last until Z_DeleteSurface
 * contextOut   out: the device context, released by Z_DeleteSurface
 *
 * 1 on success. Z_ERROR_ARGUMENT: a null pointer, a StructSize that is not known, a size, pitch or count
 * outside its range. Z_ERROR_BITS_PER_PIXEL: a depth that is not listed. Z_ERROR_MEMORY: memory is short. On
 * failure contextOut is not written.
 */
Z_API ReturnCode Z_CALL Z_CreateSurface(const SurfaceDescription* description, HDC* contextOut);

/*
 * Releases a surface and its device context. Where it was the screen, the process has no screen surface any
 * more. Device contexts of the screen that are still held stay valid and show nothing.
 *
 * context  in: what Z_CreateSurface gave
 *
 * 1 on success. Z_ERROR_ARGUMENT: not a live device context of Z_CreateSurface; nothing is changed.
 */
Z_API ReturnCode Z_CALL Z_DeleteSurface(HDC context);

/*
 * Makes a surface the screen of the process, from which the library reads the properties of the display and
 * its system palette. Without one the screen has 1024 x 768 pixels of 32 bits that nobody sees.
 *
 * context  in: what Z_CreateSurface gave, or null for no screen surface
 *
 * 1 on success. Z_ERROR_ARGUMENT: not a live device context of Z_CreateSurface; the screen stays as it was.
 */
Z_API ReturnCode Z_CALL Z_SetScreenSurface(HDC context);

/*
 * Selects a palette into the device context of a surface and realizes it. Indices of pictures that are painted
 * by index mean its entries from now on. On a palette display its colours also take the entries of the system
 * palette that are not static, as far as there is room; a host shows the pixels with what Z_GetSurfaceColors
 * tells.
 *
 * context  in: what Z_CreateSurface gave
 * palette  in: the palette, which stays the host's, or null for the default one of 20 colours. One that is
 *          deleted while it is selected counts as the default one
 *
 * 1 on success. Z_ERROR_ARGUMENT: not a live device context of Z_CreateSurface, or no palette; nothing is
 * changed.
 */
Z_API ReturnCode Z_CALL Z_SelectSurfacePalette(HDC context, HPALETTE palette);

/*
 * Tells what the indices in a surface's pixels stand for now.
 *
 * context  in: what Z_CreateSurface gave
 * colors   out: the first colours, as many as there is room for; may be null with a room of 0
 * count    in: the room in colors, 0 and more; out: the number of indices, 2^BitsPerPixel, or 0 above 8 bits
 *
 * 1 on success. Z_ERROR_ARGUMENT: not a live device context of Z_CreateSurface, a null count, a negative room,
 * null colors with room; nothing is written then.
 */
Z_API ReturnCode Z_CALL Z_GetSurfaceColors(HDC context, RGBQUAD* colors, int32_t* count);

/*
 * Deletes an object of the platform that belongs to the host, as the palettes, regions and bitmaps do that
 * functions of the library return. Not for what a bitmap holds: Z_FreeBitmap releases that.
 *
 * object  in: a palette, a region or a bitmap of the platform
 *
 * 1 on success. Z_ERROR_ARGUMENT: null, an object that is deleted already, or no object of these kinds;
 * nothing is changed.
 */
Z_API ReturnCode Z_CALL Z_DeleteObject(HANDLE object);

/*
 * Makes a region: the pixels that lie in any of some rectangles.
 *
 * rects      in: the rectangles, in any order; they may overlap, and empty and inverted ones hold no pixel.
 *            May be null with a count of 0
 * count      in: their number, 0 and more; with 0 the region is empty
 * regionOut  out: the region, released by Z_DeleteObject
 *
 * 1 on success. Z_ERROR_ARGUMENT: a null pointer or a negative count. Z_ERROR_MEMORY: memory is short. On
 * failure regionOut is not written.
 */
Z_API ReturnCode Z_CALL Z_CreatePlatformRegion(const RECT* rects, int32_t count, HRGN* regionOut);

/*
 * Tells the rectangles of a region: in bands from the top, all of one band with the same top and bottom and
 * apart from left to right. Bands that touch differ, so that equal regions give equal rectangles.
 *
 * region  in: a region
 * rects   out: the first rectangles, as many as there is room for; may be null with a room of 0
 * count   in: the room in rects, 0 and more; out: the number of rectangles of the region, which may be more
 *
 * 1 on success. Z_ERROR_ARGUMENT: no live region, a null count, a negative room, null rects with room;
 * nothing is written then.
 */
Z_API ReturnCode Z_CALL Z_GetPlatformRegionRects(HRGN region, RECT* rects, int32_t* count);

/*
 * Allocates a global block: memory with a handle, in which device-independent bitmaps are exchanged.
 *
 * size      in: bytes; 0 makes a block without memory
 * blockOut  out: the block, filled with zeros and not locked, released by Z_FreeGlobalBlock
 *
 * 1 on success. Z_ERROR_ARGUMENT: a null blockOut. Z_ERROR_MEMORY: memory is short; blockOut is not written.
 */
Z_API ReturnCode Z_CALL Z_AllocGlobalBlock(size_t size, HGLOBAL* blockOut);

/*
 * Gives the address of a global block, which stays until the block is freed. Each lock wants an unlock.
 *
 * block     in: the block
 * bytesOut  out: its first byte
 *
 * 1 on success. Z_ERROR_ARGUMENT: no live block or one without memory, or a null bytesOut; nothing is changed.
 */
Z_API ReturnCode Z_CALL Z_LockGlobalBlock(HGLOBAL block, void** bytesOut);

/*
 * Takes one lock from a global block.
 *
 * block  in: the block
 *
 * 1 on success. Z_ERROR_ARGUMENT: no live block, or one that is not locked.
 */
Z_API ReturnCode Z_CALL Z_UnlockGlobalBlock(HGLOBAL block);

/*
 * Tells the size of a global block.
 *
 * block    in: the block
 * sizeOut  out: bytes
 *
 * 1 on success. Z_ERROR_ARGUMENT: no live block, or a null sizeOut; nothing is written then.
 */
Z_API ReturnCode Z_CALL Z_GetGlobalBlockSize(HGLOBAL block, size_t* sizeOut);

/*
 * Frees a global block that belongs to the host, locked or not.
 *
 * block  in: the block; not one that a bitmap has taken over
 *
 * 1 on success. Z_ERROR_ARGUMENT: no live block.
 */
Z_API ReturnCode Z_CALL Z_FreeGlobalBlock(HGLOBAL block);

Z_END_DECLS

#endif

#endif
