/*
 * Resampling of rows: nearest-pixel steppers at every depth, a line resizer for callers that feed rows
 * themselves, and a streaming resizer that gives any stretch of any row of a bitmap at another size without
 * making a bitmap of that size.
 */
#ifndef ZKR13N_RESIZE_H
#define ZKR13N_RESIZE_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Makes a row of pixels by stepping through another: target pixel k is the source pixel at firstPixel +
 * k * step + (error + k * remainder) / denominator, in whole numbers.
 *
 * bitsPerPixel  in: 1 to 8, 12, 16, 24, 32, 48 or 64; with another depth nothing is done
 * targetBytes   in, bytes: of the target row. At 1 to 7 and 12 bits the bits behind the last pixel become
 *               zero up to there, unless source and target are one buffer.
 * firstPixel    in: where in the source the row starts
 * step          in: source pixels for each target pixel. Up to 7 bits it is not read when enlarge is set.
 * error         in: what is carried into the first pixel, below the denominator
 * remainder     in: added to the error for each target pixel; when that reaches the denominator it is
 *               subtracted, and the source goes one pixel further
 * source        in: packed pixels
 * target        out: packed pixels; from 8 bits on it may be the source where the row does not grow
 * pixels        in: pixels to make
 * denominator   in: 1 or more
 * enlarge       in: other than 0 when the row grows or stays as it is
 *
 * Returns nothing of use. No buffer is checked.
 */
Z_API uint32_t Z_CALL Z_GetResizedScanLine(int32_t bitsPerPixel, uint32_t targetBytes, uint32_t firstPixel,
                                           uint32_t step, uint32_t error, uint32_t remainder,
                                           const void* source, void* target, uint32_t pixels,
                                           int32_t denominator, uint32_t enlarge);

/*
 * As Z_GetResizedScanLine, for one buffer as source and target where the row grows: the target is made from
 * its last pixel to its first. Up to 7 bits with enlarge clear it is made forwards, so that a row may shrink
 * in place there too. Bits that belong to no pixel stay as they are.
 */
Z_API uint32_t Z_CALL Z_ReverseGetResizedScanLine(int32_t bitsPerPixel, uint32_t targetBytes,
                                                  uint32_t firstPixel, uint32_t step, uint32_t error,
                                                  uint32_t remainder, const void* source, void* target,
                                                  uint32_t pixels, int32_t denominator, uint32_t enlarge);

/* What Z_StartResize makes. */
typedef struct ResizeLineState ResizeLineState;

/*
 * Begins to resize rows that the caller feeds one by one. Columns and rows are repeated or dropped, never
 * blended.
 *
 * oldWidth, oldHeight  in, pixels: 1 or more
 * newWidth, newHeight  in, pixels: 0 or more. One of them may be 0 and is then made so that the proportions
 *                      stay, rounded to the nearest whole number.
 * state                out: released by Z_StopResize
 *
 * Z_SUCCESS. Z_ERROR_ARGUMENT: a null pointer, an old size below 1, a negative new size, both new sizes 0, or
 * a completed size that is 0 or does not fit. Z_ERROR_MEMORY: memory is short. On failure state is as it was.
 */
Z_API ReturnCode Z_CALL Z_StartResize(int32_t oldWidth, int32_t oldHeight, int32_t newWidth,
                                      int32_t newHeight, ResizeLineState** state);

/*
 * Resizes a row in place and tells how often it appears in the result. Rows may come in any order; when all
 * come from the first to the last, the repeat counts add up to the new height.
 *
 * row           in, out: packed pixels, with room for the longer of the two rows
 * index         in: which row it is, from 0
 * bitsPerPixel  in: 1 to 8, 12, 16, 24, 32, 48 or 64
 * newWidth      out, pixels: the width that rows get
 * repeat        out: how many rows of the result are this one. 0: the row is dropped, and stays as it came.
 * state         in, changed
 *
 * The repeat count. Z_ERROR_ARGUMENT: a null pointer; nothing is changed.
 */
Z_API ReturnCode Z_CALL Z_Resize(void* row, uint32_t index, int32_t bitsPerPixel, int32_t* newWidth,
                                 int32_t* repeat, ResizeLineState* state);

/*
 * Ends the resizing of rows.
 *
 * state  in: what Z_StartResize gave, or null
 *
 * Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_StopResize(ResizeLineState* state);

/* Bits of the flags argument of Z_StartResizeBitmap. */
enum {
    RESIZE_ORDER_BGR = 0x00000004,  /* the output is blue first; without it and the next, red first */
    RESIZE_ORDER_GRAY = 0x00000080, /* the output is gray and never dithered; RESIZE_ORDER_BGR wins */
    RESIZE_LINEAR = 0x00000010,     /* linear where the bitmap grows, averages where it shrinks */
    RESIZE_SPLINE = 0x00000020,     /* natural cubic splines where the bitmap grows */
    RESIZE_DITHER_SHIFT = 16        /* bits 16 to 23: the dithering method, Dither... */
};

/*
 * Fetches packed pixels of a row in place of the bitmap's storage.
 *
 * bitmap  the bitmap that was given to Z_StartResizeBitmap
 * buffer  out: the bytes
 * row     0 to Height - 1
 * column  the pixel of the row that the first byte begins with, from 0
 * bytes   how many
 * data    what was given to Z_StartResizeBitmap
 *
 * Z_SUCCESS; anything else ends the request, whose result it is.
 */
typedef ReturnCode(Z_CALL* ResizeReadRow)(BitmapHandle* bitmap, void* buffer, int32_t row, int32_t column,
                                          uint32_t bytes, void* data);

/* What Z_StartResizeBitmap makes. */
typedef struct ResizeRowContext ResizeRowContext;

/*
 * Begins to give out rows of a bitmap at another size. The bitmap stays locked, and must live and keep its
 * dimensions, until Z_StopResizeBitmap.
 *
 * bitmap        in: an allocated bitmap; with a reader one without storage will do. Dimensions, depth, order,
 *               palette and gray window are taken as they are now; its row cache is changed.
 * newWidth      in, pixels: 0 or more, as for Z_StartResize
 * newHeight     in, pixels: likewise
 * newBits       in: depth of the output, below 1 for that of the bitmap. 8 bits without a palette, or with a
 *               gray palette from black to white, are gray levels where the bitmap is such gray or the
 *               palette was given.
 * palette       in, may be null: the colours of an output of up to 8 bits. Null stands for the palette of the
 *               bitmap, and where that has none for the fixed one.
 * paletteCount  in: its entries, 1 to 256
 * flags         in: RESIZE_...
 * readRow       in, may be null: the reader; null reads the bitmap
 * readRowData   in: handed to the reader
 * context       out: released by Z_StopResizeBitmap
 *
 * Nearest takes for column x the source pixel x * old / new, and likewise for rows; rows of a bitmap that
 * grows come from source row (y * old + old - 1) / new. Linear places each source pixel in the middle of the
 * stretch that it becomes and goes to the next in equal steps, rounded down; the last stretch is flat. Columns
 * that shrink are means weighted by the covered area, and rows that shrink plain means of whole rows. The
 * spline goes through the source pixels with second derivatives of zero at the ends of the window that the
 * request needs, and between rows through the four nearest ones; where both sides shrink or stay it is linear,
 * and where the width shrinks columns are means. The work is done in 8-bit gray, 24 bits, 16-bit gray or 48
 * bits, according to the bitmap; alpha does not pass.
 *
 * Z_SUCCESS. Z_ERROR_BITMAP: a null bitmap, or one without storage when there is no reader. Z_ERROR_ARGUMENT:
 * context is null, the sizes are refused as by Z_StartResize, the output cannot be converted to, or dithering
 * cannot start with this palette. Z_ERROR_MEMORY: memory is short. On failure context is as it was.
 *
 * Bresenham's stepping (Jack E. Bresenham, 1965) in all whole-number methods; natural splines by elimination
 * in three diagonals (Llewellyn H. Thomas, 1949).
 */
Z_API ReturnCode Z_CALL Z_StartResizeBitmap(BitmapHandle* bitmap, int32_t newWidth, int32_t newHeight,
                                            int32_t newBits, const RGBQUAD* palette, uint32_t paletteCount,
                                            uint32_t flags, ResizeReadRow readRow, void* readRowData,
                                            ResizeRowContext** context);

/*
 * Gives a stretch of a row of the resized bitmap. Requests may come in any order; the same stretch of the row
 * above, the same row or the row below the last one reads at most one row of the source.
 *
 * context  in, changed
 * target   out: packed pixels, the first of them in the topmost bits of the first byte
 * row      in: 0 to the new height - 1; others count as the nearest of these
 * column   in: the first pixel, 0 to the new width - 1
 * bytes    in: bytes wanted, 1 or more. As many pixels are made as fit, less those bits that the column lies
 *          behind the start of its byte. Bytes behind the last pixel of the row hold nothing of meaning; a
 *          dithered row leaves them as they were.
 *
 * Dithering runs on from request to request in the order in which they come.
 *
 * Z_SUCCESS. Z_ERROR_ARGUMENT: no context, a null target, another column, or 0 bytes; nothing is written.
 * Z_ERROR_READ, or what the reader returned: a row could not be read; the target is as it was.
 */
Z_API ReturnCode Z_CALL Z_GetResizedRowCol(ResizeRowContext* context, void* target, int32_t row,
                                           int32_t column, uint32_t bytes);

/*
 * Ends the resizing of a bitmap, and unlocks it.
 *
 * context  in: what Z_StartResizeBitmap gave
 *
 * Z_SUCCESS, or Z_ERROR_ARGUMENT when it is none.
 */
Z_API ReturnCode Z_CALL Z_StopResizeBitmap(ResizeRowContext* context);

Z_END_DECLS

#endif
