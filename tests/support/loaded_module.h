// Loads and unloads modules as a host does that does not link the library.
#pragma once

#include "zkr13n/platform_types.h"

#include <string>

#ifndef _WIN32
#include <dlfcn.h>
#endif

namespace zkr::test {

#ifdef _WIN32
using Module = HMODULE;
inline Module Load(const std::string& file) {
    return LoadLibraryA(file.c_str());
}
inline void Unload(Module module) {
    FreeLibrary(module);
}
inline bool IsLoaded(const std::string& file) {
    return GetModuleHandleA(file.c_str()) != nullptr;
}
inline void* Find(Module module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(module, name));
}
#else
using Module = void*;
inline Module Load(const std::string& file) {
    return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}
inline void Unload(Module module) {
    dlclose(module);
}
inline bool IsLoaded(const std::string& file) {
    void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (module != nullptr) dlclose(module);
    return module != nullptr;
}
inline void* Find(Module module, const char* name) {
    return dlsym(module, name);
}
#endif

// An exported function of the library, by its declaration.
#define ZKR_FIND(module, name) reinterpret_cast<decltype(&name)>(zkr::test::Find(module, #name))

} // namespace zkr::test
