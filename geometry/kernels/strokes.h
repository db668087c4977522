// The kernels that count black pixels of packed 1-bit rows in cells. Counts of each column of pixels over some rows are
// kept bit by bit: plane p holds, for each pixel of a row, the bit of worth 2^p.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

inline constexpr uint32_t MostPlanes = 8;

// All rows are as long, in words of four bytes; eight bytes more can be read behind each.
struct CountedRows {
    uint8_t* Planes[MostPlanes];
    uint8_t* Any; // where one row at least is black, and where all are
    uint8_t* All;
};

// The cells of a row: number k is the pixels from Bounds[k] to Bounds[k + 1], at most 57.
struct CountedCells {
    const uint32_t* Bounds;
    const uint64_t*
        Spreads; // for each eight cells, their pixels' places in a byte for each; null where they have none
    size_t Count;
};

// The widest cell of which a byte can hold the pixels, seven rows of them counted, where eight lie within 57 pixels.
inline constexpr uint32_t WidestSpreadCell = 7;

struct StrokeKernels {
    // Counts some rows, whose words are exclusive-ored with `flipped` to make black 1. Planes are as many as their count
    // needs.
    void (*Count[MostPlanes])(const uint8_t* const* rows, size_t count, uint32_t flipped, size_t words,
                              const CountedRows& counts);

    // Makes a packed row of pixels, black as 1: those whose cell counts at least the threshold. A cell that is black all
    // over is black.
    void (*Compare[MostPlanes])(const CountedRows& counts, const CountedCells& cells, uint32_t threshold,
                                uint8_t* target);

    // Makes two pixels of each of `bytes` packed bytes.
    void (*Double)(const uint8_t* source, uint8_t* target, size_t bytes);
};

inline constexpr uint32_t WidestCell = 57;

} // namespace zkr::kernels
