// The active level table of a gray bitmap of 12 or 16 bits: searched, and long enough for every value of a window.
#pragma once

#include "colour/pixels/colour_value.h"
#include "core/predicates.h"
#include "core/scratch.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <optional>

namespace zkr {

// The entry of the active level table that is nearest to a colour, among so many of the first.
inline uint32_t NearestLevel(const BitmapHandle& bitmap, ColourValue colour, uint32_t most = 0x7FFFFFFF) {
    const auto entries = static_cast<int32_t>(std::min(bitmap.LevelLUTLength, most));
    return static_cast<uint32_t>(
        Z_FindPaletteIndex(bitmap.LevelLUT, entries, colour.Red(), colour.Green(), colour.Blue()));
}

// Values behind the end of a table that is too short are black.
class LevelTable {
  public:
    // Test with operator bool: the memory for a table that is too short may be missing.
    LevelTable(const BitmapHandle& bitmap, uint32_t mask) {
        if (!HasGrayWords(bitmap) || !HasActiveLevelTable(bitmap)) return;
        entries_ = bitmap.LevelLUT;
        const size_t wanted = size_t{mask} + 1;
        if (bitmap.LevelLUTLength >= wanted) return;
        padded_.emplace(wanted);
        entries_ = padded_->data();
        if (entries_ == nullptr) return;
        std::copy_n(bitmap.LevelLUT, bitmap.LevelLUTLength, padded_->data());
        std::fill(padded_->data() + bitmap.LevelLUTLength, padded_->data() + wanted, RGBQUAD{});
    }
    LevelTable(const LevelTable&) = delete;
    LevelTable& operator=(const LevelTable&) = delete;

    explicit operator bool() const { return !padded_ || *padded_; }
    const RGBQUAD* Entries() const { return entries_; } // null without a table

  private:
    const RGBQUAD* entries_ = nullptr;
    std::optional<ScratchBuffer<RGBQUAD>> padded_;
};

} // namespace zkr
