// The listing through the protocol printer and the structure dump.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "capture.hpp"
#include "sets.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

using vlktest::Capture;
using vlktest::count_lines;

struct Loaded {
    SVLKXS set;
    explicit Loaded(const char *name, bool complete = true) {
        VLKXSRead(&set, vlktest::data_file(name).c_str(), 0);
        EXPECT_EQ(complete ? VLKXSComplete(&set, 0).code : 0, 0);
    }
    ~Loaded() { VLKXSFree(&set, 0); }
};

std::string list(SVLKXS *set, int32_t mode = 0, int32_t *code = nullptr) {
    Capture out(stdout);
    const SCMDSTATUS s = VLKXSList(set, mode);
    if (code != nullptr) *code = s.code;
    return out.finish();
}

// The lines of a listing: shells as {number, {{nv2 of each point} of each record}}.
std::string listing(const char *projectile,
                    std::initializer_list<std::pair<int, std::vector<std::vector<int>>>> shells) {
    std::string s = "                     space = 0 bytes\n<I>             projectile = " + std::string(projectile) +
                    "\n                    target = H2O\n               interaction = i\n"
                    "    # of electronic shells = " +
                    std::to_string(shells.size()) + "\n";
    for (const auto &[number, records] : shells) {
        s += "                      shell #" + std::to_string(number) +
             "\n     # of primary energies = " + std::to_string(records.size()) + "\n";
        for (const auto &points : records) {
            s += "     # of secondaries (d1) = " + std::to_string(points.size()) + "\n";
            for (int n2 : points) s += "     # of secondaries (d2) = " + std::to_string(n2) + "\n";
        }
    }
    return s;
}

TEST(List, LinesOfEachKind) {
    Loaded t("e.H2O.it.xs"), d("p.H2O.id.xs");
    EXPECT_EQ(list(&t.set), listing("electron", {{1, {{}, {}, {}}}, {2, {{}, {}}}, {0, {{}, {}, {}, {}}}}));
    // Dimension 2: a d2 line under its d1 line for each first-level point.
    EXPECT_EQ(list(&d.set), listing("proton", {{2, {{3, 2}, {2}}}, {1, {{2}}}, {0, {{3, 2}, {2}}}}));
}

TEST(List, NamesCutAndFailures) {
    Loaded t("e.H2O.it.xs"), s("e.H2O.is.xs", false);
    std::string longer(100, 'x');
    char *own = std::exchange(t.set.proj.name, longer.data());
    EXPECT_NE(list(&t.set).find("projectile = " + std::string(80, 'x') + "\n"), std::string::npos);
    t.set.proj.name = own;
    for (int32_t mode : {0, VLKXS_MODE_QUIET}) {
        int32_t code = 0;
        Capture err(stderr);
        EXPECT_EQ(list(&s.set, mode, &code), "") << "validation comes first";
        EXPECT_EQ(code, VLKXS_C_SDCS_TABLE);
        EXPECT_EQ(count_lines(err.finish(), "<E> "), mode == 0 ? 2 : 0);
    }
}

std::string inspect(const SVLKXS *set, int32_t mode) {
    Capture err(stderr);
    EXPECT_EQ(VLKXSInspect(set, mode).code, set != nullptr ? 0 : VLKXS_C_BADADDR);
    return err.finish();
}

TEST(Inspect, PartsByTheBits) {
    SVLKXS empty;
    VLKXSInit(&empty, 0);
    EXPECT_EQ(inspect(&empty, 0), "");
    for (int32_t bit : {VLKXS_MODE_FORCED, VLKXS_MODE_DEEP}) {
        const std::string out = inspect(&empty, bit);
        EXPECT_EQ(out.substr(0, 4), "<D> ");
        EXPECT_EQ(out.substr(out.size() - 15), "     shell=0 0\n");
    }
    Loaded d("p.H2O.id.xs");
    const std::string shells = inspect(&d.set, 0), deep = inspect(&d.set, VLKXS_MODE_DEEP);
    EXPECT_EQ(inspect(&d.set, VLKXS_MODE_FORCED), shells);
    EXPECT_EQ(count_lines(shells, "     shell#"), 3);
    EXPECT_EQ(count_lines(shells, "           E="), 0);
    EXPECT_EQ(count_lines(deep, "           E="), 5);
    EXPECT_EQ(count_lines(deep, "              d1="), 7);
    EXPECT_NE(deep.find("              d1=3 4.32506E-05 2.82743E-15 0\n"), std::string::npos);
    EXPECT_NE(deep.find("\n                 0 3E-16 0.444444\n"), std::string::npos);
    inspect(nullptr, 0);
}

// Missing arrays at every level show as "--"; nothing faults.
TEST(Inspect, HolesAtEveryLevel) {
    Loaded s("e.H2O.is.xs", false);  // dim 1, read only: no dvCum1, no second level
    const std::string out = inspect(&s.set, VLKXS_MODE_DEEP);
    EXPECT_NE(out.find("              d1=-- 0.01 2.5E-16 --\n              d2=-- -- --\n"), std::string::npos);
    vlktest::SetBuilder b(2);
    b.add_shell(1, 1, false);
    SVLKXSSH &sh = b.add_shell(2, 2);
    b.ddcs(sh.pE[0], {1, 2}, {{-1, 1}, {}}, {{1, 2}, {}});
    sh.pE[0].pdvSig2[0] = nullptr;  // the builder still releases the row
    const std::string holes = inspect(&b.set, VLKXS_MODE_DEEP);
    EXPECT_NE(holes.find("\n                 -1 -- --\n                 1 -- --\n"), std::string::npos) << holes;
    EXPECT_NE(holes.find("     shell#1\n        *E=1 0\n     shell#2\n"), std::string::npos);
}

}  // namespace

namespace {

// The gd file of `set`, written under `dir`.
std::string gd(SVLKXS *set, const vlktest::TempDir &dir, int32_t code = 0) {
    EXPECT_EQ(VLKXSExportgd(set, dir.prefix().c_str(), VLKXS_MODE_QUIET).code, code);
    if (code != 0) return "";
    return vlktest::read_file(dir.prefix() + set->proj.symbol + "." + set->targ.name + "." + set->IAtag + set->dimtag +
                              ".xs.gd");
}

// One angle at the first point: a table over the secondary energy, scaled
// by WNorm for ions, the angle exact for the usual cosines; styles by IA.
TEST(Exportgd, OneAngleFormFactorsAndStyles) {
    vlktest::TempDir dir;
    vlktest::SetBuilder b(2, 2, VLKPROJ_ION);
    SVLKXSE &e = b.add_shell(1, 1).pE[0];
    b.ddcs(e, {1, 3}, {{0.5}, {0.5, 1}}, {{1}, {2, 2}}, {{1}, {0.5, 1}}, {1, 2});
    e.dvCum1 = b.doubles({0.5, 1});
    e.E = 1;
    e.WNorm = 2;
    std::string out = gd(&b.set, dir);
    EXPECT_NE(out.find("x: \ny: dsi^/dE/dOm^[cm2@/keVsr]\np: ylog\n"), std::string::npos);
    EXPECT_NE(out.find("c:asec       60\nH: x y1(60),lr1 n2(60),lr1\n"), std::string::npos) << out;
    EXPECT_NE(out.find("/keV\n2 1 1\n6 2 0.5\n"), std::string::npos) << out;
    e.pdv2[0][0] = 0.25;
    b.set.IA = 4;  // no colour
    out = gd(&b.set, dir);
    EXPECT_NE(out.find("c:asec       75.5225\nH: x y1(75.5225),l1 n2(75.5225),l1\n"), std::string::npos) << out;
    // Many angles at the first point: one table over the cosine a point.
    e.nv2[0] = 0;
    out = gd(&b.set, dir);
    EXPECT_EQ(count_lines(out, "c:esec       "), 2);
    EXPECT_NE(out.find("c:esec       6 keV\nH: x y1(3),l1 (n1=acos(y1)/3.14159*180) n2(3),l1\n"), std::string::npos);
}

TEST(Exportgd, LabelsAndFailures) {
    vlktest::TempDir dir;
    Loaded s("e.H2O.is.xs");
    s.set.IA = 1;  // elastic: the first level holds cosines
    EXPECT_NE(gd(&s.set, dir).find("x: cos(th^)\ny: dsi^/dOm^[cm2@/sr]\np: ylog\nc:\n"), std::string::npos);
    Loaded raw("e.H2O.is.xs", false);
    Capture err(stderr);
    gd(&raw.set, dir, VLKXS_C_SDCS_TABLE);
    EXPECT_EQ(VLKXSExportgd(nullptr, "", 0).code, VLKXS_C_BADADDR);
    EXPECT_EQ(VLKXSExportgd(&s.set, nullptr, 0).code, VLKXS_C_BADADDR);
    EXPECT_EQ(VLKXSExportgd(&s.set, (dir.prefix() + "no/dir/").c_str(), 0).code, VLKXS_C_RUNTIME);
    EXPECT_EQ(count_lines(err.finish(), "<E> "), 4) << "always reported";
}

}  // namespace
