// Runs thousands of seeded operations and prints a line of digest for each family. The same seed must give
// the same lines on every platform, word size and instruction set; where it does not, the digests of single
// cases find the first one that differs.
//
//   parity [--seed S]                        a line for each family
//   parity --family F [--until N] [--seed S] a line for each of the first N cases of one family
//   parity --family F --only N               that case alone, with everything that went into its digest
//   parity --out FILE                        writes to FILE instead of standard output
//   parity --check FILE                      compares with what --out wrote elsewhere; names families that
//   differ
#include "parity/digest.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace zkr::test {
namespace {

struct Arguments {
    std::string family, out, check;
    int until = -1;
    int only = -1;
    uint64_t seed = 13;
};

bool Parse(int count, char** words, Arguments& arguments) {
    for (int i = 1; i < count; i += 2) {
        if (i + 1 == count) return false;
        const std::string name = words[i];
        const char* value = words[i + 1];
        if (name == "--family")
            arguments.family = value;
        else if (name == "--out")
            arguments.out = value;
        else if (name == "--check")
            arguments.check = value;
        else if (name == "--until")
            arguments.until = std::atoi(value);
        else if (name == "--only")
            arguments.only = std::atoi(value);
        else if (name == "--seed")
            arguments.seed = std::strtoull(value, nullptr, 10);
        else
            return false;
    }
    return true;
}

// Cases do not depend on one another, so that each can be run alone.
uint64_t CaseDigest(const Family& family, int number, uint64_t seed, FILE* trace) {
    Digest start;
    start.Add(family.name, std::strlen(family.name));
    start.Add(number);
    start.Add(static_cast<int64_t>(seed));
    Seeded seeded(start.Value());
    Digest digest(trace);
    family.run(seeded, digest);
    return digest.Value();
}

std::string Line(const char* name, int number, uint64_t digest) {
    char line[80];
    std::snprintf(line, sizeof line, "%s %d %08X%08X", name, number, static_cast<unsigned>(digest >> 32),
                  static_cast<unsigned>(digest));
    return line;
}

std::vector<std::string> LinesOf(const Family& family, const Arguments& arguments) {
    const bool single = arguments.family == family.name;
    const int end = single && arguments.until >= 0 ? arguments.until : family.cases;
    FILE* trace = arguments.only >= 0 ? stdout : nullptr;
    std::vector<std::string> lines;
    Digest total;
    for (int number = 0; number < end; ++number) {
        if (arguments.only >= 0 && number != arguments.only) continue;
        const uint64_t digest = CaseDigest(family, number, arguments.seed, trace);
        if (single) lines.push_back(Line(family.name, number, digest));
        total.Add(static_cast<int64_t>(digest));
    }
    if (!single) lines.push_back(Line(family.name, end, total.Value()));
    return lines;
}

std::vector<std::string> Run(const Arguments& arguments) {
    std::vector<std::string> lines;
    for (const auto& families : {CoreFamilies(), ColourFamilies()})
        for (const Family& family : families)
            if (arguments.family.empty() || arguments.family == family.name)
                for (const std::string& line : LinesOf(family, arguments))
                    lines.push_back(line);
    return lines;
}

constexpr int Equal = 0, Different = 1, Unusable = 2, NothingToCompareWith = 77;

int Check(const std::vector<std::string>& lines, const std::string& name) {
    std::ifstream file(name);
    if (!file) {
        std::printf("%s is not there: nothing to compare with\n", name.c_str());
        return NothingToCompareWith;
    }
    int result = Equal;
    for (const std::string& line : lines) {
        std::string other;
        std::getline(file, other);
        if (line == other) continue;
        std::printf("here: %s\nthere: %s\n", line.c_str(), other.c_str());
        result = Different;
    }
    if (result == Different)
        std::puts(
            "Run parity --family NAME on both sides: the first line that differs is the case for --only.");
    return result;
}

} // namespace
} // namespace zkr::test

int main(int count, char** words) {
    using namespace zkr::test;
    Arguments arguments;
    if (!Parse(count, words, arguments)) {
        std::fputs("parity: see the head of parity.cpp for its arguments\n", stderr);
        return Unusable;
    }
    const std::vector<std::string> lines = Run(arguments);
    if (lines.empty()) std::fputs("parity: no such family\n", stderr);
    if (!arguments.check.empty()) return Check(lines, arguments.check);
    // Binary, so that the lines end alike everywhere.
    FILE* file = arguments.out.empty() ? stdout : std::fopen(arguments.out.c_str(), "wb");
    if (file == nullptr) {
        std::perror(arguments.out.c_str());
        return Unusable;
    }
    for (const std::string& line : lines)
        std::fprintf(file, "%s\n", line.c_str());
    return std::fflush(file) == 0 && !lines.empty() ? Equal : Unusable;
}
