/*
 * Animation: the fields of a bitmap that make it a frame.
 */
#ifndef ZKR13N_PLAYBACK_H
#define ZKR13N_PLAYBACK_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Passes on what makes a bitmap a frame of an animation: position, delay, disposal, the flags for
 * transparency and for waiting, and the colours of background and transparency, translated to the
 * destination's palette (Z_TranslateBitmapColor).
 *
 * destination    in, changed: an initialised record
 * source         in: an initialised record
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT when either is null.
 */
Z_API ReturnCode Z_CALL Z_CopyPlaybackParms(BitmapHandle* destination, const BitmapHandle* source);

Z_END_DECLS

#endif
