// The readers and writers of pixels for the instruction set that the file is compiled for.
#pragma once

namespace zkr::rows {

// Whether a reader takes alpha along and a writer puts it down, or leaves what was there.
enum class Alpha { Used, Ignored };

} // namespace zkr::rows

#if defined(__AVX2__)
#include "colour/rows/pixels_avx2.h"
#else
#include "colour/rows/pixels_plain.h"
#endif
