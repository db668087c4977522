#include "platform/portable/raster_operation.h"

#include "kernels/family.h"
#include "platform/kernels/pixel_words.h"

namespace zkr::platform {

void RasterOperation::Run(uint8_t* destination, const uint8_t* source, const uint8_t* pattern, int firstBit,
                          int count) const {
    if (count <= 0) return;
    kernels::RasterEffect effects[4];
    for (uint32_t i = 0; i < 4; ++i) {
        const uint64_t ofZero = table_ >> (2 * i) & 1, ofOne = table_ >> (2 * i + 1) & 1;
        effects[i] = {0 - (ofZero ^ ofOne), 0 - ofZero};
    }
    const int bytes = (firstBit + count + 7) / 8;
    const auto firstMask = static_cast<uint8_t>(0xFF >> firstBit);
    const auto lastMask = static_cast<uint8_t>(0xFF << (8 * bytes - firstBit - count));
    uint8_t& first = destination[0];
    uint8_t& last = destination[bytes - 1];
    const uint8_t firstBefore = first, lastBefore = last;
    kernels::Chosen<kernels::PixelWordKernels>().Operate(destination, source, pattern,
                                                         static_cast<size_t>(bytes), effects);
    const auto mask = [](uint8_t& byte, uint8_t before, uint8_t changed) {
        byte = static_cast<uint8_t>((before & ~changed) | (byte & changed));
    };
    if (bytes == 1) return mask(first, firstBefore, firstMask & lastMask);
    mask(first, firstBefore, firstMask);
    mask(last, lastBefore, lastMask);
}

} // namespace zkr::platform
