// Packed bits to run lists and back, and what is done to lists as wholes.
#include "core/runs/run_list.h"

#include <cstring>

namespace zkr::runs {

void RunWriter::AppendBits(const uint8_t* source, uint32_t skip, uint64_t bits) {
    uint64_t position = skip;
    const uint64_t end = skip + bits;
    while (position < end) {
        const bool ones = (source[position / 8] >> (7 - position % 8) & 1) != 0;
        uint64_t last = position + 1;
        while (last < end && ((source[last / 8] >> (7 - last % 8) & 1) != 0) == ones)
            ++last;
        Append(last - position, ones);
        position = last;
    }
}

namespace {

// Sets bits from `begin` to before `end`, which is behind it.
void SetBits(uint8_t* destination, uint64_t begin, uint64_t end) {
    uint8_t* const first = destination + begin / 8;
    uint8_t* const last = destination + end / 8;
    const unsigned head = 0xFFu >> begin % 8;
    const unsigned tail = 0xFF00u >> end % 8 & 0xFF;
    if (first == last) {
        *first = static_cast<uint8_t>(*first | (head & tail));
        return;
    }
    *first = static_cast<uint8_t>(*first | head);
    std::memset(first + 1, 0xFF, static_cast<size_t>(last - first - 1));
    if (tail != 0) *last = static_cast<uint8_t>(*last | tail);
}

} // namespace

void ExpandRuns(const uint16_t* runs, uint32_t words, uint64_t skip, uint8_t* destination, uint64_t bits) {
    RunReader reader(runs, words);
    reader.Skip(skip);
    for (uint64_t position = 0; position < bits && !reader.IsAtEnd();) {
        const uint64_t end = std::min(bits, position + reader.Left());
        if (reader.Ones()) SetBits(destination, position, end);
        reader.Skip(end - position);
        position = end;
    }
}

bool IsRow(const uint16_t* runs, uint32_t words, int32_t width) {
    if (width < 0 || words > MostWords(width)) return false;
    uint64_t sum = 0;
    for (uint32_t word = 0; word < words; ++word)
        sum += runs[word];
    return sum == static_cast<uint64_t>(width);
}

void MirrorRuns(const uint16_t* runs, uint32_t words, uint16_t* destination) {
    const uint32_t dropped = words != 0 && runs[0] == 0;
    const uint32_t kept = words - dropped;
    const uint32_t added = words % 2 == 0;
    std::memmove(destination + added, runs + dropped, kept * sizeof(uint16_t));
    std::reverse(destination + added, destination + added + kept);
    if (added != 0) destination[0] = 0;
}

} // namespace zkr::runs
