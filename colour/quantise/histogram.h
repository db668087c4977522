// How often each 15-bit colour occurs, and the colours in the order in which they were first met. Pictures of
// any size fit: when a colour that has been counted up to the limit comes again, all counts are halved first.
#pragma once

#include "colour/quantise/colour_key.h"
#include "core/scratch.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>

namespace zkr {

class Histogram {
  public:
    static constexpr uint32_t LargestPopulation = 32768;

    Histogram();
    ~Histogram() { Z_Free(populations_); }
    Histogram(const Histogram&) = delete;
    Histogram& operator=(const Histogram&) = delete;

    // False where memory was short.
    explicit operator bool() const { return populations_ != nullptr && colours_; }

    // Adds pixels given by their keys; the uppermost bit of a key plays no part.
    void Add(const uint16_t* keys, size_t pixels);

    // Adds all pixels of a bitmap.
    [[nodiscard]] ReturnCode Add(BitmapHandle& bitmap);

    uint32_t Population(uint32_t key) const { return populations_[key]; }
    void SetPopulation(uint32_t key, uint32_t population) { populations_[key] = population; }

    // The distinct colours, which others may put into another order.
    int32_t* Colours() { return colours_.data(); }
    uint32_t ColourCount() const { return colourCount_; }

    // Hands over the table of ColourKeys cells, of the run-time heap.
    uint32_t* TakeTable();

  private:
    uint32_t MakeRoom(uint32_t key);

    uint32_t* populations_;
    ScratchBuffer<int32_t> colours_;
    uint32_t colourCount_ = 0;
};

} // namespace zkr
