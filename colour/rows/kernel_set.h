// The instruction sets that row kernels are compiled for, and the choice among them. Every kernel file is
// compiled once a set and defines, in the namespace zkr::rows::ZKR_KERNEL_SET, one constant table of function
// pointers for its family; all else in it has internal linkage, so that no code of a larger set can stand in
// for that of a smaller one. A further family is one forward declaration and one member here, one line in
// kernel_set.cpp.
#pragma once

#include <span>

namespace zkr::rows {

struct ConvertKernels; // row_kernel.h
struct MatchKernels;   // palette_match.h
struct CountKernels;   // colour_set.h
struct DitherKernels;  // dither_rows.h
struct SpaceKernels;   // space_kernels.h

struct RowKernels {
    const char* Name; // as ZKR_CPU names it
    const ConvertKernels& Convert;
    const MatchKernels& Match;
    const CountKernels& Count;
    const DitherKernels& Dither;
    const SpaceKernels& Spaces;
};

// The kernels that this process uses: the best set that the processor has, or the one that the environment
// variable ZKR_CPU names. Chosen at the first call.
const RowKernels& Kernels();

// All sets that the processor can run, the plainest first.
std::span<const RowKernels> UsableKernelSets();

} // namespace zkr::rows
