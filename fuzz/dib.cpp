// Packed device-independent bitmaps of any header and bytes, in blocks of exactly their length: nothing outside the
// block is touched, a refusal leaves the block, and what is accepted goes through a block of its own and back.
#include "input.h"

#include "support/global_blocks.h"

#include <vector>

using namespace fuzz;
using namespace zkr::test;

namespace {

constexpr uint32_t Code(const char (&name)[5]) {
    return static_cast<uint32_t>(name[0] | name[1] << 8 | name[2] << 16 | name[3] << 24);
}

struct Form {
    uint16_t Bits;
    uint32_t Compression;
};
constexpr Form Forms[] = {{1, 0},
                          {4, 0},
                          {8, 0},
                          {16, 0},
                          {24, 0},
                          {32, 0},
                          {8, 1},
                          {4, 2},
                          {8, 1},
                          {4, 2},
                          {16, 3},
                          {32, 3},
                          {9, Code("YVU9")},
                          {12, Code("I420")},
                          {24, Code("YV12")},
                          {16, Code("UYVY")},
                          {16, Code("YUY2")},
                          {24, Code("YVYU")},
                          {16, Code("Y41P")}};

// The fields of a header, most of which fit together.
void PutHeader(Input& input, uint8_t (&head)[124]) {
    constexpr int32_t sizes[] = {12, 40, 40, 40, 52, 108, 124};
    const Form form = Forms[input.Byte() % std::size(Forms)];
    const int32_t size = input.Byte() < 240 ? sizes[input.Byte() % std::size(sizes)] : input.Hostile();
    const auto put = [&](size_t offset, auto value) { std::memcpy(head + offset, &value, sizeof value); };
    // Runs make large pictures of few bytes: those that fill the memory are the host's business.
    const bool isBounded = form.Compression == 1 || form.Compression == 2;
    const int32_t width = isBounded ? input.Below(400) : input.Near(200);
    const int32_t height = isBounded ? input.Below(300) - 100 : input.Near(60, -30);
    put(0, size);
    put(4, form.Compression > 3 && input.Byte() < 250
               ? static_cast<int32_t>(static_cast<uint32_t>(width) * 16)
               : width);
    put(8, height);
    put(14, static_cast<uint16_t>(input.Byte() < 250 ? form.Bits : input.Byte()));
    put(16, form.Compression);
    put(20, input.Byte() < 128 ? 0 : input.Near(300));
    put(24, input.Near(4000));
    put(28, input.Near(4000));
    put(32, input.Byte() < 128 ? 0 : input.Near(300));
    if (size != 12) return;
    put(4, static_cast<uint16_t>(width));
    put(6, static_cast<uint16_t>(height));
    put(10, form.Bits);
}

void ReadAll(BitmapHandle& bitmap) {
    Z_AccessBitmap(&bitmap);
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int32_t y = 0; y < bitmap.Height; ++y)
        FUZZ_EXPECT(Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine) ==
                    static_cast<ReturnCode>(bitmap.BytesPerLine));
    Z_ReleaseBitmap(&bitmap);
    NotePixels(bitmap);
    NoteEach({bitmap.XResolution, bitmap.YResolution});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    uint8_t head[124] = {};
    const bool mirrors = input.Flip();
    const auto bytes = static_cast<size_t>(input.Below(20000));
    PutHeader(input, head);
    Exact block(bytes);
    input.Fill(block.Get(), bytes);
    std::memcpy(block.Get(), head, bytes < 40 ? bytes : 40);
    HGLOBAL handle = GlobalOf(block.Get(), bytes);
    if (handle == nullptr) return 0;

    BitmapHandle bitmap;
    const ReturnCode result = (mirrors ? Z_MirrorFromDIB : Z_ChangeFromDIB)(&bitmap, handle);
    Note(result == Z_SUCCESS); // sizes that no word holds are refused in their own way
    if (result == Z_SUCCESS) {
        ReadAll(bitmap);
        HGLOBAL again = Z_ConvertToDIB(&bitmap);
        FUZZ_EXPECT(again != nullptr);
        BitmapHandle second;
        FUZZ_EXPECT(Z_ChangeFromDIB(&second, again) == Z_SUCCESS);
        FUZZ_EXPECT(second.Width == bitmap.Width && second.BitsPerPixel == bitmap.BitsPerPixel);
        ReadAll(second);
        Z_FreeBitmap(&second);
    } else {
        FUZZ_EXPECT((bitmap.Flags & Z_FLAG_ALLOCATED) == 0);
    }
    Z_FreeBitmap(&bitmap);
    FUZZ_EXPECT(FreeGlobal(handle) == (mirrors || result != Z_SUCCESS));
    return 0;
}
