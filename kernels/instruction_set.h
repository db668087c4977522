// The instruction sets that kernels are compiled for, and the choice among them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zkr::kernels {

enum class InstructionSet : uint8_t {
#define ZKR_INSTRUCTION_SET(name, text, usable) name,
#include "kernels/instruction_sets.inc"
#undef ZKR_INSTRUCTION_SET
    Count
};

inline constexpr size_t InstructionSets = static_cast<size_t>(InstructionSet::Count);

#ifdef ZKR_KERNEL_SET
// The one that this file is compiled for.
inline constexpr InstructionSet ThisSet = InstructionSet::ZKR_KERNEL_SET;
#endif

// The set that this process uses: the best one that the processor has, or the one that the environment variable
// ZKR_CPU names. Chosen at the first call.
InstructionSet ChosenSet();

// All sets that the processor can run, the plainest first.
std::span<const InstructionSet> UsableSets();

// As ZKR_CPU names it.
const char* NameOf(InstructionSet set);

} // namespace zkr::kernels
