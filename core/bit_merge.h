// Strings of bits copied onto others, whatever their phases: the ground of everything that is exact to the
// pixel below 8 and at 12 bits. Bits are counted from the top of a byte or from its bottom.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr {

// A place in a string of bits.
template <typename Byte> struct BitPlace {
    Byte* Data;
    uint64_t Bit;
};

// No byte is touched, and none is read, that holds none of the bits.
template <bool topFirst> class BitMerge {
  public:
    BitMerge(BitPlace<uint8_t> target, BitPlace<const uint8_t> source, uint64_t count)
        : target_(target.Data + target.Bit / 8), source_(source.Data + source.Bit / 8),
          start_(target.Bit % 8), end_(start_ + count),
          distance_(static_cast<int64_t>(source.Bit % 8) - static_cast<int64_t>(start_)) {}

    void Run() { Run(std::memcpy); }

    // Whole bytes in phase are copied by copy(target, source, bytes).
    template <typename Copy> void Run(Copy copy) {
        if (end_ == start_) return;
        const uint64_t bytes = (end_ + 7) / 8;
        uint64_t byte = 0;
        if (start_ != 0) MergeByte(byte++);
        if (const uint64_t whole = end_ / 8; whole > byte) {
            if (distance_ == 0)
                copy(target_ + byte, source_ + byte, static_cast<size_t>(whole - byte));
            else
                ShiftBytes(target_ + byte, source_ + static_cast<int64_t>(byte) + (distance_ >> 3),
                           static_cast<size_t>(whole - byte));
            byte = whole;
        }
        if (byte < bytes) MergeByte(byte);
    }

  private:
    using Vector = uint64_t __attribute__((vector_size(16)));

    // The bits of a byte from a position on, in the order of the string.
    static unsigned BitsFrom(uint64_t position) {
        return topFirst ? 0xFFu >> position : 0xFFu << position & 0xFFu;
    }

    static uint64_t Repeated(unsigned byte) { return byte * uint64_t{0x0101010101010101}; }

    // Words are shifted as eight bytes of their own, so that the machine's order of bytes plays no part: what
    // runs over from a neighbour is masked out, and comes in from the word that begins a byte later.
    template <typename Word> Word Joined(const uint8_t* source, Word firstMask, Word secondMask) const {
        const unsigned shift = static_cast<unsigned>(distance_ & 7);
        Word first, second;
        std::memcpy(&first, source, sizeof first);
        std::memcpy(&second, source + 1, sizeof second);
        if constexpr (topFirst)
            return static_cast<Word>((first << shift & firstMask) | (second >> (8 - shift) & secondMask));
        return static_cast<Word>((first >> shift & firstMask) | (second << (8 - shift) & secondMask));
    }

    // Whole bytes of the target, each from two neighbours of the source.
    void ShiftBytes(uint8_t* target, const uint8_t* source, size_t bytes) const {
        const unsigned shift = static_cast<unsigned>(distance_ & 7);
        const unsigned second = topFirst ? 0xFFu >> (8 - shift) : 0xFFu << (8 - shift) & 0xFFu;
        const uint64_t secondMask = Repeated(second), firstMask = ~secondMask;
        const Vector wideSecond = {secondMask, secondMask}, wideFirst = {firstMask, firstMask};
        size_t done = 0;
        for (; done + sizeof(Vector) <= bytes; done += sizeof(Vector)) {
            const Vector joined = Joined<Vector>(source + done, wideFirst, wideSecond);
            std::memcpy(target + done, &joined, sizeof joined);
        }
        for (; done < bytes; ++done)
            target[done] = Joined<uint8_t>(source + done, static_cast<uint8_t>(firstMask),
                                           static_cast<uint8_t>(secondMask));
    }

    void MergeByte(uint64_t byte) {
        const uint64_t begin = byte == 0 ? start_ : 0;
        const uint64_t stop = std::min<uint64_t>(8, end_ - byte * 8);
        const unsigned mask = BitsFrom(begin) & ~BitsFrom(stop);

        const int64_t place = static_cast<int64_t>(byte * 8) + distance_;
        const int64_t firstNeeded = (place + static_cast<int64_t>(begin)) >> 3;
        const int64_t lastNeeded = (place + static_cast<int64_t>(stop) - 1) >> 3;
        const int64_t base = place >> 3;
        const unsigned shift = static_cast<unsigned>(place & 7);
        const unsigned first = base >= firstNeeded ? source_[base] : 0u;
        const unsigned second = base + 1 <= lastNeeded ? source_[base + 1] : 0u;
        const unsigned bits =
            topFirst ? first << shift | second >> (8 - shift) : first >> shift | second << (8 - shift);

        target_[byte] = static_cast<uint8_t>((target_[byte] & ~mask) | (bits & mask));
    }

    uint8_t* target_;
    const uint8_t* source_;
    uint64_t start_;   // first bit in the target's first byte
    uint64_t end_;     // behind the last bit, counted from the same byte
    int64_t distance_; // phase of the source less that of the target
};

} // namespace zkr
