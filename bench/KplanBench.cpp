// The main job as a planner runs it: "kplan stats" on drawings of 10,000 and 100,000
// parcels with a planning scope line, the program started as a process and measured from
// start to exit, with its peak memory. The drawings are made once, beside the benchmark.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/StatsDrawing.h"
#include "host/dxf/Dxf.h"

namespace {

namespace fs = std::filesystem;

// Made in a child process, so that this one stays small: a child forked later to run
// kplan would otherwise count this process's memory in its peak.
std::string drawingFile(int count) {
    fs::path path = fs::path(KPLAN_BENCH_OUT) / ("stats-" + std::to_string(count) + ".dxf");
    if (fs::exists(path)) return path.string();
    pid_t child = ::fork();
    if (child == 0) {
        bench::StatsDrawing d = bench::makeStatsDrawing(count, true);
        std::string error;
        bool saved = dxf::save(*d.document->database(), path.string(), error);
        if (!saved) std::fprintf(stderr, "%s\n", error.c_str());
        std::fflush(nullptr);
        ::_exit(saved ? 0 : 1);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0) {
        return {};
    }
    return path.string();
}

struct Run {
    int status = -1;
    double seconds = 0;
    long peakKiB = 0;
};

// Runs kplan with its output thrown away.
Run runKplan(const std::vector<std::string>& args) {
    std::vector<char*> argv;
    std::string exe = KPLAN_EXE;
    argv.push_back(exe.data());
    std::vector<std::string> copies = args;
    for (std::string& a : copies)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    auto start = std::chrono::steady_clock::now();
    pid_t child = ::fork();
    if (child == 0) {
        int null = ::open("/dev/null", O_WRONLY);
        ::dup2(null, STDOUT_FILENO);
        ::dup2(null, STDERR_FILENO);
        ::execv(exe.c_str(), argv.data());
        ::_exit(127);
    }
    Run run;
    struct rusage usage {};
    int status = 0;
    if (child > 0 && ::wait4(child, &status, 0, &usage) == child) {
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        run.peakKiB = usage.ru_maxrss;
    }
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return run;
}

void BM_KplanStats(benchmark::State& state) {
    std::string file = drawingFile(static_cast<int>(state.range(0)));
    if (file.empty()) {
        state.SkipWithError("the drawing could not be made");
        return;
    }
    double fileMiB = static_cast<double>(fs::file_size(file)) / (1 << 20);
    long peak = 0;
    for (auto _ : state) {
        Run run = runKplan({"stats", file, "--format", "json"});
        if (run.status != 0) {
            state.SkipWithError("kplan stats failed");
            return;
        }
        state.SetIterationTime(run.seconds);
        peak = std::max(peak, run.peakKiB);
    }
    state.counters["file_MiB"] = fileMiB;
    state.counters["peak_MiB"] = static_cast<double>(peak) / 1024;
    state.counters["peak_per_file"] = static_cast<double>(peak) / 1024 / fileMiB;
}
BENCHMARK(BM_KplanStats)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
