// The copy that every row transfer between a buffer and a bitmap's memory goes through. A buffer of one row
// stays in cache; a bitmap much larger than the cache does not, and its rows are stored past the cache, which
// spares reading what is about to be overwritten.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr {

// Both borders are measured: below either of them the plain copy is as fast or faster, since a stream has to
// be closed after each row.
inline constexpr size_t SmallestStreamedBitmap = size_t{8} << 20;
inline constexpr size_t SmallestStreamedRow = 4096;

// Copies past the cache; whatever is stored afterwards is seen afterwards by other threads too.
void StreamBytes(uint8_t* to, const uint8_t* from, size_t bytes);

// The same in many parts: only what is stored after EndStream is seen after them. Closing costs as much as
// some hundred bytes.
void StreamPart(uint8_t* to, const uint8_t* from, size_t bytes);
void EndStream();

inline void CopyFromBitmap(uint8_t* buffer, const uint8_t* data, size_t bytes) {
    std::memcpy(buffer, data, bytes);
}

inline void CopyToBitmap(uint8_t* data, const uint8_t* buffer, size_t bytes, size_t bitmapBytes) {
    if (bytes >= SmallestStreamedRow && bitmapBytes >= SmallestStreamedBitmap)
        StreamBytes(data, buffer, bytes);
    else
        std::memcpy(data, buffer, bytes);
}

} // namespace zkr
