// Modules on systems other than Windows: shared objects.
#pragma once

#include "platform/portable/types.h"

namespace zkr::platform {

using HMODULE = HANDLE;
using FARPROC = void (*)();

HMODULE LoadLibraryA(const char* name);
FARPROC GetProcAddress(HMODULE module, const char* name);
BOOL FreeLibrary(HMODULE module);

} // namespace zkr::platform
