#include "ratio_table.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <vector>

namespace vkpbench {
namespace {

struct Row {
    std::string row, ours, peer;
};

std::vector<Row>& Rows() {
    static std::vector<Row> rows;
    return rows;
}

// Console output as usual, and the throughput of every run kept by name
// (not of a run that reported an error, such as a count that differs).
class CollectingReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> rate;

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs) {
            auto it = r.counters.find("bytes_per_second");
            if (it == r.counters.end()) it = r.counters.find("items_per_second");
            if (it == r.counters.end() || r.run_type != Run::RT_Iteration || r.error_occurred) continue;
            std::string name = r.benchmark_name();
            name = name.substr(0, name.find("/min_time:"));
            rate[name] = it->second;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

void AddRatio(const std::string& row, const std::string& ours, const std::string& peer) {
    Rows().push_back({row, ours, peer});
}

int RunAndSummarize(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    CollectingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n%-76s %12s %12s %8s\n", "comparison (ours vs peer)", "ours M/s", "peer M/s", "ratio");
    for (const Row& r : Rows()) {
        auto a = reporter.rate.find(r.ours), b = reporter.rate.find(r.peer);
        if (a == reporter.rate.end() || b == reporter.rate.end()) continue;  // filtered out
        // Rates of calls (lines, blocks) can be below one million a second.
        auto digits = [](double v) { return v >= 100 ? 0 : v >= 1 ? 2 : 4; };
        const double ours = a->second / 1e6, peer = b->second / 1e6;
        std::printf("%-76s %12.*f %12.*f %8.*f\n", r.row.c_str(), digits(ours), ours, digits(peer), peer,
                    ours / peer >= 0.1 ? 2 : 3, ours / peer);
    }
    benchmark::Shutdown();
    return 0;
}

}  // namespace vkpbench

int main(int argc, char** argv) { return vkpbench::RunAndSummarize(argc, argv); }
