// Rows of pixels in colour spaces. Pixels are brought into units of four bytes or four words, so that the
// steps of colour_spaces.h run over whole vectors, by the kernels of row conversion.
#include "colour/kernels/space_kernels.h"

#include "colour/kernels/colour_spaces.h"
#include "colour/kernels/row_kernel.h"
#include "kernels/family.h"
#if defined(__AVX2__)
#include "colour/kernels/spaces_avx2.h"
#endif

#include <cstring>

namespace zkr::kernels {

namespace {

using namespace spaces;

constexpr size_t PiecePixels = 256;

void Reshape(Source from, Target to, const void* source, void* target, size_t pixels) {
    const RowKernel kernel = PairOf(Compiled<ConvertKernels, ThisSet>::Table, from, to);
    kernel(static_cast<const uint8_t*>(source), static_cast<uint8_t*>(target), pixels, {});
}

// Three or four channels of a type, as they lie in memory and in a unit of four.
template <typename Channel, size_t channels> struct Layout {
    static constexpr bool isByte = sizeof(Channel) == 1;
    static constexpr size_t pixelBytes = channels * sizeof(Channel);
    static constexpr size_t unitWords = isByte ? 1 : 2; // of 32 bits, which all steps count in

    // Where they lie, for a kernel that makes pixels larger begins at the last, and memory is faster forwards.
    static void Load(const uint8_t* source, uint32_t* units, size_t pixels) {
        std::memcpy(units, source, pixels * pixelBytes);
        if constexpr (channels == 3)
            Reshape(isByte ? Source::Colour24 : Source::Deep48, isByte ? Target::Colour32 : Target::Deep64,
                    units, units, pixels);
    }
    static void Store(const uint32_t* units, uint8_t* target, size_t pixels) {
        if constexpr (channels == 4)
            std::memcpy(target, units, pixels * pixelBytes);
        else
            Reshape(isByte ? Source::Colour32 : Source::Deep64, isByte ? Target::Colour24 : Target::Deep48,
                    units, target, pixels);
    }

    static SpacePixel Read(const uint32_t* unit) {
        const auto channel = [unit](uint32_t i) {
            const uint32_t word = isByte ? unit[0] >> 8 * i : unit[i / 2] >> 16 * (i % 2);
            return static_cast<int32_t>(static_cast<Channel>(word));
        };
        return {channel(0), channel(1), channel(2), channels == 4 ? channel(3) : 0};
    }
    static void Write(const SpacePixel& pixel, uint32_t* unit) {
        const auto channel = [](int32_t value) {
            return static_cast<uint32_t>(static_cast<std::make_unsigned_t<Channel>>(value));
        };
        const uint32_t fourth = channels == 4 ? channel(pixel.D) : 0;
        if constexpr (isByte) {
            unit[0] = channel(pixel.A) | channel(pixel.B) << 8 | channel(pixel.C) << 16 | fourth << 24;
        } else {
            unit[0] = channel(pixel.A) | channel(pixel.B) << 16;
            unit[1] = channel(pixel.C) | fourth << 16;
        }
    }
};

template <class From, class To, SpacePixel (*step)(SpacePixel)>
void Run(const uint8_t* source, uint8_t* target, size_t pixels) {
    uint32_t from[PiecePixels * From::unitWords];
    uint32_t to[PiecePixels * To::unitWords];
    while (pixels > 0) {
        const size_t piece = pixels < PiecePixels ? pixels : PiecePixels;
        From::Load(source, from, piece);
        for (size_t i = 0; i < piece; ++i)
            To::Write(step(From::Read(from + i * From::unitWords)), to + i * To::unitWords);
        To::Store(to, target, piece);
        source += piece * From::pixelBytes;
        target += piece * To::pixelBytes;
        pixels -= piece;
    }
}

template <class Rgb, class Pixel, class Steps>
constexpr void Place(SpaceKernels& kernels, size_t classIndex, Space space) {
    kernels.FromRgb[classIndex][static_cast<size_t>(space)] = Run<Rgb, Pixel, Steps::From>;
    kernels.ToRgb[classIndex][static_cast<size_t>(space)] = Run<Pixel, Rgb, Steps::ToRgb>;
}

template <typename Channel, int32_t full> constexpr void PlaceClass(SpaceKernels& kernels, size_t index) {
    using Three = Layout<Channel, 3>;
    using Four = Layout<Channel, 4>;
    using Words = Layout<int16_t, 3>;
    Place<Three, Words, LumaDifferences<full>>(kernels, index, Space::LumaDifferences);
    Place<Three, Four, Cmyk<full>>(kernels, index, Space::Cmyk);
    Place<Three, Three, Hsv<full>>(kernels, index, Space::Hsv);
    Place<Three, Three, Hls<full>>(kernels, index, Space::Hls);
    Place<Three, Words, Yiq<full>>(kernels, index, Space::Yiq);
    Place<Three, Three, Cmy<full>>(kernels, index, Space::Cmy);
}

constexpr SpaceKernels MakeKernels() {
    SpaceKernels kernels = {};
    PlaceClass<uint8_t, 255>(kernels, 0);
    PlaceClass<uint16_t, 65535>(kernels, 1);
#if defined(__AVX2__)
    kernels.FromRgb[0][static_cast<size_t>(Space::LumaDifferences)] = RgbToLuma;
#endif
    return kernels;
}

} // namespace

template <> constinit const SpaceKernels Compiled<SpaceKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
