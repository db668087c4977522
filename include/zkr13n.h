/*
 * ZKR13N, a raster image kernel: everything in one include. The headers of the families are complete manuals
 * of their functions and can be included one by one.
 *
 * Different threads work on different bitmaps freely. A child made by fork may use the library too: bitmaps in
 * memory it has for itself, while those on disk, and tiles there, are the parent's as well, and only one of the
 * two may go on with them.
 */
#ifndef ZKR13N_H
#define ZKR13N_H

#include "zkr13n/allocation.h"
#include "zkr13n/alpha.h"
#include "zkr13n/bitmap.h"
#include "zkr13n/clipboard.h"
#include "zkr13n/codes.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/color_spaces.h"
#include "zkr13n/colour_values.h"
#include "zkr13n/combine.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/convert.h"
#include "zkr13n/copy.h"
#include "zkr13n/dib.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/dither.h"
#include "zkr13n/files.h"
#include "zkr13n/fill.h"
#include "zkr13n/filter.h"
#include "zkr13n/flip.h"
#include "zkr13n/frame.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"
#include "zkr13n/lists.h"
#include "zkr13n/locks.h"
#include "zkr13n/numeric.h"
#include "zkr13n/paint.h"
#include "zkr13n/palettes.h"
#include "zkr13n/pixels.h"
#include "zkr13n/platform_types.h"
#include "zkr13n/playback.h"
#include "zkr13n/raster_component.h"
#include "zkr13n/raster_object.h"
#include "zkr13n/raster_values.h"
#include "zkr13n/region.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_paint.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/resize.h"
#include "zkr13n/rotate.h"
#include "zkr13n/rows.h"
#include "zkr13n/shear.h"
#include "zkr13n/sizing.h"
#include "zkr13n/storage.h"
#include "zkr13n/surface.h"
#include "zkr13n/views.h"
#include "zkr13n/warp.h"

#endif
