// The table of the filter modules: see filter_modules.h. A module is named by its whole path beside the
// library, since a bare name would also be looked for in the current folder, where anybody may have put
// anything.
#include "core/storage/filter_modules.h"

#include "core/return_codes.h"
#include "core/spin_lock.h"
#include "platform/fork.h"
#include "platform/modules.h"

#include <cstring>

namespace zkr::storage {

namespace {

struct FilterModule {
    const char* Name;
    ReturnCode Missing;
    platform::HMODULE Handle;
    FilterEntries Entries;
    uint32_t UseCount;
};

constinit SpinLock tableLock;
constinit FilterModule table[] = {
    {"ZFCMP13S.DLL", code::ColourFilterMissing, nullptr, {}, 0},
    {"ZFFAX13S.DLL", code::FaxFilterMissing, nullptr, {}, 0},
};

const platform::ForkPart forkPart(
    platform::ForkOrder::Outer, [] { tableLock.Lock(); },
    [](bool inChild) { inChild ? tableLock.Reset() : tableLock.Unlock(); });

constexpr size_t LongestPath = 4096;

FilterModule& ModuleOf(Filter filter) {
    return table[static_cast<size_t>(filter)];
}

void Unload(FilterModule& module) {
    if (module.Handle != nullptr) platform::FreeLibrary(module.Handle);
    module.Handle = nullptr;
    module.Entries = {};
}

bool Load(FilterModule& module) {
    char path[LongestPath];
    if (!platform::GetOwnModuleFolder(path, sizeof path - std::strlen(module.Name))) return false;
    std::strcat(path, module.Name);
    module.Handle = platform::LoadLibraryA(path);
    if (module.Handle == nullptr) return false;
    module.Entries.Load = platform::GetModuleFunction<FilterLoadBuffer>(module.Handle, "fltLoadBuffer");
    module.Entries.Save = platform::GetModuleFunction<FilterSaveBuffer>(module.Handle, "fltSaveBuffer");
    if (module.Entries.Load != nullptr && module.Entries.Save != nullptr) return true;
    Unload(module);
    return false;
}

// Under the lock.
void UnloadUnused() {
    for (FilterModule& module : table)
        if (module.UseCount == 0) Unload(module);
}

// The modules go with the library, but for those that bitmaps use.
struct Unloading {
    ~Unloading() {
        if (platform::OthersMayWorkOn() || !tableLock.TryLock()) return;
        UnloadUnused();
        tableLock.Unlock();
    }
} unloading;

} // namespace

ReturnCode AcquireFilter(Filter filter) {
    FilterModule& module = ModuleOf(filter);
    const SpinGuard guard(tableLock);
    if (module.Handle == nullptr && !Load(module)) return module.Missing;
    ++module.UseCount;
    return code::Success;
}

void ReleaseFilter(Filter filter) {
    const SpinGuard guard(tableLock);
    --ModuleOf(filter).UseCount;
}

FilterEntries& EntriesOf(Filter filter) {
    return ModuleOf(filter).Entries;
}

void UnloadUnusedFilters() {
    const SpinGuard guard(tableLock);
    UnloadUnused();
}

} // namespace zkr::storage
