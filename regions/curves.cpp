// Cardinal splines as Bezier curves, and regions inside of Bezier curves.
#include "core/scratch.h"
#include "regions/platform_region.h"
#include "regions/run_store.h"
#include "zkr13n/region_shapes.h"

#include <cmath>
#include <cstddef>
#include <cstring>

using namespace zkr;

namespace {

static_assert(sizeof(Curve) == 32 + sizeof(void*) && offsetof(Curve, Tension) == 16 + sizeof(void*));

bool IsKnown(const Curve* curve) {
    return curve != nullptr && curve->StructSize == sizeof(Curve);
}

// One point of a curve, worked out in double precision.
struct Place {
    double X, Y;
};

Place operator+(const Place& a, const Place& b) {
    return {a.X + b.X, a.Y + b.Y};
}
Place operator-(const Place& a, const Place& b) {
    return {a.X - b.X, a.Y - b.Y};
}
Place operator*(double factor, const Place& place) {
    return {factor * place.X, factor * place.Y};
}

bool Truncate(double value, int32_t& result) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return false;
    result = static_cast<int32_t>(value);
    return true;
}

// The points of a closed ring through which a cardinal spline goes, and the stretch of it that is wanted.
class Spline {
  public:
    explicit Spline(const Curve& curve)
        : points_(curve.Points), count_(curve.PointCount), tension_(curve.Tension),
          start_(curve.Close == Z_CURVE_CLOSED_ON_LAST ? count_ - 1 : 0),
          segments_(curve.Close == Z_CURVE_OPEN     ? count_ - 3
                    : curve.Close == Z_CURVE_CLOSED ? count_
                                                    : count_ - 1) {}

    // Of the Bezier form; below 4 there is none.
    int64_t BezierPoints() const { return 1 + 3 * segments_; }

    // False where a coordinate leaves 32 bits; nothing is written to a null result.
    bool Convert(POINT* result) const {
        if (result != nullptr) *result++ = Input(start_ + 1);
        for (int64_t i = start_; i < start_ + segments_; ++i) {
            POINT segment[3];
            if (!ConvertSegment(i, segment)) return false;
            if (result == nullptr) continue;
            std::memcpy(result, segment, sizeof(segment));
            result += 3;
        }
        return true;
    }

  private:
    POINT Input(int64_t index) const {
        POINT point;
        std::memcpy(&point, points_ + index % count_, sizeof(point)); // the record's pointer may be unaligned
        return point;
    }
    Place At(int64_t index) const {
        const POINT point = Input(index);
        return {static_cast<double>(point.x), static_cast<double>(point.y)};
    }
    // From the second of four points to the third.
    bool ConvertSegment(int64_t i, POINT* result) const {
        const Place p0 = At(i), p1 = At(i + 1), p2 = At(i + 2), p3 = At(i + 3);
        const double third = tension_ / 3;
        const Place controls[] = {p1 + third * (p2 - p0), p2 - third * (p3 - p1)};
        for (int k = 0; k < 2; ++k) {
            int32_t x, y;
            if (!Truncate(controls[k].X, x) || !Truncate(controls[k].Y, y)) return false;
            result[k].x = x;
            result[k].y = y;
        }
        result[2] = Input(i + 2);
        return true;
    }

    const POINT* points_;
    int64_t count_;
    double tension_;
    int64_t start_, segments_;
};

// A device context of memory, for the path that a curve is drawn into.
class PathContext {
  public:
    PathContext() : context_(platform::CreateCompatibleDC(nullptr)) {}
    ~PathContext() {
        if (context_ != nullptr) platform::DeleteDC(context_);
    }
    PathContext(const PathContext&) = delete;
    PathContext& operator=(const PathContext&) = delete;

    // The region inside of a figure, or null.
    HRGN RegionInside(const POINT* points, int32_t count, int fillMode) {
        if (context_ == nullptr || platform::SetPolyFillMode(context_, fillMode) == 0 ||
            !platform::BeginPath(context_) ||
            !platform::PolyBezier(context_, points, static_cast<uint32_t>(count)) ||
            !platform::EndPath(context_))
            return nullptr;
        return platform::PathToRegion(context_);
    }

  private:
    HDC context_;
};

ReturnCode CombineBezier(BitmapHandle* bitmap, const RegionXform* xform, const POINT* points, int32_t count,
                         uint32_t fillMode, uint32_t mode) {
    PathContext context;
    const OwnedPlatformRegion shape(
        context.RegionInside(points, count, fillMode == Z_POLY_WINDING ? WINDING : ALTERNATE));
    return shape ? Z_SetBitmapRgnHandle(bitmap, xform, shape.get(), mode) : code::OutOfMemory;
}

ReturnCode CombineSpline(BitmapHandle* bitmap, const RegionXform* xform, const Curve& curve, uint32_t mode) {
    if (curve.PointCount < 1 || curve.Close > Z_CURVE_CLOSED_ON_LAST) return code::InvalidArgument;
    const Spline spline(curve);
    const int64_t count = spline.BezierPoints();
    if (count > INT32_MAX || (count >= 4 && !spline.Convert(nullptr))) return code::InvalidArgument;
    if (count < 4) return code::OutOfMemory;
    ScratchBuffer<POINT> bezier(static_cast<size_t>(count));
    if (!bezier) return code::OutOfMemory;
    spline.Convert(bezier.data());
    return CombineBezier(bitmap, xform, bezier.data(), static_cast<int32_t>(count), curve.FillMode, mode);
}

} // namespace

ReturnCode Z_CALL Z_SetBitmapRgnCurve(BitmapHandle* bitmap, const RegionXform* xform, const Curve* curve,
                                      uint32_t mode) {
    if (!IsKnown(curve)) return code::InvalidArgument;
    const Curve given = *curve;
    if (given.CurveType > Z_CURVE_CARDINAL || given.Points == nullptr || given.FillMode > Z_POLY_ALTERNATE)
        return code::InvalidArgument;
    if (given.CurveType == Z_CURVE_CARDINAL) {
        if (!(given.Tension >= 0 && given.Tension <= 1)) return code::InvalidArgument;
        return CombineSpline(bitmap, xform, given, mode);
    }
    if (given.PointCount < 4 || given.PointCount % 3 != 1) return code::InvalidArgument;
    return CombineBezier(bitmap, xform, given.Points, given.PointCount, given.FillMode, mode);
}

ReturnCode Z_CALL Z_CurveToBezier(const Curve* curve, int32_t* pointCount, POINT* points) {
    if (!IsKnown(curve) || pointCount == nullptr) return code::InvalidArgument;
    const Curve given = *curve;
    if (given.Close > Z_CURVE_CLOSED_ON_LAST || given.PointCount < (given.Close == Z_CURVE_OPEN ? 4 : 3) ||
        !std::isfinite(given.Tension))
        return code::InvalidArgument;
    const Spline spline(given);
    const int64_t count = spline.BezierPoints();
    if (count > INT32_MAX) return code::InvalidArgument;
    if (points != nullptr) {
        if (given.Points == nullptr || !spline.Convert(nullptr)) return code::InvalidArgument;
        spline.Convert(points);
    }
    *pointCount = static_cast<int32_t>(count);
    return code::Success;
}
