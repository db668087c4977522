// Sizes, depths, palettes and requests that a host hands to the streaming resizer and to sizing. Buffers are exactly as
// long as they are told to be.
#include "input.h"

#include <algorithm>

namespace {

struct Source : BitmapHandle {
    explicit Source(fuzz::Input& input) : BitmapHandle{} {
        const int32_t bits = input.Depth(), width = 1 + input.Below(40), height = 1 + input.Below(20);
        const int32_t order = bits == 12 ? 2 : input.Below(bits == 16 ? 3 : 2);
        const fuzz::Exact palette(256 * sizeof(RGBQUAD), input);
        FUZZ_EXPECT(Z_CreateBitmap(this, MemoryConventional, width, height, bits, order,
                                   input.Flip() ? palette.Colours() : nullptr, input.Below(9), nullptr,
                                   0) == 1);
        const fuzz::Exact row(BytesPerLine, input);
        for (int32_t y = 0; y < height; ++y)
            Z_PutBitmapRow(this, row.Get(), y, BytesPerLine);
        LowBit = input.Near(16, -1);
        HighBit = input.Near(16, -1);
        LevelLowBit = input.Near(16, -1);
        LevelHighBit = input.Near(16, -1);
        if (input.Flip() && bits > 8) {
            LevelLUTLength = static_cast<uint32_t>(input.Below(300));
            LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit((LevelLUTLength + 1) * sizeof(RGBQUAD), 1));
            if (input.Flip()) Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
        }
        if (input.Below(8) == 0) Order = input.Hostile();
        if (bits <= 8 && input.Below(4) == 0) ColorsUsed = static_cast<uint32_t>(input.Below(257));
    }
    ~Source() { Z_FreeBitmap(this); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
};

// Small enough that no run takes long.
int32_t NewSize(fuzz::Input& input) {
    const int32_t size = input.Near(200);
    return size > 100000 ? size % 100000 : size;
}

void Stream(fuzz::Input& input) {
    Source source(input);
    const auto colors = static_cast<uint32_t>(input.Below(300));
    const fuzz::Exact palette(std::max<size_t>(colors, 256) * sizeof(RGBQUAD), input);
    const int32_t width = NewSize(input), height = NewSize(input),
                  bits = input.Flip() ? input.Depth() : input.Near(66, -1);
    ResizeRowContext* stream = nullptr;
    const ReturnCode result =
        Z_StartResizeBitmap(&source, width, height, bits, input.Flip() ? palette.Colours() : nullptr, colors,
                            input.Word(), nullptr, nullptr, &stream);
    FUZZ_EXPECT((result == Z_SUCCESS) == (stream != nullptr));
    int32_t row = 0, column = 0;
    uint32_t bytes = 1;
    while (stream != nullptr && !input.IsEmpty()) {
        if (input.Flip()) {
            row = input.Near(200);
            column = input.Near(200);
            bytes = static_cast<uint32_t>(input.Below(2000));
        }
        const fuzz::Exact target(bytes);
        const ReturnCode got = Z_GetResizedRowCol(stream, target.Get(), row, column, bytes);
        FUZZ_EXPECT(got == Z_SUCCESS || got == Z_ERROR_ARGUMENT);
        row = static_cast<int32_t>(static_cast<uint32_t>(row) + static_cast<uint32_t>(input.Below(3)) - 1);
    }
    FUZZ_EXPECT(Z_StopResizeBitmap(stream) == (stream != nullptr ? Z_SUCCESS : Z_ERROR_ARGUMENT));
}

void Size(fuzz::Input& input) {
    Source source(input), target(input);
    const auto flags = static_cast<uint32_t>(input.Below(8));
    if (input.Flip()) {
        Z_ResizeBitmapExt(&source, &target, flags);
        return;
    }
    const int32_t width = NewSize(input), height = NewSize(input) % 300;
    Z_SizeBitmap(&source, width, height, flags);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    if (input.Flip())
        Stream(input);
    else
        Size(input);
    return 0;
}
