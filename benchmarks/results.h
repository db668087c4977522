// What was measured: a result for each work, with its peers', as a table for people who read and as rows for programs.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct PeerResult {
    std::string Name;
    double Seconds; // 0 where only the quality counts
    double RatioToReach;
};

struct Result {
    int Number;       // of the work: results are shown in this order
    std::string Name; // with the quality in decibels, where it is known
    double Seconds;
    double MegapixelsPerSecond;
    double
        CopyShare; // how fast bytes are read and written, as a part of memcpy's speed; 0 where that was not measured
    std::vector<PeerResult> Peers;
};

void PrintTable(const std::vector<Result>& results, int repetitions);

// Adds a line for each pair of a work and a peer to a file, separated by tabs, under a line of headings where the file is
// new: section, work, ms, Mpixel/s, memcpy, peer, peer ms, reach. False where it cannot be written.
bool AppendRows(const std::vector<Result>& results, const std::string& path);

} // namespace bench
