/*
 * Palettes: the tables of colours of bitmaps of 1 to 8 bits per pixel, and the search for the nearest
 * colour.
 *
 * A palette is an array of RGBQUADs, or a palette object of the platform, and has at most 256 entries.
 * The fourth byte of an entry travels with it; in palette objects it is the entry's flags. A bitmap holds
 * its palette either as an object or, with Z_FLAG_PALETTE_IS_BLOCK, as a block of ColorsUsed entries from
 * Z_OsAlloc, and owns it. Starts and counts are counted in entries.
 *
 * A palette object that a function returns belongs to the caller, who deletes it (with DeleteObject on
 * Windows, with Z_DeleteObject elsewhere) or puts it into a bitmap's Palette field, where Z_FreeBitmap
 * releases it.
 */
#ifndef ZKR13N_PALETTES_H
#define ZKR13N_PALETTES_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * The index of the palette entry nearest to a colour.
 *
 * palette           in: entries RGBQUADs
 * entries           in: their number; more than 256 are allowed, as level tables have them
 * red, green, blue  in: 0 to 255 each; only the low byte counts
 *
 * The nearest entry is that of the least sum of the squared differences of red, green and blue. The first
 * entry at that distance is taken, but a later one takes its place when it has the class of the colour:
 * whether green is above both others, below both or neither, and whether red is below blue. An exact
 * match ends the search. Black goes to the first entry if that is black, else to the last if that is;
 * white to the last if that is white, else to the first if that is; the rest of the palette is searched
 * only then. The fourth byte plays no part.
 *
 * -1 when there are no entries, and for a null palette.
 *
 * Exhaustive nearest-neighbour search, several entries at a time.
 */
Z_API int32_t Z_CALL Z_FindPaletteIndex(const RGBQUAD* palette, int32_t entries, int32_t red, int32_t green,
                                        int32_t blue);

/*
 * The index that the platform matches to a colour in a bitmap's palette.
 *
 * bitmap  in: a bitmap with a palette in either form
 * colour  in: a plain colour value, 0x00BBGGRR
 *
 * 0 without a palette, for a null bitmap, and where memory is short.
 */
Z_API uint32_t Z_CALL Z_GetNearestPaletteIndex(const BitmapHandle* bitmap, uint32_t colour);

/*
 * Makes a palette object.
 *
 * palette  in: its entries
 * entries  in: 1 to 256
 *
 * Null for another number of entries, a null palette, and where memory is short.
 */
Z_API HPALETTE Z_CALL Z_CreatePalette(const RGBQUAD* palette, uint32_t entries);

/*
 * The number of entries of a palette object.
 *
 * palette  in: an object; null has 0 entries
 */
Z_API uint32_t Z_CALL Z_GetPaletteSize(HPALETTE palette);

/*
 * Reads entries of a palette object.
 *
 * palette      in
 * start        in: the first entry
 * count        in: how many
 * destination  out: count RGBQUADs
 *
 * The number of entries read, fewer than count where the palette ends; 0 for a null palette.
 */
Z_API uint32_t Z_CALL Z_GetPaletteEntries(HPALETTE palette, uint32_t start, uint32_t count,
                                          RGBQUAD* destination);

/*
 * Writes entries of a palette object.
 *
 * palette  in: the object to change
 * start    in: the first entry
 * count    in: how many
 * source   in: count RGBQUADs; those that would come behind the palette's end are not read
 *
 * The number of entries written, fewer than count where the palette ends; 0 for a null palette.
 */
Z_API uint32_t Z_CALL Z_SetPaletteEntries(HPALETTE palette, uint32_t start, uint32_t count,
                                          const RGBQUAD* source);

/*
 * Reads entries of a bitmap's palette.
 *
 * bitmap       in
 * start        in: the first entry. For a palette that is a block it only shortens the range: what is
 *              copied begins with the block's first entry all the same.
 * count        in: how many
 * destination  out: count RGBQUADs
 *
 * The number of entries read, fewer than count where the palette ends; 0 for a bitmap without a palette.
 */
Z_API uint32_t Z_CALL Z_GetBitmapPaletteEntries(const BitmapHandle* bitmap, uint32_t start, uint32_t count,
                                                RGBQUAD* destination);

/*
 * Gives a bitmap a palette in the form that its flags name, and sets ColorsUsed. A palette that it held
 * before is not freed.
 *
 * bitmap   in, out
 * palette  in: the entries
 * entries  in: 1 to 256
 *
 * 1 on success. Z_ERROR_BITMAP: a null bitmap. Z_ERROR_MEMORY: the palette cannot be made, also for a
 * number of entries out of range. On failure the bitmap is unchanged.
 */
Z_API ReturnCode Z_CALL Z_CreateBitmapPalette(BitmapHandle* bitmap, const RGBQUAD* palette, uint32_t entries);

/*
 * Reads a range of a bitmap's palette, all of it or with an error.
 *
 * bitmap       in: 1 to 8 bits per pixel
 * start        in: the first entry, 0 and more; for a block as in Z_GetBitmapPaletteEntries
 * count        in: how many, 1 and more
 * destination  out: count RGBQUADs
 *
 * 1 on success. Z_ERROR_BITMAP: a null bitmap. Z_ERROR_ARGUMENT: a negative start, a count below 1, more
 * than 8 bits per pixel, or fewer entries than asked for; the entries that there are may then have been
 * written.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapColors(const BitmapHandle* bitmap, int32_t start, int32_t count,
                                          RGBQUAD* destination);

/*
 * Overwrites a range of a bitmap's palette; all four bytes of each entry are taken.
 *
 * bitmap  in, out: an allocated bitmap of 1 to 8 bits per pixel; gets a new palette of the same form
 * start   in: the first entry, 0 and more
 * count   in: how many; start + count is at most ColorsUsed
 * source  in: count RGBQUADs
 *
 * 1 on success. Z_ERROR_BITMAP: a null bitmap or one without storage. Z_ERROR_ARGUMENT: a range or depth
 * as above is not kept; the palette is unchanged. Where memory is short the result is 1 and the bitmap is
 * left without a palette.
 */
Z_API ReturnCode Z_CALL Z_PutBitmapColors(BitmapHandle* bitmap, int32_t start, int32_t count,
                                          const RGBQUAD* source);

/*
 * Makes a palette object of 2^bitsPerPixel grays from black to white; entry i of n has the level i * 255
 * / (n - 1), cut to a whole number.
 *
 * bitsPerPixel  in: 1 to 8; 0 means 8
 *
 * Null for another depth and where memory is short.
 */
Z_API HPALETTE Z_CALL Z_CreateGrayPalette(int32_t bitsPerPixel);

/*
 * Gives a bitmap the gray palette of its depth, in the form that its flags name. A palette that it held
 * before is not freed.
 *
 * bitmap  in, out: 1 to 8 bits per pixel. ColorsUsed becomes 2^BitsPerPixel where the palette is a block,
 *         and stays as it is where it is an object.
 *
 * 1 on success. Z_ERROR_BITMAP: a null bitmap. Z_ERROR_BITS_PER_PIXEL: another depth. Z_ERROR_MEMORY:
 * memory is short. On failure the bitmap is unchanged.
 */
Z_API ReturnCode Z_CALL Z_CreateBitmapGrayPalette(BitmapHandle* bitmap);

/*
 * Makes a palette object of the fixed palette of a depth, which see at Z_IntGetFixedPalette.
 *
 * bitsPerPixel  in: 1 to 8; 0 means 1
 *
 * Null for another depth and where memory is short.
 */
Z_API HPALETTE Z_CALL Z_CreateFixedPalette(int32_t bitsPerPixel);

/*
 * Gives a bitmap the fixed palette of ColorsUsed entries, in the form that its flags name. A palette that
 * it held before is not freed.
 *
 * bitmap  in, out: ColorsUsed is 2, 4, 8, 16, 32, 64, 128 or 256; the depth plays no part
 *
 * 1 on success. 0: another ColorsUsed. Z_ERROR_BITMAP: a null bitmap. Z_ERROR_MEMORY: memory is short. On
 * failure the bitmap is unchanged.
 */
Z_API ReturnCode Z_CALL Z_CreateBitmapFixedPalette(BitmapHandle* bitmap);

/*
 * Copies the fixed palette of a depth.
 *
 * destination   out: 2^bitsPerPixel entries; 256 for 0 bits
 * bitsPerPixel  in: 1 to 8, see Z_IntGetFixedPalette; 0 gives a ramp of 256 grays, entry i having the
 *               level i
 *
 * 1 on success. Z_ERROR_ARGUMENT: another depth or a null destination; nothing is written.
 */
Z_API ReturnCode Z_CALL Z_GetFixedPalette(RGBQUAD* destination, int32_t bitsPerPixel);

/*
 * The fixed palette of a depth: the colours that rows are converted to when no palette is given.
 *
 * bitsPerPixel  in: 1 to 8
 *
 * 2^bitsPerPixel constant entries, or null for another depth. 1 bit is black and white; 2 bits are four
 * grays; 4 bits are the sixteen colours of classic displays. In the others the lowest bits of the index
 * are the level of blue, the next of green and the highest of red, one, two or three bits each, blue,
 * green and red having 1, 1, 1 bits at depth 3, 1, 2, 2 at 5, 2, 2, 2 at 6, 2, 3, 2 at 7 and 2, 3, 3 at
 * 8. The levels are spread evenly.
 */
Z_API const RGBQUAD* Z_CALL Z_IntGetFixedPalette(int32_t bitsPerPixel);

/*
 * Copies a palette object.
 *
 * palette  in
 *
 * The copy; null for a null palette or an empty one, for more than 256 entries, and where memory is
 * short.
 */
Z_API HPALETTE Z_CALL Z_DupPalette(HPALETTE palette);

/*
 * Gives a bitmap a copy of another's palette. A palette that it held before is not freed.
 *
 * destination  in, out: takes the copy, its form and ColorsUsed; where the source has no palette these
 *              become 0, and Z_FLAG_PALETTE_IS_BLOCK is cleared
 * source       in
 *
 * 1 on success. 0: memory is short; the destination is unchanged. Z_ERROR_BITMAP: a null pointer.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmapPalette(BitmapHandle* destination, const BitmapHandle* source);

/*
 * Makes a palette object with the colours of a bitmap's palette, whatever its form.
 *
 * bitmap  in
 *
 * Null without a palette and where memory is short.
 */
Z_API HPALETTE Z_CALL Z_DupBitmapPalette(const BitmapHandle* bitmap);

/*
 * Whether a bitmap's palette has the colours of an array. The fourth bytes are not compared.
 *
 * bitmap   in
 * palette  in: entries RGBQUADs
 * entries  in: how many are compared; where the bitmap has fewer, as many as it has
 *
 * 1 or 0. A bitmap without a palette equals an array of no entries alone; a null bitmap equals nothing.
 */
Z_API int32_t Z_CALL Z_CompareBitmapToPalette(const BitmapHandle* bitmap, const RGBQUAD* palette,
                                              uint32_t entries);

/*
 * Replaces a bitmap's palette by a copy of a palette object, as an object.
 *
 * bitmap   in, out: an allocated bitmap; ColorsUsed becomes the number of entries. The old palette is
 *          freed.
 * palette  in: 2 to 256 entries; stays the caller's
 *
 * 1 on success. Z_ERROR_BITMAP: a null bitmap or one without storage. Z_ERROR_ARGUMENT: a null palette or
 * another number of entries; the old palette stays. Where memory is short the result is 1 and the bitmap
 * is left without a palette.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapPalette(BitmapHandle* bitmap, HPALETTE palette);

/*
 * Changes the form of a bitmap's palette.
 *
 * bitmap  in, out: an allocated bitmap; ColorsUsed becomes the number of entries that there are
 * type    in: 0 for a palette object, else for a block
 *
 * 1 on success, also where there is no palette or it has that form. Z_ERROR_BITMAP: a null bitmap or one
 * without storage. Z_ERROR_MEMORY: memory is short; the bitmap is unchanged.
 */
Z_API ReturnCode Z_CALL Z_SetPaletteType(BitmapHandle* bitmap, int32_t type);

/*
 * Makes a palette object with the colours that the display shows at present.
 *
 * Null on a display that does not show its colours through a palette, and where memory is short.
 */
Z_API HPALETTE Z_CALL Z_CreateSystemPalette(void);

/*
 * Makes a table that leads from a colour to the nearest entry of a palette by its upper bits. The table
 * is not tied to a bitmap or thread, and dithering takes it in place of one of its own.
 *
 * palette  in: entries RGBQUADs
 * entries  in: their number; with none every cell holds 0
 *
 * 32768 cells; that of a colour stands at (red >> 3) << 10 | (green >> 3) << 5 | blue >> 3 and holds 1 +
 * what Z_FindPaletteIndex gives for the darkest colour of the cell. Released by Z_FreeUserMatchTable.
 * Null where memory is short, and for a null palette of 1 and more entries.
 *
 * All cells at once: blocks of 512 cells, each searched among the entries alone that can be nearest
 * somewhere in the block, after the locally sorted search of Paul S. Heckbert (1982).
 */
Z_API uint32_t* Z_CALL Z_CreateUserMatchTable(const RGBQUAD* palette, int32_t entries);

/*
 * Releases a match table.
 *
 * table  in: what Z_CreateUserMatchTable gave, or null
 *
 * 1.
 */
Z_API ReturnCode Z_CALL Z_FreeUserMatchTable(uint32_t* table);

Z_END_DECLS

#endif
