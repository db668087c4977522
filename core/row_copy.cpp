// The copy past the cache. Whole cache lines are streamed, the ends that share a line with other bytes are
// not.
#include "core/row_copy.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zkr {

#ifdef __SSE2__

namespace {

constexpr size_t Line = 64;

enum class Past : bool { Nothing, Cache };

template <Past past> void Store(__m128i* place, __m128i value) {
    if constexpr (past == Past::Cache)
        _mm_stream_si128(place, value);
    else
        _mm_storeu_si128(place, value);
}

template <Past past> void CopyLine(uint8_t* to, const uint8_t* from) {
    const auto* source = reinterpret_cast<const __m128i*>(from);
    auto* target = reinterpret_cast<__m128i*>(to);
    const __m128i first = _mm_loadu_si128(source), second = _mm_loadu_si128(source + 1);
    const __m128i third = _mm_loadu_si128(source + 2), fourth = _mm_loadu_si128(source + 3);
    Store<past>(target, first);
    Store<past>(target + 1, second);
    Store<past>(target + 2, third);
    Store<past>(target + 3, fourth);
}

} // namespace

void StreamPart(uint8_t* to, const uint8_t* from, size_t bytes) {
    const size_t head = (Line - reinterpret_cast<uintptr_t>(to) % Line) % Line;
    if (bytes < head + Line) {
        std::memcpy(to, from, bytes);
        return;
    }
    std::memcpy(to, from, head);
    size_t done = head;
    for (; bytes - done >= Line; done += Line)
        CopyLine<Past::Cache>(to + done, from + done);
    std::memcpy(to + done, from + done, bytes - done);
}

void EndStream() {
    _mm_sfence();
}

void CopyInLines(uint8_t* to, const uint8_t* from, size_t bytes) {
    size_t done = 0;
    for (; bytes - done >= Line; done += Line)
        CopyLine<Past::Nothing>(to + done, from + done);
    std::memcpy(to + done, from + done, bytes - done);
}

#else

void StreamPart(uint8_t* to, const uint8_t* from, size_t bytes) {
    std::memcpy(to, from, bytes);
}

void EndStream() {}

void CopyInLines(uint8_t* to, const uint8_t* from, size_t bytes) {
    std::memcpy(to, from, bytes);
}

#endif

} // namespace zkr
