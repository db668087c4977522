// Plain loops, which the compiler brings to vectors.
#include "regions/kernels/run_moves.h"

namespace zkr::kernels {
namespace {

void Offset(int32_t* ends, size_t count, int32_t by) {
    for (size_t i = 0; i < count; ++i)
        ends[i] += by;
}

} // namespace

template <> constinit const RunMoveKernels Compiled<RunMoveKernels, ThisSet>::Table = {Offset};

} // namespace zkr::kernels
