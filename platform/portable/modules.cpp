// Shared objects behind handles of the table.
#include "platform/modules.h"

#include "platform/faults.h"
#include "platform/portable/handle_table.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <new>
#include <strings.h>
#include <unistd.h>

namespace zkr::platform {

namespace {

struct LoadedModule final : Object {
    static constexpr ObjectKind kind = ObjectKind::Module;

    void* object = nullptr;

    void Release() override {
        if (object != nullptr) dlclose(object);
        delete this;
    }
};

// The file of the object that this code lies in. The main program is listed under the name that it was called
// by, which may be no path.
bool OwnFile(char (&path)[PATH_MAX]) {
    Dl_info info;
    if (dladdr(reinterpret_cast<void*>(&OwnFile), &info) == 0 || info.dli_fname == nullptr) return false;
    if (std::strchr(info.dli_fname, '/') != nullptr && realpath(info.dli_fname, path) != nullptr) return true;
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0) return false;
    path[length] = '\0';
    return true;
}

// The file of the shared object that a name stands for. FOLDER/STEM.DLL is FOLDER/libSTEM.so; any other name
// stands for itself.
bool ObjectFile(const char* name, char (&path)[PATH_MAX]) {
    const size_t length = std::strlen(name);
    const bool isDll = length > 4 && strcasecmp(name + length - 4, ".dll") == 0;
    const char* separator = std::strrchr(name, '/');
    const char* stem = separator != nullptr ? separator + 1 : name;
    const int written =
        isDll ? std::snprintf(path, sizeof path, "%.*slib%.*s.so", static_cast<int>(stem - name), name,
                              static_cast<int>(name + length - 4 - stem), stem)
              : std::snprintf(path, sizeof path, "%s", name);
    return written >= 0 && static_cast<size_t>(written) < sizeof path;
}

} // namespace

HMODULE LoadLibraryA(const char* name) {
    auto* module = fault::Due(fault::Module) ? nullptr : new (std::nothrow) LoadedModule;
    if (module == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    char path[PATH_MAX];
    module->object = ObjectFile(name, path) ? dlopen(path, RTLD_NOW | RTLD_LOCAL) : nullptr;
    const HMODULE handle = module->object != nullptr ? InsertHandle(LoadedModule::kind, *module) : nullptr;
    if (handle == nullptr) {
        SetLastError(module->object == nullptr ? ERROR_MOD_NOT_FOUND : ERROR_NOT_ENOUGH_MEMORY);
        module->Release();
    }
    return handle;
}

FARPROC GetProcAddress(HMODULE handle, const char* name) {
    const Pin<LoadedModule> module(handle);
    if (!module) return nullptr;
    void* entry = dlsym(module->object, name);
    if (entry == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(entry);
}

BOOL FreeLibrary(HMODULE handle) {
    return CloseHandleOfKind(LoadedModule::kind, handle) ? TRUE : FALSE;
}

bool GetOwnModuleFolder(char* buffer, size_t size) {
    if (size == 0) return false;
    buffer[0] = '\0';
    char path[PATH_MAX];
    if (!OwnFile(path)) return false;
    const char* separator = std::strrchr(path, '/');
    if (separator == nullptr) return false;
    const size_t folder = static_cast<size_t>(separator - path) + 1;
    if (folder >= size) return false;
    std::memcpy(buffer, path, folder);
    buffer[folder] = '\0';
    return true;
}

} // namespace zkr::platform
