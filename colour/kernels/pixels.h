// The readers and writers of pixels for the instruction set that the file is compiled for.
#pragma once

namespace zkr::kernels {

// Whether a reader takes alpha along and a writer puts it down, or leaves what was there.
enum class Alpha { Used, Ignored };

} // namespace zkr::kernels

#if defined(__AVX2__)
#include "colour/kernels/pixels_avx2.h"
#else
#include "colour/kernels/pixels_plain.h"
#endif
