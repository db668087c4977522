// The points that polygons and curves are made of. They are kept in scale units and brought to pixels when they are used.
#include "automation/raster_object.h"

#include "zkr13n/region_shapes.h"

namespace zkr::automation {

Result RasterObject::PutCount(Values<Point>& points, int32_t count) {
    return Member(Needs::Nothing, nullptr, [&]() -> ReturnCode {
        if (count < 0) return Z_ERROR_ARGUMENT;
        return points.Resize(count) ? Z_SUCCESS : Z_ERROR_MEMORY;
    });
}

Result RasterObject::GetPoint(Values<Point>& points, int32_t index, float Point::*coordinate, float* value) {
    return Value(Needs::Nothing, value, [&](float& out) -> ReturnCode {
        if (!points.Holds(index)) return Z_ERROR_ARGUMENT;
        out = points[index].*coordinate;
        return Z_SUCCESS;
    });
}

Result RasterObject::PutPoint(Values<Point>& points, int32_t index, float Point::*coordinate, float value) {
    return Member(Needs::Nothing, nullptr, [&]() -> ReturnCode {
        if (!points.Holds(index)) return Z_ERROR_ARGUMENT;
        points[index].*coordinate = value;
        return Z_SUCCESS;
    });
}

bool RasterObject::ToPixels(Values<Point>& points, Values<POINT>* pixels) {
    if (!pixels->Resize(points.Count())) return false;
    for (int32_t index = 0; index < points.Count(); ++index) {
        (*pixels)[index].x = PositionToPixel(Axis::X, points[index].X);
        (*pixels)[index].y = PositionToPixel(Axis::Y, points[index].Y);
    }
    return true;
}

Result RasterObject::GetPolygonSize(int32_t* value) {
    return Field(polygon_.Count(), value);
}

Result RasterObject::PutPolygonSize(int32_t value) {
    return PutCount(polygon_, value);
}

Result RasterObject::GetPolygonX(int32_t index, float* value) {
    return GetPoint(polygon_, index, &Point::X, value);
}

Result RasterObject::PutPolygonX(int32_t index, float value) {
    return PutPoint(polygon_, index, &Point::X, value);
}

Result RasterObject::GetPolygonY(int32_t index, float* value) {
    return GetPoint(polygon_, index, &Point::Y, value);
}

Result RasterObject::PutPolygonY(int32_t index, float value) {
    return PutPoint(polygon_, index, &Point::Y, value);
}

Result RasterObject::GetCurveSize(int32_t* value) {
    return Field(curve_.Count(), value);
}

Result RasterObject::PutCurveSize(int32_t value) {
    return PutCount(curve_, value);
}

Result RasterObject::GetCurveType(int32_t* value) {
    return Field(curveType_, value);
}

Result RasterObject::PutCurveType(int32_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return curveType_ = value, Z_SUCCESS; });
}

Result RasterObject::GetCurveTension(double* value) {
    return Field(curveTension_, value);
}

Result RasterObject::PutCurveTension(double value) {
    return Member(Needs::Nothing, nullptr, [&] { return curveTension_ = value, Z_SUCCESS; });
}

Result RasterObject::GetCurveClose(int32_t* value) {
    return Field(curveClose_, value);
}

Result RasterObject::PutCurveClose(int32_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return curveClose_ = value, Z_SUCCESS; });
}

Result RasterObject::GetCurveX(int32_t index, float* value) {
    return GetPoint(curve_, index, &Point::X, value);
}

Result RasterObject::PutCurveX(int32_t index, float value) {
    return PutPoint(curve_, index, &Point::X, value);
}

Result RasterObject::GetCurveY(int32_t index, float* value) {
    return GetPoint(curve_, index, &Point::Y, value);
}

Result RasterObject::PutCurveY(int32_t index, float value) {
    return PutPoint(curve_, index, &Point::Y, value);
}

Result RasterObject::GetBezierSize(int32_t* value) {
    return Field(bezier_.Count(), value);
}

Result RasterObject::GetBezierX(int32_t index, float* value) {
    return Value(Needs::Nothing, value, [&](float& out) -> ReturnCode {
        if (!bezier_.Holds(index)) return Z_ERROR_ARGUMENT;
        out = PositionInUnits(scale_, Axis::X, bezier_[index].x, nullptr);
        return Z_SUCCESS;
    });
}

Result RasterObject::GetBezierY(int32_t index, float* value) {
    return Value(Needs::Nothing, value, [&](float& out) -> ReturnCode {
        if (!bezier_.Holds(index)) return Z_ERROR_ARGUMENT;
        out = PositionInUnits(scale_, Axis::Y, bezier_[index].y, nullptr);
        return Z_SUCCESS;
    });
}

// A failure keeps the points of the last success.
Result RasterObject::CurveToBezier(int16_t* result) {
    return Member(Needs::Nothing, result, [&]() -> ReturnCode {
        Values<POINT> points;
        if (!ToPixels(curve_, &points)) return Z_ERROR_MEMORY;
        const Curve curve = {sizeof(Curve),
                             static_cast<uint32_t>(curveType_),
                             points.Count(),
                             points.Data(),
                             Z_POLY_WINDING,
                             curveTension_,
                             static_cast<uint32_t>(curveClose_),
                             0};
        int32_t count = 0;
        ReturnCode status = Z_CurveToBezier(&curve, &count, nullptr);
        if (status != Z_SUCCESS) return status;
        Values<POINT> made;
        if (!made.Resize(count)) return Z_ERROR_MEMORY;
        status = Z_CurveToBezier(&curve, &count, made.Data());
        if (status == Z_SUCCESS) bezier_.Exchange(made);
        return status;
    });
}

} // namespace zkr::automation
