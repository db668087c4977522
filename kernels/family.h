// Families of kernels. A family is a plain struct of function pointers, declared in a header beside the code of
// its room. One kernel file, which is compiled once for each instruction set, fills it:
//
//     template <> constinit const TurnKernels Compiled<TurnKernels, ThisSet>::Table = {Turn8, Turn24};
//
// All else in a kernel file, and in the headers that it includes, has internal linkage, so that no code of a larger
// set can stand in for that of a smaller one. Kernels take spans and give spans; they allocate nothing and cannot
// fail. The other files of the room ask for the family:
//
//     kernels::Chosen<kernels::TurnKernels>().Turn8(source, target, pixels);
#pragma once

#include "kernels/instruction_set.h"

#include <utility>

namespace zkr::kernels {

// The kernels of a family as they are compiled for one instruction set.
template <class Family, InstructionSet set> struct Compiled { static const Family Table; };

// Those of a set that is known only while the program runs; the processor must have it.
template <class Family> const Family& KernelsOf(InstructionSet set) {
    return [set]<size_t... each>(std::index_sequence<each...>)->const Family& {
        static constexpr const Family* Tables[] = {
            &Compiled<Family, static_cast<InstructionSet>(each)>::Table...};
        return *Tables[static_cast<size_t>(set)];
    }
    (std::make_index_sequence<InstructionSets>());
}

// Those that this process uses.
template <class Family> const Family& Chosen() {
    return KernelsOf<Family>(ChosenSet());
}

} // namespace zkr::kernels
