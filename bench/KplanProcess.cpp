#include "bench/KplanProcess.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <vector>

#include "bench/StatsDrawing.h"
#include "host/dxf/Dxf.h"

namespace bench {

namespace fs = std::filesystem;

std::string statsDrawingFile(int count) {
    // The plain drawing keeps the name it always had.
    Shape shape = defaultShape();
    std::string stem = shape == Shape::Plain ? "stats-" : "realistic-";
    fs::path path = fs::path(KPLAN_BENCH_OUT) / (stem + std::to_string(count) + ".dxf");
    if (fs::exists(path)) return path.string();
    pid_t child = ::fork();
    if (child == 0) {
        StatsDrawing d = makeStatsDrawing(count, true, shape);
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
        // The shipped standards, wherever the build put the program.
        ::setenv("KPLAN_DATA", KPLAN_SOURCE_DIR "/data/standards", 0);
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

namespace bench {

Run runInChild(const std::function<double()>& task) {
    Run run;
    int fds[2];
    if (::pipe(fds) != 0) return run;
    pid_t pid = ::fork();
    if (pid == 0) {
        ::close(fds[0]);
        double seconds = task();
        if (::write(fds[1], &seconds, sizeof seconds) != sizeof seconds) ::_exit(2);
        ::_exit(seconds < 0 ? 1 : 0);
    }
    ::close(fds[1]);
    double seconds = -1;
    if (pid < 0 || ::read(fds[0], &seconds, sizeof seconds) != sizeof seconds) seconds = -1;
    ::close(fds[0]);
    struct rusage usage {};
    int status = 0;
    if (pid > 0 && ::wait4(pid, &status, 0, &usage) == pid) {
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        run.peakKiB = usage.ru_maxrss;
    }
    run.seconds = seconds;
    return run;
}

double readAndSplit(const std::string& path) {
    auto start = std::chrono::steady_clock::now();
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return -1;
    std::vector<char> buffer(1 << 20);
    std::string carry;
    long tags = 0, codeSum = 0;
    bool code = true;
    std::size_t got;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), f)) > 0) {
        const char* p = buffer.data();
        const char* end = p + got;
        while (p < end) {
            const char* nl = static_cast<const char*>(std::memchr(p, '\n', end - p));
            if (!nl) {
                carry.append(p, end);
                break;
            }
            std::string_view line(p, nl - p);
            if (!carry.empty()) {
                carry.append(p, nl);
                line = carry;
            }
            if (code) {
                codeSum += std::atoi(std::string(line).c_str());
            } else {
                ++tags;
            }
            code = !code;
            carry.clear();
            p = nl + 1;
        }
    }
    std::fclose(f);
    benchmark::DoNotOptimize(codeSum);
    return tags > 0
               ? std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()
               : -1;
}

}  // namespace bench
