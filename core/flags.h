// The bits of BitmapHandle.Flags under the names that the library's own code uses, and the storage classes
// that they stand for.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr {

namespace flag {

inline constexpr uint32_t Allocated = Z_FLAG_ALLOCATED;
inline constexpr uint32_t Memory = Z_FLAG_MEMORY;
inline constexpr uint32_t Disk = Z_FLAG_DISK;
inline constexpr uint32_t Locked = Z_FLAG_LOCKED;
inline constexpr uint32_t PlaybackWaitInput = Z_FLAG_PLAYBACK_WAIT_INPUT;
inline constexpr uint32_t PlaybackTransparency = Z_FLAG_PLAYBACK_TRANSPARENCY;
inline constexpr uint32_t Compressed = Z_FLAG_COMPRESSED;
inline constexpr uint32_t Signed = Z_FLAG_SIGNED;
inline constexpr uint32_t UserData = Z_FLAG_USER_DATA;
inline constexpr uint32_t LevelLUTActive = Z_FLAG_LEVEL_LUT_ACTIVE;
inline constexpr uint32_t Global = Z_FLAG_GLOBAL;
inline constexpr uint32_t PaintLUTActive = Z_FLAG_PAINT_LUT_ACTIVE;
inline constexpr uint32_t Tiled = Z_FLAG_TILED;
inline constexpr uint32_t SuperCompressed = Z_FLAG_SUPER_COMPRESSED;
inline constexpr uint32_t RegionUnclipped = Z_FLAG_REGION_UNCLIPPED;
inline constexpr uint32_t PaletteIsBlock = Z_FLAG_PALETTE_IS_BLOCK;

} // namespace flag

inline bool HasFlag(const BitmapHandle& bitmap, uint32_t flags) {
    return (bitmap.Flags & flags) != 0;
}

} // namespace zkr
