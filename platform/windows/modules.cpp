// The one question about modules for which the system has no single call.
#include "platform/modules.h"

#include <cstring>

namespace zkr::platform {

bool GetOwnModuleFolder(char* buffer, size_t size) {
    if (size == 0) return false;
    buffer[0] = '\0';
    HMODULE self = nullptr;
    const DWORD how = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!::GetModuleHandleExA(how, reinterpret_cast<LPCSTR>(&GetOwnModuleFolder), &self)) return false;
    char path[MAX_PATH];
    const DWORD length = ::GetModuleFileNameA(self, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return false;
    const char* separator = std::strrchr(path, '\\');
    if (separator == nullptr) return false;
    const size_t folder = static_cast<size_t>(separator - path) + 1;
    if (folder >= size) return false;
    std::memcpy(buffer, path, folder);
    buffer[folder] = '\0';
    return true;
}

} // namespace zkr::platform
