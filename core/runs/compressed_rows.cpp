// Compressed rows in callers' buffers: made of packed bits and expanded to them, mirrored and flipped.
#include "zkr13n/compressed_rows.h"
#include "core/return_codes.h"
#include "core/runs/exchanged_row.h"
#include "core/runs/run_list.h"

#include <cstring>

namespace zkr::runs {

namespace {

uint16_t* CompressRow(uint16_t* row, const uint8_t* source, uint32_t skip, uint64_t bits) {
    RunWriter writer(row + CountWords, false);
    writer.AppendBits(source, skip, bits);
    SetRunCount(row, writer.Words());
    return row + CountWords + writer.Words();
}

void ExpandRow(const uint16_t* row, uint8_t* destination, uint64_t column, uint64_t bits) {
    std::memset(destination, 0, static_cast<size_t>((bits + 7) / 8));
    if (row != nullptr) ExpandRuns(row + CountWords, RunCountOf(row), column, destination, bits);
}

// Neither count is tested by those who call; less than none is none.
uint64_t Unsigned(int32_t count) {
    return count < 0 ? 0 : static_cast<uint64_t>(count);
}

// Bytes from one row of packed bits to the next.
size_t StrideOf(int32_t bits) {
    return static_cast<size_t>((Unsigned(bits) + 31) / 32 * 4);
}

} // namespace

} // namespace zkr::runs

using namespace zkr;
using namespace zkr::runs;

void Z_CALL Z_CompressRow(uint16_t* destination, const void* source, int32_t column, int32_t bits) {
    CompressRow(destination, static_cast<const uint8_t*>(source), static_cast<uint32_t>(column) & 7,
                Unsigned(bits));
}

void Z_CALL Z_CompressRows(uint16_t* destination, const void* source, int32_t bits, int32_t rows) {
    const auto* row = static_cast<const uint8_t*>(source);
    for (; rows > 0; --rows, row += StrideOf(bits))
        destination = CompressRow(destination, row, 0, Unsigned(bits));
}

void Z_CALL Z_ExpandRow(const uint16_t* source, void* destination, int32_t column, int32_t bits) {
    ExpandRow(source, static_cast<uint8_t*>(destination), Unsigned(column), Unsigned(bits));
}

void Z_CALL Z_ExpandRows(const uint16_t* source, void* destination, int32_t bits, int32_t rows) {
    auto* row = static_cast<uint8_t*>(destination);
    for (; rows > 0; --rows, row += StrideOf(bits)) {
        ExpandRow(source, row, 0, Unsigned(bits));
        if (source != nullptr) source = NextRow(source);
    }
}

ReturnCode Z_CALL Z_MirrorCompressedBuffer(const uint16_t* source, uint16_t* destination, int32_t rows) {
    if (source == nullptr || destination == nullptr) return code::InvalidArgument;
    for (; rows > 0; --rows, source = NextRow(source)) {
        const uint16_t* const list = source + CountWords;
        const uint32_t words = RunCountOf(source);
        const uint32_t mirrored = MirroredWords(list, words);
        SetRunCount(destination, mirrored);
        MirrorRuns(list, words, destination + CountWords);
        destination += CountWords + mirrored;
    }
    return code::Success;
}

ReturnCode Z_CALL Z_FlipCompressedBuffer(const uint16_t* source, uint16_t* destination, int32_t rows) {
    if (source == nullptr || destination == nullptr) return code::InvalidArgument;
    const uint16_t* end = source;
    for (int32_t row = 0; row < rows; ++row) {
        // Each count is needed to find the next, and the processor does not guess where.
        __builtin_prefetch(end + 256);
        end = NextRow(end);
    }
    uint16_t* target = destination + (end - source);
    for (int32_t row = 0; row < rows; ++row) {
        const uint16_t* const next = NextRow(source);
        target -= next - source;
        std::memcpy(target, source, static_cast<size_t>(next - source) * sizeof(uint16_t));
        source = next;
    }
    return code::Success;
}
