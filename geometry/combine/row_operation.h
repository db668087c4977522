// The operation of a combination on the bytes of a row: what the code means for pixels of the bitmaps' depth, chosen
// once, and run over spans that begin on a byte.
#pragma once

#include "colour/kernels/row_kernel.h"
#include "geometry/combine/combine_code.h"
#include "geometry/kernels/combine_kernels.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>

namespace zkr::geometry {

class RowOperation {
  public:
    // Where the code reads the source there is one, of the target's depth and order.
    RowOperation(uint32_t code, const BitmapHandle& target, const BitmapHandle* source);

    bool ReadsSource() const { return (code_ & combine_code::ReadsSource) != 0; }
    bool ReadsTarget() const { return (code_ & combine_code::ReadsTarget) != 0; }
    // The result is the source, as it lies in its rows.
    bool IsCopy() const { return form_ == Form::Bits && Operation() == combine_code::Copy; }
    // The operation works on bytes as they lie in rows; below 8 bits on any of them, not on whole pixels.
    bool IsOfBytes() const { return form_ == Form::Bits || form_ == Form::Samples; }

    // The result stands apart from the operands. Packed pixels begin at the first bit; of their last byte, all bits may
    // be written. What is not read may be null.
    void Run(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t pixels) const;
    // Where IsOfBytes. The result may stand where the target does.
    void RunBytes(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes) const;

  private:
    enum class Form : uint8_t {
        Bits,    // truth tables over bytes
        Samples, // arithmetic on samples as they lie in bytes
        Packed,  // arithmetic on indices that are unpacked to bytes
        Gray     // anything on gray values in windows, or in pairs of three bytes
    };
    struct Window {
        uint32_t Mask, Shift;

        static Window Of(const BitmapHandle& bitmap);
        bool IsWhole() const { return Mask == 0xFFFF && Shift == 0; }
    };

    uint32_t Operation() const { return code_ & combine_code::Operation; }
    void ChooseSamples(const BitmapHandle& target);
    void RunPacked(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t pixels) const;
    void RunGray(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t pixels) const;
    const uint8_t* ReadGray(const uint8_t* pixels, uint8_t* values, size_t count, const Window& window) const;

    uint32_t code_;
    size_t bits_;
    Form form_ = Form::Bits;
    const kernels::CombineKernels& kernels_;
    const kernels::ConvertKernels& packing_;
    kernels::CombineBits table_ = nullptr; // one of these two
    kernels::CombineSamples operator_ = nullptr;
    kernels::CombinePacked units_ = nullptr; // before the operator, where there are any
    kernels::SampleRange range_{};
    Window targetWindow_{}, sourceWindow_{}; // of gray
};

} // namespace zkr::geometry
