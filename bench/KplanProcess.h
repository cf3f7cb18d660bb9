#pragma once
// What the benchmarks that run programs share: the drawings of the statistics benchmark
// saved once beside them, and a program run as a process, timed from start to exit with
// its peak memory.
#include <functional>
#include <string>
#include <vector>

namespace bench {

// "realistic-<count>.dxf" ("stats-<count>.dxf" for the plain drawing) in KPLAN_BENCH_OUT, made on
// first use (in a child process, so that this one stays small: a child forked later to run a
// program would otherwise count this process's memory in its peak). "" when it cannot be made.
std::string statsDrawingFile(int count);

struct Run {
    int status = -1;
    double seconds = 0;
    long peakKiB = 0;
};

// Runs the program with its output thrown away.
Run runProgram(const std::string& exe, const std::vector<std::string>& args);

// Runs task in a child process, so that its peak memory is its own: the task's own
// seconds (a negative number for a failure) and the child's peak.
Run runInChild(const std::function<double()>& task);

// The least any reader of the file does: read it, split off each line, parse the group
// codes. Seconds, -1 when the file cannot be read or holds no tag.
double readAndSplit(const std::string& path);

}  // namespace bench
