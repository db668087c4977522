// The works of warping, and where the photograph's corners go: clockwise from its top left, as the picture is seen.
#pragma once

#include "pictures.h"

#include <cstdint>

namespace bench {

enum WarpWork { WarpNearest = 2700, WarpBilinear };

struct WarpCorner {
    int32_t X;
    int32_t Y;
};
inline constexpr WarpCorner WarpCorners[4] = {{40, 110},
                                              {PhotographWidth - 200, 15},
                                              {PhotographWidth - 30, PhotographHeight - 90},
                                              {120, PhotographHeight - 20}};

} // namespace bench
