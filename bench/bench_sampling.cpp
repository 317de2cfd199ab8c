// Sampling from a completed set: a BEB dim 1 water set of 100 primary
// energies with 200 secondary energies each, sampled at random energies.
// Each call is a binary search over the energies and one over each of the
// two tables around it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "vlkxs.h"

namespace {

struct Set {
    Set() {
        std::vector<double> E(100), W(200);
        for (int i = 0; i < 100; ++i) E[i] = 0.01 * std::pow(1e6, i / 99.0);
        for (int k = 1; k < 200; ++k) W[k] = 1e-4 * std::pow(5e7, (k - 1) / 198.0);
        SVLKXSCALC rq{};
        rq.method = 7;
        rq.pE = E.data();
        rq.nE = 100;
        rq.pW = W.data();
        rq.nW = 200;
        VLKXSInit(&set, 0);
        VLKProjFromStr(&set.proj, "e", 0);
        VLKTargImportMaterial(&set.targ, "H2O", 0);
        set.IA = 2;
        set.dim = 1;
        VLKXSCalcEI(&set, &rq, 0);
    }
    ~Set() { VLKXSFree(&set, 0); }
    SVLKXS set;
};

// Random energies (between the second and the last record, where every
// shell is open) and random numbers, drawn before the timing.
struct Draws {
    std::vector<double> E, u;
    Draws() : E(4096), u(4096) {
        std::mt19937_64 rng(3);
        std::uniform_real_distribution<double> lnE(std::log(0.02), std::log(10000.0)), uni(0.0, 1.0);
        for (std::size_t i = 0; i < E.size(); ++i) {
            E[i] = std::exp(lnE(rng));
            u[i] = uni(rng);
        }
    }
};

template <class Call>
void sample(benchmark::State &state, Call &&call) {
    static Set s;
    static Draws d;
    std::size_t i = 0;
    double sink = 0.0;
    for (auto _ : state) {
        sink += call(s.set, d.E[i & 4095], d.u[i & 4095]);
        ++i;
    }
    benchmark::DoNotOptimize(sink);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

void BM_SampleW(benchmark::State &st) {
    sample(st, [](const SVLKXS &s, double E, double u) {
        double W = 0;
        VLKXSSampleW(&s, 0, E, u, &W, 0);
        return W;
    });
}
void BM_SampleShell(benchmark::State &st) {
    sample(st, [](const SVLKXS &s, double E, double u) {
        int32_t ish = 0;
        VLKXSSampleShell(&s, E, u, &ish, 0);
        return static_cast<double>(ish);
    });
}
void BM_Sigma(benchmark::State &st) {
    sample(st, [](const SVLKXS &s, double E, double) {
        double sigma = 0;
        VLKXSSigma(&s, 5, E, &sigma, 0);
        return sigma;
    });
}

// The floor: the same searches, logarithms and interpolation over copies of
// the tables in plain arrays, energies contiguous, with no frame and no
// checks.  What SampleW costs beyond this is the price of the set's layout
// (records a few hundred bytes apart) and of the status record.
void BM_BareSearches(benchmark::State &state) {
    static Set s;
    static Draws d;
    const SVLKXSSH &sh = s.set.pShell[0];
    const std::size_t n = static_cast<std::size_t>(sh.nE), m = static_cast<std::size_t>(sh.pE[0].n1);
    std::vector<double> E(n), x(n * m), cum(n * m);
    for (std::size_t j = 0; j < n; ++j) {
        E[j] = sh.pE[j].E;
        std::copy(sh.pE[j].dv1, sh.pE[j].dv1 + m, x.begin() + static_cast<std::ptrdiff_t>(j * m));
        std::copy(sh.pE[j].dvCum1, sh.pE[j].dvCum1 + m, cum.begin() + static_cast<std::ptrdiff_t>(j * m));
    }
    const auto quantile = [&](std::size_t j, double u) {
        const double *c = &cum[j * m], *g = &x[j * m];
        const std::size_t k = static_cast<std::size_t>(std::upper_bound(c, c + m, u) - c);
        if (k == 0 || k == m) return g[k == 0 ? 0 : m - 1];
        return g[k - 1] + (u - c[k - 1]) * (g[k] - g[k - 1]) / (c[k] - c[k - 1]);
    };
    std::size_t i = 0;
    double sink = 0.0;
    for (auto _ : state) {
        const double e = d.E[i & 4095], u = d.u[i & 4095];
        ++i;
        const std::size_t j = static_cast<std::size_t>(std::upper_bound(E.begin(), E.end(), e) - E.begin()) - 1;
        const double f = j + 1 < n ? std::log(e / E[j]) / std::log(E[j + 1] / E[j]) : 0.0;
        const double q0 = quantile(j, u), q = f == 0.0 ? q0 : q0 + f * (quantile(j + 1, u) - q0);
        sink += q * 2.0 * 510.99906 * e * (e + 2.0 * 510.99906) / (510.99906 * 510.99906);
    }
    benchmark::DoNotOptimize(sink);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

}  // namespace

BENCHMARK(BM_SampleW);
BENCHMARK(BM_BareSearches);
BENCHMARK(BM_SampleShell);
BENCHMARK(BM_Sigma);

BENCHMARK_MAIN();
