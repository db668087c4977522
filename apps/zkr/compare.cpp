// Both walks take one row of each bitmap at a time, so that any storage class will do.
#include "compare.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

namespace zkr::app {

namespace {

// Calls visit(row of one, row of other) until it returns false.
template <class Visit> bool EachRow(Bitmap& one, Bitmap& other, Visit&& visit) {
    std::vector<uint8_t> oneRow(one.RowBytes());
    std::vector<uint8_t> otherRow(other.RowBytes());
    for (int y = 0; y < one.Height(); ++y) {
        one.GetRow(y, oneRow.data());
        other.GetRow(y, otherRow.data());
        if (!visit(oneRow.data(), otherRow.data())) return false;
    }
    return true;
}

} // namespace

bool SameRows(Bitmap& one, Bitmap& other) {
    const size_t rowBits = static_cast<size_t>(one.Width()) * static_cast<size_t>(one.Format().StoredBits());
    const size_t wholeBytes = rowBits / 8;
    const int lastMask = 0xFF00 >> (rowBits % 8) & 0xFF;
    return EachRow(one, other, [&](const uint8_t* a, const uint8_t* b) {
        if (std::memcmp(a, b, wholeBytes) != 0) return false;
        return lastMask == 0 || ((a[wholeBytes] ^ b[wholeBytes]) & lastMask) == 0;
    });
}

double Psnr(Bitmap& one, Bitmap& other) {
    const size_t samples = static_cast<size_t>(one.Width()) * 3;
    uint64_t squares = 0;
    EachRow(one, other, [&](const uint8_t* a, const uint8_t* b) {
        for (size_t i = 0; i < samples; ++i) {
            const int difference = a[i] - b[i];
            squares += static_cast<uint64_t>(difference * difference);
        }
        return true;
    });
    if (squares == 0) return INFINITY;
    const double mean = static_cast<double>(squares) / static_cast<double>(samples) / one.Height();
    return 10 * std::log10(255.0 * 255.0 / mean);
}

std::string Closeness(double decibels) {
    if (std::isinf(decibels)) return "equal";
    char text[32];
    std::snprintf(text, sizeof text, "%.1f dB", decibels);
    return text;
}

} // namespace zkr::app
