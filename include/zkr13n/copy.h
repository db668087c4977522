/*
 * Copies of whole bitmaps. A copy reports to the copy status callback of the calling thread
 * (Z_SetCopyStatusCallBack): 0 first, then steps of 100 / height after each row.
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
 * stop the copy, the rows before that being copied. A row that cannot be read or written is not reported.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmapData(BitmapHandle* destination, BitmapHandle* source);

Z_END_DECLS

#endif
