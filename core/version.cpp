// The version record. Its texts are part of the interface and do not follow the build.
#include "core/return_codes.h"
#include "zkr13n/frame.h"
#include "zkr13n/locks.h"

#include <cstddef>

namespace {

static_assert(sizeof(VersionRecord) == 104);
static_assert(offsetof(VersionRecord, ProductLevel) == 60);
static_assert(offsetof(VersionRecord, VersionMajor) == 64);
static_assert(offsetof(VersionRecord, VersionMinor) == 68);
static_assert(offsetof(VersionRecord, Date) == 72);
static_assert(offsetof(VersionRecord, Time) == 88);

constexpr VersionRecord Version = {"ZIRCONKIT(r) DLL for Win32", 0, 13, 0, "Dec 30 2002", "16:54:50"};

bool IsUnlocked(uint32_t capability) {
    return Z_IsSupportLocked(capability) == 0;
}

int32_t ProductLevel() {
    if (IsUnlocked(Z_SUPPORT_MEDICAL) || IsUnlocked(Z_SUPPORT_MEDICAL_NET)) return Z_PRODUCT_MEDICAL;
    return IsUnlocked(Z_SUPPORT_DOCUMENT) ? Z_PRODUCT_DOCUMENT : Z_PRODUCT_STANDARD;
}

} // namespace

ReturnCode Z_CALL Z_VersionInfo(VersionRecord* record) {
    if (record == nullptr) return zkr::code::InvalidArgument;
    *record = Version;
    record->ProductLevel = ProductLevel();
    return zkr::code::Success;
}
