// The region of the working bitmap. All shapes are given, and all facts told, in the picture as the viewer sees it.
#include "automation/raster_object.h"

#include "platform/graphics.h"
#include "zkr13n/flip.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/views.h"

#include <algorithm>
#include <utility>

namespace zkr::automation {

namespace {

constexpr RegionXform Seen = {VIEW_TOP_LEFT, 1, 1, 1, 1, 0, 0};

// A region of the platform for a scope.
class PlatformRegion {
  public:
    explicit PlatformRegion(HRGN region) : region_(region) {}
    ~PlatformRegion() {
        if (region_ != nullptr) platform::DeleteObject(region_);
    }
    PlatformRegion(const PlatformRegion&) = delete;
    PlatformRegion& operator=(const PlatformRegion&) = delete;

    HRGN get() const { return region_; }
    explicit operator bool() const { return region_ != nullptr; }

  private:
    HRGN region_;
};

int32_t Distance(int32_t from, int32_t to) {
    return static_cast<int32_t>(std::clamp<int64_t>(int64_t{to} - from, INT32_MIN, INT32_MAX));
}

bool Combine(HRGN region, HRGN other, int mode) {
    return platform::CombineRgn(region, region, other, mode) != ERROR;
}

// Combines a region with itself moved by 1, 2, ... reach pixels along an axis, in steps that double.
bool Spread(HRGN region, int32_t reach, Axis axis, int mode) {
    const PlatformRegion moved(platform::CreateRectRgn(0, 0, 0, 0));
    if (!moved) return false;
    for (int32_t done = 0; done < reach;) {
        const int32_t step = std::min(done + 1, reach - done);
        if (platform::CombineRgn(moved.get(), region, nullptr, RGN_COPY) == ERROR) return false;
        if (platform::OffsetRgn(moved.get(), axis == Axis::X ? step : 0, axis == Axis::Y ? step : 0) == ERROR)
            return false;
        if (!Combine(region, moved.get(), mode)) return false;
        done += step;
    }
    return true;
}

// mode RGN_OR adds what lies within so many columns and rows of the region, RGN_AND keeps what has all of these in it.
bool Resize(HRGN region, int32_t columns, int32_t rows, int mode) {
    return Spread(region, 2 * columns, Axis::X, mode) && Spread(region, 2 * rows, Axis::Y, mode) &&
           platform::OffsetRgn(region, -columns, -rows) != ERROR;
}

} // namespace

Result RasterObject::GetHasRgn(int16_t* value) {
    return Value(Needs::Bitmap, value,
                 [&](int16_t& out) { return out = Z_BitmapHasRgn(&current_) != 0 ? -1 : 0, Z_SUCCESS; });
}

ReturnCode RasterObject::RecordBounds(RECT* bounds) {
    const ReturnCode status = Z_GetBitmapRgnBounds(&current_, &Seen, bounds);
    StoreRecord();
    return status;
}

Result RasterObject::GetRgnLeft(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        RECT bounds{};
        const ReturnCode status = RecordBounds(&bounds);
        return out = PositionInUnits(scale_, Axis::X, bounds.left, nullptr), status;
    });
}

Result RasterObject::GetRgnTop(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        RECT bounds{};
        const ReturnCode status = RecordBounds(&bounds);
        return out = PositionInUnits(scale_, Axis::Y, bounds.top, nullptr), status;
    });
}

Result RasterObject::GetRgnWidth(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        RECT bounds{};
        const ReturnCode status = RecordBounds(&bounds);
        const double columns = static_cast<double>(bounds.right) - bounds.left;
        return out = LengthInUnits(scale_, Axis::X, columns, nullptr), status;
    });
}

Result RasterObject::GetRgnHeight(float* value) {
    return Value(Needs::Bitmap, value, [&](float& out) {
        RECT bounds{};
        const ReturnCode status = RecordBounds(&bounds);
        const double rows = static_cast<double>(bounds.bottom) - bounds.top;
        return out = LengthInUnits(scale_, Axis::Y, rows, nullptr), status;
    });
}

Result RasterObject::FreeRgn(int16_t* result) {
    return Member(Needs::Bitmap, result, [&] { return RegionChanged(Z_FreeBitmapRgn(&current_)); });
}

Result RasterObject::DeleteRgnHandle(intptr_t region, int16_t* result) {
    return Member(Needs::Nothing, result, [&]() -> ReturnCode {
        const HRGN handle = reinterpret_cast<HRGN>(region);
        RECT box;
        if (handle == nullptr || platform::GetRgnBox(handle, &box) == ERROR) return Z_ERROR_ARGUMENT;
        return platform::DeleteObject(handle) != 0 ? Z_SUCCESS : Z_ERROR_ARGUMENT;
    });
}

Result RasterObject::GetRgnArea(int32_t* area) {
    return Value(Needs::Bitmap, area, [&](int32_t& out) {
        uint32_t pixels = 0;
        const ReturnCode status = Z_GetBitmapRgnArea(&current_, &pixels);
        return out = static_cast<int32_t>(std::min(pixels, uint32_t{INT32_MAX})), status;
    });
}

Result RasterObject::GetRgnHandle(intptr_t* region) {
    return Value(Needs::Bitmap, region, [&](intptr_t& out) {
        HRGN made = nullptr;
        const ReturnCode status = Z_GetBitmapRgnHandle(&current_, &Seen, &made);
        StoreRecord();
        return out = reinterpret_cast<intptr_t>(made), status;
    });
}

Result RasterObject::IsPtInRgn(float x, float y, int16_t* inside) {
    return Value(Needs::Bitmap, inside, [&](int16_t& out) {
        const PixelPlace place = PlaceOf(x, y);
        return out = Z_IsPtInBitmapRgn(&current_, place.Row, place.Column) != 0 ? -1 : 0, Z_SUCCESS;
    });
}

Result RasterObject::OffsetRgn(float x, float y, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        // A way as the viewer sees it, as a way through the storage.
        PixelPlace from{0, 0}, to{LengthToPixel(Axis::Y, y), LengthToPixel(Axis::X, x)};
        Z_PointToBitmap(&current_, VIEW_TOP_LEFT, &from.Column, &from.Row);
        Z_PointToBitmap(&current_, VIEW_TOP_LEFT, &to.Column, &to.Row);
        const int32_t row = Distance(from.Row, to.Row), column = Distance(from.Column, to.Column);
        return RegionChanged(Z_OffsetBitmapRgn(&current_, row, column));
    });
}

Result RasterObject::SetRgnColor(uint32_t value, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        uint32_t colour = 0;
        ReturnCode status = Translate(value, &colour);
        if (status == Z_SUCCESS) status = Z_SetBitmapRgnColor(&current_, colour, static_cast<uint32_t>(mode));
        return RegionChanged(status);
    });
}

Result RasterObject::SetRgnColorRGBRange(uint32_t lower, uint32_t upper, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        uint32_t low = 0, high = 0;
        ReturnCode status = Translate(lower, &low);
        if (status == Z_SUCCESS) status = Translate(upper, &high);
        if (status == Z_SUCCESS)
            status = Z_SetBitmapRgnColorRGBRange(&current_, low, high, static_cast<uint32_t>(mode));
        return RegionChanged(status);
    });
}

Result RasterObject::SetRgnColorHSVRange(int32_t lower, int32_t upper, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        return RegionChanged(Z_SetBitmapRgnColorHSVRange(&current_, static_cast<uint32_t>(lower),
                                                         static_cast<uint32_t>(upper),
                                                         static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::SetRgnHandle(intptr_t region, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        return RegionChanged(Z_SetBitmapRgnHandle(&current_, &Seen, reinterpret_cast<HRGN>(region),
                                                  static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::SetRgnEllipse(float left, float top, float width, float height, int32_t mode,
                                   int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        const RECT rect = ToRect(left, top, width, height, nullptr);
        return RegionChanged(Z_SetBitmapRgnEllipse(&current_, &Seen, &rect, static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::SetRgnRect(float left, float top, float width, float height, int32_t mode,
                                int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        const RECT rect = ToRect(left, top, width, height, nullptr);
        return RegionChanged(Z_SetBitmapRgnRect(&current_, &Seen, &rect, static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::SetRgnRoundRect(float left, float top, float width, float height, float ellipseWidth,
                                     float ellipseHeight, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        const RECT rect = ToRect(left, top, width, height, nullptr);
        const int32_t cornerWidth = LengthToPixel(Axis::X, ellipseWidth);
        const int32_t cornerHeight = LengthToPixel(Axis::Y, ellipseHeight);
        return RegionChanged(Z_SetBitmapRgnRoundRect(&current_, &Seen, &rect, cornerWidth, cornerHeight,
                                                     static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::SetRgnPolygon(int32_t fillMode, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&]() -> ReturnCode {
        Values<POINT> points;
        if (!ToPixels(polygon_, &points)) return Z_ERROR_MEMORY;
        return RegionChanged(Z_SetBitmapRgnPolygon(&current_, &Seen, points.Data(), points.Count(),
                                                   static_cast<uint32_t>(fillMode),
                                                   static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::SetRgnCurve(int32_t fillMode, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&]() -> ReturnCode {
        Values<POINT> points;
        if (!ToPixels(curve_, &points)) return Z_ERROR_MEMORY;
        const Curve curve = {sizeof(Curve),
                             static_cast<uint32_t>(curveType_),
                             points.Count(),
                             points.Data(),
                             static_cast<uint32_t>(fillMode),
                             curveTension_,
                             static_cast<uint32_t>(curveClose_),
                             0};
        return RegionChanged(Z_SetBitmapRgnCurve(&current_, &Seen, &curve, static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::SetRgnMagicWand(float x, float y, int16_t tolerance, int32_t mode, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        const PixelPlace seed = PlaceOf(x, y);
        return RegionChanged(Z_SetBitmapRgnMagicWand(&current_, seed.Column, seed.Row,
                                                     static_cast<uint32_t>(int32_t{tolerance}),
                                                     static_cast<uint32_t>(mode)));
    });
}

Result RasterObject::ResizeRgn(int32_t mode, float size, int16_t* result) {
    return Member(Needs::Bitmap, result, [&]() -> ReturnCode {
        // Beyond the bitmap's own size nothing changes any more.
        const int32_t most = std::max(current_.Width, current_.Height);
        int32_t columns = LengthToPixel(Axis::X, size), rows = LengthToPixel(Axis::Y, size);
        if ((mode != RGN_EXPAND && mode != RGN_CONTRACT) || size < 0 || columns < 0 || rows < 0)
            return Z_ERROR_ARGUMENT;
        if (LiesOnItsSide()) std::swap(columns, rows);
        HRGN made = nullptr; // in rows and columns of storage
        const ReturnCode status = Z_GetBitmapRgnHandle(&current_, nullptr, &made);
        if (status != Z_SUCCESS) return status;
        const PlatformRegion region(made),
            whole(platform::CreateRectRgn(0, 0, current_.Width, current_.Height));
        if (!whole) return Z_ERROR_MEMORY;
        if (mode == RGN_CONTRACT && !Combine(region.get(), whole.get(), RGN_AND)) return Z_ERROR_MEMORY;
        if (!Resize(region.get(), std::min(columns, most), std::min(rows, most),
                    mode == RGN_EXPAND ? RGN_OR : RGN_AND))
            return Z_ERROR_MEMORY;
        return RegionChanged(Z_SetBitmapRgnHandle(&current_, nullptr, region.get(), Z_RGN_SET));
    });
}

Result RasterObject::GetBitmapClipSegments(float y, Array* segments) {
    return Value(Needs::Bitmap, segments, [&](Array& out) -> ReturnCode {
        ReturnCode status = Z_SUCCESS;
        if (current_.ViewPerspective != VIEW_TOP_LEFT && current_.ViewPerspective != VIEW_BOTTOM_LEFT) {
            status = Z_ChangeBitmapViewPerspective(nullptr, &current_, VIEW_TOP_LEFT);
            StoreRecord();
        }
        int32_t row = PositionToPixel(Axis::Y, y);
        if (current_.ViewPerspective == VIEW_BOTTOM_LEFT) row = Distance(row, current_.Height - 1);
        uint32_t room = 0, count = 0;
        if (status == Z_SUCCESS) status = Z_GetBitmapClipSegmentsMax(&current_, &room);
        if (status != Z_SUCCESS) return status;
        Values<int32_t> columns;
        if (room > INT32_MAX || !columns.Resize(static_cast<int32_t>(room))) return Z_ERROR_MEMORY;
        status = Z_GetBitmapClipSegments(&current_, row, columns.Data(), &count);
        if (status != Z_SUCCESS) return status;
        if (!segments_.Resize(static_cast<int32_t>(count))) return Z_ERROR_MEMORY;
        for (int32_t end = 0; end < segments_.Count(); ++end)
            segments_[end] = PositionInUnits(scale_, Axis::X, columns[end], nullptr);
        out = {Array::Kind::Floats, segments_.Count(), segments_.Data(), false};
        return Z_SUCCESS;
    });
}

} // namespace zkr::automation
