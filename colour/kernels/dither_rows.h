// The methods of dithering, and the kernels that are made from them. They work on pixels of
// four bytes (blue, green, red and one that is ignored) and give one index a byte.
//
// Errors are kept for three channels at a time: a cell is four 32-bit numbers, blue, green, red and one
// without meaning. A cell holds the sum of error times weight of all that reached its pixel; it is divided
// once, when the pixel comes.
#pragma once

#include "colour/kernels/thresholds.h"
#include "zkr13n/platform_types.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace zkr::kernels {

inline constexpr int32_t FarthestTap = 3;
inline constexpr int32_t MostErrorRows = 3;

// Where the error of a pixel goes: Weights[row][column + FarthestTap], of the pixel's own row and those
// below. Errors below the pixel's own row wait in Rows rows of cells, which have Margin cells more at each
// end.
struct Taps {
    int32_t Divisor;
    int32_t Rows;
    int32_t Margin;
    int32_t Weights[1 + MostErrorRows][2 * FarthestTap + 1];

    constexpr int32_t Weight(int32_t row, int32_t column) const { return Weights[row][column + FarthestTap]; }
};

// A method diffuses errors, or compares with thresholds, or takes the nearest colour.
struct DitherMethod {
    Taps Diffusion = {};                         // a divisor of 0 where nothing is diffused
    const ThresholdMatrix* Thresholds = nullptr; // null where nothing is compared

    constexpr bool Diffuses() const { return Diffusion.Divisor != 0; }
    constexpr bool IsOrdered() const { return Thresholds != nullptr; }
};

// By number: the nearest colour; Floyd and Steinberg (1976), Stucki (1981), Burkes (1988), Sierra (1989), Stevenson and
// Arce (1985), Jarvis, Judice and Ninke (1976); dispersed dots, clustered dots.
inline constexpr DitherMethod DitherMethods[] = {
    {},
    {.Diffusion = {16, 1, 1, {{0, 0, 0, 0, 7}, {0, 0, 3, 5, 1}}}},
    {.Diffusion = {42, 2, 2, {{0, 0, 0, 0, 8, 4}, {0, 2, 4, 8, 4, 2}, {0, 1, 2, 4, 2, 1}}}},
    {.Diffusion = {32, 1, 2, {{0, 0, 0, 0, 8, 4}, {0, 2, 4, 8, 4, 2}}}},
    {.Diffusion = {32, 2, 2, {{0, 0, 0, 0, 5, 3}, {0, 2, 4, 5, 4, 2}, {0, 0, 2, 3, 2, 0}}}},
    {.Diffusion = {200,
                   3,
                   3,
                   {{0, 0, 0, 0, 0, 32, 0},
                    {12, 0, 26, 0, 30, 0, 16},
                    {0, 12, 0, 26, 0, 12, 0},
                    {5, 0, 12, 0, 12, 0, 5}}}},
    {.Diffusion = {48, 2, 2, {{0, 0, 0, 0, 7, 5}, {0, 3, 5, 7, 5, 3}, {0, 1, 3, 5, 3, 1}}}},
    {.Thresholds = &DispersedDots},
    {.Thresholds = &ClusteredDots},
};
inline constexpr size_t MethodCount = std::size(DitherMethods);

// How a colour becomes an index.
enum class IndexRule : uint8_t {
    TwoLevels,  // the uppermost bit of its gray
    FourLevels, // the two uppermost bits of its gray
    Slices,     // the uppermost bits of its channels, side by side
    Cube,       // which fifty-first of its channels, as digits of base 6
    Table,      // looked up by the five upper bits of each channel
    Count
};
inline constexpr size_t IndexRules = static_cast<size_t>(IndexRule::Count);

// The bits that a channel gives to an index: those of Mask after shifting right.
struct Slice {
    uint32_t Shift; // of the whole pixel
    uint32_t Mask;
};

struct IndexParameters {
    Slice Slices[3];
    uint32_t NonZero; // set in an index of slices that is not 0

    // By red << 10 | green << 5 | blue in five bits each; an index, or UnknownIndex where Find has not been
    // asked yet or gave that.
    uint8_t* Known;
    uint8_t (*Find)(void* context, uint32_t cell);
    void* FindContext;

    // By index: its colour, and the same as a cell, times the weight of the tap to the next pixel, negative.
    const RGBQUAD* Colours;
    int32_t (*Weighted)[4];
};
inline constexpr uint8_t UnknownIndex = 255;
inline constexpr size_t TableCells = 32768;

// What is carried from pixel to pixel of a row.
struct ErrorState {
    int32_t Error[4];                  // of the next pixel, divided
    int32_t Sums[FarthestTap - 1][4];  // of the pixels behind it, undivided, as far as the taps reach
    int32_t (*Rows[MostErrorRows])[4]; // the cell of the next pixel in the rows below, uppermost first
};

// The pixels of a row that are in work at a time; a multiple of 8, so that every piece of a row begins on a
// byte.
inline constexpr size_t DitherPiece = 512;

// A row under way, with its piece.
struct DitheredRow {
    ErrorState Errors;
    uint8_t Quads[(DitherPiece + 1) * 4];
    uint8_t Indices[DitherPiece];
};

// Rows of a picture may be under way together, each so many pixels behind the row above it that their taps do
// not meet: what a row leaves in the cells is there when the next one comes. Again a multiple of 8.
inline constexpr size_t RowLag = 8;
static_assert(RowLag > 2 * FarthestTap);
inline constexpr size_t MostRowsTogether = 4;

using IndexKernel = void (*)(const uint8_t* quads, uint8_t* indices, size_t pixels, const IndexParameters&);
// For one row, or for rows that follow each other at the lag. Behind the last pixel there is one more, which is
// 0.
using DiffuseKernel = void (*)(DitheredRow* rows, size_t pixels, const IndexParameters&);

// Thresholds come as patterns of 32 bytes that repeat along the row.
inline constexpr size_t PatternBytes = 32;

struct DitherKernels {
    IndexKernel Index[IndexRules];
    DiffuseKernel Diffuse[MethodCount][IndexRules]; // null where a method does not diffuse

    // The same for rows together; 1 where they are to go one by one, and there is no kernel.
    size_t RowsTogether[MethodCount];
    DiffuseKernel DiffuseTogether[MethodCount][IndexRules];

    // Adds up and subtracts down, one of which is 0 in each place; bytes stay within 0 to 255.
    void (*Shift)(uint8_t* bytes, size_t count, const uint8_t* up, const uint8_t* down);

    // Makes bytes above their threshold mark, others 0.
    void (*Compare)(uint8_t* bytes, size_t count, const uint8_t* thresholds, uint8_t mark);
};

} // namespace zkr::kernels
