// The steppers of packed rows: a pixel of the target is a pixel of the source, at every depth, forwards and
// backwards.
#include "geometry/resize/stepping.h"

#include "core/sizes.h"
#include "geometry/row_tail.h"
#include "zkr13n/resize.h"

#include <cstring>

namespace zkr {

namespace {

template <size_t bytes> struct WholePixel { uint8_t Bytes[bytes]; };

template <size_t bytes> WholePixel<bytes> Load(const uint8_t* row, uint64_t index) {
    WholePixel<bytes> pixel;
    std::memcpy(&pixel, row + index * bytes, bytes);
    return pixel;
}

template <size_t bytes> void StepBytes(Stepping at, const uint8_t* source, uint8_t* target, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i, at.Next(), target += bytes) {
        const auto pixel = Load<bytes>(source, at.Index);
        std::memcpy(target, &pixel, bytes);
    }
}

template <size_t bytes>
void StepBytesBack(Stepping at, const uint8_t* source, uint8_t* target, size_t pixels) {
    while (pixels-- > 0) {
        at.Back();
        const auto pixel = Load<bytes>(source, at.Index);
        std::memcpy(target + pixels * bytes, &pixel, bytes);
    }
}

// Up to 7 bits, packed from the top bit of each byte; a field may lie in two bytes.
template <uint32_t bits> uint32_t LoadField(const uint8_t* row, uint64_t index) {
    constexpr uint32_t mask = (1u << bits) - 1;
    const uint64_t place = index * bits;
    const uint8_t* byte = row + (place >> 3);
    const uint32_t end = static_cast<uint32_t>(place & 7) + bits;
    if (end <= 8) return byte[0] >> (8 - end) & mask;
    return (static_cast<uint32_t>(byte[0]) << 8 | byte[1]) >> (16 - end) & mask;
}

template <uint32_t bits> void StepFields(Stepping at, const uint8_t* source, uint8_t* target, size_t pixels) {
    uint32_t gathered = 0, count = 0;
    for (; pixels > 0; --pixels, at.Next()) {
        gathered = gathered << bits | LoadField<bits>(source, at.Index);
        count += bits;
        if (count < 8) continue;
        count -= 8;
        *target++ = static_cast<uint8_t>(gathered >> count);
    }
    if (count == 0) return;
    const uint32_t kept = 0xFFu >> count;
    *target = static_cast<uint8_t>((gathered << (8 - count) & ~kept) | (*target & kept));
}

template <uint32_t bits>
void StepFieldsBack(Stepping at, const uint8_t* source, uint8_t* target, size_t pixels) {
    const uint64_t end = static_cast<uint64_t>(pixels) * bits;
    uint32_t count = static_cast<uint32_t>(0 - end) & 7; // bits behind the last pixel, which stay
    target += (end + 7) / 8;
    uint32_t gathered = count == 0 ? 0 : target[-1] & ((1u << count) - 1);
    for (; pixels > 0; --pixels) {
        at.Back();
        gathered |= LoadField<bits>(source, at.Index) << count;
        count += bits;
        if (count < 8) continue;
        *--target = static_cast<uint8_t>(gathered);
        gathered >>= 8;
        count -= 8;
    }
}

// Two pixels of 12 bits in three bytes, the first in the low bits.
uint32_t Load12(const uint8_t* row, uint64_t index) {
    const uint8_t* byte = row + index + index / 2;
    return index % 2 == 0 ? byte[0] | (byte[1] & 0x0Fu) << 8
                          : byte[0] >> 4 | static_cast<uint32_t>(byte[1]) << 4;
}

// Both pixels of a pair are read before it is written, so that the row may be changed in place.
void StorePair(uint8_t* target, uint32_t first, uint32_t second) {
    target[0] = static_cast<uint8_t>(first);
    target[1] = static_cast<uint8_t>(first >> 8 | second << 4);
    target[2] = static_cast<uint8_t>(second >> 4);
}

void StoreLast(uint8_t* target, uint32_t pixel) {
    target[0] = static_cast<uint8_t>(pixel);
    target[1] = static_cast<uint8_t>((target[1] & 0xF0u) | pixel >> 8);
}

void Step12(Stepping at, const uint8_t* source, uint8_t* target, size_t pixels) {
    for (; pixels > 1; pixels -= 2, target += 3) {
        const uint32_t first = Load12(source, at.Index);
        at.Next();
        StorePair(target, first, Load12(source, at.Index));
        at.Next();
    }
    if (pixels == 1) StoreLast(target, Load12(source, at.Index));
}

void Step12Back(Stepping at, const uint8_t* source, uint8_t* target, size_t pixels) {
    target += pixels / 2 * 3;
    if (pixels % 2 != 0) {
        at.Back();
        StoreLast(target, Load12(source, at.Index));
    }
    for (pixels /= 2; pixels > 0; --pixels) {
        at.Back();
        const uint32_t second = Load12(source, at.Index);
        at.Back();
        target -= 3;
        StorePair(target, Load12(source, at.Index), second);
    }
}

using Stepper = void (*)(Stepping at, const uint8_t* source, uint8_t* target, size_t pixels);

struct Steppers {
    Stepper Forward;
    Stepper Back; // from behind the last pixel
};

Steppers SteppersOf(int32_t bitsPerPixel) {
    switch (bitsPerPixel) {
    case 1: return {StepFields<1>, StepFieldsBack<1>};
    case 2: return {StepFields<2>, StepFieldsBack<2>};
    case 3: return {StepFields<3>, StepFieldsBack<3>};
    case 4: return {StepFields<4>, StepFieldsBack<4>};
    case 5: return {StepFields<5>, StepFieldsBack<5>};
    case 6: return {StepFields<6>, StepFieldsBack<6>};
    case 7: return {StepFields<7>, StepFieldsBack<7>};
    case 8: return {StepBytes<1>, StepBytesBack<1>};
    case 12: return {Step12, Step12Back};
    case 16: return {StepBytes<2>, StepBytesBack<2>};
    case 24: return {StepBytes<3>, StepBytesBack<3>};
    case 32: return {StepBytes<4>, StepBytesBack<4>};
    case 48: return {StepBytes<6>, StepBytesBack<6>};
    case 64: return {StepBytes<8>, StepBytesBack<8>};
    default: return {};
    }
}

bool PacksBits(int32_t bitsPerPixel) {
    return bitsPerPixel < 8 || bitsPerPixel == 12;
}

} // namespace

bool StepRow(int32_t bitsPerPixel, Stepping at, const uint8_t* source, uint8_t* target, size_t pixels) {
    const Stepper step = SteppersOf(bitsPerPixel).Forward;
    if (step == nullptr) return false;
    step(at, source, target, pixels);
    return true;
}

} // namespace zkr

using namespace zkr;

uint32_t Z_CALL Z_GetResizedScanLine(int32_t bitsPerPixel, uint32_t targetBytes, uint32_t firstPixel,
                                     uint32_t step, uint32_t error, uint32_t remainder, const void* source,
                                     void* target, uint32_t pixels, int32_t denominator, uint32_t enlarge) {
    if (!IsSupportedDepth(bitsPerPixel) || denominator < 1) return 0;
    const bool readsStep = bitsPerPixel >= 8 || enlarge == 0;
    const Stepping at = {firstPixel, readsStep ? step : 0, remainder, error,
                         static_cast<uint64_t>(denominator)};
    auto* to = static_cast<uint8_t*>(target);
    StepRow(bitsPerPixel, at, static_cast<const uint8_t*>(source), to, pixels);
    if (PacksBits(bitsPerPixel) && source != target) ClearBehind(bitsPerPixel, to, pixels, targetBytes);
    return pixels;
}

uint32_t Z_CALL Z_ReverseGetResizedScanLine(int32_t bitsPerPixel, uint32_t, uint32_t firstPixel,
                                            uint32_t step, uint32_t error, uint32_t remainder,
                                            const void* source, void* target, uint32_t pixels,
                                            int32_t denominator, uint32_t enlarge) {
    if (!IsSupportedDepth(bitsPerPixel) || denominator < 1) return 0;
    const auto* from = static_cast<const uint8_t*>(source);
    auto* to = static_cast<uint8_t*>(target);
    Stepping at = {firstPixel, step, remainder, error, static_cast<uint64_t>(denominator)};
    if (bitsPerPixel < 8 && enlarge == 0) {
        StepRow(bitsPerPixel, at, from, to, pixels);
        return pixels;
    }
    if (bitsPerPixel < 8) at.Step = 0;
    SteppersOf(bitsPerPixel).Back(at.After(pixels), from, to, pixels);
    return pixels;
}
