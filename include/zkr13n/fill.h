/*
 * Fills: one colour, or zeros, into a bitmap. A bitmap with a region is written inside the region alone. A
 * fill reports to the status callback of the calling thread (Z_SetStatusCallBack): a bitmap on disk 0 first
 * and then steps of 100 / rows after each row, every other bitmap 0 before its rows and 100 after them, so
 * that it cannot be stopped in between. A fill that has no rows reports nothing.
 */
#ifndef ZKR13N_FILL_H
#define ZKR13N_FILL_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Fills a bitmap with a colour.
 *
 * bitmap    in, changed: an allocated bitmap of any storage class
 * colour    in: a colour value. For 1 to 8 bits per pixel the low bits of one whose top byte is 1 are the
 *           index to write, others are matched by Z_GetNearestPaletteIndex. At 32 and 64 bits the part of a
 *           pixel that is no colour becomes 0.
 *
 * Returns Z_SUCCESS, also for a region without pixels, for data in memory that has no address, and where the
 * storage fails to take a row; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_MEMORY when
 * there is no memory for a row; the failures of asking the region; or what the status callback returned to
 * stop the fill, the rows before that being filled.
 */
Z_API ReturnCode Z_CALL Z_FillBitmap(BitmapHandle* bitmap, uint32_t colour);

/*
 * Fills a bitmap with zeros: index 0 or black, whatever the palette.
 *
 * bitmap    in, changed: an allocated bitmap of any storage class
 *
 * Returns what Z_FillBitmap returns.
 */
Z_API ReturnCode Z_CALL Z_ClearBitmap(BitmapHandle* bitmap);

Z_END_DECLS

#endif
