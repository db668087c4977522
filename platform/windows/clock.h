// What the library asks of Windows: the clock.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr::platform {

using ::DWORD;
using ::GetTickCount;

} // namespace zkr::platform
