// Projectile companion: word conversion, life cycle, ownership and the
// quiet, trace-only protocol.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "capture.hpp"
#include "core/alloc.hpp"
#include "faults.hpp"
#include "vlkxs.h"

namespace {

constexpr uint32_t kError = VLKXS_LEVEL_ERROR;

struct Accepted {
    const char *text;
    int32_t type;
    const char *symbol;
    const char *name;
    int32_t Z, A;
    double charge;
};

const Accepted kAccepted[] = {
    {"e", 3, "e", "electron", 0, 0, -1},          {"e-", 3, "e", "electron", 0, 0, -1},
    {"  Electron ", 3, "e", "electron", 0, 0, -1}, {"E+", 4, "e+", "positron", 0, 0, 1},
    {"positron", 4, "e+", "positron", 0, 0, 1},    {"p", 5, "p", "proton", 1, 1, 1},
    {"PROTON", 5, "p", "proton", 1, 1, 1},         {"H+", 5, "p", "proton", 1, 1, 1},
    {"h1+", 5, "p", "proton", 1, 1, 1},            {"alpha", 5, "alpha", "alpha particle", 2, 4, 2},
    {"He2+", 5, "alpha", "alpha particle", 2, 4, 2}, {"alpha particle", 5, "alpha", "alpha particle", 2, 4, 2},
    {"gamma", 1, "gamma", "photon", 0, 0, 0},      {"Photon", 1, "gamma", "photon", 0, 0, 0},
    {"d", 5, "d", "deuteron", 1, 2, 1},            {"deuteron", 5, "d", "deuteron", 1, 2, 1},
    {"C6+", 5, "C6+", "carbon ion", 6, 12, 6},     {" c6+", 5, "C6+", "carbon ion", 6, 12, 6},
    {"Li3+", 5, "Li3+", "lithium ion", 3, 7, 3},   {"O8+", 5, "O8+", "oxygen ion", 8, 16, 8},
    {"NE10+", 5, "Ne10+", "neon ion", 10, 20, 10}, {"test0", 0, "test0", "test particle 0", 0, 0, 0},
    {"test2", 2, "test2", "test particle 2", 0, 0, -1},
};

TEST(ProjFromStr, AcceptedTextsGiveValidRecordsThatRoundTrip) {
    for (const Accepted &a : kAccepted) {
        SCOPED_TRACE(a.text);
        SVLKPROJ p{};
        SCMDSTATUS s = VLKProjFromStr(&p, a.text, 0);
        ASSERT_EQ(s.code, 0);
        EXPECT_EQ(s.level, 0u);
        EXPECT_STREQ(s.origin, "vlkproj(FromStr)");
        EXPECT_EQ(p.type, a.type);
        EXPECT_STREQ(p.symbol, a.symbol);
        EXPECT_STREQ(p.name, a.name);
        EXPECT_EQ(p.Z, a.Z);
        EXPECT_EQ(p.A, a.A);
        EXPECT_EQ(p.charge, a.charge);
        EXPECT_EQ(p.own & VLKPROJ_OWNS, VLKPROJ_OWNS);
        EXPECT_EQ(VLKProjIsValid(&p, VLKXS_MODE_CHECK).code, 0);
        // The symbol and the name are accepted back, into the filled record.
        const std::string symbol = p.symbol, name = p.name;
        for (const std::string &again : {symbol, name}) {
            ASSERT_EQ(VLKProjFromStr(&p, again.c_str(), 0).code, 0);
            EXPECT_EQ(p.symbol, symbol);
            EXPECT_EQ(p.name, name);
            EXPECT_EQ(p.type, a.type);
        }
        VLKProjFree(&p, 0);
    }
}

TEST(ProjFromStr, RestEnergiesInKeV) {
    SVLKPROJ p{};
    const struct { const char *text; double keV; double tol; } rows[] = {
        {"e", 510.99906, 1e-9}, {"e+", 510.99906, 1e-9}, {"p", 938272.0, 1e-6},
        {"alpha", 3727379.0, 5.0}, {"C6+", 11174862.0, 10.0}, {"gamma", 0.0, 0.0}};
    for (const auto &r : rows) {
        ASSERT_EQ(VLKProjFromStr(&p, r.text, 0).code, 0) << r.text;
        EXPECT_NEAR(p.mass, r.keV, r.tol) << r.text;
    }
    VLKProjFree(&p, 0);
}

TEST(ProjFromStr, RefusedTextsLeaveAnEmptyRecord) {
    const char *refused[] = {"", "   ", "x", "ee", "e +", "C5+", "He+", "C6", "C+6", "6+",
                             "+", "Na11+", "C006+x", "alpha  particle", "\te"};
    for (const char *text : refused) {
        SCOPED_TRACE(text);
        SVLKPROJ p{};
        ASSERT_EQ(VLKProjFromStr(&p, "C6+", 0).code, 0);  // owned blocks, released by the refusal
        SCMDSTATUS s = VLKProjFromStr(&p, text, 0);
        EXPECT_EQ(s.code, VLKXS_C_NOPROJ);
        EXPECT_EQ(s.level, kError);
        EXPECT_EQ(p.own, 0u);
        EXPECT_EQ(p.name, nullptr);
        EXPECT_EQ(p.symbol, nullptr);
        EXPECT_EQ(VLKProjFree(&p, 0).code, 0);
    }
}

TEST(ProjFromStr, NullArgumentsAreBadAddresses) {
    SVLKPROJ p{};
    ASSERT_EQ(VLKProjFromStr(&p, "p", 0).code, 0);
    EXPECT_EQ(VLKProjFromStr(&p, nullptr, 0).code, VLKXS_C_BADADDR);
    EXPECT_EQ(p.own, 0u);
    EXPECT_EQ(p.name, nullptr);
    EXPECT_EQ(VLKProjFromStr(nullptr, "p", 0).code, VLKXS_C_BADADDR);
    for (SCMDSTATUS s : {VLKProjInit(nullptr, 0), VLKProjFree(nullptr, 0), VLKProjSpace(nullptr, 0),
                         VLKProjDup(nullptr, &p, 0), VLKProjDup(&p, nullptr, 0), VLKProjIsValid(nullptr, 0),
                         VLKProjInspect(nullptr, 0)}) {
        EXPECT_EQ(s.code, VLKXS_C_BADADDR) << s.origin;
        EXPECT_EQ(s.level, kError);
        EXPECT_EQ(s.col, -1);
    }
}

TEST(ProjIsValid, RefusesIncompleteRecords) {
    SVLKPROJ p;
    std::memset(&p, 0xAB, sizeof p);
    ASSERT_EQ(VLKProjInit(&p, 0).code, 0);
    SCMDSTATUS s = VLKProjIsValid(&p, 0);
    EXPECT_EQ(s.code, VLKXS_C_BADPROJ);
    EXPECT_EQ(s.level, kError);
    char empty[] = "";
    const struct { const char *what; void (*spoil)(SVLKPROJ &, char *); } cases[] = {
        {"null name", [](SVLKPROJ &r, char *) { r.name = nullptr; }},
        {"empty name", [](SVLKPROJ &r, char *e) { r.name = e; }},
        {"null symbol", [](SVLKPROJ &r, char *) { r.symbol = nullptr; }},
        {"empty symbol", [](SVLKPROJ &r, char *e) { r.symbol = e; }},
        {"type -1", [](SVLKPROJ &r, char *) { r.type = -1; }},
        {"type 6", [](SVLKPROJ &r, char *) { r.type = 6; }},
    };
    for (const auto &c : cases) {
        SVLKPROJ r = _VLKProjTest(3);
        c.spoil(r, empty);
        EXPECT_EQ(VLKProjIsValid(&r, VLKXS_MODE_CHECK).code, VLKXS_C_BADPROJ) << c.what;
    }
}

TEST(ProjTestRecord, SixValidTypesWithDistinctSymbols) {
    std::set<std::string> symbols;
    for (int32_t k = 0; k <= 5; ++k) {
        SVLKPROJ t = _VLKProjTest(k);
        EXPECT_EQ(t.type, k);
        EXPECT_EQ(t.own & VLKPROJ_OWNS, 0u);
        EXPECT_EQ(VLKProjIsValid(&t, 0).code, 0) << k;
        symbols.insert(t.symbol);
        SVLKPROJ back{};
        ASSERT_EQ(VLKProjFromStr(&back, t.symbol, 0).code, 0) << t.symbol;
        EXPECT_EQ(back.type, k);
        EXPECT_STREQ(back.name, t.name);
        VLKProjFree(&back, 0);
        EXPECT_EQ(VLKProjFree(&t, 0).code, 0);  // borrows: releases nothing
    }
    EXPECT_EQ(symbols.size(), 6u);
    for (int32_t k : {-1, 6}) {
        SVLKPROJ t = _VLKProjTest(k);
        EXPECT_EQ(t.name, nullptr);
        EXPECT_EQ(t.type, 0);
    }
}

TEST(ProjSpace, RecordPlusTerminatedTexts) {
    SVLKPROJ p{};
    ASSERT_EQ(VLKProjSpace(&p, 0).code, 0);
    EXPECT_EQ(p.space, sizeof(SVLKPROJ));
    ASSERT_EQ(VLKProjFromStr(&p, "alpha", 0).code, 0);
    VLKProjSpace(&p, 0);
    EXPECT_EQ(p.space, sizeof(SVLKPROJ) + sizeof "alpha particle" + sizeof "alpha");
    VLKProjFree(&p, 0);
    SVLKPROJ t = _VLKProjTest(VLKPROJ_ELECTRON);  // borrowed texts count as well
    VLKProjSpace(&t, 0);
    EXPECT_EQ(t.space, sizeof(SVLKPROJ) + sizeof "electron" + sizeof "e");
}

TEST(ProjDup, DeepCopySurvivesTheSourceFree) {
    SVLKPROJ src{}, dst;
    ASSERT_EQ(VLKProjFromStr(&src, "O8+", 0).code, 0);
    std::memcpy(&dst, &src, sizeof dst);  // dst holds a byte copy: must not be released
    ASSERT_EQ(VLKProjDup(&dst, &src, 0).code, 0);
    EXPECT_NE(dst.name, src.name);
    EXPECT_NE(dst.symbol, src.symbol);
    EXPECT_STREQ(src.symbol, "O8+");  // still readable after the Dup
    VLKProjFree(&src, 0);
    EXPECT_EQ(dst.own & VLKPROJ_OWNS, VLKPROJ_OWNS);
    EXPECT_STREQ(dst.name, "oxygen ion");
    EXPECT_STREQ(dst.symbol, "O8+");
    EXPECT_EQ(dst.Z, 8);
    EXPECT_EQ(VLKProjIsValid(&dst, 0).code, 0);
    VLKProjFree(&dst, 0);
}

TEST(ProjDup, ShallowCopyOwnsNothing) {
    SVLKPROJ src{}, dst;
    ASSERT_EQ(VLKProjFromStr(&src, "e+", 0).code, 0);
    ASSERT_EQ(VLKProjDup(&dst, &src, VLKXS_MODE_SHALLOW).code, 0);
    EXPECT_EQ(dst.name, src.name);
    EXPECT_EQ(dst.own & VLKPROJ_OWNS, 0u);
    VLKProjFree(&dst, 0);  // releases nothing
    EXPECT_STREQ(src.name, "positron");
    VLKProjFree(&src, 0);
}

TEST(ProjFaults, EveryFailedAllocationIsCleanedUp) {
    for (int deep = 0; deep < 2; ++deep) {
        SVLKPROJ src{};
        ASSERT_EQ(VLKProjFromStr(&src, "alpha", 0).code, 0);
        SVLKPROJ p{};
        const int failed = vlktest::fault_loop(
            [&] {
                VLKProjFree(&p, 0);
                return deep ? VLKProjDup(&p, &src, 0) : VLKProjFromStr(&p, "alpha", 0);
            },
            [&](const SCMDSTATUS &s, long n) {
                EXPECT_EQ(s.code, VLKXS_C_RUNTIME) << n;
                EXPECT_EQ(s.level, kError);
                EXPECT_EQ(p.own, 0u);
                EXPECT_EQ(p.name, nullptr);
                EXPECT_EQ(p.symbol, nullptr);
            });
        EXPECT_GT(failed, 0);
        VLKProjFree(&p, 0);
        VLKProjFree(&src, 0);
    }
}

TEST(ProjProtocol, TraceLinesAndNoReports) {
    SVLKPROJ p{};
    vlktest::Capture err(stderr);
    VLKProjInit(&p, VLKXS_MODE_TRACE);
    VLKProjFromStr(&p, "nonsense", VLKXS_MODE_TRACE);
    VLKProjIsValid(&p, 0);
    VLKProjDup(nullptr, &p, 0);
    VLKProjFree(&p, 0);
    EXPECT_EQ(err.finish(),
              "<D> vlkproj(Init).....\n<D> vlkproj(Init) done\n"
              "<D> vlkproj(FromStr).....\n<D> vlkproj(FromStr) done\n");
}

}  // namespace
