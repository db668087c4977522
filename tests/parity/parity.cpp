// Runs thousands of seeded operations and prints a line of digest for each family. They must be the same on
// every platform, word size and instruction set; where they are not, the first case that differs is named.
//
//   parity                    a line for each family
//   parity --out FILE         the same, and the digest of every case into FILE
//   parity --check FILE       compares with what --out wrote elsewhere
//   parity --same FILE OTHER  compares what --out wrote here with what it wrote elsewhere
//   parity --only FAMILY N    that case alone, with everything that went into its digest
#include "parity/digest.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace zkr::test {
namespace {

constexpr int Equal = 0, Different = 1, Unusable = 2, NothingToCompareWith = 77;

// Cases do not depend on one another, so that each can be run alone.
uint64_t CaseDigest(const Family& family, int number, FILE* trace = nullptr) {
    Digest start;
    start.Add(family.name, std::strlen(family.name));
    start.Add(number);
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

auto AllFamilies() {
    return std::array{CoreFamilies(),       PixelFamilies(), ColourFamilies(),  GrayFamilies(),
                      ResolutionFamilies(), TurnFamilies(),  ResizeFamilies(),  RegionFamilies(),
                      PlaybackFamilies(),   PaintFamilies(), CombineFamilies(), DibFamilies()};
}

// The first third of the cases, unless ZKR_LONG asks for all.
int CasesOf(const Family& family) {
    static const bool isLong = std::getenv("ZKR_LONG") != nullptr;
    return isLong ? family.cases : (family.cases + 2) / 3;
}

// The digest of every case; those of the families are printed.
std::vector<std::string> Run() {
    std::vector<std::string> lines;
    for (const auto& families : AllFamilies()) {
        for (const Family& family : families) {
            Digest total;
            for (int number = 0; number < CasesOf(family); ++number) {
                const uint64_t digest = CaseDigest(family, number);
                lines.push_back(Line(family.name, number, digest));
                total.Add(static_cast<int64_t>(digest));
            }
            std::puts(Line(family.name, CasesOf(family), total.Value()).c_str());
        }
    }
    return lines;
}

int Write(const std::vector<std::string>& lines, const char* name) {
    std::ofstream file(name, std::ios::binary); // so that the lines end alike everywhere
    for (const std::string& line : lines)
        file << line << '\n';
    return file.flush() ? Equal : Unusable;
}

int Check(const std::vector<std::string>& lines, const char* name) {
    std::ifstream file(name);
    if (!file) {
        std::printf("%s is not there: nothing to compare with\n", name);
        return NothingToCompareWith;
    }
    for (const std::string& line : lines) {
        std::string other;
        std::getline(file, other);
        if (line == other) continue;
        std::printf("here: %s\nthere: %s\nRun parity --only on both sides with this case.\n", line.c_str(),
                    other.c_str());
        return Different;
    }
    return Equal;
}

std::vector<std::string> Read(const char* name) {
    std::ifstream file(name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

int Trace(const char* name, int number) {
    for (const auto& families : AllFamilies())
        for (const Family& family : families)
            if (std::strcmp(family.name, name) == 0) {
                std::puts(Line(name, number, CaseDigest(family, number, stdout)).c_str());
                return Equal;
            }
    return Unusable;
}

} // namespace
} // namespace zkr::test

int main(int count, char** words) {
    using namespace zkr::test;
    const std::string option = count > 1 ? words[1] : "";
    if (count == 4 && option == "--only") return Trace(words[2], std::atoi(words[3]));
    if (count == 1) return Run(), Equal;
    if (count == 3 && option == "--out") return Write(Run(), words[2]);
    if (count == 3 && option == "--check") return Check(Run(), words[2]);
    if (count == 4 && option == "--same") {
        const std::vector<std::string> lines = Read(words[2]);
        return lines.empty() ? Unusable : Check(lines, words[3]);
    }
    std::fputs("parity: see the head of parity.cpp for its arguments\n", stderr);
    return Unusable;
}
