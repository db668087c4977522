/*
 * Flips and reverses of the stored pixels. The
 * functions of views.h that change the field alone cost nothing and are to be preferred where they serve.
 */
#ifndef ZKR13N_FLIP_H
#define ZKR13N_FLIP_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Turns the picture upside down, in place. In views 0 to 3 that exchanges rows, which takes their padding along
 * and in runs moves no pixel; in views 4, 5, 7 and 8 it mirrors each row.
 *
 * bitmap    in, changed: an allocated bitmap
 *
 * The status callback hears 0 and then each percentage that the pairs of rows, or the rows, reach; a single row
 * that is exchanged with none is not told of. The region follows.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_ARGUMENT for a field
 * that holds no view; Z_ERROR_MEMORY; the failures of reading and writing rows: the bitmap then is as it was,
 * unless its storage fails for good; what the callback returned to stop the work, with the rows up to there
 * done; what the region code returned, with all rows done.
 */
Z_API ReturnCode Z_CALL Z_FlipBitmap(BitmapHandle* bitmap);

/*
 * Exchanges left and right of the picture, in place. In views 4, 5, 7 and 8 that exchanges rows, otherwise it
 * mirrors each row.
 *
 * Arguments and results as for Z_FlipBitmap, but a field that holds no view is one of the others.
 */
Z_API ReturnCode Z_CALL Z_ReverseBitmap(BitmapHandle* bitmap);

Z_END_DECLS

#endif
