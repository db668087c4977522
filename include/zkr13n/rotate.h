/*
 * Rotation: of bitmaps by any angle and of buffers by quarter and half turns, and the table of sines that it goes
 * by. Angles are in hundredths of a degree and positive ones turn clockwise, as the picture is seen.
 */
#ifndef ZKR13N_ROTATE_H
#define ZKR13N_ROTATE_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* Bits of the flags argument of Z_RotateBitmap. Neither ROTATE_LINEAR nor ROTATE_CUBIC means the nearest pixel. */
enum {
    ROTATE_RESIZE =
        1, /* the result holds the whole picture; else it keeps the size, and corners are cut off */
    ROTATE_LINEAR = 2, /* between the nearest pixel and its neighbours */
    ROTATE_CUBIC = 4   /* by splines through 4 x 4 pixels; goes before ROTATE_LINEAR */
};

/*
 * Rotates a bitmap about its centre.
 *
 * bitmap    in, changed: an allocated bitmap
 * angle     in, hundredths of a degree: any; positive for clockwise
 * flags     in: ROTATE_...
 * fill      in: colour value of what lies outside the picture, also for neighbours of pixels at its edges
 *
 * Angles of 90 and 270 degrees are exact turns where the bitmap is square or the result may grow, 180 degrees always,
 * in place, and 0 changes nothing. All other angles go through the picture in whole numbers with 14 fractional bits.
 * The new pixel is the nearest one; or it moves from there towards one neighbour in its row and one in its column
 * (a bilinear interpolation without the diagonal neighbour); or it comes from natural splines (Isaac Schoenberg,
 * 1946) through four rows of four samples. Depths below 8 bits, 8 bits other than gray from black to white, and gray
 * with a level table always take the nearest pixel. At 16 bits in colour the top bit of an interpolated pixel is 0,
 * by splines that of any of the four pixels around. Flags aside, the view perspective decides which way storage turns.
 *
 * The result has the storage class, palette, tables and view of the bitmap; runs and compressed strips are made plain
 * first, unless the turn is an exact one. Its resolution mixes those of both axes. The status callback hears 0 to 100
 * by rows, and the region follows.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_MEMORY; Z_ERROR_DIMENSIONS
 * for a result larger than a bitmap can be; the failures of Z_AllocateBitmap, of Z_ChangeBitmapCompression and of
 * reading and writing rows; what the callback returned to stop the work; what the region code returned. On failure
 * the bitmap is as it was, but runs or strips may have become plain, and a half turn that a callback stops, or whose
 * region fails, keeps the rows that are done.
 */
Z_API ReturnCode Z_CALL Z_RotateBitmap(BitmapHandle* bitmap, int32_t angle, uint32_t flags, uint32_t fill);

/*
 * As Z_RotateBitmap, with reports of percentages from start to end; an end below the start counts as the start.
 */
Z_API ReturnCode Z_CALL Z_IntRotateBitmap(BitmapHandle* bitmap, int32_t angle, uint32_t flags, uint32_t fill,
                                          uint32_t start, uint32_t end);

/*
 * Turns a bitmap by 90 degrees. Runs are turned as runs, and strips a part of the picture at a time.
 *
 * bitmap       in, changed: an allocated bitmap
 * direction    in: 0 for anticlockwise as the picture is seen, any other value for clockwise
 * start, end   in, percent: of the reports, one a row; an end below the start counts as the start
 *
 * Returns what Z_RotateBitmap returns; on failure the bitmap is as it was.
 */
Z_API ReturnCode Z_CALL Z_RotateBitmap90(BitmapHandle* bitmap, int32_t direction, uint32_t start,
                                         uint32_t end);

/*
 * Turns the pixels of a buffer by 90 degrees. Rows of both buffers are padded to four bytes.
 *
 * source           in: rows of width pixels
 * target           out: width rows of height pixels, apart from the source. Bits behind the last pixel of a row may
 *                  change, no byte behind them does.
 * direction        in: 0 for anticlockwise with the first row at the top, any other value for clockwise
 * width, height    in, pixels: of the source
 * bits             in: 1 to 8, 12, 16, 24, 32, 48 or 64
 *
 * Returns Z_SUCCESS, also for a size of 0 and for other depths, with nothing written; Z_ERROR_ARGUMENT for null
 * pointers.
 */
Z_API ReturnCode Z_CALL Z_RotateBuffer90(const void* source, void* target, int32_t direction, uint32_t width,
                                         uint32_t height, uint32_t bits);

/*
 * Turns the pixels of a buffer by 180 degrees; arguments and results as for Z_RotateBuffer90, but the target has rows
 * of width pixels.
 */
Z_API ReturnCode Z_CALL Z_RotateBuffer180(const void* source, void* target, uint32_t width, uint32_t height,
                                          uint32_t bits);

/*
 * The sine and the cosine of an angle.
 *
 * angle    in, hundredths of a degree: any
 *
 * Returns the sine or cosine times 16384, rounded to the nearest whole number.
 */
Z_API int32_t Z_CALL Z_SinValue(int32_t angle);
Z_API int32_t Z_CALL Z_CosValue(int32_t angle);

Z_END_DECLS

#endif
