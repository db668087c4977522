// Packed indices and gray values are worked on in pieces that stay in the cache.
#include "geometry/combine/row_operation.h"

#include "core/assertion.h"
#include "core/predicates.h"
#include "kernels/family.h"
#include "zkr13n/gray.h"

#include <algorithm>

namespace zkr::geometry {

namespace {

constexpr size_t PiecePixels = 2048; // whole bytes at every depth
constexpr uint32_t AllBits = 0xFFFF;

constexpr size_t BytesOf(size_t pixels, size_t bits) {
    return pixels / 8 * bits + (pixels % 8 * bits + 7) / 8;
}

// Calls run(first, count) for the pieces of a row.
template <typename Run> void InPieces(size_t pixels, Run run) {
    for (size_t first = 0; first < pixels; first += PiecePixels)
        run(first, std::min(PiecePixels, pixels - first));
}

} // namespace

RowOperation::Window RowOperation::Window::Of(const BitmapHandle& bitmap) {
    uint32_t mask;
    int32_t shift;
    Z_GetGrayParams(bitmap.BitsPerPixel, bitmap.BitsPerPixel, bitmap.LowBit, bitmap.HighBit, nullptr, &mask,
                    &shift);
    // Nothing of a pixel lies beyond its 16 bits, wherever the record puts the window.
    return {shift < 16 ? mask & AllBits : 0, static_cast<uint32_t>(std::clamp(shift, 0, 15))};
}

RowOperation::RowOperation(uint32_t code, const BitmapHandle& target, const BitmapHandle* source)
    : code_(code), bits_(static_cast<size_t>(target.BitsPerPixel)),
      kernels_(kernels::Chosen<kernels::CombineKernels>()),
      packing_(kernels::Chosen<kernels::ConvertKernels>()) {
    if (HasGrayWords(target)) {
        targetWindow_ = Window::Of(target);
        sourceWindow_ = ReadsSource() ? Window::Of(*source) : targetWindow_;
        if (bits_ == 12 || !targetWindow_.IsWhole() || !sourceWindow_.IsWhole()) form_ = Form::Gray;
    }
    if ((code & combine_code::IsBoolean) != 0)
        table_ = kernels_.Bits[Operation()];
    else
        ChooseSamples(target);
}

void RowOperation::ChooseSamples(const BitmapHandle& target) {
    const size_t op = Operation() - combine_code::FirstArithmetic;
    const auto flip = [this](uint32_t flag) { return (code_ & flag) != 0 ? AllBits : 0; };
    range_ = {0, flip(combine_code::InvertsSource), flip(combine_code::InvertsTarget),
              flip(combine_code::InvertsResult)};
    if (HasGrayWords(target)) {
        range_.Maximum = std::max(targetWindow_.Mask, 1u);
        operator_ = kernels_.Words[op];
        const bool staysBelow =
            (range_.SourceFlip | range_.TargetFlip) == 0 && sourceWindow_.Mask <= targetWindow_.Mask;
        if (op == static_cast<size_t>(kernels::SampleOperator::Multiply) && !staysBelow &&
            targetWindow_.Mask != AllBits)
            operator_ = kernels_.MultiplyAnyWords;
        if (form_ != Form::Gray) form_ = Form::Samples;
    } else if (bits_ == 2 || bits_ == 4) {
        form_ = Form::Samples;
        operator_ = (bits_ == 2 ? kernels_.Fours : kernels_.Pairs)[op];
    } else if (bits_ < 8) {
        form_ = Form::Packed;
        range_.Maximum = (1u << bits_) - 1;
        for (uint32_t* each : {&range_.SourceFlip, &range_.TargetFlip, &range_.ResultFlip})
            *each &= range_.Maximum;
        operator_ = kernels_.Bytes[op];
        units_ = kernels_.Units[bits_][op];
    } else {
        form_ = Form::Samples;
        const bool isDeep = IsDeep(target.BitsPerPixel);
        range_.Maximum = bits_ == 16 ? 31 : isDeep ? AllBits : 255;
        operator_ = (bits_ == 16 ? kernels_.Colour16 : isDeep ? kernels_.Words : kernels_.Bytes)[op];
    }
}

void RowOperation::Run(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t pixels) const {
    switch (form_) {
    case Form::Packed: return RunPacked(result, target, source, pixels);
    case Form::Gray: return RunGray(result, target, source, pixels);
    default: return RunBytes(result, target, source, BytesOf(pixels, bits_));
    }
}

void RowOperation::RunBytes(uint8_t* result, const uint8_t* target, const uint8_t* source,
                            size_t bytes) const {
    if (table_ != nullptr)
        table_(result, target, source, bytes);
    else
        operator_(result, target, source, bytes, range_);
}

void RowOperation::RunPacked(uint8_t* result, const uint8_t* target, const uint8_t* source,
                             size_t pixels) const {
    if (units_ != nullptr) {
        const size_t done = units_(result, target, source, pixels, range_), at = done / 8 * bits_;
        result += at, target += at, source += at;
        pixels -= done;
    }
    uint8_t targets[PiecePixels], sources[PiecePixels];
    const kernels::RowParameters identity = {.Table = kernels::IdentityMap.data()};
    InPieces(pixels, [&](size_t first, size_t count) {
        const size_t at = first / 8 * bits_;
        packing_.Unpack[bits_](target + at, targets, count, identity);
        packing_.Unpack[bits_](source + at, sources, count, identity);
        operator_(targets, targets, sources, count, range_);
        packing_.Pack[bits_](targets, result + at, count, identity);
    });
}

const uint8_t* RowOperation::ReadGray(const uint8_t* pixels, uint8_t* values, size_t count,
                                      const Window& window) const {
    const uint8_t* words = pixels;
    if (bits_ == 12) {
        packing_.Unpack12(pixels, values, count, {});
        words = values;
    }
    kernels_.ReadWindow(words, values, count, window.Mask, window.Shift);
    return values;
}

void RowOperation::RunGray(uint8_t* result, const uint8_t* target, const uint8_t* source,
                           size_t pixels) const {
    uint8_t targets[PiecePixels * 2], sources[PiecePixels * 2];
    InPieces(pixels, [&](size_t first, size_t count) {
        const size_t at = first / 8 * bits_;
        const uint8_t* const d =
            ReadsTarget() ? ReadGray(target + at, targets, count, targetWindow_) : nullptr;
        const uint8_t* const s =
            ReadsSource() ? ReadGray(source + at, sources, count, sourceWindow_) : nullptr;
        RunBytes(targets, d, s, count * 2);
        uint8_t* const words = bits_ == 12 ? targets : result + at;
        kernels_.WriteWindow(targets, words, count, targetWindow_.Mask, targetWindow_.Shift);
        if (bits_ == 12) packing_.Pack12(targets, result + at, count, {});
    });
}

} // namespace zkr::geometry
