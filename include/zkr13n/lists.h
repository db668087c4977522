/*
 * BitmapList: an ordered set of BitmapHandle records, for documents of several pages and animations.
 */
#ifndef ZKR13N_LISTS_H
#define ZKR13N_LISTS_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* Opaque handle of a list. */
typedef HGLOBAL BitmapList;

Z_API ReturnCode Z_CALL Z_CreateBitmapList(BitmapList* listOut);
Z_API ReturnCode Z_CALL Z_DestroyBitmapList(BitmapList list);
Z_API ReturnCode Z_CALL Z_GetBitmapListCount(BitmapList list, uint32_t* countOut);
Z_API ReturnCode Z_CALL Z_GetBitmapListItem(BitmapList list, uint32_t index, BitmapHandle* bitmap);
Z_API ReturnCode Z_CALL Z_SetBitmapListItem(BitmapList list, uint32_t index, const BitmapHandle* bitmap);
Z_API ReturnCode Z_CALL Z_InsertBitmapListItem(BitmapList list, uint32_t index, const BitmapHandle* bitmap);
Z_API ReturnCode Z_CALL Z_RemoveBitmapListItem(BitmapList list, uint32_t index, BitmapHandle* bitmapOut);
Z_API ReturnCode Z_CALL Z_DeleteBitmapListItems(BitmapList list, uint32_t index, uint32_t count);
Z_API ReturnCode Z_CALL Z_CopyBitmapListItems(BitmapList* listOut, BitmapList list, uint32_t index,
                                              uint32_t count);
Z_API ReturnCode Z_CALL Z_MoveBitmapListItems(BitmapList* listOut, BitmapList list, uint32_t index,
                                              uint32_t count);

Z_END_DECLS

#endif
