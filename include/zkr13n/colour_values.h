/*
 * Colour values: the 32-bit form in which single colours cross the interface.
 */
#ifndef ZKR13N_COLOUR_VALUES_H
#define ZKR13N_COLOUR_VALUES_H

#include "bitmap.h"

Z_BEGIN_DECLS

Z_API uint32_t Z_CALL Z_TranslateBitmapColor(const BitmapHandle* target, const BitmapHandle* source,
                                             uint32_t colour);

Z_END_DECLS

#endif
