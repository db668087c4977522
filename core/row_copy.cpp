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

void StreamLine(uint8_t* to, const uint8_t* from) {
    const auto* source = reinterpret_cast<const __m128i*>(from);
    auto* target = reinterpret_cast<__m128i*>(to);
    const __m128i first = _mm_loadu_si128(source), second = _mm_loadu_si128(source + 1);
    const __m128i third = _mm_loadu_si128(source + 2), fourth = _mm_loadu_si128(source + 3);
    _mm_stream_si128(target, first);
    _mm_stream_si128(target + 1, second);
    _mm_stream_si128(target + 2, third);
    _mm_stream_si128(target + 3, fourth);
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
        StreamLine(to + done, from + done);
    std::memcpy(to + done, from + done, bytes - done);
}

void EndStream() {
    _mm_sfence();
}

#else

void StreamPart(uint8_t* to, const uint8_t* from, size_t bytes) {
    std::memcpy(to, from, bytes);
}

void EndStream() {}

#endif

} // namespace zkr
