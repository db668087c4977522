/*
 * Colour values: the 32-bit form in which single colours cross the interface.
 *
 * Plain colours are 0x00BBGGRR, red in the lowest byte. The top byte makes other things of the value:
 *
 *   1         on bitmaps of 1 to 8 bits per pixel the low bits are a palette index; on gray bitmaps of 12
 *             bits the low 12 bits, of 16 bits the low 16 bits are a gray value
 *   2         on gray bitmaps of 12 bits the low 16 bits are a gray value of 16 bits
 *   4 in it   the low 16 bits are a gray value of 16 bits; where the bitmap is not gray, or has an active
 *             level table, it stands for the plain colour whose channels are bits 8 to 15 of the value.
 *             Gray bitmaps of 12 bits without such a table take the value for a plain colour.
 */
#ifndef ZKR13N_COLOUR_VALUES_H
#define ZKR13N_COLOUR_VALUES_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Carries a colour value from one bitmap's terms into another's.
 *
 * target  in: the bitmap that the result is for; with null the colour comes back unchanged
 * source  in: the bitmap whose palette an index refers to; may be null
 * colour  in: any colour value
 *
 * The result by the form of the colour, the first that applies:
 *
 *   bit 26     For a gray target, and for 12 bits in any order, without an active level table: the colour as
 *              it is. Else it stands for a plain colour, see above. With an active table the result is the
 *              index of the table's entry that is nearest to it (of a table of 65536 entries the last is
 *              left out); for other targets the plain colour is treated as one below.
 *   top byte 1 The colour of the source's palette entry. For a target of 1 to 8 bits: the same index, where
 *              the target's entry has that colour, else the nearest one. Without a source, from one of more
 *              than 8 bits, and for an index that its palette lacks, the colour is black.
 *   others     For a target of 1 to 8 bits the nearest index; else the colour as it is.
 *
 * Indices come in the form 0x01000000 + index. The nearest one is what Z_GetNearestPaletteIndex tells.
 */
Z_API uint32_t Z_CALL Z_TranslateBitmapColor(const BitmapHandle* target, const BitmapHandle* source,
                                             uint32_t colour);

Z_END_DECLS

#endif
