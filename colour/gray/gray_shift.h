// Shifts of gray values into and out of their window, which a record may set to anything: those that would
// leave the word give 0.
#pragma once

#include <cstdint>

namespace zkr {

constexpr uint32_t ShiftRight(uint32_t value, int32_t bits) {
    return bits < 0 || bits > 31 ? 0 : value >> bits;
}
constexpr uint32_t ShiftLeft(uint32_t value, int32_t bits) {
    return bits < 0 || bits > 31 ? 0 : value << bits;
}

} // namespace zkr
