// One row of a set operation: the end points of two rows, merged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zkr {

// An operation as a truth table: bit 2 * (in a) + (in b) says whether such a pixel is in the result. Bit 0 is never set.
enum class SetOperation : uint32_t { Intersect = 0b1000, Unite = 0b1110, Subtract = 0b0100, Xor = 0b0110 };

constexpr bool Keeps(SetOperation operation, bool inA, bool inB) {
    return (static_cast<uint32_t>(operation) >> (2 * inA + inB) & 1) != 0;
}

// Writes the end points of the result, and perhaps one entry behind them that means nothing; gives their number. In
// the middle of a row nothing is decided by a jump: edges come in an order that no processor guesses.
template <SetOperation operation>
size_t MergeRow(std::span<const int32_t> a, std::span<const int32_t> b, int32_t* out) {
    constexpr auto truth = static_cast<uint32_t>(operation);
    size_t i = 0, j = 0, count = 0; // an odd number of edges passed means inside
    while (i < a.size() && j < b.size()) {
        const int32_t edgeOfA = a[i], edgeOfB = b[j];
        const int32_t edge = edgeOfA < edgeOfB ? edgeOfA : edgeOfB;
        i += edgeOfA == edge;
        j += edgeOfB == edge;
        const size_t inside = truth >> ((i & 1) * 2 + (j & 1)) & 1;
        out[count] = edge;
        count += (inside ^ count) & 1;
    }
    if constexpr (Keeps(operation, true, false))
        for (; i < a.size(); ++i)
            out[count++] = a[i];
    if constexpr (Keeps(operation, false, true))
        for (; j < b.size(); ++j)
            out[count++] = b[j];
    return count;
}

} // namespace zkr
