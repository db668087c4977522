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

Pixels PixelsOf(const List& list) {
    Pixels pixels;
    for (size_t word = 0; word < list.size(); ++word)
        pixels.insert(pixels.end(), list[word], word % 2);
    return pixels;
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

constexpr uint16_t GuardWord = 0xA5C3;
constexpr uint8_t GuardByte = 0x5A;

// A compressed row as it lies in a buffer, not at a multiple of 4, with a guard behind it.
struct Buffer {
    explicit Buffer(size_t words) : Words(1 + 2 + words + 1, GuardWord) {}
    explicit Buffer(const List& list) : Buffer(list.size()) {
        const auto count = static_cast<uint32_t>(list.size());
        std::memcpy(Row(), &count, sizeof count);
        std::copy(list.begin(), list.end(), Row() + 2);
    }
    uint16_t* Row() { return &Words[1]; }
    // What lies in the buffer must fill it up to the guard.
    List Taken() {
        uint32_t count;
        std::memcpy(&count, Row(), sizeof count);
        EXPECT_EQ(count + 4, Words.size());
        EXPECT_EQ(Words.back(), GuardWord);
        return {Words.begin() + 3, Words.end() - 1};
    }
    std::vector<uint16_t> Words;
};

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
        const List expected = PlainList(pixels);
        for (int phase = 0; phase < 8; ++phase) {
            Buffer row(expected.size());
            const auto source = Packed(seeded, pixels, static_cast<size_t>(phase));
            const auto before = source;
            Z_CompressRow(row.Row(), source.data(), 8 * seeded.Below(1000) + phase,
                          static_cast<int32_t>(pixels.size()));
            ASSERT_EQ(row.Taken(), expected) << pixels.size() << " pixels, phase " << phase;
            ASSERT_EQ(source, before);
        }
    });
}

TEST(CompressedRow, ExpandsFromAnyColumnAndEndsInZeros) {
    ForEachRow([](Seeded& seeded, const Pixels& pixels) {
        Buffer row(PlainList(pixels));
        const auto width = static_cast<int>(pixels.size());
        for (const int column : {0, 1, width / 2, seeded.Below(width), width - 1, width}) {
            for (const int bits : {width - column, seeded.Between(0, width), width + 100}) {
                std::vector<uint8_t> expected(static_cast<size_t>(bits + 7) / 8 + 1);
                for (int i = 0; i < std::min(bits, width - column); ++i)
                    if (pixels[static_cast<size_t>(column + i)])
                        expected[static_cast<size_t>(i) / 8] |= static_cast<uint8_t>(0x80 >> i % 8);
                expected.back() = GuardByte;
                std::vector<uint8_t> bytes(expected.size(), GuardByte);
                Z_ExpandRow(row.Row(), bytes.data(), column, bits);
                ASSERT_EQ(bytes, expected) << bits << " of " << width << " from " << column;
            }
        }
    });
    uint8_t bytes[] = {0xFF, 0xFF, 0xFF};
    Z_ExpandRow(nullptr, bytes, 3, 9);
    EXPECT_EQ(0, std::memcmp(bytes, "\0\0\xFF", 3));
}

TEST(CompressedRow, StandsOneBehindTheOtherAndIsMirroredAndFlipped) {
    Seeded seeded(2);
    for (const size_t width : {1u, 31u, 32u, 33u, 100u, 3000u, 70000u}) {
        std::vector<uint8_t> packed;
        std::vector<List> lists, mirrored;
        for (int kind = 0; kind < PictureKinds; ++kind) {
            Pixels pixels = Picture(seeded, kind, width);
            std::vector<uint8_t> bytes = Packed(seeded, pixels, 0);
            bytes.resize((width + 31) / 32 * 4, GuardByte);
            packed.insert(packed.end(), bytes.begin(), bytes.end());
            lists.push_back(PlainList(pixels));
            // A row that is not split has but one list.
            std::reverse(pixels.begin(), pixels.end());
            mirrored.push_back(PlainList(pixels));
            if (width > 65535) mirrored.back().clear();
        }
        const auto joined = [](const std::vector<List>& rows) {
            std::vector<uint16_t> words;
            for (const List& list : rows) {
                Buffer row(list);
                words.insert(words.end(), row.Row(), row.Row() + 2 + list.size());
            }
            words.push_back(GuardWord);
            return words;
        };
        const auto bits = static_cast<int32_t>(width);
        std::vector<uint16_t> rows(joined(lists).size(), GuardWord), flipped = rows;
        Z_CompressRows(rows.data(), packed.data(), bits, PictureKinds);
        ASSERT_EQ(rows, joined(lists));
        std::vector<uint8_t> expanded(packed.size(), GuardByte);
        Z_ExpandRows(rows.data(), expanded.data(), bits, PictureKinds);
        for (size_t i = 0; i < packed.size(); ++i) {
            const size_t place = i % ((width + 31) / 32 * 4);
            const unsigned mask = place == width / 8 ? 0xFF00u >> width % 8 & 0xFF : 0xFF;
            const unsigned expected = place < (width + 7) / 8 ? packed[i] & mask : GuardByte;
            ASSERT_EQ(expanded[i], expected) << "byte " << i << " at width " << width;
        }
        EXPECT_EQ(Z_SUCCESS, Z_FlipCompressedBuffer(rows.data(), flipped.data(), PictureKinds));
        std::reverse(lists.begin(), lists.end());
        EXPECT_EQ(flipped, joined(lists));
        if (width > 65535) continue;
        std::vector<uint16_t> turned(joined(mirrored).size(), GuardWord);
        EXPECT_EQ(Z_SUCCESS, Z_MirrorCompressedBuffer(rows.data(), turned.data(), PictureKinds));
        EXPECT_EQ(turned, joined(mirrored));
    }
    uint16_t words[4] = {};
    EXPECT_EQ(Z_ERROR_ARGUMENT, Z_MirrorCompressedBuffer(nullptr, words, 1));
    EXPECT_EQ(Z_ERROR_ARGUMENT, Z_FlipCompressedBuffer(words, nullptr, 1));
}

TEST(RunList, IsMirroredWordByWordAlsoInPlace) {
    const struct {
        List From, To;
    } cases[] = {{{0, 100}, {0, 100}},        {{100}, {100}},      {{}, {0}},
                 {{3, 4}, {0, 4, 3}},         {{0, 3, 4}, {4, 3}}, {{65535, 0, 4465}, {4465, 0, 65535}},
                 {{0, 1, 2, 3}, {0, 3, 2, 1}}};
    for (const auto& [from, to] : cases) {
        const auto words = static_cast<uint32_t>(from.size());
        EXPECT_EQ(to.size(), runs::MirroredWords(from.data(), words));
        List list = from;
        list.resize(from.size() + 1);
        runs::MirrorRuns(list.data(), words, list.data());
        list.resize(to.size());
        EXPECT_EQ(list, to);
    }
}

TEST(RunList, PutTogetherFromPiecesIsTheListOfTheWhole) {
    ForEachRow([](Seeded& seeded, const Pixels& pixels) {
        const List whole = PlainList(pixels);
        // Split elsewhere than by the rule, as mirroring leaves it.
        List other(whole.size() + 1);
        Pixels backward(pixels.rbegin(), pixels.rend());
        const List back = PlainList(backward);
        runs::MirrorRuns(back.data(), static_cast<uint32_t>(back.size()), other.data());
        other.resize(runs::MirroredWords(back.data(), static_cast<uint32_t>(back.size())));
        ASSERT_EQ(PixelsOf(other), pixels);

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

TEST(RunList, IsARowWhereItsLengthsAddUpInNoMoreWordsThanPixels) {
    const struct {
        List Words;
        int32_t Width;
        bool Good;
    } cases[] = {{{100}, 100, true},          {{0, 100}, 100, true},           {{40, 59}, 100, false},
                 {{0, 1, 1, 1}, 3, true},     {{0, 1, 1, 1, 0}, 3, false},     {{}, 0, true},
                 {{65535, 1}, 65536, true},   {{65535, 65535, 2}, -1, false},  {{1, 65535}, 0, false},
                 {{0, 0, 0, 100}, 100, true}, {{65535, 65535}, 131069, false}, {{}, 1, false}};
    for (const auto& [words, width, good] : cases)
        EXPECT_EQ(good, runs::IsRow(words.data(), static_cast<uint32_t>(words.size()), width)) << width;
}

} // namespace

} // namespace zkr::test
