// Projectile and target companions: words, test records, validity,
// duplication, allocation faults, and trace lines without reports.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "capture.hpp"
#include "faults.hpp"
#include "vlkxs.h"

namespace {

constexpr uint32_t kError = VLKXS_LEVEL_ERROR;
using Blocks = std::vector<const void *>;

// The blocks that a record owns when its own bit is set; equal contents.
Blocks blocks(const SVLKPROJ &p) { return {p.name, p.symbol}; }
Blocks blocks(const SVLKTARG &t) { return {t.name, t.pShell}; }
bool same(const SVLKPROJ &a, const SVLKPROJ &b) {
    return !std::strcmp(a.name, b.name) && !std::strcmp(a.symbol, b.symbol) && a.type == b.type && a.mass == b.mass;
}
bool same(const SVLKTARG &a, const SVLKTARG &b) {
    return !std::strcmp(a.name, b.name) && a.M == b.M && a.nShell == b.nShell && a.natom[0] == b.natom[0] &&
           !std::memcmp(a.pShell, b.pShell, (a.nShell + 1) * sizeof(SVLKTARGSH));
}

// Accepted words, their symbols and names give owned, valid records; test
// record k has type k.  Ion rest energies: atomic mass in u * 931494.32 keV
// less Z * 510.99906 keV (d: 2.01410178 u, alpha: 4.00260325 u, C: 12 u).
TEST(Projectile, Words) {
    const struct { const char *text, *symbol, *name; int32_t type, Z, A; double charge, mass; } accepted[] = {
        {"e", "e", "electron", 3, 0, 0, -1, 510.99906},          {"e-", "e", "electron", 3, 0, 0, -1, 510.99906},
        {"  Electron ", "e", "electron", 3, 0, 0, -1, 510.99906}, {"E+", "e+", "positron", 4, 0, 0, 1, 510.99906},
        {"H+", "p", "proton", 5, 1, 1, 1, 938272.0},             {"h1+", "p", "proton", 5, 1, 1, 1, 938272.0},
        {"He2+", "alpha", "alpha particle", 5, 2, 4, 2, 3727380.19}, {"gamma", "gamma", "photon", 1, 0, 0, 0, 0},
        {"d", "d", "deuteron", 5, 1, 2, 1, 1875613.37},
        {" c6+", "C6+", "carbon ion", 5, 6, 12, 6, 11174865.85},
        {"Li3+", "Li3+", "lithium ion", 5, 3, 7, 3, 6533834.36}, {"O8+", "O8+", "oxygen ion", 5, 8, 16, 8, 14895084.12},
        {"NE10+", "Ne10+", "neon ion", 5, 10, 20, 10, 18617734.48},
        {"test2", "test2", "test particle 2", 2, 0, 0, -1, 510.99906},
    };
    SVLKPROJ p{};
    for (const auto &a : accepted) {
        for (const char *text : {a.text, a.symbol, a.name}) {
            const SCMDSTATUS s = VLKProjFromStr(&p, text, 0);
            ASSERT_TRUE(s.code == 0 && s.level == 0 && !std::strcmp(s.origin, "vlkproj(FromStr)")) << text;
            EXPECT_TRUE(p.type == a.type && p.Z == a.Z && p.A == a.A && p.charge == a.charge) << text;
            EXPECT_NEAR(p.mass, a.mass, 1e-8 * a.mass) << text;
            EXPECT_TRUE(std::strcmp(p.symbol, a.symbol) == 0 && std::strcmp(p.name, a.name) == 0) << text;
            EXPECT_TRUE((p.own & VLKPROJ_OWNS) && VLKProjIsValid(&p, VLKXS_MODE_CHECK).code == 0) << text;
        }
    }
    for (int32_t k = 0; k <= 5; ++k) {
        const SVLKPROJ t = _VLKProjTest(k);
        EXPECT_TRUE(t.own == 0 && t.type == k && VLKProjIsValid(&t, 0).code == 0) << k;
        EXPECT_TRUE(VLKProjFromStr(&p, t.symbol, 0).code == 0 && same(p, t)) << k;
    }
    VLKProjFree(&p, 0);
    for (int32_t k : {-1, 6}) EXPECT_TRUE(_VLKProjTest(k).name == nullptr && _VLKProjTest(k).type == 0) << k;
}

// Row 0 stands for the target, rows 1..nShell for its orbitals, outermost
// first, their electrons those of the atoms.  The test record is water.
TEST(Target, Materials) {
    const struct { const char *text, *name; double M, density; int32_t nShell; double electrons, Ebind; } rows[] = {
        {" water  ", "H2O", 18.01528, 1.0, 5, 10, 0.01261}, {"h2o", "H2O", 18.01528, 1.0, 5, 10, 0.01261},
        {"H", "H", 1.00794, 0.0000899, 1, 1, 0.0136057},   {"he", "He", 4.002602, 0.0001786, 1, 2, 0.024587},
        {"N2", "N2", 28.0134, 0.0012506, 6, 14, 0.01558},  {"AR", "Ar", 39.948, 0.0017837, 5, 18, 0.01576},
    };
    SVLKTARG t{};
    for (const auto &m : rows) {
        for (const char *text : {m.text, m.name}) {
            const SCMDSTATUS s = VLKTargImportMaterial(&t, text, 0);
            ASSERT_TRUE(s.code == 0 && !std::strcmp(s.origin, "vlktarg(ImportMaterial)")) << text;
            EXPECT_TRUE(!std::strcmp(t.name, m.name) && t.M == m.M && t.density == m.density) << text;
            EXPECT_TRUE(t.own == VLKTARG_OWNS && VLKTargIsValid(&t, VLKXS_MODE_CHECK).code == 0) << text;
            ASSERT_EQ(t.nShell, m.nShell) << text;
            EXPECT_TRUE(t.pShell[0].Ebind == m.Ebind && t.pShell[0].Ukin == 0 && t.pShell[0].occ == m.electrons);
            double occ = 0.0, Z = 0.0;
            for (int32_t i = 1; i <= t.nShell; ++i) {
                occ += t.pShell[i].occ;
                EXPECT_TRUE(t.pShell[i].Ukin > 0 && t.pShell[i].Ebind >= t.pShell[i - 1].Ebind) << text << i;
            }
            for (int32_t k = 0; k < t.nAtom; ++k) Z += t.Zatom[k] * t.natom[k];
            EXPECT_TRUE(occ == m.electrons && Z == m.electrons) << text;
        }
    }
    SVLKTARG w = _VLKTargTest(0, 0);
    ASSERT_EQ(VLKTargImportMaterial(&t, "H2O", 0).code, 0);
    EXPECT_TRUE(w.own == 0 && w.pShell == _VLKTargTest(0, 0).pShell && same(t, w) && VLKTargFree(&w, 0).code == 0);
    VLKTargFree(&t, 0);
}

// One published constant per material, so that an edit of the table shows:
// N2 2sigma_u and 2sigma_g (Hwang, Kim & Rudd 1996), Ar 3s and 1s (Rudd et
// al. 1992, Table I), in keV.
TEST(Target, PublishedConstants) {
    const struct { const char *name; int32_t row; double SVLKTARGSH::*field; double value; } pins[] = {
        {"H2O", 5, &SVLKTARGSH::Ukin, 0.7962},  {"H", 1, &SVLKTARGSH::Ukin, 0.0136057},
        {"He", 1, &SVLKTARGSH::Ukin, 0.03951},  {"N2", 3, &SVLKTARGSH::Ukin, 0.06318},
        {"N2", 4, &SVLKTARGSH::Ukin, 0.07113},  {"Ar", 1, &SVLKTARGSH::Ebind, 0.01582},
        {"Ar", 2, &SVLKTARGSH::Ukin, 0.1035},   {"Ar", 5, &SVLKTARGSH::Ebind, 3.2029},
    };
    SVLKTARG t{};
    for (const auto &p : pins) {
        ASSERT_EQ(VLKTargImportMaterial(&t, p.name, 0).code, 0);
        EXPECT_DOUBLE_EQ(t.pShell[p.row].*p.field, p.value) << p.name << " row " << p.row;
    }
    VLKTargFree(&t, 0);
}

// What both companions have: operations, an accepted word, refused words,
// the test record and ways to spoil it, and their trace tags.
template <class T>
struct Companion {
    SCMDSTATUS (*init)(T *, int32_t), (*free)(T *, int32_t), (*space)(T *, int32_t);
    SCMDSTATUS (*dup)(T *, const T *, int32_t), (*valid)(const T *, int32_t), (*inspect)(const T *, int32_t);
    SCMDSTATUS (*from)(T *, const char *, int32_t);
    const char *word;
    std::vector<const char *> refused;
    int32_t no_word, invalid;
    T test;
    std::vector<void (*)(T &)> spoilers;
    std::string tag, from_tag;
};
char empty[] = "";
const Companion<SVLKPROJ> kProj{
    VLKProjInit, VLKProjFree, VLKProjSpace, VLKProjDup, VLKProjIsValid, VLKProjInspect, VLKProjFromStr, "alpha",
    {"", "   ", "x", "ee", "e +", "C5+", "He+", "C6", "C+6", "6+", "+", "Na11+", "C006+x", "alpha  particle", "\te"},
    VLKXS_C_NOPROJ, VLKXS_C_BADPROJ, _VLKProjTest(3),
    {[](SVLKPROJ &r) { r.name = nullptr; }, [](SVLKPROJ &r) { r.name = empty; },
     [](SVLKPROJ &r) { r.symbol = nullptr; }, [](SVLKPROJ &r) { r.symbol = empty; }, [](SVLKPROJ &r) { r.type = -1; },
     [](SVLKPROJ &r) { r.type = 6; }},
    "vlkproj", "FromStr"};
const Companion<SVLKTARG> kTarg{
    VLKTargInit, VLKTargFree, VLKTargSpace, VLKTargDup, VLKTargIsValid, VLKTargInspect, VLKTargImportMaterial, "N2",
    {"", "  ", "H2O2", "wat er", "Xe", "N", "\tH2O"}, VLKXS_C_NOMATERIAL, VLKXS_C_BADTARG, _VLKTargTest(0, 0),
    {[](SVLKTARG &r) { r.name = nullptr; }, [](SVLKTARG &r) { r.name = empty; }, [](SVLKTARG &r) { r.nShell = -1; },
     [](SVLKTARG &r) { r.pShell = nullptr; }, [](SVLKTARG &r) { r.M = 0.0; }, [](SVLKTARG &r) { r.M = -1.0; }},
    "vlktarg", "ImportMaterial"};

// A refused or null word releases what the record held; a null record is a
// bad address; an initialised or spoilt record is invalid.  No reports.
template <class T>
void refusals(const Companion<T> &c) {
    vlktest::Capture err(stderr);
    T r{};
    c.init(&r, VLKXS_MODE_TRACE);
    c.from(&r, "nonsense", VLKXS_MODE_TRACE);
    for (const char *text : c.refused) {
        ASSERT_EQ(c.from(&r, c.word, 0).code, 0);
        const SCMDSTATUS s = c.from(&r, text, 0);
        EXPECT_TRUE(s.code == c.no_word && s.level == kError) << "'" << text << "'";
        EXPECT_TRUE(r.own == 0 && blocks(r) == Blocks(2, nullptr)) << "'" << text << "'";
    }
    ASSERT_EQ(c.from(&r, c.word, 0).code, 0);
    EXPECT_TRUE(c.from(&r, nullptr, 0).code == VLKXS_C_BADADDR && r.own == 0 && blocks(r) == Blocks(2, nullptr));
    for (const SCMDSTATUS &s : {c.init(nullptr, 0), c.free(nullptr, 0), c.space(nullptr, 0), c.dup(nullptr, &r, 0),
                                c.dup(&r, nullptr, 0), c.valid(nullptr, 0), c.inspect(nullptr, 0),
                                c.from(nullptr, c.word, 0)})
        EXPECT_TRUE(s.code == VLKXS_C_BADADDR && s.level == kError && s.col == -1) << s.origin;
    std::memset(&r, 0xAB, sizeof r);
    ASSERT_EQ(c.init(&r, 0).code, 0);
    EXPECT_EQ(c.valid(&r, 0).code, c.invalid);
    for (std::size_t i = 0; i < c.spoilers.size(); ++i) {
        T spoilt = c.test;
        c.spoilers[i](spoilt);
        const SCMDSTATUS s = c.valid(&spoilt, VLKXS_MODE_CHECK);
        EXPECT_TRUE(s.code == c.invalid && s.level == kError) << c.tag << " spoiler " << i;
    }
    const std::string init = "<D> " + c.tag + "(Init)", from = "<D> " + c.tag + "(" + c.from_tag + ")";
    EXPECT_EQ(err.finish(), init + ".....\n" + init + " done\n" + from + ".....\n" + from + " done\n");
}

// A deep copy (into a byte copy) owns its blocks and outlives the source; a
// shallow one borrows.
template <class T>
void duplicates(const Companion<T> &c) {
    T src{}, ref{}, shallow;
    ASSERT_TRUE(c.from(&src, c.word, 0).code == 0 && c.from(&ref, c.word, 0).code == 0);
    T deep = src;
    ASSERT_TRUE(c.dup(&deep, &src, 0).code == 0 && c.dup(&shallow, &src, VLKXS_MODE_SHALLOW).code == 0);
    EXPECT_TRUE(blocks(shallow) == blocks(src) && shallow.own == 0);
    c.free(&shallow, 0);
    ASSERT_TRUE(same(src, ref));
    const Blocks of_source = blocks(src);
    c.free(&src, 0);
    for (std::size_t i = 0; i < of_source.size(); ++i) EXPECT_NE(blocks(deep)[i], of_source[i]) << i;
    EXPECT_TRUE(deep.own == 1 && same(deep, ref) && c.valid(&deep, 0).code == 0);
    c.free(&deep, 0);
    c.free(&ref, 0);
}

// Each failed allocation of a conversion or deep copy: code 1, empty record.
template <class T>
void allocation_faults(const Companion<T> &c) {
    T src{}, r{};
    ASSERT_EQ(c.from(&src, c.word, 0).code, 0);
    for (const bool deep : {false, true}) {
        const auto attempt = [&] {
            c.free(&r, 0);
            return deep ? c.dup(&r, &src, 0) : c.from(&r, c.word, 0);
        };
        const auto check = [&](const SCMDSTATUS &s, long n) {
            EXPECT_TRUE(s.code == VLKXS_C_RUNTIME && s.level == kError) << n;
            EXPECT_TRUE(r.own == 0 && blocks(r) == Blocks(2, nullptr)) << n;
        };
        EXPECT_GT(vlktest::fault_loop(attempt, check), 0);
    }
    c.free(&r, 0);
    c.free(&src, 0);
}

TEST(Companions, SharedRules) {
    refusals(kProj);
    refusals(kTarg);
    duplicates(kProj);
    duplicates(kTarg);
    allocation_faults(kProj);
    allocation_faults(kTarg);
}

}  // namespace
