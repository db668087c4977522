// The paint table: what contrast, intensity and gamma make of each level, in this order.
#include "core/flags.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "zkr13n/allocation.h"
#include "zkr13n/paint.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

using namespace zkr;

namespace {

constexpr int32_t Levels = 256;
constexpr int32_t FarthestValue = 1000;

// a * b / c to the nearest whole number, halves up; for numbers of 0 and more.
constexpr int32_t Scaled(int32_t a, int32_t b, int32_t c) {
    return static_cast<int32_t>((int64_t{a} * b + c / 2) / c);
}

// Levels from start on rise evenly by `rise` until end.
void Ramp(uint8_t* table, int32_t start, int32_t end, int32_t from, int32_t rise) {
    for (int32_t i = start; i < end; ++i)
        table[i] = static_cast<uint8_t>(from + std::clamp(Scaled(i - start, rise, end - start), 0, 255));
}

void ApplyContrast(uint8_t* table, int32_t contrast) {
    const int32_t amount = std::abs(contrast);
    const int32_t low = Scaled(amount, 128, 4000);
    const int32_t high =
        256 - static_cast<int32_t>(5.34 * std::pow(1.5, std::log(amount * 0.128) / std::log(2.0)));
    if (contrast < 0) return Ramp(table, 0, Levels, low, high - low);
    Ramp(table, 0, low, 0, 0);
    Ramp(table, low, high, 0, 256);
    Ramp(table, high, Levels, 255, 0);
}

void ApplyIntensity(uint8_t* table, int32_t intensity) {
    const int32_t shift = (255 * intensity + 500) / 1000;
    for (int32_t i = 0; i < Levels; ++i)
        table[i] = static_cast<uint8_t>(std::clamp(table[i] + shift, 0, 255));
}

void ApplyGamma(uint8_t* table, uint32_t gamma) {
    constexpr double oneLevel = 0.00392156862745098;
    const double power = 100.0 / gamma;
    for (int32_t i = 0; i < Levels; ++i)
        table[i] = static_cast<uint8_t>(std::pow(table[i] * oneLevel, power) * 255.0 + 0.5);
}

// Whether the table is in use stays told by its flag where contrast is 0 and all levels stay as they are.
void MakeTable(BitmapHandle& bitmap) {
    uint8_t* table = bitmap.PaintLUT;
    std::iota(table, table + Levels, uint8_t{0});
    if (bitmap.PaintContrast != 0) {
        bitmap.Flags &= ~flag::PaintLUTActive;
        ApplyContrast(table, bitmap.PaintContrast);
    }
    ApplyIntensity(table, bitmap.PaintIntensity);
    ApplyGamma(table, static_cast<uint32_t>(bitmap.PaintGamma));
    for (int32_t i = 0; i < Levels; ++i) {
        if (table[i] != i) bitmap.Flags |= flag::PaintLUTActive;
    }
}

ReturnCode Change(BitmapHandle& bitmap, int32_t BitmapHandle::*field, int32_t value) {
    if (bitmap.PaintLUT == nullptr) {
        bitmap.PaintLUT = static_cast<uint8_t*>(Z_OsAlloc(Levels));
        if (bitmap.PaintLUT == nullptr) return code::OutOfMemory;
    }
    bitmap.*field = value;
    MakeTable(bitmap);
    return code::Success;
}

ReturnCode ChangeWithin(BitmapHandle* bitmap, int32_t BitmapHandle::*field, int32_t value) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (value < -FarthestValue || value > FarthestValue) return code::InvalidArgument;
    return bitmap->*field == value ? code::Success : Change(*bitmap, field, value);
}

} // namespace

ReturnCode Z_CALL Z_SetPaintIntensity(BitmapHandle* bitmap, int32_t value) {
    return ChangeWithin(bitmap, &BitmapHandle::PaintIntensity, value);
}

ReturnCode Z_CALL Z_SetPaintContrast(BitmapHandle* bitmap, int32_t value) {
    return ChangeWithin(bitmap, &BitmapHandle::PaintContrast, value);
}

ReturnCode Z_CALL Z_SetPaintGamma(BitmapHandle* bitmap, uint32_t value) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (value == 0) return code::InvalidArgument;
    return Change(*bitmap, &BitmapHandle::PaintGamma, static_cast<int32_t>(value));
}

int32_t Z_CALL Z_GetPaintIntensity(const BitmapHandle* bitmap) {
    return bitmap->PaintIntensity;
}

int32_t Z_CALL Z_GetPaintContrast(const BitmapHandle* bitmap) {
    return bitmap->PaintContrast;
}

uint32_t Z_CALL Z_GetPaintGamma(const BitmapHandle* bitmap) {
    return static_cast<uint32_t>(bitmap->PaintGamma);
}
