// Kernels of rotation by any angle: a part of a row of the result is a straight line through the source, which is
// walked in fixed point with 14 fractional bits.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

inline constexpr int32_t RotateFractionBits = 14;
inline constexpr int32_t RotateUnit = 1 << RotateFractionBits;

// A place in the source: the pixel that it is nearest to, and the signed distance from its centre.
//
// A step adds to the fractions and then corrects each of them at most once: 8192 or more loses a unit to the whole
// part, else below -8191 gains one. So where a fraction is already out of range it may stay there for a while, and
// half a unit is written as 8192 or as -8192 by the way it was reached.
struct RotatePosition {
    int32_t X, FractionX, Y, FractionY;

    void Step(int32_t dx, int32_t dy) {
        StepAxis(X, FractionX, dx);
        StepAxis(Y, FractionY, dy);
    }

  private:
    static void StepAxis(int32_t& whole, int32_t& fraction, int32_t step) {
        fraction += step;
        if (fraction >= RotateUnit / 2) {
            fraction -= RotateUnit;
            ++whole;
        } else if (fraction < 1 - RotateUnit / 2) {
            fraction += RotateUnit;
            --whole;
        }
    }
};

// What all rows of a rotation have in common. Positions count from the pixel at Source, so that a part of a bitmap
// can stand for the whole of it: Left to Bottom are the edges of the bitmap as they lie from there.
struct RotateSource {
    const uint8_t*
        Source; // byte of that pixel; below 8 bits a multiple of 8 pixels from the edge, at 12 of 2
    ptrdiff_t Stride;
    int32_t Left, Top, Right, Bottom; // right and bottom do not belong to it
    int32_t StepX, StepY;             // for each pixel of the result
    int32_t Bits;
    alignas(8) uint8_t Fill[8]; // a pixel of the source's format, in its first bits
};

// Makes so many pixels of the result and moves the position along. Below 8 bits a pixel is a byte, at 12 bits a word,
// else it has the source's format. No byte of the source is read that lies behind its bottom row.
using RotateKernel = void (*)(const RotateSource& source, RotatePosition& at, uint8_t* target, int32_t count);

enum class RotateMethod : uint8_t { Nearest, Linear, Cubic };

enum class RotateForm : uint8_t {
    Bits,
    Gray8,
    Gray12,
    Gray16,
    Colour16,
    Bytes3,
    Bytes4,
    Words3,
    Words4,
    Count
};

struct RotateKernels {
    // Bits have the nearest pixel alone.
    RotateKernel Kernels[3][static_cast<size_t>(RotateForm::Count)];

    RotateKernel Of(RotateMethod method, RotateForm form) const {
        return Kernels[static_cast<size_t>(method)][static_cast<size_t>(form)];
    }
};

} // namespace zkr::kernels
