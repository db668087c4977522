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

/*
 * Paints a bitmap, or a part of it.
 *
 * deviceContext    in, changed: what is painted on
 * bitmap           in: an allocated bitmap; its row cache is changed
 * source           in, pixels of storage, may be null for the whole bitmap: what the destination shows. It may reach
 *                  over the bitmap's edges.
 * sourceClip       in, pixels of storage, may be null: what of the source is painted
 * destination      in, pixels of the device: where the whole source goes, which sets the scale. With a bottom above
 *                  its top it shows the picture upside down in the rectangle between them; without width or height, or with
 *                  a right side left of its left, nothing is painted.
 * destinationClip  in, pixels of the device, may be null: what of the destination is painted on
 * rasterOperation  in: how pixels meet those of the device, 0x00CC0020 to replace them
 *
 * At another scale the bitmap as a whole is scaled by repeating and dropping rows and columns, and a part of that is shown;
 * bitmaps of 1 bit that are shown in levels of gray get the share of white in the area that a pixel covers. Of gray of 12 and
 * 16 bits the values from LowBit to HighBit are shown with Z_FLAG_LEVEL_LUT_ACTIVE, else those from LevelLowBit to
 * LevelHighBit, through the level table wherever there is one. Thresholds
 * of dithering count from the first stored pixel, so that a part that is painted again has the same dots; errors are
 * diffused along the stored rows from the first one painted on. While the document capability is locked, views but
 * VIEW_BOTTOM_LEFT are painted as VIEW_TOP_LEFT.
 *
 * Returns Z_SUCCESS, also where nothing was to be painted; Z_ERROR_BITMAP for a bitmap that is null or not allocated;
 * Z_ERROR_ARGUMENT for a null destination or deviceContext, and where the bitmap as a whole would have a scaled width or height
 * beyond 32 bits; Z_ERROR_MEMORY when memory is short or the device refuses a band; the code of a row that cannot be
 * read. The bands before a failure are painted then.
 *
 * Ordered dithering: Bryce E. Bayer (1973); diffusion: Robert W. Floyd and Louis Steinberg (1976).
 */
Z_API ReturnCode Z_CALL Z_PaintDC(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                                  const RECT* sourceClip, const RECT* destination,
                                  const RECT* destinationClip, uint32_t rasterOperation);

/*
 * Paints rows that the caller holds, as Z_PaintDC would once they are in the bitmap, so that a picture can be shown
 * while it is loaded. Gray bitmaps of 1 bit are painted in black and white.
 *
 * deviceContext, bitmap, source, sourceClip, destination, destinationClip, rasterOperation
 *           as for Z_PaintDC; no pixel of the bitmap is read
 * rowData   in: the rows, BytesPerLine bytes each in the bitmap's format, or compressed rows of a bitmap of 1 bit
 * firstRow  in: which row of the bitmap the first one is. Rows outside the bitmap are left out.
 * rowCount  in: how many rows there are; negative for compressed rows
 *
 * Returns what Z_PaintDC returns, Z_ERROR_BITMAP for null rowData, and Z_ERROR_ARGUMENT for compressed rows of another
 * depth.
 */
Z_API ReturnCode Z_CALL Z_PaintDCBuffer(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                                        const RECT* sourceClip, const RECT* destination,
                                        const RECT* destinationClip, uint32_t rasterOperation,
                                        const void* rowData, int32_t firstRow, int32_t rowCount);

/*
 * Paints what of a bitmap lies in its region, which is scaled with it.
 *
 * Arguments as for Z_PaintDC; the clip of deviceContext is as before afterwards.
 *
 * Returns what Z_PaintDC returns, the causes that lie in the bitmap, the destination and the context first; then what
 * Z_GetResizedRgnHandle returns where it fails, and Z_ERROR_MEMORY where the context cannot be saved.
 */
Z_API ReturnCode Z_CALL Z_PaintRgnDC(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                                     const RECT* sourceClip, const RECT* destination,
                                     const RECT* destinationClip, uint32_t rasterOperation);

/*
 * Paints rows that the caller holds where they lie in the bitmap's region.
 *
 * Arguments as for Z_PaintDCBuffer, results as for Z_PaintDCBuffer and Z_PaintRgnDC.
 */
Z_API ReturnCode Z_CALL Z_PaintRgnDCBuffer(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                                           const RECT* sourceClip, const RECT* destination,
                                           const RECT* destinationClip, uint32_t rasterOperation,
                                           const void* rowData, int32_t firstRow, int32_t rowCount);

Z_END_DECLS

#endif
