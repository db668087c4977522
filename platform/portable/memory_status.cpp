// The figures of the system's memory, from the kernel's own table; nothing is allocated.
#include "platform/portable/memory.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/sysinfo.h>
#include <unistd.h>

namespace zkr::platform {

namespace {

struct Figures { // bytes
    uint64_t totalPhysical;
    uint64_t freePhysical;
    uint64_t totalSwap;
    uint64_t freeSwap;
};

// The value of a line "Name:    123 kB"; false where there is none.
bool ReadLine(const char* text, const char* name, uint64_t& bytes) {
    const char* at = std::strstr(text, name);
    if (at == nullptr) return false;
    at += std::strlen(name);
    while (*at == ' ')
        ++at;
    uint64_t kilobytes = 0;
    for (; *at >= '0' && *at <= '9'; ++at)
        kilobytes = kilobytes * 10 + static_cast<uint64_t>(*at - '0');
    bytes = kilobytes * 1024;
    return true;
}

bool ReadTable(Figures& figures) {
    const int file = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    char text[4096];
    const ssize_t length = read(file, text, sizeof text - 1);
    close(file);
    if (length <= 0) return false;
    text[length] = '\0';
    return ReadLine(text, "MemTotal:", figures.totalPhysical) &&
           ReadLine(text, "MemAvailable:", figures.freePhysical) &&
           ReadLine(text, "SwapTotal:", figures.totalSwap) && ReadLine(text, "SwapFree:", figures.freeSwap);
}

// Where the table is not to be had: the same without the share of the caches that could be freed.
bool AskKernel(Figures& figures) {
    struct sysinfo info;
    if (sysinfo(&info) != 0) return false;
    const uint64_t unit = info.mem_unit;
    figures = {info.totalram * unit, (info.freeram + info.bufferram) * unit, info.totalswap * unit,
               info.freeswap * unit};
    return true;
}

} // namespace

BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) {
    Figures figures{};
    if (status->dwLength != sizeof *status) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!ReadTable(figures) && !AskKernel(figures)) return FALSE;
    const uint64_t used = figures.totalPhysical - std::min(figures.freePhysical, figures.totalPhysical);
    const uint64_t addressSpace = uint64_t{1} << 47;
    *status = {sizeof *status,
               static_cast<DWORD>(figures.totalPhysical == 0 ? 0 : used * 100 / figures.totalPhysical),
               figures.totalPhysical,
               figures.freePhysical,
               figures.totalSwap,
               figures.freeSwap,
               addressSpace,
               addressSpace,
               0};
    return TRUE;
}

} // namespace zkr::platform
