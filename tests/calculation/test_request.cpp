// The calculation request: model names, limit strings, dump and release.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "capture.hpp"
#include "faults.hpp"

constexpr double kHi = std::numeric_limits<double>::max(), kLo = -kHi;
constexpr int32_t kQuiet = VLKXS_MODE_QUIET, kE = VLKXS_MODE_LIMIT_E, kA = VLKXS_MODE_LIMIT_A;
static bool empty(const SVLKXSCALC &c) { static const SVLKXSCALC zero{}; return !std::memcmp(&c, &zero, sizeof c); }

struct Case { const char *text; int32_t code; double lo, hi; std::vector<double> list; int at = 0, len = 0; };

// The E axis of a request that held 4, 6, a count of 9 and a list.  Code 3
// points at the offending item; a failure changes nothing.
TEST(Limits, FormsFailuresAxesAndRelease) {
    const Case cases[] = {
        {"5", 0, 5, 5, {}}, {"*", 0, kLo, kHi, {}}, {"1,5", 0, 1, 5, {}}, {"5,1", 0, 1, 5, {}}, {"3,3", 0, 3, 3, {}},
        {"*,5", 0, kLo, 5, {}}, {"5,*", 0, 5, kHi, {}}, {"*,*", 0, kLo, kHi, {}}, {"  7 ", 0, 7, 7, {}},
        {" 5 , * ", 0, 5, kHi, {}}, {"*x", 0, kLo, kHi, {}}, {"2 -1", 0, -1, 2, {}}, {"3,1,2", 0, 1, 3, {1, 2, 3}},
        {"*,1,2", 0, kLo, 2, {kLo, 1, 2}}, {"1,2,*", 0, 1, kHi, {1, 2, kHi}}, {"1,1,1", 0, 1, 1, {1, 1, 1}},
        {"*a 4 *b", 0, kLo, kHi, {kLo, 4, kHi}}, {"", 24, 4, 6, {}}, {"   ", 24, 4, 6, {}}, {"5,x", 3, 4, 6, {}, 2, 1},
        {"1,*,2", 3, 4, 6, {}, 2, 1}, {" ab ", 3, 4, 6, {}, 1, 2}, {"1,,2", 3, 4, 6, {}, 2, 0},
        {"nan", 3, 4, 6, {}, 0, 3}, {"0 nan,1", 3, 4, 6, {}, 2, 3}, {"1,inf", 0, 1, std::numeric_limits<double>::infinity(), {}}};
    double old[3] = {};
    vlktest::Capture err(stderr);
    for (const Case &c : cases) {
        SVLKXSCALC calc{};
        calc.Emin = 4, calc.Emax = 6, calc.nE = 9, calc.pE = old;
        const SCMDSTATUS s = VLKXSCalcLimitsFromStr(&calc, c.text, kE | (c.code == 3 ? kQuiet : 0));
        EXPECT_TRUE(s.code == c.code && calc.Emin == c.lo && calc.Emax == c.hi) << c.text;
        EXPECT_TRUE(s.item == (s.code ? c.text + c.at : nullptr) && s.itemlen == c.len) << c.text;
        EXPECT_TRUE(calc.nE == (c.list.empty() ? 9 : 3) && (calc.pE == old) == (c.code != 0)) << c.text;
        if (calc.pE == old) continue;
        EXPECT_EQ(calc.pE ? std::vector(calc.pE, calc.pE + 3) : std::vector<double>{}, c.list) << c.text;
        VLKXSCalcFree(&calc, 0);
    }
    EXPECT_EQ(vlktest::count_lines(err.finish(), "<E> vlkxs(CalcLimitsFromStr): bad item list (code 24)"), 2);
    // Every named axis takes limits and count, the first of them the list;
    // no axis takes nothing.  A failed allocation leaves the request alone.
    SVLKXSCALC calc{}, none{};
    EXPECT_TRUE(VLKXSCalcLimitsFromStr(&calc, "2,1", VLKXS_MODE_LIMIT_W).code == 0 && calc.Wmin == 1 && !calc.flag);
    EXPECT_TRUE(VLKXSCalcLimitsFromStr(&calc, "3,4", VLKXS_MODE_LIMIT_WFLAG).code == 0 && calc.Wmax == 4 && calc.flag);
    EXPECT_EQ(VLKXSCalcLimitsFromStr(&calc, "3,1,2", kE | kA).code + VLKXSCalcLimitsFromStr(&none, "3,1,2", 0).code, 0);
    EXPECT_TRUE(calc.pE && !calc.pA && calc.nE == 3 && calc.nA == 3 && calc.Amax == 3 && calc.Wmax == 4 && empty(none));
    EXPECT_TRUE(VLKXSCalcFree(&calc, 0).code == 0 && empty(calc) && VLKXSCalcFree(&calc, 0).code == 0);
    auto fill = [&] { return VLKXSCalcLimitsFromStr(&calc, "*,3,1,*", kE | kQuiet); };
    auto check = [&](const SCMDSTATUS &s, long) { EXPECT_TRUE(s.code == VLKXS_C_RUNTIME && empty(calc)); };
    EXPECT_EQ(vlktest::fault_loop(fill, check), 3);  // item pointers, item lengths, list
    VLKXSCalcFree(&calc, 0);
}

// Names are matched whole, case ignored; a name in no row gives 0.  The
// dump goes to stderr without the trace bit too.
TEST(Request, MethodInspectFree) {
    const std::pair<const char *, int32_t> cases[] = {
        {"bea", 1},  {"EMP", 8},     {"Rutherford", 9}, {"rFord", 9}, {"BEB", 7},  {"bEb", 7},  {"rbeb", 6}, {"hks", 3},
        {"Rudd", 2}, {"CDW-eis", 4}, {"rel", 5}, {"green-STOLARSKI", 10}, {" beb", 0}, {"beb ", 0}, {"", 0}, {"rb", 0}};
    double list[3] = {1, 2.5, 3};
    SVLKXSCALC calc = {0.5, 1, 3, 0, kHi, -1, 1, list, nullptr, list, 3, 3, 0, 99, 1};
    for (const auto &[name, method] : cases) {
        calc.method = 99;  // overwritten, also by 0
        EXPECT_TRUE(VLKXSCalcMethodFromStr(&calc, name, 0).level == 0 && calc.method == method) << '"' << name << '"';
    }
    calc.method = 7;
    vlktest::Capture err(stderr);
    EXPECT_EQ(VLKXSCalcInspect(&calc, kE).code + VLKXSCalcInspect(nullptr, kQuiet).code, 2);  // 0 and 2
    EXPECT_EQ(VLKXSCalcMethodFromStr(&calc, nullptr, kQuiet).code + VLKXSCalcMethodFromStr(nullptr, "a", 0).code, 4);
    EXPECT_EQ(VLKXSCalcLimitsFromStr(&calc, {}, kQuiet).code + VLKXSCalcLimitsFromStr({}, "1", kQuiet).code, 4);
    EXPECT_TRUE(calc.method == 7 && calc.Emin == 1 && VLKXSCalcFree(nullptr, 0).code == VLKXS_C_BADADDR);
    char head[64];
    std::snprintf(head, sizeof head, "<D> SVLKXSCALC=%" PRIXPTR "\n", reinterpret_cast<uintptr_t>(&calc));
    EXPECT_EQ(err.finish(), head + std::string("          flag=1\n        method=7\n     relchange=0.5\n") +
                                "             E=1 3 3\n                1 2.5 3\n             W=0 1.79769E+308 3\n"
                                "             A=-1 1 0\n               \n"
                                "<E> vlkxs(CalcMethodFromStr): bad address (code 2)\n");
}
