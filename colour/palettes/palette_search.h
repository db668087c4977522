// The nearest entries of one palette for whole rows of colours. The colour space is cut into cubes of 8 x 8 x
// 8 colours; a cube that is met often enough gets a table of its winners, worked out at once from the few
// entries that can win in it, and its colours are then looked up. Pictures touch few cubes, so that the
// tables stay small: 512 bytes a cube, 16 MB if a picture had every colour there is.
//
// The list of candidates of a region is the locally sorted search of Paul S. Heckbert (1982).
//
// Exact: the same indices as Z_FindPaletteIndex. One object serves one thread.
#pragma once

#include "colour/kernels/palette_match.h"
#include "kernels/family.h"

namespace zkr {

class PaletteSearch {
  public:
    PaletteSearch() = default;
    ~PaletteSearch();
    PaletteSearch(const PaletteSearch&) = delete;
    PaletteSearch& operator=(const PaletteSearch&) = delete;

    // Starts over with a palette of 1 to 256 entries, which is copied.
    void Prepare(const RGBQUAD* palette, int32_t entries,
                 const kernels::MatchKernels& kernels = kernels::Chosen<kernels::MatchKernels>());
    bool IsFor(const RGBQUAD* palette, int32_t entries) const;

    // Pixels of four bytes: blue, green, red and one that is ignored.
    void MatchRow(const uint8_t* quads, uint8_t* indices, size_t pixels);
    int32_t Match(int32_t red, int32_t green, int32_t blue);

  private:
    bool MakeCube(int32_t cube);
    bool MakeRoom();

    const kernels::MatchKernels* kernels_ = nullptr;
    uint8_t* winners_ = nullptr; // of the cubes made so far, in the order in which they were made
    int32_t cubes_ = 0;          // made so far
    int32_t room_ = 0;           // cubes that winners_ can hold
    int32_t entries_ = 0;
    RGBQUAD palette_[256];
    uint16_t blocks_[kernels::CubesInSpace]; // place in winners_, or the searches counted up from UnknownCube
};

// The calling thread's search, kept for the palette of the last call. Null for more than 256 entries or none,
// or when there is no memory for it; the caller then asks Z_FindPaletteIndex for each pixel.
PaletteSearch* PaletteSearchFor(const RGBQUAD* palette, int32_t entries);

} // namespace zkr
