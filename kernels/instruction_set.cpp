// Asks the processor, and the environment, once for the process.
#include "kernels/instruction_set.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace zkr::kernels {

namespace {

struct UsableList {
    std::array<InstructionSet, InstructionSets> Sets;
    size_t Count = 0;
};

UsableList FindUsable() {
    UsableList list = {};
#define HAS(feature) static_cast<bool>(__builtin_cpu_supports(#feature))
#define ZKR_INSTRUCTION_SET(name, text, usable)                                                              \
    if (usable) list.Sets[list.Count++] = InstructionSet::name;
#include "kernels/instruction_sets.inc"
#undef ZKR_INSTRUCTION_SET
#undef HAS
    return list;
}

InstructionSet Choose() {
    const std::span<const InstructionSet> usable = UsableSets();
    if (const char* wanted = std::getenv("ZKR_CPU")) {
        for (const InstructionSet set : usable) {
            if (std::strcmp(NameOf(set), wanted) == 0) return set;
        }
    }
    return usable.back();
}

} // namespace

std::span<const InstructionSet> UsableSets() {
    static const UsableList list = FindUsable();
    return {list.Sets.data(), list.Count};
}

InstructionSet ChosenSet() {
    static const InstructionSet chosen = Choose();
    return chosen;
}

const char* NameOf(InstructionSet set) {
    static constexpr const char* Names[] = {
#define ZKR_INSTRUCTION_SET(name, text, usable) text,
#include "kernels/instruction_sets.inc"
#undef ZKR_INSTRUCTION_SET
    };
    return Names[static_cast<size_t>(set)];
}

} // namespace zkr::kernels
