// A small generator of pseudo-random numbers with the same sequence on every platform and compiler
// (SplitMix64; Steele, Lea and Flood, 2014). The standard library's distributions differ between libraries,
// so tests that print or compare across platforms draw from here alone.
#pragma once

#include <cstdint>

namespace zkr::test {

class Seeded {
  public:
    explicit Seeded(uint64_t seed) : state_(seed) {}

    uint64_t Next() {
        uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    uint8_t Byte() { return static_cast<uint8_t>(Next() >> 56); }
    // A number in [0, limit); the slight bias of the remainder does not matter here.
    int Below(int limit) { return static_cast<int>((Next() >> 33) % static_cast<uint64_t>(limit)); }
    // A number in [first, last].
    int Between(int first, int last) { return first + Below(last - first + 1); }

  private:
    uint64_t state_;
};

} // namespace zkr::test
