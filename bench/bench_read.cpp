// Reading xs files of growing size: total, single and double differential.
// The reader walks the image 3 to 5 times but converts numbers only once, so
// the time per data line should stay flat as files grow.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "vlkxs.h"
#include "xsfile.hpp"

namespace {

void read_file(benchmark::State &state, int dim, int energies, int points, int rows) {
    const auto [path, lines] = vlkbench::make_file(dim, 5, energies, points, rows);
    for (auto _ : state) {
        SVLKXS set;
        const SCMDSTATUS s = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
        if (s.code != 0) state.SkipWithError("read failed");
        benchmark::DoNotOptimize(set.pShell);
        VLKXSFree(&set, 0);
    }
    state.counters["lines"] = static_cast<double>(lines);
    state.counters["lines/s"] =
        benchmark::Counter(static_cast<double>(lines) * state.iterations(), benchmark::Counter::kIsRate);
    std::filesystem::remove(path);
}

void BM_ReadTotal(benchmark::State &s) { read_file(s, 0, static_cast<int>(s.range(0)), 0, 0); }
void BM_ReadSingle(benchmark::State &s) { read_file(s, 1, static_cast<int>(s.range(0)), 100, 0); }
void BM_ReadDouble(benchmark::State &s) { read_file(s, 2, static_cast<int>(s.range(0)), 20, 20); }

}  // namespace

BENCHMARK(BM_ReadTotal)->Arg(100)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadSingle)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadDouble)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
