// How the formats of pixels that rotation knows are read as channels and written. Every name here is internal to the
// kernel file that includes it.
#pragma once

#include "geometry/kernels/rotate_kernels.h"

#include <cstring>

namespace zkr::kernels {
namespace {

// A form reads channels of a pixel of a row, and writes a pixel of the result. Scale is what samples are shifted by
// while a spline works on them, Most the largest value there.

template <typename Sample, int32_t channels> struct WholeForm {
    static constexpr int32_t Channels = channels, Scale = 0;
    static constexpr int32_t Most = static_cast<Sample>(-1);
    static constexpr size_t Bytes = sizeof(Sample) * static_cast<size_t>(channels);
    static constexpr size_t TargetBytes = Bytes;

    static void Read(const uint8_t* row, ptrdiff_t x, int32_t (&values)[channels]) {
        Sample samples[channels];
        std::memcpy(samples, row + x * static_cast<ptrdiff_t>(Bytes), Bytes);
        for (size_t i = 0; i < static_cast<size_t>(channels); ++i)
            values[i] = samples[i];
    }
    static void Write(uint8_t* target, const int32_t (&values)[channels]) {
        Sample samples[channels];
        for (size_t i = 0; i < static_cast<size_t>(channels); ++i)
            samples[i] = static_cast<Sample>(values[i]);
        std::memcpy(target, samples, Bytes);
    }
    static void Copy(uint8_t* target, const uint8_t* row, ptrdiff_t x) {
        std::memcpy(target, row + x * static_cast<ptrdiff_t>(Bytes), Bytes);
    }
};

// Three channels of 5 bits, widened to 8. The top bit does not come along.
struct Colour16Form {
    static constexpr int32_t Channels = 3, Scale = 0, Most = 255;
    static constexpr size_t Bytes = 2, TargetBytes = 2;

    static uint32_t Word(const uint8_t* row, ptrdiff_t x) {
        uint16_t word;
        std::memcpy(&word, row + x * 2, 2);
        return word;
    }
    static void Read(const uint8_t* row, ptrdiff_t x, int32_t (&values)[3]) {
        const uint32_t word = Word(row, x);
        for (uint32_t i = 0; i < 3; ++i) {
            const uint32_t value = word >> 5 * i & 31;
            values[i] = static_cast<int32_t>(value << 3 | value >> 2);
        }
    }
    static void Write(uint8_t* target, const int32_t (&values)[3]) {
        const auto word =
            static_cast<uint16_t>((values[2] & 248) << 7 | (values[1] & 248) << 2 | values[0] >> 3);
        std::memcpy(target, &word, 2);
    }
    static void Copy(uint8_t* target, const uint8_t* row, ptrdiff_t x) {
        std::memcpy(target, row + x * 2, 2);
    }
};

// Two pixels in three bytes; a word in the result.
struct Gray12Form {
    static constexpr int32_t Channels = 1, Scale = 4, Most = 65535;
    static constexpr size_t TargetBytes = 2;

    static uint32_t Value(const uint8_t* row, ptrdiff_t x) {
        const uint8_t* const pair = row + (x >> 1) * 3 + (x & 1);
        return (pair[0] | static_cast<uint32_t>(pair[1]) << 8) >> (x & 1) * 4 & 0xFFF;
    }
    static void Read(const uint8_t* row, ptrdiff_t x, int32_t (&values)[1]) {
        values[0] = static_cast<int32_t>(Value(row, x));
    }
    static void Write(uint8_t* target, const int32_t (&values)[1]) {
        const auto word = static_cast<uint16_t>(values[0]);
        std::memcpy(target, &word, 2);
    }
    static void Copy(uint8_t* target, const uint8_t* row, ptrdiff_t x) {
        const auto word = static_cast<uint16_t>(Value(row, x));
        std::memcpy(target, &word, 2);
    }
};

} // namespace
} // namespace zkr::kernels
