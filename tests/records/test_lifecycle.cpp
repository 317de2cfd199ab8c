// Init, Free, Space, Enable and Disable on sets of every shape.  Run under
// AddressSanitizer, the Free tests also prove that no block leaks and none
// is released twice.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "vlkxs.h"

namespace {

template <class T>
T *blocks(int32_t n) {
    return static_cast<T *>(std::calloc(static_cast<std::size_t>(n), sizeof(T)));
}

// A dim 2 energy record with n1 points and nv2[k] = base + k; `cum` says
// whether the cumulated tables exist (a set after completion).
void fill_energy(SVLKXSE &e, int32_t n1, int32_t base, bool cum) {
    e.n1 = n1;
    e.dv1 = blocks<double>(n1);
    e.dvSig1 = blocks<double>(n1);
    if (cum) e.dvCum1 = blocks<double>(n1);
    e.nv2 = blocks<int32_t>(n1);
    e.pdv2 = blocks<double *>(n1);
    e.pdvSig2 = blocks<double *>(n1);
    if (cum) e.pdvCum2 = blocks<double *>(n1);
    for (int32_t k = 0; k < n1; ++k) {
        e.nv2[k] = base + k;
        e.pdv2[k] = blocks<double>(base + k);
        e.pdvSig2[k] = blocks<double>(base + k);
        if (cum) e.pdvCum2[k] = blocks<double>(base + k);
    }
}

// Three shells: a full one, one without records, one with a half-built
// record (rows missing, tables missing).
void build_ragged(SVLKXS &set) {
    VLKXSInit(&set, 0);
    set.dim = 2;
    set.infile = static_cast<char *>(std::malloc(8));
    std::strcpy(set.infile, "abc.xs");
    set.nShell = 3;
    set.pShell = blocks<SVLKXSSH>(3);
    set.pShell[0].nE = 2;
    set.pShell[0].pE = blocks<SVLKXSE>(2);
    fill_energy(set.pShell[0].pE[0], 2, 3, true);
    fill_energy(set.pShell[0].pE[1], 3, 1, false);
    set.pShell[1].nE = 4;  // count without records
    set.pShell[2].nE = 1;
    set.pShell[2].pE = blocks<SVLKXSE>(1);
    SVLKXSE &half = set.pShell[2].pE[0];
    half.n1 = 5;
    half.dv1 = blocks<double>(5);
    half.pdv2 = blocks<double *>(5);
    half.pdv2[1] = blocks<double>(2);
}

TEST(Lifecycle, InitTurnsRawStorageIntoAnEmptySet) {
    SVLKXS set;
    std::memset(&set, 0xff, sizeof set);
    const SCMDSTATUS s = VLKXSInit(&set, 0);
    EXPECT_EQ(s.code, 0);
    EXPECT_EQ(set.flag, 0u);
    EXPECT_EQ(set.space, 0u);
    EXPECT_EQ(set.IA, 0);
    EXPECT_EQ(set.dim, 0);
    EXPECT_EQ(set.infile, nullptr);
    EXPECT_EQ(set.IAtag, nullptr);
    EXPECT_EQ(set.nShell, 0);
    EXPECT_EQ(set.pShell, nullptr);
    EXPECT_EQ(set.proj.name, nullptr);
    EXPECT_EQ(set.targ.name, nullptr);
}

TEST(Lifecycle, NullSetIsBadAddressAndNotReported) {
    EXPECT_EQ(VLKXSInit(nullptr, 0).code, VLKXS_C_BADADDR);
    EXPECT_EQ(VLKXSFree(nullptr, 0).code, VLKXS_C_BADADDR);
}

TEST(Lifecycle, FreeWalksEveryDepthOfARaggedSet) {
    SVLKXS set;
    build_ragged(set);
    ASSERT_EQ(VLKProjFromStr(&set.proj, "p", 0).code, 0);
    ASSERT_EQ(VLKTargImportMaterial(&set.targ, "H2O", 0).code, 0);
    set.flag = VLKXS_FLAG_READY | VLKXS_FLAG_ENABLED;
    const SCMDSTATUS s = VLKXSFree(&set, 0);
    EXPECT_EQ(s.code, 0);
    EXPECT_EQ(set.pShell, nullptr);
    EXPECT_EQ(set.nShell, 0);
    EXPECT_EQ(set.infile, nullptr);
    EXPECT_EQ(set.flag, 0u);
    EXPECT_EQ(set.dim, 0);
    EXPECT_EQ(set.proj.name, nullptr);
    // A second Free releases nothing more.
    EXPECT_EQ(VLKXSFree(&set, 0).code, 0);
}

TEST(Lifecycle, FreeReleasesShellArrayWithoutCount) {
    SVLKXS set;
    VLKXSInit(&set, 0);
    set.pShell = blocks<SVLKXSSH>(2);
    set.nShell = 0;
    EXPECT_EQ(VLKXSFree(&set, 0).code, 0);
    set.pShell = blocks<SVLKXSSH>(1);
    set.nShell = -3;
    EXPECT_EQ(VLKXSFree(&set, 0).code, 0);
    EXPECT_EQ(set.pShell, nullptr);
}

TEST(Lifecycle, FreeOfShallowSetLeavesTheSourceAlone) {
    SVLKXS source;
    build_ragged(source);
    ASSERT_EQ(VLKProjFromStr(&source.proj, "e", 0).code, 0);
    SVLKXS borrowed;
    std::memcpy(&borrowed, &source, sizeof borrowed);
    borrowed.flag = VLKXS_FLAG_SHALLOW | VLKXS_FLAG_ENABLED;
    borrowed.proj.own = 0;  // a shallow companion owns nothing
    EXPECT_EQ(VLKXSFree(&borrowed, 0).code, 0);
    EXPECT_EQ(borrowed.flag, 0u);
    EXPECT_EQ(borrowed.pShell, nullptr);
    // The source still has everything, and can still be released once.
    ASSERT_NE(source.pShell, nullptr);
    EXPECT_EQ(source.pShell[0].pE[0].nv2[1], 4);
    EXPECT_STREQ(source.infile, "abc.xs");
    EXPECT_STREQ(source.proj.symbol, "e");
    EXPECT_EQ(VLKXSFree(&source, 0).code, 0);
}

class SpaceTest : public ::testing::Test {
protected:
    void SetUp() override {
        VLKXSInit(&set, 0);
        ASSERT_EQ(VLKXSSpace(&set, 0).code, 0);
        empty = set.space;
    }
    void TearDown() override { VLKXSFree(&set, 0); }
    SVLKXS set;
    uint32_t empty = 0;
};

TEST_F(SpaceTest, EmptySetCountsRecordAndCompanions) {
    SVLKXS probe;
    VLKXSInit(&probe, 0);
    VLKProjSpace(&probe.proj, 0);
    VLKTargSpace(&probe.targ, 0);
    EXPECT_EQ(empty, sizeof(SVLKXS) + probe.proj.space - sizeof(SVLKPROJ) + probe.targ.space - sizeof(SVLKTARG));
    VLKXSFree(&probe, 0);
}

TEST_F(SpaceTest, CompanionsCountTheirOwnBlocks) {
    ASSERT_EQ(VLKProjFromStr(&set.proj, "e", 0).code, 0);
    ASSERT_EQ(VLKTargImportMaterial(&set.targ, "H2O", 0).code, 0);
    VLKXSSpace(&set, 0);
    VLKProjSpace(&set.proj, 0);
    VLKTargSpace(&set.targ, 0);
    EXPECT_EQ(set.space, sizeof(SVLKXS) + set.proj.space - sizeof(SVLKPROJ) + set.targ.space - sizeof(SVLKTARG));
    EXPECT_GT(set.space, empty);
}

TEST_F(SpaceTest, InfileOfSevenCharactersAddsEight) {
    set.infile = static_cast<char *>(std::malloc(8));
    std::strcpy(set.infile, "1234567");
    VLKXSSpace(&set, 0);
    EXPECT_EQ(set.space, empty + 8);
}

TEST_F(SpaceTest, ShellWithoutRecordsAddsOnlyItsRecord) {
    set.nShell = 2;
    set.pShell = blocks<SVLKXSSH>(2);
    set.pShell[0].nE = 3;  // pE null
    set.pShell[1].nE = 0;
    set.pShell[1].pE = blocks<SVLKXSE>(1);
    VLKXSSpace(&set, 0);
    EXPECT_EQ(set.space, empty + 2 * sizeof(SVLKXSSH));
}

TEST_F(SpaceTest, DoubleDifferentialRecordCountsRowsByContent) {
    set.nShell = 1;
    set.pShell = blocks<SVLKXSSH>(1);
    set.pShell[0].nE = 1;
    set.pShell[0].pE = blocks<SVLKXSE>(1);
    fill_energy(set.pShell[0].pE[0], 2, 3, true);  // nv2 = 3, 4
    VLKXSSpace(&set, 0);
    EXPECT_EQ(set.space, empty + sizeof(SVLKXSSH) + sizeof(SVLKXSE) + 27 * sizeof(double) + 2 * sizeof(int32_t));
}

TEST_F(SpaceTest, MissingTablesAndRowsCountNothing) {
    set.nShell = 1;
    set.pShell = blocks<SVLKXSSH>(1);
    set.pShell[0].nE = 1;
    set.pShell[0].pE = blocks<SVLKXSE>(1);
    fill_energy(set.pShell[0].pE[0], 2, 3, false);  // no dvCum1, no pdvCum2
    std::free(set.pShell[0].pE[0].pdvSig2[1]);
    set.pShell[0].pE[0].pdvSig2[1] = nullptr;
    VLKXSSpace(&set, 0);
    // dv1, dvSig1: 4 doubles; nv2: 2 ints; pdv2 rows 3 + 4; pdvSig2 row 3.
    EXPECT_EQ(set.space, empty + sizeof(SVLKXSSH) + sizeof(SVLKXSE) + 14 * sizeof(double) + 2 * sizeof(int32_t));
}

TEST(Lifecycle, EnableAndDisableMoveOneBit) {
    struct Row {
        uint32_t before;
        bool enable;
        uint32_t after;
    };
    const Row rows[] = {{0, true, 2}, {5, true, 7}, {2, true, 2}, {3, false, 1}, {1, false, 1}, {0xffffffffu, false, 0xfffffffdu}};
    for (const Row &r : rows) {
        SVLKXS set;
        VLKXSInit(&set, 0);
        set.flag = r.before;
        const SCMDSTATUS s = r.enable ? VLKXSEnable(&set, 0) : VLKXSDisable(&set, 0);
        EXPECT_EQ(s.code, 0);
        EXPECT_EQ(set.flag, r.after) << r.before;
        set.flag = 0;
        VLKXSFree(&set, 0);
    }
}

}  // namespace
