// Validation: each check with its code and location, their order, what
// passes; the grid test of each shell.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <string>

#include "capture.hpp"
#include "sets.hpp"

namespace {

using vlktest::Row;
using vlktest::SetBuilder;
using Set = SetBuilder;
constexpr int32_t kQuiet = VLKXS_MODE_QUIET;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// Two shells of two records of two points with 3 and 2 angles; a cumulated
// row need not start at 0.
std::unique_ptr<SetBuilder> valid_set(int32_t dim = 2) {
    auto b = std::make_unique<SetBuilder>(dim);
    for (int32_t number : {1, 2}) {
        b->add_shell(number, 2);
        for (int32_t j = 0; j < 2; ++j) {
            SVLKXSE &e = b->rec(number - 1, j);
            e.E = 100.0 * (j + 1);
            e.sigtot = 1e-17;
            b->ddcs(e, {1, 2}, {{-1, 0, 1}, {-1, 1}}, {{1, 2, 1}, {3, 3}}, {{0, 0.5, 1}, {0.2, 1}}, {4, 5});
            e.dvCum1 = b->doubles({0.25, 1});
        }
    }
    return b;
}

// Quiet: not reported, no message text; the location text has no length.
TEST(IsValid, EachFaultWithCodeAndLocation) {
    const struct { const char *name; std::function<void(Set &)> apply; int32_t code; const char *where; } faults[] = {
        {"NoProjectile", [](Set &b) { b.set.proj.name = nullptr; }, 5, nullptr},
        {"NoTarget", [](Set &b) { b.set.targ.name = nullptr; }, 6, nullptr},
        {"NoShells", [](Set &b) { b.set.nShell = 0; }, 7, nullptr},
        {"NegativeShellCount", [](Set &b) { b.set.nShell = -1; }, 7, nullptr},
        {"NullShells", [](Set &b) { b.set.pShell = nullptr; }, 7, nullptr},
        {"NoRecords", [](Set &b) { b.set.pShell[1].nE = 0; }, 8, "Shell[1]"},
        {"NullRecords", [](Set &b) { b.set.pShell[1].pE = nullptr; }, 8, "Shell[1]"},
        {"NegativeEnergy", [](Set &b) { b.rec(0, 1).E = -1; }, 9, "Shell[0].E[1].E=-1"},
        {"EnergyBeforeSigma", [](Set &b) { b.rec(0, 1).E = -1, b.rec(0, 1).sigtot = -1; }, 9, "Shell[0].E[1].E=-1"},
        {"NegativeSigma", [](Set &b) { b.rec(0, 1).sigtot = -1e-20; }, 10, "Shell[0].E[1].SigTot=-1E-20"},
        {"NoGrid", [](Set &b) { b.rec(1, 0).dv1 = nullptr; }, 55, "Shell[1].E[0]"},
        {"NoSdcs", [](Set &b) { b.rec(1, 0).dvSig1 = nullptr; }, 55, "Shell[1].E[0]"},
        {"NoCumulation", [](Set &b) { b.rec(1, 0).dvCum1 = nullptr; }, 55, "Shell[1].E[0]"},
        {"EmptyRecordWithoutArrays", [](Set &b) { b.rec(0, 0).n1 = 0, b.rec(0, 0).dvCum1 = nullptr; }, 55,
         "Shell[0].E[0]"},
        {"NegativeSdcs", [](Set &b) { b.rec(0, 0).dvSig1[1] = -2; }, 56, "Shell[0].E[0].Sig1[1]=-2"},
        {"CumulationAboveOne", [](Set &b) { b.rec(0, 0).dvCum1[1] = 1.5; }, 57, "Shell[0].E[0].Cum1[1]=1.5"},
        {"CumulationInfinite", [](Set &b) { b.rec(0, 0).dvCum1[1] = kInf; }, 57, "Shell[0].E[0].Cum1[1]=INF"},
        {"CumulationBelowZeroAtStart", [](Set &b) { b.rec(0, 0).dvCum1[0] = -0.1; }, 57,
         "Shell[0].E[0].Cum1[0]=-0.1"},
        {"CumulationFalls", [](Set &b) { b.rec(0, 0).dvCum1[0] = 0.6, b.rec(0, 0).dvCum1[1] = 0.5; }, 57,
         "Shell[0].E[0].Cum1[1]=0.5 0.6"},
        {"NoDdcsGrids", [](Set &b) { b.rec(0, 1).pdv2 = nullptr; }, 58, "Shell[0].E[1]"},
        {"NoDdcs", [](Set &b) { b.rec(0, 1).pdvSig2 = nullptr; }, 58, "Shell[0].E[1]"},
        {"NoDdcsCumulation", [](Set &b) { b.rec(0, 1).pdvCum2 = nullptr; }, 58, "Shell[0].E[1]"},
        {"NoAngleCounts", [](Set &b) { b.rec(0, 1).nv2 = nullptr; }, 58, "Shell[0].E[1]"},
        {"NoGridRow", [](Set &b) { b.rec(0, 0).pdv2[1] = nullptr; }, 58, "Shell[0].E[0].d2[1]"},
        {"GridRowFirst", [](Set &b) { b.rec(0, 0).pdv2[0] = b.rec(0, 0).pdvSig2[0] = b.rec(0, 0).pdvCum2[0] = {}; },
         58, "Shell[0].E[0].d2[0]"},
        {"NoDdcsRow", [](Set &b) { b.rec(0, 0).pdvSig2[0] = nullptr; }, 58, "Shell[0].E[0].Sig2[0]"},
        {"NoCumulationRow", [](Set &b) { b.rec(0, 0).pdvCum2[0] = nullptr; }, 58, "Shell[0].E[0].Cum2[0]"},
        {"NegativeDdcs", [](Set &b) { b.rec(0, 0).pdvSig2[1][0] = -3; }, 59, "Shell[0].E[0].Sig2[1][0]=-3"},
        {"DdcsCumulationRange", [](Set &b) { b.rec(0, 0).pdvCum2[0][1] = 1.25; }, 60,
         "Shell[0].E[0].Cum2[0][1]=1.25"},
        {"DdcsCumulationFalls", [](Set &b) { b.rec(0, 0).pdvCum2[1][0] = 0.7, b.rec(0, 0).pdvCum2[1][1] = 0.2; },
         60, "Shell[0].E[0].Cum2[1][1]=0.2 0.7"},
        // Order: point by point, record by record.
        {"SecondLevelOfPointFirst", [](Set &b) { b.rec(0, 0).dvSig1[1] = -1, b.rec(0, 0).pdvSig2[0][0] = -1; },
         59, "Shell[0].E[0].Sig2[0][0]=-1"},
        {"EarlierShellFirst", [](Set &b) { b.rec(1, 0).E = -1, b.rec(0, 1).dvSig1[0] = -1; }, 56,
         "Shell[0].E[1].Sig1[0]=-1"},
        // Bounds, NaNs, infinities, and what isn't looked at.
        {"ZeroBounds", [](Set &b) { b.rec(0, 0).E = b.rec(0, 0).sigtot = b.rec(0, 0).dvCum1[0] = 0; }, 0, nullptr},
        {"FlatCumulation", [](Set &b) { b.rec(0, 0).dvCum1[0] = 0.5, b.rec(0, 0).dvCum1[1] = 0.5; }, 0, nullptr},
        {"NaNsPass",
         [](Set &b) {
             SVLKXSE &e = b.rec(0, 0);
             e.E = e.sigtot = e.dvSig1[0] = e.pdvSig2[0][0] = kNaN;
             e.pdvCum2[0][0] = 0.9, e.pdvCum2[0][1] = kNaN, e.pdvCum2[0][2] = 0.1;
         },
         0, nullptr},
        {"InfiniteEnergyAndSigma", [](Set &b) { b.rec(0, 0).E = b.rec(0, 0).sigtot = kInf; }, 0, nullptr},
        {"EmptyRecordWithArrays", [](Set &b) { b.rec(0, 0).n1 = 0; }, 0, nullptr},
        {"PointWithoutAngles", [](Set &b) { b.rec(0, 0).nv2[0] = 0, b.rec(0, 0).pdvSig2[0][0] = -1; }, 0, nullptr},
        {"GridsAreNotLookedAt", [](Set &b) { b.rec(0, 0).dv1[0] = -5, b.rec(0, 0).pdv2[0][2] = kNaN; }, 0, nullptr},
        // The dimension decides the tables.
        {"Dim0", [](Set &b) { b.set.dim = 0, b.rec(0, 0).dvCum1 = nullptr, b.rec(0, 0).pdv2 = nullptr; }, 0, nullptr},
        {"DimMinus1", [](Set &b) { b.set.dim = -1, b.rec(0, 0).dvCum1[1] = 2; }, 0, nullptr},
        {"Dim1", [](Set &b) { b.set.dim = 1, b.rec(0, 0).dvCum1[1] = 2; }, 57, "Shell[0].E[0].Cum1[1]=2"},
        {"Dim1WithoutSecondLevel", [](Set &b) { b.set.dim = 1, b.rec(0, 0).pdvCum2 = nullptr; }, 0, nullptr},
        {"Dim3", [](Set &b) { b.set.dim = 3, b.rec(0, 0).pdvCum2 = nullptr; }, 58, "Shell[0].E[0]"},
    };
    for (const auto &f : faults) {
        auto b = valid_set();
        f.apply(*b);
        const SCMDSTATUS s = VLKXSIsValid(&b->set, kQuiet);
        EXPECT_EQ(s.code, f.code) << f.name;
        EXPECT_TRUE(s.level == (f.code == 0 ? 0u : VLKXS_LEVEL_ERROR) && s.msg == nullptr && s.itemlen == 0) << f.name;
        EXPECT_STREQ(s.origin, "vlkxs(IsValid)");
        EXPECT_STREQ(s.item, f.where) << f.name;
    }
    const SCMDSTATUS null = VLKXSIsValid(nullptr, kQuiet);
    EXPECT_TRUE(null.code == 2 && null.item == nullptr);
    // Without the quiet bit: reported once, with the location, kept in item.
    auto b = valid_set();
    b->rec(0, 1).sigtot = -1e-20;
    vlktest::Capture cap(stderr);
    const SCMDSTATUS s = VLKXSIsValid(&b->set, 0);
    const std::string err = cap.finish();
    EXPECT_EQ(vlktest::count_lines(err, "<E> vlkxs(IsValid): bad total cross section (code 10)"), 1) << err;
    EXPECT_NE(err.find("Shell[0].E[1].SigTot=-1E-20"), std::string::npos) << err;
    EXPECT_STREQ(s.msg, "bad total cross section");
    EXPECT_STREQ(s.item, "Shell[0].E[1].SigTot=-1E-20");
}

// Each shell's bit from its grids, compared exactly (empty row: no dv1); no
// records: no; other bits stay; `limit` unused.  Failures reported.
TEST(IsEquivW, GridsComparedExactly) {
    const std::pair<std::vector<Row>, bool> rows[] = {
        {{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}, true}, {{{7}}, true},           {{{1, 2, 3}, {1, 2, 3}, {1, 2}}, false},
        {{{1, 2, 3}, {1, 2, 4}}, false},           {{{0.0, 1}, {-0.0, 1}}, true}, {{{kNaN, 1}, {kNaN, 1}}, false},
        {{{}, {}}, false},                         {{{1, 2}, {}}, false}};
    SetBuilder b(1);
    for (const auto &[grids, equivalent] : rows) {
        SVLKXSSH &sh = b.add_shell(1, static_cast<int32_t>(grids.size()));
        sh.flag = VLKXS_SHFLAG_EQUIVW | 8u;
        for (std::size_t j = 0; j < grids.size(); ++j) {
            b.sdcs(sh.pE[j], grids[j], {});
            if (grids[j].empty()) sh.pE[j].n1 = 2;
        }
    }
    b.add_shell(9, 2, false).flag = VLKXS_SHFLAG_EQUIVW;
    for (const double limit : {0.0, 1e300}) {
        ASSERT_EQ(VLKXSIsEquivW(&b.set, limit, 0).code, 0);
        for (std::size_t i = 0; i < std::size(rows); ++i)
            EXPECT_EQ(b.set.pShell[i].flag, rows[i].second ? (VLKXS_SHFLAG_EQUIVW | 8u) : 8u) << "row " << i;
        EXPECT_EQ(b.set.pShell[std::size(rows)].flag, 0u);
    }
    b.rec(0, 2).dv1[1] = 3;
    ASSERT_EQ(VLKXSIsEquivW(&b.set, 0.0, 0).code, 0);
    EXPECT_EQ(b.set.pShell[0].flag, 8u) << "a changed grid clears the bit";
    vlktest::Capture cap(stderr);
    SetBuilder none(1);
    const SCMDSTATUS s = VLKXSIsEquivW(&none.set, 0.0, 0);
    EXPECT_TRUE(s.code == 7 && s.level == VLKXS_LEVEL_ERROR && VLKXSIsEquivW(&none.set, 0.0, kQuiet).code == 7);
    EXPECT_TRUE(VLKXSIsEquivW(nullptr, 0.0, 0).code == 2 && VLKXSIsEquivW(nullptr, 0.0, kQuiet).code == 2);
    const std::string err = cap.finish();
    EXPECT_EQ(vlktest::count_lines(err, "<E> vlkxs(IsEquivW): bad address (code 2)"), 1) << err;
    EXPECT_EQ(vlktest::count_lines(err, "<E> vlkxs(IsEquivW): bad number of shells (code 7)"), 1) << err;
}

}  // namespace
