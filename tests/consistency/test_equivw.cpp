// Shared first-level grids: the equivW bit of each shell, exact comparison,
// and the two failures.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "capture.hpp"
#include "sets.hpp"

namespace {

using vlktest::Row;
using vlktest::SetBuilder;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = 1.7976931348623157e308;

struct Grids {
    const char *name;
    std::vector<Row> grids;  // one grid a record; an empty row: no dv1
    bool equivalent;
};

const Grids kGrids[] = {
    {"ThreeEqualGrids", {{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}, true},
    {"OneRecord", {{7}}, true},
    {"DifferentCounts", {{1, 2, 3}, {1, 2, 3}, {1, 2}}, false},
    {"LastPointDiffers", {{1, 2, 3}, {1, 2, 4}}, false},
    {"SignedZerosAreEqual", {{0.0, 1}, {-0.0, 1}}, true},
    {"NaNEqualsNothing", {{kNaN, 1}, {kNaN, 1}}, false},
    {"FirstWithoutGrid", {{}, {}}, false},
    {"LaterWithoutGrid", {{1, 2}, {}}, false},
};

class GridCases : public ::testing::TestWithParam<Grids> {};

TEST_P(GridCases, SetsTheBit) {
    SetBuilder b(1);
    const auto &grids = GetParam().grids;
    b.add_shell(1, static_cast<int32_t>(grids.size()));
    for (std::size_t j = 0; j < grids.size(); ++j) {
        SVLKXSE &e = b.rec(0, static_cast<int32_t>(j));
        b.sdcs(e, grids[j], {});
        if (grids[j].empty()) e.n1 = 2;  // points, but no grid
    }
    b.set.pShell[0].flag = VLKXS_SHFLAG_EQUIVW | 8u;  // the old bit is recomputed, others stay
    ASSERT_EQ(VLKXSIsEquivW(&b.set, kMax, 0).code, 0);
    EXPECT_EQ(b.set.pShell[0].flag, GetParam().equivalent ? (VLKXS_SHFLAG_EQUIVW | 8u) : 8u);
}

INSTANTIATE_TEST_SUITE_P(IsEquivW, GridCases, ::testing::ValuesIn(kGrids),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(IsEquivW, ShellsAnsweredOneByOne) {
    SetBuilder b(1);
    b.add_shell(1, 2);
    b.add_shell(2, 2);
    b.add_shell(3, 1);
    b.add_shell(4, 2);
    for (int32_t j = 0; j < 2; ++j) {
        b.sdcs(b.rec(0, j), {1, 2}, {1, 1});
        b.sdcs(b.rec(1, j), {1, 2.0 + j}, {1, 1});
    }
    b.set.pShell[3].pE = nullptr;  // no records at all, whatever nE says
    // limit has no effect: 0 gives what the largest double gives.
    ASSERT_EQ(VLKXSIsEquivW(&b.set, 0.0, 0).code, 0);
    EXPECT_EQ(b.set.pShell[0].flag, VLKXS_SHFLAG_EQUIVW);
    EXPECT_EQ(b.set.pShell[1].flag, 0u);
    EXPECT_EQ(b.set.pShell[2].flag, 0u);  // dim 0 record: no dv1
    EXPECT_EQ(b.set.pShell[3].flag, 0u);

    // A changed grid clears the bit on the next run.
    b.rec(0, 1).dv1[1] = 3;
    ASSERT_EQ(VLKXSIsEquivW(&b.set, kMax, 0).code, 0);
    EXPECT_EQ(b.set.pShell[0].flag, 0u);
}

TEST(IsEquivW, Failures) {
    vlktest::Capture cap(stderr);
    EXPECT_EQ(VLKXSIsEquivW(nullptr, kMax, 0).code, 2);
    SetBuilder b(1);
    const SCMDSTATUS s = VLKXSIsEquivW(&b.set, kMax, 0);
    EXPECT_EQ(s.code, 7);
    EXPECT_EQ(s.level, VLKXS_LEVEL_ERROR);
    EXPECT_EQ(VLKXSIsEquivW(&b.set, kMax, VLKXS_MODE_QUIET).code, 7);
    const std::string err = cap.finish();
    EXPECT_EQ(vlktest::count_lines(err, "<E> vlkxs(IsEquivW): bad address (code 2)"), 1) << err;
    EXPECT_EQ(vlktest::count_lines(err, "<E> vlkxs(IsEquivW): bad number of shells (code 7)"), 1) << err;
}

}  // namespace
