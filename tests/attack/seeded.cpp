// Runs a fuzz target on inputs made from seeds, so that every set of tests attacks the library a little. A
// failing seed can be run alone: attack_NAME SEED.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void RunSeed(uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(random() % 2000);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(random() >> 8);
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace

int main(int argumentCount, char** arguments) {
    constexpr uint32_t seeds = 500;
    const bool one = argumentCount > 1;
    const uint32_t first = one ? static_cast<uint32_t>(std::strtoul(arguments[1], nullptr, 10)) : 0;
    for (uint32_t seed = first; seed < (one ? first + 1 : seeds); ++seed) {
        std::fprintf(stderr, "\rseed %u ", seed);
        RunSeed(seed);
    }
    std::fputs("passed\n", stderr);
    return 0;
}
