// The checksum that tells a corrupt strip apart. It is made for speed and for accidents: who forges a strip
// can forge its sum.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr::filters {

// Four lanes of words, each step of which can be undone: whatever is changed in one word changes the sum.
inline uint64_t Checksum(const uint8_t* data, size_t bytes) {
    constexpr uint64_t factor = 0x9E3779B97F4A7C15;
    std::array<uint64_t, 4> lanes = {bytes, 1, 2, 3};
    constexpr size_t block = sizeof lanes;
    for (size_t place = 0; place < bytes; place += block) {
        std::array<uint64_t, 4> words = {};
        if (bytes - place >= block)
            std::memcpy(&words, data + place, block);
        else
            std::memcpy(&words, data + place, bytes - place);
        for (size_t i = 0; i < lanes.size(); ++i)
            lanes[i] = std::rotl((lanes[i] ^ words[i]) * factor, 29);
    }
    uint64_t sum = 0;
    for (const uint64_t lane : lanes)
        sum = std::rotl((sum ^ lane) * factor, 31);
    return sum;
}

} // namespace zkr::filters
