// Reading xs files of growing size: total, single and double differential.
// The reader walks the image 3 to 5 times but converts numbers only once, so
// the time per data line should stay flat as files grow.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "vlkxs.h"

namespace {

// Writes a water/electron ionisation file of `dim` with `shells` shells,
// `energies` records a shell, `points` first-level and `rows` second-level
// points; returns its path and the number of data lines.
std::pair<std::string, long> make_file(int dim, int shells, int energies, int points, int rows) {
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("vlkxs-bench-" + std::to_string(dim) + "-" + std::to_string(energies) + ".xs"))
                                 .string();
    std::FILE *f = std::fopen(path.c_str(), "w");
    const char dims[] = "tsd";
    std::fprintf(f, "!filetype    xs i,%c\n!fileversion 20080825\n!target      H2O\n!projectile  e\n", dims[dim]);
    long lines = 0;
    for (int s = 1; s <= shells; ++s) {
        std::fprintf(f, "#\n!shell       %d\n\n", s);
        for (int j = 0; j < energies; ++j) {
            const double E = 0.01 * (j + 1);
            if (dim == 0) {
                std::fprintf(f, "%G %G\n", E, 1e-16 * (j + 1));
                ++lines;
                continue;
            }
            std::fprintf(f, "!eproj      %G\n", E);
            for (int k = 0; k < points; ++k) {
                const double W = 0.001 * (k + 1);
                if (dim == 1) {
                    std::fprintf(f, "%G %G %G\n", W, 1e-17 / (k + 1), double(k) / points);
                    ++lines;
                    continue;
                }
                std::fprintf(f, "!esec       %G\n", W);
                for (int m = 0; m < rows; ++m) {
                    std::fprintf(f, "%G %G %G\n", -1.0 + 2.0 * m / (rows - 1), 1e-18 * (m + 1), double(m) / rows);
                    ++lines;
                }
            }
        }
    }
    std::fclose(f);
    return {path, lines};
}

void read_file(benchmark::State &state, int dim, int energies, int points, int rows) {
    const auto [path, lines] = make_file(dim, 5, energies, points, rows);
    for (auto _ : state) {
        SVLKXS set;
        const SCMDSTATUS s = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
        if (s.code != 0) state.SkipWithError("read failed");
        benchmark::DoNotOptimize(set.pShell);
        VLKXSFree(&set, 0);
    }
    state.counters["lines"] = static_cast<double>(lines);
    state.counters["lines/s"] = benchmark::Counter(static_cast<double>(lines) * state.iterations(), benchmark::Counter::kIsRate);
    std::filesystem::remove(path);
}

void BM_ReadTotal(benchmark::State &s) { read_file(s, 0, static_cast<int>(s.range(0)), 0, 0); }
void BM_ReadSingle(benchmark::State &s) { read_file(s, 1, static_cast<int>(s.range(0)), 100, 0); }
void BM_ReadDouble(benchmark::State &s) { read_file(s, 2, static_cast<int>(s.range(0)), 20, 20); }

}  // namespace

BENCHMARK(BM_ReadTotal)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadSingle)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadDouble)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
