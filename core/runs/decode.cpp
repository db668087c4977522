// A run list to packed bits. Two runs at a time, one of 0 bits and one of 1 bits, are put into words of the
// machine; no branch depends on where in a word a run begins or ends, and only one of several words on its
// length.
#include "core/runs/run_list.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace zkr::runs {

namespace {

using Word = uintptr_t;
constexpr unsigned WordBits = sizeof(Word) * 8;
constexpr Word AllOnes = ~Word{0};

// A word in memory has its top bits in its first byte.
Word Swapped(Word bits) {
    if constexpr (std::endian::native == std::endian::big)
        return bits;
    else if constexpr (sizeof bits == 8)
        return static_cast<Word>(__builtin_bswap64(bits));
    else
        return static_cast<Word>(__builtin_bswap32(static_cast<uint32_t>(bits)));
}

Word LoadWord(const uint8_t* bytes, size_t word) {
    Word bits;
    std::memcpy(&bits, bytes + word * sizeof bits, sizeof bits);
    return Swapped(bits);
}

void StoreWord(uint8_t* bytes, size_t word, Word bits) {
    bits = Swapped(bits);
    std::memcpy(bytes + word * sizeof bits, &bits, sizeof bits);
}

// Sets bits from `begin` to before `end`.
void SetBits(uint8_t* destination, int64_t begin, int64_t end) {
    if (begin == end) return;
    uint8_t* const first = destination + begin / 8;
    uint8_t* const last = destination + (end - 1) / 8;
    const unsigned head = 0xFFu >> begin % 8;
    const unsigned tail = 0xFF80u >> (end - 1) % 8 & 0xFF;
    if (first == last) {
        *first = static_cast<uint8_t>(*first | (head & tail));
        return;
    }
    *first = static_cast<uint8_t>(*first | head);
    std::memset(first + 1, 0xFF, static_cast<size_t>(last - first - 1));
    *last = static_cast<uint8_t>(*last | tail);
}

// What is left of a list and the pixel of the destination at which its next run, one of 0 bits, begins.
struct Rest {
    const uint16_t* Runs;
    const uint16_t* End;
    int64_t Position;
};

// Expands a pair of runs as far as it lies in the destination.
void ExpandPair(Rest& rest, uint8_t* destination, int64_t bits) {
    const int64_t from = rest.Position + *rest.Runs++;
    const int64_t to = from + (rest.Runs == rest.End ? 0 : *rest.Runs++);
    SetBits(destination, std::clamp<int64_t>(from, 0, bits), std::clamp<int64_t>(to, 0, bits));
    rest.Position = to;
}

// Expands pairs as long as they end within a whole word of the destination.
void ExpandPairs(Rest& rest, uint8_t* destination, int64_t bits) {
    const auto words = static_cast<size_t>(bits / WordBits);
    auto from = static_cast<uint64_t>(rest.Position);
    // The word at hand has been stored as far as it is filled; its other bits are 0.
    auto word = static_cast<size_t>(from / WordBits);
    Word filled = word < words ? LoadWord(destination, word) : 0;
    const uint16_t* run = rest.Runs;
    for (; rest.End - run >= 2; run += 2) {
        const uint64_t begin = from + run[0];
        const uint64_t end = begin + run[1];
        const auto first = static_cast<size_t>(begin / WordBits);
        const auto last = static_cast<size_t>(end / WordBits);
        if (last >= words) break;
        filled = (first == word ? filled : 0) | AllOnes >> begin % WordBits;
        StoreWord(destination, first, filled);
        for (word = first + 1; word < last; ++word)
            StoreWord(destination, word, AllOnes);
        filled = (first == last ? filled : AllOnes) & ~(AllOnes >> end % WordBits);
        word = last;
        StoreWord(destination, word, filled);
        from = end;
    }
    rest.Runs = run;
    rest.Position = static_cast<int64_t>(from);
}

} // namespace

void ExpandRuns(const uint16_t* runs, uint32_t words, uint64_t skip, uint8_t* destination, uint64_t bits) {
    const auto end = static_cast<int64_t>(bits);
    Rest rest = {runs, runs + words, -static_cast<int64_t>(skip)};
    while (rest.Runs != rest.End && rest.Position < 0)
        ExpandPair(rest, destination, end);
    if (rest.Position >= 0) ExpandPairs(rest, destination, end);
    while (rest.Runs != rest.End && rest.Position < end)
        ExpandPair(rest, destination, end);
}

} // namespace zkr::runs
