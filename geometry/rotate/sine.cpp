// Sine and cosine of hundredths of a degree, times 16384, from a table of one quadrant that is worked out while
// compiling.
#include "zkr13n/rotate.h"

#include <array>

namespace zkr {

namespace {

constexpr int32_t Quarter = 9000;
constexpr int32_t Circle = 4 * Quarter;

// The power series, which for angles up to a right one ends far below the distance of any entry from a half.
constexpr double SineOf(int32_t hundredths) {
    constexpr double pi = 3.14159265358979323846;
    const double x = hundredths * (pi / (2 * Quarter));
    double term = x, sum = x;
    for (int n = 2; n <= 24; n += 2) {
        term *= -x * x / (n * (n + 1));
        sum += term;
    }
    return sum;
}

constexpr auto Table = [] {
    std::array<int32_t, Quarter + 1> table{};
    for (int32_t i = 0; i <= Quarter; ++i)
        table[static_cast<size_t>(i)] = static_cast<int32_t>(SineOf(i) * 16384 + 0.5);
    return table;
}();

constexpr int32_t At(int32_t index) {
    return Table[static_cast<size_t>(index)];
}

constexpr int32_t Folded(int32_t angle) {
    angle %= Circle;
    return angle < 0 ? angle + Circle : angle;
}

} // namespace

} // namespace zkr

using namespace zkr;

int32_t Z_CALL Z_SinValue(int32_t angle) {
    angle = Folded(angle);
    if (angle <= Quarter) return At(angle);
    if (angle <= 2 * Quarter) return At(2 * Quarter - angle);
    if (angle <= 3 * Quarter) return -At(angle - 2 * Quarter);
    return -At(Circle - angle);
}

int32_t Z_CALL Z_CosValue(int32_t angle) {
    angle = Folded(angle);
    if (angle <= Quarter) return At(Quarter - angle);
    if (angle <= 2 * Quarter) return -At(angle - Quarter);
    if (angle <= 3 * Quarter) return -At(3 * Quarter - angle);
    return At(angle - 3 * Quarter);
}
