// Rows of a bitmap in the format in which they are resampled, a stretch of columns at a time.
#pragma once

#include "geometry/resize/row_resampler.h"
#include "zkr13n/resize.h"

namespace zkr {

// What a bitmap's pixels become before they are resampled: 8-bit gray, 24 bits, 16-bit gray words or 48 bits.
struct WorkFormat {
    int32_t SourceBits; // as row conversion counts it, 0 for gray levels
    int32_t SourceOrder;
    int32_t Bits; // likewise, 0 for gray levels
    int32_t Order;
    SampleFormat Samples;

    static WorkFormat Of(const BitmapHandle& bitmap);
    bool IsGrayWords() const { return Bits == 16; }
    bool IsConverted() const {
        return SourceBits != Bits || (Bits != 0 && SourceOrder != Order) || IsGrayWords();
    }
    int32_t StoredBits() const { return Bits == 0 ? 8 : Bits; }
};

struct RowReader {
    ResizeReadRow Read; // null reads the bitmap
    void* Data;
};

class WorkRows {
  public:
    WorkRows() = default;
    WorkRows(const WorkRows&) = delete;
    WorkRows& operator=(const WorkRows&) = delete;

    [[nodiscard]] ReturnCode Make(BitmapHandle* bitmap, RowReader reader, Interpolation method,
                                  int32_t newWidth);

    const WorkFormat& format() const { return format_; }

    // Chooses the columns of the target that rows are made of, 1 or more.
    void Choose(int32_t first, int32_t count);

    // Reads a row of the bitmap and makes the chosen columns of it.
    [[nodiscard]] ReturnCode Fetch(int32_t row, uint8_t* target);

    // Entries of the bitmap's palette, null for none.
    const RGBQUAD* palette() const { return palette_; }

  private:
    [[nodiscard]] ReturnCode MakeTables();
    [[nodiscard]] ReturnCode Read(int32_t row, const uint8_t*& pixels, int32_t& column);
    [[nodiscard]] ReturnCode Convert(uint8_t* row, int32_t pixels) const;

    BitmapHandle* bitmap_ = nullptr;
    RowReader reader_ = {};
    WorkFormat format_ = {};
    int32_t depth_ = 0, width_ = 0, height_ = 0;
    bool isPacked_ = false; // nearest: resampled first, converted afterwards
    RowResampler resampler_;
    int32_t count_ = 0;
    int32_t fetchColumn_ = 0, fetchPixels_ = 0;
    std::optional<ScratchBuffer<uint8_t>> raw_;

    RGBQUAD entries_[256] = {};
    const RGBQUAD* palette_ = nullptr;
    std::optional<ScratchBuffer<RGBQUAD>> levels_;
    const RGBQUAD* conversionTable_ = nullptr; // palette or level table
    uint32_t flags_ = 0;                       // Z_CONVERT_...
    int32_t lowBit_ = -1, highBit_ = -1;
};

} // namespace zkr
