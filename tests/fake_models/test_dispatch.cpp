// VLKXSCalc against fake model calculators: which one runs and with which
// mode word, and what becomes of the set and the status after each outcome.
#include <gtest/gtest.h>

#include <string>

#include "capture.hpp"
#include "vlkxs.h"

enum class Outcome { Fill, Warn, Fail, Invalid };
static struct { Outcome outcome; const char *called; int32_t mode; } g_fake;

// Every outcome fills the whole set with a deep copy of a test set (a set
// not freed leaks), shell flags cleared so that the grid test shows.
static SCMDSTATUS fake(const char *name, SVLKXS *set, int32_t mode) {
    g_fake.called = name, g_fake.mode = mode;
    const SVLKXS fixture = _VLKXSTestDDCS(0);
    VLKXSDup(set, &fixture, 0);
    for (int32_t i = 0; i < set->nShell; ++i) set->pShell[i].flag = 0;
    if (g_fake.outcome == Outcome::Invalid) set->pShell[1].pE[0].sigtot = -1;
    SCMDSTATUS s{};
    s.origin = name;
    if (g_fake.outcome == Outcome::Warn) s.code = VLKXS_C_RANGE, s.level = VLKXS_LEVEL_WARNING;
    if (g_fake.outcome == Outcome::Fail) s.code = VLKXS_C_TARGCALC, s.level = VLKXS_LEVEL_ERROR, s.item = "fake item";
    return s;
}
#define FAKE(X) \
    SCMDSTATUS VLKXSCalc##X(SVLKXS *set, const SVLKXSCALC *, int32_t mode) { return fake(#X, set, mode); }
FAKE(EL) FAKE(EI) FAKE(EX) FAKE(II) FAKE(IX)

// Bits 17-23, which no callee may see, and others that reach the calculator.
constexpr int32_t kTol = VLKXS_MODE_TOLERANT, kQuiet = VLKXS_MODE_QUIET, kNoise = 0x00fe0000 | VLKXS_MODE_CHECK | 3;
// Besides test projectile k in test water: no projectile, or an electron in no target.
constexpr int32_t kNoProj = -1, kNoTarg = -2;
static std::string text(const char *s) { return s ? s : "-"; }

struct Row {  // VLKXSCalc reports a failure once, unless `reports` says otherwise
    int32_t type, IA, mode, code;
    const char *called, *origin = "vlkxs(Calc)", *item = nullptr, *report = "<E> vlkxs(Calc)";
    Outcome outcome = Outcome::Fill;
    int reports = -1;
};

// A failing callee's record comes back whole, after its own report; the set is emptied.
TEST(Dispatch, EveryRowAndOutcome) {
    const char *sigtot = "Shell[1].E[0].SigTot=-1", *invalid = "<E> vlkxs(IsValid): bad total cross section";
    const Row rows[] = {
        {3, 1, 0, 0, "EL"},       {3, 2, kTol, 0, "EI"},    {3, 3, 0, 0, "EX"},       {3, 7, 0, 20, nullptr},
        {3, 7, kTol, 0, nullptr}, {5, 1, 0, 0, nullptr},    {5, 2, 0, 0, "II"},       {5, 3, kTol, 0, "IX"},
        {5, 0, 0, 20, nullptr},   {5, 4, kTol, 0, nullptr}, {4, 2, kTol, 14, nullptr}, {1, 1, 0, 14, nullptr},
        {kNoProj, 1, 0, 5, nullptr}, {kNoTarg, 1, 0, 6, nullptr}, {3, 1, kQuiet, 2, nullptr},  // no request
        {3, 1, 0, 0, "EL", "vlkxs(Calc)", nullptr, "<", Outcome::Warn, 0},
        {3, 2, kQuiet, 63, "EI", "EI", "fake item", "<E> EI: cross section calculation", Outcome::Fail, 1},
        {3, 3, 0, 10, "EX", "vlkxs(IsValid)", sigtot, invalid, Outcome::Invalid, 2},
        {3, 3, kQuiet, 10, "EX", "vlkxs(IsValid)", sigtot, invalid, Outcome::Invalid, 1}};
    for (const Row &r : rows) {
        SVLKXS set{};
        if (r.type != kNoProj) set.proj = _VLKProjTest(r.type < 0 ? VLKPROJ_ELECTRON : r.type);
        if (r.type != kNoTarg) set.targ = _VLKTargTest(0, 0);
        set.IA = r.IA;
        g_fake = {r.outcome, nullptr, 0};
        const SVLKXSCALC request{};
        vlktest::Capture capture(stderr);
        const SCMDSTATUS s = VLKXSCalc(&set, r.code == VLKXS_C_BADADDR ? nullptr : &request, r.mode | kNoise);
        const std::string err = capture.finish(), at = std::to_string(r.type) + "/" + std::to_string(r.IA);
        const char *item = r.code == VLKXS_C_NOPROJ ? _VLKProjTest(r.type).name : r.item;
        EXPECT_TRUE(s.code == r.code && text(s.origin) == r.origin && text(s.item) == text(item)) << at;
        const int32_t seen = r.called ? (r.mode | kNoise) & VLKXS_MODE_CALC_MASK : 0;
        EXPECT_TRUE(text(g_fake.called) == text(r.called) && g_fake.mode == seen) << at;
        EXPECT_TRUE(set.flag == (!s.code && r.called ? VLKXS_FLAG_READY | VLKXS_FLAG_ENABLED : 0u)) << at;
        EXPECT_EQ(set.nShell, set.flag ? 6 : 0) << at;
        for (int32_t i = 0; i < set.nShell; ++i) EXPECT_EQ(set.pShell[i].flag, VLKXS_SHFLAG_EQUIVW) << at;
        EXPECT_EQ(set.proj.name == nullptr && set.targ.name == nullptr, s.code != 0) << at << ": a failure frees all";
        EXPECT_EQ(vlktest::count_lines(err, r.report), r.reports < 0 ? s.code != 0 : r.reports) << err;
        VLKXSFree(&set, 0);
    }
    vlktest::Capture capture(stderr);  // a null set: one report, and no companion is asked
    EXPECT_EQ(VLKXSCalc(nullptr, nullptr, VLKXS_MODE_TRACE | kQuiet).code, VLKXS_C_BADADDR);
    const std::string out = capture.finish();
    EXPECT_TRUE(vlktest::count_lines(out, "<E> vlkxs(Calc): bad address") == 1 && out.find("vlkproj") == out.npos);
}
