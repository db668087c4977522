/*
 * View perspectives (VIEW_... in bitmap.h): how the rows and columns of storage lie on the picture. A flip or a
 * quarter turn can be a change of this one field of the record instead of a pass over the pixels.
 *
 * What makes rows of each view rows of VIEW_TOP_LEFT, where a flip exchanges top and bottom and comes first, a
 * reverse exchanges left and right, and turns are clockwise:
 *
 *   VIEW_TOP_RIGHT      reverse            VIEW_RIGHT_TOP     turn by 90 degrees
 *   VIEW_BOTTOM_LEFT    flip               VIEW_LEFT_TOP      flip, turn by 90 degrees
 *   VIEW_BOTTOM_RIGHT   turn by 180        VIEW_RIGHT_BOTTOM  flip, turn by 270 degrees
 *                                          VIEW_LEFT_BOTTOM   turn by 270 degrees
 */
#ifndef ZKR13N_VIEWS_H
#define ZKR13N_VIEWS_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Tells what brings rows of one view perspective into another: a flip if told, then a clockwise turn.
 *
 * from, to    in: VIEW_...
 * flip        out: 1 or 0
 * angle       out, degrees: 0, 90, 180 or 270; from 1 to 8 it is -90
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a value that is no view and for null pointers, with nothing
 * written.
 */
Z_API ReturnCode Z_CALL Z_GetChangeViewPerspectiveParams(uint32_t from, uint32_t to, int32_t* flip,
                                                         int32_t* angle);

/*
 * Gives the place that a stored pixel of a bitmap has in a view.
 *
 * bitmap    in: Width, Height and ViewPerspective are looked at
 * view      in: VIEW_...
 * x, y      in, out: column and row, pixels; they may lie outside the bitmap
 *
 * From view 1 to 8 only the flip is done.
 *
 * Returns Z_SUCCESS, also where view is the bitmap's, whatever it is; Z_ERROR_ARGUMENT for null pointers and
 * for a value that is no view, with the point as it was.
 */
Z_API ReturnCode Z_CALL Z_PointFromBitmap(BitmapHandle* bitmap, uint32_t view, int32_t* x, int32_t* y);

/*
 * Gives the place in the storage of a bitmap of a pixel that is seen in a view. This is the way back from
 * Z_PointFromBitmap, with two exceptions: in views 5 and 7 the picture is taken to have the width and height of
 * a plain view, and from view 1 to 8 only the flip is done.
 *
 * Arguments and results as for Z_PointFromBitmap.
 */
Z_API ReturnCode Z_CALL Z_PointToBitmap(BitmapHandle* bitmap, uint32_t view, int32_t* x, int32_t* y);

/*
 * As Z_PointFromBitmap, for a rectangle whose right and bottom do not belong to it.
 *
 * rectangle    in, out
 */
Z_API ReturnCode Z_CALL Z_RectFromBitmap(BitmapHandle* bitmap, uint32_t view, RECT* rectangle);

/*
 * As Z_PointToBitmap, for a rectangle whose right and bottom do not belong to it.
 *
 * rectangle    in, out
 */
Z_API ReturnCode Z_CALL Z_RectToBitmap(BitmapHandle* bitmap, uint32_t view, RECT* rectangle);

/*
 * Brings a rectangle from one view perspective into another.
 *
 * from, to         in: VIEW_...; for a value that is none the rectangle stays as it is
 * width, height    in, pixels: of the picture as rows and columns in the view from
 * rectangle        in, out
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a null rectangle.
 */
Z_API ReturnCode Z_CALL Z_ChangeRectViewPerspective(uint32_t from, uint32_t width, uint32_t height,
                                                    uint32_t to, RECT* rectangle);

/*
 * Turns the picture upside down by its view perspective alone; no pixel moves.
 *
 * bitmap    in, changed: with or without storage. A field that holds no view is left alone.
 *
 * Returns Z_SUCCESS; Z_ERROR_DOCUMENT_LOCKED while the document capability is locked, with nothing changed;
 * Z_ERROR_BITMAP for null.
 */
Z_API ReturnCode Z_CALL Z_FlipBitmapViewPerspective(BitmapHandle* bitmap);

/*
 * As Z_FlipBitmapViewPerspective, whatever is locked.
 */
Z_API ReturnCode Z_CALL Z_IntFlipBitmapViewPerspective(BitmapHandle* bitmap);

/*
 * Exchanges left and right of the picture by its view perspective alone; no pixel moves.
 *
 * Arguments and results as for Z_FlipBitmapViewPerspective.
 */
Z_API ReturnCode Z_CALL Z_ReverseBitmapViewPerspective(BitmapHandle* bitmap);

/*
 * As Z_ReverseBitmapViewPerspective, whatever is locked.
 */
Z_API ReturnCode Z_CALL Z_IntReverseBitmapViewPerspective(BitmapHandle* bitmap);

/*
 * Turns the picture by its view perspective alone; no pixel moves.
 *
 * bitmap     in, changed: with or without storage. A field that holds no view becomes -13, unless the turn is
 *            none.
 * degrees    in: any multiple of 90, positive for clockwise
 *
 * Returns Z_SUCCESS; Z_ERROR_DOCUMENT_LOCKED while the document capability is locked; Z_ERROR_BITMAP for null;
 * Z_ERROR_ARGUMENT for other angles. On failure nothing changes.
 */
Z_API ReturnCode Z_CALL Z_RotateBitmapViewPerspective(BitmapHandle* bitmap, int32_t degrees);

/*
 * As Z_RotateBitmapViewPerspective, whatever is locked.
 */
Z_API ReturnCode Z_CALL Z_IntRotateBitmapViewPerspective(BitmapHandle* bitmap, int32_t degrees);

Z_END_DECLS

#endif
