// Turns of plain buffers, whose rows are padded to four bytes as a bitmap's are.
#include "core/return_codes.h"
#include "core/sizes.h"
#include "geometry/kernels/turn_kernels.h"
#include "kernels/family.h"
#include "zkr13n/convert.h"
#include "zkr13n/rotate.h"

#include <cstring>
#include <limits>

namespace zkr {

namespace {

constexpr uint32_t Most = std::numeric_limits<int32_t>::max();

// Whether there is anything to turn.
bool HasPixels(uint32_t width, uint32_t height, uint32_t bits) {
    return width - 1 < Most && height - 1 < Most && bits <= 64 &&
           IsSupportedDepth(static_cast<int32_t>(bits));
}

ptrdiff_t RowBytes(uint32_t width, uint32_t bits) {
    return static_cast<ptrdiff_t>(StorageRowBytes(static_cast<int32_t>(width), static_cast<int32_t>(bits)));
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_RotateBuffer90(const void* source, void* target, int32_t direction, uint32_t width,
                                   uint32_t height, uint32_t bits) {
    if (source == nullptr || target == nullptr) return code::InvalidArgument;
    if (!HasPixels(width, height, bits)) return code::Success;
    const ptrdiff_t sourceBytes = RowBytes(width, bits), targetBytes = RowBytes(height, bits);
    kernels::TurnBlock block = {.Source = static_cast<const uint8_t*>(source),
                                .SourceStride = sourceBytes,
                                .Target = static_cast<uint8_t*>(target),
                                .TargetStride = targetBytes,
                                .Columns = width,
                                .Rows = height,
                                .Bits = static_cast<int32_t>(bits)};
    if (direction != 0) {
        block.Source += static_cast<ptrdiff_t>(height - 1) * sourceBytes;
        block.SourceStride = -sourceBytes;
    } else {
        block.Target += static_cast<ptrdiff_t>(width - 1) * targetBytes;
        block.TargetStride = -targetBytes;
    }
    kernels::Chosen<kernels::TurnKernels>().Of(block.Bits)(block);
    return code::Success;
}

ReturnCode Z_CALL Z_RotateBuffer180(const void* source, void* target, uint32_t width, uint32_t height,
                                    uint32_t bits) {
    if (source == nullptr || target == nullptr) return code::InvalidArgument;
    if (!HasPixels(width, height, bits)) return code::Success;
    const auto rowBytes = static_cast<size_t>(RowBytes(width, bits));
    const auto* from = static_cast<const uint8_t*>(source);
    uint8_t* to = static_cast<uint8_t*>(target) + (height - 1) * rowBytes;
    for (uint32_t row = 0; row < height; ++row, from += rowBytes, to -= rowBytes) {
        std::memcpy(to, from, rowBytes);
        Z_MirrorLine(to, static_cast<int32_t>(width), static_cast<int32_t>(bits));
    }
    return code::Success;
}
