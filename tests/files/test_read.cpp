// The xs reader: good files, every failure with its place, the warnings.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "capture.hpp"
#include "faults.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

using vlktest::count_lines;
using vlktest::data_file;
constexpr int32_t kQuiet = VLKXS_MODE_QUIET;
const std::string kHead0 = "!filetype xs i,t\n!fileversion 1\n!target H2O\n!projectile e\n";
const std::string kHead1 = "!filetype xs i,s\n!fileversion 1\n!target H2O\n!projectile e\n";
const std::string kHead2 = "!filetype xs i,d\n!fileversion 1\n!target H2O\n!projectile p\n";

class Read : public ::testing::Test {
protected:
    void TearDown() override { VLKXSFree(&set, 0); }
    // Reads into the set, released first; stderr goes to `err`.
    SCMDSTATUS read_path(const std::string &path, int32_t mode = 0) {
        VLKXSFree(&set, 0);
        path_ = path;
        vlktest::Capture cap(stderr);
        const SCMDSTATUS s = VLKXSRead(&set, path_.c_str(), mode);
        err = cap.finish();
        return s;
    }
    SCMDSTATUS read_text(const std::string &content, int32_t mode = 0) {
        return read_path(dir.write("in.xs", content), mode);
    }
    bool empty() const {
        return set.nShell == 0 && set.pShell == nullptr && set.infile == nullptr && set.proj.name == nullptr &&
               set.targ.name == nullptr && set.IA == 0 && set.dim == 0;
    }

    vlktest::TempDir dir;
    SVLKXS set{};
    std::string path_, err;
};

TEST_F(Read, TotalCrossSections) {
    const SCMDSTATUS s = read_path(data_file("e.H2O.it.xs"));
    ASSERT_EQ(s.code, 0) << err;
    EXPECT_TRUE(s.level == 0 && s.file == path_.c_str() && s.line == 0 && s.text == nullptr && s.col == -1);
    EXPECT_TRUE(!std::strcmp(s.origin, "vlkxs(Read)") && err.empty()) << err;
    EXPECT_TRUE(set.IA == 2 && set.dim == 0 && set.dimmask == 0 && set.flag == 0 && set.space == 0);
    EXPECT_STREQ(set.infile, path_.c_str());
    EXPECT_NE(set.infile, path_.c_str()) << "a copy of its own";
    EXPECT_EQ(set.IAtag, nullptr);
    EXPECT_STREQ(set.proj.symbol, "e");
    EXPECT_STREQ(set.targ.name, "H2O");
    ASSERT_EQ(set.nShell, 3);
    const int32_t numbers[] = {1, 2, 0}, counts[] = {3, 2, 4};
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(set.pShell[i].shell == numbers[i] && set.pShell[i].nE == counts[i]) << i;
    const SVLKXSE *e = set.pShell[0].pE, *sum = set.pShell[2].pE;
    EXPECT_TRUE(e[0].E == 0.02 && e[0].sigtot == 1.5E-17 && e[2].sigtot == 1.26E-16 && e[0].km == 0.0);
    EXPECT_TRUE(e[0].n1 == 0 && e[0].dv1 == nullptr);
    EXPECT_TRUE(sum[3].E == 1000.0 && sum[3].km == 0.0161);
    // Each shell keeps the place of its "!shell" line; a total record none.
    EXPECT_TRUE(set.pShell[0].at.line == 7 && set.pShell[2].at.line == 20 && set.pShell[1].at.textlen == 14);
    EXPECT_EQ(set.pShell[1].at.code, VLKXS_C_BADADDR);
    EXPECT_EQ(e[0].at.line, 0);
}

// A single differential third column isn't stored; dvSig1 of dim 2 is left.
TEST_F(Read, DifferentialFiles) {
    ASSERT_EQ(read_path(data_file("e.H2O.is.xs")).code, 0) << err;
    ASSERT_TRUE(set.dim == 1 && set.nShell == 2 && set.pShell[0].nE == 2);
    const SVLKXSE *e = set.pShell[0].pE, &sum = set.pShell[1].pE[0];
    EXPECT_TRUE(e[0].E == 0.1 && e[0].n1 == 3 && e[1].n1 == 4 && e[0].dv1[2] == 0.0437 && e[1].dvSig1[1] == 2E-17);
    EXPECT_TRUE(e[0].dvCum1 == nullptr && e[0].nv2 == nullptr && e[1].at.line == 14);
    EXPECT_TRUE(set.pShell[1].shell == 0 && sum.E == 100.0 && sum.km == 12.5);
    ASSERT_EQ(read_path(data_file("p.H2O.id.xs")).code, 0) << err;
    ASSERT_TRUE(set.dim == 2 && set.proj.type == VLKPROJ_ION && set.nShell == 2);
    const SVLKXSSH &sh = set.pShell[0];
    ASSERT_TRUE(sh.shell == 2 && sh.nE == 2 && sh.pE[0].n1 == 2);
    const SVLKXSE &d = sh.pE[0];
    EXPECT_TRUE(d.dv1[0] == 0.01 && d.dv1[1] == 1.0 && d.dvSig1[0] == 0.0 && d.nv2[0] == 3 && d.nv2[1] == 2);
    EXPECT_TRUE(d.pdv2[0][0] == -1.0 && d.pdvSig2[0][1] == 3E-16 && d.pdvSig2[1][1] == 4E-17 && d.pdvCum2 == nullptr);
    EXPECT_TRUE(sh.pE[1].pdv2[0][1] == 0.5 && set.pShell[1].pE[0].nv2[0] == 2);
}

// Carriage returns, tags in any case, commas, no final line end.
TEST_F(Read, CarriageReturnsCaseAndSeparators) {
    ASSERT_EQ(read_path(data_file("crlf_tags.xs")).code, 0) << err;
    ASSERT_TRUE(set.IA == 1 && set.dim == 1 && set.nShell == 2);
    EXPECT_STREQ(set.targ.name, "H");
    const SVLKXSE &e = set.pShell[0].pE[0];
    EXPECT_TRUE(set.pShell[0].shell == 1 && set.pShell[1].shell == 3 && e.E == 5.0 && e.km == 0.0);
    ASSERT_EQ(e.n1, 3);
    EXPECT_TRUE(e.dv1[0] == -1.0 && e.dv1[1] == 0.5 && e.dvSig1[2] == 3e-16);
    EXPECT_EQ(set.pShell[1].pE[0].n1, 1);
}

// Each failure with code, line and text, quiet, the set left empty.  Errors
// come by pass, not by line (the two last rows).
TEST_F(Read, Failures) {
    const struct { std::string content; int32_t code, line; const char *text; /* null: no line current */ } rows[] = {
        {"", 48, 0, nullptr}, {"# a\n\n   \n#b\n", 48, 0, nullptr}, {kHead0, 48, 0, nullptr}, {"1 2\n", 39, 1, "1 2"},
        {"!filetype xs i,t\n!filetype xs i,t\n", 39, 2, "!filetype xs i,t"},
        {"!fileversion 1\n", 39, 1, "!fileversion 1"},
        {"!filetype xs i,t\n!fileversion 1\n!target H2O\n!target H2O\n", 39, 4, "!target H2O"},
        {"!filetype xx i,t\n", 42, 1, "!filetype xx i,t"}, {"!filetype xs i\n", 42, 1, "!filetype xs i"},
        {"!filetype xs z,t\n", 20, 1, "!filetype xs z,t"}, {"!filetype xs i,S\n", 21, 1, "!filetype xs i,S"},
        {"!filetype xs i,t\n!fileversion\n", 43, 2, "!fileversion"},
        {"!filetype xs i,t\n!fileversion   \n", 44, 2, "!fileversion   "},
        {"!filetype xs i,t\n!fileversion 1.5\n", 44, 2, "!fileversion 1.5"},
        {"!filetype xs i,t\n!fileversion 1\n!target Unobtainium\n", 45, 3, "!target Unobtainium"},
        {"!filetype xs i,t\n!fileversion 1\n!target H2O\n!projectile q\n", 46, 4, "!projectile q"},
        {kHead0 + "!shell abc\n", 44, 5, "!shell abc"}, {kHead0 + "!shell -1\n", 47, 5, "!shell -1"},
        {kHead0 + "!shell 1\n1 2\n!shell 1\n3 4\n", 52, 7, "!shell 1"},
        {kHead0 + "!shell 1\n!eproj 1\n", 39, 6, "!eproj 1"}, {kHead1 + "!shell 1\n!eproj abc\n", 39, 6, "!eproj abc"},
        {kHead1 + "!shell 1\n!eproj -1\n", 49, 6, "!eproj -1"},
        {kHead1 + "!shell 1\n!eproj 1000\n1 2\n!eproj 1E+03\n1 2\n", 53, 8, "!eproj 1E+03"},
        {kHead1 + "!shell 1\n!eproj 1\n!esec 1\n", 39, 7, "!esec 1"},
        {kHead2 + "!shell 1\n!eproj 1\n!esec abc\n", 44, 7, "!esec abc"},
        {kHead2 + "!shell 1\n!eproj 1\n!esecond 5\n", 44, 7, "!esecond 5"},
        {kHead2 + "!shell 1\n!eproj 1\n!esec -0.5\n", 50, 7, "!esec -0.5"},
        {kHead2 + "!shell 1\n!eproj 1\n!esec 2\n1 2\n!esec 2.0\n1 2\n", 54, 9, "!esec 2.0"},
        {kHead2 + "!shell 1\n!eproj 1\n!esec 2\n!shell 2\n", 39, 8, "!shell 2"},
        {kHead1 + "!shell 1\n1 2\n", 39, 6, "1 2"}, {kHead0 + "!shell 1\nabc def\n", 39, 6, "abc def"},
        {kHead0 + "!shell 1\n1\n", 41, 6, "1"}, {kHead0 + "!shell 1\n1 -2\n", 51, 6, "1 -2"},
        {kHead0 + "!shell 1\n1 2\n3 4\n5 6\n7 -8\n9 10\n", 51, 9, "7 -8"},
        {kHead1 + "!shell 1\n!eproj 1\n-1 2 -0.1\n", 51, 7, "-1 2 -0.1"},
        {kHead0 + "!shell 1\n1 2\n\t\t\n", 39, 7, "\t\t"},
        {kHead1 + "!shell 1\n!eproj 1\n1 2\n!eproj 1\n1 2\n!shell 1\n!eproj 2\n1 2\n", 52, 10, "!shell 1"},
        {kHead0 + "!shell 1\n1\n!eproj 3\n", 39, 7, "!eproj 3"},
        // Misplaced lines; a tag matched by its beginning.
        {"!filetype xs i,t\n!fileversion 1\n!target H2O\n!filedate\n!projectile e\n", 39, 5, "!projectile e"},
        {kHead0 + "!filedate\n", 39, 5, "!filedate"}, {kHead0 + "\t!shell 1\n", 39, 5, "\t!shell 1"},
        {kHead2 + "!shell 1\n!eproj 1\n!esec 1\n!eproj 2\n", 39, 8, "!eproj 2"},
        {kHead2 + "!shell 1\n!eproj 1\n1 2\n", 39, 7, "1 2"}, {"!filetypes xs i,t\n", 42, 1, "!filetypes xs i,t"},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.content);
        const SCMDSTATUS s = read_text(r.content, kQuiet);
        EXPECT_TRUE(s.code == r.code && s.line == r.line) << "code " << s.code << ", line " << s.line << "\n" << err;
        EXPECT_TRUE(s.level == VLKXS_LEVEL_ERROR && s.msg == nullptr);
        EXPECT_STREQ(s.origin, "vlkxs(Read)");
        if (r.text == nullptr || s.text == nullptr)
            EXPECT_EQ(s.text, r.text);
        else
            EXPECT_EQ(std::string(s.text, s.textlen), r.text);
        EXPECT_EQ(count_lines(err, "<E> vlkxs(Read)"), 0);
        EXPECT_TRUE(empty());
    }
}

// Reported once with its place; a bad interaction word by the conversion too.
// A missing file names its path; null arguments are bad addresses.
TEST_F(Read, ReportsMissingFileAndNullArguments) {
    SCMDSTATUS s = read_text(kHead0 + "!shell 1\n1\n");
    EXPECT_TRUE(s.code == 41 && count_lines(err, "<E> ") == 1 && err.find(":6: 1\n") != std::string::npos) << err;
    EXPECT_STREQ(s.msg, "read: too few data");
    read_text("!filetype xs z,t\n", kQuiet);
    EXPECT_TRUE(count_lines(err, "<E> ") == 1 && count_lines(err, "<E> vlkxs(IATypeFromStr)") == 1) << err;
    read_text("!filetype xs z,t\n");
    EXPECT_EQ(count_lines(err, "<E> "), 2) << err;
    s = read_path(dir.prefix() + "nope.xs", kQuiet);
    EXPECT_TRUE(s.code == VLKXS_C_RUNTIME && s.file == nullptr && empty());
    EXPECT_STREQ(s.item, path_.c_str());
    EXPECT_EQ(VLKXSRead(nullptr, "x", kQuiet).code, VLKXS_C_BADADDR);
    std::memset(&set, 0x5a, sizeof set);
    EXPECT_TRUE(VLKXSRead(&set, nullptr, kQuiet).code == VLKXS_C_BADADDR && empty());
}

// Successes: unknown tags and empty sections warned of even when quiet, the
// rest of a section hidden by an unknown tag; values and headers that pass.
TEST_F(Read, Successes) {
    using Check = bool (*)(const SVLKXS &);
    const struct { std::string content; int warnings; const char *where; Check check; } rows[] = {
        {kHead0 + "!comment 1\n9 9\n!shell 1\n1 2\n", 3, ":5: !comment 1\n", nullptr},
        {kHead1 + "!shell 1\n!eproj 1\n1 2\n!nope\n-5 -5\n", 4, ":8: !nope\n", nullptr},
        {kHead2 + "!shell 1\n!eproj 1\n!esec 1\n1 2\n!x\n", 5, ":9: !x\n", nullptr},
        {"!hello\n" + kHead0 + "!shell 1\n1 2\n", 3, ":1: !hello\n", nullptr},
        {"!file\n" + kHead0 + "!shell 1\n1 2\n", 3, ":1: !file\n", nullptr},
        {kHead0 + "!shell 4\n!shell 1\n1 2\n", 1, ":5: !shell 4\n", nullptr},
        {kHead1 + "!shell 1\n!eproj 1\n!eproj 2\n1 2\n", 1, ":6: !eproj 1\n", nullptr},
        {kHead2 + "!shell 1\n!eproj 7\n!esec 1\n!esec 2\n1 2\n", 1, ":6: !eproj 7\n", nullptr},
        {kHead2 + "!shell 1\n!eproj 7\n!esec 1\n", 1, ":6: !eproj 7\n", nullptr},
        {kHead2 + "!shell 1\n!eproj 7\n!esec 1\n!esec 2\n1 2\n!eproj 8\n!shell 2\n!eproj 1\n!esec 1\n1 1\n", 2, "",
         [](const SVLKXS &x) {
             const SVLKXSE &e = x.pShell[0].pE[0], &none = x.pShell[0].pE[1];
             return x.nShell == 2 && e.n1 == 2 && e.nv2[0] == 0 && e.pdv2[0] == nullptr && e.pdvSig2[0] == nullptr &&
                    e.nv2[1] == 1 && none.n1 == 0 && none.dv1 == nullptr;
         }},
        {kHead1 + "!shell 1\n!eproj 1\n1 2\n!comment\n2 3\nnot even numbers\n!eproj 2\n5 6\n", 4, "",
         [](const SVLKXS &x) {
             return x.pShell[0].pE[0].n1 == 1 && x.pShell[0].pE[1].n1 == 1 && x.pShell[0].pE[1].dv1[0] == 5;
         }},
        {kHead0 + "!Shell2\n0 0\n0 0\n!SHELL 0\n5 1\n", 0, "",
         [](const SVLKXS &x) { return x.pShell[0].shell == 2 && x.pShell[0].nE == 2 && x.pShell[1].pE[0].km == 0; }},
        {kHead1 + "!shell 0\n!eproj 1000\n-1 0\n!eproj 1000.0001\n-1 1\n!shell 1\n!eproj 1000 3\n0 0 0\n", 0, "",
         [](const SVLKXS &x) {
             return x.pShell[0].pE[0].km == 0 && x.pShell[1].pE[0].km == 0 && x.pShell[0].pE[0].dv1[0] == -1;
         }},
        {"!filetype xs x,t\n!fileversion -7\n!filedate\n!target H2O\n!filedate a\n!filedate b\n!target He\n"
         "!projectile e+\n!shell 1\n1 2\n", 0, "",
         [](const SVLKXS &x) {
             return !std::strcmp(x.targ.name, "He") && x.IA == 3 && x.proj.type == VLKPROJ_POSITRON;
         }},
    };
    for (const auto &r : rows) {
        const SCMDSTATUS s = read_text(r.content, kQuiet);
        ASSERT_TRUE(s.code == 0 && s.level == 0) << r.content << err;
        EXPECT_EQ(count_lines(err, "<W> vlkxs(Read): "), r.warnings) << r.content << err;
        EXPECT_NE(err.find(r.where), std::string::npos) << r.content << err;
        EXPECT_TRUE(r.check == nullptr || r.check(set)) << r.content;
    }
}

// A failed allocation (in a companion: bad target or projectile): empty set.
TEST_F(Read, EveryAllocationFailureEndsCleanly) {
    for (const char *name : {"e.H2O.it.xs", "e.H2O.is.xs", "p.H2O.id.xs"}) {
        const int failures = vlktest::fault_loop(
            [&] { return read_path(data_file(name), kQuiet); },
            [&](const SCMDSTATUS &s, long n) {
                EXPECT_TRUE(s.code == VLKXS_C_RUNTIME || s.code == VLKXS_C_R_TARGET || s.code == VLKXS_C_R_PROJECTILE)
                    << name << ", allocation " << n << ": code " << s.code;
                EXPECT_TRUE(empty()) << name << ", allocation " << n;
            });
        EXPECT_GT(failures, 5) << name;
    }
}

}  // namespace
