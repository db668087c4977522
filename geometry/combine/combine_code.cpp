// The operands stand for themselves as truth tables: what the operator makes of these is the table of the whole. An
// arithmetic operator has a boolean one for samples of a single bit. Where its table depends on one operand or none,
// so does the operator at every depth, and the table does its work.
#include "geometry/combine/combine_code.h"

#include "zkr13n/combine.h"

namespace zkr::geometry {

namespace {

constexpr uint32_t SourceField = 0x000F, TargetField = 0x00F0, OperatorField = 0x0F00, ResultField = 0xF000;

uint32_t SourceTable(uint32_t flags) {
    constexpr uint32_t tables[] = {0b1100, 0b0011, 0b0000, 0b1111};
    return tables[flags & SourceField];
}

uint32_t TargetTable(uint32_t flags) {
    constexpr uint32_t tables[] = {0b1010, 0b0101, 0b0000, 0b1111};
    return tables[(flags & TargetField) >> 4];
}

uint32_t Operated(uint32_t flags, uint32_t source, uint32_t target) {
    switch (flags & OperatorField) {
    case COMBINE_OP_XOR: return target ^ source;
    case COMBINE_OP_OR:
    case COMBINE_OP_ADD:
    case COMBINE_OP_AVG:
    case COMBINE_OP_MAX: return target | source;
    case COMBINE_OP_SUB_SRC: return target & ~source;
    case COMBINE_OP_SUB_DST: return ~target & source;
    case COMBINE_OP_DIV_SRC: return target;
    case COMBINE_OP_DIV_DST: return source;
    default: return target & source;
    }
}

uint32_t ResultOf(uint32_t flags, uint32_t table) {
    switch (flags & ResultField) {
    case COMBINE_RES_NOT: return ~table & 15;
    case COMBINE_RES_ZERO: return 0;
    case COMBINE_RES_ONES: return 15;
    default: return table & 15;
    }
}

} // namespace

bool AreCombineFlags(uint32_t flags) {
    return flags <= 0xFFFF && (flags & SourceField) <= COMBINE_SRC_ONES &&
           (flags & TargetField) <= COMBINE_DST_ONES && (flags & OperatorField) <= COMBINE_OP_MAX &&
           (flags & ResultField) <= COMBINE_RES_ONES;
}

uint32_t CompileCombineFlags(uint32_t flags, bool isBitonal) {
    using namespace combine_code;
    const uint32_t operation = flags & OperatorField;
    const bool divides = operation == COMBINE_OP_DIV_SRC || operation == COMBINE_OP_DIV_DST;
    const uint32_t table = ResultOf(flags, Operated(flags, SourceTable(flags), TargetTable(flags)));

    uint32_t code = isBitonal || operation <= COMBINE_OP_XOR ? IsBoolean : 0;
    switch (table) {
    case 0:
    case 15: code |= IsBoolean; break;
    case 3:
    case 12:
        code |= ReadsSource;
        if (!isBitonal) code |= divides ? ReadsTarget : IsBoolean;
        break;
    case 5:
    case 10:
        code |= ReadsTarget;
        if (!isBitonal) code |= divides ? ReadsSource : IsBoolean;
        break;
    default: code |= ReadsSource | ReadsTarget;
    }
    if ((code & IsBoolean) != 0) return code | table;

    code |= FirstArithmetic + ((operation - COMBINE_OP_ADD) >> 8);
    if ((flags & SourceField) == COMBINE_SRC_NOT) code |= InvertsSource;
    if ((flags & TargetField) == COMBINE_DST_NOT) code |= InvertsTarget;
    if ((flags & ResultField) == COMBINE_RES_NOT) code |= InvertsResult;
    return code;
}

} // namespace zkr::geometry
