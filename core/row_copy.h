// The copy that every row transfer between a buffer and a bitmap's memory goes through. A buffer of one row
// stays in cache; a bitmap much larger than the cache does not, and its rows are stored past the cache, which
// spares reading what is about to be overwritten.
#pragma once

#include "platform/threads.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr {

// The borders are measured: below any of them the plain copy is as fast or faster.
inline constexpr size_t SmallestStreamedBitmap = size_t{8} << 20;
inline constexpr size_t SmallestStreamedRow = 4096;
inline constexpr size_t SmallestOpenStreamedRow = 512; // where the stream need not be closed after each row

// Copies past the cache, in one part or many. Other threads see what has been streamed before what is stored
// after EndStream. Closing makes the next stores wait until memory has taken the stream.
void StreamPart(uint8_t* to, const uint8_t* from, size_t bytes);
void EndStream();

// From this many bytes on memcpy may be a string move of the processor. On some these take up to thirty times
// as long where the target stands 1 to 31 bytes behind the source within their pages, as a buffer from
// the heap does whose block has pages of its own. A plain loop then does it.
inline constexpr size_t SmallestStringMove = 2048;
void CopyInLines(uint8_t* to, const uint8_t* from, size_t bytes);

inline void CopyBytes(uint8_t* to, const uint8_t* from, size_t bytes) {
    const uintptr_t behind = (reinterpret_cast<uintptr_t>(to) - reinterpret_cast<uintptr_t>(from)) % 4096;
    if (bytes >= SmallestStringMove && behind - 1 < 31) [[unlikely]]
        CopyInLines(to, from, bytes);
    else
        std::memcpy(to, from, bytes);
}

inline void CopyFromBitmap(uint8_t* buffer, const uint8_t* data, size_t bytes) {
    CopyBytes(buffer, data, bytes);
}

// Who may look at the memory. Where it is this process alone and that has one thread, streams are left open:
// a thread sees its own stores, and whatever hands memory on from there (starting a thread, calling the
// system) closes them.
enum class Readers : uint8_t { ThisProcess, Anyone };

inline void CopyToBitmap(uint8_t* data, const uint8_t* buffer, size_t bytes, size_t bitmapBytes,
                         Readers readers) {
    if (bitmapBytes < SmallestStreamedBitmap) return CopyBytes(data, buffer, bytes);
    const bool staysOpen = readers == Readers::ThisProcess && platform::IsOnlyThread();
    if (bytes < (staysOpen ? SmallestOpenStreamedRow : SmallestStreamedRow))
        return CopyBytes(data, buffer, bytes);
    StreamPart(data, buffer, bytes);
    if (!staysOpen) EndStream();
}

} // namespace zkr
