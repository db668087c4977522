// The attack on rows for run-compressed bitmaps alone, their heap looked through after each step.
#include "core/run_heap.h"
#include "fuzz/input.h"

namespace zkr::test {
namespace {

TEST(RunModel, HoldsUnderRandomWork) {
    fuzz::AfterStep = [](BitmapHandle& bitmap) {
        if (HasFlag(bitmap, flag::Compressed)) ExpectConsistent(bitmap);
    };
    for (uint32_t seed = 0; seed < 400 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Bytes input = RandomBytes(2000, random);
        // Narrow, wide or wider than a run; of one bit; and made of runs. See the attack.
        const size_t choices = seed % 8 != 7 ? 1 : 2;
        input[0] = seed % 8 != 7 ? 0 : seed % 16 == 7 ? 240 : 250;
        for (size_t i = 2; i < 8; ++i)
            input[choices + i] = 0;
        input[choices + 8] = 6;
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    fuzz::AfterStep = nullptr;
}

} // namespace
} // namespace zkr::test
