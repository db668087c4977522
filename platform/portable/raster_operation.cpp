#include "platform/portable/raster_operation.h"

#include <cstring>

namespace zkr::platform {

namespace {

uint64_t Choose(uint64_t zero, uint64_t one, uint64_t by) {
    return zero ^ ((zero ^ one) & by);
}

// What a pair of pattern and source bits makes of the destination: (d & keep) ^ flip.
struct Effect {
    uint64_t keep;
    uint64_t flip;
};

} // namespace

void RasterOperation::Run(uint8_t* destination, const uint8_t* source, const uint8_t* pattern, int firstBit,
                          int count) const {
    if (count <= 0) return;
    Effect effects[4];
    for (uint32_t i = 0; i < 4; ++i) {
        const uint64_t ofZero = table_ >> (2 * i) & 1, ofOne = table_ >> (2 * i + 1) & 1;
        effects[i] = {0 - (ofZero ^ ofOne), 0 - ofZero};
    }
    const auto operate = [&](uint64_t d, uint64_t s, uint64_t p) {
        const uint64_t keep = Choose(Choose(effects[0].keep, effects[1].keep, s),
                                     Choose(effects[2].keep, effects[3].keep, s), p);
        const uint64_t flip = Choose(Choose(effects[0].flip, effects[1].flip, s),
                                     Choose(effects[2].flip, effects[3].flip, s), p);
        return (d & keep) ^ flip;
    };
    const int bytes = (firstBit + count + 7) / 8;
    const auto part = [&](int at, int length) {
        uint64_t d = 0, s = 0, p = 0;
        const auto size = static_cast<size_t>(length);
        std::memcpy(&d, destination + at, size);
        if (source != nullptr) std::memcpy(&s, source + at, size);
        if (pattern != nullptr) std::memcpy(&p, pattern + at, size);
        d = operate(d, s, p);
        std::memcpy(destination + at, &d, size);
    };
    const auto firstMask = static_cast<uint8_t>(0xFF >> firstBit);
    const auto lastMask = static_cast<uint8_t>(0xFF << (8 * bytes - firstBit - count));
    uint8_t& first = destination[0];
    uint8_t& last = destination[bytes - 1];
    const uint8_t firstBefore = first, lastBefore = last;
    int at = 0;
    for (; at + 8 <= bytes; at += 8)
        part(at, 8);
    if (at < bytes) part(at, bytes - at);
    const auto mask = [](uint8_t& byte, uint8_t before, uint8_t changed) {
        byte = static_cast<uint8_t>((before & ~changed) | (byte & changed));
    };
    if (bytes == 1) return mask(first, firstBefore, firstMask & lastMask);
    mask(first, firstBefore, firstMask);
    mask(last, lastBefore, lastMask);
}

} // namespace zkr::platform
