// Duplication: deep copies own everything and outlive their source, shallow
// ones borrow everything and release nothing; failures leave the
// destination empty and the source whole.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "capture.hpp"
#include "faults.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

bool same(const double *a, const double *b, int32_t n) {
    return (a == nullptr) == (b == nullptr) && (a == nullptr || std::memcmp(a, b, sizeof(double) * n) == 0);
}

// Every count and number alike, in arrays of its own.
void expect_deep_copy(const SVLKXS &c, const SVLKXS &s) {
    ASSERT_EQ(c.nShell, s.nShell);
    EXPECT_TRUE(c.pShell != s.pShell && c.infile == nullptr && c.IA == s.IA && c.dim == s.dim);
    for (int32_t i = 0; i < s.nShell; ++i) {
        const SVLKXSSH &a = c.pShell[i], &b = s.pShell[i];
        ASSERT_TRUE(a.shell == b.shell && a.nE == b.nE && a.flag == 0 && a.at.line == 0);
        for (int32_t j = 0; j < b.nE; ++j) {
            const SVLKXSE &e = a.pE[j], &f = b.pE[j];
            EXPECT_EQ(std::memcmp(&e.E, &f.E, 14 * sizeof(double)), 0);
            ASSERT_TRUE(e.n1 == f.n1 && e.at.line == 0 && same(e.dv1, f.dv1, e.n1) && same(e.dvSig1, f.dvSig1, e.n1) &&
                        same(e.dvCum1, f.dvCum1, e.n1) && (e.nv2 == nullptr) == (f.nv2 == nullptr));
            EXPECT_TRUE(e.dv1 == nullptr || e.dv1 != f.dv1);
            // A table the source lacks (pdvCum2 before completion) has null rows.
            const auto row = [](double *const *t, int32_t k) { return t != nullptr ? t[k] : nullptr; };
            for (int32_t k = 0; f.nv2 != nullptr && k < f.n1; ++k)
                EXPECT_TRUE(e.nv2[k] == f.nv2[k] && same(e.pdv2[k], row(f.pdv2, k), f.nv2[k]) &&
                            same(e.pdvSig2[k], row(f.pdvSig2, k), f.nv2[k]) &&
                            same(e.pdvCum2[k], row(f.pdvCum2, k), f.nv2[k]));
        }
    }
}

TEST(Dup, DeepAndShallowOfEachFile) {
    for (const char *name : {"e.H2O.it.xs", "e.H2O.is.xs", "p.H2O.id.xs"})
        for (bool complete : {false, true}) {
            SVLKXS src, deep, shallow;
            ASSERT_EQ(VLKXSRead(&src, vlktest::data_file(name).c_str(), 0).code, 0);
            ASSERT_EQ(complete ? VLKXSComplete(&src, 0).code : 0, 0);
            src.flag = 3;
            VLKXSSpace(&src, 0);
            ASSERT_EQ(VLKXSDup(&deep, &src, 0).code, 0);
            expect_deep_copy(deep, src);
            EXPECT_EQ(deep.flag, 3u);
            EXPECT_EQ(deep.space + std::strlen(src.infile) + 1, src.space) << "no file name";
            EXPECT_TRUE(deep.proj.name != src.proj.name && std::string(deep.proj.name) == src.proj.name);
            ASSERT_EQ(VLKXSDup(&shallow, &src, VLKXS_MODE_SHALLOW).code, 0);
            EXPECT_TRUE(shallow.flag == 7u && shallow.pShell == src.pShell && shallow.infile == src.infile);
            VLKXSFree(&deep, 0);
            VLKXSFree(&shallow, 0);  // releases nothing
            EXPECT_EQ(VLKXSIsValid(&src, VLKXS_MODE_QUIET).code == 0, complete || src.dim == 0) << name;
            VLKXSFree(&src, 0);
        }
}

// A failed duplication reports whatever the quiet bit says and empties the
// destination; an allocation may fail in the projectile's copy (15), the
// target's (16) or the tables (1).
TEST(Dup, Failures) {
    SVLKXS src, dst;
    ASSERT_EQ(VLKXSRead(&src, vlktest::data_file("p.H2O.id.xs").c_str(), 0).code, 0);
    ASSERT_EQ(VLKXSComplete(&src, 0).code, 0);
    vlktest::Capture err(stderr);
    EXPECT_EQ(VLKXSDup(nullptr, &src, VLKXS_MODE_QUIET).code, VLKXS_C_BADADDR);
    EXPECT_EQ(VLKXSDup(&dst, nullptr, VLKXS_MODE_QUIET).code, VLKXS_C_BADADDR);
    EXPECT_TRUE(dst.pShell == nullptr && dst.nShell == 0);
    EXPECT_EQ(vlktest::count_lines(err.finish(), "<E> "), 2);
    int seen[3] = {0, 0, 0};
    vlktest::Capture reports(stderr);
    vlktest::fault_loop(
        [&] { return VLKXSDup(&dst, &src, VLKXS_MODE_QUIET); },
        [&](const SCMDSTATUS &s, long) {
            ASSERT_TRUE(s.code == VLKXS_C_RUNTIME || s.code == VLKXS_C_PROJDUP || s.code == VLKXS_C_TARGDUP);
            ++seen[s.code == VLKXS_C_RUNTIME ? 0 : s.code - VLKXS_C_PROJDUP + 1];
            EXPECT_TRUE(dst.pShell == nullptr && dst.proj.name == nullptr && dst.flag == 0);
        });
    EXPECT_TRUE(seen[0] > 0 && seen[1] > 0 && seen[2] > 0);
    expect_deep_copy(dst, src);
    VLKXSFree(&dst, 0);
    EXPECT_EQ(VLKXSIsValid(&src, 0).code, 0) << "the source stays whole";
    VLKXSFree(&src, 0);
}

}  // namespace
