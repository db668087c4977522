/*
 * Numeric services: what bitmap work needs of whole numbers.
 */
#ifndef ZKR13N_NUMERIC_H
#define ZKR13N_NUMERIC_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * The square root of a whole number, rounded down.
 *
 * value    in: any
 *
 * Returns the largest number whose square is not above value. Newton's method (Isaac Newton, 1669; Joseph
 * Raphson, 1690) in whole numbers.
 */
Z_API uint32_t Z_CALL Z_SQRT(uint32_t value);

/*
 * A table of how many bits are 1 in each byte.
 *
 * Returns 256 constant entries; entry i is the number of 1 bits in i.
 */
Z_API const uint8_t* Z_CALL Z_Get1BitOnTable(void);

Z_END_DECLS

#endif
