// The set of all colours of 24 bits as one bit for each.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

inline constexpr size_t ColourSetWords = size_t{1} << 19;

struct CountKernels {
    // Which of the pixels, at most 65535, have colours that are not in the set, and how many these are. A
    // colour is the first three bytes of a pixel, its place in the set the number that they make, the first
    // lowest. A colour that is met again comes again. There is room for as many places as there are pixels.
    size_t (*FindNew24)(const uint8_t* pixels, size_t count, const uint32_t* set, uint16_t* places);
    size_t (*FindNew32)(const uint8_t* pixels, size_t count, const uint32_t* set, uint16_t* places);

    // Puts the colours of all pixels into the set.
    void (*AddAll24)(const uint8_t* pixels, size_t count, uint32_t* set);
    void (*AddAll32)(const uint8_t* pixels, size_t count, uint32_t* set);

    // How many places of a set are taken.
    uint32_t (*CountSet)(const uint32_t* set, size_t words);
};

} // namespace zkr::kernels
