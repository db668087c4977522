// Compressed rows in a caller's buffer. Whatever the lengths are, the rows are expanded, mirrored and flipped
// as their pixels tell, and nothing beside them is read or written.
#include "input.h"

#include <algorithm>
#include <vector>

using namespace fuzz;

namespace {

using List = std::vector<uint16_t>;
using Pixels = std::vector<bool>;

List AnyList(Input& input) {
    List list(static_cast<size_t>(input.Below(100)));
    for (uint16_t& length : list) {
        const uint8_t kind = input.Byte();
        length = kind < 20   ? uint16_t{0}
                 : kind < 30 ? uint16_t{65535}
                 : kind < 34 ? static_cast<uint16_t>(input.Word())
                             : static_cast<uint16_t>(kind % 67);
    }
    return list;
}

Pixels PixelsOf(const List& list) {
    Pixels pixels;
    for (size_t word = 0; word < list.size(); ++word)
        pixels.insert(pixels.end(), list[word], word % 2 != 0);
    return pixels;
}

// Rows one behind the other, not at a multiple of 4.
struct Rows : Exact {
    explicit Rows(size_t words) : Exact(2 + 2 * words) {}
    explicit Rows(const std::vector<List>& lists) : Rows(WordsOf(lists)) {
        uint16_t* next = First();
        for (const List& list : lists) {
            const auto count = static_cast<uint32_t>(list.size());
            std::memcpy(next, &count, sizeof count);
            next = std::copy(list.begin(), list.end(), next + 2);
        }
    }
    static size_t WordsOf(const std::vector<List>& lists) {
        size_t words = 0;
        for (const List& list : lists)
            words += 2 + list.size();
        return words;
    }
    uint16_t* First() const { return reinterpret_cast<uint16_t*>(Get() + 2); }
};

// So many bits must be the pixels from a column on, and zeros where there are no more.
void ExpectBytes(const uint8_t* bytes, const Pixels& pixels, size_t column, size_t bits) {
    for (size_t i = 0; i < (bits + 7) / 8 * 8; ++i) {
        const bool expected = i < bits && column + i < pixels.size() && pixels[column + i];
        FUZZ_EXPECT(((bytes[i / 8] << i % 8 & 0x80) != 0) == expected);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    std::vector<List> lists(static_cast<size_t>(input.Below(5)));
    std::generate(lists.begin(), lists.end(), [&] { return AnyList(input); });
    const Rows rows(lists);
    const auto count = static_cast<int32_t>(lists.size());
    const int32_t column = input.Below(input.Flip() ? 70000 : 300), bits = input.Below(3000);

    const auto stride = static_cast<size_t>((bits + 31) / 32 * 4);
    const Exact packed(stride * lists.size(), input), before(packed);
    Z_ExpandRows(rows.First(), packed.Get(), bits, count);
    List again(lists.size() * (static_cast<size_t>(bits) + 3));
    Z_CompressRows(again.data(), packed.Get(), bits, count);
    const Exact back(before);
    Z_ExpandRows(again.data(), back.Get(), bits, count);
    FUZZ_EXPECT(std::equal(back.Get(), back.Get() + back.Count, packed.Get()));

    std::vector<List> backward;
    const uint16_t* source = rows.First();
    for (size_t row = 0; row < lists.size(); ++row) {
        const auto bytes = static_cast<size_t>(bits + 7) / 8;
        ExpectBytes(packed.Get() + row * stride, PixelsOf(lists[row]), 0, static_cast<size_t>(bits));
        for (size_t i = row * stride + bytes; i < (row + 1) * stride; ++i)
            FUZZ_EXPECT(packed.Get()[i] == before.Get()[i]);

        const Exact part(bytes, input);
        Z_ExpandRow(source, part.Get(), column, bits);
        ExpectBytes(part.Get(), PixelsOf(lists[row]), static_cast<size_t>(column), static_cast<size_t>(bits));

        // A first run of 0 goes; one comes where the last is one of 1 bits.
        const List& list = lists[row];
        List& mirrored = backward.emplace_back(list.rbegin(), list.rend());
        if (!list.empty() && list[0] == 0) mirrored.pop_back();
        if (list.size() % 2 == 0) mirrored.insert(mirrored.begin(), 0);
        source += 2 + list.size();
    }
    const auto expectRows = [count, &rows](auto change, const std::vector<List>& expected) {
        const Rows changed(Rows::WordsOf(expected)), same(expected);
        FUZZ_EXPECT(change(rows.First(), changed.First(), count) == Z_SUCCESS);
        FUZZ_EXPECT(std::equal(same.Get() + 2, same.Get() + same.Count, changed.Get() + 2));
    };
    expectRows(Z_MirrorCompressedBuffer, backward);
    std::reverse(lists.begin(), lists.end());
    expectRows(Z_FlipCompressedBuffer, lists);
    return 0;
}
