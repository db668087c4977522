// Conversion of rows with every argument from outside: nothing outside the row is touched, a refused call
// changes nothing, and what becomes of a pixel does not depend on its neighbours.
#include "input.h"

#include <algorithm>

using namespace fuzz;

namespace {

struct Request {
    int32_t SourceBits, TargetBits, SourceOrder, TargetOrder;
    const RGBQUAD *SourcePalette, *TargetPalette;
    uint32_t Flags;
    int32_t LowBit, HighBit;

    ReturnCode Run(uint8_t* row, int32_t width) const {
        return Z_ConvertBufferExt(row, width, SourceBits, TargetBits, SourceOrder, TargetOrder, SourcePalette,
                                  TargetPalette, Flags, LowBit, HighBit);
    }
};

size_t Bits(int32_t depth) {
    return depth == 0 ? 8 : static_cast<size_t>(depth);
}

size_t Bytes(size_t pixels, int32_t depth) {
    return (pixels * Bits(depth) + 7) / 8;
}

size_t Entries(int32_t depth) {
    return depth == 0 ? 256 : depth <= 16 ? size_t{1} << depth : 1;
}

// The bits of the last byte that belong to no pixel.
uint8_t UnusedBits(size_t pixels, int32_t depth) {
    const size_t used = pixels * Bits(depth) % 8;
    if (used == 0) return 0;
    return static_cast<uint8_t>(depth == 12 ? 0xF0 : 0xFF >> used);
}

void CheckWhole(const Request& request, const Exact& before, const Exact& after, size_t width) {
    const size_t bytes = Bytes(width, request.TargetBits);
    FUZZ_EXPECT(std::memcmp(after.Get() + bytes, before.Get() + bytes, before.Count - bytes) == 0);
    const uint8_t unused = UnusedBits(width, request.TargetBits);
    FUZZ_EXPECT(((after.Get()[bytes - 1] ^ before.Get()[bytes - 1]) & unused) == 0);
}

// The same row in two pieces, the first a multiple of eight pixels.
void CheckPieces(const Request& request, const Exact& before, const Exact& after, size_t width,
                 size_t first) {
    const size_t widest = std::max(Bits(request.SourceBits), Bits(request.TargetBits));
    for (const bool second : {false, true}) {
        const size_t pixels = second ? width - first : first;
        if (pixels == 0) continue;
        const size_t from = second ? first / 8 * Bits(request.SourceBits) : 0;
        const size_t to = second ? first / 8 * Bits(request.TargetBits) : 0;
        Exact piece((pixels * widest + 7) / 8);
        std::memset(piece.Get(), 0, piece.Count);
        std::memcpy(piece.Get(), before.Get() + from, Bytes(pixels, request.SourceBits));
        FUZZ_EXPECT(request.Run(piece.Get(), static_cast<int32_t>(pixels)) == 1);
        const size_t bytes = Bytes(pixels, request.TargetBits);
        const uint8_t unused = UnusedBits(pixels, request.TargetBits);
        FUZZ_EXPECT(std::memcmp(piece.Get(), after.Get() + to, bytes - 1) == 0);
        FUZZ_EXPECT(((piece.Get()[bytes - 1] ^ after.Get()[to + bytes - 1]) & ~unused) == 0);
    }
}

void Convert(Input& input) {
    Request request = {};
    request.SourceBits = input.Byte() < 30 ? 0 : input.Depth();
    request.TargetBits = input.Byte() < 30 ? 0 : input.Depth();
    if (input.Byte() < 8) (input.Flip() ? request.SourceBits : request.TargetBits) = input.Near(70);
    const bool depthsExist = request.SourceBits >= 0 && request.SourceBits <= 64 && request.TargetBits >= 0 &&
                             request.TargetBits <= 64;
    request.SourceOrder = request.SourceBits == 12 ? 2 : input.Near(3);
    request.TargetOrder = request.TargetBits == 12 ? 2 : input.Near(3);
    request.Flags = static_cast<uint32_t>(input.Near(16));
    request.LowBit = input.Near(17, -1);
    request.HighBit = input.Near(17, -1);

    const Exact sourcePalette(depthsExist ? 4 * Entries(request.SourceBits) : 0, input);
    const Exact targetPalette(depthsExist ? 4 * Entries(request.TargetBits) : 0, input);
    request.SourcePalette = input.Flip() ? sourcePalette.Colours() : nullptr;
    request.TargetPalette = input.Flip() ? targetPalette.Colours() : nullptr;

    const auto width = static_cast<size_t>(1 + input.Below(input.Flip() ? 70 : 2200));
    const size_t widest = depthsExist ? std::max(Bits(request.SourceBits), Bits(request.TargetBits)) : 1;
    const auto signedWidth = static_cast<int32_t>(width);
    FUZZ_EXPECT(!depthsExist || Z_CalcConvertSize(signedWidth, request.SourceBits, signedWidth,
                                                  request.TargetBits) >= (width * widest + 7) / 8);
    const Exact before((width * widest + 7) / 8, input);
    const Exact after(before);
    const ReturnCode result = request.Run(after.Get(), signedWidth);
    Note(result);
    Note(after.Get(), after.Count);
    if (result == 1) {
        CheckWhole(request, before, after, width);
        // From gray words the alpha of a pixel stays what the buffer held.
        const bool grayWords =
            request.SourceBits == 12 || (request.SourceBits == 16 && request.SourceOrder == 2);
        const bool leavesAlpha = grayWords && (request.TargetBits == 32 || request.TargetBits == 64);
        if (!leavesAlpha)
            CheckPieces(request, before, after, width,
                        static_cast<size_t>(input.Below(280)) * 8 % (width + 1) / 8 * 8);
    } else {
        FUZZ_EXPECT(result == Z_ERROR_ARGUMENT);
        FUZZ_EXPECT(std::memcmp(before.Get(), after.Get(), before.Count) == 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Convert(input);
    return 0;
}
