/*
 * Animation: the fields of a bitmap that make it a frame.
 */
#ifndef ZKR13N_PLAYBACK_H
#define ZKR13N_PLAYBACK_H

#include "bitmap.h"

Z_BEGIN_DECLS

Z_API ReturnCode Z_CALL Z_CopyPlaybackParms(BitmapHandle* destination, const BitmapHandle* source);

Z_END_DECLS

#endif
