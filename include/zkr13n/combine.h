/*
 * Combining a rectangle of one bitmap with a rectangle of another by boolean and arithmetic operators, and
 * underlaying a bitmap with a texture.
 */
#ifndef ZKR13N_COMBINE_H
#define ZKR13N_COMBINE_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Flags of Z_CombineBitmap: one of each of the four groups, added up. M is the largest value of a sample. All
 * divisions truncate.
 */
enum {
    /* What becomes of the source before. */
    COMBINE_SRC_PLAIN = 0x0,
    COMBINE_SRC_NOT = 0x1,  /* inverted */
    COMBINE_SRC_ZERO = 0x2, /* all bits 0 */
    COMBINE_SRC_ONES = 0x3, /* all bits 1 */

    /* What becomes of the destination before. */
    COMBINE_DST_PLAIN = 0x00,
    COMBINE_DST_NOT = 0x10,
    COMBINE_DST_ZERO = 0x20,
    COMBINE_DST_ONES = 0x30,

    COMBINE_OP_AND = 0x000, /* bit by bit */
    COMBINE_OP_OR = 0x100,
    COMBINE_OP_XOR = 0x200,
    COMBINE_OP_ADD = 0x300,     /* at most M */
    COMBINE_OP_SUB_SRC = 0x400, /* destination - source, at least 0 */
    COMBINE_OP_SUB_DST = 0x500, /* source - destination, at least 0 */
    COMBINE_OP_MUL = 0x600,     /* destination * source / M */
    COMBINE_OP_DIV_SRC = 0x700, /* destination * M / source, at most M; M where source is 0 */
    COMBINE_OP_DIV_DST = 0x800, /* source * M / destination, at most M; M where destination is 0 */
    COMBINE_OP_AVG = 0x900,     /* (destination + source) >> 1 */
    COMBINE_OP_MIN = 0xA00,
    COMBINE_OP_MAX = 0xB00,

    /* What becomes of the result. */
    COMBINE_RES_PLAIN = 0x0000,
    COMBINE_RES_NOT = 0x1000,
    COMBINE_RES_ZERO = 0x2000,
    COMBINE_RES_ONES = 0x3000
};

/* Flags of Z_UnderlayBitmap. */
enum {
    UNDERLAY_TILE = 0,   /* the texture repeats from the first row and column on */
    UNDERLAY_STRETCH = 1 /* it is brought to the bitmap's size */
};

/*
 * Combines a rectangle of a bitmap with one of another bitmap of the same depth and order, as raster operations
 * (Ingalls 1978) do, with arithmetic besides.
 *
 * destination    in, changed: an allocated bitmap. Its region, and the source's where the source is read,
 *                restrict what is written; it keeps the region that it has. Alpha of 32 and 64 bits and bit 15
 *                of 16-bit colour stay as they are.
 * left, top      in, pixels: corner of the rectangle as the destination is seen with its first row on top
 *                (view 0). It may lie anywhere: what falls outside of either bitmap is left out.
 * width, height  in, pixels: nothing is combined when one of them is 0 or less
 * source         in: an allocated bitmap; its row cache is changed. Where the flags make the result independent of it,
 *                it is not looked at and may be null. It may be the destination: rows are taken from the last to
 *                the first where the source lies above, so that a rectangle can be moved downwards and upwards.
 * sourceLeft     in, pixels: corner of the source's rectangle, as the source is seen in view 0
 * sourceTop
 * flags          in: COMBINE_...
 *
 * Boolean operators work on bits, the others on samples: indices up to 8 bits, channels of 5, 8 or 16 bits
 * with alpha as one of them, and gray of 12 and 16 bits by its window. At 1 bit all operators are boolean: ADD, AVG
 * and MAX are or, MUL and MIN are and, SUB_SRC and SUB_DST keep what the other does not have, DIV_SRC is the
 * destination and DIV_DST the source. So they are, at any depth, where a group of the flags makes the result that of
 * one operand or of none: ADD with COMBINE_SRC_ZERO or with COMBINE_RES_ONES. A division with a constant
 * operand that leaves both operands in play divides by, or of, the pixels themselves.
 *
 * Gray: a sample of the source is read through its window and a result is written through that of
 * the destination, whose mask is M. Bits outside that window become 0. What is inverted is the sample as a word
 * of 16 bits, which may then be more than M.
 *
 * At 2 bits, when the first column that is written is the third pixel of its byte, the one behind it stays as
 * it was.
 *
 * The status callback is told 0 to 100, a step after each row; when there is nothing to be done, 0 and 100.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a destination that is null or not allocated, for other flags, and
 * for a source that is read and null, not allocated, or of another depth or order; Z_ERROR_MEMORY also when the
 * source cannot be brought into the destination's view; a failure of a region or a row's transfer; the
 * result of the status callback when that is not 1. Rows combined before a stop or a failed transfer stay so;
 * otherwise nothing is changed.
 */
Z_API ReturnCode Z_CALL Z_CombineBitmap(BitmapHandle* destination, int32_t left, int32_t top, int32_t width,
                                        int32_t height, BitmapHandle* source, int32_t sourceLeft,
                                        int32_t sourceTop, uint32_t flags);

/*
 * Lightens and darkens a bitmap by the gray of a texture, as paper and canvas do: each colour becomes
 * colour + gray - 128, kept within 0 and 255.
 *
 * bitmap    in, changed: an allocated bitmap of any depth. Up to 8 bits the result is dithered to its palette
 *           by the method of Floyd and Steinberg (1976); other depths go through 24 bits and back, gray by its
 *           window and an active level table. A region restricts what is written. Alpha stays.
 * underlay  in: an allocated bitmap of any depth, which is grayed, in a copy; it is brought into the bitmap's view
 * flags     in: UNDERLAY_TILE or UNDERLAY_STRETCH
 *
 * Nothing is reported to the callbacks.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_ARGUMENT for other flags;
 * Z_ERROR_MEMORY; the failures of Z_CopyBitmap, Z_GrayScaleBitmap, Z_IntChangeBitmapViewPerspective, Z_SizeBitmap
 * and of conversion, with nothing changed; a failure of a row's transfer, after which the rows before it are
 * done.
 */
Z_API ReturnCode Z_CALL Z_UnderlayBitmap(BitmapHandle* bitmap, BitmapHandle* underlay, uint32_t flags);

Z_END_DECLS

#endif
