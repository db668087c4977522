// Counts colours; rows of any depth come as keys.
#include "colour/quantise/histogram.h"

#include "colour/quantise/key_reader.h"
#include "core/exact_rows.h"
#include "core/row_walk.h"

#include <utility>

namespace zkr {

Histogram::Histogram()
    : populations_(static_cast<uint32_t*>(Z_Calloc(ColourKeys, sizeof(uint32_t)))), colours_(ColourKeys) {}

void Histogram::Add(const uint16_t* keys, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i) {
        const uint32_t key = keys[i] & (ColourKeys - 1);
        uint32_t population = populations_[key];
        // New colours and full ones alike: a population of 0 wraps to the largest number.
        if (population - 1 >= LargestPopulation - 1) [[unlikely]]
            population = MakeRoom(key);
        populations_[key] = population + 1;
    }
}

// A colour that has been met never gets back to 0.
uint32_t Histogram::MakeRoom(uint32_t key) {
    if (populations_[key] == 0) {
        colours_[colourCount_++] = static_cast<int32_t>(key);
    } else {
        for (uint32_t i = 0; i < ColourKeys; ++i)
            populations_[i] = (populations_[i] + 1) >> 1;
    }
    return populations_[key];
}

ReturnCode Histogram::Add(BitmapHandle& bitmap) {
    KeyReader reader(bitmap);
    ScratchRow row(bitmap);
    if (!reader || !row) return code::OutOfMemory;
    return RowWalk(bitmap).Run(bitmap.Height, [&](int32_t y) {
        const ReturnCode result = ReadExactly(bitmap, row.data(), y, 0, bitmap.BytesPerLine);
        if (result == code::Success)
            reader.Read(row.data(), [&](const uint16_t* keys, size_t pixels) { Add(keys, pixels); });
        return result;
    });
}

uint32_t* Histogram::TakeTable() {
    return std::exchange(populations_, nullptr);
}

} // namespace zkr
