// Finds a palette for the colours of a histogram in two stages: colours that dominate get entries of their
// own, then the rest is split, box by box, along the channel in which a box is widest.
#pragma once

#include "colour/quantise/colour_box.h"

#include <span>

namespace zkr {

class PaletteBuilder {
  public:
    // colorsWanted is 1 to 256. FewPeels lets dominating colours take all entries but one; else 63 are left.
    PaletteBuilder(uint32_t colorsWanted, bool fewPeels);

    // False where memory was short.
    explicit operator bool() const { return histogram_ && boxes_ && sortOrder_; }

    // Bitmaps go in here, at least one.
    Histogram& Counts() { return histogram_; }

    // Writes colorsWanted entries, in ascending order as far as there are boxes, zeroes behind them.
    void Build(RGBQUAD* paletteOut);

    // After Build: the match table of the palette, which leads every colour that was counted to the entry of
    // its box, and all others to none. Of the run-time heap, for the caller to free.
    uint32_t* TakeMatchTable();

  private:
    void Peel();
    bool PeelOne();
    void Split();
    ColourBox& WidestBox();
    void SplitBox(ColourBox& box);
    uint32_t Partition(const ColourBox& box);
    ColourSums SumsOf(const ColourBox& box);
    std::span<int32_t> ColoursOf(const ColourBox& box);

    uint32_t colorsWanted_;
    uint32_t reserve_; // boxes that peeling leaves for splitting
    Histogram histogram_;
    ScratchBuffer<ColourBox> boxes_;
    ScratchBuffer<uint32_t> sortOrder_; // the box of each entry of the palette
    uint32_t boxCount_ = 0;
};

// Sorts entries by red, then green, then blue: each place is exchanged at once with every later entry that is
// smaller. Order, where it is not null, goes along.
void SortPalette(RGBQUAD* palette, uint32_t entries, uint32_t* order);

} // namespace zkr
