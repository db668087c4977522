// Samples of rows, which lie at any address. Kernel files enter this header, so that its functions have internal linkage.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr::kernels {

namespace {

template <typename Sample> Sample Load(const uint8_t* row, size_t index) {
    Sample sample;
    std::memcpy(&sample, row + index * sizeof(Sample), sizeof(Sample));
    return sample;
}
template <typename Sample> void Store(uint8_t* row, size_t index, uint32_t value) {
    const auto sample = static_cast<Sample>(value);
    std::memcpy(row + index * sizeof(Sample), &sample, sizeof(Sample));
}

} // namespace

} // namespace zkr::kernels
