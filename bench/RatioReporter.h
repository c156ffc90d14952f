#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::bench {

// Prints the usual table and keeps each benchmark's time per iteration (with repetitions the mean
// aggregate, else the single run), so a benchmark can end with its ratios against a peer measured in the
// same run. CPU time by default: on a shared machine the wall clock also counts other processes' turns.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    enum class Clock { Cpu, Real };

    explicit RatioReporter(Clock clock = Clock::Cpu) : clock_(clock) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
                add(iterations_, run);
            }
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "mean") {
                add(means_, run);
            }
        }
    }

    double timePerCall(const std::string& name) const
    {
        for (const Table* table : {&means_, &iterations_}) {
            if (const auto found = table->find(name); found != table->end()) {
                return found->second.first / found->second.second;
            }
        }
        return 0.0;
    }

    void printHeading() const
    {
        std::printf("\nRatios of %s time per call (below 1: faster than the peer)\n",
                    clock_ == Clock::Cpu ? "CPU" : "wall");
    }

    // Nothing is printed when either benchmark was filtered out of the run.
    void printRatio(const char* name, const char* peer) const
    {
        const double base = timePerCall(peer);
        const double measured = timePerCall(name);
        if (base > 0.0 && measured > 0.0) {
            std::printf("%-40s / %-30s = %.2f\n", name, peer, measured / base);
        }
    }

private:
    using Table = std::map<std::string, std::pair<double, int>>;

    void add(Table& table, const Run& run) const
    {
        auto& [total, count] = table[run.run_name.str()];
        total += clock_ == Clock::Cpu ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
        ++count;
    }

    Clock clock_;
    Table iterations_;
    Table means_;
};

// A benchmark program's whole run: every benchmark asked for on the command line, then each name's ratio
// against its peer.
inline int runWithRatios(int argc, char** argv,
                         std::initializer_list<std::pair<const char*, const char*>> namesAndPeers,
                         RatioReporter::Clock clock = RatioReporter::Clock::Cpu)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter(clock);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printHeading();
    for (const auto& [name, peer] : namesAndPeers) {
        reporter.printRatio(name, peer);
    }
    benchmark::Shutdown();
    return 0;
}

} // namespace vantrel::bench
