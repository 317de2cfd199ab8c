// The calculation request: the model chosen by name, a dump of the record,
// and the release of its lists.  The limits and lists are filled from limit
// strings in limits.cpp.
#include "core/core.hpp"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace {

struct MethodRow {
    const char *name;
    int32_t method;
};

// The model names that the calculators know, searched from the top.  The
// order is not that of the values, and "rutherford" and "rford" are one
// model.  The row with the null name ends the search: its value, 0, is what
// a name that stands in no row gives, and means "no model named".
constexpr MethodRow svMethod[] = {
    {"bea", 1},     {"emp", 8}, {"rutherford", 9},       {"rford", 9}, {"beb", 7}, {"rbeb", 6}, {"hks", 3}, {"rudd", 2},
    {"cdw-eis", 4}, {"rel", 5}, {"green-stolarski", 10}, {nullptr, 0},
};

// The whole text against each name, case folded as stricmp folds it (ASCII
// letters only), with no trimming: " beb" names nothing.
constexpr int32_t method_of(const char *text) noexcept {
    for (const MethodRow &row : svMethod)
        if (row.name == nullptr || vlk::compare_folded(text, vlk::kTerminated, row.name, vlk::kTerminated) == 0)
            return row.method;
    return 0;
}

static_assert(svMethod[std::size(svMethod) - 1].name == nullptr, "the null row ends the search");
static_assert(method_of("BeB") == 7 && method_of("RFORD") == 9 && method_of("rutherford") == 9);
static_assert(method_of(" beb") == 0 && method_of("") == 0 && method_of("bebx") == 0);

// An address as "%X" shows it, in upper-case hexadecimal, all of it.
uintptr_t hex(const void *p) noexcept { return reinterpret_cast<uintptr_t>(p); }

// The limits of one axis, and below them its list where the request has one:
// 15 blanks, then " %G" for each element.
void axis(char name, double low, double high, const double *list, int32_t n) noexcept {
    std::fprintf(stderr, "             %c=%G %G %d\n", name, low, high, n);
    if (list == nullptr) return;
    std::fputs("               ", stderr);
    for (int32_t i = 0; i < n; ++i) std::fprintf(stderr, " %G", list[i]);
    std::fputc('\n', stderr);
}

}  // namespace

// A name in no row is no failure: `method` becomes 0, which the calculators
// refuse with "no such calculation method".
SCMDSTATUS VLKXSCalcMethodFromStr(SVLKXSCALC *calc, const char *text, int32_t mode) {
    return vlk::run(vlk::op::CalcMethodFromStr, mode & VLKXS_MODE_CALC_MASK, [&](SCMDSTATUS &st) {
        if (calc == nullptr || text == nullptr) return;
        calc->method = method_of(text);
        vlk::succeed(st);
    });
}

// Written whether or not the trace bit is set: a dump is asked for.
SCMDSTATUS VLKXSCalcInspect(const SVLKXSCALC *calc, int32_t mode) {
    return vlk::run(vlk::op::CalcInspect, mode & VLKXS_MODE_CALC_MASK, [&](SCMDSTATUS &st) {
        if (calc == nullptr) return;
        std::fprintf(stderr, "<D> SVLKXSCALC=%" PRIXPTR "\n", hex(calc));
        std::fprintf(stderr, "          flag=%d\n", calc->flag);
        std::fprintf(stderr, "        method=%d\n", calc->method);
        std::fprintf(stderr, "     relchange=%G\n", calc->relchange);
        axis('E', calc->Emin, calc->Emax, calc->pE, calc->nE);
        axis('W', calc->Wmin, calc->Wmax, calc->pW, calc->nW);
        axis('A', calc->Amin, calc->Amax, calc->pA, calc->nA);
        vlk::succeed(st);
    });
}

// Leaves the request empty, as a zeroed one, ready to be filled again; a
// second call finds null lists and succeeds too.
SCMDSTATUS VLKXSCalcFree(SVLKXSCALC *calc, int32_t mode) {
    return vlk::run(vlk::op::CalcFree, mode, [&](SCMDSTATUS &st) {
        if (calc == nullptr) return;
        std::free(calc->pE);
        std::free(calc->pW);
        std::free(calc->pA);
        *calc = SVLKXSCALC{};
        vlk::succeed(st);
    });
}
