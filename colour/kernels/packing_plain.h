// Packed pixels of 1 to 7 and 12 bits to and from bytes and words, for instruction sets without a version of
// their own. Pixels of 1 to 7 bits are packed from the most significant bit, eight of them in as many bytes
// as a pixel has bits. Of two 12-bit pixels in three bytes the first is the low 12 bits of the little-endian
// word at byte 0, the second the high 12 bits of that at byte 1.
#pragma once

#include "colour/kernels/row_kernel.h"
#include "core/depth.h"

namespace zkr::kernels {
namespace {

// The packed pixels of a group of up to eight, the first in the highest of its 8 * bits bits.
template <size_t bits> inline uint64_t LoadGroup(const uint8_t* source, size_t bytes) {
    uint64_t group = 0;
    for (size_t byte = 0; byte < bytes; ++byte)
        group |= static_cast<uint64_t>(source[byte]) << (8 * (bits - 1 - byte));
    return group;
}

template <size_t bits>
inline void UnpackGroup(uint64_t group, uint8_t* target, size_t pixels, const uint8_t* map) {
    for (size_t pixel = 0; pixel < pixels; ++pixel)
        target[pixel] = map[(group >> (bits * (7 - pixel))) & ((1u << bits) - 1)];
}

template <size_t bits>
void Unpack(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters& parameters) {
    const auto* map = static_cast<const uint8_t*>(parameters.Table);
    size_t group = pixels / 8;
    if (const size_t rest = pixels % 8; rest > 0)
        UnpackGroup<bits>(LoadGroup<bits>(source + group * bits, (rest * bits + 7) / 8), target + group * 8,
                          rest, map);
    for (; group > 0; --group)
        UnpackGroup<bits>(LoadGroup<bits>(source + (group - 1) * bits, bits), target + (group - 1) * 8, 8,
                          map);
}

template <size_t bits> inline uint64_t PackGroup(const uint8_t* source, size_t pixels) {
    uint64_t group = 0;
    for (size_t pixel = 0; pixel < pixels; ++pixel)
        group |= static_cast<uint64_t>(source[pixel]) << (bits * (7 - pixel));
    return group;
}

template <size_t bits>
void Pack(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters&) {
    const auto byteOf = [](uint64_t group, size_t byte) {
        return static_cast<uint8_t>(group >> (8 * (bits - 1 - byte)));
    };
    for (; pixels >= 8; pixels -= 8, source += 8, target += bits) {
        const uint64_t group = PackGroup<bits>(source, 8);
        for (size_t byte = 0; byte < bits; ++byte)
            target[byte] = byteOf(group, byte);
    }
    if (pixels == 0) return;
    const uint64_t group = PackGroup<bits>(source, pixels);
    const size_t whole = pixels * bits / 8;
    for (size_t byte = 0; byte < whole; ++byte)
        target[byte] = byteOf(group, byte);
    const uint8_t kept = UnusedInLastByte(static_cast<int32_t>(bits), pixels);
    if (kept != 0) target[whole] = static_cast<uint8_t>((target[whole] & kept) | byteOf(group, whole));
}

inline void StoreWordAt(uint8_t* place, uint32_t word) {
    place[0] = static_cast<uint8_t>(word);
    place[1] = static_cast<uint8_t>(word >> 8);
}
inline uint32_t LoadWordAt(const uint8_t* place) {
    return place[0] | static_cast<uint32_t>(place[1]) << 8;
}

void Unpack12(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters&) {
    if (pixels % 2 > 0) {
        --pixels;
        StoreWordAt(target + pixels * 2, LoadWordAt(source + pixels / 2 * 3) & 0xFFF);
    }
    for (size_t pair = pixels / 2; pair-- > 0;) {
        const uint32_t first = LoadWordAt(source + pair * 3) & 0xFFF;
        const uint32_t second = LoadWordAt(source + pair * 3 + 1) >> 4;
        StoreWordAt(target + pair * 4, first);
        StoreWordAt(target + pair * 4 + 2, second);
    }
}

void Pack12(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters&) {
    for (; pixels >= 2; pixels -= 2, source += 4, target += 3) {
        const uint32_t pair = (LoadWordAt(source) & 0xFFF) | (LoadWordAt(source + 2) & 0xFFF) << 12;
        StoreWordAt(target, pair);
        target[2] = static_cast<uint8_t>(pair >> 16);
    }
    if (pixels > 0) {
        const uint32_t word = LoadWordAt(source);
        target[0] = static_cast<uint8_t>(word);
        target[1] = static_cast<uint8_t>((target[1] & 0xF0) | (word >> 8 & 0x0F));
    }
}

void MapBytes(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters& parameters) {
    const auto* map = static_cast<const uint8_t*>(parameters.Table);
    for (size_t pixel = 0; pixel < pixels; ++pixel)
        target[pixel] = map[source[pixel]];
}

} // namespace
} // namespace zkr::kernels
