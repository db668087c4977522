// Runs the fuzz targets on thousands of inputs made from seeds and prints a line of digest for each: of all that the
// library has handed back, and that must be the same on every platform, word size and instruction set. Where it is not,
// the first input that differs is named. A target that finds something wrong by itself ends the program.
//
//   parity                    a line for each target
//   parity --out FILE         the same, and the digest of every input into FILE
//   parity --check FILE       compares with what --out wrote elsewhere
//   parity --same FILE OTHER  compares what --out wrote here with what it wrote elsewhere
//   parity --only TARGET N    that input alone, with everything that went into its digest
#include "fuzz/input.h"
#include "support/seeded.h"

#include <fstream>
#include <string>
#include <vector>

// In this program each target's entry has the target's name.
#define ZKR_TARGET(name) extern "C" int Attack_##name(const uint8_t* data, size_t size);
ZKR_TARGET(operations)
ZKR_TARGET(convert)
ZKR_TARGET(regions)
ZKR_TARGET(combine)
ZKR_TARGET(warp)
ZKR_TARGET(resize)
ZKR_TARGET(playback)
ZKR_TARGET(dib)
ZKR_TARGET(rows)
ZKR_TARGET(run_buffers)
ZKR_TARGET(filters)
ZKR_TARGET(arguments)
ZKR_TARGET(paint)
ZKR_TARGET(raster)

namespace zkr::test {
namespace {

constexpr int Equal = 0, Different = 1, Unusable = 2, NothingToCompareWith = 77;

// FNV-1a (Fowler, Noll and Vo, 1991).
struct Digest {
    uint64_t Value = 0xCBF29CE484222325u;
    void Add(const void* bytes, size_t count) {
        for (size_t i = 0; i < count; ++i)
            Value = (Value ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001B3u;
    }
};

Digest digest; // of the input at work
FILE* trace = nullptr;
int step = 0;

void Hear(const void* bytes, size_t count) {
    digest.Add(bytes, count);
    if (trace == nullptr) return;
    int64_t number = 0;
    if (count == sizeof number) std::memcpy(&number, bytes, count);
    std::fprintf(trace, "  %d: %u bytes, %d, %08X\n", step++, static_cast<unsigned>(count),
                 static_cast<int>(number), static_cast<unsigned>(digest.Value));
}

struct Family {
    const char* name;
    int cases;
    int (*run)(const uint8_t* data, size_t size);
    bool isCompared = true; // or what the platform decides is in it
};

constexpr Family Families[] = {
    {"operations", 9000, Attack_operations},
    {"convert", 6000, Attack_convert},
    {"regions", 2000, Attack_regions},
    {"combine", 4000, Attack_combine},
    {"warp", 3000, Attack_warp},
    {"resize", 2000, Attack_resize},
    {"playback", 300, Attack_playback},
    {"dib", 3000, Attack_dib},
    {"raster", 3000, Attack_raster},
    {"rows", 1500, Attack_rows, false},
    {"runs", 1500, Attack_run_buffers, false},
    {"filters", 1500, Attack_filters, false},
// Handles and pointers from nowhere are for systems that tell them from good ones without following them.
#ifndef _WIN32
    {"shapes", 600, Attack_regions, false},
    {"arguments", 1500, Attack_arguments, false},
    {"paint", 1500, Attack_paint, false},
    {"stray_raster", 1500, Attack_raster, false},
#endif
};

// Inputs do not depend on one another, so that each can be run alone.
uint64_t CaseDigest(const Family& family, int number) {
    Digest start;
    start.Add(family.name, std::strlen(family.name));
    Seeded seeded(start.Value + static_cast<uint64_t>(number));
    std::vector<uint8_t> input(static_cast<size_t>(seeded.Below(2000)));
    for (uint8_t& byte : input)
        byte = seeded.Byte();
    std::fprintf(stderr, "\r%s %d ", family.name, number);
    digest = {};
    Z_SetMemoryThresholds(0, INT32_MAX, 0, -100, 1, 31);
    fuzz::IsExactOnly = family.isCompared;
    family.run(input.data(), input.size());
    return digest.Value;
}

std::string Line(const char* name, int number, uint64_t value) {
    char line[80];
    std::snprintf(line, sizeof line, "%s %d %08X%08X", name, number, static_cast<unsigned>(value >> 32),
                  static_cast<unsigned>(value));
    return line;
}

// The first third of the cases, unless ZKR_LONG asks for all.
int CasesOf(const Family& family) {
    static const bool isLong = std::getenv("ZKR_LONG") != nullptr;
    return isLong ? family.cases : (family.cases + 2) / 3;
}

// The digest of every input; those of the families are printed.
std::vector<std::string> Run() {
    std::vector<std::string> lines;
    for (const Family& family : Families) {
        Digest total;
        for (int number = 0; number < CasesOf(family); ++number) {
            const uint64_t value = CaseDigest(family, number);
            if (!family.isCompared) continue;
            lines.push_back(Line(family.name, number, value));
            total.Add(lines.back().data(), lines.back().size());
        }
        if (family.isCompared) std::puts(Line(family.name, CasesOf(family), total.Value).c_str());
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
    trace = stdout;
    for (const Family& family : Families)
        if (std::strcmp(family.name, name) == 0)
            return std::puts(Line(name, number, CaseDigest(family, number)).c_str()), Equal;
    return Unusable;
}

} // namespace
} // namespace zkr::test

int main(int count, char** words) {
    using namespace zkr::test;
    fuzz::Listener = Hear;
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
