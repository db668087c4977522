#include "automation/windows/module.h"

#include <atomic>

namespace zkr::automation {

namespace {

constinit std::atomic<long> users{0};

} // namespace

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&users), &module);
    return module;
}

bool ModulePath(wchar_t (&path)[MAX_PATH]) {
    const DWORD length = GetModuleFileNameW(ThisModule(), path, MAX_PATH);
    return length != 0 && length < MAX_PATH;
}

void KeepModule() {
    users.fetch_add(1);
}

void DropModule() {
    users.fetch_sub(1);
}

bool ModuleIsUsed() {
    return users.load() != 0;
}

HRESULT ResultOf(int32_t status) {
    return status == 1 ? S_OK : static_cast<HRESULT>(0x800A0000u | (20000u - static_cast<uint32_t>(status)));
}

} // namespace zkr::automation
