#include "results.h"

#include <cstdio>
#include <iterator>
#include <utility>

namespace bench {

namespace {

// Where the works of a section begin; they end where the next begins.
constexpr std::pair<int, const char*> Sections[] = {
    {0, "Rows in and out"},
    {12, "Conversion"},
    {28, "Fills and copies"},
    {1000, "Odd depths"},
    {1900, "Dithering and palettes"},
    {2000, "Memory"},
    {2100, "Pages as runs"},
    {2300, "Colours"},
    {2500, "Turns, rotation and shear"},
    {2700, "Warp"},
    {2800, "Sizes"},
    {2880, "Combination"},
    {5100, "Painting"},
    {5500, "Exchange with the platform's bitmaps"},
    {5800, "Animation and Automation"},
    {7000, "Regions"},
    {9000, "Threads"},
};

const char* SectionOf(int number) {
    const auto* section = std::begin(Sections);
    while (std::next(section) != std::end(Sections) && std::next(section)->first <= number)
        ++section;
    return section->second;
}

void PrintResult(const Result& result) {
    char copies[16] = "-";
    if (result.CopyShare > 0) std::snprintf(copies, sizeof copies, "%.2f", result.CopyShare);
    std::printf("%-28s %9.3f %9.0f %7s", result.Name.c_str(), result.Seconds * 1e3,
                result.MegapixelsPerSecond, copies);
    int indent = 0;
    for (const PeerResult& peer : result.Peers) {
        std::printf("%*s   ", std::exchange(indent, 56), "");
        const double ratio = peer.Seconds / result.Seconds;
        if (peer.Seconds == 0)
            std::printf("%s\n", peer.Name.c_str());
        else
            std::printf("%-24s %9.3f %7.2f %7.2f%s\n", peer.Name.c_str(), peer.Seconds * 1e3, ratio,
                        peer.RatioToReach, ratio < peer.RatioToReach ? "  below" : "");
    }
    if (result.Peers.empty()) std::printf("\n");
}

} // namespace

void PrintTable(const std::vector<Result>& results, int repetitions) {
    std::printf("%-28s %9s %9s %7s   %-24s %9s %7s %7s\n", "work", "ms", "Mpixel/s", "memcpy", "peer",
                "peer ms", "ratio", "reach");
    for (const Result& result : results)
        PrintResult(result);
    std::printf(
        "\nms: the best of %d measurements. memcpy: how fast bytes are read and written, as a part of "
        "memcpy's speed.\nratio: the peer's time over ours, above 1 where we are faster; reach: what "
        "it has to be at least, else \"below\".\n",
        repetitions);
}

bool AppendRows(const std::vector<Result>& results, const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "a");
    if (file == nullptr) return false;
    std::fseek(file, 0, SEEK_END);
    if (std::ftell(file) == 0)
        std::fprintf(file, "section\twork\tms\tMpixel/s\tmemcpy\tpeer\tpeer ms\treach\n");
    for (const Result& result : results) {
        const PeerResult nobody{"", 0, 0};
        const PeerResult* const first = result.Peers.empty() ? &nobody : result.Peers.data();
        for (const PeerResult* peer = first; peer < first + (result.Peers.empty() ? 1 : result.Peers.size());
             ++peer)
            std::fprintf(file, "%s\t%s\t%.6f\t%.1f\t%.3f\t%s\t%.6f\t%.3f\n", SectionOf(result.Number),
                         result.Name.c_str(), result.Seconds * 1e3, result.MegapixelsPerSecond,
                         result.CopyShare, peer->Name.c_str(), peer->Seconds * 1e3, peer->RatioToReach);
    }
    const bool wrote = std::ferror(file) == 0;
    return std::fclose(file) == 0 && wrote;
}

} // namespace bench
