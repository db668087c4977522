/*
 * Shear: rows or columns slid by an amount that grows with their distance from one edge.
 */
#ifndef ZKR13N_SHEAR_H
#define ZKR13N_SHEAR_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Shears a bitmap: each row moves sideways, or each column up or down, by whole pixels, so that every pixel keeps its
 * value. The steps are those of a line drawn by whole numbers (Jack Bresenham, 1965).
 *
 * bitmap        in, changed: an allocated bitmap. It becomes wider, or higher, by its other dimension times the
 *               tangent of the angle.
 * angle         in, hundredths of a degree: from -8999 to 8999. A positive one moves the top of the picture to the
 *               right, a negative one gives the mirror image of that.
 * horizontal    in: not 0 to slide the rows of the picture as it is seen, 0 for its columns
 * fill          in: colour value of the corners that come free. Of runs, whether its pixel is 0 or 1.
 *
 * The result has the storage class, palette, tables and view of the bitmap, and the region follows. The status
 * callback hears percentages: of rows from 0 to 100, or 5 to 95 for negative angles; of columns, with a quarter turn
 * before and after, from 0 to 100.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_ARGUMENT for another angle,
 * and for a result of which a row, or for columns a column, has more than 32768 bytes; Z_ERROR_MEMORY; the failures
 * of Z_AllocateBitmap and of reading and writing rows; what the callback returned to stop the work; what the region
 * code returned. On failure the bitmap is as it was.
 */
Z_API ReturnCode Z_CALL Z_ShearBitmap(BitmapHandle* bitmap, int32_t angle, int32_t horizontal, uint32_t fill);

Z_END_DECLS

#endif
