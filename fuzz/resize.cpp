// Sizes, depths, palettes and requests that a host hands to the streaming resizer and to sizing. Buffers are exactly as
// long as they are told to be.
#include "input.h"

#include <algorithm>

using namespace fuzz;

namespace {

struct Source : AnyBitmap {
    explicit Source(Input& input) : AnyBitmap(input, {40, 20, MemoryConventional}) {
        LowBit = input.Near(16, -1);
        HighBit = input.Near(16, -1);
        LevelLowBit = input.Near(16, -1);
        LevelHighBit = input.Near(16, -1);
        if (input.Below(8) == 0) Order = input.Hostile();
        if (BitsPerPixel <= 8 && input.Below(4) == 0) ColorsUsed = static_cast<uint32_t>(input.Below(257));
    }
};

// Small enough that no run takes long, and that the results of sizing have room on every platform.
int32_t NewSize(Input& input) {
    const int32_t size = input.Near(200);
    return size > 10000 ? size % 10000 : size;
}

void Stream(Input& input) {
    Source source(input);
    const auto colors = static_cast<uint32_t>(input.Below(300));
    const Exact palette(std::max<size_t>(colors, 256) * sizeof(RGBQUAD), input);
    const int32_t width = NewSize(input), height = NewSize(input),
                  bits = input.Flip() ? input.Depth() : input.Near(66, -1);
    RGBQUAD* const given = input.Flip() ? palette.Colours() : nullptr;
    ResizeRowContext* stream = nullptr;
    const ReturnCode result = Z_StartResizeBitmap(&source, width, height, bits, given, colors, input.Word(),
                                                  nullptr, nullptr, &stream);
    FUZZ_EXPECT((Note(result) == Z_SUCCESS) == (stream != nullptr));
    int32_t row = 0, column = 0;
    uint32_t bytes = 1;
    while (stream != nullptr && !input.IsEmpty()) {
        if (input.Flip()) {
            row = input.Near(200);
            column = input.Near(200);
            bytes = static_cast<uint32_t>(input.Below(2000));
        }
        const Exact target(bytes);
        const int64_t got = Note(Z_GetResizedRowCol(stream, target.Get(), row, column, bytes));
        if (got == Z_SUCCESS) Note(target.Get(), bytes);
        FUZZ_EXPECT(got == Z_SUCCESS || got == Z_ERROR_ARGUMENT);
        row = static_cast<int32_t>(static_cast<uint32_t>(row) + static_cast<uint32_t>(input.Below(3)) - 1);
    }
    FUZZ_EXPECT(Z_StopResizeBitmap(stream) == (stream != nullptr ? Z_SUCCESS : Z_ERROR_ARGUMENT));
}

void Size(Input& input) {
    Source source(input), target(input);
    const auto flags = static_cast<uint32_t>(input.Below(8));
    const int32_t width = NewSize(input), height = NewSize(input) % 300;
    Note(input.Flip() ? Z_ResizeBitmapExt(&source, &target, flags)
                      : Z_SizeBitmap(&source, width, height, flags));
    NotePixels(source);
    NotePixels(target);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    if (input.Flip())
        Stream(input);
    else
        Size(input);
    return 0;
}
