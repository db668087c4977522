// What the library asks of Windows: modules.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

using ::BOOL;
using ::FARPROC;
using ::HMODULE;

ZKR_FAULTABLE(LoadLibraryA, Module, nullptr, ERROR_MOD_NOT_FOUND);
using ::FreeLibrary;
using ::GetProcAddress;

} // namespace zkr::platform
