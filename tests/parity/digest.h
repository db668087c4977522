// What a parity case is made of: a digest of everything that the library hands back (FNV-1a; Fowler, Noll and
// Vo, 1991), and the list of families. A case draws all its choices from the generator that it is given and
// adds to the digest nothing that depends on the platform: no addresses, no handles, no memory figures.
#pragma once

#include "support/seeded.h"

#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace zkr::test {

class Digest {
  public:
    void Add(const void* bytes, size_t count) {
        for (size_t i = 0; i < count; ++i)
            value_ = (value_ ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001B3u;
    }
    void Add(int64_t number) {
        for (int shift = 0; shift < 64; shift += 8)
            value_ = (value_ ^ ((static_cast<uint64_t>(number) >> shift) & 255)) * 0x100000001B3u;
    }
    // Every field of a record, pointers and handles only as null or not.
    void AddRecord(const BitmapHandle& bitmap);
    uint64_t Value() const { return value_; }

  private:
    uint64_t value_ = 0xCBF29CE484222325u;
};

struct Family {
    const char* name;
    int cases;
    void (*run)(Seeded& seeded, Digest& digest);
};

std::span<const Family> CoreFamilies();
std::span<const Family> ColourFamilies();

inline constexpr int Depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

template <typename T, size_t N> const T& Pick(Seeded& seeded, const T (&choices)[N]) {
    return choices[seeded.Below(static_cast<int>(N))];
}

inline void FillRandom(Seeded& seeded, void* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i)
        static_cast<uint8_t*>(bytes)[i] = seeded.Byte();
}

} // namespace zkr::test
