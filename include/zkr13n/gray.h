/*
 * The gray window: which bits of a gray pixel are its value, and the record's fields that carry it.
 */
#ifndef ZKR13N_GRAY_H
#define ZKR13N_GRAY_H

#include "bitmap.h"

Z_BEGIN_DECLS

Z_API void Z_CALL Z_GetGrayParams(int32_t depth, int32_t maximumValueBits, int32_t lowBit, int32_t highBit,
                                  int32_t* valueBits, uint32_t* mask, int32_t* shift);
Z_API void Z_CALL Z_InitGrayParams(BitmapHandle* bitmap);
Z_API ReturnCode Z_CALL Z_CopyGrayParams(BitmapHandle* target, const BitmapHandle* source);
Z_API void Z_CALL Z_FreeGrayParams(BitmapHandle* bitmap);

Z_END_DECLS

#endif
