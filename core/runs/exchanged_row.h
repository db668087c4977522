// A compressed row in a caller's buffer: its count of words, four bytes at any even address, and the run list
// behind it. Rows follow one another without padding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr::runs {

// The words of the count in front of a list.
inline constexpr size_t CountWords = sizeof(uint32_t) / sizeof(uint16_t);

inline uint32_t RunCountOf(const uint16_t* row) {
    uint32_t count;
    std::memcpy(&count, row, sizeof count);
    return count;
}
inline void SetRunCount(uint16_t* row, uint32_t count) {
    std::memcpy(row, &count, sizeof count);
}

inline const uint16_t* NextRow(const uint16_t* row) {
    return row + CountWords + RunCountOf(row);
}

} // namespace zkr::runs
