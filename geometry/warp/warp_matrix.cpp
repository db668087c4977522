// Corners are small integers when the matrix is made of them, so that all that is worked out before the first
// division is exact.
#include "geometry/warp/warp_matrix.h"

#include <cstdint>

namespace zkr::warp {

namespace {

struct Vector {
    int64_t X;
    int64_t Y;
};

Vector Between(const POINT& from, const POINT& to) {
    return {int64_t{to.x} - from.x, int64_t{to.y} - from.y};
}

int SignOf(int64_t value) {
    return (value > 0) - (value < 0);
}

uint64_t Magnitude(int64_t value) {
    return value < 0 ? static_cast<uint64_t>(-value) : static_cast<uint64_t>(value);
}

// The sign of a*b - c*d for factors of up to 32 bits and a sign, whose products need 64 bits and a sign.
int SignOfDifference(int64_t a, int64_t b, int64_t c, int64_t d) {
    const int first = SignOf(a) * SignOf(b), second = SignOf(c) * SignOf(d);
    if (first != second) return first > second ? 1 : -1;
    const uint64_t p = Magnitude(a) * Magnitude(b), q = Magnitude(c) * Magnitude(d);
    return p == q ? 0 : (p > q) == (first > 0) ? 1 : -1;
}

} // namespace

bool IsStrictlyConvex(const Corners& corners) {
    int turns = 0;
    for (size_t i = 0; i < 4; ++i) {
        const Vector edge = Between(corners[i], corners[(i + 1) % 4]);
        const Vector next = Between(corners[(i + 1) % 4], corners[(i + 2) % 4]);
        turns += SignOfDifference(edge.X, next.Y, next.X, edge.Y);
    }
    return turns == 4 || turns == -4;
}

std::array<double, 9> InverseMapping(const Corners& corners) {
    const Vector p0 = {corners[0].x, corners[0].y}, p1 = {corners[1].x, corners[1].y};
    const Vector p2 = {corners[2].x, corners[2].y}, p3 = {corners[3].x, corners[3].y};
    const int64_t dx1 = p1.X - p2.X, dx2 = p3.X - p2.X, sx = p0.X - p1.X + p2.X - p3.X;
    const int64_t dy1 = p1.Y - p2.Y, dy2 = p3.Y - p2.Y, sy = p0.Y - p1.Y + p2.Y - p3.Y;

    const auto c = static_cast<double>(p0.X), f = static_cast<double>(p0.Y);
    double a, b, d, e, g = 0, h = 0;
    if (sx == 0 && sy == 0) {
        a = static_cast<double>(p1.X - p0.X), b = static_cast<double>(p2.X - p1.X);
        d = static_cast<double>(p1.Y - p0.Y), e = static_cast<double>(p2.Y - p1.Y);
    } else {
        const auto den = static_cast<double>(dx1 * dy2 - dx2 * dy1);
        g = static_cast<double>(sx * dy2 - dx2 * sy) / den;
        h = static_cast<double>(dx1 * sy - sx * dy1) / den;
        a = static_cast<double>(p1.X - p0.X) + g * static_cast<double>(p1.X);
        b = static_cast<double>(p3.X - p0.X) + h * static_cast<double>(p3.X);
        d = static_cast<double>(p1.Y - p0.Y) + g * static_cast<double>(p1.Y);
        e = static_cast<double>(p3.Y - p0.Y) + h * static_cast<double>(p3.Y);
    }
    return {e - f * h,     c * h - b,     b * f - c * e, f * g - d,    a - c * g,
            c * d - a * f, d * h - e * g, b * g - a * h, a * e - b * d};
}

} // namespace zkr::warp
