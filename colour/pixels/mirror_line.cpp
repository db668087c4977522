// Z_MirrorLine: the pixels of a row in the opposite order, in place.
#include "zkr13n/convert.h"

#include "colour/kernels/mirror_ends.h"
#include "core/return_codes.h"
#include "kernels/family.h"

#include <cstring>

namespace zkr {

namespace {

using Ends = kernels::MirrorKernels::Ends;

template <size_t bytes> void MirrorWhole(uint8_t* row, size_t width, Ends ends) {
    struct Pixel {
        uint8_t Bytes[bytes];
    };
    const size_t done = ends(row, width * bytes);
    auto* left = row + done;
    auto* right = row + (width - 1) * bytes - done;
    for (; left < right; left += bytes, right -= bytes) {
        Pixel first;
        Pixel last;
        std::memcpy(&first, left, bytes);
        std::memcpy(&last, right, bytes);
        std::memcpy(left, &last, bytes);
        std::memcpy(right, &first, bytes);
    }
}

// The groups of so many bits inside each byte in the opposite order.
template <uint32_t bits> uint64_t ReverseGroups(uint64_t bytes) {
    if constexpr (bits <= 1) bytes = (bytes & 0x5555555555555555) << 1 | (bytes >> 1 & 0x5555555555555555);
    if constexpr (bits <= 2) bytes = (bytes & 0x3333333333333333) << 2 | (bytes >> 2 & 0x3333333333333333);
    return (bytes & 0x0F0F0F0F0F0F0F0F) << 4 | (bytes >> 4 & 0x0F0F0F0F0F0F0F0F);
}

// Whole bytes change places first; what stood unused at the end then stands before the first pixel and is
// shifted out, and zeros come in behind the last one.
template <uint32_t bits>
void MirrorDividing(uint8_t* row, size_t width, const kernels::MirrorKernels& kernels) {
    const size_t bytes = (width * bits + 7) / 8;
    size_t left = (bits == 1 ? kernels.Ends1 : bits == 2 ? kernels.Ends2 : kernels.Ends4)(row, bytes);
    size_t right = bytes - left;
    for (; right - left >= 16; left += 8, right -= 8) {
        uint64_t first;
        uint64_t last;
        std::memcpy(&first, row + left, 8);
        std::memcpy(&last, row + right - 8, 8);
        first = __builtin_bswap64(ReverseGroups<bits>(first));
        last = __builtin_bswap64(ReverseGroups<bits>(last));
        std::memcpy(row + left, &last, 8);
        std::memcpy(row + right - 8, &first, 8);
    }
    const auto reversed = [](uint8_t byte) { return static_cast<uint8_t>(ReverseGroups<bits>(byte)); };
    for (; left < right; ++left, --right) {
        const uint8_t first = reversed(row[left]);
        row[left] = reversed(row[right - 1]);
        row[right - 1] = first;
    }
    const auto unused = static_cast<uint32_t>(bytes * 8 - width * bits);
    if (unused != 0) kernels.Shift(row, bytes, unused);
}

// Fields that can cross bytes, from the most significant bit of each byte.
template <uint32_t bits> struct CrossingField {
    uint8_t* First;
    uint32_t Shift; // of the field in the big-endian pair of bytes
    CrossingField(uint8_t* row, size_t pixel)
        : First(row + pixel / 8 * bits + pixel % 8 * bits / 8),
          Shift(16 - bits - static_cast<uint32_t>(pixel % 8 * bits % 8)) {}
    bool Crosses() const { return Shift < 8; }
    uint32_t Pair() const { return static_cast<uint32_t>(First[0]) << 8 | (Crosses() ? First[1] : 0u); }
    uint32_t Get() const { return Pair() >> Shift & ((1u << bits) - 1); }
    void Set(uint32_t value) {
        const uint32_t pair = (Pair() & ~(((1u << bits) - 1) << Shift)) | value << Shift;
        First[0] = static_cast<uint8_t>(pair >> 8);
        if (Crosses()) First[1] = static_cast<uint8_t>(pair);
    }
};

// The low 12 bits of the little-endian pair of bytes at the start of a triple, or the high 12 a byte further.
struct GrayField {
    uint8_t* First;
    bool Odd;
    GrayField(uint8_t* row, size_t pixel) : First(row + pixel / 2 * 3 + pixel % 2), Odd(pixel % 2 != 0) {}
    uint32_t Pair() const { return First[0] | static_cast<uint32_t>(First[1]) << 8; }
    uint32_t Get() const { return Odd ? Pair() >> 4 : Pair() & 0xFFF; }
    void Set(uint32_t value) {
        const uint32_t pair = Odd ? (Pair() & 0xF) | value << 4 : (Pair() & 0xF000) | value;
        First[0] = static_cast<uint8_t>(pair);
        First[1] = static_cast<uint8_t>(pair >> 8);
    }
};

template <class Field> void MirrorFields(uint8_t* row, size_t width) {
    for (size_t i = 0; i < width / 2; ++i) {
        Field left(row, i);
        Field right(row, width - 1 - i);
        const uint32_t first = left.Get();
        left.Set(right.Get());
        right.Set(first);
    }
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_MirrorLine(void* row, int32_t width, int32_t bits) {
    if (row == nullptr || width <= 0) return code::Success;
    auto* bytes = static_cast<uint8_t*>(row);
    const auto pixels = static_cast<size_t>(width);
    const auto& kernels = kernels::Chosen<kernels::MirrorKernels>();
    switch (bits) {
    case 1: MirrorDividing<1>(bytes, pixels, kernels); break;
    case 2: MirrorDividing<2>(bytes, pixels, kernels); break;
    case 3: MirrorFields<CrossingField<3>>(bytes, pixels); break;
    case 4: MirrorDividing<4>(bytes, pixels, kernels); break;
    case 5: MirrorFields<CrossingField<5>>(bytes, pixels); break;
    case 6: MirrorFields<CrossingField<6>>(bytes, pixels); break;
    case 7: MirrorFields<CrossingField<7>>(bytes, pixels); break;
    case 8: MirrorWhole<1>(bytes, pixels, kernels.Ends8); break;
    case 12: MirrorFields<GrayField>(bytes, pixels); break;
    case 16: MirrorWhole<2>(bytes, pixels, kernels.Ends16); break;
    case 24: MirrorWhole<3>(bytes, pixels, kernels.Ends24); break;
    case 32: MirrorWhole<4>(bytes, pixels, kernels.Ends32); break;
    case 48: MirrorWhole<6>(bytes, pixels, kernels.Ends48); break;
    case 64: MirrorWhole<8>(bytes, pixels, kernels.Ends64); break;
    default: break;
    }
    return code::Success;
}
