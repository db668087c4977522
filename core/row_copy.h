// The copy that every row transfer between a buffer and a bitmap's memory goes through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr {

inline void CopyFromBitmap(uint8_t* buffer, const uint8_t* data, size_t bytes) {
    std::memcpy(buffer, data, bytes);
}

inline void CopyToBitmap(uint8_t* data, const uint8_t* buffer, size_t bytes,
                         [[maybe_unused]] size_t bitmapBytes) {
    std::memcpy(data, buffer, bytes);
}

} // namespace zkr
