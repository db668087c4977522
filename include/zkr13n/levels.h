/*
 * The level table of gray bitmaps of 12 and 16 bits: which bits of a pixel are its value, and the colour that
 * each value is shown in.
 */
#ifndef ZKR13N_LEVELS_H
#define ZKR13N_LEVELS_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* Values of the mode argument of Z_WindowLevel. */
enum {
    Z_LEVEL_KEEP = 0, /* the table is kept for later */
    Z_LEVEL_APPLY = 1 /* the window and the table take effect */
};

/*
 * Gives a bitmap a level table and the window that the table is made for. Pixels are not touched.
 *
 * bitmap      in, changed: LevelLowBit and LevelHighBit become the window. With Z_LEVEL_APPLY so do LowBit
 *             and HighBit, and where that changes them MinVal becomes 0 and MaxVal the largest value of the
 *             window (at most 0x7FFFFFFF); Z_FLAG_LEVEL_LUT_ACTIVE is set. With Z_LEVEL_KEEP it is cleared.
 * lowBit      in, bits: lowest bit of the window; below 0 for bit 0
 * highBit     in, bits: highest bit of the window; below 0 for BitsPerPixel - 1
 * levelTable  in, may be null: the colours by value, copied into a table of the bitmap's own, unless it is
 *             that table. The bitmap's old table is freed.
 * length      in: entries of the table; 0 leaves the bitmap without a table
 * mode        in: Z_LEVEL_...
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for null; Z_ERROR_EXTENDED_GRAY_LOCKED while extended gray is locked;
 * Z_ERROR_ARGUMENT for a low bit above the high bit, a length without a table, and another mode, with the
 * bitmap as it was; Z_ERROR_MEMORY when the table cannot be copied: the bitmap then has no table, the window
 * is set and the flag as it was.
 */
Z_API ReturnCode Z_CALL Z_WindowLevel(BitmapHandle* bitmap, int32_t lowBit, int32_t highBit,
                                      RGBQUAD* levelTable, uint32_t length, int32_t mode);

/*
 * Fills a level table with a ramp between two values and solid colours on both sides of it.
 *
 * table         out: what is not written stays as it was, see below
 * length        in: entries of the table; nothing behind it is written
 * firstColor    in: plain colour value, 0x00BBGGRR
 * secondColor   in: likewise
 * low, high     in, gray values: where the ramp begins and ends; cut to minimum and maximum
 * lowBit        in, bits: lowest bit of the window. The ramp reaches from entry a = low >> lowBit to entry
 *               b = high >> lowBit.
 * highBit       in, bits: highest bit of the window, not below lowBit
 * minimum       in, gray value: the smallest
 * maximum       in, gray value: the largest
 * inside        in: not 0 gives black, a ramp from the first colour to the second over a to b, and white; 0
 *               gives the first colour, a ramp from black to white over a + 1 to b - 1 where there is room
 *               for one, and the second colour
 *
 * With a solid colour the entry before its end is the last one written: entries 0 to a - 2 are black, or 0 to
 * a - 1 the first colour, and the last entry of the table stays as it was unless the ramp reaches it. Steps
 * of the ramp are cut towards its first colour. The reserved byte of the ramp's first entry stays, all others
 * become 0.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null table and for lowBit, minimum or low above its partner;
 * Z_ERROR_EXTENDED_GRAY_LOCKED while extended gray is locked. On failure the table is unchanged.
 */
Z_API ReturnCode Z_CALL Z_WindowLevelFillLUT(RGBQUAD* table, uint32_t length, uint32_t firstColor,
                                             uint32_t secondColor, int32_t low, int32_t high, int32_t lowBit,
                                             int32_t highBit, int32_t minimum, int32_t maximum,
                                             int32_t inside);

Z_END_DECLS

#endif
