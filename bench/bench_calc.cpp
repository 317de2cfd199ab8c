// Model calculators: a whole calculated and completed set per iteration.
// The headline case is BEB dim 1 for water over 100 primary energies with
// 200 secondary energies each; the others show what the open grids and the
// quadratures of the totals cost.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "vlkxs.h"

namespace {

using Calculator = SCMDSTATUS (*)(SVLKXS *, const SVLKXSCALC *, int32_t);

void calculate(benchmark::State &state, Calculator calc, const char *projectile, int32_t IA, int32_t dim,
               int32_t method, std::vector<double> E, std::vector<double> W) {
    SVLKXSCALC rq{};
    rq.method = method;
    rq.pE = E.data();
    rq.nE = static_cast<int32_t>(E.size());
    if (!W.empty()) {
        rq.pW = W.data();
        rq.nW = static_cast<int32_t>(W.size());
    }
    long points = 0;
    for (auto _ : state) {
        SVLKXS set;
        VLKXSInit(&set, 0);
        VLKProjFromStr(&set.proj, projectile, 0);
        VLKTargImportMaterial(&set.targ, "H2O", 0);
        set.IA = IA;
        set.dim = dim;
        if (calc(&set, &rq, 0).code != 0) state.SkipWithError("calculation failed");
        points = 0;
        for (int32_t i = 0; i < set.nShell; ++i)
            for (int32_t j = 0; j < set.pShell[i].nE; ++j) points += std::max(set.pShell[i].pE[j].n1, 1);
        VLKXSFree(&set, 0);
    }
    state.counters["points"] = static_cast<double>(points);
}

// n energies from lo to hi, logarithmically.
std::vector<double> grid(double lo, double hi, int n) {
    std::vector<double> v(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) v[static_cast<std::size_t>(i)] = lo * std::pow(hi / lo, i / (n - 1.0));
    return v;
}

void BM_BEB_Tables_100x200(benchmark::State &s) {
    // 200 secondary energies from 0 to 5 MeV: each orbital's table is zero
    // beyond its own end.
    std::vector<double> W = grid(1e-4, 5000.0, 199);
    W.insert(W.begin(), 0.0);
    calculate(s, VLKXSCalcEI, "e", 2, 1, 7, grid(0.01, 10000.0, 100), W);
}
void BM_BEB_Tables_OpenGrid(benchmark::State &s) { calculate(s, VLKXSCalcEI, "e", 2, 1, 7, grid(0.01, 10000.0, 100), {}); }
void BM_BEB_Totals(benchmark::State &s) { calculate(s, VLKXSCalcEI, "e", 2, 0, 7, grid(0.01, 10000.0, 100), {}); }
void BM_Rudd_Totals(benchmark::State &s) { calculate(s, VLKXSCalcII, "p", 2, 0, 2, grid(0.001, 10.0, 100), {}); }
void BM_Rudd_Tables(benchmark::State &s) { calculate(s, VLKXSCalcII, "p", 2, 1, 2, grid(0.001, 10.0, 100), {}); }
void BM_Elastic_Tables(benchmark::State &s) { calculate(s, VLKXSCalcEL, "e", 1, 1, 9, grid(0.01, 10000.0, 100), {}); }

}  // namespace

BENCHMARK(BM_BEB_Tables_100x200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BEB_Tables_OpenGrid)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BEB_Totals)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Rudd_Totals)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Rudd_Tables)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Elastic_Tables)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
