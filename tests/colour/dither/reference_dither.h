// Dithering written out plainly: errors are kept for every pixel of the picture, undivided, and nothing is
// carried from pixel to pixel. Shares nothing with the library.
#pragma once

#include "colour/reference_palettes.h"

#include "zkr13n/dither.h"

#include <vector>

namespace zkr::test {

// A run as it is asked for.
struct DitherRequest {
    BitmapHandle Bitmap = {};
    std::vector<RGBQUAD> SourcePalette; // up to 8 bits: 2^bits entries
    std::vector<RGBQUAD> Levels;        // the level table, if there is one
    std::vector<RGBQUAD> Palette;       // empty for none
    uint32_t Colors = 2;
    int TargetBits = 1;
    std::vector<uint32_t> MatchTable; // the user's, if there is one
};

class ReferenceDither {
  public:
    explicit ReferenceDither(const DitherRequest& request);

    // The indices of the next row, which may be narrower than the one before.
    std::vector<unsigned> Line(const uint8_t* row, int width);
    const std::vector<uint32_t>& MatchTable() const { return table_; }

  private:
    using Triple = std::vector<int>; // red, green, blue
    void MakeMatchPalette();
    uint32_t& CellOf(int red, int green, int blue);
    Triple Read(const uint8_t* row, int x) const;
    unsigned IndexOf(const Triple& c);
    unsigned MatchedIndex(const Triple& c);
    unsigned OrderedIndex(const Triple& c, int m);

    DitherRequest request_;
    int kind_;
    std::vector<RGBQUAD> target_ = std::vector<RGBQUAD>(256);
    std::vector<RGBQUAD> match_;
    std::vector<unsigned> matchIndex_;
    std::vector<uint32_t> table_;
    int y_ = 0;
    std::vector<std::vector<Triple>> sums_; // by row from the present one, then by column
};

} // namespace zkr::test
