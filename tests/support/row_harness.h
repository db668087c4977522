// One harness for every kernel that works on a row of packed pixels in place. It lets the kernel and a plain
// model of it run over the same bytes, at many widths and contents, and compares every byte of the buffer:
// pixels, the bits behind the last pixel, the bytes behind the row and the guards on both sides. Rows start
// at any address, and under AddressSanitizer the buffer ends with the row, so that a read one byte too far is
// seen as well.
//
// The test of a new kernel:
//
//     RowKernel kernel{.name = "mirror", .sourceBits = bits, .targetBits = bits};
//     kernel.actual = [&](RowSpan span) { return Z_MirrorLine(span.row, span.width, bits); };
//     kernel.expected = [&](RowSpan span) { return ReferenceMirrorLine(span.row, span.width, bits); };
//     EXPECT_TRUE(SameRows(kernel, AllWidths()));
//
// A program whose kernels exist for several instruction sets says BOTH_SETS in its zkr_test line, and runs
// twice. One that links the inside may also take the kernels of a family from each set in turn:
//
//     for (const kernels::InstructionSet set : kernels::UsableSets()) {
//         const auto& turn = kernels::KernelsOf<kernels::TurnKernels>(set);
//         ...
#pragma once

#include "support/pixel_bits.h"
#include "support/seeded.h"

#include "zkr13n/codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
#define ZKR_TEST_TAIL_GUARD 0
#else
#define ZKR_TEST_TAIL_GUARD 48
#endif

namespace zkr::test {

struct RowSpan {
    uint8_t* row;
    int32_t first; // the pixel at which the kernel starts
    int32_t width; // how many pixels it works on
};

using RowOperation = std::function<ReturnCode(RowSpan)>;

struct RowKernel {
    std::string name = {}; // printed with a difference: depths, orders, flags, window
    int sourceBits = 8;    // bits of a pixel before and after, 0 for 8-bit gray
    int targetBits = 8;
    RowOperation actual = {};
    RowOperation expected = {};
    int firstPixels = 1; // the kernel starts at each pixel from 0 to firstPixels - 1 in turn
    uint64_t seed = 1;
};

inline constexpr int WidestRow = 257;

inline std::vector<int> AllWidths() {
    std::vector<int> widths;
    for (int width = 1; width <= WidestRow; ++width)
        widths.push_back(width);
    return widths;
}

// A few widths for each of many runs: the turns deal all widths out in a scattered order, and begin again.
inline std::vector<int> DealtWidths(int turn, int count) {
    std::vector<int> widths;
    for (int i = 0; i < count; ++i)
        widths.push_back(1 + (turn * count + i) * 75 % WidestRow);
    return widths;
}

enum class RowContent { Random, Zeros, Ones, Ramp };

inline void FillRow(std::vector<uint8_t>& bytes, RowContent content, Seeded& seeded) {
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = content == RowContent::Zeros  ? uint8_t{0}
                   : content == RowContent::Ones ? uint8_t{255}
                   : content == RowContent::Ramp ? static_cast<uint8_t>(i)
                                                 : seeded.Byte();
}

// Says where two buffers differ, in pixels where it is a pixel.
inline std::string DescribeDifference(const RowKernel& kernel, RowSpan span, const uint8_t* before,
                                      const uint8_t* expected, const uint8_t* actual, size_t rowBytes) {
    const std::string head = kernel.name + ", first " + std::to_string(span.first) + ", width " +
                             std::to_string(span.width) + ": ";
    const auto hex = [](uint64_t value) {
        char text[20];
        snprintf(text, sizeof text, "%llX", static_cast<unsigned long long>(value));
        return std::string(text);
    };
    for (int i = 0; i < span.first + span.width; ++i) {
        const uint64_t wanted = ReadPixel(expected, kernel.targetBits, i);
        const uint64_t got = ReadPixel(actual, kernel.targetBits, i);
        if (wanted == got) continue;
        const bool readable = RowBytes(i + 1, kernel.sourceBits) <= rowBytes;
        return head + "pixel " + std::to_string(i) + " from " +
               (readable ? hex(ReadPixel(before, kernel.sourceBits, i)) : "none") + " expected " +
               hex(wanted) + " got " + hex(got);
    }
    for (size_t i = 0; i < rowBytes; ++i)
        if (expected[i] != actual[i])
            return head + "byte " + std::to_string(i) + " of " + std::to_string(rowBytes) +
                   ", behind the last pixel, expected " + hex(expected[i]) + " got " + hex(actual[i]);
    return head + "guard bytes outside the row are changed";
}

inline ::testing::AssertionResult SameRow(const RowKernel& kernel, int first, int width, RowContent content,
                                          Seeded& seeded) {
    const int pixels = first + width;
    const size_t rowBytes =
        std::max(RowBytes(pixels, kernel.sourceBits), RowBytes(pixels, kernel.targetBits));
    const size_t front = static_cast<size_t>(seeded.Below(16));
    std::vector<uint8_t> row(rowBytes);
    FillRow(row, content, seeded);
    const std::vector<uint8_t> before = row;
    std::vector<uint8_t> expected(front + rowBytes + ZKR_TEST_TAIL_GUARD, 0xA5);
    std::copy(row.begin(), row.end(), expected.begin() + static_cast<std::ptrdiff_t>(front));
    std::vector<uint8_t> actual = expected;

    RowSpan span{expected.data() + front, first, width};
    const ReturnCode expectedCode = kernel.expected(span);
    span.row = actual.data() + front;
    const ReturnCode actualCode = kernel.actual(span);
    if (actualCode != expectedCode)
        return ::testing::AssertionFailure() << kernel.name << ", width " << width << ": expected code "
                                             << expectedCode << " got " << actualCode;
    if (actual == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << DescribeDifference(
               kernel, span, before.data(), expected.data() + front, actual.data() + front, rowBytes);
}

// Runs a kernel against its model over the widths, each with random contents and with one of the extreme
// ones.
inline ::testing::AssertionResult SameRows(const RowKernel& kernel, const std::vector<int>& widths) {
    constexpr RowContent Extremes[] = {RowContent::Zeros, RowContent::Ones, RowContent::Ramp};
    Seeded seeded(kernel.seed);
    for (const int width : widths)
        for (int first = 0; first < kernel.firstPixels; ++first)
            for (const RowContent content : {RowContent::Random, Extremes[(width + first) % 3]})
                if (auto result = SameRow(kernel, first, width, content, seeded); !result) return result;
    return ::testing::AssertionSuccess();
}

} // namespace zkr::test
