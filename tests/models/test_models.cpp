// The model calculators: complete valid sets that survive a file, tables
// that integrate to the models' totals, values worked out by hand, grids
// from the request, refusals, and allocation failures.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "capture.hpp"
#include "faults.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

using Calculator = SCMDSTATUS (*)(SVLKXS *, const SVLKXSCALC *, int32_t);

struct Case {
    const char *name;
    Calculator calc;
    const char *projectile, *target;
    int32_t IA, dim, method;
    std::vector<double> E;
    int32_t shells;  // with the sum shell
};

// Energies below and above every threshold of water, in keV or MeV/u.
const Case kCases[] = {
    {"BEB totals", VLKXSCalcEI, "e", "H2O", 2, 0, 7, {0.01, 0.02, 0.1, 1.0, 1000.0}, 6},
    {"BEB tables", VLKXSCalcEI, "e", "H2O", 2, 1, 7, {0.01, 0.02, 0.1, 1.0, 1000.0}, 6},
    {"BEB argon tables", VLKXSCalcEI, "e", "Ar", 2, 1, 7, {0.05, 5.0}, 6},
    {"BEB hydrogen", VLKXSCalcEI, "e", "H", 2, 1, 7, {0.1}, 1},
    {"Rudd totals", VLKXSCalcII, "p", "H2O", 2, 0, 2, {0.001, 0.1, 5.0}, 6},
    {"Rudd tables", VLKXSCalcII, "alpha", "H2O", 2, 1, 2, {0.001, 0.1, 5.0}, 6},
    {"elastic totals", VLKXSCalcEL, "e", "H2O", 1, 0, 9, {0.1, 10.0, 1000.0}, 1},
    {"elastic tables", VLKXSCalcEL, "e", "N2", 1, 1, 9, {0.1, 10.0, 1000.0}, 1},
    {"electron excitation", VLKXSCalcEX, "e", "H2O", 3, 0, 8, {0.005, 0.1, 10.0}, 6},
    {"proton excitation", VLKXSCalcIX, "p", "H2O", 3, 0, 8, {0.001, 0.1, 5.0}, 6},
};

SVLKXS prepared(const Case &c, int32_t dim) {
    SVLKXS s;
    VLKXSInit(&s, 0);
    EXPECT_EQ(VLKProjFromStr(&s.proj, c.projectile, 0).code, 0);
    EXPECT_EQ(VLKTargImportMaterial(&s.targ, c.target, 0).code, 0);
    s.IA = c.IA;
    s.dim = dim;
    return s;
}

SVLKXSCALC request(const Case &c) {
    SVLKXSCALC rq{};
    rq.method = c.method;
    rq.pE = const_cast<double *>(c.E.data());
    rq.nE = static_cast<int32_t>(c.E.size());
    return rq;
}

SCMDSTATUS calculate(const Case &c, SVLKXS &s, int32_t dim) {
    s = prepared(c, dim);
    const SVLKXSCALC rq = request(c);
    return c.calc(&s, &rq, 0);
}

const SVLKXSE &record(const SVLKXS &s, int32_t i, int32_t j) { return s.pShell[i].pE[j]; }

double relative(double a, double b) { return a == b ? 0.0 : std::fabs(a - b) / std::max(std::fabs(a), std::fabs(b)); }

// Every calculated set is complete and valid, and comes back from its file
// with the same totals to six digits.  Elastic tables are the exception the
// writer makes: it prints every first column times WNorm, so only their
// counts come back.
TEST(Models, CompleteValidSetsSurviveTheirFile) {
    vlktest::TempDir dir;
    for (const Case &c : kCases) {
        SCOPED_TRACE(c.name);
        SVLKXS s, back;
        ASSERT_EQ(calculate(c, s, c.dim).code, 0);
        ASSERT_EQ(VLKXSIsValid(&s, 0).code, 0);
        ASSERT_EQ(s.nShell, c.shells);
        EXPECT_EQ(s.pShell[s.nShell - 1].shell, c.shells > 1 ? 0 : s.pShell[0].shell);
        ASSERT_EQ(VLKXSWrite(&s, dir.prefix().c_str(), 0).code, 0);
        const std::string path = dir.prefix() + s.proj.symbol + "." + s.targ.name + "." + s.IAtag + s.dimtag + ".xs";
        ASSERT_EQ(VLKXSRead(&back, path.c_str(), 0).code, 0);
        ASSERT_EQ(VLKXSComplete(&back, 0).code, 0);
        ASSERT_EQ(back.nShell, s.nShell);
        for (int32_t i = 0; i < s.nShell; ++i)
            for (int32_t j = 0; j < s.pShell[i].nE; ++j) {
                const SVLKXSE &a = record(s, i, j), &b = record(back, i, j);
                EXPECT_EQ(a.n1, b.n1);
                if (c.IA != 1 || c.dim == 0) {
                    EXPECT_LT(relative(a.sigtot, b.sigtot), 5e-6) << i << " " << j;
                }
            }
        VLKXSFree(&back, 0);
        VLKXSFree(&s, 0);
    }
}

// The tables integrate to the models' totals within 1e-3, and their mean
// secondary energies to those of the totals: BEB in closed form, Rudd by
// adaptive quadrature, the elastic total in closed form (over the solid
// angle, 2 pi times the integral over the cosine).
TEST(Models, TablesIntegrateToTheTotals) {
    for (const Case &c : kCases) {
        if (c.dim != 1) continue;
        SCOPED_TRACE(c.name);
        SVLKXS t, d;
        ASSERT_EQ(calculate(c, t, 0).code, 0);
        ASSERT_EQ(calculate(c, d, 1).code, 0);
        const double factor = c.IA == 1 ? 2.0 * M_PI : 1.0;
        for (int32_t i = 0; i < t.nShell; ++i)
            for (int32_t j = 0; j < t.pShell[i].nE; ++j) {
                const SVLKXSE &a = record(t, i, j), &b = record(d, i, j);
                EXPECT_LT(relative(a.sigtot, factor * b.sigtot), 1e-3) << i << " " << j;
                if (c.IA == 2) {
                    EXPECT_LT(relative(a.Ekin, b.Ekin), 1e-3) << i << " " << j;
                }
            }
        VLKXSFree(&t, 0);
        VLKXSFree(&d, 0);
    }
}

// BEB by hand: S = 4 pi a0^2 N (R/B)^2, t = T/B, u = U/B,
// sigma = S/(t+u+1) [ln t/2 (1 - 1/t^2) + 1 - 1/t - ln t/(t+1)].
// Hydrogen at 100 eV: B = U = 13.6057 eV, t = 7.34986, ln t = 1.99468,
// S = 3.51894e-16 cm2 (R/B = 0.999999), bracket = 0.97891 + 0.86394 - 0.23889
// = 1.60396, sigma = 3.51894e-16 / 9.34986 * 1.60396 = 6.0366e-17 cm2.
// Water, the five orbitals of N = 2 summed (values per orbital in 1e-17 cm2):
//   20 eV:   3.60802 + 1.91208 + 0.335712                    = 5.85582e-17
//   100 eV:  9.83258 + 7.83539 + 5.74053 + 1.81422            = 2.52227e-16
//   1000 eV: 2.99916 + 2.49677 + 1.91019 + 0.945272 + 0.004781 = 8.35618e-17
TEST(Models, BEBByHand) {
    const struct { const char *target; double T, sigma; } rows[] = {
        {"H", 0.1, 6.0366e-17}, {"H2O", 0.02, 5.85582e-17}, {"H2O", 0.1, 2.52227e-16}, {"H2O", 1.0, 8.35618e-17}};
    for (const auto &r : rows) {
        SVLKXS s;
        const Case c{"", VLKXSCalcEI, "e", r.target, 2, 0, 7, {r.T}, 0};
        ASSERT_EQ(calculate(c, s, 0).code, 0);
        EXPECT_LT(relative(record(s, s.nShell - 1, 0).sigtot, r.sigma), 2e-5) << r.target << " " << r.T;
        VLKXSFree(&s, 0);
    }
}

// Proton ionisation of water rises to a maximum near 100 keV and falls
// beyond it.
TEST(Models, RuddTotalPeaksNear100keV) {
    std::vector<double> E;
    for (double e = 0.005; e < 10.0; e *= 1.25) E.push_back(e);
    SVLKXS s;
    ASSERT_EQ(calculate({"", VLKXSCalcII, "p", "H2O", 2, 0, 2, E, 0}, s, 0).code, 0);
    const SVLKXSSH &sum = s.pShell[s.nShell - 1];
    int32_t peak = 0;
    for (int32_t j = 1; j < sum.nE; ++j)
        if (sum.pE[j].sigtot > sum.pE[peak].sigtot) peak = j;
    EXPECT_GT(sum.pE[peak].E, 0.03);
    EXPECT_LT(sum.pE[peak].E, 0.2);
    for (int32_t j = 1; j < sum.nE; ++j)
        EXPECT_EQ(sum.pE[j].sigtot > sum.pE[j - 1].sigtot, j <= peak) << sum.pE[j].E;
    VLKXSFree(&s, 0);
}

// The sum shell of the excitation levels weighs their excitation energies.
TEST(Models, ExcitationSumShellMeansTheLevels) {
    SVLKXS s;
    ASSERT_EQ(calculate(kCases[8], s, 0).code, 0);
    const int32_t last = s.nShell - 1;
    for (int32_t j = 0; j < s.pShell[last].nE; ++j) {
        double w = 0.0, sigma = 0.0, let = 0.0;
        for (int32_t i = 0; i < last; ++i) {
            w += record(s, i, j).sigtot * record(s, i, j).km;
            sigma += record(s, i, j).sigtot;
            let += record(s, i, j).LET;
        }
        const SVLKXSE &sum = record(s, last, j);
        EXPECT_DOUBLE_EQ(sum.km, sigma > 0 ? w / sigma : 0.00822);
        EXPECT_LT(relative(sum.LET, let), 1e-12);
    }
    VLKXSFree(&s, 0);
}

// Grids from the request: the relchange grid, the secondary limits and list.
TEST(Models, GridsFromTheRequest) {
    SVLKXS s = prepared(kCases[1], 1);
    SVLKXSCALC rq{};
    rq.method = 7;
    rq.Emin = 1.0;
    rq.Emax = 10.0;  // ln 10 / ln 1.1 = 24.2: 25 equal steps
    rq.Wmin = 0.01;
    rq.Wmax = 0.2;
    ASSERT_EQ(VLKXSCalcEI(&s, &rq, 0).code, 0);
    const SVLKXSSH &sh = s.pShell[0];
    ASSERT_EQ(sh.nE, 26);
    EXPECT_TRUE(sh.pE[0].E == 1.0 && sh.pE[25].E == 10.0);
    for (int32_t j = 1; j < sh.nE; ++j) EXPECT_LE(sh.pE[j].E / sh.pE[j - 1].E, 1.1);
    const SVLKXSE &e = sh.pE[10];
    EXPECT_NEAR(e.dv1[0] * e.WNorm, 0.01, 1e-15);
    EXPECT_NEAR(e.dv1[e.n1 - 1] * e.WNorm, 0.2, 1e-15);
    double W[] = {0.0, 0.05, 0.1};
    rq.pW = W;
    rq.nW = 3;
    ASSERT_EQ(VLKXSCalcEI(&s, &rq, 0).code, 0);  // the old tables are released
    EXPECT_EQ(s.pShell[0].pE[0].n1, 3);
    VLKXSFree(&s, 0);
}

// The whole path of a user: limit strings and a method name into a request,
// VLKXSCalc, a ready and enabled set.
TEST(Models, ThroughTheDispatch) {
    SVLKXS s = prepared(kCases[1], 1);
    SVLKXSCALC rq{};
    ASSERT_EQ(VLKXSCalcMethodFromStr(&rq, "BEB", 0).code, 0);
    ASSERT_EQ(VLKXSCalcLimitsFromStr(&rq, "0.01, 10000", VLKXS_MODE_LIMIT_E).code, 0);
    rq.relchange = 0.5;
    ASSERT_EQ(VLKXSCalc(&s, &rq, 0).code, 0);
    EXPECT_EQ(s.flag, VLKXS_FLAG_READY | VLKXS_FLAG_ENABLED);
    EXPECT_TRUE(s.nShell == 6 && s.pShell[0].nE == 36 && s.pShell[0].pE[35].E == 10000.0);
    VLKXSCalcFree(&rq, 0);
    VLKXSFree(&s, 0);
}

// Refusals leave the set without tables, reported unless quiet.
TEST(Models, Refusals) {
    const struct { Case c; int32_t dim; double Emin, Emax; int32_t code; const char *item; } rows[] = {
        {{"", VLKXSCalcEI, "e", "H2O", 2, 0, 0, {}, 0}, 0, 1, 2, 17, nullptr},
        {{"", VLKXSCalcEI, "e", "H2O", 2, 0, 7, {}, 0}, 2, 1, 2, 21, nullptr},
        {{"", VLKXSCalcEX, "e", "H2O", 3, 0, 8, {}, 0}, 1, 1, 2, 21, nullptr},
        {{"", VLKXSCalcII, "p", "N2", 2, 0, 2, {}, 0}, 0, 1, 2, 37, nullptr},
        {{"", VLKXSCalcIX, "p", "Ar", 3, 0, 8, {}, 0}, 0, 1, 2, 23, nullptr},
        {{"", VLKXSCalcEI, "e", "H2O", 2, 0, 7, {}, 0}, 0, 0, 2, 26, "Emin"},
        {{"", VLKXSCalcEL, "e", "H2O", 1, 0, 9, {}, 0}, 0, 1, 1.7976931348623157e308, 26, "Emax"},
        {{"", VLKXSCalcEL, "p", "H2O", 1, 0, 9, {}, 0}, 0, 1, 2, 14, "proton"},
    };
    for (const auto &r : rows) {
        SVLKXS s = prepared(r.c, r.dim);
        SVLKXSCALC rq{};
        rq.method = r.c.method;
        rq.Emin = r.Emin;
        rq.Emax = r.Emax;
        for (int32_t mode : {0, VLKXS_MODE_QUIET}) {
            vlktest::Capture err(stderr);
            const SCMDSTATUS st = r.c.calc(&s, &rq, mode);
            EXPECT_EQ(vlktest::count_lines(err.finish(), "<E> "), mode == 0) << r.code;
            EXPECT_EQ(st.code, r.code);
            EXPECT_STREQ(st.item, r.item);
            EXPECT_TRUE(s.nShell == 0 && s.pShell == nullptr && s.targ.name != nullptr);
        }
        VLKXSFree(&s, 0);
    }
}

// Every allocation of every calculator fails in turn: code 1, no tables,
// the companions kept.
TEST(Models, AllocationFailures) {
    for (const Case &c : kCases) {
        SVLKXS s = prepared(c, c.dim);
        const SVLKXSCALC rq = request(c);
        vlktest::Capture err(stderr);  // completion reports its failures always
        vlktest::fault_loop([&] { return c.calc(&s, &rq, VLKXS_MODE_QUIET); },
                            [&](const SCMDSTATUS &st, long n) {
                                EXPECT_TRUE(st.code == 1 && s.nShell == 0 && s.pShell == nullptr && s.targ.name)
                                    << c.name << " allocation " << n;
                            });
        EXPECT_EQ(VLKXSIsValid(&s, 0).code, 0) << c.name;
        VLKXSFree(&s, 0);
    }
}

}  // namespace
