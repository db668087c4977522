// The row kernels of combinations: boolean operators on bytes, arithmetic ones on samples, and the texture that lies
// under a row. A result may stand where the target does; the source overlaps neither, or stands there, too.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

// By a truth table, whose bit 2 * source + target is the result. An operand that the table does not depend on is
// not read and may be null.
using CombineBits = void (*)(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes);

// Samples are combined as target ^ TargetFlip and source ^ SourceFlip, and what comes out ^ ResultFlip.
struct SampleRange {
    uint32_t Maximum; // 1 or more
    uint32_t SourceFlip;
    uint32_t TargetFlip;
    uint32_t ResultFlip;
};

using CombineSamples = void (*)(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t bytes,
                                const SampleRange& range);

// Combines the first of a span's packed pixels, a multiple of 32 of them, and tells how many these were. The result stands
// apart from both operands.
using CombinePacked = size_t (*)(uint8_t* result, const uint8_t* target, const uint8_t* source, size_t pixels,
                                 const SampleRange& range);

// In the order of the flags.
enum class SampleOperator : uint8_t {
    Add,
    SubtractSource,
    SubtractTarget,
    Multiply, // of samples up to the maximum, which is a power of two less one
    DivideBySource,
    DivideByTarget,
    Average,
    Minimum,
    Maximum,
    Count
};

inline constexpr size_t SampleOperators = static_cast<size_t>(SampleOperator::Count);

struct CombineKernels {
    CombineBits Bits[16];
    CombineSamples Bytes[SampleOperators];
    CombineSamples Words[SampleOperators];    // of 16 bits
    CombineSamples Pairs[SampleOperators];    // two samples of four bits in a byte
    CombineSamples Fours[SampleOperators];    // four samples of two bits in a byte
    CombineSamples Colour16[SampleOperators]; // three of five bits in a word, whose top bit becomes anything
    CombinePacked Units[8][SampleOperators];  // by bits 3, 5, 6 and 7; null where the set has none
    CombineSamples MultiplyAnyWords;          // of words that may be beyond the maximum

    // Gray words to their values, (word >> shift) & mask, and back, (value & mask) << shift.
    void (*ReadWindow)(const uint8_t* words, uint8_t* values, size_t count, uint32_t mask, uint32_t shift);
    void (*WriteWindow)(const uint8_t* values, uint8_t* words, size_t count, uint32_t mask, uint32_t shift);

    // Adds to each of the three bytes of a pixel the gray less 128, within 0 and 255.
    void (*Underlay)(uint8_t* pixels, const uint8_t* gray, size_t count);
};

} // namespace zkr::kernels
