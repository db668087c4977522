#include "display/kernels/gather.h"

#include "kernels/family.h"

#include <cstring>

namespace zkr::kernels {
namespace {

template <size_t bytes>
void GatherBytes(const uint8_t* source, const uint32_t* columns, uint8_t* target, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i)
        std::memcpy(target + i * bytes, source + size_t{columns[i]} * bytes, bytes);
}

// Four bytes at a time where there are pixels behind those that are read and written.
void Gather24(const uint8_t* source, const uint32_t* columns, uint8_t* target, size_t pixels) {
    size_t roomy = pixels;
    while (roomy > 0 && columns[roomy - 1] == columns[pixels - 1])
        --roomy;
    if (roomy == pixels && roomy > 0) --roomy;
    for (size_t i = 0; i < roomy; ++i)
        std::memcpy(target + i * 3, source + size_t{columns[i]} * 3, 4);
    for (size_t i = roomy; i < pixels; ++i)
        std::memcpy(target + i * 3, source + size_t{columns[i]} * 3, 3);
}

// A pixel may cross the border of two bytes.
template <uint32_t bits> uint32_t Field(const uint8_t* row, size_t pixel) {
    constexpr uint32_t mask = (1u << bits) - 1;
    const size_t place = pixel * bits;
    const uint8_t* byte = row + place / 8;
    const uint32_t end = static_cast<uint32_t>(place % 8) + bits;
    if (end <= 8) return byte[0] >> (8 - end) & mask;
    return (static_cast<uint32_t>(byte[0]) << 8 | byte[1]) >> (16 - end) & mask;
}

template <uint32_t bits>
void GatherFields(const uint8_t* source, const uint32_t* columns, uint8_t* target, size_t pixels) {
    uint32_t gathered = 0, count = 0;
    for (size_t i = 0; i < pixels; ++i) {
        gathered = gathered << bits | Field<bits>(source, columns[i]);
        count += bits;
        if (count < 8) continue;
        count -= 8;
        *target++ = static_cast<uint8_t>(gathered >> count);
    }
    if (count > 0) *target = static_cast<uint8_t>(gathered << (8 - count));
}

uint32_t Pair(const uint8_t* row, size_t pixel) {
    const uint8_t* pair = row + pixel / 2 * 3;
    if (pixel % 2 == 0) return pair[0] | (pair[1] & 0x0Fu) << 8;
    return pair[1] >> 4 | static_cast<uint32_t>(pair[2]) << 4;
}

void Gather12(const uint8_t* source, const uint32_t* columns, uint8_t* target, size_t pixels) {
    for (size_t i = 0; i < pixels; i += 2, target += 3) {
        const uint32_t first = Pair(source, columns[i]);
        target[0] = static_cast<uint8_t>(first);
        target[1] = static_cast<uint8_t>(first >> 8);
        if (i + 1 == pixels) return;
        const uint32_t second = Pair(source, columns[i + 1]);
        target[1] = static_cast<uint8_t>(target[1] | second << 4);
        target[2] = static_cast<uint8_t>(second >> 4);
    }
}

constexpr GatherKernels MakeTable() {
    GatherKernels table{};
    table.Of[1] = GatherFields<1>;
    table.Of[2] = GatherFields<2>;
    table.Of[3] = GatherFields<3>;
    table.Of[4] = GatherFields<4>;
    table.Of[5] = GatherFields<5>;
    table.Of[6] = GatherFields<6>;
    table.Of[7] = GatherFields<7>;
    table.Of[8] = GatherBytes<1>;
    table.Of[12] = Gather12;
    table.Of[16] = GatherBytes<2>;
    table.Of[24] = Gather24;
    table.Of[32] = GatherBytes<4>;
    table.Of[48] = GatherBytes<6>;
    table.Of[64] = GatherBytes<8>;
    return table;
}

} // namespace

template <> constinit const GatherKernels Compiled<GatherKernels, ThisSet>::Table = MakeTable();

} // namespace zkr::kernels
