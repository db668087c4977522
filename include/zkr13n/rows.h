/*
 * Row transfer: how pixels move between a bitmap of any storage class and a buffer.
 */
#ifndef ZKR13N_ROWS_H
#define ZKR13N_ROWS_H

#include "bitmap.h"

Z_BEGIN_DECLS

Z_API ReturnCode Z_CALL Z_GetBitmapRow(BitmapHandle* bitmap, void* buffer, int32_t row, uint32_t bytes);
Z_API ReturnCode Z_CALL Z_PutBitmapRow(BitmapHandle* bitmap, const void* buffer, int32_t row, uint32_t bytes);
Z_API ReturnCode Z_CALL Z_GetBitmapRowCol(BitmapHandle* bitmap, void* buffer, int32_t row, int32_t column,
                                          uint32_t bytes);
Z_API ReturnCode Z_CALL Z_PutBitmapRowCol(BitmapHandle* bitmap, const void* buffer, int32_t row,
                                          int32_t column, uint32_t bytes);
Z_API ReturnCode Z_CALL Z_PutBitmapRowSegments(BitmapHandle* bitmap, const void* buffer, int32_t row,
                                               int32_t columnOffset, const uint32_t* segments,
                                               uint32_t segmentEntries, int32_t keepTopBits);

Z_END_DECLS

#endif
