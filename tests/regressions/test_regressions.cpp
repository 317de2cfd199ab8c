// One test for each defect that was found and fixed, named after what it
// keeps fixed.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "companions/filemem.hpp"
#include "core/alloc.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

const std::string kHead = "!filetype xs i,s\n!fileversion 20080825\n!target H2O\n!projectile e\n";

// A failed read used to copy its offending line into a growing string; when
// that allocation failed, the code became 1 and `text` pointed into the
// released file image.  Whatever allocation fails now, the result is either
// that failure (1) or the file's own fault with its line intact.
TEST(Regression, FailedReadUnderMemoryPressureKeepsItsLineAndCode) {
    vlktest::TempDir dir;
    const std::string bad = "0.5 " + std::string(600, '7');  // one number: too few data
    const std::string path = dir.write("bad.xs", kHead + "!shell 1\n!eproj 1\n0.1 2 0\n" + bad + "\n");
    int own_fault = 0;
    for (long n = 1;; ++n) {
        vlk::testhook::fail_alloc_after(n);
        SVLKXS set;
        const SCMDSTATUS s = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
        const long allocations = vlk::testhook::fail_alloc_after(0);
        EXPECT_EQ(set.pShell, nullptr);
        // The companions turn their own failed allocations into refusals.
        if (s.code == VLKXS_C_RUNTIME || s.code == VLKXS_C_R_TARGET || s.code == VLKXS_C_R_PROJECTILE) continue;
        ASSERT_EQ(s.code, VLKXS_C_R_TOOFEW) << "allocation " << n;
        EXPECT_EQ(s.line, 8);
        // The kept copy is cut at 511 bytes and stays readable.
        ASSERT_EQ(s.textlen, 511);
        EXPECT_EQ(std::string(s.text, 511), bad.substr(0, 511));
        EXPECT_EQ(s.text[511], '\0');
        ++own_fault;
        if (allocations < n) break;  // no allocation failed: every one was tried
    }
    EXPECT_GE(own_fault, 1);
}

// Line and record counters are signed 32-bit: an image with more lines than
// they hold is refused before any count can wrap.  The limit is lowered
// here so that the test needs no file of two thousand million lines.
TEST(Regression, ReaderRefusesMoreLinesThanItsCountersHold) {
    vlktest::TempDir dir;
    const std::string path = dir.write("seven.xs", kHead + "!shell 1\n!eproj 1\n0.1 2 0\n");
    vlk::testhook::set_line_limit(6);  // the file has 7 lines
    SVLKXS set;
    const SCMDSTATUS refused = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
    vlk::testhook::set_line_limit(7);
    const SCMDSTATUS read = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
    vlk::testhook::set_line_limit(0);
    EXPECT_EQ(refused.code, VLKXS_C_RUNTIME);
    EXPECT_EQ(refused.item, path.c_str());
    EXPECT_EQ(read.code, 0);
    VLKXSFree(&set, 0);
}

// Completing a shallow copy used to reallocate the shell array that its
// source owns.  Where a sum shell would have to be made, it is refused with
// nothing changed, and the source stays whole.
TEST(Regression, CompletingAShallowSetLeavesTheSourcesShellsAlone) {
    SVLKXS source, copy;
    ASSERT_EQ(VLKXSRead(&source, vlktest::data_file("p.H2O.id.xs").c_str(), 0).code, 0);
    ASSERT_EQ(source.nShell, 2);  // and no shell 0: completion would add one
    std::memcpy(&copy, &source, sizeof copy);
    copy.flag |= VLKXS_FLAG_SHALLOW;
    EXPECT_EQ(VLKXSComplete(&copy, VLKXS_MODE_QUIET).code, VLKXS_C_BADADDR);
    EXPECT_EQ(copy.pShell, source.pShell);
    EXPECT_EQ(copy.nShell, source.nShell);
    VLKXSFree(&copy, 0);  // borrows everything: releases nothing
    ASSERT_EQ(VLKXSComplete(&source, 0).code, 0);
    EXPECT_EQ(source.nShell, 3);
    EXPECT_EQ(VLKXSIsValid(&source, 0).code, 0);
    VLKXSFree(&source, 0);
}

// Completion scaled cumulated tables and ionisation grids by the reciprocal
// of their end or of WNorm, which is infinite for a subnormal one: a table
// of a subnormal total became NaN and infinity, and the set invalid.  Such
// a divisor now divides.
TEST(Regression, SubnormalTotalsCompleteToTablesEndingAtOne) {
    vlktest::TempDir dir;
    const std::string head = "!filetype xs i,s\n!fileversion 1\n!target H2O\n!projectile e\n!shell 1\n";
    // (A subnormal primary energy is refused: its WNorm can't hold the grid.)
    for (const char *tail : {"!eproj 2\n0 1\n1e-320 1\n"}) {
        SCOPED_TRACE(tail);
        SVLKXS set;
        ASSERT_EQ(VLKXSRead(&set, dir.write("sub.xs", head + tail).c_str(), 0).code, 0);
        ASSERT_EQ(VLKXSComplete(&set, 0).code, 0);
        const SVLKXSE &e = set.pShell[0].pE[0];
        EXPECT_EQ(e.dvCum1[0], 0.0);
        EXPECT_EQ(e.dvCum1[1], 1.0);
        EXPECT_EQ(e.dv1[0], 0.0);  // 0 in fractions of any WNorm, never NaN
        EXPECT_EQ(VLKXSIsValid(&set, 0).code, 0);
        VLKXSFree(&set, 0);
    }
}

}  // namespace

// A grid in fractions of an infinite WNorm, or of one whose reciprocal
// overflows, came back from the writer as NANs and INFs in a file that said
// the set was valid.  Completion refuses such a record now.
TEST(Regression, CompletionRefusesAGridThatFractionsOfWNormLose) {
    vlktest::TempDir dir;
    for (const char *E : {"1e200", "1e-320", "inf"}) {
        const std::string path = dir.write("e.xs", kHead + "!shell 1\n!eproj " + E + "\n0 1e-16\n1 1e-17\n");
        SVLKXS set;
        ASSERT_EQ(VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET).code, 0) << E;
        EXPECT_EQ(VLKXSComplete(&set, VLKXS_MODE_QUIET).code, VLKXS_C_ENERGY) << E;
        VLKXSFree(&set, 0);
    }
}
