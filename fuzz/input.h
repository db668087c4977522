// The bytes that a fuzz target is given, taken as numbers; and how a target says that something is wrong.
#pragma once

#include "zkr13n.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

// Ends the process, which is what the fuzzer looks for.
#define FUZZ_EXPECT(condition)                                                                               \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition);               \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (false)

namespace fuzz {

class Input {
  public:
    Input(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}

    bool IsEmpty() const { return next_ == end_; }
    uint8_t Byte() { return IsEmpty() ? uint8_t{0} : *next_++; }
    uint32_t Word() {
        uint32_t word = 0;
        for (int i = 0; i < 4; ++i)
            word = word << 8 | Byte();
        return word;
    }
    bool Flip() { return (Byte() & 1) != 0; }
    int32_t Below(int32_t limit) {
        const uint32_t value = limit > 256 ? Byte() | uint32_t{Byte()} << 8 : Byte();
        return static_cast<int32_t>(value % static_cast<uint32_t>(limit));
    }
    // Mostly a number from the lowest up to the limit, and often one that nobody should pass.
    int32_t Near(int32_t limit, int32_t lowest = 0) {
        return Byte() < 200 ? lowest + Below(limit - lowest) : Hostile();
    }
    int32_t Hostile() {
        constexpr int32_t borders[] = {
            0,          -1,      1,       INT32_MIN,     INT32_MAX,     INT32_MIN + 1,
            -100,       -101,    255,     256,           257,           300,
            0x7FFF,     0x8000,  0xFFFF,  0x10000,       INT32_MAX - 1, INT32_MAX / 2,
            0x10000000, 1 << 30, 9999999, INT32_MAX - 31};
        const size_t choice = Byte() % (std::size(borders) + 1);
        return choice < std::size(borders) ? borders[choice] : static_cast<int32_t>(Word());
    }
    int32_t Depth() {
        constexpr int32_t depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};
        return depths[Byte() % std::size(depths)];
    }
    void Fill(void* bytes, size_t count) {
        // Short inputs fill long rows, too.
        uint32_t state = Word() | 1;
        for (size_t i = 0; i < count; ++i) {
            state ^= state << 13, state ^= state >> 17, state ^= state << 5;
            static_cast<uint8_t*>(bytes)[i] = static_cast<uint8_t>(state >> 8 ^ (IsEmpty() ? 0 : Byte()));
        }
    }

  private:
    const uint8_t* next_;
    const uint8_t* end_;
};

// Exactly so many bytes, so that one more is found out.
struct Exact {
    explicit Exact(size_t count) : Count(count), Bytes(new uint8_t[count]) {}
    Exact(size_t count, Input& input) : Exact(count) { input.Fill(Bytes.get(), count); }
    Exact(const Exact& other) : Exact(other.Count) {
        if (Count != 0) std::memcpy(Bytes.get(), other.Bytes.get(), Count);
    }
    Exact& operator=(const Exact&) = delete;
    uint8_t* Get() const { return Bytes.get(); }
    RGBQUAD* Colours() const { return reinterpret_cast<RGBQUAD*>(Get()); }

    const size_t Count;
    const std::unique_ptr<uint8_t[]> Bytes;
};

// For a test that sees the inside of the library: looks the bitmap through after each step of the attack on rows.
inline void (*AfterStep)(BitmapHandle& bitmap) = nullptr;

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
