// What is done to run lists as wholes.
#include "core/runs/run_list.h"
#include "core/runs/word_vectors.h"

#include <cstring>

namespace zkr::runs {

bool IsRow(const uint16_t* runs, uint32_t words, int32_t width) {
    if (width < 0 || words > MostWords(width)) return false;
    uint64_t sum = 0;
    for (uint32_t word = 0; word < words; ++word)
        sum += runs[word];
    return sum == static_cast<uint64_t>(width);
}

namespace {

// Reverses words into a target that is the source itself or does not overlap it.
void Reverse(const uint16_t* source, uint16_t* target, uint32_t words) {
    const auto reversed = [](Words8 v) { return __builtin_shufflevector(v, v, 7, 6, 5, 4, 3, 2, 1, 0); };
    uint32_t low = 0, high = words;
    for (; high - low >= 16; low += 8, high -= 8) {
        const auto first = Load<Words8>(source + low), last = Load<Words8>(source + high - 8);
        Store(target + low, reversed(last));
        Store(target + high - 8, reversed(first));
    }
    for (; low < high; ++low, --high) {
        const uint16_t first = source[low], last = source[high - 1];
        target[low] = last;
        target[high - 1] = first;
    }
}

} // namespace

void MirrorRuns(const uint16_t* runs, uint32_t words, uint16_t* destination) {
    const uint32_t dropped = words != 0 && runs[0] == 0;
    const uint32_t kept = words - dropped;
    const uint32_t added = words % 2 == 0;
    const uint16_t* source = runs + dropped;
    uint16_t* const target = destination + added;
    if (destination == runs) {
        std::memmove(target, source, kept * sizeof(uint16_t));
        source = target;
    }
    Reverse(source, target, kept);
    if (added != 0) destination[0] = 0;
}

} // namespace zkr::runs
