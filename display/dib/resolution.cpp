#include "display/dib/resolution.h"

#include "core/rectangle.h"
#include "platform/graphics.h"

namespace zkr::dib {

namespace {

// value * 1000 / divisor, rounded; -1 without a divisor.
int32_t ThousandTimes(int32_t value, int32_t divisor) {
    if (divisor <= 0) return -1;
    return Saturated((int64_t{value} * 1000 + divisor / 2) / divisor);
}

} // namespace

Resolutions ScreenPelsPerMetre() {
    HDC screen = platform::GetDC(nullptr);
    if (screen == nullptr) return {0, 0};
    const auto caps = [screen](int index) { return platform::GetDeviceCaps(screen, index); };
    const Resolutions found = {ThousandTimes(caps(LOGPIXELSX), caps(HORZSIZE)),
                               ThousandTimes(caps(LOGPIXELSY), caps(VERTSIZE))};
    platform::ReleaseDC(nullptr, screen);
    return found;
}

int32_t DotsPerInch(int32_t pelsPerMetre) {
    return static_cast<int32_t>((int64_t{pelsPerMetre} * 254 + 5000) / 10000);
}

int32_t PelsPerMetre(int32_t dotsPerInch) {
    return Saturated((int64_t{dotsPerInch} * 10000 + 127) / 254);
}

} // namespace zkr::dib
