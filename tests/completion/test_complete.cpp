// Completion: kinematics by projectile type, binding energies, the
// arrangement of the shells and the sum shell, integration of the tables,
// the sums and the normalisation, and every failure exit.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kAvogadro = 6.0221367e23;
constexpr double kTwoPi = 6.283185307179586;

// Completion always reports its failures; keep them off the test output.
SCMDSTATUS complete(SVLKXS *set) {
    vlktest::Capture cap(stderr);
    return VLKXSComplete(set, 0);
}
// A hand-made set is handed over first: the completion adds blocks to it.
SCMDSTATUS complete(SetBuilder &b) { return complete(b.hand_over()); }

// Relative closeness for values worked out by hand to ten digits.
void expect_near_rel(double actual, double expected, double rel = 1e-9) {
    EXPECT_NEAR(actual, expected, std::fabs(expected) * rel) << "expected " << expected;
}

std::vector<int32_t> shell_numbers(const SVLKXS &set) {
    std::vector<int32_t> numbers;
    for (int32_t i = 0; i < set.nShell; ++i) numbers.push_back(set.pShell[i].shell);
    return numbers;
}

// Kinematics worked out by hand from the rest energies 510.99906 keV and
// 931.49432 MeV/u.
TEST(Complete, KinematicsOfChargedProjectiles) {
    const struct {
        int32_t type;
        double E, gamma, beta2, Escal, WNorm;
    } rows[] = {
        {3, 1000, 2.956950762, 0.885630081, 1.161231167, 7913.90152},
        {4, 1000, 2.956950762, 0.885630081, 1.161231167, 7913.90152},
        {3, 0.1, 1.000195695, 0.000391275293, -7.846099096, 0.400039139},
        {5, 1000, 2.073543852, 0.767419365, 0.426377066, 3372.16875},
        {5, 0.1, 1.000107354, 0.000214674200369, -8.446389003, 0.219443738},
    };
    for (const auto &r : rows) {
        SetBuilder b(0, 2, r.type);
        b.add_shell(1, 1);
        SVLKXSE &e = b.rec(0, 0);
        e.E = r.E;
        e.sigtot = 2e-17;
        ASSERT_EQ(complete(b).code, 0);
        SCOPED_TRACE(testing::Message() << "type " << r.type << ", E " << r.E);
        expect_near_rel(e.gamma, r.gamma);
        expect_near_rel(e.beta2, r.beta2);
        expect_near_rel(e.Escal, r.Escal);
        expect_near_rel(e.WNorm, r.WNorm);
        expect_near_rel(e.scaled, 2e-17 * r.beta2);
    }
}

TEST(Complete, KinematicsAtRestAndOfOtherProjectiles) {
    SetBuilder rest(1, 2, VLKPROJ_ELECTRON);
    rest.add_shell(1, 1);
    rest.sdcs(rest.rec(0, 0), {1, 2}, {1e-18, 1e-18});
    ASSERT_EQ(complete(rest).code, 0);
    const SVLKXSE &e0 = rest.rec(0, 0);
    EXPECT_EQ(e0.gamma, 1.0);
    EXPECT_EQ(e0.beta2, 0.0);
    EXPECT_EQ(e0.Escal, -kInf);
    EXPECT_EQ(e0.WNorm, 0.0);
    EXPECT_EQ(e0.dv1[1], 2.0);  // WNorm 0: no rescaling

    // Types outside 3..5 move at the speed of light; gamma and WNorm stay,
    // and a WNorm that isn't 0 still rescales an ionisation grid.
    for (int32_t type : {2, 6, 1, 0, -1}) {
        SetBuilder b(1, 2, VLKPROJ_ELECTRON);
        b.set.proj.type = type;
        b.add_shell(1, 1);
        SVLKXSE &e = b.rec(0, 0);
        b.sdcs(e, {1, 3}, {1e-18, 1e-18});
        e.E = 50;
        e.gamma = 7;
        e.WNorm = 4;
        ASSERT_EQ(complete(b).code, 0) << type;
        EXPECT_EQ(e.gamma, 7.0);
        EXPECT_EQ(e.beta2, 1.0);
        EXPECT_EQ(e.Escal, 50.0);
        EXPECT_EQ(e.WNorm, 4.0);
        EXPECT_EQ(e.scaled, e.sigtot);
        EXPECT_EQ(e.dv1[1], 0.75);
    }
}

// km from the target's table only where it isn't positive; NaN stays.
TEST(Complete, BindingEnergyFromTheTargetTable) {
    const struct {
        int32_t shell;
        double km_in;
        bool from_table;
    } rows[] = {{3, 5.0, false}, {3, 0.0, true}, {3, -1.0, true}, {0, 0.0, true}, {2, kNaN, false}};
    for (const auto &r : rows) {
        SetBuilder b(0);
        b.add_shell(r.shell, 1);
        SVLKXSE &e = b.rec(0, 0);
        e.E = 10;
        e.sigtot = 1e-17;
        e.Ekin = 0.02;
        e.km = r.km_in;
        ASSERT_EQ(complete(b).code, 0);
        const double km = r.from_table ? b.set.targ.pShell[r.shell].Ebind : r.km_in;
        if (std::isnan(km)) {
            EXPECT_TRUE(std::isnan(e.km));
            continue;
        }
        EXPECT_EQ(e.km, km) << r.shell << " " << r.km_in;
        EXPECT_EQ(e.LET, (0.02 + km) * 1e-17 * kAvogadro / b.set.targ.M);
    }
}

TEST(Complete, ArrangementOfTheShells) {
    const struct {
        std::vector<int32_t> in, out;
    } rows[] = {
        {{0, 1, 2}, {2, 1, 0}},
        {{0, 1, 0, 2}, {0, 1, 2, 0}},
        {{1, 2}, {1, 2, 0}},
        {{1, 0}, {1, 0}},
        {{3}, {3}},
        {{0}, {0}},
        {{5, 4, 3}, {5, 4, 3, 0}},
    };
    for (const auto &r : rows) {
        SetBuilder b(0);
        for (int32_t n : r.in) b.add_shell(n, 1).pE[0].sigtot = 1;
        ASSERT_EQ(complete(b).code, 0);
        EXPECT_EQ(shell_numbers(b.set), r.out);
        // Only a created sum shell gets sums; one that was there keeps its own.
        const bool created = r.out.size() > r.in.size();
        EXPECT_EQ(b.set.pShell[b.set.nShell - 1].pE[0].sigtot, created ? static_cast<double>(r.in.size()) : 1.0);
    }
}

// Two shells of dim 0 with binding energies 10 and 20 keV from a table of
// our own: the sum record holds the sums and the weighted means.
TEST(Complete, TotalSumShell) {
    SVLKTARGSH table[] = {{5, 0, 0}, {10, 0, 0}, {20, 0, 0}};
    SetBuilder b(0);
    b.set.targ.pShell = table;
    b.set.targ.nShell = 2;
    b.add_shell(1, 2);
    b.add_shell(2, 2);
    const double sig[2] = {2, 3}, ekin[2] = {4, 6};
    for (int32_t i = 0; i < 2; ++i) {
        SVLKXSE &e = b.rec(i, 0);
        e.E = 100;
        e.sigtot = sig[i];
        e.Ekin = ekin[i];
        b.rec(i, 1).E = 200;  // all sigtot 0 in the second record
    }
    b.rec(0, 0).km = 7;  // from the source: the shell's LET uses it, the sum doesn't
    ASSERT_EQ(complete(b).code, 0);
    ASSERT_EQ(b.set.nShell, 3);
    const SVLKXSE &s = b.set.pShell[2].pE[0];
    EXPECT_EQ(s.E, 100);
    EXPECT_EQ(s.sigtot, 5);
    EXPECT_DOUBLE_EQ(s.km, 16);
    EXPECT_DOUBLE_EQ(s.Ekin, 5.2);
    EXPECT_EQ(b.rec(0, 0).km, 7);
    EXPECT_EQ(b.rec(0, 0).LET, (4 + 7) * 2 * kAvogadro / b.set.targ.M);
    EXPECT_EQ(s.LET, b.rec(0, 0).LET + b.rec(1, 0).LET);
    EXPECT_EQ(s.scaled, b.rec(0, 0).scaled + b.rec(1, 0).scaled);
    const SVLKXSE &zero = b.set.pShell[2].pE[1];
    EXPECT_EQ(zero.E, 200);
    EXPECT_EQ(zero.sigtot, 0);
    EXPECT_EQ(zero.km, 0);
    EXPECT_EQ(zero.Ekin, 0);
}

// Cumulated tables [0, 1, 3] and [0, 2, 4] on one grid: the sum shell holds
// [0, 3, 7] before and [0, 3/7, 1] after the normalisation.
TEST(Complete, SingleDifferentialSumShell) {
    SetBuilder b(1, 3);
    b.add_shell(1, 1);
    b.add_shell(2, 1);
    b.sdcs(b.rec(0, 0), {0, 1, 2}, {0, 2, 2});
    b.sdcs(b.rec(1, 0), {0, 1, 2}, {0, 4, 0});
    ASSERT_EQ(complete(b).code, 0);
    const SVLKXSE &a = b.rec(0, 0), &c = b.rec(1, 0), &s = b.set.pShell[2].pE[0];
    EXPECT_EQ(a.sigtot, 3);
    EXPECT_EQ(c.sigtot, 4);
    EXPECT_EQ(s.sigtot, 7);
    EXPECT_EQ(Row(a.dvCum1, a.dvCum1 + 3), (Row{0, 1.0 / 3, 1}));
    EXPECT_EQ(Row(c.dvCum1, c.dvCum1 + 3), (Row{0, 0.5, 1}));
    EXPECT_EQ(Row(s.dvCum1, s.dvCum1 + 3), (Row{0, 3 * (1.0 / 7), 1}));
    EXPECT_EQ(Row(s.dvSig1, s.dvSig1 + 3), (Row{0, 6, 2}));
    EXPECT_EQ(Row(s.dv1, s.dv1 + 3), (Row{0, 1, 2}));
    // Means: Ekin of each shell is its first moment, the sum's the weighted mean.
    EXPECT_DOUBLE_EQ(a.Ekin, (0.5 * 2 + 0.5 * (2 + 4)) / 3);
    EXPECT_DOUBLE_EQ(s.Ekin, (a.sigtot * a.Ekin + c.sigtot * c.Ekin) / 7);
    const double km = (3 * b.set.targ.pShell[1].Ebind + 4 * b.set.targ.pShell[2].Ebind) / 7;
    EXPECT_DOUBLE_EQ(s.km, km);
    // Every shell's km is its table row here, so the summed LET is also the
    // LET of the sum record's own means.
    expect_near_rel(s.LET, (s.Ekin + s.km) * s.sigtot * kAvogadro / b.set.targ.M, 1e-14);
    EXPECT_EQ(VLKXSIsValid(&b.set, VLKXS_MODE_QUIET).code, 0);
}

// Ionisation grids become fractions of WNorm after the integrals have been
// taken in keV; the sum shell takes the grid of its last summed shell.
TEST(Complete, IonisationGridsInUnitsOfWNorm) {
    SetBuilder b(1, 2);
    b.add_shell(1, 1);
    b.add_shell(2, 1);
    for (int32_t i = 0; i < 2; ++i) {
        b.rec(i, 0).E = 1000;
        b.sdcs(b.rec(i, 0), {0, 10 + 10.0 * i, 40}, {1, 1, 1});
    }
    ASSERT_EQ(complete(b).code, 0);
    const SVLKXSE &e = b.rec(0, 0), &s = b.set.pShell[2].pE[0];
    EXPECT_EQ(e.sigtot, 40);
    EXPECT_DOUBLE_EQ(e.Ekin, 20);
    expect_near_rel(e.dv1[2], 40 / 7913.90152);
    EXPECT_EQ(s.WNorm, e.WNorm);
    EXPECT_EQ(Row(s.dv1, s.dv1 + 3), Row(b.rec(1, 0).dv1, b.rec(1, 0).dv1 + 3));
}

struct Angles {
    const char *name;
    Row cosines, ddcs;
    double sdcs;  // expected dvSig1 of the point
};

// The factor 2 pi takes the sign of the direction of the first two points;
// a single angle stands for an isotropic distribution.
TEST(Complete, IntegralOverSolidAngle) {
    const Angles rows[] = {
        {"Ascending", {-1, 0, 1}, {1, 2, 1}, 3 * kTwoPi},
        {"Descending", {1, 0, -1}, {1, 2, 1}, 3 * kTwoPi},
        {"EqualFirstPoints", {1, 1, -1}, {1, 1, 1}, -2 * kTwoPi},
        {"OneAngle", {0.5}, {3}, 6 * kTwoPi},
    };
    for (const auto &r : rows) {
        SetBuilder b(2, 3);
        b.add_shell(1, 1);
        SVLKXSE &e = b.rec(0, 0);
        b.ddcs(e, {0}, {r.cosines}, {r.ddcs});  // no pdvCum2, no dvSig1: both made
        ASSERT_EQ(complete(b).code, 0) << r.name;
        EXPECT_DOUBLE_EQ(e.dvSig1[0], r.sdcs) << r.name;
        const int32_t n = e.nv2[0];
        EXPECT_EQ(e.pdvCum2[0][n - 1], r.sdcs > 0 ? 1.0 : r.sdcs) << r.name;  // normalised if positive
    }
}

TEST(Complete, DoubleDifferentialSumShell) {
    SetBuilder b(2, 3);
    b.add_shell(2, 1);
    b.add_shell(1, 1);
    b.ddcs(b.rec(0, 0), {1, 2}, {{-1, 1}, {-1, 0, 1}}, {{1, 1}, {1, 1, 1}});
    b.ddcs(b.rec(1, 0), {1, 2}, {{-1, 1}, {-1, 1}}, {{3, 3}, {2, 2}});  // smaller second row
    ASSERT_EQ(complete(b).code, 0);
    const SVLKXSE &s = b.set.pShell[2].pE[0];
    ASSERT_EQ(s.n1, 2);
    EXPECT_EQ(s.nv2[1], 3);
    EXPECT_DOUBLE_EQ(s.dvSig1[0], 2 * kTwoPi + 6 * kTwoPi);
    EXPECT_EQ(Row(s.pdvSig2[1], s.pdvSig2[1] + 3), (Row{3, 3, 1}));
    EXPECT_EQ(Row(s.pdv2[1], s.pdv2[1] + 3), (Row{-1, 1, 1}));  // the last shell's grid wins, element by element
    EXPECT_EQ(s.pdvCum2[0][1], 1.0);
    EXPECT_EQ(s.dvCum1[1], 1.0);
    // Rows of different grids are added all the same, element by element:
    // (0, 1, 2) and (0, 4) times 2 pi, normalised by the last element.
    EXPECT_EQ(Row(s.pdvCum2[1], s.pdvCum2[1] + 3), (Row{0, 2.5, 1}));
}

TEST(Complete, StopsInTheDoubleDifferentialTables) {
    SetBuilder b(2, 3);
    b.add_shell(1, 1);
    SVLKXSE &e = b.rec(0, 0);
    b.ddcs(e, {1, 2, 3, 4}, {{-1, 1}, {-1, 1}, {-1, 1}, {-1, 1}}, {{1, 1}, {1, 1}, {1, 1}, {}});
    e.sigtot = 123;
    b.hand_over();
    const SCMDSTATUS s = complete(b);
    EXPECT_EQ(s.code, 2);
    for (int32_t k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(e.pdvCum2[k][1], 2 * kTwoPi) << k;  // absolute
    EXPECT_EQ(e.pdvCum2[3], nullptr);
    EXPECT_EQ(e.sigtot, 123);
}

// Each exit with its code; the set is released cleanly afterwards (the
// builder frees it through VLKXSFree).
TEST(Complete, Failures) {
    const struct {
        const char *name;
        void (*build)(SetBuilder &);
        int32_t code;
        int32_t shells_after;
    } rows[] = {
        {"ShellAboveTable", [](SetBuilder &b) { b.add_shell(0, 1), b.add_shell(6, 1); }, 62, 2},
        {"NegativeShell", [](SetBuilder &b) { b.add_shell(0, 1), b.add_shell(-1, 1); }, 62, 2},
        {"NoTargetTable", [](SetBuilder &b) { b.add_shell(1, 1), b.set.targ.pShell = nullptr; }, 2, 1},
        {"UnsupportedDim", [](SetBuilder &b) { b.set.dim = 7, b.add_shell(1, 1); }, 21, 1},
        {"NoSdcs", [](SetBuilder &b) { b.add_shell(1, 1).pE[0].n1 = 2; }, 2, 1},
        {"LaterShellWithoutRecords", [](SetBuilder &b) { b.add_shell(1, 1), b.add_shell(2, 0, false), b.set.dim = 0; },
         2, 3},
        {"FirstShellRecordsMissing", [](SetBuilder &b) { b.add_shell(1, 1, false), b.add_shell(2, 0); }, 2, 2},
        {"MoreRecordsThanFirstShell", [](SetBuilder &b) { b.add_shell(1, 1), b.add_shell(2, 2), b.set.dim = 0; }, 2, 2},
        {"LargerGridThanFirstShell",
         [](SetBuilder &b) {
             b.sdcs(b.add_shell(1, 1).pE[0], {1, 2}, {1, 1});
             b.sdcs(b.add_shell(2, 1).pE[0], {1, 2, 3}, {1, 1, 1});
         },
         2, 2},
        {"MoreAnglesThanFirstShell",
         [](SetBuilder &b) {
             b.set.dim = 2;
             b.ddcs(b.add_shell(1, 1).pE[0], {1}, {{-1, 1}}, {{1, 1}});
             b.ddcs(b.add_shell(2, 1).pE[0], {1}, {{-1, 0, 1}}, {{1, 1, 1}});
         },
         2, 2},
    };
    for (const auto &r : rows) {
        SetBuilder b(1);
        r.build(b);
        vlktest::Capture cap(stderr);
        const SCMDSTATUS s = VLKXSComplete(b.hand_over(), VLKXS_MODE_QUIET);
        const std::string err = cap.finish();
        EXPECT_EQ(s.code, r.code) << r.name;
        EXPECT_EQ(s.level, VLKXS_LEVEL_ERROR) << r.name;
        EXPECT_EQ(s.item, nullptr);
        EXPECT_EQ(b.set.nShell, r.shells_after) << r.name;
        EXPECT_EQ(vlktest::count_lines(err, "<E> vlkxs(Complete): "), 1) << r.name << ": the quiet bit doesn't count";
    }
}

TEST(Complete, RefusalsChangeNothing) {
    SetBuilder b(0);
    b.add_shell(0, 1);
    b.add_shell(1, 1);
    b.add_shell(9, 1);
    EXPECT_EQ(complete(b).code, 62);
    EXPECT_EQ(shell_numbers(b.set), (std::vector<int32_t>{0, 1, 9}));
    EXPECT_EQ(b.rec(0, 0).beta2, 0.0);
}

TEST(Complete, EntryCases) {
    EXPECT_EQ(complete(nullptr).code, 2);
    SVLKXS fresh;
    VLKXSInit(&fresh, 0);
    EXPECT_EQ(complete(&fresh).code, 2);  // no shell array: also with nShell 0
    SetBuilder b(7);
    b.add_shell(1, 0);
    EXPECT_EQ(complete(b).code, 0);  // no record reached, dim never looked at
    b.set.nShell = 0;
    EXPECT_EQ(complete(b).code, 0);
    b.set.nShell = 1;  // for the release
}

// A second completion of a set that isn't an ionisation set gives the same
// values again, the sum shell now derived from its own tables.
TEST(Complete, SecondCompletionAgrees) {
    SetBuilder b(1, 3);
    b.add_shell(1, 1);
    b.add_shell(2, 1);
    for (int32_t i = 0; i < 2; ++i) {
        b.rec(i, 0).E = 1;
        b.sdcs(b.rec(i, 0), {0, 1, 2}, {1, 2.0 + i, 1});
    }
    ASSERT_EQ(complete(b).code, 0);
    const SVLKXSE first = b.set.pShell[2].pE[0];
    ASSERT_EQ(complete(b).code, 0);
    ASSERT_EQ(b.set.nShell, 3);
    const SVLKXSE &again = b.set.pShell[2].pE[0];
    for (auto [x, y] : {std::pair{first.sigtot, again.sigtot},
                        {first.Ekin, again.Ekin},
                        {first.km, again.km},
                        {first.LET, again.LET},
                        {first.beta2, again.beta2}})
        expect_near_rel(y, x, 1e-14);
}

// Real files: read, complete, validate, free.
TEST(Complete, FilesOfEachDimension) {
    const struct {
        const char *file;
        int32_t shells_after;
    } rows[] = {{"e.H2O.it.xs", 3}, {"e.H2O.is.xs", 2}, {"p.H2O.id.xs", 3}};
    for (const auto &r : rows) {
        SVLKXS set{};
        ASSERT_EQ(VLKXSRead(&set, vlktest::data_file(r.file).c_str(), VLKXS_MODE_QUIET).code, 0) << r.file;
        EXPECT_EQ(VLKXSIsValid(&set, VLKXS_MODE_QUIET).code, set.dim > 0 ? 55 : 0) << r.file;
        EXPECT_EQ(complete(&set).code, 0) << r.file;
        EXPECT_EQ(set.nShell, r.shells_after) << r.file;
        const SCMDSTATUS v = VLKXSIsValid(&set, VLKXS_MODE_QUIET);
        EXPECT_EQ(v.code, 0) << r.file << ": " << (v.item ? v.item : "");
        EXPECT_EQ(set.pShell[set.nShell - 1].shell, 0);
        EXPECT_EQ(VLKXSFree(&set, 0).code, 0);
    }
}

// A failed allocation anywhere in the completion gives code 1 and leaves a
// set that VLKXSFree releases without a leak.
TEST(Complete, AllocationFailures) {
    int failures = 0;
    for (long n = 1;; ++n) {
        SVLKXS set{};
        ASSERT_EQ(VLKXSRead(&set, vlktest::data_file("p.H2O.id.xs").c_str(), VLKXS_MODE_QUIET).code, 0);
        vlk::testhook::fail_alloc_after(n);
        const SCMDSTATUS s = complete(&set);
        vlk::testhook::fail_alloc_after(0);
        VLKXSFree(&set, 0);
        if (s.code == 0) break;
        ASSERT_EQ(s.code, 1) << n;
        ++failures;
    }
    EXPECT_GT(failures, 10);
}

}  // namespace
