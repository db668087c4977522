// The screen of the process, and contexts on surfaces.
#pragma once

#include "platform/portable/device.h"

namespace zkr::platform {

Ref<Surface> ScreenSurface();

// A context that holds a surface and tells of another; null, with the last error set, where memory is short.
HDC MakeContext(Surface& shown, Surface& device, DeviceContext::Owner owner);

} // namespace zkr::platform
