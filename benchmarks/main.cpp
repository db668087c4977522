// Runs every work and its peers with Google Benchmark, interleaved, and prints one table of ratios. Options
// of Google Benchmark are taken as they are (--benchmark_filter=24 and the like).
#include "progress.h"
#include "work.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
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
class TableReporter : public benchmark::BenchmarkReporter {
  public:
    explicit TableReporter(std::unique_ptr<Progress> progress) : progress_(std::move(progress)) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const bool wall = run.run_name.time_type.find("real_time") != std::string::npos;
            const double time = wall ? run.real_accumulated_time : run.cpu_accumulated_time;
            times_[run.run_name.function_name].push_back(time / static_cast<double>(run.iterations));
        }
    }

    void Finalize() override {
        progress_.reset();
        const double copySecondsPerByte = Best(CopyName) / (2.0 * CopyBytes);
        std::printf("%-28s %9s %9s %7s   %-24s %9s %7s %7s\n", "work", "ms", "Mpixel/s", "memcpy", "peer",
                    "peer ms", "ratio", "reach");
        for (const auto& [number, entry] : Entries())
            PrintEntry(number, entry, copySecondsPerByte);
        std::printf(
            "\nms: the best of %d measurements. memcpy: how fast bytes are read and written, as a part of "
            "memcpy's speed.\nratio: the peer's time over ours, above 1 where we are faster; reach: what "
            "it has to be at least, else \"below\".\n",
            Repetitions);
    }

    int Missed() const { return missed_; }

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

    void PrintEntry(int number, const Entry& entry, double copySecondsPerByte) {
        const double ours = Best(NameOf(number, Ours));
        if (ours == 0) return;
        char copies[16] = "-"; // where memcpy was not measured
        if (copySecondsPerByte > 0)
            std::snprintf(copies, sizeof copies, "%.2f",
                          copySecondsPerByte * static_cast<double>(entry.Ours.Bytes) / ours);
        std::printf("%-28s %9.3f %9.0f %7s", Named(entry.Ours.Name, entry.Ours.Decibels).c_str(), ours * 1e3,
                    static_cast<double>(entry.Ours.Pixels) / ours / 1e6, copies);
        bool first = true;
        for (const Peer& peer : entry.Peers) {
            if (!peer.Run) {
                std::printf("%*s   %s\n", first ? 0 : 56, "", Named(peer.Name, peer.Decibels).c_str());
                first = false;
                continue;
            }
            const double time = Best(NameOf(number, peer.Name)) / peer.Share;
            if (time == 0) continue;
            const bool missed = time / ours < peer.RatioToReach;
            missed_ += missed;
            std::printf("%*s   %-24s %9.3f %7.2f %7.2f%s\n", first ? 0 : 56, "",
                        Named(peer.Name, peer.Decibels).c_str(), time * 1e3, time / ours, peer.RatioToReach,
                        missed ? "  below" : "");
            first = false;
        }
        if (first) std::printf("\n");
    }

    std::unique_ptr<Progress> progress_;
    std::map<std::string, std::vector<double>> times_;
    int missed_ = 0;
};

std::vector<std::string> names; // of all that is registered

benchmark::internal::Benchmark* Register(const std::string& name, const Body& body) {
    names.push_back(name);
    return benchmark::RegisterBenchmark(name.c_str(),
                                        [body, name](benchmark::State& state) {
                                            Progress::Begins(name);
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

int main(int argc, char** argv) {
    char minTime[] = "--benchmark_min_time=0.02";
    std::string repetitions = "--benchmark_repetitions=" + std::to_string(bench::Repetitions);
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments{argv[0], minTime, repetitions.data(), interleaving};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);

    bench::RegisterAll();
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    bench::TableReporter reporter(
        std::make_unique<bench::Progress>(bench::names, benchmark::GetBenchmarkFilter(), bench::Repetitions));
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
