// Rows of nearest pixels, packed as they are.
#pragma once

#include "core/return_codes.h"
#include "core/scratch.h"
#include "geometry/resize/stepping.h"

#include <optional>

namespace zkr {

class NearestRow {
  public:
    NearestRow() = default;
    NearestRow(const NearestRow&) = delete;
    NearestRow& operator=(const NearestRow&) = delete;

    [[nodiscard]] ReturnCode Make(int32_t bitsPerPixel, int32_t oldWidth, int32_t newWidth);

    // Makes `count` pixels from `first` on. The source begins with pixel `base` of the row, which begins on a byte, and
    // has so many bytes.
    void Run(const uint8_t* source, int32_t base, size_t sourceBytes, int32_t first, int32_t count,
             uint8_t* target);

  private:
    using Picker = void (*)(const uint8_t* source, uint32_t base, size_t sourceBytes, const uint32_t* places,
                            size_t count, uint8_t* target);

    static Picker PickerOf(int32_t bitsPerPixel);

    int32_t bits_ = 0, oldWidth_ = 0, newWidth_ = 0;
    Picker pick_ = nullptr;                         // for pixels of whole bytes
    std::optional<ScratchBuffer<uint32_t>> places_; // the source pixels of a whole row
};

} // namespace zkr
