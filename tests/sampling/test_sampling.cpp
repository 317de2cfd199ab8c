// Cross sections at any energy and sampling from completed sets: samples
// that follow the tables, interpolation between records, every failure, and
// many threads on one set.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <thread>
#include <vector>

#include "sets.hpp"
#include "vlkxs.h"

namespace {

// BEB for water, dim 1 (or 0), at 5 eV (below every threshold) and above;
// the last two records lie 10 % apart, as those of a calculated grid do.
struct Water {
    explicit Water(int32_t dim = 1, int32_t IA = 2) {
        VLKXSInit(&set, 0);
        VLKProjFromStr(&set.proj, "e", 0);
        VLKTargImportMaterial(&set.targ, "H2O", 0);
        set.IA = IA;
        set.dim = dim;
        SVLKXSCALC rq{};
        rq.method = IA == 2 ? 7 : 9;
        rq.pE = E;
        rq.nE = 5;
        EXPECT_EQ((IA == 2 ? VLKXSCalcEI : VLKXSCalcEL)(&set, &rq, 0).code, 0);
    }
    ~Water() { VLKXSFree(&set, 0); }
    double E[5] = {0.005, 0.05, 0.1, 1.0, 1.1};
    SVLKXS set;
};

double W(const SVLKXS &s, int32_t ish, double E, double u) {
    double w = -1.0;
    EXPECT_EQ(VLKXSSampleW(&s, ish, E, u, &w, 0).code, 0);
    return w;
}

// Largest distance between the share of samples at or below each grid
// point (times `scale`) and the cumulated table there.
double ks(std::vector<double> x, const double *grid, const double *cum, int32_t n, double scale) {
    std::sort(x.begin(), x.end());
    double d = 0.0;
    for (int32_t k = 0; k < n; ++k) {
        const auto below = std::upper_bound(x.begin(), x.end(), grid[k] * scale) - x.begin();
        d = std::max(d, std::fabs(static_cast<double>(below) / static_cast<double>(x.size()) - cum[k]));
    }
    return d;
}

TEST(Sampling, SecondaryEnergiesFollowTheTables) {
    Water w;
    const SVLKXSE &r = w.set.pShell[0].pE[3], &next = w.set.pShell[0].pE[4];
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> uni(0.0, 1.0);
    std::vector<double> own, at_next, between;
    const double Emid = std::sqrt(r.E * next.E);
    for (int i = 0; i < 1000000; ++i) {
        const double u = uni(rng);
        own.push_back(W(w.set, 0, r.E, u));
        if (i % 10 == 0) {
            at_next.push_back(W(w.set, 0, next.E, u));
            between.push_back(W(w.set, 0, Emid, u));
        }
    }
    EXPECT_LT(ks(own, r.dv1, r.dvCum1, r.n1, r.WNorm), 2e-3);
    const auto mean = [](const std::vector<double> &v) { return std::accumulate(v.begin(), v.end(), 0.0) / v.size(); };
    EXPECT_GT(mean(between), std::min(mean(own), mean(at_next)));
    EXPECT_LT(mean(between), std::max(mean(own), mean(at_next)));
    double last = 0.0;
    for (double u = 0.0; u < 1.0; u += 1e-4) {
        const double x = W(w.set, 0, Emid, u);
        EXPECT_GE(x, last) << u;
        last = x;
    }
}

// Between two records a sample is the mean, in ln E, of the two records'
// quantiles at the same u, in fractions of WNorm: for grids of one length
// (searched together) and of different lengths alike.
TEST(Sampling, SecondaryEnergiesMixTheQuantilesOfTwoRecords) {
    Water open_grid;
    SVLKXS listed;
    VLKXSInit(&listed, 0);
    VLKProjFromStr(&listed.proj, "e", 0);
    VLKTargImportMaterial(&listed.targ, "H2O", 0);
    listed.IA = 2;
    listed.dim = 1;
    double E[] = {0.1, 0.3}, Wl[] = {0.0, 1e-3, 0.01, 0.02, 0.04, 0.1};
    SVLKXSCALC rq{};
    rq.method = 7;
    rq.pE = E;
    rq.nE = 2;
    rq.pW = Wl;
    rq.nW = 6;
    ASSERT_EQ(VLKXSCalcEI(&listed, &rq, 0).code, 0);
    const double rest = 510.99906;
    const auto wnorm = [rest](double e) { return 2.0 * e * (e + 2.0 * rest) / rest; };
    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> uni(0.0, 1.0);
    for (const SVLKXS *s : {&open_grid.set, &listed}) {
        const SVLKXSSH &sh = s->pShell[0];
        const SVLKXSE &a = sh.pE[sh.nE - 2], &c = sh.pE[sh.nE - 1];
        for (int i = 0; i < 2000; ++i) {
            const double e = a.E * std::pow(c.E / a.E, uni(rng)), u = uni(rng);
            const double f = std::log(e / a.E) / std::log(c.E / a.E);
            const double qa = W(*s, 0, a.E, u) / a.WNorm, qc = W(*s, 0, c.E, u) / c.WNorm;
            EXPECT_NEAR(W(*s, 0, e, u) / wnorm(e), qa + f * (qc - qa), 1e-12 * (qa + qc)) << e << " " << u;
        }
    }
    VLKXSFree(&listed, 0);
}

// Sigma and Ekin are each record's own at its energy, log-log between.
TEST(Sampling, SigmaAndEkinBetweenRecords) {
    Water w;
    for (int32_t i = 0; i < w.set.nShell; ++i)
        for (int32_t j = 0; j < 5; ++j) {
            const SVLKXSE &r = w.set.pShell[i].pE[j];
            double s = -1, ekin = -1, let = -1;
            ASSERT_EQ(VLKXSSigma(&w.set, i, r.E, &s, 0).code, 0);
            ASSERT_EQ(VLKXSEkin(&w.set, i, r.E, &ekin, &let, 0).code, 0);
            EXPECT_TRUE(s == r.sigtot && ekin == r.Ekin && let == r.LET) << i << " " << j;
            if (j == 4 || r.sigtot == 0) continue;
            const SVLKXSE &n = w.set.pShell[i].pE[j + 1];
            ASSERT_EQ(VLKXSSigma(&w.set, i, std::sqrt(r.E * n.E), &s, 0).code, 0);
            EXPECT_NEAR(s / std::sqrt(r.sigtot * n.sigtot), 1.0, 1e-12);
        }
}

TEST(Sampling, ShellsByTheirCrossSections) {
    Water w;
    const int N = 200000;
    const double E = 0.3;
    std::vector<int> count(6);
    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> uni(0.0, 1.0);
    for (int i = 0; i < N; ++i) {
        int32_t ish = -1;
        ASSERT_EQ(VLKXSSampleShell(&w.set, E, uni(rng), &ish, 0).code, 0);
        ++count.at(static_cast<std::size_t>(ish));
    }
    double total = 0;
    ASSERT_EQ(VLKXSSigma(&w.set, 5, E, &total, 0).code, 0);
    for (int32_t i = 0; i < 5; ++i) {
        double s = 0;
        VLKXSSigma(&w.set, i, E, &s, 0);
        const double p = s / total, sd = std::sqrt(N * p * (1 - p));
        EXPECT_LE(std::fabs(count[static_cast<std::size_t>(i)] - N * p), 3 * sd + 1e-9) << i;
    }
    EXPECT_EQ(count[5], 0);  // never the sum shell
}

// A dim 2 set of two records: the cosines at a first-level point follow its
// table, and grow with u between points and records.
TEST(Sampling, CosinesFromDoubleDifferentialTables) {
    vlktest::SetBuilder b(2);
    std::vector<vlktest::Row> grid(2), sig(2);
    for (int m = 0; m <= 40; ++m) {
        const double c = -1.0 + m / 20.0;
        grid[0].push_back(c);
        grid[1].push_back(c);
        sig[0].push_back(1e-18 * (1.0 + c * c));
        sig[1].push_back(1e-18 * std::exp(3.0 * c));
    }
    b.add_shell(1, 2);
    b.ddcs(b.rec(0, 0), {0.01, 0.1}, grid, sig);
    b.ddcs(b.rec(0, 1), {0.01, 0.1}, {grid[1], grid[0]}, {sig[1], sig[0]});
    b.rec(0, 0).E = 1.0;
    b.rec(0, 1).E = 2.0;
    SVLKXS *s = b.hand_over();
    ASSERT_EQ(VLKXSComplete(s, 0).code, 0);
    const SVLKXSE &r = s->pShell[0].pE[0];
    std::vector<double> cosines;
    double c = 0, last = -1;
    for (int i = 0; i < 200000; ++i) {
        ASSERT_EQ(VLKXSSampleCos(s, 0, 1.0, r.dv1[1] * r.WNorm, (i + 0.5) / 200000, &c, 0).code, 0);
        cosines.push_back(c);
    }
    EXPECT_LT(ks(cosines, r.pdv2[1], r.pdvCum2[1], r.nv2[1], 1.0), 2e-3);
    for (double u = 0.0; u < 1.0; u += 1e-3) {
        ASSERT_EQ(VLKXSSampleCos(s, 0, 1.5, 0.05, u, &c, 0).code, 0);
        EXPECT_TRUE(c >= last && c <= 1.0) << u;
        last = c;
    }
}

// Every failure leaves the output as it was.
TEST(Sampling, Failures) {
    Water beb, total(0), elastic(1, 1);
    const SVLKXS *s = &beb.set;
    double out = 42;
    int32_t ish = 42;
    const struct { SCMDSTATUS st; int32_t code; } rows[] = {
        {VLKXSSigma(nullptr, 0, 1, &out, VLKXS_MODE_QUIET), 2},
        {VLKXSSigma(s, 0, 1, nullptr, VLKXS_MODE_QUIET), 2},
        {VLKXSSigma(s, 6, 1, &out, VLKXS_MODE_QUIET), 7},
        {VLKXSEkin(s, -1, 1, &out, &out, VLKXS_MODE_QUIET), 7},
        {VLKXSSigma(s, 0, 0.001, &out, VLKXS_MODE_QUIET), 26},
        {VLKXSSampleW(s, 0, 11, 0.5, &out, VLKXS_MODE_QUIET), 26},
        {VLKXSSampleW(s, 0, 1, 1.0, &out, VLKXS_MODE_QUIET), 26},
        {VLKXSSampleShell(s, 1, -0.1, &ish, VLKXS_MODE_QUIET), 26},
        {VLKXSSampleShell(s, 0.005, 0.5, &ish, VLKXS_MODE_QUIET), 32},
        {VLKXSSampleW(s, 0, 0.005, 0.5, &out, VLKXS_MODE_QUIET), 32},
        {VLKXSSampleW(&total.set, 0, 1, 0.5, &out, VLKXS_MODE_QUIET), 34},
        {VLKXSSampleW(&elastic.set, 0, 1, 0.5, &out, VLKXS_MODE_QUIET), 34},
        {VLKXSSampleCos(s, 0, 1, 0.1, 0.5, &out, VLKXS_MODE_QUIET), 34},
    };
    for (const auto &r : rows) EXPECT_EQ(r.st.code, r.code);
    EXPECT_TRUE(out == 42 && ish == 42);
    ASSERT_EQ(VLKXSSampleCos(&elastic.set, 0, 1, 0, 0.999, &out, 0).code, 0);
    EXPECT_TRUE(out > 0.9 && out <= 1.0);
}

// Many threads sample one set at once and get what one thread gets.
TEST(Sampling, ManyThreadsOneSet) {
    Water w;
    std::vector<double> expect(2000), got(8 * 2000);
    for (int i = 0; i < 2000; ++i) expect[i] = W(w.set, 1, 0.3 + i * 3e-4, (i % 997) / 997.0);
    std::vector<std::thread> pool;
    for (int t = 0; t < 8; ++t)
        pool.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                int32_t ish = 0;
                VLKXSSampleShell(&w.set, 0.3, 0.5, &ish, 0);
                VLKXSSampleW(&w.set, 1, 0.3 + i * 3e-4, (i % 997) / 997.0, &got[t * 2000 + i], 0);
            }
        });
    for (auto &th : pool) th.join();
    for (int k = 0; k < 8 * 2000; ++k) ASSERT_EQ(got[k], expect[k % 2000]) << k;
}

}  // namespace
