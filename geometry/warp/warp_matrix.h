// The projective mapping of a quadrilateral to the unit square (Heckbert 1989), and the test that there is one.
#pragma once

#include "zkr13n/warp.h"

#include <array>

namespace zkr::warp {

using Corners = std::array<POINT, 4>;

// Whether the corners turn the same way at each of them.
bool IsStrictlyConvex(const Corners& corners);

// n0 to n8: a pixel (x, y) lies at u = (x*n0 + y*n1 + n2) / w, v = (x*n3 + y*n4 + n5) / w of the unit square, where
// w = x*n6 + y*n7 + n8. The corners are those of a strictly convex quadrilateral, and none is negative.
std::array<double, 9> InverseMapping(const Corners& corners);

} // namespace zkr::warp
