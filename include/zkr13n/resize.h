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

Z_END_DECLS

#endif
