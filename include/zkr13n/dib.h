/*
 * Exchange with the platform: device-independent bitmaps (DIBs), bitmaps of a device, and device contexts that draw
 * straight into a bitmap's pixels.
 *
 * A packed DIB is one block of global memory: a header, the colours, and the rows, each padded to 4 bytes. A function
 * named Convert leaves its source standing; one named Change consumes it on success. A global block and a platform
 * object that a function returns belong to the caller, who releases them with GlobalFree and DeleteObject on Windows,
 * with Z_FreeGlobalBlock and Z_DeleteObject elsewhere.
 *
 * Headers that are read:
 *
 *   size of the header    12, with colours of 3 bytes and dimensions without a sign; 40; or more than 40, of which
 *                         the first 40 bytes count, and with masks the first 52
 *   plain rows            1, 4, 8, 16, 24 or 32 bits; 16 bits are five each of red, green and blue from bit 14 down
 *   masks (3)             16 or 32 bits: three masks behind a header of 40 bytes, or in a longer one from byte 40 on.
 *                         A channel of fewer bits than it gets (five at 16 bits, eight at 32) is multiplied by 31 or
 *                         255 without a division and what is too large cut off: such pictures are told from others by
 *                         their wrong colours. One of more bits is stretched, v * 31 / maximum.
 *   runs (1, 2)           8 or 4 bits. What hangs over the end of a row or of the picture is left out; pixels that no
 *                         run reaches are 0. Reading stops at biSizeImage, unless that is 0.
 *   YVU9, IF09            9 or 24 bits: planes of Y, V and U, a chroma sample for 4 x 4 pixels
 *   I420, IYUV, YV12      12 or 24 bits: planes of Y, U and V, in YV12 of Y, V and U, a sample for 2 x 2 pixels
 *   UYVY, cyuv, YUY2, YVYU    16 or 24 bits: 4 bytes for 2 pixels
 *   Y41P                  16 or 24 bits: 12 bytes for 8 pixels, U Y V Y U Y V Y Y Y Y Y
 *
 * YUV has rows of a multiple of 16 pixels, without padding, and becomes 24 bits. A negative height means that the
 * uppermost row comes first. biClrUsed tells the colours, 0 all that the depth can have; above 8 bits they are stepped
 * over, and so is what there are more of than the depth can have.
 */
#ifndef ZKR13N_DIB_H
#define ZKR13N_DIB_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* Values of dibType. */
enum {
    Z_DIB_INFO = 0, /* BITMAPINFOHEADER, 40 bytes; every value that is not listed stands for it too */
    Z_DIB_V4 = 1,   /* BITMAPV4HEADER, 108 bytes, with masks, colour space, end points and gamma of 0 */
    Z_DIB_V5 = 2    /* BITMAPV5HEADER, 124 bytes, likewise, but of the colour space sRGB ("BGRs") */
};

/*
 * Makes a packed DIB of a bitmap, with a BITMAPINFOHEADER.
 *
 * bitmap    in: an allocated bitmap; its row cache is changed
 *
 * What a DIB cannot hold is brought to a depth that it can, by Z_ColorResBitmap: 2 and 3 bits to 4 and 5 to 7 bits to
 * 8, with the same colours and indices; gray of 12 and 16 bits to 24; colour of 16, 24 and 32 bits in the order RGB to
 * the order BGR; 48 bits to 24 and 64 bits to 32. Views other than VIEW_TOP_LEFT and VIEW_BOTTOM_LEFT are turned, and
 * with VIEW_RIGHT_TOP, VIEW_LEFT_TOP, VIEW_RIGHT_BOTTOM and VIEW_LEFT_BOTTOM width, height and resolutions change
 * places. The rows stand from the lowest one up. Up to 8 bits there are ColorsUsed colours, of a bitmap without a
 * palette a gray ramp.
 *
 * biXPelsPerMeter is (XResolution * 10000 + 127) / 254, biYPelsPerMeter likewise. biSizeImage is 0 where it does not
 * fit.
 *
 * Returns the block, which belongs to the caller; null for a bitmap that is null or not allocated, where memory is
 * short, when rows cannot be read and when the status callback of an inner step stops it.
 */
Z_API HGLOBAL Z_CALL Z_ConvertToDIB(BitmapHandle* bitmap);

/*
 * As Z_ConvertToDIB, with a header of another kind.
 *
 * dibType    in: Z_DIB_...
 */
Z_API HGLOBAL Z_CALL Z_ConvertToDIB2(BitmapHandle* bitmap, int32_t dibType);

/*
 * As Z_ConvertToDIB, and frees the bitmap.
 *
 * bitmap    in, changed: Z_FreeBitmap is called at the end. One with Z_FLAG_LOCKED is refused.
 *
 * Returns what Z_ConvertToDIB returns. On failure the bitmap is as it was.
 */
Z_API HGLOBAL Z_CALL Z_ChangeToDIB(BitmapHandle* bitmap);

/*
 * As Z_ChangeToDIB, with a header of another kind.
 *
 * dibType    in: Z_DIB_...
 */
Z_API HGLOBAL Z_CALL Z_ChangeToDIB2(BitmapHandle* bitmap, int32_t dibType);

/*
 * Makes a bitmap of a DIB whose header and pixels may stand in different places.
 *
 * bitmap    out: whatever the record held is overwritten without being freed. Its storage is of the thread's default
 *           memory type (Z_SetDefaultMemoryType).
 * header    in: a header and, behind it, masks and colours. All that it tells is read; who gets it from outside sees to
 *           it that as much is there.
 * bits      in: the pixels, as many as the header tells
 *
 * Row i is the i-th row of bits, and the view VIEW_BOTTOM_LEFT, or with a negative height VIEW_TOP_LEFT. A resolution
 * that is 0 is made of the screen's: LOGPIXELSX * 1000 / HORZSIZE, rounded, and likewise down; XResolution is
 * (biXPelsPerMeter * 254 + 5000) / 10000.
 *
 * Returns Z_SUCCESS; for a height of 0 too, with a record that has no storage. Z_ERROR_ARGUMENT: a null pointer.
 * Z_ERROR_FEATURE: another header, depth, compression, or width of YUV than listed above. Z_ERROR_DIMENSIONS: a width
 * below 1, or sizes that no bitmap can have. Z_ERROR_MEMORY and the other failures of Z_AllocateBitmap and of writing
 * rows. On failure the record is cleared.
 */
Z_API ReturnCode Z_CALL Z_ConvertFromDIB(BitmapHandle* bitmap, const void* header, const void* bits);

/*
 * Makes a bitmap of a packed DIB. Plain rows stay where they are: the block becomes the bitmap's storage and no pixel
 * is copied. With masks they are rewritten in their place. Runs and YUV are converted as by Z_ConvertFromDIB.
 *
 * bitmap    out: whatever the record held is overwritten without being freed
 * block     in: the DIB. On success it belongs to the bitmap, or is freed where the pixels were converted.
 *
 * Returns as Z_ConvertFromDIB, but Z_ERROR_ARGUMENT for a block that cannot be locked, a width or height of 0, and a
 * block that is shorter than its header tells. On failure the record is cleared and the block, unchanged, stays the
 * caller's.
 */
Z_API ReturnCode Z_CALL Z_ChangeFromDIB(BitmapHandle* bitmap, HGLOBAL block);

/*
 * As Z_ChangeFromDIB, but the block stays the caller's, who keeps it until the bitmap has been freed: the bitmap is a
 * window on the block. What is written into one is seen in the other, and masks are applied in the caller's block, whose
 * header then no longer tells what its pixels are. Where the pixels were converted the bitmap has its own.
 */
Z_API ReturnCode Z_CALL Z_MirrorFromDIB(BitmapHandle* bitmap, HGLOBAL block);

/*
 * Makes a platform bitmap that shows what painting makes of a bitmap (Z_PaintDC), dithered where the device wants that
 * and never as indices into a palette.
 *
 * deviceContext    in: that the platform bitmap is compatible with, null for the screen
 * bitmap           in: an allocated bitmap; its row cache is changed. Of 1 bit, and gray with black or white first, the
 *                  platform bitmap is monochrome. Views count: it is as wide and high as the picture.
 *
 * The thread's display mode is another while the bitmap is painted, and then as before.
 *
 * Returns the platform bitmap, which belongs to the caller; null for a bitmap that is null or not allocated, where
 * memory is short, and when painting fails.
 */
Z_API HBITMAP Z_CALL Z_ConvertToDDB(HDC deviceContext, BitmapHandle* bitmap);

/*
 * As Z_ConvertToDDB, and frees the bitmap on success.
 */
Z_API HBITMAP Z_CALL Z_ChangeToDDB(HDC deviceContext, BitmapHandle* bitmap);

/*
 * Makes a bitmap of a platform bitmap.
 *
 * deviceContext      in: whose colours are meant, null for the screen's
 * bitmap             out: whatever the record held is overwritten without being freed. Its storage is global memory, its
 *                    depth 1, 4 or 8 bits as the platform bitmap's, or else 24, its view VIEW_BOTTOM_LEFT.
 * platformBitmap     in: a bitmap that no device context has selected; stays the caller's
 * platformPalette    in, may be null: selected and realised while the pixels are read
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null bitmap, for what is no platform bitmap, and when its pixels cannot be
 * read; Z_ERROR_MEMORY; the failures of Z_ChangeFromDIB. On failure the record is cleared.
 */
Z_API ReturnCode Z_CALL Z_ConvertFromDDB(HDC deviceContext, BitmapHandle* bitmap, HBITMAP platformBitmap,
                                         HPALETTE platformPalette);

/*
 * As Z_ConvertFromDDB, and on success deletes the platform bitmap and the palette.
 */
Z_API ReturnCode Z_CALL Z_ChangeFromDDB(HDC deviceContext, BitmapHandle* bitmap, HBITMAP platformBitmap,
                                        HPALETTE platformPalette);

/*
 * Makes a palette for painting a bitmap on a device in the thread's display mode (Z_SetDisplayMode), whatever the device
 * can do with it.
 *
 * deviceContext    in: null for the screen's
 * bitmap           in: an allocated bitmap
 *
 * Where painting dithers for a device of up to 8 bits it is the palette that it dithers to: the fixed one of 2, 16 or
 * 256 colours, or with DISPLAY_CUBE at 8 bits the cube of 216 colours and black. Where it shows 1 bit by levels of gray
 * it is those 256 levels through the paint table. Otherwise up to 8 bits it is the bitmap's own, through the paint table
 * while that is in use, and above 8 bits for gray bitmaps those 256 levels again.
 *
 * Returns a palette object, which belongs to the caller; null where none is needed, for a bitmap that is null or not
 * allocated, and where memory is short.
 */
Z_API HPALETTE Z_CALL Z_CreatePaintPalette(HDC deviceContext, BitmapHandle* bitmap);

/*
 * Makes a memory device context that draws straight into a bitmap's pixels, and whose pixels are those of the bitmap.
 *
 * bitmap    in, changed: an allocated bitmap. It is brought to what a device-independent bitmap holds (Z_ConvertToDIB),
 *           to VIEW_BOTTOM_LEFT, and to one mapped block of storage of its own: runs, strips, tiles, files, blocks of
 *           global memory and a host's own data are left. Where that fails it may stay on the way, with its picture
 *           whole.
 *
 * The platform may draw later than it is asked to: GdiFlush on Windows sees to it that the pixels can be read.
 *
 * Returns the context, which Z_DeleteZircDC closes before or after the bitmap is freed; null for a bitmap that is null
 * or not allocated, and where a step fails.
 */
Z_API HDC Z_CALL Z_CreateZircDC(BitmapHandle* bitmap);

/*
 * Closes a device context of Z_CreateZircDC. The bitmap and its pixels stay.
 *
 * deviceContext    in
 *
 * Returns 1; 0 for what is no memory device context, and where memory is short, with the context as it was.
 */
Z_API int32_t Z_CALL Z_DeleteZircDC(HDC deviceContext);

Z_END_DECLS

#endif
