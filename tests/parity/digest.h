// What a parity case is made of: a digest of everything that the library hands back (FNV-1a; Fowler, Noll and
// Vo, 1991), and the list of families. A case draws all its choices from the generator that it is given and
// adds to the digest nothing that depends on the platform: no addresses, no handles, no memory figures.
#pragma once

#include "support/seeded.h"

#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

namespace zkr::test {

class Digest {
  public:
    // With a file, each addition is told in a line of its own.
    explicit Digest(FILE* trace = nullptr) : trace_(trace) {}

    void Add(const void* bytes, size_t count) {
        Mix(bytes, count);
        if (trace_)
            std::fprintf(trace_, "  %d: %u bytes, %08X\n", step_++, static_cast<unsigned>(count), Low());
    }
    void Add(int64_t number) {
        uint8_t bytes[8];
        for (int i = 0; i < 8; ++i)
            bytes[i] = static_cast<uint8_t>(number >> 8 * i);
        Mix(bytes, sizeof bytes);
        if (trace_) std::fprintf(trace_, "  %d: %d, %08X\n", step_++, static_cast<int>(number), Low());
    }
    // Every field of a record, pointers and handles only as null or not.
    void AddRecord(const BitmapHandle& bitmap);
    uint64_t Value() const { return value_; }

  private:
    void Mix(const void* bytes, size_t count) {
        for (size_t i = 0; i < count; ++i)
            value_ = (value_ ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001B3u;
    }
    unsigned Low() const { return static_cast<unsigned>(value_); }

    uint64_t value_ = 0xCBF29CE484222325u;
    FILE* trace_;
    int step_ = 0;
};

struct Family {
    const char* name;
    int cases;
    void (*run)(Seeded& seeded, Digest& digest);
};

std::span<const Family> CoreFamilies();
std::span<const Family> PixelFamilies();
std::span<const Family> ResolutionFamilies();
std::span<const Family> ColourFamilies();
std::span<const Family> GrayFamilies();
std::span<const Family> TurnFamilies();
std::span<const Family> ResizeFamilies();
std::span<const Family> RegionFamilies();
std::span<const Family> PlaybackFamilies();
std::span<const Family> PaintFamilies();
std::span<const Family> CombineFamilies();
std::span<const Family> DibFamilies();

inline constexpr int Depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

template <typename T, size_t N> const T& Pick(Seeded& seeded, const T (&choices)[N]) {
    return choices[seeded.Below(static_cast<int>(N))];
}

inline void FillRandom(Seeded& seeded, void* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i)
        static_cast<uint8_t*>(bytes)[i] = seeded.Byte();
}

} // namespace zkr::test
