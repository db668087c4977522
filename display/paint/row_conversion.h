// From rows of a bitmap to rows that a device takes: as they are, widened, or dithered. What is to be done is looked at
// once; then rows run.
#pragma once

#include "colour/convert/stages.h"
#include "colour/dither/row_reader.h"
#include "core/scratch.h"
#include "display/paint/classification.h"
#include "display/paint/ordered_rows.h"

#include <cstdint>
#include <optional>

namespace zkr {

struct ConversionRequest {
    const BitmapHandle& Bitmap;
    PaintMethod Method; // none of coarse gray
    int32_t DeviceClass;
    uint32_t DisplayMode;
    size_t Pixels;     // of a row as it is read
    size_t PixelsLead; // so many of them stand before the first that is painted
    int64_t Rows;
};

// The paint table where it is in use, else null.
const uint8_t* PaintTableOf(const BitmapHandle& bitmap);

// What the indices of a bitmap of up to 8 bits stand for, before the paint table: a gray ramp of 256 levels without
// a palette.
void ReadPalette(const BitmapHandle& bitmap, RGBQUAD (&colours)[MostEntries]);

class RowConversion {
  public:
    explicit RowConversion(const ConversionRequest& request);
    ~RowConversion();
    RowConversion(const RowConversion&) = delete;
    RowConversion& operator=(const RowConversion&) = delete;

    [[nodiscard]] ReturnCode Prepare();

    int32_t Bits() const { return bits_; }
    bool Copies() const { return way_ == Way::Copy; } // pixels stay as they are
    // Whether a row depends on those before it.
    bool RunsForwards() const { return way_ == Way::Diffuse || way_ == Way::DiffuseThroughTable; }
    // Whether equal rows come out differently.
    bool DependsOnRow() const { return way_ != Way::Copy && way_ != Way::Stages; }

    // The pixels that are left out in front of those made: where errors are diffused they begin with the first painted.
    size_t Skipped() const { return RunsForwards() ? lead_ : 0; }

    // Rows that are best converted together: each is taken, then all are made.
    size_t RowsTogether() const;
    void Take(size_t slot, const uint8_t* pixels);
    // Row numbers count from the bitmap's first stored row.
    void Make(size_t rows, int64_t firstRow, uint8_t* target, size_t rowBytes);

  private:
    enum class Way : uint8_t { Copy, Stages, Compare, CompareAtOnce, Diffuse, DiffuseThroughTable };

    int32_t BandBits() const;
    void PlanStages();
    void PlanGray();
    [[nodiscard]] ReturnCode PrepareLevels();
    bool ComparesAtOnce(const OrderedRequest& ordered) const;
    [[nodiscard]] ReturnCode PrepareDithering();
    [[nodiscard]] ReturnCode PrepareQuads();
    void ReadQuads(const uint8_t* pixels, uint8_t* quads);
    void ApplyTable(uint8_t* quads);
    void DiffuseThroughTable(const uint8_t* quads, uint8_t* target);
    uint8_t* Quads(size_t slot) { return quads_->data() + slot * quadBytes_; }

    BitmapHandle bitmap_; // as it is read: Width is that of the rows made, its dithering run our own
    PaintMethod method_;
    int32_t class_;
    uint32_t mode_;
    size_t pixels_;
    size_t lead_;
    int64_t rows_;
    const uint8_t* table_;
    int32_t bits_;
    Way way_ = Way::Copy;
    const uint8_t* taken_ = nullptr;
    bool mapsBytes_ = false; // of the rows that the stages have made
    Stages stages_;
    std::optional<ScratchBuffer<RGBQUAD>> levels_;
    // Rows as pixels of four bytes for dithering, and the record that dithering sees of them.
    std::optional<ScratchBuffer<uint8_t>> quads_;
    size_t quadBytes_ = 0;
    BitmapHandle quadBitmap_{};
    std::optional<ScratchBuffer<uint8_t>> mapped_; // a row of 24 bits that the table has been applied to
    std::optional<ScratchBuffer<int32_t>> errors_;
    std::optional<OrderedRows> ordered_;
};

} // namespace zkr
