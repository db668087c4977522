#include "automation/scale.h"

#include "platform/graphics.h"

#include <cmath>

namespace zkr::automation {

namespace {

// A system of coordinates along one axis.
struct User {
    double Origin;
    double Extent;
    double Client;
};

User UserOf(const Scale& scale, Axis axis) {
    return axis == Axis::X ? User{scale.Left, scale.Width, static_cast<double>(scale.ClientX)}
                           : User{scale.Top, scale.Height, static_cast<double>(scale.ClientY)};
}

bool IsUser(const Scale& scale) {
    return scale.Mode == SCALEMODE_USER || scale.Mode == SCALEMODE_MAX;
}

// Pixels to the inch.
double Resolution(Axis axis, HDC device) {
    const int which = axis == Axis::X ? LOGPIXELSX : LOGPIXELSY;
    if (device != nullptr) return platform::GetDeviceCaps(device, which);
    HDC screen = platform::GetDC(nullptr);
    if (screen == nullptr) return 0;
    const int resolution = platform::GetDeviceCaps(screen, which);
    platform::ReleaseDC(nullptr, screen);
    return resolution;
}

double UnitsAtResolution(int32_t mode, Axis axis, double v, double dpi) {
    if (dpi == 0) return 0;
    switch (mode) {
    case SCALEMODE_TWIP: return v * 1440 / dpi;
    case SCALEMODE_POINT: return v * 72 / dpi;
    case SCALEMODE_CHAR: return axis == Axis::X ? v * 12 / dpi : v * 6 / dpi;
    case SCALEMODE_INCH: return v / dpi;
    case SCALEMODE_MM: return v * 25.4 / dpi;
    case SCALEMODE_CM: return v * 2.54 / dpi;
    default: return v;
    }
}

double PixelsAtResolution(int32_t mode, Axis axis, double v, double dpi) {
    switch (mode) {
    case SCALEMODE_TWIP: return dpi * v * 0.00069444446;
    case SCALEMODE_POINT: return dpi * v * 0.013888889;
    case SCALEMODE_CHAR: return axis == Axis::X ? dpi * v * 0.083333336 : dpi * v * 0.16666667;
    case SCALEMODE_INCH: return dpi * v;
    case SCALEMODE_MM: return dpi * v * 0.03937008;
    case SCALEMODE_CM: return dpi * v * 0.39370078;
    default: return v;
    }
}

float Units(const Scale& scale, Axis axis, double pixels, HDC device, bool position) {
    if (scale.Mode == SCALEMODE_PIXEL) return static_cast<float>(pixels);
    if (!IsUser(scale))
        return static_cast<float>(UnitsAtResolution(scale.Mode, axis, pixels, Resolution(axis, device)));
    const User user = UserOf(scale, axis);
    if (user.Client == 0) return 0;
    return static_cast<float>(pixels * user.Extent / user.Client + (position ? user.Origin : 0));
}

float Pixels(const Scale& scale, Axis axis, double units, HDC device, bool position) {
    if (scale.Mode == SCALEMODE_PIXEL) return static_cast<float>(units);
    if (!IsUser(scale))
        return static_cast<float>(PixelsAtResolution(scale.Mode, axis, units, Resolution(axis, device)));
    const User user = UserOf(scale, axis);
    if (user.Client == 0 || user.Extent == 0) return 0;
    if (position) return static_cast<float>((units - user.Origin) * user.Client / user.Extent);
    return std::ceil(static_cast<float>(user.Client * units / user.Extent));
}

} // namespace

float PositionInUnits(const Scale& scale, Axis axis, double pixels, HDC device) {
    return Units(scale, axis, pixels, device, true);
}
float LengthInUnits(const Scale& scale, Axis axis, double pixels, HDC device) {
    return Units(scale, axis, pixels, device, false);
}
float PositionInPixels(const Scale& scale, Axis axis, double units, HDC device) {
    return Pixels(scale, axis, units, device, true);
}
float LengthInPixels(const Scale& scale, Axis axis, double units, HDC device) {
    return Pixels(scale, axis, units, device, false);
}

} // namespace zkr::automation
