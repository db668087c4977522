// What the flags of a combination come to: a word that names a truth table of bits or an operator on samples, what
// is inverted around it, and which of the two operands are read at all.
#pragma once

#include <cstdint>

namespace zkr::geometry {

namespace combine_code {

// The low byte: a truth table, whose bit 2 * source + destination is the result, or an arithmetic operator.
inline constexpr uint32_t Operation = 0x00FF;
inline constexpr uint32_t Keep = 10;
inline constexpr uint32_t Copy = 12;
inline constexpr uint32_t FirstArithmetic = 16; // in the order of the flags from COMBINE_OP_ADD on

inline constexpr uint32_t InvertsSource = 0x0100; // these three with an arithmetic operator alone
inline constexpr uint32_t InvertsTarget = 0x0200;
inline constexpr uint32_t InvertsResult = 0x0400;
inline constexpr uint32_t ReadsSource = 0x1000;
inline constexpr uint32_t ReadsTarget = 0x2000;
inline constexpr uint32_t IsBoolean = 0x4000;

} // namespace combine_code

bool AreCombineFlags(uint32_t flags);

// Of flags that are ones, for a destination of one bit a pixel or of more.
uint32_t CompileCombineFlags(uint32_t flags, bool isBitonal);

} // namespace zkr::geometry
