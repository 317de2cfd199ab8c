// The xs reader: good files of each dimension, every failure with its place,
// the two warnings, and the set left empty after a failure.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "capture.hpp"
#include "faults.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

using vlktest::Capture;
using vlktest::count_lines;
using vlktest::data_file;

constexpr int32_t kQuiet = VLKXS_MODE_QUIET;

const std::string kHead0 = "!filetype xs i,t\n!fileversion 1\n!target H2O\n!projectile e\n";
const std::string kHead1 = "!filetype xs i,s\n!fileversion 1\n!target H2O\n!projectile e\n";
const std::string kHead2 = "!filetype xs i,d\n!fileversion 1\n!target H2O\n!projectile p\n";

class ReadTest : public ::testing::Test {
protected:
    void TearDown() override { VLKXSFree(&set, 0); }

    SCMDSTATUS read_path(const std::string &path, int32_t mode = 0) {
        path_ = path;
        Capture cap(stderr);
        const SCMDSTATUS s = VLKXSRead(&set, path_.c_str(), mode);
        err = cap.finish();
        return s;
    }
    SCMDSTATUS read_text(const std::string &content, int32_t mode = 0) {
        return read_path(dir.write("in.xs", content), mode);
    }
    void expect_empty() {
        EXPECT_EQ(set.nShell, 0);
        EXPECT_EQ(set.pShell, nullptr);
        EXPECT_EQ(set.infile, nullptr);
        EXPECT_EQ(set.proj.name, nullptr);
        EXPECT_EQ(set.targ.name, nullptr);
        EXPECT_EQ(set.IA, 0);
        EXPECT_EQ(set.dim, 0);
    }

    vlktest::TempDir dir;
    SVLKXS set{};
    std::string path_;
    std::string err;
};

TEST_F(ReadTest, TotalCrossSections) {
    const std::string path = data_file("e.H2O.it.xs");
    const SCMDSTATUS s = read_path(path);
    ASSERT_EQ(s.code, 0) << err;
    EXPECT_EQ(s.level, 0u);
    EXPECT_EQ(s.file, path_.c_str());
    EXPECT_EQ(s.line, 0);
    EXPECT_EQ(s.text, nullptr);
    EXPECT_EQ(s.col, -1);
    EXPECT_STREQ(s.origin, "vlkxs(Read)");
    EXPECT_EQ(err, "");
    EXPECT_EQ(set.IA, 2);
    EXPECT_EQ(set.dim, 0);
    EXPECT_EQ(set.dimmask, 0u);
    EXPECT_STREQ(set.infile, path.c_str());
    EXPECT_EQ(set.IAtag, nullptr);
    EXPECT_EQ(set.flag, 0u);
    EXPECT_EQ(set.space, 0u);
    EXPECT_STREQ(set.proj.symbol, "e");
    EXPECT_STREQ(set.targ.name, "H2O");
    ASSERT_EQ(set.nShell, 3);
    const int32_t numbers[] = {1, 2, 0};
    const int32_t counts[] = {3, 2, 4};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(set.pShell[i].shell, numbers[i]);
        EXPECT_EQ(set.pShell[i].nE, counts[i]);
    }
    const SVLKXSE *e = set.pShell[0].pE;
    EXPECT_EQ(e[0].E, 0.02);
    EXPECT_EQ(e[0].sigtot, 1.5E-17);
    EXPECT_EQ(e[2].sigtot, 1.26E-16);
    EXPECT_EQ(e[0].km, 0.0);
    EXPECT_EQ(e[0].n1, 0);
    EXPECT_EQ(e[0].dv1, nullptr);
    const SVLKXSE *sum = set.pShell[2].pE;
    EXPECT_EQ(sum[3].E, 1000.0);
    EXPECT_EQ(sum[3].km, 0.0161);
    // Each shell remembers the "!shell" line that opened it.
    EXPECT_EQ(set.pShell[0].at.line, 7);
    EXPECT_EQ(set.pShell[2].at.line, 20);
    EXPECT_EQ(set.pShell[1].at.code, VLKXS_C_BADADDR);
    // The text itself lived in the file image, which is gone by now.
    EXPECT_EQ(set.pShell[1].at.textlen, 14);
    EXPECT_EQ(e[0].at.line, 0) << "records of a total set are opened by no line";
}

TEST_F(ReadTest, SingleDifferential) {
    ASSERT_EQ(read_path(data_file("e.H2O.is.xs")).code, 0) << err;
    EXPECT_EQ(set.dim, 1);
    ASSERT_EQ(set.nShell, 2);
    const SVLKXSSH &sh = set.pShell[0];
    ASSERT_EQ(sh.nE, 2);
    EXPECT_EQ(sh.pE[0].E, 0.1);
    EXPECT_EQ(sh.pE[0].n1, 3);
    EXPECT_EQ(sh.pE[1].n1, 4);
    EXPECT_EQ(sh.pE[0].dv1[2], 0.0437);
    EXPECT_EQ(sh.pE[1].dvSig1[1], 2E-17);
    EXPECT_EQ(sh.pE[0].dvCum1, nullptr) << "the third column is never stored";
    EXPECT_EQ(sh.pE[0].nv2, nullptr);
    EXPECT_EQ(sh.pE[1].at.line, 14);
    const SVLKXSSH &sum = set.pShell[1];
    EXPECT_EQ(sum.shell, 0);
    EXPECT_EQ(sum.pE[0].E, 100.0);
    EXPECT_EQ(sum.pE[0].km, 12.5);
}

TEST_F(ReadTest, DoubleDifferential) {
    ASSERT_EQ(read_path(data_file("p.H2O.id.xs")).code, 0) << err;
    EXPECT_EQ(set.dim, 2);
    EXPECT_EQ(set.proj.type, VLKPROJ_ION);
    ASSERT_EQ(set.nShell, 2);
    const SVLKXSSH &sh = set.pShell[0];
    EXPECT_EQ(sh.shell, 2);
    ASSERT_EQ(sh.nE, 2);
    const SVLKXSE &e = sh.pE[0];
    ASSERT_EQ(e.n1, 2);
    EXPECT_EQ(e.dv1[0], 0.01);
    EXPECT_EQ(e.dv1[1], 1.0);
    EXPECT_EQ(e.dvSig1[0], 0.0) << "derived only by the completion";
    EXPECT_EQ(e.nv2[0], 3);
    EXPECT_EQ(e.nv2[1], 2);
    EXPECT_EQ(e.pdv2[0][0], -1.0);
    EXPECT_EQ(e.pdvSig2[0][1], 3E-16);
    EXPECT_EQ(e.pdvSig2[1][1], 4E-17);
    EXPECT_EQ(e.pdvCum2, nullptr);
    EXPECT_EQ(sh.pE[1].pdv2[0][1], 0.5);
    EXPECT_EQ(set.pShell[1].pE[0].nv2[0], 2);
}

TEST_F(ReadTest, CarriageReturnsCaseAndSeparatorsReadAlike) {
    ASSERT_EQ(read_path(data_file("crlf_tags.xs")).code, 0) << err;
    EXPECT_EQ(set.IA, 1);
    EXPECT_EQ(set.dim, 1);
    EXPECT_STREQ(set.targ.name, "H");
    ASSERT_EQ(set.nShell, 2);
    EXPECT_EQ(set.pShell[0].shell, 1);
    EXPECT_EQ(set.pShell[1].shell, 3);
    const SVLKXSE &e = set.pShell[0].pE[0];
    EXPECT_EQ(e.E, 5.0);
    EXPECT_EQ(e.km, 0.0) << "km is read in shell 0 alone";
    ASSERT_EQ(e.n1, 3);
    EXPECT_EQ(e.dv1[0], -1.0);
    EXPECT_EQ(e.dv1[1], 0.5);
    EXPECT_EQ(e.dvSig1[2], 3e-16);
    EXPECT_EQ(set.pShell[1].pE[0].n1, 1) << "a last line without a line end is a line";
}

struct Failure {
    const char *name;
    std::string content;
    int32_t code;
    int32_t line;
    const char *text;  // the offending line; null where no line is current
};

class ReadFailure : public ReadTest, public ::testing::WithParamInterface<Failure> {};

TEST_P(ReadFailure, ReportsCodeAndPlaceAndLeavesTheSetEmpty) {
    const Failure &f = GetParam();
    const SCMDSTATUS s = read_text(f.content, kQuiet);
    EXPECT_EQ(s.code, f.code) << err;
    EXPECT_EQ(s.level, VLKXS_LEVEL_ERROR);
    EXPECT_EQ(s.line, f.line);
    EXPECT_STREQ(s.origin, "vlkxs(Read)");
    EXPECT_EQ(s.msg, nullptr);
    if (f.text == nullptr) {
        EXPECT_EQ(s.text, nullptr);
    } else {
        ASSERT_NE(s.text, nullptr);
        EXPECT_EQ(std::string(s.text, s.textlen), f.text);
    }
    EXPECT_EQ(count_lines(err, "<E> vlkxs(Read)"), 0) << "quiet: the reader reports nothing";
    expect_empty();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ReadFailure,
    ::testing::Values(
        Failure{"EmptyFile", "", 48, 0, nullptr}, Failure{"OnlyComments", "# a\n\n   \n#b\n", 48, 0, nullptr},
        Failure{"NoShell", kHead0, 48, 0, nullptr}, Failure{"DataBeforeFiletype", "1 2\n", 39, 1, "1 2"},
        Failure{"SecondFiletype", "!filetype xs i,t\n!filetype xs i,t\n", 39, 2, "!filetype xs i,t"},
        Failure{"VersionFirst", "!fileversion 1\n", 39, 1, "!fileversion 1"},
        Failure{"TargetAfterTarget", "!filetype xs i,t\n!fileversion 1\n!target H2O\n!target H2O\n", 39, 4,
                "!target H2O"},
        Failure{"FiletypeNotXs", "!filetype xx i,t\n", 42, 1, "!filetype xx i,t"},
        Failure{"FiletypeTwoWords", "!filetype xs i\n", 42, 1, "!filetype xs i"},
        Failure{"FiletypeBadInteraction", "!filetype xs z,t\n", 20, 1, "!filetype xs z,t"},
        Failure{"FiletypeBadDimension", "!filetype xs i,S\n", 21, 1, "!filetype xs i,S"},
        Failure{"VersionMissing", "!filetype xs i,t\n!fileversion\n", 43, 2, "!fileversion"},
        Failure{"VersionBlanksOnly", "!filetype xs i,t\n!fileversion   \n", 44, 2, "!fileversion   "},
        Failure{"VersionNotInteger", "!filetype xs i,t\n!fileversion 1.5\n", 44, 2, "!fileversion 1.5"},
        Failure{"UnknownTarget", "!filetype xs i,t\n!fileversion 1\n!target Unobtainium\n", 45, 3,
                "!target Unobtainium"},
        Failure{"UnknownProjectile", "!filetype xs i,t\n!fileversion 1\n!target H2O\n!projectile q\n", 46, 4,
                "!projectile q"},
        Failure{"ShellNoNumber", kHead0 + "!shell abc\n", 44, 5, "!shell abc"},
        Failure{"ShellNegative", kHead0 + "!shell -1\n", 47, 5, "!shell -1"},
        Failure{"ShellTwice", kHead0 + "!shell 1\n1 2\n!shell 1\n3 4\n", 52, 7, "!shell 1"},
        Failure{"EprojInTotalFile", kHead0 + "!shell 1\n!eproj 1\n", 39, 6, "!eproj 1"},
        Failure{"EprojNoNumber", kHead1 + "!shell 1\n!eproj abc\n", 39, 6, "!eproj abc"},
        Failure{"EprojNegative", kHead1 + "!shell 1\n!eproj -1\n", 49, 6, "!eproj -1"},
        Failure{"EprojTwice", kHead1 + "!shell 1\n!eproj 1000\n1 2\n!eproj 1E+03\n1 2\n", 53, 8, "!eproj 1E+03"},
        Failure{"EsecInSingleFile", kHead1 + "!shell 1\n!eproj 1\n!esec 1\n", 39, 7, "!esec 1"},
        Failure{"EsecNoNumber", kHead2 + "!shell 1\n!eproj 1\n!esec abc\n", 44, 7, "!esec abc"},
        Failure{"EsecondIsEsec", kHead2 + "!shell 1\n!eproj 1\n!esecond 5\n", 44, 7, "!esecond 5"},
        Failure{"EsecNegative", kHead2 + "!shell 1\n!eproj 1\n!esec -0.5\n", 50, 7, "!esec -0.5"},
        Failure{"EsecTwice", kHead2 + "!shell 1\n!eproj 1\n!esec 2\n1 2\n!esec 2.0\n1 2\n", 54, 9, "!esec 2.0"},
        Failure{"ShellRightAfterEsec", kHead2 + "!shell 1\n!eproj 1\n!esec 2\n!shell 2\n", 39, 8, "!shell 2"},
        Failure{"DataBelowShellInSingleFile", kHead1 + "!shell 1\n1 2\n", 39, 6, "1 2"},
        Failure{"DataNoNumber", kHead0 + "!shell 1\nabc def\n", 39, 6, "abc def"},
        Failure{"DataOneNumber", kHead0 + "!shell 1\n1\n", 41, 6, "1"},
        Failure{"DataNegativeSecond", kHead0 + "!shell 1\n1 -2\n", 51, 6, "1 -2"},
        Failure{"DataNegativeThird", kHead1 + "!shell 1\n!eproj 1\n-1 2 -0.1\n", 51, 7, "-1 2 -0.1"},
        Failure{"TabLineIsARow", kHead0 + "!shell 1\n1 2\n\t\t\n", 39, 7, "\t\t"},
        // Errors come by pass, not by line: a repeated shell (pass 1) before
        // a repeated energy earlier in the file (pass 2), a misplaced line
        // (pass 0) before a bad data line (last pass).
        Failure{"ShellsBeforeEnergies", kHead1 + "!shell 1\n!eproj 1\n1 2\n!eproj 1\n1 2\n!shell 1\n!eproj 2\n1 2\n",
                52, 10, "!shell 1"},
        Failure{"OrderBeforeData", kHead0 + "!shell 1\n1\n!eproj 3\n", 39, 7, "!eproj 3"}),
    [](const ::testing::TestParamInfo<Failure> &i) { return std::string(i.param.name); });

TEST_F(ReadTest, FailureIsReportedOnceWithoutQuiet) {
    const SCMDSTATUS s = read_text(kHead0 + "!shell 1\n1\n");
    EXPECT_EQ(s.code, 41);
    EXPECT_STREQ(s.msg, "read: too few data");
    EXPECT_EQ(count_lines(err, "<E> "), 1) << err;
    EXPECT_NE(err.find(":6: 1\n"), std::string::npos) << err;
}

TEST_F(ReadTest, BadInteractionWordReportedByConversionOnlyWhenQuiet) {
    read_text("!filetype xs z,t\n", kQuiet);
    EXPECT_EQ(count_lines(err, "<E> "), 1);
    EXPECT_EQ(count_lines(err, "<E> vlkxs(IATypeFromStr)"), 1);
    read_text("!filetype xs z,t\n");
    EXPECT_EQ(count_lines(err, "<E> "), 2);
}

TEST_F(ReadTest, MissingFile) {
    const std::string path = dir.prefix() + "nope.xs";
    const SCMDSTATUS s = read_path(path, kQuiet);
    EXPECT_EQ(s.code, VLKXS_C_RUNTIME);
    EXPECT_STREQ(s.item, path.c_str());
    EXPECT_EQ(s.file, nullptr);
    expect_empty();
}

TEST_F(ReadTest, NullArguments) {
    EXPECT_EQ(VLKXSRead(nullptr, "x", kQuiet).code, VLKXS_C_BADADDR);
    std::memset(&set, 0x5a, sizeof set);  // raw storage: the reader initialises it
    const SCMDSTATUS s = VLKXSRead(&set, nullptr, kQuiet);
    EXPECT_EQ(s.code, VLKXS_C_BADADDR);
    expect_empty();
}

struct WarningCase {
    const char *name;
    std::string content;
    int warnings;
    const char *where;  // text of the report's location line
};

class ReadWarning : public ReadTest, public ::testing::WithParamInterface<WarningCase> {};

TEST_P(ReadWarning, WarnsAndSucceeds) {
    const WarningCase &w = GetParam();
    const SCMDSTATUS s = read_text(w.content, kQuiet);
    EXPECT_EQ(s.code, 0) << err;
    EXPECT_EQ(s.level, 0u);
    EXPECT_EQ(count_lines(err, "<W> vlkxs(Read): "), w.warnings) << err;
    EXPECT_NE(err.find(w.where), std::string::npos) << err;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ReadWarning,
    ::testing::Values(
        WarningCase{"UnknownTagTotal", kHead0 + "!comment 1\n9 9\n!shell 1\n1 2\n", 3, ":5: !comment 1\n"},
        WarningCase{"UnknownTagSingle", kHead1 + "!shell 1\n!eproj 1\n1 2\n!nope\n-5 -5\n", 4, ":8: !nope\n"},
        WarningCase{"UnknownTagDouble", kHead2 + "!shell 1\n!eproj 1\n!esec 1\n1 2\n!x\n", 5, ":9: !x\n"},
        WarningCase{"UnknownTagBeforeFiletype", "!hello\n" + kHead0 + "!shell 1\n1 2\n", 3, ":1: !hello\n"},
        WarningCase{"FileIsUnknownTag", "!file\n" + kHead0 + "!shell 1\n1 2\n", 3, ":1: !file\n"},
        WarningCase{"ShellWithoutData", kHead0 + "!shell 4\n!shell 1\n1 2\n", 1, ":5: !shell 4\n"},
        WarningCase{"EprojWithoutData", kHead1 + "!shell 1\n!eproj 1\n!eproj 2\n1 2\n", 1, ":6: !eproj 1\n"},
        WarningCase{"EsecWithoutData", kHead2 + "!shell 1\n!eproj 7\n!esec 1\n!esec 2\n1 2\n", 1, ":6: !eproj 7\n"},
        WarningCase{"EndsAfterEsec", kHead2 + "!shell 1\n!eproj 7\n!esec 1\n", 1, ":6: !eproj 7\n"}),
    [](const ::testing::TestParamInfo<WarningCase> &i) { return std::string(i.param.name); });

TEST_F(ReadTest, EmptySectionsKeepTheirCountsAndNullArrays) {
    ASSERT_EQ(
        read_text(kHead2 + "!shell 1\n!eproj 7\n!esec 1\n!esec 2\n1 2\n!eproj 8\n!shell 2\n!eproj 1\n!esec 1\n1 1\n")
            .code,
        0)
        << err;
    ASSERT_EQ(set.nShell, 2);
    const SVLKXSE &e = set.pShell[0].pE[0];
    ASSERT_EQ(e.n1, 2);
    EXPECT_EQ(e.nv2[0], 0);
    EXPECT_EQ(e.pdv2[0], nullptr);
    EXPECT_EQ(e.pdvSig2[0], nullptr);
    EXPECT_EQ(e.nv2[1], 1);
    const SVLKXSE &empty = set.pShell[0].pE[1];
    EXPECT_EQ(empty.n1, 0);
    EXPECT_EQ(empty.dv1, nullptr);
    EXPECT_EQ(count_lines(err, "<W> "), 2);
}

TEST_F(ReadTest, UnknownTagHidesTheRestOfASection) {
    ASSERT_EQ(read_text(kHead1 + "!shell 1\n!eproj 1\n1 2\n!comment\n2 3\nnot even numbers\n!eproj 2\n5 6\n").code, 0)
        << err;
    EXPECT_EQ(set.pShell[0].pE[0].n1, 1);
    EXPECT_EQ(set.pShell[0].pE[1].n1, 1);
    EXPECT_EQ(set.pShell[0].pE[1].dv1[0], 5.0);
}

TEST_F(ReadTest, ValuesThatPassTheReader) {
    // Repeated E in a total table, E and cross section 0, km missing in
    // shell 0, a near-duplicate energy, one energy in two shells, a cosine
    // in the first column.
    ASSERT_EQ(read_text(kHead0 + "!Shell2\n0 0\n0 0\n!SHELL 0\n5 1\n").code, 0) << err;
    EXPECT_EQ(set.pShell[0].shell, 2);
    EXPECT_EQ(set.pShell[0].nE, 2);
    EXPECT_EQ(set.pShell[1].pE[0].km, 0.0);
    VLKXSFree(&set, 0);
    ASSERT_EQ(
        read_text(kHead1 + "!shell 0\n!eproj 1000\n-1 0\n!eproj 1000.0001\n-1 1\n!shell 1\n!eproj 1000 3\n0 0 0\n")
            .code,
        0)
        << err;
    EXPECT_EQ(set.pShell[0].pE[0].km, 0.0);
    EXPECT_EQ(set.pShell[1].pE[0].km, 0.0) << "ignored outside shell 0";
    EXPECT_EQ(set.pShell[0].pE[0].dv1[0], -1.0);
}

TEST_F(ReadTest, FiledateMayRepeatAndFollowTarget) {
    ASSERT_EQ(read_text("!filetype xs x,t\n!fileversion -7\n!filedate\n!target H2O\n!filedate a\n!filedate b\n"
                        "!target He\n!projectile e+\n!shell 1\n1 2\n")
                  .code,
              0)
        << err;
    EXPECT_STREQ(set.targ.name, "He") << "a second target replaces the first";
    EXPECT_EQ(set.IA, 3);
    EXPECT_EQ(set.proj.type, VLKPROJ_POSITRON);
}

TEST_F(ReadTest, TraceLines) {
    ASSERT_EQ(read_text(kHead0 + "!shell 1\n1 2\n", VLKXS_MODE_TRACE).code, 0);
    EXPECT_EQ(err.rfind("<D> vlkxs(Read).....\n", 0), 0u) << err;
    EXPECT_NE(err.find("<D> strdup(" + path_ + ")...\n"), std::string::npos);
    EXPECT_EQ(count_lines(err, "<D> 0 0 => 1"), 3) << "one for each pass";
    EXPECT_EQ(count_lines(err, "<D> data: 9 6 => 10"), 3);
    EXPECT_NE(err.find("<D> vlkxs(Read) done\n"), std::string::npos);
}

TEST_F(ReadTest, EveryAllocationFailureEndsCleanly) {
    for (const char *name : {"e.H2O.it.xs", "e.H2O.is.xs", "p.H2O.id.xs"}) {
        SCOPED_TRACE(name);
        const int failures = vlktest::fault_loop(
            [&] { return read_path(data_file(name), kQuiet); },
            [&](const SCMDSTATUS &s, long n) {
                // Inside a companion the failure shows as a bad target or
                // projectile.
                EXPECT_TRUE(s.code == VLKXS_C_RUNTIME || s.code == VLKXS_C_R_TARGET || s.code == VLKXS_C_R_PROJECTILE)
                    << "allocation " << n << ": code " << s.code;
                expect_empty();
            });
        EXPECT_GT(failures, 5);
        VLKXSFree(&set, 0);
    }
}

}  // namespace
