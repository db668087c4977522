// The level table of gray bitmaps, and the range of the values in a bitmap.
#include "automation/raster_object.h"

#include "zkr13n/convert.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <bit>

namespace zkr::automation {

namespace {

constexpr int32_t MostLevelBits = 16; // of gray pixels

// Entries of a table for the bitmap's window; 0 where the window is none of a gray pixel.
int64_t TableEntries(const BitmapHandle& bitmap) {
    const int32_t bits = bitmap.LevelHighBit - bitmap.LevelLowBit + 1;
    return bits >= 1 && bits <= MostLevelBits ? int64_t{1} << bits : 0;
}

// The rows of a bitmap, one after the other, in a buffer with room for another depth of 16 bits at most.
template <typename Body> ReturnCode VisitRows(BitmapHandle* bitmap, Body body) {
    Values<uint32_t> row;
    const size_t words = Z_CalcConvertSize(bitmap->Width, bitmap->BitsPerPixel, bitmap->Width, 16) / 4 + 1;
    if (words > INT32_MAX || !row.Resize(static_cast<int32_t>(words))) return Z_ERROR_MEMORY;
    const int32_t before = Z_LockBitmap(bitmap);
    ReturnCode status = Z_SUCCESS;
    for (int32_t y = 0; y < bitmap->Height && status == Z_SUCCESS; ++y) {
        const int32_t read = Z_GetBitmapRow(bitmap, row.Data(), y, bitmap->BytesPerLine);
        status = read < 0 ? read : body(reinterpret_cast<uint8_t*>(row.Data()));
    }
    Z_UnlockBitmap(bitmap, before);
    return status;
}

uint32_t Word(const uint8_t* row, int32_t index) {
    return static_cast<uint32_t>(row[2 * size_t(index)] | row[2 * size_t(index) + 1] << 8);
}

// A pixel of gray order.
uint32_t GrayPixel(const uint8_t* row, int32_t column, int32_t bits) {
    if (bits == 16) return Word(row, column);
    const uint8_t* pair = row + size_t(column) / 2 * 3;
    return static_cast<uint32_t>(column % 2 == 0 ? (pair[0] | (pair[1] & 15) << 8)
                                                 : (pair[1] >> 4 | pair[2] << 4));
}

} // namespace

template <typename T, typename Body> Result RasterObject::LevelValue(T* value, Body body) {
    return Value(Needs::Bitmap, value, [&](T& out) -> ReturnCode {
        return Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) != 0 ? Z_ERROR_DOCUMENT_LOCKED : body(out);
    });
}

template <typename Body> Result RasterObject::LevelEdit(int16_t* result, Body body) {
    return Member(Needs::Bitmap, result, [&]() -> ReturnCode {
        if (Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) != 0) return Z_ERROR_DOCUMENT_LOCKED;
        return Changed(body(), CHANGE_PALETTE);
    });
}

Result RasterObject::GetLevelLUTLength(int32_t* value) {
    return LevelValue(
        value, [&](int32_t& out) { return out = static_cast<int32_t>(current_.LevelLUTLength), Z_SUCCESS; });
}

Result RasterObject::GetLevelLUT(int32_t index, uint32_t* value) {
    return LevelValue(value, [&](uint32_t& out) -> ReturnCode {
        if (index < 0 || current_.LevelLUT == nullptr ||
            static_cast<uint32_t>(index) >= current_.LevelLUTLength)
            return Z_ERROR_ARGUMENT;
        const RGBQUAD& entry = current_.LevelLUT[index];
        out = static_cast<uint32_t>(entry.rgbRed | entry.rgbGreen << 8 | entry.rgbBlue << 16);
        return Z_SUCCESS;
    });
}

ReturnCode RasterObject::PutLevel(int32_t index, const RGBQUAD& entry) {
    if (current_.LevelLUT == nullptr) {
        const int64_t entries = TableEntries(current_);
        if (index < 0 || index >= entries) return Z_ERROR_ARGUMENT;
        Values<RGBQUAD> blank;
        if (!blank.Resize(static_cast<int32_t>(entries))) return Z_ERROR_MEMORY;
        const ReturnCode status = Z_WindowLevel(&current_, current_.LevelLowBit, current_.LevelHighBit,
                                                blank.Data(), static_cast<uint32_t>(entries), Z_LEVEL_APPLY);
        if (status != Z_SUCCESS) return status;
    }
    if (index < 0 || static_cast<uint32_t>(index) >= current_.LevelLUTLength) return Z_ERROR_ARGUMENT;
    current_.LevelLUT[index] = entry;
    return Z_SUCCESS;
}

Result RasterObject::PutLevelLUT(int32_t index, uint32_t value) {
    return LevelEdit(nullptr, [&] {
        RGBQUAD entry;
        const ReturnCode status = Translate(value, &entry);
        return status == Z_SUCCESS ? PutLevel(index, entry) : status;
    });
}

ReturnCode RasterObject::PutLevelWindow(int32_t lowBit, int32_t highBit) {
    const bool active = (current_.Flags & Z_FLAG_LEVEL_LUT_ACTIVE) != 0;
    return Z_WindowLevel(&current_, lowBit, highBit, current_.LevelLUT, current_.LevelLUTLength,
                         active ? Z_LEVEL_APPLY : Z_LEVEL_KEEP);
}

Result RasterObject::GetLevelLowBit(int16_t* value) {
    return LevelValue(
        value, [&](int16_t& out) { return out = static_cast<int16_t>(current_.LevelLowBit), Z_SUCCESS; });
}

Result RasterObject::PutLevelLowBit(int16_t value) {
    return LevelEdit(nullptr, [&] { return PutLevelWindow(value, current_.LevelHighBit); });
}

Result RasterObject::GetLevelHighBit(int16_t* value) {
    return LevelValue(
        value, [&](int16_t& out) { return out = static_cast<int16_t>(current_.LevelHighBit), Z_SUCCESS; });
}

Result RasterObject::PutLevelHighBit(int16_t value) {
    return LevelEdit(nullptr, [&] { return PutLevelWindow(current_.LevelLowBit, value); });
}

Result RasterObject::WindowLevelFillLUT(uint32_t first, uint32_t second, int32_t low, int32_t high,
                                        int16_t lowBit, int16_t highBit, int32_t minimum, int32_t maximum,
                                        int16_t inside, int16_t* result) {
    return LevelEdit(result, [&] {
        uint32_t firstColour = 0, secondColour = 0;
        ReturnCode status = Translate(first, &firstColour);
        if (status == Z_SUCCESS) status = Translate(second, &secondColour);
        if (status != Z_SUCCESS) return status;
        return Z_WindowLevelFillLUT(current_.LevelLUT, current_.LevelLUTLength, firstColour, secondColour,
                                    low, high, lowBit, highBit, minimum, maximum, inside);
    });
}

Result RasterObject::GetMinVal(int32_t* value) {
    return Field(minVal_, value);
}

Result RasterObject::GetMaxVal(int32_t* value) {
    return Field(maxVal_, value);
}

Result RasterObject::GetMinBit(int16_t* value) {
    return Field(minBit_, value);
}

Result RasterObject::GetMaxBit(int16_t* value) {
    return Field(maxBit_, value);
}

ReturnCode RasterObject::ScanValues(int32_t* smallest, int32_t* largest) {
    int32_t least = INT32_MAX, most = INT32_MIN;
    const auto count = [&](int32_t value) {
        least = std::min(least, value);
        most = std::max(most, value);
    };
    const int32_t bits = current_.BitsPerPixel, width = current_.Width;
    RGBQUAD palette[256] = {};
    if (bits <= 8) {
        const int32_t entries = std::min(int32_t{1} << bits, static_cast<int32_t>(current_.ColorsUsed));
        const ReturnCode status = Z_GetBitmapColors(&current_, 0, entries, palette);
        if (status != Z_SUCCESS) return status;
    }
    const bool deep = bits > 32;
    int32_t valueBits = 0, shift = 0;
    uint32_t mask = 0;
    Z_GetGrayParams(bits, MostLevelBits, current_.LowBit, current_.HighBit, &valueBits, &mask, &shift);
    const uint32_t sign = (current_.Flags & Z_FLAG_SIGNED) != 0 && valueBits >= 1 && valueBits <= 31
                              ? 1u << (valueBits - 1)
                              : 0;
    const ReturnCode status = VisitRows(&current_, [&](uint8_t* row) -> ReturnCode {
        if (current_.Order == Z_ORDER_GRAY && bits > 8) {
            for (int32_t x = 0; x < width; ++x) {
                const uint32_t value = GrayPixel(row, x, bits) >> shift & mask;
                count(static_cast<int32_t>((value ^ sign) - sign));
            }
            return Z_SUCCESS;
        }
        const ReturnCode converted =
            Z_ConvertBuffer(row, width, bits, deep ? 16 : 0, current_.Order,
                            deep ? Z_ORDER_GRAY : Z_ORDER_RGB, bits <= 8 ? palette : nullptr, nullptr);
        for (int32_t x = 0; x < width && converted == Z_SUCCESS; ++x)
            count(static_cast<int32_t>(deep ? Word(row, x) : row[x]));
        return converted;
    });
    *smallest = least;
    *largest = most;
    return status;
}

Result RasterObject::GetMinMaxVal(int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        const int32_t bits = std::min(current_.BitsPerPixel, 30);
        const bool known =
            Z_IsGrayScaleBitmap(&current_) != GRAY_NO &&
            (current_.MinVal != 0 || (current_.MaxVal != 0 && current_.MaxVal != (1 << bits) - 1));
        ReturnCode status = Z_SUCCESS;
        if (!known) {
            int32_t smallest = 0, largest = 0;
            status = ScanValues(&smallest, &largest);
            if (status == Z_SUCCESS) {
                current_.MinVal = smallest;
                current_.MaxVal = largest;
            }
            StoreRecord();
        }
        if (status == Z_SUCCESS) {
            minVal_ = current_.MinVal;
            maxVal_ = current_.MaxVal;
        }
        return status;
    });
}

ReturnCode RasterObject::ScanBits(uint32_t* bits) {
    const ReturnCode status = VisitRows(&current_, [&](const uint8_t* row) {
        for (int32_t x = 0; x < current_.Width; ++x)
            *bits |= GrayPixel(row, x, current_.BitsPerPixel);
        return Z_SUCCESS;
    });
    StoreRecord();
    return status;
}

Result RasterObject::GetMinMaxBits(int16_t* result) {
    return Member(Needs::Bitmap, result, [&]() -> ReturnCode {
        if (current_.Order != Z_ORDER_GRAY || (current_.BitsPerPixel != 12 && current_.BitsPerPixel != 16))
            return Z_ERROR_BITS_PER_PIXEL;
        uint32_t bits = 0;
        const ReturnCode status = ScanBits(&bits);
        if (status != Z_SUCCESS) return status;
        minBit_ = bits == 0 ? int16_t{0} : static_cast<int16_t>(std::countr_zero(bits));
        maxBit_ = bits == 0 ? int16_t{0} : static_cast<int16_t>(std::bit_width(bits) - 1);
        return Z_SUCCESS;
    });
}

} // namespace zkr::automation
