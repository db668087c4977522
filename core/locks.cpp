// The capability table. A locked capability makes the functions that need it fail; the library starts with
// none locked. The table is one byte a capability, so that a reader in another thread sees a whole answer.
#include "zkr13n/locks.h"

#include "core/return_codes.h"
#include "core/thread_settings.h"

#include <atomic>
#include <cstdint>

namespace {

constexpr uint32_t Capabilities = 32;

constinit uint8_t table[Capabilities] = {}; // 1 where the capability is locked

std::atomic_ref<uint8_t> Lock(uint32_t capability) {
    return std::atomic_ref(table[capability]);
}

} // namespace

void Z_CALL Z_SetSupportLocks(uint32_t mask) {
    for (uint32_t capability = 0; capability < Capabilities; ++capability)
        Lock(capability).store(mask >> capability & 1);
}

const uint8_t* Z_CALL Z_GetSupportLocks(void) {
    return table;
}

int32_t Z_CALL Z_IsSupportLocked(uint32_t capability) {
    return capability >= Capabilities || Lock(capability).load() != 0;
}

ReturnCode Z_CALL Z_UnlockSupport(uint32_t capability, const char* key) {
    if (capability >= Capabilities || key == nullptr || *key == '\0') return zkr::code::InvalidArgument;
    Lock(capability).store(0);
    return zkr::code::Success;
}

ReturnCode Z_CALL Z_IntShutdown(void) {
    zkr::ShutDown();
    return zkr::code::Success;
}
