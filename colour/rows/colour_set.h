// The set of all colours of 24 bits as one bit for each.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::rows {

inline constexpr size_t colourSetBytes = size_t{1} << 21;

struct CountKernels {
    // Which of the pixels, at most 65535, have colours that are not in the set, and how many these are. A
    // colour is the first three bytes of a pixel, its place in the set the number that they make, the first
    // lowest. A colour that is met again comes again. There is room for as many places as there are pixels.
    size_t (*FindNew24)(const uint8_t* pixels, size_t count, const uint8_t* set, uint16_t* places);
    size_t (*FindNew32)(const uint8_t* pixels, size_t count, const uint8_t* set, uint16_t* places);

    // Puts the colours of all pixels into the set. Returns how many of them are new.
    uint32_t (*AddAll24)(const uint8_t* pixels, size_t count, uint8_t* set);
    uint32_t (*AddAll32)(const uint8_t* pixels, size_t count, uint8_t* set);
};

} // namespace zkr::rows
