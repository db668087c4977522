// Picks pixels of whole bytes by a table, and steps through others.
#include "geometry/resize/nearest_row.h"

#include <cstring>

namespace zkr {

namespace {

// As long as that passes nothing, three bytes go as four.
template <size_t bytes>
void Pick(const uint8_t* source, uint32_t base, size_t sourceBytes, const uint32_t* places, size_t count,
          uint8_t* target) {
    constexpr size_t moved = bytes == 3 ? 4 : bytes;
    const auto place = [=](size_t i) { return size_t{places[i] - base} * bytes; };
    size_t safe = count;
    while (safe > 0 && (safe == count || place(safe - 1) + moved > sourceBytes))
        --safe;
    size_t i = 0;
    for (; i < safe; ++i)
        std::memcpy(target + i * bytes, source + place(i), moved);
    for (; i < count; ++i)
        std::memcpy(target + i * bytes, source + place(i), bytes);
}

} // namespace

NearestRow::Picker NearestRow::PickerOf(int32_t bitsPerPixel) {
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

ReturnCode NearestRow::Make(int32_t bitsPerPixel, int32_t oldWidth, int32_t newWidth) {
    bits_ = bitsPerPixel;
    oldWidth_ = oldWidth;
    newWidth_ = newWidth;
    pick_ = PickerOf(bitsPerPixel);
    if (pick_ == nullptr) return code::Success;
    const auto count = static_cast<size_t>(newWidth);
    places_.emplace(count);
    if (!*places_) return code::OutOfMemory;
    Stepping at = Stepping::Between(oldWidth, newWidth);
    for (size_t i = 0; i < count; ++i, at.Next())
        (*places_)[i] = static_cast<uint32_t>(at.Index);
    return code::Success;
}

void NearestRow::Run(const uint8_t* source, int32_t base, size_t sourceBytes, int32_t first, int32_t count,
                     uint8_t* target) {
    const auto pixels = static_cast<size_t>(count);
    if (pick_ != nullptr) {
        pick_(source, static_cast<uint32_t>(base), sourceBytes, places_->data() + first, pixels, target);
        return;
    }
    Stepping at = Stepping::Between(oldWidth_, newWidth_, first);
    at.Index -= static_cast<uint32_t>(base);
    StepRow(bits_, at, source, target, pixels);
}

} // namespace zkr
