#pragma once
// What the benchmarks that run programs share: the drawings of the statistics benchmark
// saved once beside them, and a program run as a process, timed from start to exit with
// its peak memory.
#include <string>
#include <vector>

namespace bench {

// "stats-<count>.dxf" in KPLAN_BENCH_OUT, made on first use (in a child process, so that
// this one stays small: a child forked later to run a program would otherwise count this
// process's memory in its peak). "" when it cannot be made.
std::string statsDrawingFile(int count);

struct Run {
    int status = -1;
    double seconds = 0;
    long peakKiB = 0;
};

// Runs the program with its output thrown away.
Run runProgram(const std::string& exe, const std::vector<std::string>& args);

}  // namespace bench
