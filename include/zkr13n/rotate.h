/*
 * Rotation: of bitmaps by any angle and of buffers by quarter and half turns, and the table of sines that it goes
 * by. Angles are in hundredths of a degree and positive ones turn clockwise, as the picture is seen.
 */
#ifndef ZKR13N_ROTATE_H
#define ZKR13N_ROTATE_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * The sine and the cosine of an angle.
 *
 * angle    in, hundredths of a degree: any
 *
 * Returns the sine or cosine times 16384, rounded to the nearest whole number.
 */
Z_API int32_t Z_CALL Z_SinValue(int32_t angle);
Z_API int32_t Z_CALL Z_CosValue(int32_t angle);

Z_END_DECLS

#endif
