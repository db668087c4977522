/*
 * Row transfer: how pixels move between a bitmap of any storage class and a buffer.
 */
#ifndef ZKR13N_ROWS_H
#define ZKR13N_ROWS_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Copies bytes from the start of a row into a buffer.
 *
 * bitmap    in: a bitmap that has storage; its row cache is changed
 * buffer    out: room for the bytes
 * row       in: 0 to Height - 1
 * bytes     in: bytes to copy, at most 0x7FFFFFFF. More than BytesPerLine goes on into the next rows; in
 *           tiles, strips and runs a count that runs past the last row stops there, and elsewhere it must
 *           not.
 *
 * Returns the count of bytes; in tiles always the count asked for, also when a tile's file fails and bytes of
 * the buffer stay as they were; in compressed strips the bytes before the first strip that cannot be
 * restored, or that cannot be reached because the strip last written cannot be compressed and stays in
 * memory: fewer than asked for, or 0. Rows of runs give 0 for the bits behind their last pixel.
 * Z_ERROR_BITMAP for data in memory that has no address (a user bitmap without data, a global bitmap that is
 * not locked); Z_ERROR_SEEK and Z_ERROR_READ when the file of a disk bitmap fails, after which the buffer may
 * be partly filled; Z_ERROR_MEMORY for a record without any storage class. None of the arguments is checked.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRow(BitmapHandle* bitmap, void* buffer, int32_t row, uint32_t bytes);

/*
 * Copies bytes from a buffer to the start of a row.
 *
 * bitmap    in, changed: a bitmap that has storage
 * buffer    in: the bytes
 * row       in: 0 to Height - 1
 * bytes     in: bytes to copy, at most 0x7FFFFFFF, going on into the next rows as in Z_GetBitmapRow
 *
 * Returns the count of bytes or a code as Z_GetBitmapRow does, with Z_ERROR_WRITE when the file of a disk
 * bitmap cannot be written, and Z_ERROR_MEMORY when there is no memory for a row of runs, which is as it was
 * then; rows before the failing one are written. None of the arguments is checked.
 */
Z_API ReturnCode Z_CALL Z_PutBitmapRow(BitmapHandle* bitmap, const void* buffer, int32_t row, uint32_t bytes);

/*
 * Copies bytes from a row into a buffer, beginning at a column.
 *
 * bitmap    in: a bitmap that has storage; its row cache is changed
 * buffer    out: room for the bytes
 * row       in: 0 to Height - 1
 * column    in, pixels: 0 to Width - 1. The copy begins with the byte that holds the column's first bit;
 *           bits of other pixels in that byte come along.
 * bytes     in: bytes to copy, as in Z_GetBitmapRow
 *
 * Returns what Z_GetBitmapRow returns, and Z_ERROR_ARGUMENT for a column of a run-compressed bitmap whose byte
 * begins at or behind Width. None of the arguments is checked otherwise.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRowCol(BitmapHandle* bitmap, void* buffer, int32_t row, int32_t column,
                                          uint32_t bytes);

/*
 * Copies bytes from a buffer into a row, beginning at a column.
 *
 * bitmap    in, changed: a bitmap that has storage
 * buffer    in: the bytes
 * row       in: 0 to Height - 1
 * column    in, pixels: 0 to Width - 1. The copy begins with the byte that holds the column's first bit,
 *           and whole bytes are overwritten: Z_PutBitmapRowSegments writes to the pixel.
 * bytes     in: bytes to copy, as in Z_PutBitmapRow
 *
 * Returns what Z_PutBitmapRow returns, and Z_ERROR_ARGUMENT as Z_GetBitmapRowCol does.
 */
Z_API ReturnCode Z_CALL Z_PutBitmapRowCol(BitmapHandle* bitmap, const void* buffer, int32_t row,
                                          int32_t column, uint32_t bytes);

/*
 * Writes pieces of a row, exact to the pixel at every depth and in every storage class.
 *
 * bitmap          in, changed: a bitmap that has storage
 * buffer          in: pixels in the bitmap's format; the pixel for a segment's column c is the buffer's
 *                 pixel c
 * row             in: 0 to Height - 1
 * columnOffset    in, pixels: column c of a segment is written to column columnOffset + c of the row. What
 *                 falls outside the bitmap is left out.
 * segments        in: pairs of columns, start and end, the end not included; a pair whose end is not
 *                 behind its start is empty
 * segmentEntries  in: entries of segments, two for each pair
 * keepTopBits     in: not 0 keeps what the row has beyond the colour: the top bit at 16 bits unless Order
 *                 is Z_ORDER_GRAY, the fourth byte at 32 bits, the last two bytes at 64 bits
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for data in memory that has no address; Z_ERROR_SEEK, Z_ERROR_READ and
 * Z_ERROR_WRITE when the file of a disk bitmap or of a tile fails, the last two also when a strip cannot be
 * reached, with the segments before the failure written; Z_ERROR_MEMORY for a record without any storage
 * class, and when there is no memory for a row of runs, which is as it was then where the segments stand from
 * left to right; Z_ERROR_ARGUMENT for a row outside a run-compressed bitmap. The pointers and row are not
 * checked otherwise.
 */
Z_API ReturnCode Z_CALL Z_PutBitmapRowSegments(BitmapHandle* bitmap, const void* buffer, int32_t row,
                                               int32_t columnOffset, const uint32_t* segments,
                                               uint32_t segmentEntries, int32_t keepTopBits);

Z_END_DECLS

#endif
