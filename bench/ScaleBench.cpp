// How the main jobs grow with the plan: on the realistic drawing (StatsDrawing.h) of 10,000,
// 100,000 and, on request, 1,000,000 parcels (about 1 GB of DXF), each job as a planner
// runs it, in a process of its own, with its wall time and peak memory against the file's
// size and, beside them, the floor: reading the file and splitting it into tags.
//
//   scale_bench [--million] [--sizes 10000,100000]   (Google Benchmark flags too)
//
// KPLAN_BENCH_MILLION=1 does what --million does. The drawings are made once beside the
// benchmark ("realistic-<count>.dxf"); the million took 2 minutes and 4.3 GB to make the
// first time; each job of it needs 1.3 to 3 GB of memory.
//
// Goals, on this machine: "kplan stats" of 100,000 parcels within 5 x the floor, with the
// scope line and with --boundary none; of 1,000,000 under 10 s and under 2 x the file's
// size in memory; the load within 2.5 x the floor.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "bench/KplanProcess.h"
#include "host/dxf/Dxf.h"

namespace {

namespace fs = std::filesystem;

struct Task {
    const char* name;
    // The program's arguments after "kplan"; empty for the in-process tasks.
    std::vector<std::string> (*args)(const std::string& file, const std::string& out);
};

const Task kTasks[] = {
    {"floor", nullptr},
    {"load", nullptr},
    {"stats",
     [](const std::string& f, const std::string&) -> std::vector<std::string> {
         return {"stats", f, "--format", "json"};
     }},
    {"stats --boundary none",
     [](const std::string& f, const std::string&) -> std::vector<std::string> {
         return {"stats", f, "--boundary", "none", "--format", "json"};
     }},
    {"list",
     [](const std::string& f, const std::string&) -> std::vector<std::string> {
         return {"list", f, "--format", "csv"};
     }},
    {"symbolize",
     [](const std::string& f, const std::string& out) -> std::vector<std::string> {
         return {"symbolize", f, "-o", out};
     }},
    {"label",
     [](const std::string& f, const std::string& out) -> std::vector<std::string> {
         return {"label", f, "-o", out};
     }},
};

std::map<std::pair<int, std::string>, bench::Run> results;
std::map<int, double> fileMiB;

void measure(benchmark::State& state, int count, const Task& task) {
    std::string file = bench::statsDrawingFile(count);
    if (file.empty()) {
        state.SkipWithError("the drawing could not be made");
        return;
    }
    fileMiB[count] = static_cast<double>(fs::file_size(file)) / (1 << 20);
    std::string out = fs::path(file).replace_extension(".out.dxf").string();
    for (auto _ : state) {
        bench::Run run;
        if (std::strcmp(task.name, "floor") == 0) {
            run = bench::runInChild([&] { return bench::readAndSplit(file); });
        } else if (std::strcmp(task.name, "load") == 0) {
            run = bench::runInChild([&] {
                auto start = std::chrono::steady_clock::now();
                std::string error;
                auto database = dxf::load(file, error);
                if (!database) return -1.0;
                return std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
                    .count();
            });
        } else {
            run = bench::runProgram(KPLAN_EXE, task.args(file, out));
        }
        if (run.status != 0 || run.seconds < 0) {
            state.SkipWithError((std::string(task.name) + " failed").c_str());
            return;
        }
        state.SetIterationTime(run.seconds);
        state.counters["peak_MiB"] = static_cast<double>(run.peakKiB) / 1024;
        state.counters["peak_per_file"] = static_cast<double>(run.peakKiB) / 1024 / fileMiB[count];
        results[{count, task.name}] = run;
    }
    std::error_code ignored;
    fs::remove(out, ignored);
}

void report(const std::vector<int>& sizes) {
    std::printf("\n%-22s", "");
    for (int count : sizes)
        std::printf(" | %9d parcels: s, x floor, peak MiB, x file", count);
    std::printf("\n%-22s", "file MiB");
    for (int count : sizes)
        std::printf(" | %48.1f", fileMiB[count]);
    std::printf("\n");
    for (const Task& task : kTasks) {
        std::printf("%-22s", task.name);
        for (int count : sizes) {
            auto it = results.find({count, task.name});
            auto floor = results.find({count, "floor"});
            if (it == results.end() || floor == results.end()) {
                std::printf(" | %48s", "-");
                continue;
            }
            double peak = static_cast<double>(it->second.peakKiB) / 1024;
            std::printf(" | %16.3f %8.2f %10.1f %11.2f", it->second.seconds,
                        it->second.seconds / floor->second.seconds, peak, peak / fileMiB[count]);
        }
        std::printf("\n");
    }
    auto at = [&](int count, const char* name) {
        auto it = results.find({count, name});
        return it == results.end() ? bench::Run{} : it->second;
    };
    auto goal = [](const std::string& what, bool known, bool met, double value, const char* unit) {
        if (!known) return;
        std::printf("  %-52s %8.2f%s  %s\n", what.c_str(), value, unit, met ? "met" : "NOT MET");
    };
    std::printf("goals:\n");
    for (int count : sizes) {
        std::string n = std::to_string(count);
        bench::Run floor = at(count, "floor"), load = at(count, "load");
        bool haveFloor = floor.status == 0 && floor.seconds > 0;
        goal(n + ": load within 2.5 x the floor", haveFloor && load.status == 0,
             load.seconds <= 2.5 * floor.seconds, load.seconds / floor.seconds, " x");
        for (const char* stats : {"stats", "stats --boundary none"}) {
            bench::Run run = at(count, stats);
            if (count == 100000) {
                goal(n + ": " + stats + " within 5 x the floor", haveFloor && run.status == 0,
                     run.seconds <= 5 * floor.seconds, run.seconds / floor.seconds, " x");
            }
            if (count == 1000000) {
                double peakPerFile = static_cast<double>(run.peakKiB) / 1024 / fileMiB[count];
                goal(n + ": " + stats + " under 10 s", run.status == 0, run.seconds < 10,
                     run.seconds, " s");
                goal(n + ": " + stats + " under 2 x the file in memory", run.status == 0,
                     peakPerFile < 2, peakPerFile, " x");
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<int> sizes = {10000, 100000};
    const char* million = std::getenv("KPLAN_BENCH_MILLION");
    bool withMillion = million && std::strcmp(million, "1") == 0;
    std::vector<char*> rest;
    for (int i = 0; i < argc; ++i) {
        std::string a = argv[i];
        if (a == "--million") {
            withMillion = true;
        } else if (a == "--sizes" && i + 1 < argc) {
            sizes.clear();
            std::stringstream list(argv[++i]);
            for (std::string item; std::getline(list, item, ',');)
                sizes.push_back(std::atoi(item.c_str()));
        } else {
            rest.push_back(argv[i]);
        }
    }
    if (withMillion) sizes.push_back(1000000);
    for (int count : sizes) {
        for (const Task& task : kTasks) {
            std::string name = std::string("scale/") + task.name + "/" + std::to_string(count);
            benchmark::RegisterBenchmark(
                name.c_str(),
                [count, &task](benchmark::State& state) { measure(state, count, task); })
                ->Iterations(1)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
    int n = static_cast<int>(rest.size());
    benchmark::Initialize(&n, rest.data());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    report(sizes);
    return 0;
}
