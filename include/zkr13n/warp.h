/*
 * Warp: a rectangle of one bitmap drawn into a quadrilateral of another, as a picture is placed in a scene.
 */
#ifndef ZKR13N_WARP_H
#define ZKR13N_WARP_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * The corners of a quadrilateral, in pixels of the destination as it is seen with its first row on top (view 0), walked once around.
 */
typedef struct WarpPoints {
    POINT TopLeft;     /* where the source's corners go, as the source is seen */
    POINT TopRight;    /* likewise */
    POINT BottomRight; /* likewise */
    POINT BottomLeft;  /* likewise */
} WarpPoints;

/* Bits of the flags argument. */
enum {
    WARP_BILINEAR = 0x001, /* each pixel blends the four samples around it; else it is the nearest one */
    WARP_REQUIRED = 0x100  /* must be there */
};

/*
 * Draws a rectangle of a bitmap into a convex quadrilateral of another of the same depth, by the projective
 * mapping that takes the rectangle's corners to the points (Heckbert 1989). Pixels outside stay as they are.
 *
 * destination    in, changed: an allocated bitmap. It may be the source: rows above are then seen as drawn.
 *                Its region plays no part.
 * points         in: inside the destination, strictly convex in either winding. The other winding mirrors.
 * source         in: an allocated bitmap of the destination's depth. Up to 8 bits the palettes have to match in
 *                the entries 0, 2, 4 and so on of an even number of colours; at 16 bits both are gray or
 *                neither.
 * left, top      in, pixels, from 0: corner of the source rectangle as the source is seen (view 0)
 * width, height  in, pixels, from 1: the rectangle lies inside the source
 * flags          in: WARP_REQUIRED, with or without WARP_BILINEAR. Blending is not done at 2 to 7 bits, for
 *                palettes that are no rising gray ramp, and for gray words with a level table. Samples outside
 *                the rectangle count as the pixel that is drawn over, so that edges blend. Blended values
 *                are truncated; bit 15 of blended 16-bit colour is 0. The bits 0x002 to 0x080 and
 *                0x200 mean nothing.
 *
 * Returns Z_SUCCESS; Z_ERROR_FEATURE without WARP_REQUIRED; Z_ERROR_BITMAP for a bitmap that is null or not
 * allocated; Z_ERROR_ARGUMENT for bits of flags from 0x400 up, null points, a quadrilateral that is not strictly
 * convex, palettes or orders that do not match, a view that does not exist, a rectangle that leaves the source
 * and a point outside the destination; Z_ERROR_BITS_PER_PIXEL for different depths; Z_ERROR_MEMORY; a failure
 * of a row's transfer; the result of the status callback when that is not 1. Rows drawn before a stop or
 * a failed transfer stay drawn; otherwise nothing is changed.
 */
Z_API ReturnCode Z_CALL Z_CombineBitmapWarp(BitmapHandle* destination, const WarpPoints* points,
                                            BitmapHandle* source, int32_t left, int32_t top, int32_t width,
                                            int32_t height, uint32_t flags);

Z_END_DECLS

#endif
