// The state of a dithering run, which hangs off the DitherData field of the bitmap that is read.
#pragma once

#include "colour/kernels/dither_rows.h"
#include "zkr13n/dither.h"

#include <cstdint>

namespace zkr {

// How the target palette is matched. The fixed palettes need no search: their indices are cut out of the
// bits of a colour.
enum PaletteKind : int32_t {
    PaletteOwnTable,  // any palette, with a match table of the run's own
    PaletteUserTable, // with a match table of the caller's
    PaletteFixed1,
    PaletteFixed2,
    PaletteFixed3,
    PaletteFixed4,
    PaletteFixed5,
    PaletteFixed6,
    PaletteFixed7,
    PaletteFixed8,
    PaletteCube
};

struct DitherState {
    uint32_t LineCounter; // rows done by an ordered method
    uint32_t TargetColors;
    RGBQUAD SourcePalette[256];
    RGBQUAD TargetPalette[256]; // zeroes behind TargetColors entries
    uint32_t* MatchTable; // position in MatchPalette + 1, 0 where not looked up; null for fixed palettes
    int32_t SourceBits;
    int32_t Method;
    int32_t PaletteKind;
    int32_t TargetBits;
    int32_t ErrorRowCount;
    int32_t ErrorRowLength; // cells, margins included
    // The first cell of each row. The channels lie together: a channel's next cell is four numbers on.
    int32_t* RedRows[kernels::MostErrorRows];
    int32_t* GreenRows[kernels::MostErrorRows];
    int32_t* BlueRows[kernels::MostErrorRows];
    RGBQUAD MatchPalette[256]; // entries that may be chosen, with their index in the fourth byte
    uint32_t MatchColors;
    int32_t GrayBits;
    int32_t GrayMask;
    int32_t GrayShift;

    // What the kernels need, made from the above.
    kernels::IndexRule Rule;
    kernels::IndexParameters Index;
    int32_t Weighted[256][4];
    uint8_t Known[kernels::TableCells];
};

inline bool UsesMatchTable(const DitherState& state) {
    return state.PaletteKind == PaletteOwnTable || state.PaletteKind == PaletteUserTable;
}
inline const kernels::DitherMethod& MethodOf(const DitherState& state) {
    return kernels::DitherMethods[state.Method];
}

// Makes the parts of a state that say which index a colour gets, from palettes, kind and method.
void PrepareIndex(DitherState& state);

// Dithers one row of pixels of the bitmap's format into packed indices.
void DitherRow(DitherState& state, const BitmapHandle& bitmap, const uint8_t* source, uint8_t* target);

// How many rows are best dithered together, 1 to kernels::MostRowsTogether, and the same for so many rows, or fewer,
// that follow each other. Nothing is left otherwise than by one after the other.
size_t RowsTogether(const DitherState& state);
void DitherRowsTogether(DitherState& state, const BitmapHandle& bitmap, const uint8_t* sources,
                        uint8_t* targets, size_t targetBytes, size_t count);

} // namespace zkr
