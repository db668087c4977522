// The quantiser against a slow reference that keeps whole boxes of colours and works everything out anew.
#include "colour/quantise/palette_builder.h"

#include "support/seeded.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <vector>

namespace zkr::test {
namespace {

using Keys = std::vector<uint16_t>;

struct Colour {
    int Channel[3]; // red, green, blue
    int64_t Population;
    int Key() const { return Channel[0] << 10 | Channel[1] << 5 | Channel[2]; }
};
using Box = std::vector<Colour>;

struct Counted {
    std::map<int, int64_t> Population;
    Box Colours; // in the order of their first pixels
};

Counted CountSlowly(const Keys& keys) {
    Counted counted;
    std::vector<int> order;
    for (const int key : keys) {
        if (counted.Population[key] == 0) order.push_back(key);
        if (counted.Population[key] == 32768)
            for (auto& [other, population] : counted.Population)
                population = (population + 1) / 2;
        ++counted.Population[key];
    }
    for (const int key : order)
        counted.Colours.push_back({{key / 1024, key / 32 % 32, key % 32}, counted.Population[key]});
    return counted;
}

struct Moments {
    int Mean[3];
    int64_t Variance[3];
    int64_t All = 0;

    explicit Moments(const Box& box) {
        for (int c = 0; c < 3; ++c) {
            int64_t weight = 0, sum = 0, spread = 0;
            for (const Colour& colour : box) {
                weight += colour.Population;
                sum += colour.Population * colour.Channel[c];
            }
            Mean[c] = static_cast<int>(sum / weight);
            for (const Colour& colour : box)
                spread += colour.Population * (colour.Channel[c] - Mean[c]) * (colour.Channel[c] - Mean[c]);
            Variance[c] = spread / weight;
            All += Variance[c];
        }
    }
};

void PeelSlowly(std::vector<Box>& boxes, size_t wanted, size_t reserve) {
    while (wanted >= boxes.size() + reserve && boxes.back().size() >= 2) {
        Box& box = boxes.back();
        const auto isRarer = [](const Colour& a, const Colour& b) { return a.Population < b.Population; };
        const auto first = std::max_element(box.begin(), box.end(), isRarer);
        int64_t second = 0;
        for (auto other = box.begin(); other != box.end(); ++other)
            if (other != first) second = std::max(second, other->Population);
        if (first->Population <= 2 * second) return;
        std::iter_swap(box.begin(), first);
        Box rest(box.begin() + 1, box.end());
        box.resize(1);
        boxes.push_back(rest);
    }
}

// The new box of the colours above the mean.
Box CutSlowly(Box& box) {
    const Moments moments(box);
    int channel = 0;
    for (int c = 1; c < 3; ++c)
        if (moments.Variance[c] > moments.Variance[channel]) channel = c;
    size_t left = 0, right = box.size() - 1;
    for (;;) {
        while (left != right && box[left].Channel[channel] <= moments.Mean[channel])
            ++left;
        while (left != right && box[right].Channel[channel] > moments.Mean[channel])
            --right;
        if (left == right) break;
        std::swap(box[left], box[right]);
        ++left;
        if (left == right) break;
        --right;
        if (left > right) break;
    }
    Box high(box.begin() + static_cast<ptrdiff_t>(left), box.end());
    box.resize(left);
    return high;
}

void SplitSlowly(std::vector<Box>& boxes, size_t wanted) {
    while (boxes.size() < wanted) {
        size_t widest = 0;
        for (size_t i = 1; i < boxes.size(); ++i) {
            const int64_t a = Moments(boxes[i]).All, b = Moments(boxes[widest]).All;
            if (a > b || (a == b && boxes[i].size() > boxes[widest].size())) widest = i;
        }
        if (boxes[widest].size() < 2) return;
        boxes.push_back(CutSlowly(boxes[widest]));
    }
}

uint32_t Rgb(const RGBQUAD& entry) {
    return static_cast<uint32_t>(entry.rgbRed << 16 | entry.rgbGreen << 8 | entry.rgbBlue);
}

struct Expected {
    std::vector<uint32_t> Palette; // 0xRRGGBB
    std::map<int, uint32_t> Cell;

    Expected(const Keys& keys, size_t wanted, bool fewPeels) {
        std::vector<Box> boxes{CountSlowly(keys).Colours};
        PeelSlowly(boxes, wanted, fewPeels ? 1 : 63);
        SplitSlowly(boxes, wanted);
        std::vector<std::pair<uint32_t, size_t>> entries;
        for (const Box& box : boxes) {
            const Moments moments(box);
            uint32_t colour = 0;
            for (const int mean : moments.Mean)
                colour = colour << 8 | static_cast<uint32_t>(mean * 8 + mean / 4);
            entries.emplace_back(colour, entries.size());
        }
        for (size_t i = 0; i < entries.size(); ++i)
            for (size_t j = i + 1; j < entries.size(); ++j)
                if (entries[j].first < entries[i].first) std::swap(entries[i], entries[j]);
        for (const auto& [colour, box] : entries) {
            Palette.push_back(colour);
            for (const Colour& member : boxes[box])
                Cell[member.Key()] = static_cast<uint32_t>(Palette.size());
        }
        Palette.resize(wanted);
    }
};

void ExpectAsSlow(const Keys& keys, uint32_t wanted, bool fewPeels) {
    const Expected expected(keys, wanted, fewPeels);
    PaletteBuilder builder(wanted, fewPeels);
    ASSERT_TRUE(builder);
    // In pieces, as rows come.
    for (size_t i = 0; i < keys.size(); i += 700)
        builder.Counts().Add(keys.data() + i, std::min<size_t>(700, keys.size() - i));
    std::vector<RGBQUAD> palette(wanted + 1, RGBQUAD{1, 2, 3, 4});
    builder.Build(palette.data());
    for (uint32_t i = 0; i < wanted; ++i) {
        ASSERT_EQ(Rgb(palette[i]), expected.Palette[i]) << i;
        ASSERT_EQ(palette[i].rgbReserved, 0);
    }
    EXPECT_EQ(palette[wanted].rgbReserved, 4) << "an entry too many";
    uint32_t* table = builder.TakeMatchTable();
    for (int key = 0; key < 32768; ++key) {
        const auto cell = expected.Cell.find(key);
        ASSERT_EQ(table[key], cell == expected.Cell.end() ? 0 : cell->second) << key;
    }
    Z_Free(table);
}

void ExpectAsSlow(const Keys& keys) {
    for (const uint32_t wanted : {1u, 2u, 16u, 63u, 64u, 65u, 256u})
        for (const bool fewPeels : {false, true}) {
            SCOPED_TRACE(std::to_string(wanted) + (fewPeels ? " few" : " many"));
            ASSERT_NO_FATAL_FAILURE(ExpectAsSlow(keys, wanted, fewPeels));
        }
}

// Colours of a few levels tie often; skewed ones dominate one another.
TEST(PaletteBuilder, IsTheReferenceOnRandomPictures) {
    Seeded seeded(4);
    for (int round = 0; round < 24; ++round) {
        const int levels = seeded.Between(1, 32), skew = seeded.Below(4);
        Keys keys;
        for (int i = seeded.Between(1, 3000); i > 0; --i) {
            int channel[3];
            for (int& level : channel) {
                level = seeded.Below(levels);
                for (int s = 0; s < skew; ++s)
                    level = std::min(level, seeded.Below(levels));
            }
            keys.push_back(static_cast<uint16_t>(channel[0] << 10 | channel[1] << 5 | channel[2]));
        }
        SCOPED_TRACE("round " + std::to_string(round));
        ASSERT_NO_FATAL_FAILURE(ExpectAsSlow(keys));
    }
}

// Each colour is met four times as often as the next, so that all can be peeled; then two colours in turn with
// single pixels of others between, longer than a population may grow.
TEST(PaletteBuilder, PeelsColoursThatDominateAndHalvesPopulations) {
    Keys peeled, halved;
    for (int colour = 0, population = 1; population <= 4096; ++colour, population *= 4)
        peeled.insert(peeled.end(), static_cast<size_t>(population), static_cast<uint16_t>(colour * 1057));
    for (int i = 0; i < 200; ++i)
        peeled.push_back(static_cast<uint16_t>(i * 157));
    ExpectAsSlow(peeled);
    for (int i = 0; i < 150000; ++i)
        halved.push_back(static_cast<uint16_t>(i % 1000 == 7 ? i / 1000 * 211 : i % 3 == 0 ? 31 : 31 << 10));
    Histogram histogram;
    histogram.Add(halved.data(), halved.size());
    for (const Colour& colour : CountSlowly(halved).Colours)
        ASSERT_EQ(histogram.Population(static_cast<uint32_t>(colour.Key())), colour.Population);
    ExpectAsSlow(halved, 16, false);
}

// All colours that there are, each as often as it can be: the largest sums.
TEST(PaletteBuilder, HoldsTheLargestSums) {
    ColourSums sums = {};
    for (uint32_t key = 0; key < ColourKeys; ++key)
        sums.Add(key, Histogram::LargestPopulation);
    ColourBox box = {};
    box.SetSums(sums);
    for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(box.Mean[c], 15u);            // 15.5, cut
        EXPECT_EQ(box.ChannelVariance[c], 85u); // 85.25 around the mean, 85.5 around 15
    }
    EXPECT_EQ(box.Sums.Weight, 1u << 30);
}

} // namespace
} // namespace zkr::test
