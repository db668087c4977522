// Rows of device-independent bitmaps. YUV has two formulas, with divisions by 1000 that truncate: that of the planes
// divides the whole channel, that of packed pixels the part of the chroma alone. Both are exact in the vectors, where a
// channel is an eighth of its thousandfold before it is divided by 125.
#include "display/kernels/dib_kernels.h"

#include "kernels/family.h"

#include <algorithm>
#include <cstring>

#if defined(__AVX2__)
#include "display/kernels/yuv_avx2.h"
#endif

namespace zkr::kernels {
namespace {

template <typename Word> inline Word Take(uint32_t pixel, const MaskedChannel& channel) {
    const Word t = Word{pixel >> channel.Shift & channel.Maximum} * channel.Factor;
    return (t + (t >> channel.Fold) + channel.Bias) >> channel.Down;
}

// By copies of a few pixels, so that vectors need not ask whether the rows are the same.
template <typename Word, typename Pixel>
inline void MaskedRow(const uint8_t* source, uint8_t* target, size_t pixels, const MaskedPixels& rule) {
    constexpr size_t most = 64;
    const MaskedPixels r = rule;
    for (size_t done = 0; done < pixels; done += most) {
        Pixel taken[most], made[most];
        const size_t count = std::min(most, pixels - done);
        std::memcpy(taken, source + done * sizeof(Pixel), count * sizeof(Pixel));
        for (size_t i = 0; i < count; ++i) {
            const Word red = Take<Word>(taken[i], r.Red), green = Take<Word>(taken[i], r.Green);
            const Word blue = Take<Word>(taken[i], r.Blue);
            made[i] = static_cast<Pixel>(sizeof(Pixel) == 2
                                             ? (red << 10) + (green << 5) + blue
                                             : (red & 0xFF) << 16 | (green & 0xFF) << 8 | (blue & 0xFF));
        }
        std::memcpy(target + done * sizeof(Pixel), made, count * sizeof(Pixel));
    }
}

template <typename Pixel>
void Masked(const uint8_t* source, uint8_t* target, size_t pixels, const MaskedPixels& rule) {
    rule.IsWide ? MaskedRow<uint64_t, Pixel>(source, target, pixels, rule)
                : MaskedRow<uint32_t, Pixel>(source, target, pixels, rule);
}

inline uint8_t Clamped(int32_t value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

template <size_t step>
void PlainPlanar(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* target, size_t pixels) {
    for (size_t i = 0; i < pixels; i += step) {
        const int32_t cu = u[i / step] - 128, cv = v[i / step] - 128;
        const int32_t blue = cu * 2018, green = -cu * 391 - cv * 813, red = cv * 1596;
        for (size_t j = i; j < i + step; ++j) {
            const int32_t light = (y[j] - 16) * 1164;
            target[j * 3] = Clamped((light + blue) / 1000);
            target[j * 3 + 1] = Clamped((light + green) / 1000);
            target[j * 3 + 2] = Clamped((light + red) / 1000);
        }
    }
}

struct Chroma {
    int32_t Blue, Green, Red;

    Chroma(uint8_t u, uint8_t v) {
        const int32_t cu = u - 128, cv = v - 128;
        Blue = (cu * 1772 + 500) / 1000;
        Green = (-cu * 344 - cv * 714 + 500) / 1000;
        Red = (cv * 1402 + 500) / 1000;
    }
    void Put(uint8_t* target, uint8_t y) const {
        target[0] = Clamped(y + Blue);
        target[1] = Clamped(y + Green);
        target[2] = Clamped(y + Red);
    }
};

template <size_t y0, size_t u, size_t y1, size_t v>
void PlainPacked(const uint8_t* source, uint8_t* target, size_t pixels) {
    for (size_t i = 0; i < pixels; i += 2, source += 4, target += 6) {
        const Chroma chroma(source[u], source[v]);
        chroma.Put(target, source[y0]);
        chroma.Put(target + 3, source[y1]);
    }
}

void Y41p(const uint8_t* source, uint8_t* target, size_t pixels) {
    constexpr uint8_t light[8] = {1, 3, 5, 7, 8, 9, 10, 11};
    for (size_t i = 0; i < pixels; i += 8, source += 12) {
        const Chroma first(source[0], source[2]), second(source[4], source[6]);
        for (size_t j = 0; j < 8; ++j, target += 3)
            (j < 4 ? first : second).Put(target, source[light[j]]);
    }
}

} // namespace

#if defined(__AVX2__)
template <>
constinit const DibKernels Compiled<DibKernels, ThisSet>::Table = {
    Masked<uint16_t>,         Masked<uint32_t>,         VectorPlanar<2>,          VectorPlanar<4>,
    VectorPacked<1, 0, 3, 2>, VectorPacked<0, 1, 2, 3>, VectorPacked<0, 3, 2, 1>, Y41p};
#else
template <>
constinit const DibKernels Compiled<DibKernels, ThisSet>::Table = {
    Masked<uint16_t>,        Masked<uint32_t>,        PlainPlanar<2>,          PlainPlanar<4>,
    PlainPacked<1, 0, 3, 2>, PlainPacked<0, 1, 2, 3>, PlainPacked<0, 3, 2, 1>, Y41p};
#endif

} // namespace zkr::kernels
