// The level table: the window that a bitmap is shown through, and tables with the usual curves.
#include "colour/pixels/colour_value.h"
#include "core/return_codes.h"
#include "zkr13n/allocation.h"
#include "zkr13n/levels.h"
#include "zkr13n/locks.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace zkr {

namespace {

bool IsLocked() {
    return Z_IsSupportLocked(Z_SUPPORT_EXTGRAY) != 0;
}

RGBQUAD* Duplicate(const RGBQUAD* table, uint32_t length) {
    if (length > std::numeric_limits<size_t>::max() / sizeof(RGBQUAD)) return nullptr;
    void* copy = Z_OsAlloc(length * sizeof(RGBQUAD));
    if (copy != nullptr) std::memcpy(copy, table, length * sizeof(RGBQUAD));
    return static_cast<RGBQUAD*>(copy);
}

// The table may be the bitmap's own; a length of 0 takes it away.
ReturnCode SetTable(BitmapHandle& bitmap, RGBQUAD* table, uint32_t length) {
    RGBQUAD* const old = bitmap.LevelLUT;
    const bool isOwn = length > 0 && table == old;
    RGBQUAD* const kept = isOwn ? old : length > 0 ? Duplicate(table, length) : nullptr;
    if (old != nullptr && !isOwn) Z_OsFree(old); // last: the new table may have lain in it
    bitmap.LevelLUT = kept;
    bitmap.LevelLUTLength = kept != nullptr ? length : 0;
    return length > 0 && kept == nullptr ? code::OutOfMemory : code::Success;
}

void SetWindow(BitmapHandle& bitmap, int32_t low, int32_t high) {
    if (bitmap.LowBit == low && bitmap.HighBit == high) return;
    bitmap.LowBit = low;
    bitmap.HighBit = high;
    bitmap.MinVal = 0;
    const int64_t bits = std::min<int64_t>(int64_t{high} - low + 1, 31);
    bitmap.MaxVal = static_cast<int32_t>((int64_t{1} << bits) - 1);
}

// A table that takes what is written inside it and leaves out the rest. Ends of ranges may lie anywhere.
class LevelWriter {
  public:
    LevelWriter(RGBQUAD* table, uint32_t length) : table_(table), length_(length) {}

    int64_t Last() const { return length_ - 1; }

    // From start up to but not including end.
    void Fill(int64_t start, int64_t end, ColourValue colour) {
        for (int64_t i = std::max<int64_t>(start, 0); i < std::min(end, length_); ++i)
            table_[i] = {colour.Blue(), colour.Green(), colour.Red(), 0};
    }

    // From start to end, both included. The reserved byte of the first entry stays.
    void Ramp(int64_t start, int64_t end, ColourValue first, ColourValue second) {
        if (start >= 0 && start < length_) {
            const uint8_t reserved = table_[start].rgbReserved;
            table_[start] = {first.Blue(), first.Green(), first.Red(), reserved};
        }
        const int64_t steps = end - start;
        for (int64_t i = std::max<int64_t>(start + 1, 0); i <= std::min(end, Last()); ++i) {
            const auto channel = [&](int32_t from, int32_t to) {
                return static_cast<uint8_t>(from + (to - from) * (i - start) / steps);
            };
            table_[i] = {channel(first.Blue(), second.Blue()), channel(first.Green(), second.Green()),
                         channel(first.Red(), second.Red()), 0};
        }
    }

  private:
    RGBQUAD* table_;
    int64_t length_;
};

constexpr ColourValue Black(0), White(0xFFFFFF);

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_WindowLevel(BitmapHandle* bitmap, int32_t lowBit, int32_t highBit, RGBQUAD* levelTable,
                                uint32_t length, int32_t mode) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (IsLocked()) return code::ExtendedGrayLocked;
    const int32_t low = std::max(lowBit, 0);
    const int32_t high = highBit < 0 ? bitmap->BitsPerPixel - 1 : highBit;
    if (low > high || (length != 0 && levelTable == nullptr) || (mode != 0 && mode != 1))
        return code::InvalidArgument;

    bitmap->LevelLowBit = low;
    bitmap->LevelHighBit = high;
    if (mode == 1) SetWindow(*bitmap, low, high);
    const ReturnCode result = SetTable(*bitmap, levelTable, length);
    if (result != code::Success) return result;
    bitmap->Flags = (bitmap->Flags & ~flag::LevelLUTActive) | (mode == 1 ? flag::LevelLUTActive : 0);
    return code::Success;
}

ReturnCode Z_CALL Z_WindowLevelFillLUT(RGBQUAD* table, uint32_t length, uint32_t firstColor,
                                       uint32_t secondColor, int32_t low, int32_t high, int32_t lowBit,
                                       int32_t highBit, int32_t minimum, int32_t maximum, int32_t inside) {
    if (table == nullptr) return code::InvalidArgument;
    if (IsLocked()) return code::ExtendedGrayLocked;
    if (lowBit > highBit || minimum > maximum || low > high) return code::InvalidArgument;

    const int32_t shift = std::clamp(lowBit, 0, 31);
    const int64_t a = std::clamp(low, minimum, maximum) >> shift;
    const int64_t b = std::clamp(high, minimum, maximum) >> shift;
    const ColourValue first(firstColor), second(secondColor);
    LevelWriter levels(table, length);
    if (inside != 0) {
        levels.Fill(0, a - 1, Black);
        levels.Ramp(a, b, first, second);
        levels.Fill(b + 1, levels.Last(), White);
    } else {
        levels.Fill(0, a, first);
        if (a + 1 < b) levels.Ramp(a + 1, b - 1, Black, White);
        levels.Fill(b, levels.Last(), second);
    }
    return code::Success;
}
