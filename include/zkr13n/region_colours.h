/*
 * Regions from pixels: those of a colour or of colours in a range, those that hang together with a seed, and masks.
 *
 * What the functions that set a region have in common: bitmap is an allocated bitmap whose region becomes what mode,
 * one of Z_RGN_..., makes of the present one and the pixels found, which are looked for in the whole bitmap. On failure
 * the present region stays. They return Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated;
 * Z_ERROR_ARGUMENT for another mode, and where the palette lacks entries that ColorsUsed counts; Z_ERROR_MEMORY;
 * or the failure of reading a row.
 */
#ifndef ZKR13N_REGION_COLOURS_H
#define ZKR13N_REGION_COLOURS_H

#include "region.h"

Z_BEGIN_DECLS

/*
 * Sets the region by the pixels of one colour. Up to 8 bits these are the pixels of the first palette entry of that
 * colour. Above, pixels are compared as Z_ConvertBufferExt brings them to 24 bits, gray ones through window and active
 * level table.
 *
 * color    in: 0x00BBGGRR, or up to 8 bits an index with the top byte 1, of which the pixel's bits count; other top
 *          bytes play no part
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnColor(BitmapHandle* bitmap, uint32_t color, uint32_t mode);

/*
 * Sets the region by the pixels of which red, green and blue each lie between two bounds, both included. Up to 8 bits
 * palette entries are compared, above pixels as for Z_SetBitmapRgnColor.
 *
 * lower, upper    in: 0x00BBGGRR. Bounds of a channel that are exchanged leave nothing.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnColorRGBRange(BitmapHandle* bitmap, uint32_t lower, uint32_t upper,
                                                    uint32_t mode);

/*
 * As Z_SetBitmapRgnColorRGBRange for hue, saturation and value, as Z_RGBtoHSV gives them.
 *
 * lower, upper    in: 0x00VVSSHH. Where the lower hue is above the upper one, the range goes from there over 255 to the
 *                 upper one.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnColorHSVRange(BitmapHandle* bitmap, uint32_t lower, uint32_t upper,
                                                    uint32_t mode);

/*
 * Sets the region by the pixels of nearly one colour that hang together around a seed: those near the seed's colour
 * which a way along rows and columns, over such pixels alone, leads to from a neighbour of the seed. The seed belongs
 * to them when one of its neighbours does. Gray of 12 and 16 bits is compared as Z_GetPixelColor packs it, the low byte
 * and the high byte each by itself; 16-bit colours are widened as there.
 *
 * x, y         in: column and row of the seed
 * tolerance    in: how far red, green and blue each may be from the seed's; the low byte counts
 *
 * Z_ERROR_ARGUMENT is also returned for a seed outside the bitmap.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnMagicWand(BitmapHandle* bitmap, int32_t x, int32_t y,
                                                uint32_t tolerance, uint32_t mode);

/*
 * Sets the region by the white pixels of a mask. A mask of another depth, or for a bitmap that is not gray, is brought
 * to black and white first, so that the pixels whose gray is 128 or more count.
 *
 * bitmap    in, changed: its storage is not looked at
 * xform     in, may be null: the coordinates of the mask's pixels
 * mask      in: an allocated bitmap of any depth, which may be bitmap itself. Its region and view play no part.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null bitmap, a mask that is null or not allocated, a bad transform or mode;
 * the failures of Z_ColorResBitmap and Z_SetBitmapRgnColor. The status callback is that of Z_ColorResBitmap.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnFromMask(BitmapHandle* bitmap, const RegionXform* xform,
                                               BitmapHandle* mask, uint32_t mode);

/*
 * Makes a 1-bit bitmap that is white where a bitmap's region is, everywhere for a bitmap without one.
 *
 * bitmap    in: its storage is not looked at
 * mask      out: a bitmap of the same width, height and view, on disk where bitmap is; whatever the record held is
 *           overwritten without being freed
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for null; Z_ERROR_MEMORY; the failures of Z_CreateBitmap and Z_FillBitmap, to
 * which the status callback belongs. On failure the mask has no storage.
 */
Z_API ReturnCode Z_CALL Z_CreateMaskFromBitmapRgn(BitmapHandle* bitmap, BitmapHandle* mask);

Z_END_DECLS

#endif
