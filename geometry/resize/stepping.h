// Stepping through a row or column by a rational number of source pixels for each target pixel, in whole
// numbers; and the sizes between which one steps.
#pragma once

#include "core/return_codes.h"

#include <cstddef>
#include <cstdint>

namespace zkr {

// Where a walk stands: at source pixel Index, with Error / Denominator of a pixel in hand.
struct Stepping {
    uint64_t Index;
    uint64_t Step; // whole pixels to go on by, and the part of one that is left
    uint64_t Remainder;
    uint64_t Error;
    uint64_t Denominator;

    // Target pixel k is source pixel k * oldSize / newSize; starts at target pixel `first`.
    static Stepping Between(int32_t oldSize, int32_t newSize, int32_t first = 0) {
        const auto from = static_cast<uint64_t>(oldSize), to = static_cast<uint64_t>(newSize);
        const uint64_t start = static_cast<uint64_t>(first) * from;
        return {start / to, from / to, from % to, start % to, to};
    }

    void Next() {
        Index += Step;
        Error += Remainder;
        if (Error >= Denominator) {
            Error -= Denominator;
            ++Index;
        }
    }
    void Back() {
        Index -= Step;
        if (Error < Remainder) {
            Error += Denominator;
            --Index;
        }
        Error -= Remainder;
    }
    // Where Next would be after so many calls.
    Stepping After(uint64_t pixels) const {
        const uint64_t total = Error + Remainder * pixels;
        Stepping after = *this;
        after.Index += Step * pixels + total / Denominator;
        after.Error = total % Denominator;
        return after;
    }
};

// Makes a row of packed pixels forwards. Source and target may be one buffer where no pixel is taken from
// before its place. The bits behind the last pixel in its byte stay as they were. False for a depth that there
// is not.
bool StepRow(int32_t bitsPerPixel, Stepping at, const uint8_t* source, uint8_t* target, size_t pixels);

// Makes a target size of 0 follow the other one, and says whether the sizes can go together.
[[nodiscard]] inline ReturnCode CompleteSize(int32_t oldWidth, int32_t oldHeight, int32_t& newWidth,
                                             int32_t& newHeight) {
    if (oldWidth < 1 || oldHeight < 1 || newWidth < 0 || newHeight < 0 || (newWidth == 0 && newHeight == 0))
        return code::InvalidArgument;
    const auto scale = [](int32_t size, int32_t by, int32_t to) {
        const int64_t scaled = (int64_t{size} * by + to / 2) / to;
        return scaled > INT32_MAX ? 0 : static_cast<int32_t>(scaled);
    };
    const int32_t width = newWidth != 0 ? newWidth : scale(newHeight, oldWidth, oldHeight);
    const int32_t height = newHeight != 0 ? newHeight : scale(newWidth, oldHeight, oldWidth);
    if (width == 0 || height == 0) return code::InvalidArgument;
    newWidth = width;
    newHeight = height;
    return code::Success;
}

} // namespace zkr
