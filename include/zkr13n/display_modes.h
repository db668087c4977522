/*
 * How the library shows pictures: a word of modes for each thread, and how the library prepares.
 */
#ifndef ZKR13N_DISPLAY_MODES_H
#define ZKR13N_DISPLAY_MODES_H

#include "codes.h"

Z_BEGIN_DECLS

/* Bits of the display mode. A thread begins with DISPLAY_INDEXED and DISPLAY_DITHERED. */
enum {
    DISPLAY_ORDERED = 0x1,        /* dithered rows compare with thresholds; clear: they diffuse errors */
    DISPLAY_INDEXED = 0x4,        /* up to 8 bits, dithered too, indices go to the device: see below */
    DISPLAY_DITHERED = 0x8,       /* pictures may be dithered for devices of up to 8 bits */
    DISPLAY_SCALE_TO_GRAY = 0x10, /* gray pictures of 1 bit are shown in levels of gray */
    DISPLAY_CLUSTERED = 0x20,     /* thresholds of clustered dots; clear: of dispersed dots */
    DISPLAY_COARSE_GRAY =
        0x40,                /* gray pictures of 1 bit that are scaled are shown in levels of whole pixels */
    DISPLAY_DITHER_8 = 0x80, /* devices of 8 bits get dithered pictures too */
    DISPLAY_CUBE = 0x100 /* dithering for 8 bits takes the cube of 216 colours; clear: the fixed palette */
};

/*
 * With DISPLAY_INDEXED an index means the entry of the palette that is selected into the device context, on devices of every
 * depth. That has to be the one of Z_CreatePaintPalette (dib.h) for the bitmap, whose colours are then those that would be
 * shown without the mode; a context into which nothing was selected has the platform's 20 colours, of which the first ones are
 * dark. Who selects no palettes takes the mode back: Z_SetDisplayMode(DISPLAY_INDEXED, 0).
 */

/*
 * Changes the calling thread's display mode.
 *
 * mask   in: the bits to change, DISPLAY_... and any others, which are kept for the caller. While the bitonal
 *        capability is locked, DISPLAY_SCALE_TO_GRAY and DISPLAY_COARSE_GRAY stay as they are.
 * value  in: what they become
 *
 * Returns the mode as it was, which Z_SetDisplayMode(0xFFFFFFFF, old) brings back. Threads whose state cannot be made for want
 * of memory share one.
 */
Z_API uint32_t Z_CALL Z_SetDisplayMode(uint32_t mask, uint32_t value);

/*
 * The calling thread's display mode.
 */
Z_API uint32_t Z_CALL Z_GetDisplayMode(void);

/*
 * Makes the operations on regions known to all others, for the whole process. The library does this by itself as soon
 * as one of them is needed, also after it has been shut down; a host has no need to. No thread's mode changes.
 */
Z_API void Z_CALL SetDisplayDispatch(void);

Z_END_DECLS

#endif
