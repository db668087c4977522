#include "platform/portable/nearest.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace zkr::platform {

namespace {

constexpr int Side = 16; // of a cell, and of the cube in cells

int Square(int difference) {
    return difference * difference;
}
int Distance(uint32_t colour, const PALETTEENTRY& entry) {
    return Square(entry.peRed - static_cast<int>(colour >> 16 & 255)) +
           Square(entry.peGreen - static_cast<int>(colour >> 8 & 255)) +
           Square(entry.peBlue - static_cast<int>(colour & 255));
}

// How far a channel's value is from the values of a cell that begin at first: at least and at most.
struct Reach {
    int least;
    int most;
};
Reach ReachOf(int value, uint32_t first) {
    const int low = static_cast<int>(first & 255), high = low + Side - 1;
    return {Square(value < low    ? low - value
                   : value > high ? value - high
                                  : 0),
            Square(std::max(value - low, high - value))};
}

} // namespace

uint32_t NearestEntry(uint32_t colour, const PALETTEENTRY* entries, int count) {
    int best = 0, bestDistance = std::numeric_limits<int>::max();
    for (int i = 0; i < count && bestDistance > 0; ++i) {
        const int distance = Distance(colour, entries[i]);
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return static_cast<uint32_t>(best);
}

NearestTable::NearestTable(const PALETTEENTRY* entries, int count)
    : entries_(entries), count_(count),
      cells_(static_cast<Cell*>(std::calloc(Side * Side * Side, sizeof(Cell)))) {}

NearestTable::~NearestTable() {
    std::free(cells_);
}

// An entry can be the nearest of some colour in the cell unless another one is nearer to all of them.
const NearestTable::Cell& NearestTable::CellOf(uint32_t colour) {
    Cell& cell = cells_[(colour >> 20 & 15) << 8 | (colour >> 12 & 15) << 4 | (colour >> 4 & 15)];
    if (cell.count != 0) return cell;
    const uint32_t first = colour & 0xF0F0F0;
    int least[256], farthest = std::numeric_limits<int>::max();
    for (int i = 0; i < count_; ++i) {
        const PALETTEENTRY& entry = entries_[i];
        const Reach red = ReachOf(entry.peRed, first >> 16), green = ReachOf(entry.peGreen, first >> 8),
                    blue = ReachOf(entry.peBlue, first);
        least[i] = red.least + green.least + blue.least;
        farthest = std::min(farthest, red.most + green.most + blue.most);
    }
    for (int i = 0; i < count_; ++i) {
        if (least[i] <= farthest) cell.entries[cell.count++] = static_cast<uint8_t>(i);
    }
    return cell;
}

uint32_t NearestTable::Find(uint32_t colour) {
    if (cells_ == nullptr) return NearestEntry(colour, entries_, count_);
    const Cell& cell = CellOf(colour);
    uint32_t best = 0;
    int bestDistance = std::numeric_limits<int>::max();
    for (int i = 0; i < cell.count; ++i) {
        const int distance = Distance(colour, entries_[cell.entries[i]]);
        if (distance < bestDistance) {
            best = cell.entries[i];
            bestDistance = distance;
        }
    }
    return best;
}

} // namespace zkr::platform
