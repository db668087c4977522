/*
 * How the library prepares to show pictures.
 */
#ifndef ZKR13N_DISPLAY_MODES_H
#define ZKR13N_DISPLAY_MODES_H

#include "codes.h"

Z_BEGIN_DECLS

/*
 * Makes the operations on regions known to all others, for the whole process. The library does this by itself as soon
 * as one of them is needed, also after it has been shut down; a host has no need to.
 */
Z_API void Z_CALL SetDisplayDispatch(void);

Z_END_DECLS

#endif
