// Run lists against plain ones made pixel by pixel: the exchange functions, and the writer and reader that
// the compressed class puts rows together with.
#include "core/runs/run_list.h"
#include "support/seeded.h"
#include "zkr13n/compressed_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

namespace zkr::test {

namespace {

using Pixels = std::vector<uint8_t>; // 0 or 1 each
using List = std::vector<uint16_t>;

List PlainList(const Pixels& pixels) {
    List list = {0};
    unsigned colour = 0;
    for (const uint8_t pixel : pixels) {
        if (pixel != colour) {
            list.push_back(0);
            colour = pixel;
        }
        if (list.back() == 65535) list.insert(list.end(), {0, 0});
        ++list.back();
    }
    return list;
}

// Bits in exactly the bytes that they need, with ones and zeros in front and behind that are not theirs.
std::vector<uint8_t> Packed(Seeded& seeded, const Pixels& pixels, size_t phase) {
    std::vector<uint8_t> bytes((phase + pixels.size() + 7) / 8);
    for (uint8_t& byte : bytes)
        byte = seeded.Byte();
    for (size_t i = 0; i < pixels.size(); ++i) {
        const auto bit = static_cast<uint8_t>(0x80 >> (phase + i) % 8);
        uint8_t& byte = bytes[(phase + i) / 8];
        byte = static_cast<uint8_t>(pixels[i] ? byte | bit : byte & ~bit);
    }
    return bytes;
}

constexpr uint16_t GuardWord = 0xA5C3;

// Rows of blank paper and of ink, alternating pixels, noise, strokes, and a few long runs.
constexpr int PictureKinds = 6;
Pixels Picture(Seeded& seeded, int kind, size_t width) {
    Pixels pixels(width, kind == 1);
    if (kind == 2)
        for (size_t i = 0; i < width; ++i)
            pixels[i] = (i + width) % 2;
    if (kind == 3)
        for (uint8_t& pixel : pixels)
            pixel = seeded.Byte() & 1;
    if (kind >= 4) {
        size_t place = 0;
        for (uint8_t colour = seeded.Byte() & 1; place < width; colour ^= 1) {
            const auto longest = kind == 4 ? 70 : 1 + static_cast<int>(width);
            const size_t run = std::min(width - place, static_cast<size_t>(seeded.Between(1, longest)));
            std::fill_n(pixels.begin() + static_cast<ptrdiff_t>(place), run, colour);
            place += run;
        }
    }
    return pixels;
}

template <typename Visit> void ForEachRow(Visit&& visit) {
    std::vector<size_t> widths(130);
    std::iota(widths.begin(), widths.end(), 1);
    widths.insert(widths.end(), {511, 512, 513, 8191, 8192, 8193, 65528, 65534, 65535, 65536, 65537, 131069,
                                 131070, 131071, 131072, 200000});
    Seeded seeded(1);
    for (const size_t width : widths)
        for (int kind = 0; kind < PictureKinds; ++kind)
            visit(seeded, Picture(seeded, kind, width));
}

TEST(CompressedRow, HoldsThePixelsFromAnyPhaseAndNoneElse) {
    ForEachRow([](Seeded& seeded, const Pixels& pixels) {
        List expected = PlainList(pixels);
        const auto count = static_cast<uint32_t>(expected.size());
        const auto bits = static_cast<int32_t>(pixels.size());
        expected.push_back(GuardWord);
        for (int phase = 0; phase < 8; ++phase) {
            const auto source = Packed(seeded, pixels, static_cast<size_t>(phase));
            List words(3 + expected.size(), GuardWord);
            uint16_t* const row = &words[1]; // not at a multiple of 4
            Z_CompressRow(row, source.data(), 8 * seeded.Below(1000) + phase, bits);
            ASSERT_EQ(0, std::memcmp(row, &count, sizeof count));
            words.erase(words.begin(), words.begin() + 3);
            ASSERT_EQ(words, expected) << bits << " pixels, phase " << phase;
        }
    });
}

TEST(CompressedRow, IsBlankOrRefusedWhereThereIsNone) {
    uint8_t bytes[] = {0xFF, 0xFF, 0xFF};
    Z_ExpandRow(nullptr, bytes, 3, 9);
    EXPECT_EQ(0, std::memcmp(bytes, "\0\0\xFF", 3));
    uint16_t words[4] = {};
    EXPECT_EQ(Z_ERROR_ARGUMENT, Z_MirrorCompressedBuffer(nullptr, words, 1));
    EXPECT_EQ(Z_ERROR_ARGUMENT, Z_FlipCompressedBuffer(words, nullptr, 1));
}

TEST(RunList, PutTogetherFromPiecesIsTheListOfTheWhole) {
    ForEachRow([](Seeded& seeded, const Pixels& pixels) {
        const List whole = PlainList(pixels);
        // Split elsewhere than by the rule, as mirroring leaves it.
        List other = PlainList(Pixels(pixels.rbegin(), pixels.rend()));
        const auto words = static_cast<uint32_t>(other.size());
        const uint32_t mirrored = runs::MirroredWords(other.data(), words);
        other.resize(words + 1);
        runs::MirrorRuns(other.data(), words, other.data());
        other.resize(mirrored);

        List made(whole.size());
        runs::RunWriter writer(made.data(), false);
        runs::RunReader reader(other.data(), static_cast<uint32_t>(other.size()));
        for (size_t place = 0; place < pixels.size();) {
            const auto most = static_cast<int>(std::min<size_t>(pixels.size() - place, 100000));
            const auto count = static_cast<size_t>(seeded.Between(1, most));
            if (seeded.Below(2) != 0) {
                const auto phase = static_cast<uint32_t>(seeded.Below(8));
                const auto piece = pixels.begin() + static_cast<ptrdiff_t>(place);
                const Pixels some(piece, piece + static_cast<ptrdiff_t>(count));
                writer.AppendBits(Packed(seeded, some, phase).data(), phase, count);
                reader.Skip(count);
            } else {
                writer.AppendRuns(reader, count);
            }
            place += count;
            ASSERT_EQ(reader.IsAtEnd(), place == pixels.size());
            ASSERT_EQ(reader.Word() - other.data() < static_cast<ptrdiff_t>(other.size()), !reader.IsAtEnd());
        }
        ASSERT_EQ(writer.Words(), whole.size());
        ASSERT_EQ(made, whole);
    });
}

} // namespace

} // namespace zkr::test
