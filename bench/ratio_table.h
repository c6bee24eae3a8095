// Pairs of benchmarks (ours, the peer's) whose throughputs are compared in
// the summary table printed after the run.
#pragma once

#include <string>

namespace vkpbench {

// Registers a row: `row` names it; ours and peer are full benchmark names.
void AddRatio(const std::string& row, const std::string& ours, const std::string& peer);

// Runs every registered benchmark and prints the ratio table: rates in MB/s,
// or millions of calls (lines, blocks) a second for rows timed in calls.
int RunAndSummarize(int argc, char** argv);

}  // namespace vkpbench
