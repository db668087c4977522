/*
 * Copies of whole bitmaps and of rectangles of them. A copy reports to the copy status callback of the
 * calling thread (Z_SetCopyStatusCallBack): 0 first, then steps of 100 / height after each row.
 */
#ifndef ZKR13N_COPY_H
#define ZKR13N_COPY_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Makes a whole copy of a bitmap, with a palette and a region of its own. The copy lives in the source's
 * storage class where that is compressed, super-compressed or disk, else in memory.
 *
 * destination    out: a record that holds nothing; what it held is overwritten without being freed
 * source         in: an allocated bitmap
 *
 * Returns Z_SUCCESS, also where both are the same record; Z_ERROR_ARGUMENT for a null destination or a source
 * that is null or not allocated; Z_ERROR_DOCUMENT_LOCKED for a compressed source while the document
 * capability is locked; Z_ERROR_MEMORY and the other failures of Z_AllocateBitmap where the copy finds no
 * room; or what the copy status callback returned to stop the copy. On failure everything that was made is
 * freed.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmap(BitmapHandle* destination, BitmapHandle* source);

/*
 * Copies the pixels of one bitmap into another, row by row and byte by byte. Both are meant to have the same
 * dimensions and depth. Of a source with more rows or longer rows the surplus is left out; a longer row of
 * the destination ends in zeros, and its surplus rows stay as they were.
 *
 * destination    in, changed: an allocated bitmap of any storage class
 * source         in: an allocated bitmap of any storage class
 *
 * Returns Z_SUCCESS, also where both are the same record; Z_ERROR_BITMAP for a bitmap that is null or not
 * allocated; Z_ERROR_MEMORY when there is no memory for a row; or what the copy status callback returned to
 * stop the copy, the rows before that being copied. A row that cannot be read or written is not reported,
 * but for Z_ERROR_MEMORY between two run-compressed bitmaps of one width, which ends the copy.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmapData(BitmapHandle* destination, BitmapHandle* source);

/*
 * Makes a whole copy of a bitmap in storage of the caller's choice, with a palette and a region of its own.
 * The gray window and the tables of the source are not copied: the copy has those of a new bitmap.
 *
 * destination    out: a record that holds nothing; what it held is overwritten without being freed
 * source         in: an allocated bitmap; the document capability plays no part
 * memoryType     in: as for Z_AllocateBitmap
 *
 * Returns what Z_CopyBitmap returns, but not Z_ERROR_DOCUMENT_LOCKED, and Z_ERROR_ARGUMENT for a memoryType
 * that Z_AllocateBitmap refuses. On failure everything that was made is freed.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmap2(BitmapHandle* destination, BitmapHandle* source, int32_t memoryType);

/*
 * Copies a rectangle of a bitmap into a bitmap of its own, or cuts the bitmap to it. The new bitmap has the
 * rectangle's dimensions and, in all else, is made as Z_CopyBitmap does. Its region is the source's, moved
 * along.
 *
 * destination       out: a record that holds nothing. With null, or the source itself, the new bitmap takes
 *                   the place of the source's, which is freed.
 * source            in, or changed as told: an allocated bitmap
 * left, top         in, pixels: where the rectangle begins in the source; may be negative
 * width, height     in, pixels: from 1; the rectangle may end outside the source
 *
 * Pixels of the rectangle that lie outside the source keep their fresh content, which is zeros. Steps of
 * progress are 100 / height, however many of the rows lie in the source.
 *
 * Returns Z_SUCCESS; also for a rectangle wholly outside the source, with which a destination is left blank
 * and a source that was to be replaced as it was. Z_ERROR_ARGUMENT for a source that is null or not
 * allocated; Z_ERROR_DIMENSIONS for a width or height below 1; Z_ERROR_MEMORY and the other failures of
 * Z_DupBitmapNewDim where the new bitmap finds no room; the failures of copying a region; or what the copy
 * status callback returned to stop the copy. A copy that is stopped keeps what it has come to: the
 * destination must be freed, or has taken the place of the source. On all other failures everything that was
 * made is freed, and the source is as it was. A row that cannot be read or written is not reported.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmapRect(BitmapHandle* destination, BitmapHandle* source, int32_t left,
                                         int32_t top, int32_t width, int32_t height);

/*
 * Copies a rectangle of a bitmap as Z_CopyBitmapRect does, into storage of the caller's choice. The gray
 * window and the tables of the source are not copied: the copy has those of a new bitmap.
 *
 * destination, source, left, top, width, height    as for Z_CopyBitmapRect
 * memoryType                                       in: as for Z_AllocateBitmap. With MemoryUser the new
 *                                                  bitmap has no pixels until it is given some.
 *
 * Returns what Z_CopyBitmapRect returns, and Z_ERROR_ARGUMENT for a memoryType that Z_AllocateBitmap
 * refuses.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmapRect2(BitmapHandle* destination, BitmapHandle* source, int32_t left,
                                          int32_t top, int32_t width, int32_t height, int32_t memoryType);

/*
 * Cuts a bitmap to a rectangle, or to as much of it as lies in the bitmap.
 *
 * bitmap            in, changed: an allocated bitmap; becomes what Z_CopyBitmapRect makes of the rectangle
 * left, top         in, pixels: where the rectangle begins; may be negative
 * width, height     in, pixels: may end outside the bitmap
 *
 * Returns what Z_CopyBitmapRect returns; Z_ERROR_DIMENSIONS for a rectangle that holds no pixel of the
 * bitmap, with the bitmap as it was.
 */
Z_API ReturnCode Z_CALL Z_TrimBitmap(BitmapHandle* bitmap, int32_t left, int32_t top, int32_t width,
                                     int32_t height);

Z_END_DECLS

#endif
