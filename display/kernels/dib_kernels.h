// Kernels that make rows of bitmaps from rows of device-independent ones: channels between masks, and YUV.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

// A channel between masks. With t = (pixel >> Shift & Maximum) * Factor it becomes (t + (t >> Fold) + Bias) >> Down:
// the division of t by 2^n - 1 for Fold and Down of n and a Bias of 1, t itself for a Down and Bias of 0 and a Fold of
// so many bits as t has.
struct MaskedChannel {
    uint32_t Shift;
    uint32_t Maximum;
    uint32_t Factor;
    uint32_t Fold;
    uint32_t Bias;
    uint32_t Down;
};

struct MaskedPixels {
    MaskedChannel Red;
    MaskedChannel Green;
    MaskedChannel Blue;
    bool IsWide; // a channel of more than 24 bits
};

struct DibKernels {
    // Source and target may be the same row.
    void (*Masked16)(const uint8_t* source, uint8_t* target, size_t pixels, const MaskedPixels& rule);
    void (*Masked32)(const uint8_t* source, uint8_t* target, size_t pixels, const MaskedPixels& rule);

    // To blue, green and red bytes. Pixels come in sixteens.
    void (*PlanarBy2)(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* target, size_t pixels);
    void (*PlanarBy4)(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* target, size_t pixels);
    void (*Uyvy)(const uint8_t* source, uint8_t* target, size_t pixels);
    void (*Yuy2)(const uint8_t* source, uint8_t* target, size_t pixels);
    void (*Yvyu)(const uint8_t* source, uint8_t* target, size_t pixels);
    void (*Y41p)(const uint8_t* source, uint8_t* target, size_t pixels);
};

} // namespace zkr::kernels
