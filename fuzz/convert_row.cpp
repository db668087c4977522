// Row conversion with every argument from outside. The buffer is exactly as long as the longer of the two
// forms, and palettes have exactly the entries that their depth names, so that the sanitizer sees a byte too
// far. Only what callers guarantee is guaranteed here: pointers are valid, and a window has at least one bit.
#include "zkr13n.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

int32_t AnyDepth(FuzzedDataProvider& data) {
    static constexpr int32_t depths[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};
    return data.ConsumeIntegralInRange<int>(0, 31) == 0 ? data.ConsumeIntegral<int32_t>()
                                                        : data.PickValueInArray(depths);
}

size_t RowBytes(int32_t width, int32_t bits) {
    const bool valid = bits >= 0 && bits <= 64;
    return valid ? (static_cast<size_t>(width) * static_cast<size_t>(bits == 0 ? 8 : bits) + 7) / 8 : 0;
}

// A palette, or none; a gray level table holds an entry for every word.
std::vector<RGBQUAD> AnyPalette(FuzzedDataProvider& data, int32_t bits, bool levels) {
    size_t entries = 0;
    if (bits >= 1 && bits <= 8) entries = size_t{1} << bits;
    if (levels && (bits == 12 || bits == 16)) entries = size_t{1} << bits;
    if (entries == 0 || data.ConsumeBool()) return {};
    std::vector<RGBQUAD> palette(entries);
    const Bytes seed = data.ConsumeBytes<uint8_t>(std::min<size_t>(entries * sizeof(RGBQUAD), 64));
    auto* target = reinterpret_cast<uint8_t*>(palette.data());
    for (size_t i = 0; i < entries * sizeof(RGBQUAD) && !seed.empty(); ++i) {
        target[i] = static_cast<uint8_t>(seed[i % seed.size()] + i / seed.size());
    }
    return palette;
}

const RGBQUAD* Entries(const std::vector<RGBQUAD>& palette) {
    return palette.empty() ? nullptr : palette.data();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzedDataProvider data(bytes, size);
    const int32_t sourceBits = AnyDepth(data);
    const int32_t targetBits = AnyDepth(data);
    const int32_t sourceOrder = data.ConsumeIntegralInRange(-1, 3);
    const int32_t targetOrder = data.ConsumeIntegralInRange(-1, 3);
    const uint32_t flags = data.ConsumeIntegral<uint8_t>();
    const int32_t width = data.ConsumeIntegralInRange(0, 700);
    const int32_t windowed = (flags & Z_CONVERT_SOURCE_WINDOW) != 0 ? sourceBits : targetBits;
    const int32_t top = std::clamp(windowed == 0 ? 8 : windowed, 1, 16) - 1;
    const int32_t high = data.ConsumeBool() ? -1 : data.ConsumeIntegralInRange(0, top);
    const int32_t low = data.ConsumeBool() ? -1 : data.ConsumeIntegralInRange(0, high < 0 ? top : high);
    const auto sourcePalette = AnyPalette(data, sourceBits, sourceOrder == Z_ORDER_GRAY);
    const auto targetPalette = AnyPalette(data, targetBits, false);

    const size_t sourceBytes = RowBytes(width, sourceBits);
    const size_t rowBytes = std::max(sourceBytes, RowBytes(width, targetBits));
    if (Z_CalcConvertSize(width, std::clamp(sourceBits, 0, 64), width, std::clamp(targetBits, 0, 64)) <
        rowBytes) {
        abort();
    }
    const auto row = std::make_unique<uint8_t[]>(rowBytes);
    const Bytes pixels = data.ConsumeBytes<uint8_t>(sourceBytes);
    if (!pixels.empty()) memcpy(row.get(), pixels.data(), pixels.size());
    const Bytes before(row.get(), row.get() + rowBytes);

    const ReturnCode result =
        Z_ConvertBufferExt(row.get(), width, sourceBits, targetBits, sourceOrder, targetOrder,
                           Entries(sourcePalette), Entries(targetPalette), flags, low, high);
    if (result != Z_SUCCESS && result != Z_ERROR_ARGUMENT) abort();
    if (result != Z_SUCCESS && rowBytes != 0 && memcmp(before.data(), row.get(), rowBytes) != 0) abort();
    return 0;
}
