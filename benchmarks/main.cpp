// Runs every work and its peers with Google Benchmark, interleaved, and prints one table of ratios. Options
// of Google Benchmark are taken as they are (--benchmark_filter=24 and the like); --rows=FILE adds the results to a file.
#include "progress.h"
#include "results.h"
#include "work.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {

namespace {

struct Entry {
    Work Ours;
    std::vector<Peer> Peers;
};

std::map<int, Entry>& Entries() {
    static std::map<int, Entry> entries;
    return entries;
}

std::string NameOf(int number, const std::string& doer) {
    return Entries()[number].Ours.Name + " / " + doer;
}

constexpr const char* Ours = "ZKR13N";
constexpr const char* CopyName = "memcpy of 36 MB";
constexpr size_t CopyBytes = 36u << 20;
constexpr int Repetitions = 9;

// Collects the times of all repetitions; the best counts, since noise only adds. Processor time, so that
// other work on the machine weighs less.
class Collector : public benchmark::BenchmarkReporter {
  public:
    explicit Collector(std::unique_ptr<Progress> progress) : progress_(std::move(progress)) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const bool wall = run.run_name.time_type.find("real_time") != std::string::npos;
            const double time = wall ? run.real_accumulated_time : run.cpu_accumulated_time;
            times_[run.run_name.function_name].push_back(time / static_cast<double>(run.iterations));
        }
    }

    void Finalize() override { progress_.reset(); }

    std::vector<Result> Results() const {
        const double copySecondsPerByte = Best(CopyName) / (2.0 * CopyBytes);
        std::vector<Result> results;
        for (const auto& [number, entry] : Entries()) {
            const Work& work = entry.Ours;
            const double ours = Best(NameOf(number, Ours));
            if (ours == 0) continue;
            results.push_back({number,
                               Named(work.Name, work.Decibels),
                               ours,
                               static_cast<double>(work.Pixels) / ours / 1e6,
                               copySecondsPerByte * static_cast<double>(work.Bytes) / ours,
                               {}});
            for (const Peer& peer : entry.Peers) {
                const double time = peer.Run ? Best(NameOf(number, peer.Name)) / peer.Share : 0;
                if (peer.Run && time == 0) continue;
                results.back().Peers.push_back({Named(peer.Name, peer.Decibels), time, peer.RatioToReach});
            }
        }
        return results;
    }

  private:
    double Best(const std::string& name) const {
        const auto found = times_.find(name);
        return found == times_.end() ? 0 : *std::min_element(found->second.begin(), found->second.end());
    }

    // A name, and how good the result is where that is known.
    static std::string Named(const std::string& name, const Quality& decibels) {
        if (!decibels) return name;
        char text[16];
        std::snprintf(text, sizeof text, ", %.1f dB", decibels());
        return name + text;
    }

    std::unique_ptr<Progress> progress_;
    std::map<std::string, std::vector<double>> times_;
};

std::vector<std::string> names; // of all that is registered

benchmark::internal::Benchmark* Register(const std::string& name, const Body& body) {
    names.push_back(name);
    // What a body prepares when it runs for the first time is not measured, and does not make it count as too slow to run
    // more than once in each measurement.
    return benchmark::RegisterBenchmark(name.c_str(),
                                        [body, name, isPrepared = false](benchmark::State& state) mutable {
                                            Progress::Begins(name);
                                            if (!std::exchange(isPrepared, true)) body();
                                            for (auto _ : state)
                                                body();
                                        })
        ->MeasureProcessCPUTime();
}

void RegisterAll() {
    static std::vector<char> from(CopyBytes, 1);
    static std::vector<char> to(CopyBytes, 2);
    Register(CopyName, [] {
        std::memcpy(to.data(), from.data(), CopyBytes);
        Touch(to.data());
    });
    for (const auto& [number, entry] : Entries()) {
        benchmark::internal::Benchmark* work = Register(NameOf(number, Ours), entry.Ours.Run);
        if (entry.Ours.Elsewhere) work->UseRealTime();
        for (const Peer& peer : entry.Peers) {
            if (!peer.Run) continue;
            benchmark::internal::Benchmark* registered = Register(NameOf(number, peer.Name), peer.Run);
            if (peer.Elsewhere) registered->UseRealTime();
        }
    }
}

} // namespace

void AddWork(int number, Work work) {
    Entries()[number].Ours = std::move(work);
}
void AddPeer(int number, Peer peer) {
    Entries()[number].Peers.push_back(std::move(peer));
}
void Touch(const void* data) {
    benchmark::DoNotOptimize(data);
    benchmark::ClobberMemory();
}

} // namespace bench

namespace {

// Takes --rows=FILE out of the arguments, since Google Benchmark does not know it.
std::string TakeRowsFile(std::vector<char*>& arguments) {
    constexpr std::string_view option = "--rows=";
    std::string file;
    std::erase_if(arguments, [&](const char* argument) {
        const bool found = argument != nullptr && std::string_view(argument).starts_with(option);
        if (found) file = argument + option.size();
        return found;
    });
    return file;
}

} // namespace

int main(int argc, char** argv) {
    char minTime[] = "--benchmark_min_time=0.02";
    std::string repetitions = "--benchmark_repetitions=" + std::to_string(bench::Repetitions);
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments{argv[0], minTime, repetitions.data(), interleaving};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    const std::string rows = TakeRowsFile(arguments);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);

    bench::RegisterAll();
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    bench::Collector collector(
        std::make_unique<bench::Progress>(bench::names, benchmark::GetBenchmarkFilter(), bench::Repetitions));
    benchmark::RunSpecifiedBenchmarks(&collector);
    const std::vector<bench::Result> results = collector.Results();
    bench::PrintTable(results, bench::Repetitions);
    if (!rows.empty() && !bench::AppendRows(results, rows)) {
        std::fprintf(stderr, "error: cannot write %s\n", rows.c_str());
        return 1;
    }
    return 0;
}
