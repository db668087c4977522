// The two ends of blending: rows of the source as samples, and samples as rows of the target, converted or dithered.
#pragma once

#include "core/scratch.h"
#include "geometry/resize/row_resampler.h"
#include "zkr13n/dither.h"

#include <optional>

namespace zkr {

// What a bitmap's pixels are blended as. Alpha is blended too.
struct BlendFormat {
    int32_t SourceBits; // as row conversion counts it, 0 for gray levels
    int32_t SourceOrder;
    int32_t Bits; // likewise
    int32_t Order;
    uint32_t Flags; // of the conversion to this format
    SampleFormat Samples;
    bool IsDithered; // where the target is indexed

    static BlendFormat Of(const BitmapHandle& source, const BitmapHandle& target, bool isSpline);
    bool IsConverted() const { return SourceBits != Bits || SourceOrder != Order || Flags != 0; }
    bool IsGrayWords() const { return Bits == 16; }
};

// Rows of the source, resampled to the target's width.
class SampleRows {
  public:
    SampleRows() = default;
    SampleRows(const SampleRows&) = delete;
    SampleRows& operator=(const SampleRows&) = delete;

    [[nodiscard]] ReturnCode Make(BitmapHandle& source, const BlendFormat& format, Interpolation method,
                                  int32_t newWidth);
    [[nodiscard]] ReturnCode Fetch(int32_t row, uint8_t* target);

  private:
    BitmapHandle* source_ = nullptr;
    BlendFormat format_ = {};
    RGBQUAD palette_[256] = {};
    bool hasPalette_ = false;
    RowResampler resampler_;
    std::optional<ScratchBuffer<uint8_t>> row_;
};

class BlendedOutput {
  public:
    BlendedOutput() = default;
    ~BlendedOutput() { Z_StopDithering(&dithered_); }
    BlendedOutput(const BlendedOutput&) = delete;
    BlendedOutput& operator=(const BlendedOutput&) = delete;

    [[nodiscard]] ReturnCode Make(const BitmapHandle& source, const BitmapHandle& target,
                                  const BlendFormat& format);

    // Takes a row of samples; the target's row is then in bytes().
    [[nodiscard]] ReturnCode Take(const uint8_t* samples);
    const uint8_t* bytes() { return row_->data(); }

  private:
    enum class Way : uint8_t { Convert, Dither, Match };

    [[nodiscard]] ReturnCode StartDithering();
    [[nodiscard]] ReturnCode Convert(uint8_t* row, int32_t pixels, int32_t bits, int32_t order) const;
    void Match(uint8_t* row) const;

    const BitmapHandle* target_ = nullptr;
    BlendFormat format_ = {};
    Way way_ = Way::Convert;
    int32_t bits_ = 0, order_ = 0; // of the target, as row conversion counts them
    uint32_t flags_ = 0;
    int32_t lowBit_ = -1, highBit_ = -1;
    RGBQUAD palette_[256] = {};
    bool hasPalette_ = false;
    BitmapHandle dithered_ = {};
    std::optional<ScratchBuffer<uint8_t>> row_;
};

} // namespace zkr
