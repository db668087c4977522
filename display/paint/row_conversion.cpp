#include "display/paint/row_conversion.h"

#include "colour/dither/dither_state.h"
#include "colour/gray/gray_window.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/dither.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

using kernels::Source;
using kernels::Target;

namespace {

constexpr std::array<uint8_t, 2> WhiteBits = {0, 255}, BlackBits = {255, 0};

int32_t DitheringMethodOf(uint32_t displayMode) {
    if ((displayMode & DISPLAY_ORDERED) == 0) return DitherFloydSteinberg;
    return (displayMode & DISPLAY_CLUSTERED) != 0 ? DitherClustered : DitherOrdered;
}

DitherState& RunOf(const BitmapHandle& bitmap) {
    return *static_cast<DitherState*>(bitmap.DitherData);
}

} // namespace

const uint8_t* PaintTableOf(const BitmapHandle& bitmap) {
    return HasFlag(bitmap, flag::PaintLUTActive) ? bitmap.PaintLUT : nullptr;
}

void ReadPalette(const BitmapHandle& bitmap, RGBQUAD (&colours)[MostEntries]) {
    std::fill(std::begin(colours), std::end(colours), RGBQUAD{});
    if (bitmap.Palette != nullptr) {
        Z_GetBitmapPaletteEntries(&bitmap, 0, MostEntries, colours);
        return;
    }
    for (size_t i = 0; i < MostEntries; ++i) {
        const auto level = static_cast<uint8_t>(i);
        colours[i] = {level, level, level, 0};
    }
}

RowConversion::RowConversion(const ConversionRequest& request)
    : bitmap_(WithLevelTableActive(request.Bitmap)), method_(request.Method), class_(request.DeviceClass),
      mode_(request.DisplayMode), pixels_(request.Pixels), lead_(request.PixelsLead), rows_(request.Rows),
      table_(PaintTableOf(request.Bitmap)), bits_(BandBits()), stages_(request.Bitmap.BitsPerPixel) {
    bitmap_.Width = static_cast<int32_t>(pixels_);
    bitmap_.DitheringMethod = DitheringMethodOf(mode_);
    bitmap_.DitherData = nullptr;
    // Blue comes first unless the order says otherwise, whichever road the pixels take.
    if (!HasGrayWords(bitmap_)) bitmap_.Order = IsRedFirst(bitmap_.Order) ? Z_ORDER_RGB : Z_ORDER_BGR;
}

RowConversion::~RowConversion() {
    Z_StopDithering(&bitmap_);
}

int32_t RowConversion::BandBits() const {
    if (method_ == PaintMethod::Dithered) return class_;
    if (method_ == PaintMethod::ScaleToGray || method_ == PaintMethod::ScaleToGrayReversed) return 8;
    const int32_t bits = bitmap_.BitsPerPixel;
    return bits == 1 ? 1 : bits <= 4 ? 4 : bits <= 8 ? 8 : 24;
}

ReturnCode RowConversion::Prepare() {
    if (HasGrayWords(bitmap_) && bitmap_.LevelLUT != nullptr) {
        const ReturnCode status = PrepareLevels();
        if (status != code::Success) return status;
    }
    if (method_ == PaintMethod::Dithered) return PrepareDithering();
    PlanStages();
    return code::Success;
}

// A table as long as the window reaches. Levels that the bitmap's own does not have are black.
ReturnCode RowConversion::PrepareLevels() {
    const int32_t bits = bitmap_.BitsPerPixel;
    const GrayWindow window = MakeGrayWindow(bits, bits, bitmap_.LowBit, bitmap_.HighBit);
    const size_t reached = size_t{window.Mask} + 1;
    if (bitmap_.LevelLUTLength >= reached) return code::Success;
    if (!levels_.emplace(reached)) return code::OutOfMemory;
    std::fill_n(levels_->data(), reached, RGBQUAD{});
    std::copy_n(bitmap_.LevelLUT, bitmap_.LevelLUTLength, levels_->data());
    bitmap_.LevelLUT = levels_->data();
    bitmap_.LevelLUTLength = static_cast<uint32_t>(reached);
    return code::Success;
}

void RowConversion::PlanStages() {
    const int32_t bits = bitmap_.BitsPerPixel;
    if (method_ == PaintMethod::ScaleToGray || method_ == PaintMethod::ScaleToGrayReversed) {
        stages_.AddUnpack(1, (method_ == PaintMethod::ScaleToGray ? WhiteBits : BlackBits).data());
    } else if (bits < MostIndexedBits && bits != bits_) {
        stages_.AddUnpack(bits);
        stages_.AddPack(bits_);
    } else if (bits > MostIndexedBits) {
        const bool redFirst = bitmap_.Order == Z_ORDER_RGB;
        if (HasGrayWords(bitmap_))
            PlanGray();
        else if (bits != 24 || redFirst)
            stages_.Add(kernels::ColourForm(bits), Target::Colour24, {.SourceIsRgb = redFirst});
        mapsBytes_ = table_ != nullptr;
    }
    way_ = stages_.Count() > 0 || mapsBytes_ ? Way::Stages : Way::Copy;
}

void RowConversion::PlanGray() {
    const int32_t bits = bitmap_.BitsPerPixel;
    const bool lookup = bitmap_.LevelLUT != nullptr;
    const GrayWindow window = MakeGrayWindow(bits, lookup ? bits : 8, bitmap_.LowBit, bitmap_.HighBit);
    stages_.AddUnpack(bits);
    if (lookup) {
        stages_.Add(Source::GrayLookup, Target::Colour24,
                    {.Table = bitmap_.LevelLUT, .Mask = window.Mask, .Shift = window.Shift});
        return;
    }
    stages_.Add(
        Source::GrayValue, Target::Gray8,
        {.Mask = window.Mask, .Shift = window.Shift, .Scale = kernels::StretchGray(0xFF, window.Mask)});
    stages_.Add(Source::Gray8, Target::Colour24);
}

// Tables for 8 bits are worth making for pictures that are larger than they.
bool RowConversion::ComparesAtOnce(const OrderedRequest& ordered) const {
    constexpr int64_t worthTables = 1 << 16;
    return bitmap_.BitsPerPixel == 24 && OrderedRows::Serves(ordered) &&
           (class_ == 4 || static_cast<int64_t>(pixels_) >= worthTables / rows_);
}

ReturnCode RowConversion::PrepareDithering() {
    const bool ordered = (mode_ & DISPLAY_ORDERED) != 0;
    if (ordered) {
        const OrderedRequest request = {class_, *kernels::DitherMethods[bitmap_.DitheringMethod].Thresholds,
                                        table_, bitmap_.Order == Z_ORDER_RGB, (mode_ & DISPLAY_CUBE) != 0};
        if (ComparesAtOnce(request)) {
            way_ = Way::CompareAtOnce;
            return ordered_.emplace(request).Prepare();
        }
    }
    way_ = ordered                            ? Way::Compare
           : table_ != nullptr && class_ == 1 ? Way::DiffuseThroughTable
                                              : Way::Diffuse;
    bitmap_.Width -= static_cast<int32_t>(Skipped());
    const std::span<const RGBQUAD> palette = DitheringPalette(class_, mode_);
    const auto colours = static_cast<uint32_t>(palette.size());
    const ReturnCode status = Z_StartDitheringExt(&bitmap_, palette.data(), colours, class_, nullptr);
    if (status != code::Success) return status;
    DitherState& run = RunOf(bitmap_);
    if (bitmap_.BitsPerPixel <= MostIndexedBits) ReadPalette(bitmap_, run.SourcePalette);
    if (HasGrayWords(bitmap_)) {
        const int32_t bits = bitmap_.BitsPerPixel, most = bitmap_.LevelLUT != nullptr ? bits : 8;
        const GrayWindow window = MakeGrayWindow(bits, most, bitmap_.LowBit, bitmap_.HighBit);
        run.GrayMask = static_cast<int32_t>(window.Mask);
        run.GrayShift = static_cast<int32_t>(window.Shift);
    }
    return ordered && table_ == nullptr ? code::Success : PrepareQuads();
}

ReturnCode RowConversion::PrepareQuads() {
    if (pixels_ >= UINT32_MAX / 64) return code::OutOfMemory;
    quadBytes_ = pixels_ * 4;
    if (!quads_.emplace(quadBytes_ * RowsTogether())) return code::OutOfMemory;
    quadBitmap_ = bitmap_;
    quadBitmap_.BitsPerPixel = 32;
    quadBitmap_.Order = Z_ORDER_BGR;
    quadBitmap_.BytesPerLine = static_cast<uint32_t>(quadBytes_);
    quadBitmap_.LevelLUT = nullptr;
    const bool mapsFirst = table_ != nullptr && class_ != 1 && bitmap_.BitsPerPixel == 24;
    if (mapsFirst && !mapped_.emplace(pixels_ * 3)) return code::OutOfMemory;
    if (way_ != Way::DiffuseThroughTable) return code::Success;
    const size_t cells = (pixels_ + 2) * 3;
    if (!errors_.emplace(cells)) return code::OutOfMemory;
    std::fill_n(errors_->data(), cells, 0);
    return code::Success;
}

size_t RowConversion::RowsTogether() const {
    return way_ == Way::Diffuse ? zkr::RowsTogether(RunOf(bitmap_)) : 1;
}

void RowConversion::Take(size_t slot, const uint8_t* pixels) {
    taken_ = pixels;
    if (!quads_) return;
    if (mapped_) {
        kernels::Chosen<kernels::ConvertKernels>().MapBytes(pixels, mapped_->data(), pixels_ * 3,
                                                            {.Table = table_});
        return ReadQuads(mapped_->data(), Quads(slot));
    }
    ReadQuads(pixels, Quads(slot));
    if (way_ != Way::DiffuseThroughTable && table_ != nullptr) ApplyTable(Quads(slot));
}

void RowConversion::ReadQuads(const uint8_t* pixels, uint8_t* quads) {
    DitherState& run = RunOf(bitmap_);
    run.SourceBits = bitmap_.BitsPerPixel;
    RowReader reader(run, bitmap_);
    for (size_t first = 0; first < pixels_; first += kernels::DitherPiece)
        reader.Read(pixels, first, std::min(kernels::DitherPiece, pixels_ - first), quads + first * 4);
    run.SourceBits = quadBitmap_.BitsPerPixel;
}

// To black and white the table takes the gray, else each channel.
void RowConversion::ApplyTable(uint8_t* quads) {
    const auto& convert = kernels::Chosen<kernels::ConvertKernels>();
    if (class_ != 1) return convert.MapBytes(quads, quads, pixels_ * 4, {.Table = table_});
    uint8_t gray[kernels::DitherPiece];
    for (size_t first = 0; first < pixels_; first += kernels::DitherPiece) {
        const size_t pixels = std::min(kernels::DitherPiece, pixels_ - first);
        uint8_t* piece = quads + first * 4;
        kernels::PairOf(convert, Source::Colour32, Target::Gray8)(piece, gray, pixels, {});
        convert.MapBytes(gray, gray, pixels, {.Table = table_});
        kernels::PairOf(convert, Source::Gray8, Target::Colour32)(gray, piece, pixels, {});
    }
}

// Floyd and Steinberg to black and white, where the bit is the uppermost of what the table has for the gray. The
// errors of a row wait in cells of three channels, one more at each end.
void RowConversion::DiffuseThroughTable(const uint8_t* quads, uint8_t* target) {
    int32_t* below = errors_->data() + 3;
    int32_t ahead[3], bits = 0;
    for (size_t c = 0; c < 3; ++c) {
        ahead[c] = below[c] / 16;
        below[c] = 0;
    }
    const size_t pixels = pixels_ - lead_;
    for (size_t x = 0; x < pixels; ++x, below += 3) {
        int32_t channels[3];
        for (size_t c = 0; c < 3; ++c)
            channels[c] = std::clamp(quads[x * 4 + c] + ahead[c], 0, 255);
        const int32_t gray = (2 * channels[2] + 5 * channels[1] + channels[0] + 4) >> 3;
        const bool white = table_[gray] >= 128;
        for (size_t c = 0; c < 3; ++c) {
            const int32_t missing = channels[c] - (white ? 255 : 0);
            ahead[c] = (below[3 + static_cast<ptrdiff_t>(c)] + 7 * missing) / 16;
            below[3 + static_cast<ptrdiff_t>(c)] = missing;
            below[c] += 5 * missing;
            below[static_cast<ptrdiff_t>(c) - 3] += 3 * missing;
        }
        bits = bits << 1 | white;
        if (x % 8 == 7) target[x / 8] = static_cast<uint8_t>(bits);
    }
    if (pixels % 8 != 0) target[pixels / 8] = static_cast<uint8_t>(bits << (8 - pixels % 8));
}

void RowConversion::Make(size_t rows, int64_t firstRow, uint8_t* target, size_t rowBytes) {
    switch (way_) {
    case Way::Copy: std::memcpy(target, taken_, (pixels_ * static_cast<size_t>(bits_) + 7) / 8); return;
    case Way::Stages:
        if (stages_.Count() > 0) {
            stages_.RunRow(taken_, target, bits_, pixels_);
            taken_ = target;
        }
        if (mapsBytes_)
            kernels::Chosen<kernels::ConvertKernels>().MapBytes(taken_, target, pixels_ * 3,
                                                                {.Table = table_});
        return;
    case Way::Compare:
        RunOf(bitmap_).LineCounter = static_cast<uint32_t>(firstRow % kernels::ThresholdSide);
        DitherRow(RunOf(bitmap_), quads_ ? quadBitmap_ : bitmap_, quads_ ? Quads(0) : taken_, target);
        return;
    case Way::CompareAtOnce: ordered_->Make(taken_, firstRow, target, pixels_); return;
    case Way::Diffuse:
        DitherRowsTogether(RunOf(bitmap_), quadBitmap_, Quads(0) + lead_ * 4, target, rowBytes, rows);
        return;
    case Way::DiffuseThroughTable: DiffuseThroughTable(Quads(0) + lead_ * 4, target); return;
    }
}

} // namespace zkr
