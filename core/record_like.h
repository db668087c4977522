// A new record that is like another one: of dimensions and a depth of its own, with the other's view and resolutions,
// and with what else is asked for. Storage, palette and region come afterwards.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr {

namespace carry {

inline constexpr uint32_t RegionUnclipped = 1 << 0; // of a record that gets the region, too
inline constexpr uint32_t Form = 1 << 1;            // order, sign, and the flags of runs, strips and files
inline constexpr uint32_t Playback = 1
                                     << 2; // as it reads with the palette that the record has, which is none

} // namespace carry

// Whatever the record held is overwritten. The result is that of Z_InitBitmap; a depth that is refused leaves a cleared
// record, which takes over the same things.
[[nodiscard]] ReturnCode InitRecordLike(BitmapHandle& record, const BitmapHandle& source, int32_t width,
                                        int32_t height, int32_t bitsPerPixel, uint32_t carried);

// The memory type that makes storage of the form that a record's flags tell.
int32_t MemoryTypeOfForm(const BitmapHandle& record);

// Gives a record storage where the source has its own: in a file, or else in memory, without runs and strips.
[[nodiscard]] ReturnCode AllocatePlainLike(BitmapHandle& record, const BitmapHandle& source);

} // namespace zkr
