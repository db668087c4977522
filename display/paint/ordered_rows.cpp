#include "display/paint/ordered_rows.h"

#include "kernels/family.h"

#include <algorithm>

namespace zkr {

using kernels::ThresholdSide;
using kernels::ThresholdTables;

bool OrderedRows::Serves(const OrderedRequest& request) {
    if (request.DeviceClass == 8) return true;
    const uint8_t* table = request.PaintTable;
    return request.DeviceClass == 4 &&
           (table == nullptr || (table[0] == 0 && std::is_sorted(table, table + 256)));
}

ReturnCode OrderedRows::Prepare() {
    if (request_.DeviceClass == 8)
        return tables_.emplace(ThresholdSide * sizeof(ThresholdTables)) ? code::Success : code::OutOfMemory;
    for (size_t row = 0; row < ThresholdSide; ++row) {
        for (size_t column = 0; column < ThresholdSide; ++column)
            thresholds_[row][column] = Threshold(request_.Matrix.Rows[row][column]);
    }
    return code::Success;
}

// What a byte has to be above of for the table's level to be above the threshold.
uint8_t OrderedRows::Threshold(uint8_t threshold) const {
    const uint8_t* table = request_.PaintTable;
    if (table == nullptr) return threshold;
    return static_cast<uint8_t>(std::upper_bound(table, table + 256, threshold) - table - 1);
}

void OrderedRows::FillTables(size_t row) {
    filled_ |= 1u << row;
    auto& tables = *reinterpret_cast<ThresholdTables*>(tables_->data() + row * sizeof(ThresholdTables));
    constexpr int32_t cubeFineness = 6, fineness = 8;
    for (size_t column = 0; column < ThresholdSide; ++column) {
        const int32_t shift = kernels::ThresholdShift(request_.Matrix.Rows[row][column],
                                                      request_.ToCube ? cubeFineness : fineness);
        uint8_t(&red)[256] = tables[column][request_.RedFirst ? 0 : 2];
        uint8_t(&green)[256] = tables[column][1];
        uint8_t(&blue)[256] = tables[column][request_.RedFirst ? 2 : 0];
        for (int32_t byte = 0; byte < 256; ++byte) {
            const int32_t level = request_.PaintTable != nullptr ? request_.PaintTable[byte] : byte;
            const int32_t moved = std::clamp(level + shift, 0, 255), fifth = moved / 51;
            red[byte] = static_cast<uint8_t>(request_.ToCube ? fifth * 36 : moved & 0xE0);
            green[byte] = static_cast<uint8_t>(request_.ToCube ? fifth * 6 : (moved & 0xE0) >> 3);
            blue[byte] = static_cast<uint8_t>(request_.ToCube ? fifth : moved >> 6);
        }
    }
}

void OrderedRows::Make(const uint8_t* pixels, int64_t row, uint8_t* target, size_t count) {
    const auto place = static_cast<size_t>(row % ThresholdSide);
    const auto& kernels = kernels::Chosen<kernels::OrderedKernels>();
    if (!tables_) return kernels.Nibbles(pixels, thresholds_[place], request_.RedFirst, target, count);
    if ((filled_ >> place & 1) == 0) FillTables(place);
    kernels.Bytes(
        pixels, *reinterpret_cast<const ThresholdTables*>(tables_->data() + place * sizeof(ThresholdTables)),
        target, count);
}

} // namespace zkr
