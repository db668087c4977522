// Which pixels of a bitmap's rows pass a test of their colour: rows of any depth to rows of bits.
#pragma once

#include "colour/convert/convert_plan.h"
#include "colour/convert/stages.h"
#include "colour/kernels/space_kernels.h"
#include "core/return_codes.h"
#include "regions/kernels/bit_rows.h"
#include "regions/kernels/pixel_tests.h"
#include "regions/run_store.h"

#include <optional>

namespace zkr {

// Red, green, blue or hue, saturation, value, each from its lower to its upper bound, both included. A hue whose
// bounds are exchanged goes through red; other exchanged bounds leave nothing.
struct ColourRange {
    uint32_t Lower; // as colour values
    uint32_t Upper;
    bool IsHsv = false;

    bool Takes(const RGBQUAD& entry) const;
    // Of blue, green, red, or hue, saturation, value.
    kernels::ChannelTest ChannelTest() const;
};

class PixelTest {
  public:
    explicit PixelTest(const BitmapHandle& bitmap)
        : width_(static_cast<size_t>(bitmap.Width)), bits_(static_cast<size_t>(bitmap.BitsPerPixel)) {}
    PixelTest(const PixelTest&) = delete;
    PixelTest& operator=(const PixelTest&) = delete;

    // The values that pass: up to 8 bits, and for the words of 12 and 16 bits.
    void TakeIndices(const kernels::ByteSet& indices);
    void TakeWords(const uint64_t* words);
    // The colours that pass, above 8 bits: those to which row conversion brings pixels. The levels are those of an
    // active table, or null.
    [[nodiscard]] ReturnCode TakeColours(const BitmapHandle& bitmap, const ColourRange& range,
                                         const RGBQUAD* levels);

    // A row to as many bits; what lies behind them in the last word is not defined.
    void Run(const uint8_t* row, uint64_t* bits);

  private:
    enum class Form : uint8_t { Bits, Indices, Words, Colours };

    void Unpack();
    void RunPiece(const uint8_t* pixels, size_t count, uint64_t* bits) const;

    size_t width_;
    size_t bits_;
    Form form_ = Form::Bits;
    kernels::ByteSet indices_{};
    const uint64_t* words_ = nullptr;
    kernels::ChannelTest channels_{};
    ConvertRequest request_{}; // what the plan refers to
    std::optional<ConvertPlan> plan_;
    std::optional<Stages> unpack_;
    Stages* stages_ = nullptr;             // of one of these, or of none
    kernels::SpaceKernel toHsv_ = nullptr; // behind the stages
    const kernels::BitRowKernels& bitRows_ = kernels::Chosen<kernels::BitRowKernels>();
    const kernels::PixelTestKernels& tests_ = kernels::Chosen<kernels::PixelTestKernels>();
};

// The region of the pixels that pass. It is as large as the bitmap and has nothing to do with the region that the
// bitmap has.
[[nodiscard]] ReturnCode RegionOfPixels(BitmapHandle& bitmap, PixelTest& test, OwnedRegion& result);

} // namespace zkr
