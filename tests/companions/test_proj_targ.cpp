// Projectile and target companions: the words they accept and refuse, their
// test records, space, validity, duplication, allocation faults, and the
// protocol they share: trace lines only, never a report.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "capture.hpp"
#include "faults.hpp"
#include "vlkxs.h"

namespace {

constexpr uint32_t kError = VLKXS_LEVEL_ERROR;
using Blocks = std::vector<const void *>;

// Accepted words give an owned, valid record whose symbol and name are
// accepted back; a refused word releases what the record held.
TEST(Projectile, Words) {
    const struct {
        const char *text, *symbol, *name;
        int32_t type, Z, A;
        double charge;
    } accepted[] = {
        {"e", "e", "electron", 3, 0, 0, -1},           {"e-", "e", "electron", 3, 0, 0, -1},
        {"  Electron ", "e", "electron", 3, 0, 0, -1}, {"E+", "e+", "positron", 4, 0, 0, 1},
        {"positron", "e+", "positron", 4, 0, 0, 1},    {"p", "p", "proton", 5, 1, 1, 1},
        {"PROTON", "p", "proton", 5, 1, 1, 1},         {"H+", "p", "proton", 5, 1, 1, 1},
        {"h1+", "p", "proton", 5, 1, 1, 1},            {"alpha", "alpha", "alpha particle", 5, 2, 4, 2},
        {"He2+", "alpha", "alpha particle", 5, 2, 4, 2}, {"alpha particle", "alpha", "alpha particle", 5, 2, 4, 2},
        {"gamma", "gamma", "photon", 1, 0, 0, 0},      {"Photon", "gamma", "photon", 1, 0, 0, 0},
        {"d", "d", "deuteron", 5, 1, 2, 1},            {"deuteron", "d", "deuteron", 5, 1, 2, 1},
        {"C6+", "C6+", "carbon ion", 5, 6, 12, 6},     {" c6+", "C6+", "carbon ion", 5, 6, 12, 6},
        {"Li3+", "Li3+", "lithium ion", 5, 3, 7, 3},   {"O8+", "O8+", "oxygen ion", 5, 8, 16, 8},
        {"NE10+", "Ne10+", "neon ion", 5, 10, 20, 10}, {"test0", "test0", "test particle 0", 0, 0, 0, 0},
        {"test2", "test2", "test particle 2", 2, 0, 0, -1},
    };
    SVLKPROJ p{};
    for (const auto &a : accepted) {
        for (const char *text : {a.text, a.symbol, a.name}) {
            const SCMDSTATUS s = VLKProjFromStr(&p, text, 0);
            ASSERT_TRUE(s.code == 0 && s.level == 0) << text;
            EXPECT_STREQ(s.origin, "vlkproj(FromStr)");
            EXPECT_TRUE(p.type == a.type && p.Z == a.Z && p.A == a.A && p.charge == a.charge) << text;
            EXPECT_TRUE(std::strcmp(p.symbol, a.symbol) == 0 && std::strcmp(p.name, a.name) == 0) << text;
            EXPECT_EQ(p.own & VLKPROJ_OWNS, VLKPROJ_OWNS);
            EXPECT_EQ(VLKProjIsValid(&p, VLKXS_MODE_CHECK).code, 0) << text;
        }
    }
    for (const char *text : {"", "   ", "x", "ee", "e +", "C5+", "He+", "C6", "C+6", "6+", "+", "Na11+", "C006+x",
                             "alpha  particle", "\te"}) {
        ASSERT_EQ(VLKProjFromStr(&p, "C6+", 0).code, 0);
        const SCMDSTATUS s = VLKProjFromStr(&p, text, 0);
        EXPECT_TRUE(s.code == VLKXS_C_NOPROJ && s.level == kError) << "'" << text << "'";
        EXPECT_TRUE(p.own == 0 && p.name == nullptr && p.symbol == nullptr) << "'" << text << "'";
    }
}

TEST(Projectile, RestEnergiesInKeV) {
    const struct {
        const char *text;
        double keV, tol;
    } rows[] = {{"e", 510.99906, 1e-9},       {"e+", 510.99906, 1e-9},    {"p", 938272.0, 1e-6},
                {"alpha", 3727379.0, 5.0}, {"C6+", 11174862.0, 10.0}, {"gamma", 0.0, 0.0}};
    SVLKPROJ p{};
    for (const auto &r : rows) {
        ASSERT_EQ(VLKProjFromStr(&p, r.text, 0).code, 0) << r.text;
        EXPECT_NEAR(p.mass, r.keV, r.tol) << r.text;
    }
    VLKProjFree(&p, 0);
}

// Test record k has type k, borrows its texts and is accepted back by its
// symbol; k outside 0..5 gives an empty record.
TEST(Projectile, TestRecords) {
    std::set<std::string> symbols;
    SVLKPROJ back{};
    for (int32_t k = 0; k <= 5; ++k) {
        SVLKPROJ t = _VLKProjTest(k);
        EXPECT_TRUE(t.type == k && (t.own & VLKPROJ_OWNS) == 0 && VLKProjIsValid(&t, 0).code == 0) << k;
        symbols.insert(t.symbol);
        ASSERT_EQ(VLKProjFromStr(&back, t.symbol, 0).code, 0) << t.symbol;
        EXPECT_TRUE(back.type == k && std::strcmp(back.name, t.name) == 0) << k;
        EXPECT_EQ(VLKProjFree(&t, 0).code, 0);  // releases nothing
    }
    VLKProjFree(&back, 0);
    EXPECT_EQ(symbols.size(), 6u);
    for (int32_t k : {-1, 6}) EXPECT_TRUE(_VLKProjTest(k).name == nullptr && _VLKProjTest(k).type == 0) << k;
}

// Row 0 stands for the whole target; rows 1..nShell are the orbitals,
// outermost first, whose electrons add up to those of the atoms.  The
// stored name is accepted back; an unknown word empties the record.
TEST(Target, Materials) {
    const struct {
        const char *text, *name;
        double M, density;
        int32_t nShell;
        double electrons, firstEbind;
    } materials[] = {
        {"H2O", "H2O", 18.01528, 1.0, 5, 10, 0.01261},     {" water  ", "H2O", 18.01528, 1.0, 5, 10, 0.01261},
        {"h2o", "H2O", 18.01528, 1.0, 5, 10, 0.01261},     {"H", "H", 1.00794, 0.0000899, 1, 1, 0.0136057},
        {"he", "He", 4.002602, 0.0001786, 1, 2, 0.024587}, {"N2", "N2", 28.0134, 0.0012506, 6, 14, 0.01558},
        {"AR", "Ar", 39.948, 0.0017837, 5, 18, 0.01576},
    };
    SVLKTARG t{};
    for (const auto &m : materials) {
        for (const char *text : {m.text, m.name}) {
            SCOPED_TRACE(text);
            const SCMDSTATUS s = VLKTargImportMaterial(&t, text, 0);
            ASSERT_EQ(s.code, 0);
            EXPECT_STREQ(s.origin, "vlktarg(ImportMaterial)");
            EXPECT_STREQ(t.name, m.name);
            EXPECT_TRUE(t.M == m.M && t.density == m.density && (t.own & VLKTARG_OWNS) == VLKTARG_OWNS);
            EXPECT_EQ(VLKTargIsValid(&t, VLKXS_MODE_CHECK).code, 0);
            ASSERT_EQ(t.nShell, m.nShell);
            EXPECT_TRUE(t.pShell[0].Ebind == m.firstEbind && t.pShell[0].Ukin == 0 && t.pShell[0].occ == m.electrons);
            double occ = 0.0, Z = 0.0;
            for (int32_t i = 1; i <= t.nShell; ++i) {
                occ += t.pShell[i].occ;
                EXPECT_TRUE(t.pShell[i].Ukin > 0 && t.pShell[i].Ebind >= t.pShell[i - 1].Ebind) << i;
            }
            for (int32_t k = 0; k < t.nAtom; ++k) Z += t.Zatom[k] * t.natom[k];
            EXPECT_TRUE(occ == m.electrons && Z == m.electrons);
        }
    }
    for (const char *text : {"", "  ", "H2O2", "wat er", "Xe", "N", "\tH2O"}) {
        ASSERT_EQ(VLKTargImportMaterial(&t, "N2", 0).code, 0);
        const SCMDSTATUS s = VLKTargImportMaterial(&t, text, 0);
        EXPECT_TRUE(s.code == VLKXS_C_NOMATERIAL && s.level == kError) << "'" << text << "'";
        EXPECT_TRUE(t.own == 0 && t.name == nullptr && t.pShell == nullptr) << "'" << text << "'";
    }
}

// Water as the test record: one static table, the five orbitals with their
// binding and kinetic energies in keV, two hydrogen atoms and one oxygen.
TEST(Target, WaterIsTheTestRecord) {
    SVLKTARG t = _VLKTargTest(0, 0);
    EXPECT_TRUE(VLKTargIsValid(&t, 0).code == 0 && (t.own & VLKTARG_OWNS) == 0);
    EXPECT_STREQ(t.name, "H2O");
    ASSERT_EQ(t.nShell, 5);
    const double B[] = {0.01261, 0.01473, 0.01855, 0.03220, 0.5397};
    const double U[] = {0.06191, 0.05952, 0.04836, 0.07071, 0.7962};
    for (int i = 0; i < 5; ++i) {
        EXPECT_DOUBLE_EQ(t.pShell[i + 1].Ebind, B[i]);
        EXPECT_DOUBLE_EQ(t.pShell[i + 1].Ukin, U[i]);
        EXPECT_EQ(t.pShell[i + 1].occ, 2);
    }
    EXPECT_TRUE(t.nAtom == 2 && t.Zatom[0] == 1 && t.natom[0] == 2 && t.Zatom[1] == 8 && t.natom[1] == 1);
    SVLKTARG imported{};
    ASSERT_EQ(VLKTargImportMaterial(&imported, t.name, 0).code, 0);
    EXPECT_EQ(std::memcmp(imported.pShell, t.pShell, 6 * sizeof(SVLKTARGSH)), 0);
    VLKTargFree(&imported, 0);
    EXPECT_EQ(VLKTargFree(&t, 0).code, 0);  // releases nothing
    EXPECT_EQ(_VLKTargTest(0, 0).pShell, _VLKTargTest(0, 0).pShell);
}

// An initialised record and every test record with one field spoilt are
// refused with the code of their companion.
TEST(Companions, IsValidRefusesIncompleteRecords) {
    static char empty[] = "";
    SVLKPROJ p;
    SVLKTARG t;
    std::memset(&p, 0xAB, sizeof p);
    std::memset(&t, 0x5A, sizeof t);
    ASSERT_EQ(VLKProjInit(&p, 0).code, 0);
    ASSERT_EQ(VLKTargInit(&t, 0).code, 0);
    EXPECT_EQ(VLKProjIsValid(&p, 0).code, VLKXS_C_BADPROJ);
    EXPECT_EQ(VLKTargIsValid(&t, 0).code, VLKXS_C_BADTARG);
    for (void (*spoil)(SVLKPROJ &) : {+[](SVLKPROJ &r) { r.name = nullptr; }, +[](SVLKPROJ &r) { r.name = empty; },
                                     +[](SVLKPROJ &r) { r.symbol = nullptr; }, +[](SVLKPROJ &r) { r.symbol = empty; },
                                     +[](SVLKPROJ &r) { r.type = -1; }, +[](SVLKPROJ &r) { r.type = 6; }}) {
        SVLKPROJ r = _VLKProjTest(3);
        spoil(r);
        const SCMDSTATUS s = VLKProjIsValid(&r, VLKXS_MODE_CHECK);
        EXPECT_TRUE(s.code == VLKXS_C_BADPROJ && s.level == kError);
    }
    for (void (*spoil)(SVLKTARG &) : {+[](SVLKTARG &r) { r.name = nullptr; }, +[](SVLKTARG &r) { r.name = empty; },
                                     +[](SVLKTARG &r) { r.nShell = -1; }, +[](SVLKTARG &r) { r.pShell = nullptr; },
                                     +[](SVLKTARG &r) { r.M = 0.0; }, +[](SVLKTARG &r) { r.M = -1.0; }}) {
        SVLKTARG r = _VLKTargTest(0, 0);
        spoil(r);
        const SCMDSTATUS s = VLKTargIsValid(&r, VLKXS_MODE_CHECK);
        EXPECT_TRUE(s.code == VLKXS_C_BADTARG && s.level == kError);
    }
}

// Space: the record plus the terminated texts and the shell rows, owned or
// borrowed alike.
TEST(Companions, Space) {
    SVLKPROJ p{}, e = _VLKProjTest(VLKPROJ_ELECTRON);
    SVLKTARG t{}, w = _VLKTargTest(0, 0);
    ASSERT_TRUE(VLKProjSpace(&p, 0).code == 0 && VLKTargSpace(&t, 0).code == 0);
    EXPECT_TRUE(p.space == sizeof(SVLKPROJ) && t.space == sizeof(SVLKTARG));
    ASSERT_TRUE(VLKProjFromStr(&p, "alpha", 0).code == 0 && VLKTargImportMaterial(&t, "N2", 0).code == 0);
    VLKProjSpace(&p, 0);
    VLKProjSpace(&e, 0);
    VLKTargSpace(&t, 0);
    VLKTargSpace(&w, 0);
    EXPECT_EQ(p.space, sizeof(SVLKPROJ) + sizeof "alpha particle" + sizeof "alpha");
    EXPECT_EQ(e.space, sizeof(SVLKPROJ) + sizeof "electron" + sizeof "e");
    EXPECT_EQ(t.space, sizeof(SVLKTARG) + sizeof "N2" + 7 * sizeof(SVLKTARGSH));
    EXPECT_EQ(w.space, sizeof(SVLKTARG) + sizeof "H2O" + 6 * sizeof(SVLKTARGSH));
    VLKProjFree(&p, 0);
    VLKTargFree(&t, 0);
}

// The operations that both companions have, for the tests below.
template <class T>
struct Companion {
    SCMDSTATUS (*init)(T *, int32_t), (*free)(T *, int32_t), (*space)(T *, int32_t);
    SCMDSTATUS (*dup)(T *, const T *, int32_t), (*valid)(const T *, int32_t), (*inspect)(const T *, int32_t);
    SCMDSTATUS (*from)(T *, const char *, int32_t);
    const char *word;  // accepted by `from`
    std::string tag, from_name;
};
const Companion<SVLKPROJ> kProj{VLKProjInit,    VLKProjFree,    VLKProjSpace, VLKProjDup, VLKProjIsValid,
                                VLKProjInspect, VLKProjFromStr, "alpha",      "vlkproj",  "FromStr"};
const Companion<SVLKTARG> kTarg{VLKTargInit,    VLKTargFree,           VLKTargSpace, VLKTargDup, VLKTargIsValid,
                                VLKTargInspect, VLKTargImportMaterial, "N2",         "vlktarg",  "ImportMaterial"};

// The blocks that a record owns when its own bit is set, and equal contents.
Blocks blocks(const SVLKPROJ &p) { return {p.name, p.symbol}; }
Blocks blocks(const SVLKTARG &t) { return {t.name, t.pShell}; }
bool same(const SVLKPROJ &a, const SVLKPROJ &b) {
    return std::strcmp(a.name, b.name) == 0 && std::strcmp(a.symbol, b.symbol) == 0 && a.type == b.type &&
           a.Z == b.Z && a.A == b.A && a.charge == b.charge && a.mass == b.mass;
}
bool same(const SVLKTARG &a, const SVLKTARG &b) {
    return std::strcmp(a.name, b.name) == 0 && a.M == b.M && a.nShell == b.nShell && a.density == b.density &&
           std::memcmp(a.pShell, b.pShell, (a.nShell + 1) * sizeof(SVLKTARGSH)) == 0 && a.nAtom == b.nAtom &&
           std::memcmp(a.Zatom, b.Zatom, sizeof a.Zatom) == 0 && std::memcmp(a.natom, b.natom, sizeof a.natom) == 0;
}

template <class T>
void null_arguments(const Companion<T> &c) {
    T r{};
    ASSERT_EQ(c.from(&r, c.word, 0).code, 0);
    EXPECT_EQ(c.from(&r, nullptr, 0).code, VLKXS_C_BADADDR);
    EXPECT_TRUE(r.own == 0 && r.name == nullptr) << "the refusal releases what the record held";
    for (const SCMDSTATUS &s : {c.init(nullptr, 0), c.free(nullptr, 0), c.space(nullptr, 0), c.dup(nullptr, &r, 0),
                                c.dup(&r, nullptr, 0), c.valid(nullptr, 0), c.inspect(nullptr, 0),
                                c.from(nullptr, c.word, 0)}) {
        EXPECT_TRUE(s.code == VLKXS_C_BADADDR && s.level == kError && s.col == -1) << s.origin;
    }
}

// A deep copy (into a byte copy of the source, whose pointers must not be
// released) owns blocks of its own and outlives the source; a shallow one
// borrows and releases nothing.
template <class T>
void duplicates(const Companion<T> &c) {
    T src{}, ref{}, deep, shallow;
    ASSERT_TRUE(c.from(&src, c.word, 0).code == 0 && c.from(&ref, c.word, 0).code == 0);
    std::memcpy(&deep, &src, sizeof deep);
    ASSERT_EQ(c.dup(&deep, &src, 0).code, 0);
    ASSERT_EQ(c.dup(&shallow, &src, VLKXS_MODE_SHALLOW).code, 0);
    EXPECT_TRUE(blocks(shallow) == blocks(src) && (shallow.own & 1u) == 0);
    c.free(&shallow, 0);
    ASSERT_TRUE(same(src, ref));
    const Blocks of_source = blocks(src);
    c.free(&src, 0);
    for (std::size_t i = 0; i < of_source.size(); ++i) EXPECT_NE(blocks(deep)[i], of_source[i]) << i;
    EXPECT_TRUE((deep.own & 1u) == 1u && same(deep, ref) && c.valid(&deep, 0).code == 0);
    c.free(&deep, 0);
    c.free(&ref, 0);
}

// Every failed allocation of a word conversion or a deep copy gives code 1
// and an empty record.
template <class T>
void allocation_faults(const Companion<T> &c) {
    T src{}, r{};
    ASSERT_EQ(c.from(&src, c.word, 0).code, 0);
    for (const bool deep : {false, true}) {
        const int failed = vlktest::fault_loop(
            [&] {
                c.free(&r, 0);
                return deep ? c.dup(&r, &src, 0) : c.from(&r, c.word, 0);
            },
            [&](const SCMDSTATUS &s, long n) {
                EXPECT_TRUE(s.code == VLKXS_C_RUNTIME && s.level == kError) << n;
                EXPECT_TRUE(r.own == 0 && blocks(r) == Blocks(2, nullptr)) << n;
            });
        EXPECT_GT(failed, 0);
    }
    c.free(&r, 0);
    c.free(&src, 0);
}

// Trace lines with the bit; no report ever, not even of a failure.
template <class T>
void protocol(const Companion<T> &c) {
    T r{};
    vlktest::Capture err(stderr);
    c.init(&r, VLKXS_MODE_TRACE);
    c.from(&r, "nonsense", VLKXS_MODE_TRACE);
    c.valid(&r, 0);
    c.dup(nullptr, &r, 0);
    c.free(&r, 0);
    const std::string init = c.tag + "(Init)", from = c.tag + "(" + c.from_name + ")";
    EXPECT_EQ(err.finish(), "<D> " + init + ".....\n<D> " + init + " done\n<D> " + from + ".....\n<D> " + from +
                                " done\n");
}

TEST(Companions, NullArgumentsAreBadAddresses) {
    null_arguments(kProj);
    null_arguments(kTarg);
}

TEST(Companions, Duplicates) {
    duplicates(kProj);
    duplicates(kTarg);
}

TEST(Companions, AllocationFaults) {
    allocation_faults(kProj);
    allocation_faults(kTarg);
}

TEST(Companions, TraceLinesAndNoReports) {
    protocol(kProj);
    protocol(kTarg);
}

}  // namespace
