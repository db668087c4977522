// Rows of any depth as 15-bit colours: those that dithering reads, without the lower three bits of their
// channels.
#pragma once

#include "colour/convert/stages.h"
#include "colour/gray/gray_window.h"
#include "colour/gray/level_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zkr {

class KeyReader {
  public:
    explicit KeyReader(const BitmapHandle& bitmap);
    KeyReader(const KeyReader&) = delete;
    KeyReader& operator=(const KeyReader&) = delete;

    // False where memory was short.
    explicit operator bool() const { return static_cast<bool>(levels_); }

    // Calls take(keys, pixels) for one piece of the row after the other. Bit 15 of a key has no meaning.
    template <typename Take> void Read(const uint8_t* row, Take take) {
        for (size_t first = 0; first < width_; first += Stages::PiecePixels) {
            const size_t pixels = std::min(Stages::PiecePixels, width_ - first);
            const uint8_t* keys = stages_.Read(row, first, pixels);
            take(reinterpret_cast<const uint16_t*>(keys), pixels);
        }
    }

  private:
    void PlanIndices(int32_t bits);
    void PlanGray(int32_t bits);

    size_t width_;
    GrayWindow window_;
    LevelTable levels_;
    RGBQUAD palette_[256] = {};
    Stages stages_;
};

} // namespace zkr
