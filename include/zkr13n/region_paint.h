/*
 * Regions shown on a device: as a moving outline, and as a translucent colour.
 */
#ifndef ZKR13N_REGION_PAINT_H
#define ZKR13N_REGION_PAINT_H

#include "region.h"

Z_BEGIN_DECLS

/*
 * Draws the outline of a bitmap's region, or of the bitmap where it has none, in stripes of the context's text colour
 * and background colour. Drawn again and again with a frameType one higher each time, the outline marches.
 *
 * context      in: where to draw
 * bitmap       in; its region keeps the region of the platform that is made for this
 * xform        in, may be null: how the region lies on the device
 * frameType    in: the low three bits are the phase of the stripes, the lowest is also the form of the band
 *
 * Returns Z_SUCCESS, also where arguments are null or no outline can be made, and nothing is drawn.
 */
Z_API ReturnCode Z_CALL Z_FrameBitmapRgn(HDC context, BitmapHandle* bitmap, const RegionXform* xform,
                                         uint32_t frameType);

/*
 * Lays a colour over what a device shows inside a bitmap's region: each bit of the colour that is set turns the
 * device's bit round.
 *
 * context    in: where to draw
 * bitmap     in; its region keeps the mask that is made for this
 * xform      in, may be null: how the region lies on the device
 * color      in: 0x00BBGGRR
 *
 * Returns Z_SUCCESS, also for a bitmap without a region and for an empty one, where nothing is drawn; Z_ERROR_BITMAP for a
 * null bitmap; Z_ERROR_ARGUMENT for a null context, and for a transform without a view or with a zero denominator;
 * Z_ERROR_MEMORY when memory is short or the platform makes no such mask.
 */
Z_API ReturnCode Z_CALL Z_ColorBitmapRgn(HDC context, BitmapHandle* bitmap, const RegionXform* xform,
                                         uint32_t color);

Z_END_DECLS

#endif
