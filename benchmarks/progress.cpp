// Measurements come in random order, so that the share of those begun is a fair share of the time.
#include "progress.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <regex>
#include <unistd.h>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

struct State {
    std::map<std::string, int> Begun;
    int Repetitions = 1;
    size_t All = 0;
    size_t Done = 0;
    size_t Tenths = 0;
    Clock::time_point Start = Clock::now();
};
State state;

std::string TimeLeft() {
    const double seconds = std::chrono::duration<double>(Clock::now() - state.Start).count();
    const double done = static_cast<double>(state.Done), all = static_cast<double>(state.All);
    const int left = static_cast<int>(seconds * (all - done) / done + 0.5);
    return left >= 90 ? std::to_string((left + 30) / 60) + " min" : std::to_string(left) + " s";
}

} // namespace

Progress::Progress(const std::vector<std::string>& names, const std::string& filter, int repetitions) {
    const bool inverted = filter.starts_with('-');
    const std::regex wanted(filter.empty() || filter == "all" ? "." : filter.substr(inverted ? 1 : 0),
                            std::regex::extended);
    for (const std::string& name : names)
        if (std::regex_search(name, wanted) != inverted) state.Begun[name] = 0;
    state.Repetitions = repetitions;
    state.All = state.Begun.size() * static_cast<size_t>(repetitions);
    std::fprintf(stderr, "%zu measurements of %zu kinds\n", state.All, state.Begun.size());
}

Progress::~Progress() {
    if (isatty(STDERR_FILENO) != 0) std::fputs("\r\033[K", stderr);
}

void Progress::Begins(const std::string& name) {
    const auto found = state.Begun.find(name);
    if (found == state.Begun.end()) return;
    if (found->second++ < state.Repetitions) ++state.Done;
    const size_t percent = state.Done * 100 / state.All;
    if (isatty(STDERR_FILENO) != 0) {
        std::fprintf(stderr, "\r\033[K%3zu %%, about %s left: %s", percent, TimeLeft().c_str(), name.c_str());
    } else if (percent / 10 > state.Tenths) {
        state.Tenths = percent / 10;
        std::fprintf(stderr, "%zu %%, about %s left\n", percent, TimeLeft().c_str());
    }
}

} // namespace bench
