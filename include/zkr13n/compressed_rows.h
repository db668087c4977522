/*
 * Compressed rows: 1-bit pixels as lengths of runs. This is how run-compressed bitmaps (MemoryCompressed)
 * hold their rows, and the form in which such rows are exchanged.
 *
 * In a buffer a compressed row is a count of 32 bits, low byte first, and as many lengths of 16 bits, in
 * pixels. The lengths stand for runs of 0 bits and of 1 bits by turns. The first is a run of 0 bits, and is 0
 * where the row starts with a 1 bit. A run of more than 65535 pixels is 65535, 0 and the rest, split again
 * where it must be. The lengths of a row add up to its width. Rows follow one another without padding, so
 * that a row may lie at any even address. The pixels of a packed row are its bits from the top bit of the
 * first byte on.
 *
 * A row of w pixels takes at most 4 + 2 * (w + 1) bytes.
 */
#ifndef ZKR13N_COMPRESSED_ROWS_H
#define ZKR13N_COMPRESSED_ROWS_H

#include "codes.h"
#include "platform_types.h"

Z_BEGIN_DECLS

/*
 * Makes a compressed row of packed bits. No argument is checked.
 *
 * destination    out: the row; at most 4 + 2 * (bits + 1) bytes, of which no more are written than the row
 *                takes
 * source         in: packed bits. The first byte is the one that holds pixel `column`.
 * column         in, pixels: column & 7 bits of the first byte are skipped
 * bits           in, pixels: the width of the row; 0 makes a row of one empty run
 */
Z_API void Z_CALL Z_CompressRow(uint16_t* destination, const void* source, int32_t column, int32_t bits);

/*
 * Makes compressed rows of rows of packed bits. No argument is checked.
 *
 * destination    out: the rows, at most 4 + 2 * (bits + 1) bytes each
 * source         in: rows of packed bits, each on from a multiple of 4 bytes: (bits + 31) / 32 * 4 from row
 * to row bits           in, pixels: the width of the rows rows           in: 0 or less does nothing
 */
Z_API void Z_CALL Z_CompressRows(uint16_t* destination, const void* source, int32_t bits, int32_t rows);

/*
 * Makes packed bits of a compressed row. No argument is checked; no more of the row is read than its count of
 * runs tells.
 *
 * source         in: the row; null for one of 0 bits alone
 * destination    out: (bits + 7) / 8 bytes. What the row does not reach, and the bits of the last byte behind
 *                the last pixel, become 0.
 * column         in, pixels, 0 or more: the pixel of the row to begin with
 * bits           in, pixels: pixels to write
 */
Z_API void Z_CALL Z_ExpandRow(const uint16_t* source, void* destination, int32_t column, int32_t bits);

/*
 * Makes rows of packed bits of compressed rows. No argument is checked.
 *
 * source         in: the rows; null for rows of 0 bits alone
 * destination    out: (bits + 31) / 32 * 4 bytes from row to row, of which the first (bits + 7) / 8 of each
 * row are written bits           in, pixels: the width of the rows rows           in: 0 or less does nothing
 */
Z_API void Z_CALL Z_ExpandRows(const uint16_t* source, void* destination, int32_t bits, int32_t rows);

/*
 * Mirrors each of some compressed rows left to right. The lengths come in reverse order, also those of a run
 * that is split, whose rest then comes first.
 *
 * source         in: the rows
 * destination    out: as many rows. One that ends in a 1 bit and starts with a 0 bit takes 2 bytes more than
 *                before; one that starts with a 1 bit and ends in a 0 bit takes 2 less. It must not overlap
 * the source. rows           in: 0 or less does nothing
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a null pointer.
 */
Z_API ReturnCode Z_CALL Z_MirrorCompressedBuffer(const uint16_t* source, uint16_t* destination, int32_t rows);

/*
 * Reverses the order of compressed rows, so that the picture stands on its head.
 *
 * source         in: the rows
 * destination    out: as many bytes as the source has. It must not overlap the source.
 * rows           in: 0 or less does nothing
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a null pointer.
 */
Z_API ReturnCode Z_CALL Z_FlipCompressedBuffer(const uint16_t* source, uint16_t* destination, int32_t rows);

Z_END_DECLS

#endif
