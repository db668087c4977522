// Puts the kernels that pack and unpack pixels into the table of the instruction set that the file is
// compiled for.
#pragma once

#if defined(__AVX2__)
#include "colour/kernels/packing_avx2.h"
#else
#include "colour/kernels/packing_plain.h"
#endif

namespace zkr::kernels {
namespace {

template <size_t bits> constexpr void SetPackingKernelsOf(ConvertKernels& kernels) {
    kernels.Unpack[bits] = Unpack<bits>;
    kernels.Pack[bits] = Pack<bits>;
    if constexpr (bits < 7) SetPackingKernelsOf<bits + 1>(kernels);
}

constexpr void SetPackingKernels(ConvertKernels& kernels) {
    SetPackingKernelsOf<1>(kernels);
    kernels.Unpack12 = Unpack12;
    kernels.Pack12 = Pack12;
    kernels.MapBytes = MapBytes;
}

} // namespace
} // namespace zkr::kernels
