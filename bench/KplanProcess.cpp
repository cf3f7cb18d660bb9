#include "bench/KplanProcess.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>

#include "bench/StatsDrawing.h"
#include "host/dxf/Dxf.h"

namespace bench {

namespace fs = std::filesystem;

std::string statsDrawingFile(int count) {
    fs::path path = fs::path(KPLAN_BENCH_OUT) / ("stats-" + std::to_string(count) + ".dxf");
    if (fs::exists(path)) return path.string();
    pid_t child = ::fork();
    if (child == 0) {
        StatsDrawing d = makeStatsDrawing(count, true);
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

Run runProgram(const std::string& exe, const std::vector<std::string>& args) {
    std::vector<char*> argv;
    std::string program = exe;
    argv.push_back(program.data());
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
        ::execv(program.c_str(), argv.data());
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

}  // namespace bench
