// Gathers the tables of the kernel families by instruction set and chooses once per process.
#include "colour/rows/kernel_set.h"

#include <cstdlib>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#define ZKR_FOR_EACH_SET(X) X(baseline) X(avx2)
#else
#define ZKR_FOR_EACH_SET(X) X(baseline)
#endif

namespace zkr::rows {

#define ZKR_DECLARE_TABLES(set)                                                                              \
    namespace set {                                                                                          \
    extern const ConvertKernels convertKernels;                                                              \
    extern const MatchKernels matchKernels;                                                                  \
    extern const CountKernels countKernels;                                                                  \
    extern const DitherKernels ditherKernels;                                                                \
    extern const SpaceKernels spaceKernels;                                                                  \
    }
ZKR_FOR_EACH_SET(ZKR_DECLARE_TABLES)
#undef ZKR_DECLARE_TABLES

namespace {

#define ZKR_LIST_TABLES(set)                                                                                 \
    {#set, set::convertKernels, set::matchKernels, set::countKernels, set::ditherKernels, set::spaceKernels},
constexpr RowKernels AllSets[] = {ZKR_FOR_EACH_SET(ZKR_LIST_TABLES)};
#undef ZKR_LIST_TABLES

size_t CountUsableSets() {
#if defined(__x86_64__) || defined(__i386__)
    const bool hasAvx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                         __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
    return hasAvx2 ? 2 : 1;
#else
    return 1;
#endif
}

const RowKernels& Choose() {
    const std::span<const RowKernels> usable = UsableKernelSets();
    if (const char* wanted = std::getenv("ZKR_CPU")) {
        for (const RowKernels& set : usable) {
            if (std::strcmp(set.Name, wanted) == 0) return set;
        }
    }
    return usable.back();
}

} // namespace

std::span<const RowKernels> UsableKernelSets() {
    return {AllSets, CountUsableSets()};
}

const RowKernels& Kernels() {
    static const RowKernels& chosen = Choose();
    return chosen;
}

} // namespace zkr::rows
