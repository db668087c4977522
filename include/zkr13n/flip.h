/*
 * Flips and reverses of the stored pixels, and the change of storage from one view perspective to another. The
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

/*
 * Moves the pixels of a bitmap so that they lie as another view perspective says: the picture stays what it is.
 *
 * target     out, may be null: another record, whatever it holds is overwritten without being freed. It gets a
 *            bitmap of its own, with a palette and a region of its own, and the source stays as it is. Null, or
 *            the source itself, changes the source.
 * source     in, changed without a target: an allocated bitmap
 * newView    in: VIEW_...
 *
 * The copy that becomes the target reports to the copy status callback (Z_SetCopyStatusCallBack) and can be
 * stopped by it; nothing is reported otherwise. The region follows.
 *
 * Returns Z_SUCCESS, also where the bitmap has that view already; Z_ERROR_ARGUMENT for a source that is null or
 * not allocated and for values that are no view; Z_ERROR_DOCUMENT_LOCKED for the views 4, 5, 7 and 8 while the
 * document capability is locked; the failures of Z_DupBitmapNewDim, Z_CopyBitmapData and Z_RotateBitmap, and
 * those of Z_FlipBitmap. On failure there is no target, and the source is as it was.
 */
Z_API ReturnCode Z_CALL Z_ChangeBitmapViewPerspective(BitmapHandle* target, BitmapHandle* source,
                                                      int32_t newView);

/*
 * As Z_ChangeBitmapViewPerspective, whatever is locked.
 *
 * target     out, may be null: as there, but not the source itself
 * source     in, changed without a target; null is Z_ERROR_ARGUMENT
 * newView    in: VIEW_...
 * flags      in: Z_DUP_... bits for the target; not used without one. Without Z_DUP_DATA it is Z_ERROR_BITMAP.
 *            Without Z_DUP_REGION the target shares the source's region, which stays as it is.
 */
Z_API ReturnCode Z_CALL Z_IntChangeBitmapViewPerspective(BitmapHandle* target, BitmapHandle* source,
                                                         int32_t newView, uint32_t flags);

Z_END_DECLS

#endif
