// Modules on systems other than Windows: shared objects.
#pragma once

#include "platform/portable/types.h"

namespace zkr::platform {

using HMODULE = HANDLE;
using FARPROC = void (*)();

// A name that ends in .DLL stands for a shared object: FOLDER/STEM.DLL for FOLDER/libSTEM.so. A name without
// a folder is looked for where the system looks for shared objects.
HMODULE LoadLibraryA(const char* name);
FARPROC GetProcAddress(HMODULE module, const char* name);
BOOL FreeLibrary(HMODULE module);

} // namespace zkr::platform
