// What becomes of working rows: pixels of the format that a caller wants, converted or dithered.
#pragma once

#include "core/scratch.h"
#include "geometry/resize/work_rows.h"
#include "zkr13n/dither.h"

#include <optional>

namespace zkr {

struct OutputRequest {
    int32_t Width, Height;
    int32_t Bits; // below 1: those of the source
    const RGBQUAD* Palette;
    uint32_t Colors;
    uint32_t Flags; // RESIZE_...
};

class OutputRows {
  public:
    OutputRows() = default;
    ~OutputRows() { Z_StopDithering(&dithered_); }
    OutputRows(const OutputRows&) = delete;
    OutputRows& operator=(const OutputRows&) = delete;

    [[nodiscard]] ReturnCode Make(const BitmapHandle& source, const WorkRows& work,
                                  const OutputRequest& request);

    // Bits of an output pixel.
    int32_t bits() const { return bits_ == 0 ? 8 : bits_; }

    // Writes so many bytes behind each other, with the pixels in front; where they are dithered the pixels alone.
    [[nodiscard]] ReturnCode Write(const uint8_t* row, int32_t pixels, uint8_t* target, uint32_t bytes);

  private:
    void ChooseForm(const BitmapHandle& source, const OutputRequest& request);
    [[nodiscard]] ReturnCode StartDithering(const BitmapHandle& source, const WorkRows& work,
                                            const OutputRequest& request);
    [[nodiscard]] ReturnCode Convert(uint8_t* row, int32_t pixels) const;
    bool IsConverted() const { return bits_ != work_.Bits || (bits_ != 0 && order_ != work_.Order); }

    WorkFormat work_ = {};
    bool isGraySource_ = false;
    bool isDithered_ = false;
    int32_t bits_ = 0; // 0 for gray levels
    int32_t order_ = 0;
    RGBQUAD palette_[256] = {};
    bool hasPalette_ = false;
    BitmapHandle dithered_ = {};
    std::optional<ScratchBuffer<uint8_t>> row_;
};

} // namespace zkr
