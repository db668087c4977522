/*
 * The alpha of bitmaps of 16, 32 and 64 bits per pixel: taken out as a gray bitmap, and put in from one.
 */
#ifndef ZKR13N_ALPHA_H
#define ZKR13N_ALPHA_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Makes a gray bitmap of a bitmap's alpha.
 *
 * bitmap  in: an allocated bitmap of any depth; its row cache is changed
 * alpha   out: another record; whatever it held is overwritten without being freed. It gets the bitmap's size,
 *         view perspective, resolution and region, and is on disk where the bitmap is, else conventional. For
 *         64 bits it has 16 bits in gray order (8 while extended gray is locked), for others 8, and always the
 *         gray palette of 8 bits.
 *
 * Alpha is the fourth word of a 64-bit pixel (its high byte at 8 bits), the fourth byte of a 32-bit pixel, and
 * 255 for bit 15 of a 16-bit pixel that is set, whatever the order. All else is 0. The status callback is not
 * called.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a bitmap that is null or not allocated and for an alpha that is null
 * or the bitmap itself; Z_ERROR_MEMORY; the failures of Z_AllocateBitmap, of reading and writing rows, and of
 * copying the region. On failure alpha has no storage and owns nothing.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapAlpha(BitmapHandle* bitmap, BitmapHandle* alpha);

/*
 * Gives a bitmap the alpha that a gray bitmap holds, in the area that both have, from the first row and column
 * of the bitmap's storage.
 *
 * bitmap  in, changed: an allocated bitmap. Unless it has 16, 32 or 64 bits per pixel it is first replaced by
 *         one that has: 64 for 48, else 32, in RGB order where it was in it from 16 bits on, else in BGR.
 * alpha   in: an allocated bitmap; its row cache is changed. One that is not gray, of another view perspective
 *         or of another depth (8 bits go with 16 and 32, 16 with 64, and 1 with 16) is read as if brought to
 *         gray by Z_GrayScaleBitmap, 16 bits for 64 and 8 for others, and to the bitmap's view.
 *
 * At 32 bits the fourth byte becomes the alpha. At 16 bits bit 15 is set for an alpha from 128 on, or for a set
 * bit, and else cleared. At 64 bits the fourth word becomes the alpha in the first half of each row of the
 * area, and the other pixels keep theirs.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a bitmap that is null or not allocated and for views that differ and
 * of which one is none; Z_ERROR_MEMORY; the failures of Z_ColorResBitmap, Z_CopyBitmap, Z_GrayScaleBitmap and
 * Z_IntChangeBitmapViewPerspective, with their results of callbacks; the failures of reading and writing rows.
 * On failure the bitmap may have its new depth, and when a row fails the rows before it are done.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapAlpha(BitmapHandle* bitmap, BitmapHandle* alpha);

Z_END_DECLS

#endif
