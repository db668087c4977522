// The gray window: which bits of a gray pixel are its value, and the fields of the record that carry it.
#include "zkr13n/gray.h"

#include "colour/gray/gray_window.h"
#include "core/flags.h"
#include "core/return_codes.h"
#include "zkr13n/allocation.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace zkr {

GrayWindow MakeGrayWindow(int32_t depth, int32_t maximumBits, int32_t lowBit, int32_t highBit) {
    int32_t bits = 0;
    uint32_t mask = 0;
    int32_t shift = 0;
    constexpr int32_t farthest = 64;
    Z_GetGrayParams(depth == 0 ? 8 : depth, maximumBits, std::clamp(lowBit, -1, farthest),
                    std::clamp(highBit, -1, farthest), &bits, &mask, &shift);
    const auto kept = static_cast<uint32_t>(std::clamp(bits, 0, 16));
    return {kept, (1u << kept) - 1, static_cast<uint32_t>(std::clamp(shift, 0, 31))};
}

} // namespace zkr

using namespace zkr;

void Z_CALL Z_GetGrayParams(int32_t depth, int32_t maximumValueBits, int32_t lowBit, int32_t highBit,
                            int32_t* valueBits, uint32_t* mask, int32_t* shift) {
    const int64_t high = highBit < 0 ? int64_t{depth} - 1 : highBit;
    const int64_t low = std::max(lowBit, 0);
    const int64_t bits = std::min(high - low + 1, int64_t{maximumValueBits});
    if (valueBits != nullptr) *valueBits = static_cast<int32_t>(bits);
    *mask = bits <= 0 ? 0 : bits >= 32 ? 0xFFFFFFFFu : (1u << bits) - 1;
    *shift = static_cast<int32_t>(high - bits + 1);
}

void Z_CALL Z_InitGrayParams(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return;
    const int32_t bits = bitmap->BitsPerPixel;
    bitmap->LowBit = bitmap->LevelLowBit = 0;
    bitmap->HighBit = bitmap->LevelHighBit = bits - 1;
    bitmap->MinVal = 0;
    bitmap->MaxVal = bits >= 31 ? std::numeric_limits<int32_t>::max() : (1 << std::max(bits, 0)) - 1;
    if (bitmap->LevelLUT != nullptr) Z_OsFree(bitmap->LevelLUT);
    bitmap->LevelLUT = nullptr;
    bitmap->LevelLUTLength = 0;
}

ReturnCode Z_CALL Z_CopyGrayParams(BitmapHandle* target, const BitmapHandle* source) {
    if (target == nullptr || source == nullptr) return code::InvalidBitmap;

    RGBQUAD* table = nullptr;
    const uint32_t length = source->LevelLUT != nullptr ? source->LevelLUTLength : 0;
    if (length > 0) {
        if (length > std::numeric_limits<size_t>::max() / sizeof(RGBQUAD)) return code::OutOfMemory;
        table = static_cast<RGBQUAD*>(Z_OsAlloc(length * sizeof(RGBQUAD)));
        if (table == nullptr) return code::OutOfMemory;
        std::memcpy(table, source->LevelLUT, length * sizeof(RGBQUAD));
    }
    target->LowBit = source->LowBit;
    target->HighBit = source->HighBit;
    target->LevelLowBit = source->LevelLowBit;
    target->LevelHighBit = source->LevelHighBit;
    target->MinVal = source->MinVal;
    target->MaxVal = source->MaxVal;
    target->Flags = (target->Flags & ~flag::LevelLUTActive) | (source->Flags & flag::LevelLUTActive);
    target->LevelLUT = table;
    target->LevelLUTLength = length;
    return code::Success;
}

void Z_CALL Z_FreeGrayParams(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return;
    if (bitmap->LevelLUT != nullptr) Z_OsFree(bitmap->LevelLUT);
    if (bitmap->PaintLUT != nullptr) Z_OsFree(bitmap->PaintLUT);
    bitmap->LevelLUT = nullptr;
    bitmap->PaintLUT = nullptr;
}
