/*
 * BitmapList: an ordered set of BitmapHandle records, for documents of several pages and animations. A list
 * holds the records by value and owns the storage of its items once they are inserted. Items are counted from
 * 0.
 *
 * Every function returns Z_ERROR_ARGUMENT for a list that is null or no list.
 */
#ifndef ZKR13N_LISTS_H
#define ZKR13N_LISTS_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* Opaque handle of a list. */
typedef HGLOBAL BitmapList;

/*
 * Makes an empty list.
 *
 * listOut    out: the list, null on failure; release it with Z_DestroyBitmapList
 *
 * Returns Z_SUCCESS, Z_ERROR_ARGUMENT for a null listOut, or Z_ERROR_MEMORY.
 */
Z_API ReturnCode Z_CALL Z_CreateBitmapList(BitmapList* listOut);

/*
 * Frees all items and the list.
 *
 * list    in
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT.
 */
Z_API ReturnCode Z_CALL Z_DestroyBitmapList(BitmapList list);

/*
 * Counts the items.
 *
 * list        in
 * countOut    out: number of items
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a bad list or a null countOut.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapListCount(BitmapList list, uint32_t* countOut);

/*
 * Copies the record of an item. The list goes on owning the storage: the caller must not free it.
 *
 * list      in
 * index     in: below the count
 * bitmap    out: the record
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a bad list, an index at or beyond the count or a null bitmap.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapListItem(BitmapList list, uint32_t index, BitmapHandle* bitmap);

/*
 * Overwrites the record of an item. What the item held is not freed.
 *
 * list      in
 * index     in: below the count
 * bitmap    in: the record, now the list's; null clears the item
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a bad list or an index at or beyond the count.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapListItem(BitmapList list, uint32_t index, const BitmapHandle* bitmap);

/*
 * Inserts an item; the items from the index on move up.
 *
 * list      in
 * index     in: at or beyond the count appends
 * bitmap    in: the record, now the list's; null inserts a cleared record
 *
 * Returns Z_SUCCESS, Z_ERROR_ARGUMENT for a bad list, or Z_ERROR_MEMORY with the list as it was.
 */
Z_API ReturnCode Z_CALL Z_InsertBitmapListItem(BitmapList list, uint32_t index, const BitmapHandle* bitmap);

/*
 * Takes an item out of the list; later items move down. The storage is not freed: it is the caller's now.
 *
 * list         in
 * index        in: below the count
 * bitmapOut    out, may be null: the record. With null nobody can free the storage any more.
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a bad list or an index at or beyond the count.
 */
Z_API ReturnCode Z_CALL Z_RemoveBitmapListItem(BitmapList list, uint32_t index, BitmapHandle* bitmapOut);

/*
 * Removes items and frees them; later items move down.
 *
 * list     in
 * index    in: below the count
 * count    in: items, 1 or more; what reaches beyond the end is cut
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for a bad list, an index at or beyond the count or a count of 0.
 */
Z_API ReturnCode Z_CALL Z_DeleteBitmapListItems(BitmapList list, uint32_t index, uint32_t count);

/*
 * Makes a new list of whole copies of items, as Z_CopyBitmap makes them.
 *
 * listOut    out: the new list; left alone on failure
 * list       in
 * index      in: below the count
 * count      in: items, 1 or more; what reaches beyond the end is cut
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a bad list, an index at or beyond the count, a count of 0 or a null
 * listOut; or a failure of Z_CopyBitmap, which for a cleared item is Z_ERROR_ARGUMENT too.
 */
Z_API ReturnCode Z_CALL Z_CopyBitmapListItems(BitmapList* listOut, BitmapList list, uint32_t index,
                                              uint32_t count);

/*
 * Moves items to a new list; later items of the old one move down. No pixel is copied.
 *
 * listOut    out: the new list; left alone on failure
 * list       in
 * index      in: up to the count, where the new list is empty
 * count      in: items, 1 or more; what reaches beyond the end is cut
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a bad list, an index beyond the count, a count of 0 or a null
 * listOut; or Z_ERROR_MEMORY. On failure the list is as it was.
 */
Z_API ReturnCode Z_CALL Z_MoveBitmapListItems(BitmapList* listOut, BitmapList list, uint32_t index,
                                              uint32_t count);

Z_END_DECLS

#endif
