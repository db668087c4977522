// Members that replace the list by one new bitmap, blank or on a client's bytes.
#include "automation/raster_object.h"

#include "zkr13n/storage.h"

namespace zkr::automation {

namespace {

int32_t OrderOf(int16_t bits) {
    if (bits == 12) return Z_ORDER_GRAY;
    return bits > 8 ? Z_ORDER_BGR : Z_ORDER_RGB;
}

} // namespace

// The bytes of a client's array, or a copy of them that belongs to nobody yet; none for no array.
ReturnCode RasterObject::UserBytes(const Array& data, int32_t size, void** bytes, size_t* count) {
    *bytes = nullptr;
    *count = 0;
    if (data.Elements == Array::Kind::None) return size <= 0 ? Z_SUCCESS : Z_ERROR_ARGUMENT;
    if (!data.HoldsBytes() || size < 0 || size > data.Count) return Z_ERROR_ARGUMENT;
    if (data.Data == nullptr || data.Count == 0) return data.Count == 0 ? Z_SUCCESS : Z_ERROR_ARGUMENT;
    *count = static_cast<size_t>(size == 0 ? data.Count : size);
    *bytes = data.ByReference ? data.Data : CopyUserData(data.Data, *count);
    return *bytes != nullptr ? Z_SUCCESS : Z_ERROR_MEMORY;
}

Result RasterObject::MakeBitmap(float width, float height, int16_t bits, int32_t memoryType,
                                const Array* data, int32_t size, int16_t* result) {
    return Member(Needs::NoContext, result, [&]() -> ReturnCode {
        const int32_t columns = LengthToPixel(Axis::X, width);
        const int32_t rows = LengthToPixel(Axis::Y, height);
        void* bytes = nullptr;
        size_t count = 0;
        ReturnCode status = data != nullptr ? UserBytes(*data, size, &bytes, &count) : Z_SUCCESS;
        if (status != Z_SUCCESS) return status;
        EmptyList();
        BitmapHandle made;
        status = Z_CreateBitmap(&made, memoryType, columns, rows, bits, OrderOf(bits), nullptr,
                                VIEW_BOTTOM_LEFT, bytes, count);
        if (status == Z_SUCCESS) {
            ClaimUserData(this, made);
            return Install(made);
        }
        FreeUserDataAt(bytes);
        return status;
    });
}

Result RasterObject::CreateBitmap(float width, float height, int16_t bits, int16_t* result) {
    return MakeBitmap(width, height, bits, MemoryConventional, nullptr, 0, result);
}

Result RasterObject::CreateUserBitmap(float width, float height, int16_t bits, const Array& data,
                                      int32_t size, int16_t* result) {
    return MakeBitmap(width, height, bits, MemoryUser, &data, size, result);
}

Result RasterObject::SetBitmapDataPointer(const Array& data, int32_t size, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        void* bytes = nullptr;
        size_t count = 0;
        ReturnCode status = UserBytes(data, size, &bytes, &count);
        if (status != Z_SUCCESS) return status;
        const BitmapHandle before = current_;
        status = Z_SetBitmapDataPointer(&current_, bytes, count);
        if (status != Z_SUCCESS) {
            FreeUserDataAt(bytes);
        } else if (before.Addr != bytes) {
            ClaimUserData(this, current_);
            ReleaseUserData(before);
        }
        return Changed(status, CHANGE_ALL | CHANGE_NEW_BITMAP);
    });
}

} // namespace zkr::automation
