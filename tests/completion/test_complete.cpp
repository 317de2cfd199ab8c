// Completion: kinematics, binding energies, the arrangement of the shells,
// integration, sums and normalisation, and every exit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "capture.hpp"
#include "core/alloc.hpp"
#include "sets.hpp"
#include "tempdir.hpp"

namespace {

using vlktest::Row;
using vlktest::SetBuilder;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kTwoPi = 6.283185307179586;

// Failures are always reported: keep them off the test output.  A hand-made
// set is handed over first, the completion adds blocks to it.
SCMDSTATUS complete(SVLKXS *set) {
    vlktest::Capture cap(stderr);
    return VLKXSComplete(set, 0);
}
SCMDSTATUS complete(SetBuilder &b) { return complete(b.hand_over()); }

// Equal, or within ten digits: for values worked out by hand.
bool close(double actual, double expected) {
    return actual == expected || (std::isnan(actual) && std::isnan(expected)) ||
           std::fabs(actual - expected) <= 1e-9 * std::fabs(expected);
}

std::vector<int32_t> shell_numbers(const SVLKXS &set) {
    std::vector<int32_t> numbers;
    for (int32_t i = 0; i < set.nShell; ++i) numbers.push_back(set.pShell[i].shell);
    return numbers;
}

// By hand from rest energies 510.99906 keV and 931.49432 MeV/u; other types
// move at the speed of light and keep gamma (7) and WNorm (4).  A WNorm that
// isn't 0 rescales an ionisation grid (3 keV here).
TEST(Complete, Kinematics) {
    const struct { int32_t type; double E, gamma, beta2, Escal, WNorm; } rows[] = {
        {3, 1000, 2.956950762, 0.885630081, 1.161231167, 7913.90152},
        {4, 1000, 2.956950762, 0.885630081, 1.161231167, 7913.90152},
        {3, 0.1, 1.000195695, 0.000391275293, -7.846099096, 0.400039139},
        {5, 1000, 2.073543852, 0.767419365, 0.426377066, 3372.16875},
        {5, 0.1, 1.000107354, 0.000214674200369, -8.446389003, 0.219443738},
        {3, 0, 1, 0, -INFINITY, 0}, {2, 50, 7, 1, 50, 4}, {6, 50, 7, 1, 50, 4}, {1, 50, 7, 1, 50, 4},
        {0, 50, 7, 1, 50, 4}, {-1, 50, 7, 1, 50, 4},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(testing::Message() << "type " << r.type << ", E " << r.E);
        SetBuilder b(1, 2);
        b.set.proj.type = r.type;
        SVLKXSE &e = b.add_shell(1, 1).pE[0];
        b.sdcs(e, {1, 3}, {1e-18, 1e-18});
        e.E = r.E;
        e.gamma = 7;
        e.WNorm = 4;
        ASSERT_EQ(complete(b).code, 0);
        for (const auto &[got, want] : {std::pair{e.gamma, r.gamma}, {e.beta2, r.beta2}, {e.Escal, r.Escal},
                                        {e.WNorm, r.WNorm}, {e.scaled, e.sigtot * r.beta2},
                                        {e.dv1[1], r.WNorm == 0 ? 3 : 3 / r.WNorm}})
            EXPECT_PRED2(close, got, want);
    }
}

// km comes from the target's table only where it isn't positive (a NaN
// stays); LET = (Ekin + km) * sigtot * 6.0221367e23 / M, with M = 18.01528
// g/mol for water.
TEST(Complete, BindingEnergyAndLET) {
    const struct { int32_t shell; double km_in, km, LET; } rows[] = {
        {3, 5.0, 5.0, 1678082.5074048},          // (0.02 + 5) * 1e-17 * 6.0221367e23 / 18.01528
        {3, 0.0, 0.01855, 12886.470251087},      // row 3 of the table: (0.02 + 0.01855) * ...
        {3, -1.0, 0.01855, 12886.470251087},     // likewise for any km not positive
        {0, 0.0, 0.01261, 10900.850710452},      // row 0: (0.02 + 0.01261) * ...
        {2, kNaN, kNaN, kNaN},
    };
    for (const auto &r : rows) {
        SetBuilder b(0);
        SVLKXSE &e = b.add_shell(r.shell, 1).pE[0];
        e.E = 10;
        e.sigtot = 1e-17;
        e.Ekin = 0.02;
        e.km = r.km_in;
        ASSERT_EQ(complete(b).code, 0);
        EXPECT_PRED2(close, e.km, r.km);
        EXPECT_PRED2(close, e.LET, r.LET);
    }
}

// Shell 0 goes last (the last of several); two or more shells without one
// get a sum shell, and only a created one gets the sums.
TEST(Complete, ArrangementOfTheShells) {
    using Numbers = std::vector<int32_t>;
    const std::pair<Numbers, Numbers> rows[] = {{{0, 1, 2}, {2, 1, 0}}, {{0, 1, 0, 2}, {0, 1, 2, 0}},
        {{1, 2}, {1, 2, 0}}, {{1, 0}, {1, 0}}, {{3}, {3}}, {{0}, {0}}, {{5, 4, 3}, {5, 4, 3, 0}}};
    for (const auto &[in, out] : rows) {
        SetBuilder b(0);
        for (int32_t n : in) b.add_shell(n, 1).pE[0].sigtot = 1;
        ASSERT_EQ(complete(b).code, 0);
        EXPECT_EQ(shell_numbers(b.set), out);
        const double sum = out.size() > in.size() ? static_cast<double>(in.size()) : 1.0;
        EXPECT_EQ(b.set.pShell[b.set.nShell - 1].pE[0].sigtot, sum);
    }
}

// Binding energies 10 and 20 keV from a table of our own: the sum record
// holds sums, and km and Ekin as means weighted by sigtot (0 without any).
TEST(Complete, TotalSumShell) {
    SVLKTARGSH table[] = {{5, 0, 0}, {10, 0, 0}, {20, 0, 0}};
    SetBuilder b(0);
    b.set.targ.pShell = table;
    b.set.targ.nShell = 2;
    for (int32_t i = 0; i < 2; ++i) {
        SVLKXSE *e = b.add_shell(i + 1, 2).pE;
        e[0].E = 100;
        e[0].sigtot = 2 + i;
        e[0].Ekin = 4 + 2 * i;
        e[1].E = 200;
    }
    b.rec(0, 0).km = 7;  // from the source: the shell's LET uses it, the sum's mean doesn't
    ASSERT_TRUE(complete(b).code == 0 && b.set.nShell == 3);
    const SVLKXSE &s = b.set.pShell[2].pE[0], &zero = b.set.pShell[2].pE[1];
    EXPECT_TRUE(s.E == 100 && s.sigtot == 5 && b.rec(0, 0).km == 7);
    EXPECT_DOUBLE_EQ(s.km, 16);   // (2 * 10 + 3 * 20) / 5
    EXPECT_DOUBLE_EQ(s.Ekin, 5.2);  // (2 * 4 + 3 * 6) / 5
    // (4 + 7) * 2 * 6.0221367e23 / 18.01528; summed with (6 + 20) * 3: 100 * ...
    EXPECT_PRED2(close, b.rec(0, 0).LET, 7.3541464467941e23);
    EXPECT_PRED2(close, s.LET, 3.3427938394518e24);
    EXPECT_EQ(s.scaled, b.rec(0, 0).scaled + b.rec(1, 0).scaled);
    EXPECT_TRUE(zero.E == 200 && zero.sigtot == 0 && zero.km == 0 && zero.Ekin == 0);
}

// Cumulated tables [0, 1, 3] and [0, 2, 4] on one grid: the sum shell holds
// [0, 3, 7] before and [0, 3/7, 1] after the normalisation.
TEST(Complete, SingleDifferentialSumShell) {
    SetBuilder b(1, 3);
    b.sdcs(b.add_shell(1, 1).pE[0], {0, 1, 2}, {0, 2, 2});
    b.sdcs(b.add_shell(2, 1).pE[0], {0, 1, 2}, {0, 4, 0});
    ASSERT_EQ(complete(b).code, 0);
    const SVLKXSE &a = b.rec(0, 0), &c = b.rec(1, 0), &s = b.set.pShell[2].pE[0];
    EXPECT_TRUE(a.sigtot == 3 && c.sigtot == 4 && s.sigtot == 7);
    for (const auto &[got, want] : {std::pair{a.dvCum1, Row{0, 1.0 / 3, 1}}, {c.dvCum1, Row{0, 0.5, 1}},
                                    {s.dvCum1, Row{0, 3 * (1.0 / 7), 1}}, {s.dvSig1, Row{0, 6, 2}}, {s.dv1, {0, 1, 2}}})
        EXPECT_EQ(Row(got, got + 3), want);
    // Ekin: first moments 4/3 and 1, mean (4 + 4) / 7; km from water's rows.
    EXPECT_DOUBLE_EQ(a.Ekin, 4.0 / 3);
    EXPECT_DOUBLE_EQ(s.Ekin, 8.0 / 7);
    EXPECT_DOUBLE_EQ(s.km, (3 * 0.01261 + 4 * 0.01473) / 7);
    // LET: ((4/3 + 0.01261) * 3 + (1 + 0.01473) * 4) * 6.0221367e23 / 18.01528
    EXPECT_PRED2(close, s.LET, 2.7065766019582e23);
    EXPECT_EQ(VLKXSIsValid(&b.set, VLKXS_MODE_QUIET).code, 0);
    // Completed again (not ionisation), the sum shell keeps its values.
    const SVLKXSE first = s;
    ASSERT_TRUE(complete(b).code == 0 && b.set.nShell == 3);
    const SVLKXSE &again = b.set.pShell[2].pE[0];
    for (const auto &[x, y] : {std::pair{first.sigtot, again.sigtot}, {first.Ekin, again.Ekin}, {first.km, again.km},
                               {first.LET, again.LET}, {first.dvCum1[1], again.dvCum1[1]}})
        EXPECT_NEAR(y, x, 1e-14 * std::fabs(x));
}

// Ionisation grids end in units of WNorm, the integrals taken in keV before;
// the sum shell takes the grid of its last summed shell.
TEST(Complete, IonisationGridsInUnitsOfWNorm) {
    SetBuilder b(1, 2);
    for (int32_t i = 0; i < 2; ++i) {
        SVLKXSE &e = b.add_shell(i + 1, 1).pE[0];
        e.E = 1000;
        b.sdcs(e, {0, 10 + 10.0 * i, 40}, {1, 1, 1});
    }
    ASSERT_EQ(complete(b).code, 0);
    const SVLKXSE &e = b.rec(0, 0), &s = b.set.pShell[2].pE[0];
    EXPECT_TRUE(e.sigtot == 40 && std::fabs(e.Ekin - 20) < 1e-12 && s.WNorm == e.WNorm);
    EXPECT_PRED2(close, e.dv1[2], 40 / 7913.90152);
    EXPECT_EQ(Row(s.dv1, s.dv1 + 3), Row(b.rec(1, 0).dv1, b.rec(1, 0).dv1 + 3));
}

// 2 pi takes the sign of the direction of the first two points; one angle
// stands for isotropy.  A cumulated row ending above 0 is normalised.
TEST(Complete, IntegralOverSolidAngle) {
    const struct { Row cosines, ddcs; double sdcs; } rows[] = {{{-1, 0, 1}, {1, 2, 1}, 3 * kTwoPi},
        {{1, 0, -1}, {1, 2, 1}, 3 * kTwoPi}, {{1, 1, -1}, {1, 1, 1}, -2 * kTwoPi}, {{0.5}, {3}, 6 * kTwoPi}};
    for (const auto &r : rows) {
        SetBuilder b(2, 3);
        SVLKXSE &e = b.add_shell(1, 1).pE[0];
        b.ddcs(e, {0}, {r.cosines}, {r.ddcs});  // no pdvCum2, no dvSig1: both made
        ASSERT_EQ(complete(b).code, 0) << r.sdcs;
        EXPECT_DOUBLE_EQ(e.dvSig1[0], r.sdcs);
        EXPECT_EQ(e.pdvCum2[0][e.nv2[0] - 1], r.sdcs > 0 ? 1.0 : r.sdcs);
    }
}

// Rows of different grids are added element by element, the last shell's
// grid winning: (0, 1, 2) and (0, 4) times 2 pi, normalised by the last.
TEST(Complete, DoubleDifferentialSumShell) {
    SetBuilder b(2, 3);
    b.ddcs(b.add_shell(2, 1).pE[0], {1, 2}, {{-1, 1}, {-1, 0, 1}}, {{1, 1}, {1, 1, 1}});
    b.ddcs(b.add_shell(1, 1).pE[0], {1, 2}, {{-1, 1}, {-1, 1}}, {{3, 3}, {2, 2}});
    ASSERT_EQ(complete(b).code, 0);
    const SVLKXSE &s = b.set.pShell[2].pE[0];
    ASSERT_TRUE(s.n1 == 2 && s.nv2[1] == 3);
    EXPECT_DOUBLE_EQ(s.dvSig1[0], 8 * kTwoPi);
    EXPECT_EQ(Row(s.pdvSig2[1], s.pdvSig2[1] + 3), (Row{3, 3, 1}));
    EXPECT_EQ(Row(s.pdv2[1], s.pdv2[1] + 3), (Row{-1, 1, 1}));
    EXPECT_TRUE(s.pdvCum2[0][1] == 1 && s.dvCum1[1] == 1);
    EXPECT_EQ(Row(s.pdvCum2[1], s.pdvCum2[1] + 3), (Row{0, 2.5, 1}));
}

// Each exit, reported even when quiet; a shell outside the table is refused
// before anything changes; dim is looked at only in a record.
TEST(Complete, Exits) {
    const struct { const char *name; void (*build)(SetBuilder &); int32_t code; std::vector<int32_t> after; } rows[] = {
        {"ShellAboveTable", [](SetBuilder &b) { b.add_shell(0, 1), b.add_shell(1, 1), b.add_shell(6, 1); }, 62,
         {0, 1, 6}},
        {"NegativeShell", [](SetBuilder &b) { b.add_shell(0, 1), b.add_shell(-1, 1); }, 62, {0, -1}},
        {"NoShellArray", [](SetBuilder &) {}, 2, {}},
        {"NoTargetTable", [](SetBuilder &b) { b.add_shell(1, 1), b.set.targ.pShell = nullptr; }, 2, {1}},
        {"UnsupportedDim", [](SetBuilder &b) { b.set.dim = 7, b.add_shell(1, 1); }, 21, {1}},
        {"NoRecordReached", [](SetBuilder &b) { b.set.dim = 7, b.add_shell(1, 0); }, 0, {1}},
        {"NoShellCounted", [](SetBuilder &b) { b.set.dim = 7, b.add_shell(1, 1, false), b.set.nShell = 0; }, 0, {}},
        {"NoSdcs", [](SetBuilder &b) { b.add_shell(1, 1).pE[0].n1 = 2; }, 2, {1}},
        {"LaterShellWithoutRecords", [](SetBuilder &b) { b.add_shell(1, 1), b.add_shell(2, 0, false), b.set.dim = 0; },
         2, {1, 2, 0}},
        {"FirstShellRecordsMissing", [](SetBuilder &b) { b.add_shell(1, 1, false), b.add_shell(2, 0); }, 2, {1, 2}},
        {"MoreRecordsThanFirstShell", [](SetBuilder &b) { b.add_shell(1, 1), b.add_shell(2, 2), b.set.dim = 0; }, 2,
         {1, 2}},
        {"LargerGridThanFirstShell",
         [](SetBuilder &b) {
             b.sdcs(b.add_shell(1, 1).pE[0], {1, 2}, {1, 1});
             b.sdcs(b.add_shell(2, 1).pE[0], {1, 2, 3}, {1, 1, 1});
         },
         2, {1, 2}},
        {"MoreAnglesThanFirstShell",
         [](SetBuilder &b) {
             b.set.dim = 2;
             b.ddcs(b.add_shell(1, 1).pE[0], {1}, {{-1, 1}}, {{1, 1}});
             b.ddcs(b.add_shell(2, 1).pE[0], {1}, {{-1, 0, 1}}, {{1, 1, 1}});
         },
         2, {1, 2}},
    };
    EXPECT_EQ(complete(nullptr).code, 2);
    for (const auto &r : rows) {
        SetBuilder b(1);
        r.build(b);
        vlktest::Capture cap(stderr);
        const SCMDSTATUS s = VLKXSComplete(b.hand_over(), VLKXS_MODE_QUIET);
        const std::string err = cap.finish();
        EXPECT_TRUE(s.code == r.code && s.level == (r.code ? VLKXS_LEVEL_ERROR : 0) && s.item == nullptr) << r.name;
        EXPECT_EQ(shell_numbers(b.set), r.after) << r.name;
        EXPECT_EQ(vlktest::count_lines(err, "<E> vlkxs(Complete): "), r.code != 0) << r.name;
    }
}

// Real files, completed with each allocation failing in turn (code 1, and a
// set released without a leak), then completed and valid.
TEST(Complete, FilesOfEachDimensionAndAllocationFailures) {
    int failures = 0;
    for (const auto &[file, shells_after] : {std::pair{"e.H2O.it.xs", 3}, {"e.H2O.is.xs", 2}, {"p.H2O.id.xs", 3}}) {
        for (long n = 1;; ++n) {
            SVLKXS set{};
            ASSERT_EQ(VLKXSRead(&set, vlktest::data_file(file).c_str(), VLKXS_MODE_QUIET).code, 0) << file;
            EXPECT_EQ(VLKXSIsValid(&set, VLKXS_MODE_QUIET).code, set.dim > 0 ? 55 : 0) << file;
            vlk::testhook::fail_alloc_after(n);
            const SCMDSTATUS s = complete(&set);
            vlk::testhook::fail_alloc_after(0);
            const SCMDSTATUS v = VLKXSIsValid(&set, VLKXS_MODE_QUIET);
            const bool done = s.code == 0;
            EXPECT_TRUE(!done || (v.code == 0 && set.nShell == shells_after && set.pShell[set.nShell - 1].shell == 0))
                << file << ": " << (v.item ? v.item : "");
            EXPECT_EQ(s.code, done ? 0 : 1) << file << ", allocation " << n;
            EXPECT_EQ(VLKXSFree(&set, 0).code, 0);
            failures += !done;
            if (done) break;
        }
    }
    EXPECT_GT(failures, 10);
}

// Random shapes end in one of the codes; under the sanitizers no shape makes
// completion, validation or the grid test step outside an array.
TEST(Complete, RandomShapesEndInACodeAndReleaseCleanly) {
    int completed = 0;
    for (unsigned seed = 1; seed <= 2000; ++seed) {
        std::mt19937 rng(seed);
        const auto pick = [&](int32_t lo, int32_t hi) { return std::uniform_int_distribution<int32_t>(lo, hi)(rng); };
        const auto chance = [&](double p) { return std::bernoulli_distribution(p)(rng); };
        const auto value = [&] { return chance(0.05) ? kNaN : std::uniform_real_distribution<double>(-0.5, 2.0)(rng); };
        SetBuilder b(0);
        const auto maybe = [&](int32_t n) {
            Row r(static_cast<std::size_t>(std::max(n, 0)));
            for (double &v : r) v = value();
            return chance(0.85) ? b.doubles(r) : nullptr;
        };
        b.set.dim = pick(-1, 3);
        b.set.IA = pick(1, 3);
        for (int32_t i = pick(0, 4); i > 0; --i) {
            const int32_t nE = pick(-1, 3);
            SVLKXSSH &sh = b.add_shell(pick(-1, 6) == 6 ? 0 : pick(0, 5), nE, chance(0.9));
            for (int32_t j = 0; sh.pE != nullptr && j < nE; ++j) {
                SVLKXSE &e = sh.pE[j];
                for (double SVLKXSE::*v : {&SVLKXSE::E, &SVLKXSE::sigtot, &SVLKXSE::km}) e.*v = value();
                e.n1 = pick(-1, 3);
                for (double *SVLKXSE::*a : {&SVLKXSE::dv1, &SVLKXSE::dvSig1, &SVLKXSE::dvCum1}) e.*a = maybe(e.n1);
                if (!chance(0.7)) continue;
                std::vector<int32_t> counts(static_cast<std::size_t>(std::max(e.n1, 0)));
                for (int32_t &c : counts) c = pick(-1, 3);
                e.nv2 = b.ints(counts);
                for (double **SVLKXSE::*table : {&SVLKXSE::pdv2, &SVLKXSE::pdvSig2, &SVLKXSE::pdvCum2}) {
                    if (!chance(0.85)) continue;
                    double **rows = (e.*table) = b.rows(counts.size());
                    for (std::size_t k = 0; k < counts.size(); ++k) rows[k] = maybe(counts[k]);
                }
            }
        }
        vlktest::Capture cap(stderr);
        const SCMDSTATUS c = VLKXSComplete(b.hand_over(), 0);
        const SCMDSTATUS v = VLKXSIsValid(&b.set, VLKXS_MODE_QUIET);
        const SCMDSTATUS w = VLKXSIsEquivW(&b.set, 0.0, VLKXS_MODE_QUIET);
        cap.finish();
        EXPECT_TRUE((c.code >= 0 && c.code <= 2) || c.code == 21 || c.code == 62) << seed << ": " << c.code;
        EXPECT_TRUE(v.code == 0 || (v.code >= 7 && v.code <= 10) || (v.code >= 55 && v.code <= 60)) << seed;
        EXPECT_TRUE(w.code == 0 || w.code == 7) << seed;
        completed += c.code == 0;
    }
    EXPECT_GT(completed, 100) << "the shapes reach the whole pass, not only the refusals";
}

}  // namespace
