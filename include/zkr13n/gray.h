/*
 * Gray: whether palettes and bitmaps are gray, bitmaps brought to gray, and the gray window: which bits of a
 * gray pixel are its value, and the record's fields that carry it.
 *
 * A gray bitmap of 12 or 16 bits per pixel need not use all of its bits. LowBit and HighBit of the record
 * name those that hold the value; a level table, LevelLUT, can give each value a colour. Depths, bits and
 * shifts are counted in bits throughout.
 */
#ifndef ZKR13N_GRAY_H
#define ZKR13N_GRAY_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* What a palette or a bitmap is. */
enum {
    GRAY_NO = 0,                               /* not gray */
    GRAY_ORDEREDNORMAL = 1,                    /* gray, black first */
    GRAY_ORDEREDREVERSE = 2,                   /* gray, white first */
    GRAY_ORDEREDINVERSE = GRAY_ORDEREDREVERSE, /* the same */
    GRAY_NOTORDERED = 3                        /* gray, but not an even ramp */
};

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
 * Says whether a palette is gray, and in which order.
 *
 * palette  in: its first entry is read whatever the count; null is not gray
 * entries  in
 *
 * GRAY_NO when red, green and blue of an entry differ. Of up to one entry black is GRAY_ORDEREDNORMAL, white
 * GRAY_ORDEREDREVERSE. More must be a ramp of even steps of 255 / (entries - 1), cut to a whole number, from
 * black up or from white down, so that only 2, 4, 16 and 256 entries can be ordered. Else GRAY_NOTORDERED.
 */
Z_API int32_t Z_CALL Z_IsGrayScalePalette(const RGBQUAD* palette, uint32_t entries);

/*
 * Says whether a bitmap is gray. Its pixels are not looked at.
 *
 * bitmap  in; null is not gray
 *
 * In gray order GRAY_ORDEREDNORMAL; with an active level table only when all entries that a value can reach
 * are gray, else GRAY_NO. In another order GRAY_NO above 8 bits and without a whole palette, else what
 * Z_IsGrayScalePalette says of the palette.
 */
Z_API int32_t Z_CALL Z_IsGrayScaleBitmap(const BitmapHandle* bitmap);

/*
 * Brings a bitmap to gray.
 *
 * bitmap  in, replaced: of the same size, view perspective, resolution, playback fields and region; on disk
 *         where it was on disk, else conventional. At 8 bits it has a gray palette, at 12 and 16 bits gray
 *         order and a window of the whole pixel. A bitmap that is so already is left alone.
 * bits    in: 8, 12 or 16
 *
 * The gray of a colour is (2 red + 5 green + blue + 4) >> 3, of 8 bits up to 32 bits per pixel, of 16 bits
 * above. 8 bits become 12 as g * 16 + g / 17 and 16 as g * 257, and 16 bits lose their lower bits. A gray
 * pixel of 12 or 16 bits counts by its value in the window from LowBit to HighBit, stretched to the new
 * depth, or by the gray of its entry in an active level table (black behind the table's end). Divisions
 * truncate.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated, or whose palette is shorter
 * than ColorsUsed; Z_ERROR_BITS_PER_PIXEL above 16 bits; Z_ERROR_EXTENDED_GRAY_LOCKED above 8 bits while
 * extended gray is locked; Z_ERROR_ARGUMENT for another count of bits; Z_ERROR_MEMORY; the failures of
 * reading and writing rows; any other result of the status callback, which stops the work. On failure the
 * bitmap is as it was.
 */
Z_API ReturnCode Z_CALL Z_GrayScaleBitmap(BitmapHandle* bitmap, int32_t bits);

/*
 * Removes negative values from a bitmap of signed data, two's complement in the pixel's own width: they
 * become 0.
 *
 * bitmap  in, changed. Z_FLAG_SIGNED is cleared. Without that flag, and at 16 bits unless in gray order, the
 *         bitmap is left alone.
 *
 * At 16 bits the words of the pixels count, at 48 and 64 bits all words of a row, alpha too, at 24 and 32
 * bits all bytes of a row. Up to 8 bits the channels of the palette do, and no pixel changes. At 12 bits a
 * row is taken in steps of six bytes for two pixels: the low 12 bits of the first word become 0 when bit 11
 * is set in it, the high 12 bits of the second word when its bit 15 is set.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_MEMORY, with the
 * pixels and the palette as they were; the failures of reading and writing rows and any other result of the
 * status callback, with the rows before done and the flag cleared.
 */
Z_API ReturnCode Z_CALL Z_ClearNegativePixels(BitmapHandle* bitmap);

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
