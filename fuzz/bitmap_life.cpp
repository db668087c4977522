// One bitmap from its making to its end: rows written and read, its storage moved about with settings from
// outside, copied. A plain array of bytes holds what its rows have to give.
#include "zkr13n.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

void Require(bool holds) {
    if (!holds) abort();
}

int32_t AnySetting(FuzzedDataProvider& data) {
    return data.ConsumeBool() ? data.ConsumeIntegralInRange(-120, 6000) : data.ConsumeIntegral<int32_t>();
}

struct Model {
    BitmapHandle bitmap;
    Bytes data; // of all rows

    size_t RowBytes() const { return bitmap.BytesPerLine; }

    void Put(int32_t row, size_t bytes, uint8_t seed) {
        Bytes pixels(bytes);
        for (size_t i = 0; i < bytes; ++i)
            pixels[i] = static_cast<uint8_t>(seed + 31 * i);
        const auto length = static_cast<uint32_t>(bytes);
        Require(Z_PutBitmapRow(&bitmap, pixels.data(), row, length) == static_cast<ReturnCode>(length));
        memcpy(data.data() + static_cast<size_t>(row) * RowBytes(), pixels.data(), bytes);
    }

    void Check(BitmapHandle& other, int32_t row, size_t bytes) const {
        Bytes pixels(bytes);
        const auto length = static_cast<uint32_t>(bytes);
        Require(Z_GetBitmapRow(&other, pixels.data(), row, length) == static_cast<ReturnCode>(length));
        Require(memcmp(data.data() + static_cast<size_t>(row) * RowBytes(), pixels.data(), bytes) == 0);
    }

    void CheckAll(BitmapHandle& other) const {
        for (int32_t row = 0; row < bitmap.Height; ++row)
            Check(other, row, RowBytes());
    }
};

void Step(Model& model, FuzzedDataProvider& data) {
    const int32_t row = data.ConsumeIntegralInRange(0, model.bitmap.Height - 1);
    const size_t bytes = data.ConsumeIntegralInRange<size_t>(1, model.RowBytes());
    switch (data.ConsumeIntegralInRange(0, 4)) {
    case 0: model.Put(row, bytes, data.ConsumeIntegral<uint8_t>()); break;
    case 1: model.Check(model.bitmap, row, bytes); break;
    case 2: {
        const int32_t types[] = {1, 2, 4, 5, 8, 9, 128, 129, 256, AnySetting(data)};
        int32_t settings[5];
        for (int32_t& setting : settings)
            setting = AnySetting(data);
        Z_SetBitmapMemoryInfo(&model.bitmap, data.PickValueInArray(types), settings[0], settings[1],
                              settings[2], settings[3], settings[4], data.ConsumeIntegral<uint8_t>());
        model.CheckAll(model.bitmap);
        break;
    }
    case 3: {
        BitmapHandle copy;
        if (Z_CopyBitmap(&copy, &model.bitmap) != Z_SUCCESS) break;
        model.CheckAll(copy);
        Z_FreeBitmap(&copy);
        break;
    }
    default: {
        const int32_t previous = Z_LockBitmap(&model.bitmap);
        model.Check(model.bitmap, row, bytes);
        Z_UnlockBitmap(&model.bitmap, previous);
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzedDataProvider data(bytes, size);
    static constexpr int32_t depths[] = {1, 3, 8, 12, 16, 24, 32, 48, 64};
    static constexpr int32_t types[] = {MemoryConventional, MemoryTiled, MemoryTiled | MemoryNoDisk,
                                        MemoryDisk, MemoryNoTiled};
    Z_SetMemoryThresholds(0, AnySetting(data), AnySetting(data), AnySetting(data), AnySetting(data),
                          data.ConsumeIntegral<uint8_t>() & ~uint32_t{Z_THRESHOLD_MEMORY_RESERVE});
    const int32_t width = data.ConsumeIntegralInRange(1, 90);
    const int32_t height = data.ConsumeIntegralInRange(1, 60);
    const int32_t bits = data.PickValueInArray(depths);
    Model model;
    if (Z_CreateBitmap(&model.bitmap, data.PickValueInArray(types), width, height, bits,
                       bits == 12 ? Z_ORDER_GRAY : Z_ORDER_BGR, nullptr, 0, nullptr, 0) != Z_SUCCESS) {
        return 0;
    }
    model.data.resize(model.RowBytes() * static_cast<size_t>(height));
    for (int32_t row = 0; row < height; ++row)
        model.Put(row, model.RowBytes(), static_cast<uint8_t>(row));
    for (int steps = 0; steps < 24 && data.remaining_bytes() != 0; ++steps)
        Step(model, data);
    model.CheckAll(model.bitmap);
    Require(Z_FreeBitmap(&model.bitmap) == Z_SUCCESS);
    return 0;
}
