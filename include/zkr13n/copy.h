/*
 * Copies of whole bitmaps.
 */
#ifndef ZKR13N_COPY_H
#define ZKR13N_COPY_H

#include "bitmap.h"

Z_BEGIN_DECLS

Z_API ReturnCode Z_CALL Z_CopyBitmap(BitmapHandle* destination, BitmapHandle* source);
Z_API ReturnCode Z_CALL Z_CopyBitmapData(BitmapHandle* destination, BitmapHandle* source);

Z_END_DECLS

#endif
