// Target companion: built-in materials, life cycle, ownership and the quiet,
// trace-only protocol.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/alloc.hpp"
#include "faults.hpp"
#include "vlkxs.h"

namespace {

constexpr uint32_t kError = VLKXS_LEVEL_ERROR;

struct Material {
    const char *text;
    const char *name;
    double M;
    double density;
    int32_t nShell;
    double electrons;
    double firstEbindKeV;
};

const Material kMaterials[] = {
    {"H2O", "H2O", 18.01528, 1.0, 5, 10, 0.01261},
    {" water  ", "H2O", 18.01528, 1.0, 5, 10, 0.01261},
    {"h2o", "H2O", 18.01528, 1.0, 5, 10, 0.01261},
    {"H", "H", 1.00794, 0.0000899, 1, 1, 0.0136057},
    {"he", "He", 4.002602, 0.0001786, 1, 2, 0.024587},
    {"N2", "N2", 28.0134, 0.0012506, 6, 14, 0.01558},
    {"AR", "Ar", 39.948, 0.0017837, 5, 18, 0.01576},
};

TEST(TargImport, BuiltInMaterialsAreValidAndRoundTrip) {
    for (const Material &m : kMaterials) {
        SCOPED_TRACE(m.text);
        SVLKTARG t{};
        SCMDSTATUS s = VLKTargImportMaterial(&t, m.text, 0);
        ASSERT_EQ(s.code, 0);
        EXPECT_STREQ(s.origin, "vlktarg(ImportMaterial)");
        EXPECT_STREQ(t.name, m.name);
        EXPECT_DOUBLE_EQ(t.M, m.M);
        EXPECT_DOUBLE_EQ(t.density, m.density);
        ASSERT_EQ(t.nShell, m.nShell);
        EXPECT_EQ(t.own & VLKTARG_OWNS, VLKTARG_OWNS);
        EXPECT_EQ(VLKTargIsValid(&t, VLKXS_MODE_CHECK).code, 0);
        // Row 0: the whole target; rows 1..nShell: outermost orbital first.
        EXPECT_DOUBLE_EQ(t.pShell[0].Ebind, m.firstEbindKeV);
        EXPECT_EQ(t.pShell[0].Ukin, 0.0);
        EXPECT_EQ(t.pShell[0].occ, m.electrons);
        double occ = 0.0;
        for (int32_t i = 1; i <= t.nShell; ++i) {
            occ += t.pShell[i].occ;
            EXPECT_GT(t.pShell[i].Ukin, 0.0);
            EXPECT_GE(t.pShell[i].Ebind, t.pShell[i - 1].Ebind) << i;
        }
        EXPECT_EQ(occ, m.electrons);
        double Z = 0.0;
        for (int32_t k = 0; k < t.nAtom; ++k) Z += t.Zatom[k] * t.natom[k];
        EXPECT_EQ(Z, m.electrons);
        // The stored name is accepted back, into the filled record.
        const std::string name = t.name;
        ASSERT_EQ(VLKTargImportMaterial(&t, name.c_str(), 0).code, 0);
        EXPECT_EQ(t.name, name);
        EXPECT_EQ(t.nShell, m.nShell);
        VLKTargFree(&t, 0);
    }
}

TEST(TargImport, WaterOrbitalsInKeV) {
    SVLKTARG t{};
    ASSERT_EQ(VLKTargImportMaterial(&t, "water", 0).code, 0);
    const double B[] = {0.01261, 0.01473, 0.01855, 0.03220, 0.5397};
    const double U[] = {0.06191, 0.05952, 0.04836, 0.07071, 0.7962};
    for (int i = 0; i < 5; ++i) {
        EXPECT_DOUBLE_EQ(t.pShell[i + 1].Ebind, B[i]);
        EXPECT_DOUBLE_EQ(t.pShell[i + 1].Ukin, U[i]);
        EXPECT_EQ(t.pShell[i + 1].occ, 2.0);
    }
    EXPECT_EQ(t.nAtom, 2);
    EXPECT_EQ(t.Zatom[0], 1);  // two hydrogen atoms, one oxygen atom
    EXPECT_EQ(t.natom[0], 2);
    EXPECT_EQ(t.Zatom[1], 8);
    EXPECT_EQ(t.natom[1], 1);
    VLKTargFree(&t, 0);
}

TEST(TargImport, UnknownMaterialsLeaveAnEmptyRecord) {
    for (const char *text : {"", "  ", "H2O2", "wat er", "Xe", "N", "\tH2O"}) {
        SCOPED_TRACE(text);
        SVLKTARG t{};
        ASSERT_EQ(VLKTargImportMaterial(&t, "N2", 0).code, 0);
        SCMDSTATUS s = VLKTargImportMaterial(&t, text, 0);
        EXPECT_EQ(s.code, VLKXS_C_NOMATERIAL);
        EXPECT_EQ(s.level, kError);
        EXPECT_EQ(t.own, 0u);
        EXPECT_EQ(t.name, nullptr);
        EXPECT_EQ(t.pShell, nullptr);
        EXPECT_EQ(VLKTargFree(&t, 0).code, 0);
    }
    SVLKTARG t{};
    EXPECT_EQ(VLKTargImportMaterial(&t, nullptr, 0).code, VLKXS_C_BADADDR);
    EXPECT_EQ(VLKTargImportMaterial(nullptr, "H2O", 0).code, VLKXS_C_BADADDR);
    for (SCMDSTATUS s : {VLKTargInit(nullptr, 0), VLKTargFree(nullptr, 0), VLKTargSpace(nullptr, 0),
                         VLKTargDup(nullptr, &t, 0), VLKTargDup(&t, nullptr, 0), VLKTargIsValid(nullptr, 0),
                         VLKTargInspect(nullptr, 0)}) {
        EXPECT_EQ(s.code, VLKXS_C_BADADDR) << s.origin;
        EXPECT_EQ(s.col, -1);
    }
}

TEST(TargIsValid, RefusesIncompleteRecords) {
    SVLKTARG t;
    std::memset(&t, 0x5A, sizeof t);
    ASSERT_EQ(VLKTargInit(&t, 0).code, 0);
    EXPECT_EQ(VLKTargIsValid(&t, 0).code, VLKXS_C_BADTARG);
    char empty[] = "";
    const struct { const char *what; void (*spoil)(SVLKTARG &, char *); } cases[] = {
        {"null name", [](SVLKTARG &r, char *) { r.name = nullptr; }},
        {"empty name", [](SVLKTARG &r, char *e) { r.name = e; }},
        {"nShell -1", [](SVLKTARG &r, char *) { r.nShell = -1; }},
        {"null pShell", [](SVLKTARG &r, char *) { r.pShell = nullptr; }},
        {"M 0", [](SVLKTARG &r, char *) { r.M = 0.0; }},
        {"M -1", [](SVLKTARG &r, char *) { r.M = -1.0; }},
    };
    for (const auto &c : cases) {
        SVLKTARG r = _VLKTargTest(0, 0);
        c.spoil(r, empty);
        SCMDSTATUS s = VLKTargIsValid(&r, VLKXS_MODE_CHECK);
        EXPECT_EQ(s.code, VLKXS_C_BADTARG) << c.what;
        EXPECT_EQ(s.level, kError);
    }
}

TEST(TargTestRecord, WaterBorrowingStaticData) {
    SVLKTARG t = _VLKTargTest(0, 0);
    EXPECT_EQ(VLKTargIsValid(&t, 0).code, 0);
    EXPECT_STREQ(t.name, "H2O");
    EXPECT_EQ(t.own & VLKTARG_OWNS, 0u);
    ASSERT_EQ(t.nShell, 5);
    SVLKTARG imported{};
    ASSERT_EQ(VLKTargImportMaterial(&imported, t.name, 0).code, 0);
    EXPECT_EQ(std::memcmp(imported.pShell, t.pShell, 6 * sizeof(SVLKTARGSH)), 0);
    VLKTargFree(&imported, 0);
    EXPECT_EQ(VLKTargFree(&t, 0).code, 0);  // borrows: releases nothing
    EXPECT_EQ(_VLKTargTest(0, 0).pShell, _VLKTargTest(0, 0).pShell);
}

TEST(TargSpace, RecordNameAndShellRows) {
    SVLKTARG t{};
    VLKTargSpace(&t, 0);
    EXPECT_EQ(t.space, sizeof(SVLKTARG));
    ASSERT_EQ(VLKTargImportMaterial(&t, "N2", 0).code, 0);
    VLKTargSpace(&t, 0);
    EXPECT_EQ(t.space, sizeof(SVLKTARG) + sizeof "N2" + 7 * sizeof(SVLKTARGSH));
    VLKTargFree(&t, 0);
    SVLKTARG w = _VLKTargTest(0, 0);  // borrowed data counts as well
    VLKTargSpace(&w, 0);
    EXPECT_EQ(w.space, sizeof(SVLKTARG) + sizeof "H2O" + 6 * sizeof(SVLKTARGSH));
}

TEST(TargDup, DeepCopySurvivesTheSourceFree) {
    SVLKTARG src{}, dst;
    ASSERT_EQ(VLKTargImportMaterial(&src, "Ar", 0).code, 0);
    std::memcpy(&dst, &src, sizeof dst);  // dst holds a byte copy: must not be released
    ASSERT_EQ(VLKTargDup(&dst, &src, 0).code, 0);
    EXPECT_NE(dst.pShell, src.pShell);
    const SVLKTARGSH last = src.pShell[5];
    VLKTargFree(&src, 0);
    EXPECT_EQ(dst.own & VLKTARG_OWNS, VLKTARG_OWNS);
    EXPECT_STREQ(dst.name, "Ar");
    ASSERT_EQ(dst.nShell, 5);
    EXPECT_EQ(std::memcmp(&dst.pShell[5], &last, sizeof last), 0);
    EXPECT_EQ(VLKTargIsValid(&dst, 0).code, 0);
    VLKTargFree(&dst, 0);
}

TEST(TargDup, ShallowCopyOwnsNothing) {
    SVLKTARG src{}, dst;
    ASSERT_EQ(VLKTargImportMaterial(&src, "He", 0).code, 0);
    ASSERT_EQ(VLKTargDup(&dst, &src, VLKXS_MODE_SHALLOW).code, 0);
    EXPECT_EQ(dst.pShell, src.pShell);
    EXPECT_EQ(dst.own & VLKTARG_OWNS, 0u);
    VLKTargFree(&dst, 0);  // releases nothing
    EXPECT_EQ(src.pShell[1].occ, 2.0);
    VLKTargFree(&src, 0);
}

TEST(TargFaults, EveryFailedAllocationIsCleanedUp) {
    for (int deep = 0; deep < 2; ++deep) {
        SVLKTARG src = _VLKTargTest(0, 0);
        SVLKTARG t{};
        const int failed = vlktest::fault_loop(
            [&] {
                VLKTargFree(&t, 0);
                return deep ? VLKTargDup(&t, &src, 0) : VLKTargImportMaterial(&t, "N2", 0);
            },
            [&](const SCMDSTATUS &s, long n) {
                EXPECT_EQ(s.code, VLKXS_C_RUNTIME) << n;
                EXPECT_EQ(s.level, kError);
                EXPECT_EQ(t.own, 0u);
                EXPECT_EQ(t.name, nullptr);
                EXPECT_EQ(t.pShell, nullptr);
            });
        EXPECT_GT(failed, 0);
        VLKTargFree(&t, 0);
    }
}

}  // namespace
