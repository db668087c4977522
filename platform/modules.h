// Modules loaded at run time, and where our own module lies. The names and contracts are those of Windows;
// namespace zkr::platform holds them on every system.
#pragma once

#ifdef _WIN32
#include "platform/windows/modules.h"
#else
#include "platform/portable/modules.h"
#endif

#include <cstddef>

namespace zkr::platform {

// Writes the folder of the module that holds this library, with a separator at its end. False, and an empty
// text, where it is not known or does not fit.
bool GetOwnModuleFolder(char* buffer, size_t size);

// An entry of a module as a pointer to function; null where there is none.
template <typename Function> Function* GetModuleFunction(HMODULE module, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

} // namespace zkr::platform
