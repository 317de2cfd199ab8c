// Completion of sets read from synthetic files: the pass integrates every
// table once, adds it into the sum shell and normalises it, so the time per
// tabulated point should stay flat as sets grow.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "vlkxs.h"
#include "xsfile.hpp"

namespace {

void complete_file(benchmark::State &state, int dim, int energies, int points, int rows) {
    const auto [path, lines] = vlkbench::make_file(dim, 5, energies, points, rows);
    for (auto _ : state) {
        state.PauseTiming();
        SVLKXS set;
        if (VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET).code != 0) state.SkipWithError("read failed");
        state.ResumeTiming();
        if (VLKXSComplete(&set, 0).code != 0) state.SkipWithError("completion failed");
        state.PauseTiming();
        VLKXSFree(&set, 0);
        state.ResumeTiming();
    }
    state.counters["points"] = static_cast<double>(lines);
    state.counters["points/s"] =
        benchmark::Counter(static_cast<double>(lines) * state.iterations(), benchmark::Counter::kIsRate);
    std::filesystem::remove(path);
}

void BM_CompleteSingle(benchmark::State &s) { complete_file(s, 1, static_cast<int>(s.range(0)), 100, 0); }
void BM_CompleteDouble(benchmark::State &s) { complete_file(s, 2, static_cast<int>(s.range(0)), 20, 20); }

}  // namespace

BENCHMARK(BM_CompleteSingle)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompleteDouble)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
