// The writer: its files against checked-in expected files, the round trip
// through the reader and the completion, and its failures.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "capture.hpp"
#include "faults.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

const char *const kFiles[] = {"e.H2O.it.xs", "e.H2O.is.xs", "p.H2O.id.xs"};

// Read and completed; the number of shells the file had.
int32_t load(SVLKXS &set, const std::string &path) {
    EXPECT_EQ(VLKXSRead(&set, path.c_str(), 0).code, 0) << path;
    const int32_t n = set.nShell;
    EXPECT_EQ(VLKXSComplete(&set, 0).code, 0) << path;
    return n;
}

// The date line aside, the xs file and the gd file are as expected.
TEST(Write, FilesAsExpectedAndBackAgain) {
    const auto undated = [](std::string s) {
        const std::size_t at = s.find("filedate    "), end = s.find('\n', at);
        EXPECT_EQ(end - at, 12u + 24u) << "ctime's 24 characters";
        return s.erase(at, end - at);
    };
    for (const char *name : kFiles) {
        vlktest::TempDir dir;
        SVLKXS a, b;
        const int32_t in_file = load(a, vlktest::data_file(name));
        ASSERT_EQ(VLKXSWrite(&a, dir.prefix().c_str(), 0).code, 0);
        ASSERT_EQ(VLKXSExportgd(&a, dir.prefix().c_str(), 0).code, 0);
        ASSERT_EQ(VLKXSWrite(&a, (dir.prefix() + "run1_").c_str(), 0).code, 0);
        EXPECT_TRUE(std::filesystem::exists(dir.prefix() + "run1_" + name)) << "the prefix goes first, unchanged";
        const std::string path = dir.prefix() + name;  // the data files are named as the writer names
        for (const std::string ending : {"", ".gd"})
            EXPECT_EQ(undated(vlktest::read_file(path + ending)),
                      undated(vlktest::read_file(vlktest::data_file("written/") + name + ending)))
                << name << ending;
        // Read back and completed, the set agrees with the first to the six
        // digits of the file; derived fields to what six digits allow.  A sum
        // shell that the completion made is an ordinary shell of the file:
        // its derived fields come from its own table, not from sums.
        load(b, path);
        ASSERT_EQ(a.nShell, b.nShell);
        const auto near = [](double x, double y, double tol) {
            return std::fabs(x - y) <= tol * std::fabs(x) + 1e-300;
        };
        for (int32_t i = 0; i < a.nShell; ++i)
            for (int32_t j = 0; j < a.pShell[i].nE; ++j) {
                const SVLKXSE &e = a.pShell[i].pE[j], &f = b.pShell[i].pE[j];
                const bool own = i < in_file;  // not a sum the completion made
                EXPECT_TRUE(near(e.E, f.E, 5e-6) &&
                            (!own || (near(e.sigtot, f.sigtot, 1e-4) && near(e.LET, f.LET, 1e-4))))
                    << name << " shell " << i << " record " << j;
                for (int32_t k = 0; k < e.n1; ++k) {
                    EXPECT_TRUE(near(e.dv1[k], f.dv1[k], 5e-6) && (!own || near(e.dvCum1[k], f.dvCum1[k], 1e-4)))
                        << name;
                    for (int32_t m = 0; e.nv2 != nullptr && m < e.nv2[k]; ++m)
                        EXPECT_TRUE(near(e.pdv2[k][m], f.pdv2[k][m], 5e-6) &&
                                    near(e.pdvSig2[k][m], f.pdvSig2[k][m], 5e-6));
                }
            }
        VLKXSFree(&a, 0);
        VLKXSFree(&b, 0);
    }
}

// Failures are always reported; an invalid set is reported by the
// validation too, unless quiet, and no file comes about.
TEST(Write, Failures) {
    vlktest::TempDir dir;
    SVLKXS raw;
    ASSERT_EQ(VLKXSRead(&raw, vlktest::data_file("e.H2O.is.xs").c_str(), 0).code, 0);  // not complete
    const std::string prefix = dir.prefix(), missing = prefix + "no/such/dir/";
    const struct {
        SVLKXS *set;
        const char *prefix;
        int32_t mode, code, reports;
    } cases[] = {{nullptr, prefix.c_str(), 0, VLKXS_C_BADADDR, 1},
                 {&raw, nullptr, VLKXS_MODE_QUIET, VLKXS_C_BADADDR, 1},
                 {&raw, prefix.c_str(), 0, VLKXS_C_SDCS_TABLE, 2},
                 {&raw, prefix.c_str(), VLKXS_MODE_QUIET, VLKXS_C_SDCS_TABLE, 1}};
    for (const auto &c : cases) {
        vlktest::Capture err(stderr);
        EXPECT_EQ(VLKXSWrite(c.set, c.prefix, c.mode).code, c.code);
        EXPECT_EQ(vlktest::count_lines(err.finish(), "<E> "), c.reports);
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
    VLKXSFree(&raw, 0);
    SVLKXS set;
    load(set, vlktest::data_file("p.H2O.id.xs"));
    vlktest::Capture err(stderr);
    EXPECT_EQ(VLKXSWrite(&set, missing.c_str(), VLKXS_MODE_QUIET).code, VLKXS_C_RUNTIME);
    vlktest::fault_loop([&] { return VLKXSWrite(&set, prefix.c_str(), VLKXS_MODE_QUIET); },
                        [](const SCMDSTATUS &s, long) { EXPECT_EQ(s.code, VLKXS_C_RUNTIME); });
    VLKXSFree(&set, 0);
}

}  // namespace
