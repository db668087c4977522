// The two filter modules: strips of all shapes come back byte by byte, and whatever is not what a module has
// made itself is refused, and never leads it outside its buffers.
#include "filters/checksum.h"
#include "input.h"
#include "support/loaded_module.h"
#include "zkr13n/filter.h"

#include <algorithm>

using namespace fuzz;

namespace {

struct Filter {
    explicit Filter(const char* file) {
        const zkr::test::Module module = zkr::test::Load(file);
        Load = reinterpret_cast<FilterLoadBuffer*>(zkr::test::Find(module, "fltLoadBuffer"));
        Save = reinterpret_cast<FilterSaveBuffer*>(zkr::test::Find(module, "fltSaveBuffer"));
        FUZZ_EXPECT(Load != nullptr && Save != nullptr);
    }
    FilterLoadBuffer* Load;
    FilterSaveBuffer* Save;
};

size_t StripBytes(int32_t width, int32_t rows, int32_t bits) {
    return static_cast<size_t>((width * bits + 31) / 32 * 4 * rows);
}

// Noise, a flat strip, or one that changes slowly.
Exact AnyPixels(size_t bytes, Input& input) {
    Exact pixels(bytes, input);
    const uint8_t kind = input.Byte(), base = input.Byte();
    for (size_t i = 0; i < bytes && kind % 3 != 0; ++i)
        pixels.Get()[i] = static_cast<uint8_t>(base + (kind % 3 == 1 ? 0 : i / 9 + pixels.Get()[i] % 3));
    return pixels;
}

// The compressed strip in exactly its bytes; none where the module refuses.
Exact Save(const Filter& filter, const Exact& pixels, int32_t width, int32_t height, int32_t bits,
           size_t room) {
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biBitCount = static_cast<uint16_t>(bits);
    const Exact output(room);
    auto bytes = static_cast<uint32_t>(room);
    const bool saved = filter.Save(pixels.Get(), &header, output.Get(), &bytes, -1, 0, 20, 0, 0) == 1;
    FUZZ_EXPECT(!saved || bytes <= room);
    Exact data(saved ? bytes : 0);
    std::copy_n(output.Get(), data.Count, data.Get());
    return data;
}

bool Load(const Filter& filter, const Exact& data, const Exact& pixels, int32_t width, int32_t rows,
          int32_t bits) {
    return filter.Load(data.Get(), static_cast<uint32_t>(data.Count), pixels.Get(), 20, width, rows, bits, 0,
                       0) == Z_FILTER_SUCCESS;
}

// Cuts data, adds to it or changes a byte.
Exact Spoilt(const Exact& data, Input& input) {
    const auto place = static_cast<size_t>(input.Word()) % data.Count;
    const uint8_t how = input.Byte() % 3;
    Exact spoilt(how == 0 ? place : data.Count + (how == 1 ? 1 + place % 9 : 0), input);
    std::copy_n(data.Get(), std::min(data.Count, spoilt.Count), spoilt.Get());
    if (how == 2) spoilt.Get()[place] ^= static_cast<uint8_t>(1 + input.Byte() % 255);
    return spoilt;
}

// Gives a strip from nowhere the head and the sum that the module looks for.
void Forge(const Exact& data, size_t plain) {
    uint8_t head[] = {'q', 'o', 'i', 'f', 0, 0, 0, 0, 0, 0, 0, 1, 3, 0};
    for (size_t i = 0; i < 4; ++i)
        head[7 - i] = static_cast<uint8_t>(plain / 3 >> 8 * i);
    std::copy_n(head, sizeof head, data.Get());
    const size_t summed = data.Count - sizeof(uint64_t);
    const uint64_t sum = zkr::filters::Checksum(data.Get(), summed);
    std::memcpy(data.Get() + summed, &sum, sizeof sum);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const Filter filters[] = {Filter(ZKR_COLOUR_FILTER), Filter(ZKR_BITONAL_FILTER)};
    Input input(bytes, size);
    const bool colour = input.Flip();
    const Filter& filter = filters[colour ? 0 : 1];
    const int32_t bits = colour ? 24 : 1;
    const int32_t width = 1 + input.Below(input.Flip() ? 70 : 2000), rows = 1 + input.Below(16);
    const size_t plain = StripBytes(width, rows, bits);
    const Exact pixels = AnyPixels(plain, input), back(plain);

    // Whatever comes from nowhere is most likely refused, unless it is forged with care.
    const Exact nowhere(static_cast<size_t>(22 + input.Below(2000)), input);
    if (colour) Forge(nowhere, plain);
    Load(filter, nowhere, back, width, rows, bits);

    const Exact data = Save(filter, pixels, width, -rows, bits, StripBytes(width, 32, bits));
    FUZZ_EXPECT(data.Count != 0); // the room that the library gives holds any strip
    FUZZ_EXPECT(Load(filter, data, back, width, rows, bits));
    FUZZ_EXPECT(std::equal(pixels.Get(), pixels.Get() + plain, back.Get()));

    // A compressed strip has a few bits that mean nothing.
    FUZZ_EXPECT(!Load(filter, Spoilt(data, input), back, width, rows, bits) ||
                std::equal(pixels.Get(), pixels.Get() + plain, back.Get()));
    const int32_t otherRows = input.Below(19) - 2, otherWidth = input.Below(2100) - 50;
    const size_t otherPlain = otherRows > 0 && otherWidth > 0 ? StripBytes(otherWidth, otherRows, bits) : 0;
    if (otherPlain != plain) FUZZ_EXPECT(!Load(filter, data, Exact(otherPlain), otherWidth, otherRows, bits));
    FUZZ_EXPECT(!Load(filter, data, back, width, rows, 25 - bits));

    const auto room = static_cast<size_t>(input.Word()) % data.Count;
    FUZZ_EXPECT(Save(filter, pixels, width, -rows, bits, room).Count == 0);
    FUZZ_EXPECT(Save(filter, pixels, width, input.Flip() ? rows : INT32_MIN, bits, 4 * plain).Count == 0);
    return 0;
}
