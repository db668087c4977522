// Scale units in the members: the system of coordinates, and places, lengths and rectangles brought to pixels.
#include "automation/raster_object.h"

#include "zkr13n/views.h"

#include <cmath>
#include <utility>

namespace zkr::automation {

// Cut to 32 bits, which is reported but does not stop the member.
int32_t RasterObject::ToPixel(float pixels) {
    constexpr float limit = 2147483648.0f;
    if (pixels > limit || pixels < -limit) face_.ReportFailure("Overflow in converting float to long/int");
    if (std::isnan(pixels)) return 0;
    if (pixels >= limit) return INT32_MAX;
    if (pixels <= -limit) return INT32_MIN;
    return static_cast<int32_t>(pixels);
}

int32_t RasterObject::PositionToPixel(Axis axis, float units) {
    if (scale_.Mode == SCALEMODE_PIXEL) return ToPixel(units);
    return ToPixel(PositionInPixels(scale_, axis, units, nullptr));
}

int32_t RasterObject::LengthToPixel(Axis axis, float units) {
    return ToPixel(LengthInPixels(scale_, axis, units, nullptr));
}

RECT RasterObject::ToRect(float left, float top, float width, float height, HDC device) {
    const auto end = [&](Axis axis, float start, float length) {
        return ToPixel(std::ceil(PositionInPixels(scale_, axis, double{start} + length, device)));
    };
    RECT rect;
    rect.left = ToPixel(PositionInPixels(scale_, Axis::X, left, device));
    rect.top = ToPixel(PositionInPixels(scale_, Axis::Y, top, device));
    rect.right = end(Axis::X, left, width);
    rect.bottom = end(Axis::Y, top, height);
    if (rect.left > rect.right) std::swap(rect.left, rect.right);
    if (rect.top > rect.bottom) std::swap(rect.top, rect.bottom);
    return rect;
}

// The storage's row and column of a place that the viewer sees.
RasterObject::PixelPlace RasterObject::PlaceOf(float x, float y) {
    PixelPlace place{PositionToPixel(Axis::Y, y), PositionToPixel(Axis::X, x)};
    Z_PointToBitmap(&current_, VIEW_TOP_LEFT, &place.Column, &place.Row);
    return place;
}

Result RasterObject::GetScaleMode(int32_t* value) {
    return Field(scale_.Mode, value);
}

Result RasterObject::PutScaleMode(int32_t value) {
    return Member(Needs::Nothing, nullptr, [&]() -> ReturnCode {
        if (value < SCALEMODE_USER || value >= SCALEMODE_MAX) return Z_ERROR_ARGUMENT;
        scale_.Mode = value;
        return Z_SUCCESS;
    });
}

Result RasterObject::PutScale(float* field, float value) {
    return Member(Needs::Nothing, nullptr, [&] {
        *field = value;
        scale_.Mode = SCALEMODE_USER;
        return Z_SUCCESS;
    });
}

Result RasterObject::GetScaleTop(float* value) {
    return Field(scale_.Top, value);
}

Result RasterObject::PutScaleTop(float value) {
    return PutScale(&scale_.Top, value);
}

Result RasterObject::GetScaleLeft(float* value) {
    return Field(scale_.Left, value);
}

Result RasterObject::PutScaleLeft(float value) {
    return PutScale(&scale_.Left, value);
}

Result RasterObject::GetScaleHeight(float* value) {
    return Field(scale_.Height, value);
}

Result RasterObject::PutScaleHeight(float value) {
    return PutScale(&scale_.Height, value);
}

Result RasterObject::GetScaleWidth(float* value) {
    return Field(scale_.Width, value);
}

Result RasterObject::PutScaleWidth(float value) {
    return PutScale(&scale_.Width, value);
}

Result RasterObject::GetClientX(int32_t* value) {
    return Field(scale_.ClientX, value);
}

Result RasterObject::PutClientX(int32_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return scale_.ClientX = value, Z_SUCCESS; });
}

Result RasterObject::GetClientY(int32_t* value) {
    return Field(scale_.ClientY, value);
}

Result RasterObject::PutClientY(int32_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return scale_.ClientY = value, Z_SUCCESS; });
}

} // namespace zkr::automation
