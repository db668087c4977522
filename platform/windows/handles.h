// What the library asks of Windows: the end of files and mappings.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

ZKR_RELEASING(CloseHandle, TRUE);

} // namespace zkr::platform
