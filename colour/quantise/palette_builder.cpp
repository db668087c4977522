// The quantiser. Ties, the order of scans and whole-number cuts are as they are on purpose: they decide which
// palette comes out.
#include "colour/quantise/palette_builder.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace zkr {

namespace {

auto SortKey(const RGBQUAD& entry) {
    return std::tuple(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

RGBQUAD EntryOf(const ColourBox& box) {
    return {WidenChannel(box.Mean[2]), WidenChannel(box.Mean[1]), WidenChannel(box.Mean[0]), 0};
}

} // namespace

void SortPalette(RGBQUAD* palette, uint32_t entries, uint32_t* order) {
    for (uint32_t i = 0; i < entries; ++i)
        for (uint32_t j = i + 1; j < entries; ++j)
            if (SortKey(palette[j]) < SortKey(palette[i])) {
                std::swap(palette[i], palette[j]);
                if (order != nullptr) std::swap(order[i], order[j]);
            }
}

PaletteBuilder::PaletteBuilder(uint32_t colorsWanted, bool fewPeels)
    : colorsWanted_(colorsWanted), reserve_(fewPeels ? 1 : 63), boxes_(colorsWanted),
      sortOrder_(colorsWanted) {}

void PaletteBuilder::Build(RGBQUAD* paletteOut) {
    boxes_[0] = {};
    boxes_[0].Count = histogram_.ColourCount();
    boxCount_ = 1;
    Peel();
    Split();
    std::fill_n(paletteOut, colorsWanted_, RGBQUAD{});
    for (uint32_t i = 0; i < boxCount_; ++i)
        paletteOut[i] = EntryOf(boxes_[i]);
    std::iota(sortOrder_.data(), sortOrder_.data() + boxCount_, 0u);
    SortPalette(paletteOut, boxCount_, sortOrder_.data());
}

uint32_t* PaletteBuilder::TakeMatchTable() {
    for (uint32_t i = 0; i < boxCount_; ++i)
        for (const int32_t colour : ColoursOf(boxes_[sortOrder_[i]]))
            histogram_.SetPopulation(static_cast<uint32_t>(colour), i + 1);
    return histogram_.TakeTable();
}

std::span<int32_t> PaletteBuilder::ColoursOf(const ColourBox& box) {
    return {histogram_.Colours() + box.First, box.Count};
}

ColourSums PaletteBuilder::SumsOf(const ColourBox& box) {
    ColourSums sums = {};
    for (const int32_t colour : ColoursOf(box)) {
        const auto key = static_cast<uint32_t>(colour);
        sums.Add(key, histogram_.Population(key));
    }
    return sums;
}

// Ends after sixteen colours at the latest, for each must be met more than twice as often as the next.
void PaletteBuilder::Peel() {
    while (colorsWanted_ >= boxCount_ + reserve_ && PeelOne()) {
    }
    ColourBox& rest = boxes_[boxCount_ - 1];
    rest.SetSums(SumsOf(rest));
}

// Makes a box of the most frequent colour of the last box, if that dominates, and a new last box of the
// others.
bool PaletteBuilder::PeelOne() {
    ColourBox& box = boxes_[boxCount_ - 1];
    if (box.Count < 2) return false;
    const std::span<int32_t> colours = ColoursOf(box);
    size_t place = 0;
    uint32_t largest = 0;
    uint32_t second = 0;
    for (size_t i = 0; i < colours.size(); ++i) {
        const uint32_t population = histogram_.Population(static_cast<uint32_t>(colours[i]));
        if (population > largest) {
            second = std::exchange(largest, population);
            place = i;
        } else {
            second = std::max(second, population);
        }
    }
    if (largest <= 2 * second) return false;
    std::swap(colours[0], colours[place]);
    ColourBox& rest = boxes_[boxCount_++];
    rest = {};
    rest.First = box.First + 1;
    rest.Count = box.Count - 1;
    box.Count = 1;
    for (int32_t c = 0; c < ChannelCount; ++c)
        box.Mean[c] = ChannelOf(static_cast<uint32_t>(colours[0]), c);
    return true;
}

void PaletteBuilder::Split() {
    while (boxCount_ < colorsWanted_) {
        ColourBox& box = WidestBox();
        if (box.Count < 2) return;
        SplitBox(box);
    }
}

// By variance, then by distinct colours, then the earlier one.
ColourBox& PaletteBuilder::WidestBox() {
    const auto isLess = [](const ColourBox& a, const ColourBox& b) {
        return std::tie(a.Variance, a.Count) < std::tie(b.Variance, b.Count);
    };
    return *std::max_element(boxes_.data(), boxes_.data() + boxCount_, isLess);
}

// The part with fewer colours is added up, the other is what is then left of the whole.
void PaletteBuilder::SplitBox(ColourBox& box) {
    const ColourSums whole = box.Sums;
    ColourBox& high = boxes_[boxCount_++];
    high = {};
    high.First = Partition(box);
    high.Count = box.First + box.Count - high.First;
    box.Count -= high.Count;
    ColourBox& scanned = box.Count < high.Count ? box : high;
    ColourBox& other = box.Count < high.Count ? high : box;
    scanned.SetSums(SumsOf(scanned));
    other.SetSums(whole.Without(scanned.Sums));
}

// Puts colours up to the mean of the widest channel in front of those above it and returns where the latter
// begin. A colour at which the two scans meet counts as above without a test. As there are two colours at
// least, and one that is not above the mean, neither part is empty.
uint32_t PaletteBuilder::Partition(const ColourBox& box) {
    const int32_t channel = box.WidestChannel();
    const uint32_t mean = box.Mean[channel];
    int32_t* const colours = histogram_.Colours();
    const auto isLow = [&](uint32_t place) {
        return ChannelOf(static_cast<uint32_t>(colours[place]), channel) <= mean;
    };
    uint32_t low = box.First;
    uint32_t high = box.First + box.Count - 1;
    while (true) {
        while (low < high && isLow(low))
            ++low;
        while (low < high && !isLow(high))
            --high;
        if (low >= high) return low;
        std::swap(colours[low++], colours[high--]);
    }
}

} // namespace zkr
