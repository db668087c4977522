// Nearest pixels: packed rows are stepped through as they are, and rows that are equal are made once.
#include "core/row_access.h"
#include "core/scratch.h"
#include "core/sizes.h"
#include "geometry/resize/stepping.h"
#include "geometry/row_tail.h"
#include "geometry/sizing/sizing_work.h"

#include <algorithm>

#include <cstring>
#include <optional>

namespace zkr {

namespace {

// Picks pixels of whole bytes by a table of where they begin. As long as that passes nothing, three bytes go as four.
template <size_t bytes>
void Pick(const uint8_t* source, size_t sourceBytes, const uint32_t* places, size_t count, uint8_t* target) {
    constexpr size_t moved = bytes == 3 ? 4 : bytes;
    size_t i = 0;
    for (; i + 1 < count && places[i] + moved <= sourceBytes; ++i)
        std::memcpy(target + i * bytes, source + places[i], moved);
    for (; i < count; ++i)
        std::memcpy(target + i * bytes, source + places[i], bytes);
}

using Picker = void (*)(const uint8_t* source, size_t sourceBytes, const uint32_t* places, size_t count,
                        uint8_t* target);

Picker PickerOf(int32_t bitsPerPixel) {
    switch (bitsPerPixel) {
    case 8: return Pick<1>;
    case 16: return Pick<2>;
    case 24: return Pick<3>;
    case 32: return Pick<4>;
    case 48: return Pick<6>;
    case 64: return Pick<8>;
    default: return nullptr;
    }
}

// Makes rows of nearest pixels.
class NearestRow {
  public:
    NearestRow(const BitmapHandle& source, int32_t newWidth)
        : bits_(source.BitsPerPixel), sourceBytes_(source.BytesPerLine), pick_(PickerOf(bits_)),
          columns_(Stepping::Between(source.Width, newWidth)), count_(static_cast<size_t>(newWidth)) {
        if (pick_ == nullptr) return;
        places_.emplace(count_);
        if (!*places_) return;
        Stepping at = columns_;
        for (size_t i = 0; i < count_; ++i, at.Next())
            (*places_)[i] = static_cast<uint32_t>(at.Index * static_cast<uint32_t>(bits_ / 8));
    }

    explicit operator bool() const { return !places_ || *places_; }

    void Make(const uint8_t* source, uint8_t* target) {
        if (pick_ != nullptr)
            pick_(source, sourceBytes_, places_->data(), count_, target);
        else
            StepRow(bits_, columns_, source, target, count_);
    }

  private:
    int32_t bits_;
    size_t sourceBytes_;
    Picker pick_;
    Stepping columns_;
    size_t count_;
    std::optional<ScratchBuffer<uint32_t>> places_; // bytes
};

} // namespace

ReturnCode FillNearest(BitmapHandle& source, BitmapHandle& target) {
    // Pixels keep their depth. Where the target's is another, its rows take of them what they can hold.
    const uint64_t rowBytes =
        std::max<uint64_t>(StorageRowBytes(target.Width, source.BitsPerPixel), target.BytesPerLine);
    if (!FitsSize(rowBytes)) return code::OutOfMemory;
    ScratchBuffer<uint8_t> made(static_cast<size_t>(rowBytes));
    ScratchRow buffer(source);
    if (!made || !buffer) return code::OutOfMemory;
    NearestRow columns(source, target.Width);
    if (!columns) return code::OutOfMemory;
    Stepping rows = Stepping::Between(source.Height, target.Height);
    int64_t last = -1;
    return FillRows(source, target, made.data(), [&](int32_t) {
        const auto row = static_cast<int32_t>(rows.Index);
        rows.Next();
        if (row == last) return code::Success;
        last = row;
        const uint8_t* bytes = nullptr;
        const ReturnCode result = FetchRow(source, row, buffer.data(), bytes);
        if (result != code::Success) return result;
        columns.Make(bytes, made.data());
        ClearBehind(source.BitsPerPixel, made.data(), static_cast<uint32_t>(target.Width), rowBytes);
        return code::Success;
    });
}

} // namespace zkr
