// Tests of rows, in pieces that stay in the nearest cache from conversion to bits.
#include "regions/pixel_test.h"
#include "core/predicates.h"

#include "colour/convert/convert_plan.h"
#include "colour/kernels/space_kernels.h"
#include "colour/pixels/colour_value.h"
#include "core/bitmap_lock.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "zkr13n/color_spaces.h"

#include <algorithm>
#include <utility>

namespace zkr {

namespace {

constexpr uint8_t ByteOf(uint32_t value, size_t index) {
    return static_cast<uint8_t>(value >> (8 * index));
}

struct ByteRange {
    uint8_t Low, High;
    bool Outside;
};

// Kernels want ranges in order: one that holds nothing or goes round a circle is another one turned inside out.
constexpr ByteRange RangeOf(uint8_t lower, uint8_t upper, bool isCircle) {
    if (lower <= upper) return {lower, upper, false};
    if (!isCircle) return {0, 255, true};
    if (lower - upper == 1) return {0, 255, false};
    return {static_cast<uint8_t>(upper + 1), static_cast<uint8_t>(lower - 1), true};
}

} // namespace

kernels::ChannelTest ColourRange::ChannelTest() const {
    kernels::ChannelTest test{};
    for (size_t i = 0; i < 3; ++i) {
        const ByteRange range = RangeOf(ByteOf(Lower, i), ByteOf(Upper, i), IsHsv && i == 0);
        const size_t channel = IsHsv ? i : 2 - i;
        test.Low[channel] = range.Low;
        test.High[channel] = range.High;
        test.Outside[channel] = range.Outside;
    }
    return test;
}

bool ColourRange::Takes(const RGBQUAD& entry) const {
    uint32_t colour = ColourValue::OfEntry(entry).Value();
    if (IsHsv) colour = Z_RGBtoHSV(colour);
    const kernels::ChannelTest test = ChannelTest();
    bool takes = true;
    for (size_t i = 0; i < 3; ++i)
        takes = takes && test.Takes(IsHsv ? i : 2 - i, ByteOf(colour, i));
    return takes;
}

void PixelTest::TakeIndices(const kernels::ByteSet& indices) {
    indices_ = indices;
    form_ = bits_ == 1 ? Form::Bits : Form::Indices;
    if (form_ == Form::Indices) Unpack();
}

void PixelTest::TakeWords(const uint64_t* words) {
    words_ = words;
    form_ = Form::Words;
    Unpack();
}

void PixelTest::Unpack() {
    unpack_.emplace(static_cast<int32_t>(bits_)).AddUnpack(static_cast<int32_t>(bits_));
    stages_ = &*unpack_;
}

ReturnCode PixelTest::TakeColours(const BitmapHandle& bitmap, const ColourRange& range,
                                  const RGBQUAD* levels) {
    form_ = Form::Colours;
    const bool isGray = HasGrayWords(bitmap);
    request_ = {.Width = bitmap.Width,
                .SourceBits = bitmap.BitsPerPixel,
                .TargetBits = 24,
                .SourceOrder = isGray ? Z_ORDER_GRAY : bitmap.Order,
                .TargetOrder = Z_ORDER_BGR,
                .SourcePalette = levels,
                .TargetPalette = nullptr,
                .Flags = isGray ? uint32_t{Z_CONVERT_SOURCE_WINDOW} : 0u,
                .LowBit = bitmap.LowBit,
                .HighBit = bitmap.HighBit};
    if (!CheckConversion(request_)) return code::InvalidArgument;
    channels_ = range.ChannelTest();
    if (bits_ == 24 && bitmap.Order == Z_ORDER_RGB && !range.IsHsv) {
        // The test takes the channels in the pixels' order.
        std::swap(channels_.Low[0], channels_.Low[2]);
        std::swap(channels_.High[0], channels_.High[2]);
        std::swap(channels_.Outside[0], channels_.Outside[2]);
        return code::Success;
    }
    stages_ = &plan_.emplace(request_).Chain();
    if (range.IsHsv)
        toHsv_ =
            kernels::Chosen<kernels::SpaceKernels>().FromRgb[0][static_cast<size_t>(kernels::Space::Hsv)];
    return code::Success;
}

void PixelTest::Run(const uint8_t* row, uint64_t* bits) {
    if (form_ == Form::Bits) {
        // Index 0 is a clear bit and index 1 a set one.
        const bool takesClear = indices_.Has(0), takesSet = indices_.Has(1);
        if (takesClear != takesSet)
            bitRows_.BitsOfBytes(row, width_, takesClear, bits);
        else
            std::fill_n(bits, kernels::BitRowWords(width_), takesSet ? ~uint64_t{0} : uint64_t{0});
        return;
    }
    const bool isStraight = toHsv_ == nullptr && (stages_ == nullptr || stages_->Count() == 0);
    if (isStraight) return RunPiece(row, width_, bits);
    for (size_t first = 0; first < width_; first += Stages::PiecePixels) {
        const size_t pixels = std::min(Stages::PiecePixels, width_ - first);
        const uint8_t* piece =
            stages_ != nullptr ? stages_->Read(row, first, pixels) : row + first / 8 * bits_;
        RunPiece(piece, pixels, bits + first / 64);
    }
}

void PixelTest::RunPiece(const uint8_t* pixels, size_t count, uint64_t* bits) const {
    uint8_t hsv[Stages::PiecePixels * 3];
    switch (form_) {
    case Form::Bits: return;
    case Form::Indices: return tests_.ByteBits(pixels, count, indices_, bits);
    case Form::Words: return tests_.WordBits(pixels, count, words_, bits);
    case Form::Colours:
        if (toHsv_ != nullptr) {
            toHsv_(pixels, hsv, count);
            pixels = hsv;
        }
        return tests_.ChannelBits(pixels, count, channels_, bits);
    }
}

ReturnCode RegionOfPixels(BitmapHandle& bitmap, PixelTest& test, OwnedRegion& result) {
    ScratchRow buffer(bitmap);
    const auto width = static_cast<size_t>(bitmap.Width);
    ScratchBuffer<uint64_t> bits(kernels::BitRowWords(width));
    RegionBuilder builder;
    if (!buffer || !bits) return code::OutOfMemory;
    ReturnCode status = builder.Begin(PixelRect::Whole(bitmap));
    const auto runsOfBits = kernels::Chosen<kernels::BitRowKernels>().RunsOfBits;
    const BitmapLock lock(&bitmap);
    for (int32_t y = 0; y < bitmap.Height && status == code::Success; ++y) {
        const uint8_t* row = nullptr;
        status = FetchRow(bitmap, y, buffer.data(), row);
        if (status != code::Success) break;
        test.Run(row, bits.data());
        status = builder.EndRow(runsOfBits(bits.data(), width, 0, builder.Room()));
    }
    if (status == code::Success) builder.Finish(result);
    return status;
}

} // namespace zkr
