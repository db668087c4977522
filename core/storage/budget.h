// What the calling thread's thresholds amount to on this machine at this moment. Settings below zero are
// percentages.
#pragma once

#include <cstdint>

namespace zkr::storage {

// The tile size in bytes, which is also the size up to which a bitmap is always conventional.
uint64_t TileSizeInForce();

// Physical memory and page file that are available, in bytes.
uint64_t AvailableMemory();

// The same less what is to be left free.
uint64_t UsableMemory();

// The largest conventional bitmap in bytes.
uint64_t LargestConventionalSize();

// How many of a bitmap's tiles live in memory and how many file tiles may have a view at one time, given the
// bytes of one tile.
struct TileBudget {
    uint32_t ConventionalCount;
    uint32_t MaxMapped;
};
TileBudget ShareTiles(uint32_t tileCount, uint64_t tileBytes);

} // namespace zkr::storage
