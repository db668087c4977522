/*
 * Single pixels, as colours and as they are stored. Rows and columns are those of the storage: view
 * perspective plays no part. Each call locks the bitmap and fetches its whole palette, so that a loop over
 * many pixels should use the row functions; none of the calls allocates.
 */
#ifndef ZKR13N_PIXELS_H
#define ZKR13N_PIXELS_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* What Z_GetPixelColor returns in place of a colour value. */
#define Z_NO_COLOR 0x80000000u

/*
 * Reads a pixel as a colour value. The region plays no part.
 *
 * bitmap    in: an allocated bitmap; its row cache is changed
 * row       in: 0 to Height - 1
 * column    in, pixels: 0 to Width - 1. At 1 and at 4 bits per pixel the byte of a column from 65536 on is
 *           that of the column's low 16 bits.
 *
 * The result by the bitmap:
 *
 *   1 to 8 bits          the plain colour of the palette entry; black for an index that the palette lacks
 *   12 bits; 16 gray     the value in the gray window. With an active level table the plain colour of the
 *                        table's entry, black for a value that the table lacks; else 0x04000000 + the value
 *                        stretched to 16 bits.
 *   16 bits              the plain colour, 5-bit channels widened by repeating their upper bits. The lowest
 *                        channel is blue where Order is Z_ORDER_BGR, else red; the top bit plays no part.
 *   24 and 32 bits       the first three bytes, blue first where Order is Z_ORDER_BGR, else red first
 *   48 and 64 bits       the upper bytes of the first three words, likewise
 *
 * Returns Z_NO_COLOR for a bitmap that is null or not allocated and for a row or column outside it. Bytes
 * that cannot be read count as 0.
 */
Z_API uint32_t Z_CALL Z_GetPixelColor(BitmapHandle* bitmap, int32_t row, int32_t column);

/*
 * Writes a colour into a pixel. With a region only pixels inside it can be written.
 *
 * bitmap    in, changed: an allocated bitmap
 * row       in: 0 to Height - 1
 * column    in, pixels: 0 to Width - 1, at 1 and at 4 bits per pixel as in Z_GetPixelColor
 * colour    in: a colour value. With bit 26 set it is a gray value of 16 bits; where Order is not
 *           Z_ORDER_GRAY, and with an active level table, it stands for the plain colour whose channels are
 *           bits 8 to 15 of it.
 *
 * What is written, by the bitmap:
 *
 *   1 to 8 bits          with a top byte of 1 the low bits of the colour, else the index that
 *                        Z_FindPaletteIndex tells. It searches 2 entries at 1 bit, 16 at 4, 256 at 8 and
 *                        ColorsUsed at the other depths; entries that the palette lacks are black.
 *   12 bits; 16 gray     with an active level table the index of its nearest entry (of a table of 65536
 *                        entries at 16 bits the last is left out), else the gray value, or the gray of the
 *                        colour times 257, scaled to the bits from LowBit to HighBit. It is put at LowBit;
 *                        all other bits of the pixel become 0.
 *   16 bits              the upper five bits of each channel, in the bitmap's order; the top bit becomes 0
 *   24 and 32 bits       three bytes in the bitmap's order; a fourth byte stays as it is
 *   48 and 64 bits       each channel times 257, in three words in the bitmap's order; a fourth word stays
 *
 * Returns Z_SUCCESS, also where the storage cannot be read or written; Z_ERROR_BITMAP for a bitmap that is
 * null or not allocated; Z_ERROR_DIMENSIONS for a pixel outside the bitmap or its region. On failure nothing
 * changes.
 */
Z_API ReturnCode Z_CALL Z_PutPixelColor(BitmapHandle* bitmap, int32_t row, int32_t column, uint32_t colour);

/*
 * Reads the bytes that hold a pixel, as they are stored.
 *
 * bitmap    in: a bitmap, locked where it is a global one; not null; its row cache is changed
 * data      out: room for size bytes, of which as many are written as the pixel touches; other pixels' bits
 *           in them come along
 * row       in: 0 to Height - 1; not checked
 * column    in, pixels: 0 to Width - 1; not checked
 * size      in, bytes: at least those that the pixel touches, 1 up to 8 bits per pixel (2 where the pixel
 *           runs over the end of its byte), 2 at 12, and BitsPerPixel / 8 at the other depths
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is not allocated; Z_ERROR_ARGUMENT for a null data or a
 * size that is too small; Z_ERROR_MEMORY when the bytes cannot be read, after which data may be partly
 * written.
 */
Z_API ReturnCode Z_CALL Z_GetPixelData(BitmapHandle* bitmap, void* data, int32_t row, int32_t column,
                                       uint32_t size);

/*
 * Writes the bytes that hold a pixel, as they are stored. The region plays no part.
 *
 * bitmap    in, changed: as for Z_GetPixelData
 * data      in: the bytes; the bits of other pixels in them are written too
 * row, column, size    in: as for Z_GetPixelData
 *
 * Returns what Z_GetPixelData returns, Z_ERROR_MEMORY when the bytes cannot be written.
 */
Z_API ReturnCode Z_CALL Z_PutPixelData(BitmapHandle* bitmap, const void* data, int32_t row, int32_t column,
                                       uint32_t size);

Z_END_DECLS

#endif
