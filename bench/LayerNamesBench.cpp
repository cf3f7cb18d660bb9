// The boundary and hatch layers of 100,000 planned parcels from the shipped 2011 class
// table, in one drawing: the first parcel of each class asks the table and is remembered
// in the drawing's layer-name dictionary, the others find their class there (compound
// classes, remembered under a key without "/", ask the table every time). Goal: well
// under a second for the 200,000 lookups, so that naming layers is a small part of
// symbolizing a large plan.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

#include "draw/ParcelLayerNames.h"
#include "host/arx/acdocman.h"
#include "host/kova/KovaDataSet.h"
#include "standard/KovaAttribSet.h"

namespace {

constexpr int kParcels = 100000;

// Every class of the table in turn, with compound codes, blank land, an unknown code and
// a lower-case one mixed in.
std::vector<CString> parcelClasses() {
    CKovaAttribSet table;
    table.FReadCurFile();
    std::vector<CString> codes;
    for (const auto& entry : table.NameMap())
        codes.push_back(entry.first);
    for (const wchar_t* extra : {L"B1/R2", L"R21/B11", L"KB", L"X9", L"r2"})
        codes.emplace_back(extra);
    std::vector<CString> out;
    out.reserve(kParcels);
    for (int i = 0; i < kParcels; ++i)
        out.push_back(codes[static_cast<std::size_t>(i * 7919) % codes.size()]);
    return out;
}

void BM_BoundaryAndHatchLayers(benchmark::State& state) {
    std::vector<CString> classes = parcelClasses();
    std::size_t named = 0;
    for (auto _ : state) {
        state.PauseTiming();
        AcApDocument* document = acDocManager->appendDocument();
        state.ResumeTiming();
        CString boundary, hatch;
        for (const CString& code : classes) {
            named += static_cast<std::size_t>(FGetDKLayer(code, boundary, 1));
            named += static_cast<std::size_t>(FGetDKTCLayer(code, hatch, 1));
        }
        benchmark::DoNotOptimize(boundary.GetString());
        state.PauseTiming();
        acDocManager->closeDocument(document);
        state.ResumeTiming();
    }
    state.counters["lookups/s"] = benchmark::Counter(
        2.0 * kParcels * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    if (named != 2u * kParcels * static_cast<std::size_t>(state.iterations())) {
        state.SkipWithError("a class got no layer");
    }
}
BENCHMARK(BM_BoundaryAndHatchLayers)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    CKovaDataSet::FSetGStandardDirPath(CString::FromUtf8(KPLAN_SOURCE_DIR "/data/standards"));
    CKovaDataSet::FSetStandardName(L"通用国标");
    CKovaDataSet::FSetCurYDLB(L"2011国标城乡用地类别.txt");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
