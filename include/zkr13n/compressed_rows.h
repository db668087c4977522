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

#include "bitmap.h"

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
 * source         in: rows of packed bits, (bits + 31) / 32 * 4 bytes from row to row
 * bits           in, pixels: the width of the rows
 * rows           in: 0 or less does nothing
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
 *                row are written
 * bits           in, pixels: the width of the rows
 * rows           in: 0 or less does nothing
 */
Z_API void Z_CALL Z_ExpandRows(const uint16_t* source, void* destination, int32_t bits, int32_t rows);

/*
 * Mirrors each of some compressed rows left to right. The lengths come in reverse order, also those of a run
 * that is split, whose rest then comes first.
 *
 * source         in: the rows
 * destination    out: as many rows. One that ends in a 1 bit and starts with a 0 bit takes 2 bytes more than
 *                before; one that starts with a 1 bit and ends in a 0 bit takes 2 less. It must not overlap
 *                the source.
 * rows           in: 0 or less does nothing
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

/* Methods of Z_ChangeBitmapCompression. */
enum {
    COMP_NONE = 0, /* plain rows */
    COMP_RLE = 1,  /* run-compressed, 1-bit bitmaps only */
    COMP_SUPER = 2 /* compressed strips, 1-bit and 24-bit bitmaps */
};

/*
 * Reads rows of a 1-bit bitmap of any storage class as compressed rows.
 *
 * bitmap         in: an allocated bitmap. One of another depth gives the first Width bits of its rows.
 * workBuffer     in, changed, may be null: BytesPerLine bytes to work in. Null allocates them for the call. A
 *                run-compressed bitmap needs none.
 * destination    out: the rows, at most 4 + 2 * (Width + 1) bytes each
 * row            in: the first row, from 0
 * rows           in: rows to read. Those behind the last row of the bitmap are left out, and nothing is
 *                written where none is left.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_ARGUMENT for a null
 * destination or a negative row; Z_ERROR_MEMORY when there is no memory to work in; Z_ERROR_SEEK or
 * Z_ERROR_READ when a file fails, and Z_ERROR_WRITE when a row comes back short. The rows before a failure
 * are read then.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRowCompressed(BitmapHandle* bitmap, void* workBuffer,
                                                 uint16_t* destination, int32_t row, int32_t rows);

/*
 * Writes compressed rows into a 1-bit bitmap of any storage class. A run-compressed bitmap holds the lists as
 * they are given.
 *
 * bitmap        in, changed: an allocated bitmap
 * workBuffer    in, changed, may be null: as for Z_GetBitmapRowCompressed
 * source        in: the rows, each of exactly Width pixels in at most Width + 1 runs
 * row           in: the first row, from 0
 * rows          in: rows to write. Those behind the last row of the bitmap are left out, and source is not
 *               looked at where none is left.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a bitmap that is null or not allocated; Z_ERROR_ARGUMENT for a null
 * source or a negative row, and when a row has more runs or other pixels than it may: no row is written then;
 * Z_ERROR_MEMORY when there is no memory to work in or for a row; Z_ERROR_SEEK or Z_ERROR_WRITE when a file
 * fails. The rows before such a failure are written, and the row itself is as it was in a run-compressed
 * bitmap.
 */
Z_API ReturnCode Z_CALL Z_PutBitmapRowCompressed(BitmapHandle* bitmap, void* workBuffer,
                                                 const uint16_t* source, int32_t row, int32_t rows);

/*
 * Reads a part of a row of a 1-bit bitmap of any storage class as one compressed row.
 *
 * bitmap         in: an allocated bitmap
 * workBuffer     in, changed, may be null: as for Z_GetBitmapRowCompressed
 * destination    out: the row, at most 4 + 2 * (width + 1) bytes. From a run-compressed bitmap the runs come as
 *                they are stored, the first and the last of them shortened, so that empty runs in lists that
 *                were handed in may take up to 2 * (Width + 1) bytes for each row of the bitmap. The whole of a blank row of a
 *                run-compressed bitmap that has not been written since it was made is given in runs of 32767
 *                and the rest, and the lengths between them are not written: fill the buffer with zeros
 *                before.
 * row            in: 0 to Height - 1
 * column         in, pixels: 0 to Width - 1
 * width          in, pixels. What runs past the end of the row goes on in the next row, and past the last row
 *                it stops, so that the lengths add up to less. 0 or less does nothing.
 *
 * Returns what Z_GetBitmapRowCompressed returns, and Z_ERROR_ARGUMENT for a row or column outside the bitmap.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRowColCompressed(BitmapHandle* bitmap, void* workBuffer,
                                                    uint16_t* destination, int32_t row, int32_t column,
                                                    int32_t width);

/*
 * Writes one compressed row into a part of a row of a 1-bit bitmap of any storage class, exact to the pixel.
 *
 * bitmap        in, changed: an allocated bitmap
 * workBuffer    in, changed, may be null: as for Z_GetBitmapRowCompressed
 * source        in: the compressed row, of exactly width pixels in at most width + 1 runs
 * row           in: 0 to Height - 1
 * column        in, pixels: 0 to Width - 1
 * width         in, pixels: as for Z_GetBitmapRowColCompressed
 *
 * Returns what Z_PutBitmapRowCompressed returns, with Z_ERROR_READ where a file fails, and Z_ERROR_ARGUMENT
 * for a row or column outside the bitmap.
 */
Z_API ReturnCode Z_CALL Z_PutBitmapRowColCompressed(BitmapHandle* bitmap, void* workBuffer,
                                                    const uint16_t* source, int32_t row, int32_t column,
                                                    int32_t width);

/*
 * Moves a bitmap into compressed storage, or out of it. Palette and region stay; of the record's other fields
 * those stay that Z_DupBitmapNewDim hands on.
 *
 * bitmap    in, changed: an allocated bitmap
 * method    in: COMP_.... COMP_NONE makes conventional storage, or what the thresholds allow in its place; so
 *           does COMP_RLE where the bitmap cannot be run-compressed. The heap of a bitmap that becomes
 *           run-compressed is trimmed in the end.
 *
 * Returns Z_SUCCESS, also where the bitmap has that form already; Z_ERROR_BITMAP for a bitmap that is null or
 * not allocated; Z_ERROR_ARGUMENT for another method, and for COMP_SUPER where the bitmap cannot have it; the
 * failures of Z_AllocateBitmap; Z_ERROR_SEEK, Z_ERROR_READ, Z_ERROR_WRITE or Z_ERROR_MEMORY when a row cannot
 * be moved; or what the copy status callback (Z_SetCopyStatusCallBack) returned to stop the work. On failure
 * the bitmap is as it was.
 */
Z_API ReturnCode Z_CALL Z_ChangeBitmapCompression(BitmapHandle* bitmap, int32_t method);

/*
 * Switches a 1-bit bitmap between plain and run-compressed storage: one that is compressed in either way goes
 * to COMP_NONE, any other to COMP_RLE.
 *
 * bitmap    in, changed: an allocated 1-bit bitmap
 *
 * Returns Z_ERROR_DOCUMENT_LOCKED while the document capability is locked; Z_ERROR_BITMAP for a bitmap that
 * is null, not allocated or of another depth; else what Z_ChangeBitmapCompression returns.
 */
Z_API ReturnCode Z_CALL Z_ToggleBitmapCompression(BitmapHandle* bitmap);

Z_END_DECLS

#endif
