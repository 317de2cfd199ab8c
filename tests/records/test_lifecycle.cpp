// Init, Free, Space, Enable and Disable on sets of every shape.  Run under
// AddressSanitizer, the Free tests also prove that no block leaks and none
// is released twice.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>

#include "sets.hpp"

namespace {

using vlktest::Row;
using vlktest::SetBuilder;
using Rows = std::vector<Row>;

// A dim 2 record of two points with 3 and 4 angles; `cum` adds the
// cumulated tables of a completed set.
void dd_record(SetBuilder &b, SVLKXSE &e, bool cum) {
    b.ddcs(e, {1, 2}, {Row(3), Row(4)}, {Row(3), Row(4)}, cum ? Rows{Row(3), Row(4)} : Rows{}, Row(2));
    if (cum) e.dvCum1 = b.doubles(Row(2));
}

// Three shells: a full one, one with a count but no records, one with a
// half-built record (rows and tables missing); owned companions and path.
SVLKXS &ragged(SetBuilder &b) {
    b.add_shell(1, 2);
    b.add_shell(2, 4, false);
    b.add_shell(3, 1);
    dd_record(b, b.rec(0, 0), true);
    dd_record(b, b.rec(0, 1), false);
    SVLKXSE &half = b.rec(2, 0);
    half.n1 = 5;
    half.dv1 = b.doubles(Row(5));
    half.pdv2 = b.rows(5);
    half.pdv2[1] = b.doubles(Row(2));
    SVLKXS &set = *b.hand_over();
    set.infile = strdup("abc.xs");
    EXPECT_TRUE(VLKProjFromStr(&set.proj, "p", 0).code == 0 && VLKTargImportMaterial(&set.targ, "H2O", 0).code == 0);
    return set;
}

TEST(Lifecycle, InitTurnsRawStorageIntoAnEmptySet) {
    SVLKXS set;
    std::memset(&set, 0xff, sizeof set);
    EXPECT_EQ(VLKXSInit(&set, 0).code, 0);
    EXPECT_TRUE(set.flag == 0 && set.space == 0 && set.IA == 0 && set.dim == 0 && set.dimmask == 0);
    EXPECT_TRUE(set.infile == nullptr && set.IAtag == nullptr && set.dimtag == nullptr && set.coltag == nullptr);
    EXPECT_TRUE(set.nShell == 0 && set.pShell == nullptr);
    EXPECT_TRUE(set.proj.name == nullptr && set.targ.name == nullptr && set.targ.pShell == nullptr);
}

TEST(Lifecycle, FreeWalksEveryDepthOfARaggedSet) {
    SetBuilder b(2);
    SVLKXS &set = ragged(b);
    set.flag = VLKXS_FLAG_READY | VLKXS_FLAG_ENABLED;
    EXPECT_EQ(VLKXSFree(&set, 0).code, 0);
    EXPECT_TRUE(set.pShell == nullptr && set.nShell == 0 && set.infile == nullptr);
    EXPECT_TRUE(set.flag == 0 && set.dim == 0 && set.proj.name == nullptr && set.targ.name == nullptr);
    EXPECT_EQ(VLKXSFree(&set, 0).code, 0) << "a second Free releases nothing more";
}

TEST(Lifecycle, FreeReleasesShellArrayWithoutCount) {
    for (const int32_t count : {0, -3}) {
        SVLKXS set;
        VLKXSInit(&set, 0);
        set.pShell = static_cast<SVLKXSSH *>(std::calloc(2, sizeof(SVLKXSSH)));
        set.nShell = count;
        EXPECT_EQ(VLKXSFree(&set, 0).code, 0);
        EXPECT_EQ(set.pShell, nullptr);
    }
}

// A shallow set (and its companions) releases nothing; the source keeps
// everything, and the builder releases it once.
TEST(Lifecycle, FreeOfShallowSetLeavesTheSourceAlone) {
    SetBuilder b(2);
    SVLKXS &source = ragged(b);
    SVLKXS borrowed = source;
    borrowed.flag = VLKXS_FLAG_SHALLOW | VLKXS_FLAG_ENABLED;
    borrowed.proj.own = borrowed.targ.own = 0;
    EXPECT_EQ(VLKXSFree(&borrowed, 0).code, 0);
    EXPECT_TRUE(borrowed.flag == 0 && borrowed.pShell == nullptr);
    ASSERT_NE(source.pShell, nullptr);
    EXPECT_EQ(source.pShell[0].pE[0].nv2[1], 4);
    EXPECT_STREQ(source.infile, "abc.xs");
    EXPECT_STREQ(source.proj.symbol, "p");
    EXPECT_STREQ(source.targ.name, "H2O");
}

// The space of a set is its record, the companions' texts with their 0
// byte and shell rows (the builder's test electron in water, borrowed, or
// none), and the tree: shell and energy records and the arrays present,
// rows by their counts.
TEST(Lifecycle, SpaceCountsWhatIsThere) {
    static char infile[] = "1234567";
    const std::size_t companions = sizeof "electron" + sizeof "e" + sizeof "H2O" + 6 * sizeof(SVLKTARGSH);
    const struct { const char *what; std::function<void(SetBuilder &)> build; std::size_t extra; } rows[] = {
        {"initialised companions", [](SetBuilder &b) { VLKProjInit(&b.set.proj, 0), VLKTargInit(&b.set.targ, 0); }, 0},
        {"test companions", [](SetBuilder &) {}, companions},
        {"owned companions",
         [](SetBuilder &b) { VLKProjFromStr(&b.set.proj, "alpha", 0), VLKTargImportMaterial(&b.set.targ, "N2", 0); },
         sizeof "alpha particle" + sizeof "alpha" + sizeof "N2" + 7 * sizeof(SVLKTARGSH)},
        {"infile", [](SetBuilder &b) { b.set.infile = infile; }, companions + 8},
        {"shells without records", [](SetBuilder &b) { b.add_shell(1, 3, false), b.add_shell(2, 0); },
         companions + 2 * sizeof(SVLKXSSH)},
        {"full record", [](SetBuilder &b) { dd_record(b, b.add_shell(1, 1).pE[0], true); },
         companions + sizeof(SVLKXSSH) + sizeof(SVLKXSE) + 27 * sizeof(double) + 2 * sizeof(int32_t)},
        // dv1, dvSig1: 4 doubles; pdv2 rows 3 + 4; pdvSig2 row 3.
        {"missing tables and a row",
         [](SetBuilder &b) {
             SVLKXSE &e = b.add_shell(1, 1).pE[0];
             dd_record(b, e, false);
             std::free(e.pdvSig2[1]);
             e.pdvSig2[1] = nullptr;
         },
         companions + sizeof(SVLKXSSH) + sizeof(SVLKXSE) + 14 * sizeof(double) + 2 * sizeof(int32_t)},
    };
    for (const auto &r : rows) {
        SetBuilder b(2);
        b.hand_over();
        r.build(b);
        EXPECT_EQ(VLKXSSpace(&b.set, 0).code, 0);
        EXPECT_EQ(b.set.space, sizeof(SVLKXS) + r.extra) << r.what;
        b.set.infile = nullptr;
    }
}

TEST(Lifecycle, EnableAndDisableMoveOneBit) {
    const struct { uint32_t before; bool enable; uint32_t after; } rows[] = {
        {0, true, 2}, {5, true, 7}, {2, true, 2}, {3, false, 1}, {1, false, 1}, {0xffffffffu, false, 0xfffffffdu}};
    for (const auto &r : rows) {
        SVLKXS set;
        VLKXSInit(&set, 0);
        set.flag = r.before;
        EXPECT_EQ((r.enable ? VLKXSEnable(&set, 0) : VLKXSDisable(&set, 0)).code, 0);
        EXPECT_EQ(set.flag, r.after) << r.before;
        set.flag = 0;
        VLKXSFree(&set, 0);
    }
}

}  // namespace
