// The squares of 0 to 255, so that the distance of two colours is three look-ups.
#pragma once

#include <array>
#include <cstdint>

namespace zkr::kernels {

inline constexpr auto Squares = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t i = 0; i < table.size(); ++i)
        table[i] = i * i;
    return table;
}();

} // namespace zkr::kernels
