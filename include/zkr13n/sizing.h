/*
 * Sizing of whole bitmaps.
 */
#ifndef ZKR13N_SIZING_H
#define ZKR13N_SIZING_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* Flags of Z_SizeBitmap and Z_ResizeBitmapExt; none of them takes the nearest pixel. */
enum {
    SIZE_KEEP_BLACK = 1, /* 1 bit: a pixel is black where enough black falls into it, so that strokes stay */
    SIZE_LINEAR = 2,     /* linear where the bitmap grows, averages weighted by area where it shrinks */
    SIZE_CUBIC = 4       /* natural cubic splines where the bitmap grows; as SIZE_LINEAR where neither side
                            does */
};

/*
 * Gives a bitmap other dimensions. Storage class, depth, palette, region and all other properties stay; the
 * region is scaled with the pixels.
 *
 * bitmap     in, replaced: an allocated bitmap
 * newWidth   in, pixels: 0 or more. One of the two sizes may be 0 and is then made so that the proportions
 *            stay, rounded to the nearest whole number.
 * newHeight  in, pixels: likewise
 * flags      in: SIZE_.... SIZE_KEEP_BLACK wins over SIZE_LINEAR and gives way to SIZE_CUBIC. It is ignored
 *            at other depths than 1, where the palette is not gray, and while the bitonal capability is
 *            locked.
 *
 * Nearest: target column x is source column x * old / new, and likewise rows. Averages are worked out first in
 * each row and then over rows, each cut to a whole number; at the end of a row or column the last source pixel
 * has no weight where the bounds meet exactly. The other methods are told at Z_StartResizeBitmap; alpha is
 * sized as the other channels. Up to 7 bits, and at 8 bits unless the palette is a gray ramp from black to
 * white, the result of blending is dithered to the palette by the method of Floyd and Steinberg.
 *
 * The status callback is told 0 to 100.
 *
 * Z_SUCCESS, also when the dimensions are those of the bitmap already. Z_ERROR_ARGUMENT: a bitmap that is null
 * or not allocated, a negative size, both sizes 0, or a completed size that is 0 or does not fit.
 * Z_ERROR_MEMORY and other failures of Z_DupBitmapNewDim. Z_ERROR_SEEK, Z_ERROR_READ, Z_ERROR_WRITE: a row
 * cannot be moved. What the status callback or the scaling of the region returned, when that is not
 * Z_SUCCESS. On failure the bitmap is as it was.
 */
Z_API ReturnCode Z_CALL Z_SizeBitmap(BitmapHandle* bitmap, int32_t newWidth, int32_t newHeight,
                                     uint32_t flags);

/*
 * Fills a bitmap with another at its size, taking the nearest pixels: Z_ResizeBitmapExt without flags.
 */
Z_API ReturnCode Z_CALL Z_ResizeBitmap(BitmapHandle* source, BitmapHandle* target);

/*
 * Fills a bitmap with another at its size.
 *
 * source  in: an allocated bitmap; its row cache is changed
 * target  in, changed: an allocated bitmap, which gives size, depth and palette. A region that it has counts as
 *         one of the source's pixels and is scaled with them, unless the source has the very same one.
 * flags   in: SIZE_.... SIZE_KEEP_BLACK wins over the others; it is ignored unless both depths are 1.
 *
 * Where the views differ the source is turned first, in a copy, except between 0 and 2, which only exchange
 * the order of rows. Without blending pixels are copied as they are, at the source's depth: give equal depths.
 * With blending they are converted to the target's depth, or dithered to its palette.
 *
 * Z_SUCCESS. Z_ERROR_BITMAP: a bitmap that is null or not allocated. Z_ERROR_ARGUMENT: views that differ, one
 * of which there is not. Z_ERROR_MEMORY: memory is short. Failures of dithering, of rows and of the region, and
 * what the status callback returned when that is not Z_SUCCESS; part of the target is then written.
 */
Z_API ReturnCode Z_CALL Z_ResizeBitmapExt(BitmapHandle* source, BitmapHandle* target, uint32_t flags);

/*
 * Scales the region of a bitmap to other dimensions of it.
 *
 * bitmap     in, changed: its region
 * newWidth   in, pixels
 * newHeight  in, pixels
 *
 * What the region operation returns, and Z_SUCCESS without one. Z_ERROR_BITMAP: a null bitmap.
 */
Z_API ReturnCode Z_CALL Z_KrnSizeBitmapRgn(BitmapHandle* bitmap, int32_t newWidth, int32_t newHeight);

Z_END_DECLS

#endif
