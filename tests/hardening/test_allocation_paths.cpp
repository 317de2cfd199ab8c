// Every operation that allocates, with each of its allocations failing in
// turn: it ends with its documented code, leaves the set in the state it
// promises, and leaks nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "capture.hpp"
#include "faults.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

using vlk::testhook::fail_alloc_after;

// What one attempt works on; prepared afresh with no allocation failing.
struct Work {
    SVLKXS set{}, copy{};
    SVLKXSCALC rq{};
    vlktest::TempDir dir;
    ~Work() {
        VLKXSFree(&set, 0);
        VLKXSFree(&copy, 0);
        VLKXSCalcFree(&rq, 0);
    }
};

bool empty(const SVLKXS &s) { return s.nShell == 0 && s.pShell == nullptr; }
bool no_files(const Work &w) { return std::filesystem::is_empty(w.dir.path()); }

void read_completed(Work &w, const char *name) {
    ASSERT_EQ(VLKXSRead(&w.set, vlktest::data_file(name).c_str(), 0).code, 0);
    ASSERT_EQ(VLKXSComplete(&w.set, 0).code, 0);
}

void prepare_calc(Work &w, const char *proj, int32_t IA, int32_t dim, int32_t method) {
    VLKXSInit(&w.set, 0);
    ASSERT_EQ(VLKProjFromStr(&w.set.proj, proj, 0).code, 0);
    ASSERT_EQ(VLKTargImportMaterial(&w.set.targ, "H2O", 0).code, 0);
    w.set.IA = IA;
    w.set.dim = dim;
    w.rq.method = method;
    // A few primary energies: 0.05 to 5 MeV/u for ions, to 50 keV for electrons.
    ASSERT_EQ(VLKXSCalcLimitsFromStr(&w.rq, proj[0] == 'p' ? "0.05,5" : "0.05,50", VLKXS_MODE_LIMIT_E).code, 0);
    w.rq.relchange = 1.0;
}

struct Op {
    const char *name;
    std::function<void(Work &)> prepare;
    std::function<SCMDSTATUS(Work &)> run;
    std::set<int32_t> codes;                   // of a failed attempt
    std::function<bool(const Work &)> failed;  // what a failed attempt leaves
};

std::function<void(Work &)> nothing() {
    return [](Work &) {};
}
std::function<SCMDSTATUS(Work &)> read(const char *name) {
    return [name](Work &w) { return VLKXSRead(&w.set, vlktest::data_file(name).c_str(), VLKXS_MODE_QUIET); };
}
std::function<void(Work &)> completed(const char *name) {
    return [name](Work &w) { read_completed(w, name); };
}
std::function<void(Work &)> calc_of(const char *proj, int32_t IA, int32_t dim, int32_t method) {
    return [=](Work &w) { prepare_calc(w, proj, IA, dim, method); };
}
SCMDSTATUS calc(Work &w) { return VLKXSCalc(&w.set, &w.rq, VLKXS_MODE_QUIET); }
bool set_empty(const Work &w) { return empty(w.set); }

// The companions turn their own failed allocations into refusals: 45 and 46
// from the reader, 15 and 16 from the duplication.
const std::vector<Op> kOps = {
    {"read totals", nothing(), read("e.H2O.it.xs"), {1, 45, 46}, set_empty},
    {"read single differential", nothing(), read("e.H2O.is.xs"), {1, 45, 46}, set_empty},
    {"read double differential", nothing(), read("p.H2O.id.xs"), {1, 45, 46}, set_empty},
    {"complete single differential",
     [](Work &w) { ASSERT_EQ(VLKXSRead(&w.set, vlktest::data_file("e.H2O.is.xs").c_str(), 0).code, 0); },
     [](Work &w) { return VLKXSComplete(&w.set, 0); }, {1}, [](const Work &) { return true; }},
    {"complete double differential",
     [](Work &w) { ASSERT_EQ(VLKXSRead(&w.set, vlktest::data_file("p.H2O.id.xs").c_str(), 0).code, 0); },
     [](Work &w) { return VLKXSComplete(&w.set, 0); }, {1}, [](const Work &) { return true; }},
    {"write", completed("p.H2O.id.xs"), [](Work &w) { return VLKXSWrite(&w.set, w.dir.prefix().c_str(), 0); }, {1},
     no_files},
    {"export gd", completed("e.H2O.is.xs"),
     [](Work &w) { return VLKXSExportgd(&w.set, w.dir.prefix().c_str(), 0); }, {1}, no_files},
    {"deep duplicate", completed("p.H2O.id.xs"), [](Work &w) { return VLKXSDup(&w.copy, &w.set, 0); }, {1, 15, 16},
     [](const Work &w) { return empty(w.copy) && VLKXSIsValid(&w.set, VLKXS_MODE_QUIET).code == 0; }},
    {"electron elastic totals", calc_of("e", 1, 0, 9), calc, {1}, set_empty},
    {"electron elastic tables", calc_of("e", 1, 1, 9), calc, {1}, set_empty},
    {"electron ionisation totals", calc_of("e", 2, 0, 7), calc, {1}, set_empty},
    {"electron ionisation tables", calc_of("e", 2, 1, 7), calc, {1}, set_empty},
    {"electron excitation", calc_of("e", 3, 0, 8), calc, {1}, set_empty},
    {"proton ionisation totals", calc_of("p", 2, 0, 2), calc, {1}, set_empty},
    {"proton ionisation tables", calc_of("p", 2, 1, 2), calc, {1}, set_empty},
    {"proton excitation", calc_of("p", 3, 0, 8), calc, {1}, set_empty},
    {"limits from a list", nothing(),
     [](Work &w) { return VLKXSCalcLimitsFromStr(&w.rq, "0.1,0.2,0.5,1,2,5", VLKXS_MODE_LIMIT_E | VLKXS_MODE_QUIET); },
     {1}, [](const Work &w) { return w.rq.pE == nullptr && w.rq.nE == 0 && w.rq.Emax == 0; }},
};

TEST(AllocationPaths, EveryFailureEndsCleanlyWithItsCode) {
    for (const Op &op : kOps) {
        SCOPED_TRACE(op.name);
        std::unique_ptr<Work> w;
        long n = 0;
        vlktest::Capture err(stderr);  // some operations always report
        const int failures = vlktest::fault_loop(
            [&] {
                // The attempt's own number: fault_loop counts 1, 2, ... in order.
                fail_alloc_after(0);
                w = std::make_unique<Work>();
                op.prepare(*w);
                fail_alloc_after(++n);
                return op.run(*w);
            },
            [&](const SCMDSTATUS &s, long k) {
                EXPECT_TRUE(op.codes.contains(s.code)) << "code " << s.code << " at allocation " << k;
                EXPECT_TRUE(op.failed(*w)) << "allocation " << k;
            });
        EXPECT_GE(failures, 1);
        w.reset();
    }
}

}  // namespace
