/*
 * Painting: a bitmap, or rows that are still on their way into one, is put on a device context. Its pixels are never
 * changed. Three adjustments of a bitmap, contrast, intensity and gamma, take effect in painting alone.
 *
 * What a device gets follows from the bitmap's depth, the device's depth, and the display mode (display_modes.h):
 * pixels as they are stored, widened to 24 bits, dithered to the device's 1, 4 or 8 bits, or, of gray bitmaps of
 * 1 bit, levels of gray. The bitmap's region plays no part, but in Z_PaintRgnDC.
 */
#ifndef ZKR13N_PAINT_H
#define ZKR13N_PAINT_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Sets the intensity that a bitmap is painted with.
 *
 * bitmap  in, changed: an allocated bitmap, whose paint table is made anew
 * value   in, thousandths: -1000 to 1000, 0 changes nothing. Levels are moved by (255 * value + 500) / 1000.
 *
 * Returns Z_SUCCESS, also where the bitmap has that value already, with the table as it was; Z_ERROR_BITMAP for a bitmap that
 * is null or not allocated; Z_ERROR_ARGUMENT for a value out of range; Z_ERROR_MEMORY when a record without a paint
 * table cannot be given one. On failure nothing changes.
 */
Z_API ReturnCode Z_CALL Z_SetPaintIntensity(BitmapHandle* bitmap, int32_t value);

/*
 * Sets the contrast that a bitmap is painted with.
 *
 * bitmap  in, changed: an allocated bitmap, whose paint table is made anew
 * value   in, thousandths: -1000 to 1000, 0 changes nothing. Positive values make the middle levels steeper, negative
 *         ones squeeze all levels together.
 *
 * Returns what Z_SetPaintIntensity returns. After a value other than 0 has been taken back the table may stay in use
 * though it changes nothing.
 */
Z_API ReturnCode Z_CALL Z_SetPaintContrast(BitmapHandle* bitmap, int32_t value);

/*
 * Sets the gamma that a bitmap is painted with.
 *
 * bitmap  in, changed: an allocated bitmap, whose paint table is made anew for every value
 * value   in, hundredths: 1 or more, 100 changes nothing. Levels from 0 to 1 are raised to the power 100 / value.
 *
 * Returns what Z_SetPaintIntensity returns, with Z_ERROR_ARGUMENT for 0.
 */
Z_API ReturnCode Z_CALL Z_SetPaintGamma(BitmapHandle* bitmap, uint32_t value);

/*
 * The adjustments of a bitmap, as its record holds them. Nothing is checked.
 */
Z_API int32_t Z_CALL Z_GetPaintIntensity(const BitmapHandle* bitmap);
Z_API int32_t Z_CALL Z_GetPaintContrast(const BitmapHandle* bitmap);
Z_API uint32_t Z_CALL Z_GetPaintGamma(const BitmapHandle* bitmap);

Z_END_DECLS

#endif
