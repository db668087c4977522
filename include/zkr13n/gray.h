/*
 * The gray window: which bits of a gray pixel are its value, and the record's fields that carry it.
 *
 * A gray bitmap of 12 or 16 bits per pixel need not use all of its bits. LowBit and HighBit of the record
 * name those that hold the value; a level table, LevelLUT, can give each value a colour. Depths, bits and
 * shifts are counted in bits throughout.
 */
#ifndef ZKR13N_GRAY_H
#define ZKR13N_GRAY_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Finds the bits of a pixel that are its value: value = (pixel >> shift) & mask. A window wider than the
 * maximum keeps its upper bits.
 *
 * depth             in: bits of a pixel, 1 to 64
 * maximumValueBits  in: the most bits that the value may have
 * lowBit            in: lowest bit of the window; below 0 for bit 0
 * highBit           in: highest bit of the window; below 0 for depth - 1
 * valueBits         out: bits of the value; may be null
 * mask              out: 2^valueBits - 1; all 32 bits from 32 value bits on, 0 where there are none
 * shift             out: place of the value's lowest bit
 *
 * Nothing is checked: a low bit above the high bit gives a count of 0 or below and a mask of 0.
 */
Z_API void Z_CALL Z_GetGrayParams(int32_t depth, int32_t maximumValueBits, int32_t lowBit, int32_t highBit,
                                  int32_t* valueBits, uint32_t* mask, int32_t* shift);

/*
 * Sets a bitmap's window to the whole pixel and releases its level table.
 *
 * bitmap  in, out: LowBit and LevelLowBit become 0, HighBit and LevelHighBit BitsPerPixel - 1, MinVal 0 and
 *         MaxVal 2^BitsPerPixel - 1, at most 0x7FFFFFFF. LevelLUT is freed and, with its length, becomes 0.
 *         Z_FLAG_LEVEL_LUT_ACTIVE stays as it is. Null is ignored.
 */
Z_API void Z_CALL Z_InitGrayParams(BitmapHandle* bitmap);

/*
 * Copies the window, the value range and the level table from one bitmap to another.
 *
 * target  in, out: takes LowBit, HighBit, LevelLowBit, LevelHighBit, MinVal, MaxVal, the flag
 *         Z_FLAG_LEVEL_LUT_ACTIVE and a copy of the table of its own; null and 0 where the source has no
 *         table or an empty one. A table that the target held before is not freed.
 * source  in
 *
 * 1 on success. Z_ERROR_BITMAP: a null pointer. Z_ERROR_MEMORY: the table could not be copied. On failure the
 * target is unchanged.
 */
Z_API ReturnCode Z_CALL Z_CopyGrayParams(BitmapHandle* target, const BitmapHandle* source);

/*
 * Releases a bitmap's level table and paint table.
 *
 * bitmap  in, out: LevelLUT and PaintLUT are freed and become null; LevelLUTLength stays. Null is ignored.
 */
Z_API void Z_CALL Z_FreeGrayParams(BitmapHandle* bitmap);

/*
 * Counts the distinct colours of a bitmap inside its region, or of the whole bitmap without one, and ends as
 * soon as the answer is known.
 *
 * bitmap   in: an allocated bitmap; its row cache is changed
 * colors   in: with a palette the room in it, in entries. out: the count. With a palette it is at most the
 *          room + 1, which tells that there are more colours than room.
 * palette  out, may be null: the colours in the order in which they are found, row by row, as far as there is
 *          room, with a reserved byte of 0
 *
 * Colours are told apart by red, green and blue alone: of indices by the entries of the palette (an index
 * without an entry is black); at 16 bits by the 15 bits of colour, which come into the palette widened to
 * 8 bits; at 48 and 64 bits by the high bytes. Gray pixels of 12 and 16 bits are told apart by their value in
 * the window from LowBit to HighBit, of which with a palette the upper 8 bits count and come into it as red,
 * green and blue; with an active level table by the table's entry (a value behind its end is black).
 *
 * The status callback of the thread gets its percentage by rows, and 100 once when the count ends early.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_ARGUMENT for null
 * colors; Z_ERROR_MEMORY when working memory is missing, at most 2 MB and a row; the failures of reading a
 * row and of the region; any other result of the status callback, which stops the count. On failure colors
 * stays as it was, and entries of the palette may be written.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapColorCountExt(BitmapHandle* bitmap, uint32_t* colors, RGBQUAD* palette);

Z_END_DECLS

#endif
