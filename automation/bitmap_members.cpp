// Facts of the working bitmap: its fields, palette, pixels, alpha, and how bitmaps are made.
#include "automation/raster_object.h"

#include "zkr13n/alpha.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/copy.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"
#include "zkr13n/pixels.h"
#include "zkr13n/storage.h"
#include "zkr13n/views.h"

#include <algorithm>

namespace zkr::automation {

namespace {

constexpr int16_t True = -1;

// A colour value with this bit is a gray value, which no system translates.
constexpr uint32_t ExtendedGray = 0x4000000;

// Bytes that a pixel touches.
uint32_t PixelBytes(const BitmapHandle& bitmap, int32_t column) {
    const int64_t firstBit = int64_t{column} * bitmap.BitsPerPixel % 8;
    return static_cast<uint32_t>((firstBit + bitmap.BitsPerPixel + 7) / 8);
}

bool Holds(const BitmapHandle& bitmap, int32_t row, int32_t column) {
    return row >= 0 && row < bitmap.Height && column >= 0 && column < bitmap.Width;
}

class Locked {
  public:
    explicit Locked(BitmapHandle* bitmap) : bitmap_(bitmap), before_(Z_LockBitmap(bitmap)) {}
    ~Locked() { Z_UnlockBitmap(bitmap_, before_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

  private:
    BitmapHandle* bitmap_;
    int32_t before_;
};

} // namespace

template <typename T> Result RasterObject::PutField(T BitmapHandle::*field, T value, int32_t change) {
    return Member(Needs::Bitmap, nullptr, [&] {
        current_.*field = value;
        StoreRecord();
        if (change != CHANGE_NONE) Notify(change);
        return Z_SUCCESS;
    });
}

Result RasterObject::PutFlag(uint32_t flag, int16_t value, int32_t change) {
    return Member(Needs::Bitmap, nullptr, [&] {
        current_.Flags = value != 0 ? current_.Flags | flag : current_.Flags & ~flag;
        return Changed(Z_SUCCESS, change);
    });
}

bool RasterObject::LiesOnItsSide() const {
    return current_.ViewPerspective == VIEW_RIGHT_TOP || current_.ViewPerspective == VIEW_LEFT_TOP ||
           current_.ViewPerspective == VIEW_RIGHT_BOTTOM || current_.ViewPerspective == VIEW_LEFT_BOTTOM;
}

Result RasterObject::GetBitmapWidth(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        const int32_t columns = LiesOnItsSide() ? current_.Height : current_.Width;
        return out = LengthInUnits(scale_, Axis::X, columns, nullptr), Z_SUCCESS;
    });
}

Result RasterObject::GetBitmapHeight(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        const int32_t rows = LiesOnItsSide() ? current_.Width : current_.Height;
        return out = LengthInUnits(scale_, Axis::Y, rows, nullptr), Z_SUCCESS;
    });
}

Result RasterObject::GetBitmapBits(int16_t* value) {
    return Value(Needs::Bitmap, value,
                 [&](int16_t& out) { return out = static_cast<int16_t>(current_.BitsPerPixel), Z_SUCCESS; });
}

Result RasterObject::GetBitmapXRes(int32_t* value) {
    return Value(Needs::Bitmap, value, [&](int32_t& out) { return out = current_.XResolution, Z_SUCCESS; });
}

Result RasterObject::PutBitmapXRes(int32_t value) {
    return PutField(&BitmapHandle::XResolution, value, CHANGE_SIZE);
}

Result RasterObject::GetBitmapYRes(int32_t* value) {
    return Value(Needs::Bitmap, value, [&](int32_t& out) { return out = current_.YResolution, Z_SUCCESS; });
}

Result RasterObject::PutBitmapYRes(int32_t value) {
    return PutField(&BitmapHandle::YResolution, value, CHANGE_SIZE);
}

Result RasterObject::GetIsGrayscale(int32_t* value) {
    return Value(Needs::Bitmap, value,
                 [&](int32_t& out) { return out = Z_IsGrayScaleBitmap(&current_), Z_SUCCESS; });
}

Result RasterObject::GetBitmapPalette(int16_t index, uint32_t* value) {
    return Value(Needs::Bitmap, value, [&](uint32_t& out) {
        RGBQUAD entry{};
        const ReturnCode status = Z_GetBitmapColors(&current_, index, 1, &entry);
        out = static_cast<uint32_t>(entry.rgbRed | entry.rgbGreen << 8 | entry.rgbBlue << 16);
        return status;
    });
}

Result RasterObject::PutBitmapPalette(int16_t index, uint32_t value) {
    return Member(Needs::Bitmap, nullptr, [&] {
        RGBQUAD entry;
        ReturnCode status = Translate(value, &entry);
        if (status == Z_SUCCESS) status = Z_PutBitmapColors(&current_, index, 1, &entry);
        return Changed(status, CHANGE_COLOR);
    });
}

Result RasterObject::GetBitmapEnableTransparency(int16_t* value) {
    return Value(Needs::Bitmap, value, [&](int16_t& out) {
        return out = (current_.Flags & Z_FLAG_PLAYBACK_TRANSPARENCY) != 0 ? True : 0, Z_SUCCESS;
    });
}

Result RasterObject::PutBitmapEnableTransparency(int16_t value) {
    return PutFlag(Z_FLAG_PLAYBACK_TRANSPARENCY, value, CHANGE_COLOR);
}

Result RasterObject::GetBitmapTransparentColor(uint32_t* value) {
    return Value(Needs::Bitmap, value,
                 [&](uint32_t& out) { return out = current_.TransparentColor, Z_SUCCESS; });
}

Result RasterObject::PutBitmapTransparentColor(uint32_t value) {
    return Member(Needs::Bitmap, nullptr, [&] {
        uint32_t plain = 0;
        const ReturnCode status = Translate(value, &plain);
        if (status == Z_SUCCESS) current_.TransparentColor = plain;
        return Changed(status, CHANGE_COLOR);
    });
}

Result RasterObject::GetBitmapAlpha(intptr_t* value) {
    return Value(Needs::Bitmap, value, [&](intptr_t& out) {
        Z_FreeBitmap(&alpha_);
        const ReturnCode status = Z_GetBitmapAlpha(&current_, &alpha_);
        StoreRecord();
        if (status == Z_SUCCESS && alpha_.Addr != nullptr) out = alphaToken_.Handle();
        return status;
    });
}

Result RasterObject::PutBitmapAlpha(intptr_t value) {
    return Member(Needs::Bitmap, nullptr, [&]() -> ReturnCode {
        const LockedToken alpha(value);
        if (!alpha) return Z_ERROR_BITMAP;
        if ((alpha->Record->Flags & Z_FLAG_ALLOCATED) == 0) return Z_ERROR_ARGUMENT;
        // The bitmap itself changes on the way.
        BitmapHandle copy{};
        const bool isOwn = IsSameBitmap(value);
        ReturnCode status = isOwn ? Z_CopyBitmap(&copy, &current_) : Z_SUCCESS;
        if (status == Z_SUCCESS) status = Z_SetBitmapAlpha(&current_, isOwn ? &copy : alpha->Record);
        if (isOwn) Z_FreeBitmap(&copy);
        Z_FreeBitmap(&alpha_);
        return Changed(status, CHANGE_ALL);
    });
}

Result RasterObject::GetPixel(float x, float y, uint32_t* value) {
    return Value(Needs::Bitmap, value, [&](uint32_t& out) {
        const PixelPlace place = PlaceOf(x, y);
        return out = Z_GetPixelColor(&current_, place.Row, place.Column), Z_SUCCESS;
    });
}

Result RasterObject::PutPixel(float x, float y, uint32_t value) {
    return Member(Needs::Bitmap, nullptr, [&] {
        const PixelPlace place = PlaceOf(x, y);
        uint32_t colour = value;
        ReturnCode status = (value & ExtendedGray) != 0 ? Z_SUCCESS : Translate(value, &colour);
        if (status == Z_SUCCESS) status = Z_PutPixelColor(&current_, place.Row, place.Column, colour);
        return Changed(status, CHANGE_DATA);
    });
}

Result RasterObject::GetPixelData(float x, float y, Array* value) {
    return Value(Needs::Bitmap, value, [&](Array& out) -> ReturnCode {
        const PixelPlace place = PlaceOf(x, y);
        if (!Holds(current_, place.Row, place.Column)) return Z_ERROR_ARGUMENT;
        const uint32_t bytes = PixelBytes(current_, place.Column);
        out = {Array::Kind::Bytes, static_cast<int32_t>(bytes), pixelBytes_, false};
        const Locked lock(&current_);
        return Z_GetPixelData(&current_, pixelBytes_, place.Row, place.Column, bytes);
    });
}

Result RasterObject::PutPixelData(float x, float y, const Array& value) {
    return Member(Needs::Bitmap, nullptr, [&]() -> ReturnCode {
        const PixelPlace place = PlaceOf(x, y);
        if (!Holds(current_, place.Row, place.Column) || !value.HoldsBytes()) return Z_ERROR_ARGUMENT;
        const uint32_t bytes = PixelBytes(current_, place.Column);
        if (value.Data == nullptr || value.Count < static_cast<int32_t>(bytes)) return Z_ERROR_ARGUMENT;
        const int32_t before = Z_LockBitmap(&current_);
        const ReturnCode status = Z_PutPixelData(&current_, value.Data, place.Row, place.Column, bytes);
        Z_UnlockBitmap(&current_, before);
        return Changed(status, CHANGE_DATA);
    });
}

Result RasterObject::GetIsSigned(int16_t* value) {
    return Value(Needs::Bitmap, value, [&](int16_t& out) {
        return out = (current_.Flags & Z_FLAG_SIGNED) != 0 ? True : 0, Z_SUCCESS;
    });
}

Result RasterObject::PutIsSigned(int16_t value) {
    return PutFlag(Z_FLAG_SIGNED, value, CHANGE_DATA);
}

Result RasterObject::GetBitmapSize(int32_t* value) {
    return Value(Needs::Bitmap, value, [&](int32_t& out) {
        out = static_cast<int32_t>(std::min<size_t>(current_.Size, INT32_MAX));
        return Z_SUCCESS;
    });
}

Result RasterObject::GetBitmapCompression(int32_t* value) {
    return Value(Needs::Bitmap, value, [&](int32_t& out) {
        out = (current_.Flags & Z_FLAG_COMPRESSED) != 0         ? COMP_RLE
              : (current_.Flags & Z_FLAG_SUPER_COMPRESSED) != 0 ? COMP_SUPER
                                                                : COMP_NONE;
        return Z_SUCCESS;
    });
}

Result RasterObject::GetBitmapLeft(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        return out = LengthInUnits(scale_, Axis::X, current_.PlaybackLeft, nullptr), Z_SUCCESS;
    });
}

Result RasterObject::PutBitmapLeft(float value) {
    return Member(Needs::Bitmap, nullptr, [&] {
        current_.PlaybackLeft = LengthToPixel(Axis::X, value);
        return Changed(Z_SUCCESS, CHANGE_DIM);
    });
}

Result RasterObject::GetBitmapTop(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        return out = LengthInUnits(scale_, Axis::Y, current_.PlaybackTop, nullptr), Z_SUCCESS;
    });
}

Result RasterObject::PutBitmapTop(float value) {
    return Member(Needs::Bitmap, nullptr, [&] {
        current_.PlaybackTop = LengthToPixel(Axis::Y, value);
        return Changed(Z_SUCCESS, CHANGE_DIM);
    });
}

Result RasterObject::GetBitmapDelay(int32_t* value) {
    return Value(Needs::Bitmap, value, [&](int32_t& out) { return out = current_.PlaybackDelay, Z_SUCCESS; });
}

Result RasterObject::PutBitmapDelay(int32_t value) {
    return PutField(&BitmapHandle::PlaybackDelay, value, CHANGE_NONE);
}

Result RasterObject::GetBitmapDisposalMethod(int32_t* value) {
    return Value(Needs::Bitmap, value,
                 [&](int32_t& out) { return out = current_.DisposalMethod, Z_SUCCESS; });
}

Result RasterObject::PutBitmapDisposalMethod(int32_t value) {
    return PutField(&BitmapHandle::DisposalMethod, value, CHANGE_NONE);
}

Result RasterObject::UnlockSupport(int32_t support, const char* key, int16_t* result) {
    return Member(Needs::Nothing, result,
                  [&] { return Z_UnlockSupport(static_cast<uint32_t>(support), key); });
}

Result RasterObject::IsSupportLocked(int32_t support, int16_t* locked) {
    return Field<int16_t>(Z_IsSupportLocked(static_cast<uint32_t>(support)) != 0 ? True : 0, locked);
}

} // namespace zkr::automation
