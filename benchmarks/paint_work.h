// The works of painting, all on memory surfaces.
#pragma once

#include <cstdint>
#include <vector>

namespace bench {

enum PaintWork {
    PaintTo32 = 5100,
    PaintTo24,
    PaintScaledTo32,
    PaintPageToGray,
    PaintOrderedTo8,
    PaintOrderedTo4,
    PaintDiffusedTo8,
    PaintTableOrderedTo8,
    PaintTableOrderedTo4,
    PaintTableDiffusedTo8
};

// The photograph scaled, and the page at a quarter.
inline constexpr int32_t PaintedWidth = 1516, PaintedHeight = 1137;
inline constexpr int32_t PaintedPageWidth = 2480, PaintedPageHeight = 3508;

// The memory that a picture of the photograph's width is painted into, rows without padding.
std::vector<uint8_t>& PaintedMemory();

} // namespace bench
