// Pairs of benchmarks (ours, the peer's) whose throughputs are compared in
// the summary table printed after the run.
#pragma once

#include <string>

namespace vkpbench {

// Registers a row: `row` names it; ours and peer are full benchmark names.
void AddRatio(const std::string& row, const std::string& ours, const std::string& peer);

// Runs every registered benchmark and prints the ratio table.
int RunAndSummarize(int argc, char** argv);

}  // namespace vkpbench
