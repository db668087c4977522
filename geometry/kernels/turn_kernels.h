// Kernels that make columns of rows: the transposition of a block of pixels. Which of the eight ways of turning and
// mirroring it is, the signs of the strides tell.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

// Pixel (x, y) of the source becomes pixel (y, x) of the target. Both blocks begin at the first bit of a byte. The
// bits of the target behind the last pixel of a row's last byte become 0.
struct TurnBlock {
    const uint8_t* Source;
    ptrdiff_t SourceStride; // bytes from one row to the next
    uint8_t* Target;
    ptrdiff_t TargetStride;
    size_t Columns; // of the source
    size_t Rows;
    int32_t Bits; // of a pixel
    // A target that is larger than the caches and need not be in them afterwards is written by whole lines of cache. What
    // of a row is not yet a line waits here for the block that goes on below, LineBytes for each row. Null otherwise.
    uint8_t* Pending = nullptr;
    bool IsFirst = false; // of those blocks
};

inline constexpr size_t LineBytes = 64;

struct TurnKernels {
    void (*Turn1)(const TurnBlock&);
    void (*Turn4)(const TurnBlock&);
    void (*Turn8)(const TurnBlock&);
    void (*Turn16)(const TurnBlock&);
    void (*Turn24)(const TurnBlock&);
    void (*Turn32)(const TurnBlock&);
    void (*Turn48)(const TurnBlock&);
    void (*Turn64)(const TurnBlock&);
    void (*TurnFields)(const TurnBlock&); // any depth below 8, and 12
    int32_t StreamedRows;                 // of blocks that are streamed at 24 bits and more; 0 where none are

    // The kernel of a depth.
    auto Of(int32_t bits) const {
        switch (bits) {
        case 1: return Turn1;
        case 4: return Turn4;
        case 8: return Turn8;
        case 16: return Turn16;
        case 24: return Turn24;
        case 32: return Turn32;
        case 48: return Turn48;
        case 64: return Turn64;
        default: return TurnFields;
        }
    }
};

} // namespace zkr::kernels
