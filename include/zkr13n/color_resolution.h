/*
 * Colour resolution: bitmaps of another depth and colour table, with a palette that is given, fixed, or made
 * for the picture.
 */
#ifndef ZKR13N_COLOR_RESOLUTION_H
#define ZKR13N_COLOR_RESOLUTION_H

#include "lists.h"

Z_BEGIN_DECLS

/*
 * Bits of the flags argument. The low ten bits, as one number, choose the palette of a target of 1 to 8 bits
 * per pixel, after the change that COLORRES_HANDLE_AS_USER makes:
 *
 *   0, 2, 8, A, and these with 200 (hexadecimal)    made for the picture
 *   1, 41                                           the fixed palette; 41 at 8 bits the cube of colours
 *   10, 30                                          the caller's as it is
 *   40                                              the cube of colours, at 8 bits alone
 *
 * COLORRES_ORDER_BGR and COLORRES_ORDER_GRAY play no part there. For a target above 8 bits they are all that
 * counts: neither gives the order RGB.
 *
 * Bits 16 to 23 hold the dithering method of this call (DitherNone to DitherClustered); that of the bitmap is
 * not looked at.
 */
enum {
    COLORRES_FIXED_PALETTE = 0x001,     /* the fixed palette of the target's depth */
    COLORRES_OPTIMIZED_PALETTE = 0x002, /* made for the picture, which is what 0 means too */
    COLORRES_ORDER_BGR = 0x004,         /* above 8 bits: blue, green, red */
    COLORRES_SYSTEM_COLORS = 0x008,     /* keep the display's static colours at both ends of the palette */
    COLORRES_USER_PALETTE = 0x010,      /* the caller's palette as it is */
    COLORRES_USE_MATCH_TABLE = 0x020,   /* with the caller's palette: the thread's match table */
    COLORRES_CUBE_PALETTE = 0x040,      /* six levels of red, green and blue each: 36 r + 6 g + b */
    COLORRES_ORDER_GRAY = 0x080,        /* above 8 bits: gray, of 12 or 16 bits */
    COLORRES_HANDLE_AS_USER = 0x100,    /* with a palette object: stands for COLORRES_USER_PALETTE, and clears
                                           the two orders */
    COLORRES_NO_MATCH_TABLE = 0x200,    /* search for the nearest colour instead of mapping each colour of the
                                           picture to the entry that was made for it */
    COLORRES_FEW_PEELS = 0x400          /* let colours that dominate take all entries but one, see below */
};

/*
 * Gets the rows of a target as they are made, from the first to the last.
 *
 * target      in: the target's record, which without a target has form and palette but no pixels
 * row         in: BytesPerLine bytes
 * lines       in: 1
 * userData    in
 *
 * Returns Z_SUCCESS to go on. Any other value ends the work and is its result.
 */
typedef ReturnCode(Z_CALL* ColorResCallback)(BitmapHandle* target, void* row, int32_t lines,
                                             intptr_t userData);

/*
 * Makes of one bitmap another of any depth, order and palette. Size, view, resolution, region and what makes
 * it a frame of an animation go along; storage is on disk where the source's is, else conventional.
 *
 * source           in: an allocated bitmap. It stays as it is, unless it is the target too.
 * target           out, may be null: whatever the record held is overwritten without being freed. The source
 *                  itself, which is replaced once all is done. Null makes no bitmap, only rows for the
 *                  callback.
 * bitsPerPixel     in: 1 to 8, 12, 16, 24, 32, 48 or 64; 12 goes with COLORRES_ORDER_GRAY alone, and that
 *                  flag with 12 and 16 alone
 * flags            in: COLORRES_...
 * palette          in, changed, may be null: colors entries. With COLORRES_USER_PALETTE the target's; for a
 *                  palette made for the picture the entries to keep. There an entry is free when its fourth
 *                  byte has bit 1 set and bit 0 clear, and gets what was found.
 * paletteHandle    in, may be null: a palette object in place of palette. Its entries with the flags 1 and 4
 *                  are kept like those without; those with 2 stand for a static colour of the display, by
 *                  their place in its palette, and are free where it has none there. Entries that it does
 *                  not have are free.
 * colors           in: entries of the target's palette, up to 8 bits; 0 and more than there can be mean
 *                  2^bitsPerPixel. Fixed palettes are always whole.
 * callback         in, may be null
 * userData         in, for the callback
 *
 * Up to 8 bits pixels are dithered (Z_DitherLine), except where the palette was made for the picture, has all
 * of its colours, was free in one piece, and is then shorter by what was not needed: those pixels, and all
 * pixels above 8 bits, are converted (Z_ConvertBufferExt), gray ones through window and active level table.
 * The palette is cut at its end, whatever stands there: entries to be kept belong in front of the free ones.
 *
 * Finding a palette. Where the source has as many palette entries as are free, or fewer, it is the source's;
 * where it has as many distinct colours or fewer, these, sorted by red, green and blue. Otherwise the
 * colours, cut to five bits a channel, are counted (all counts are halved when one would pass 32768). First
 * the most frequent of them becomes an entry as long as it is met more than twice as often as the next and 63
 * entries (with COLORRES_FEW_PEELS one) are left. Then the others are split, until there are enough parts, at
 * the mean of the channel of the largest variance in the part of the largest variance, after the
 * variance-based method of Wan, Wong and Prusinkiewicz (1988); the means are the entries, sorted. A colour of
 * the picture maps to the entry of its part. Entries for which no colour was left are (2, 2, 2, 2) and are
 * never matched.
 *
 * The thread's status callback gets the percentage of rows.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a source that is null or not allocated, a palette and a palette
 * object together, another depth, another choice of palette, COLORRES_USER_PALETTE without either, a palette
 * object without entries, or a dithering method that there is not; Z_ERROR_EXTENDED_GRAY_LOCKED for a gray
 * source or target while that capability is locked; Z_ERROR_MEMORY; the failures of Z_AllocateBitmap, of
 * rows, and of copying the region; any other result of the callback and of the status callback, which end the
 * work. On failure the source is as it was, a target of its own has no storage, and entries of palette may be
 * written.
 *
 * Beside source and target, finding a palette takes at most 300 KB, before which counting the colours takes
 * 2 MB for a while; the pixels take two rows (up to eight while errors are diffused and there is neither
 * callback), and what dithering or conversion needs for itself.
 */
Z_API ReturnCode Z_CALL Z_ColorResBitmap(BitmapHandle* source, BitmapHandle* target, int32_t bitsPerPixel,
                                         uint32_t flags, RGBQUAD* palette, HPALETTE paletteHandle,
                                         uint32_t colors, ColorResCallback callback, intptr_t userData);

/*
 * Changes depth and colours of all items of a list, up to 8 bits to one palette for all.
 *
 * list             in, changed: items of any depths
 * bitsPerPixel     in: as for Z_ColorResBitmap
 * flags            in: as for Z_ColorResBitmap. Where the palette is to be made (0, 2, 8 and A) it is made
 *                  for all items together; COLORRES_FEW_PEELS plays no part there. With
 *                  COLORRES_NO_MATCH_TABLE each item gets one of its own.
 * palette          in, changed, may be null: colors entries, as for Z_ColorResBitmap. The palette that is
 *                  made for all is written here.
 * paletteHandle    in, may be null
 * colors           in: as for Z_ColorResBitmap
 *
 * Items with the same palette share what has been looked up. No dithering is spared: all items go through it.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a bad list, a palette and a palette object together, or another
 * depth; Z_ERROR_BITMAP for an empty list whose palette is to be made, and for an item without storage there;
 * Z_ERROR_MEMORY; the failures of Z_ColorResBitmap for an item, whose predecessors are then changed already.
 * The item that fails stays as it was.
 */
Z_API ReturnCode Z_CALL Z_ColorResBitmapList(BitmapList list, int32_t bitsPerPixel, uint32_t flags,
                                             RGBQUAD* palette, HPALETTE paletteHandle, uint32_t colors);

/*
 * Finds one palette for all items of a list, as Z_ColorResBitmap finds that of a bitmap. Where there are
 * several items, of at most 8 bits, and their palettes have few enough colours together, it is made of those
 * colours, sorted; whether pixels use them is not looked at.
 *
 * list          in: items of any depths; their row caches are changed
 * palette       out: colors entries
 * colors        in: the entries to find, 1 to 256; out: how many there are. Fewer only where the items have
 *               no more colours.
 * matchTable    out, may be null: a match table that leads each colour of the pictures to its entry and has
 *               no entry for others; null where nothing was quantised. Release it with Z_FreeUserMatchTable.
 * quantised     out: 1 when the items have more colours than the palette, else 0
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a bad list, a null palette, colors or quantised, and a number of
 * colours outside 1 to 256; Z_ERROR_BITMAP for an empty list or an item without storage; Z_ERROR_MEMORY; the
 * failures of reading rows. On failure there is no match table, and entries of the palette may be written.
 */
Z_API ReturnCode Z_CALL Z_CreateBitmapListOptPal(BitmapList list, RGBQUAD* palette, uint32_t* colors,
                                                 uint32_t** matchTable, int32_t* quantised);

Z_END_DECLS

#endif
