// The tool's commands on the example files and on bad input: what they print,
// what they write, and their exit status.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "report.hpp"
#include "tool_support.hpp"
#include "version.hpp"

namespace {

using namespace vlktest;
using vlkcli::Argv;

const std::string kTotal = data_file("e.H2O.it.xs"), kSingle = data_file("e.H2O.is.xs"),
                  kDouble = data_file("p.H2O.id.xs");

constexpr const char *kHead = "!filetype xs i,s\n!fileversion 20080825\n!target H2O\n!projectile e\n!shell 1\n";
// A line the reader refuses (line 7), and secondary energies that fall, which
// leave a negative total after completion.
const std::string kSyntax = std::string(kHead) + "!eproj 1\nfoo bar\n";
const std::string kFalling = std::string(kHead) + "!eproj 1\n0.4 1e-18\n0.1 2e-17\n0 1.2e-16\n";

struct UsageCase {
    const char *args;
    int status;
    const char *out, *err;
};

TEST(Usage, HelpVersionAndWrongLines) {
    TempDir dir;
    const UsageCase cases[] = {
        {"", 2, "", "vlkxs: no command"},
        {"--help", 0, "usage: vlkxs [--trace] [--quiet] COMMAND", ""},
        {"frobnicate", 2, "", "unknown command frobnicate"},
        {"--bogus list", 2, "", "vlkxs: unknown option --bogus"},
        {"list --bogus x.xs", 2, "", "vlkxs list: unknown option --bogus"},
        {"list", 2, "", "vlkxs list: no file"},
        {"complete x.xs", 2, "", "vlkxs complete: no -o"},
        {"plot x.xs", 2, "", "vlkxs plot: no -o"},
        {"dump a.xs b.xs", 2, "", "vlkxs dump: one file"},
        {"check --json=1 x.xs", 2, "", "option --json takes no value"},
        {"calc -o", 2, "", "option -o needs a value"},
        {"calc extra", 2, "", "unexpected extra"},
        {"calc --relchange fast", 2, "", "--relchange needs a number, not fast"},
        {"calc --interaction z", 2, "", "unknown interaction z"},
        {"calc --dim q", 2, "", "unknown dimension q"},
    };
    for (const UsageCase &c : cases) {
        const Result r = tool(c.args, dir);
        EXPECT_EQ(r.status, c.status) << c.args;
        EXPECT_TRUE(r.out.starts_with(c.out)) << c.args << "\n" << r.out;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << c.args << "\n" << r.err;
        // A wrong line shows how to write it.
        EXPECT_EQ(c.status == 2, r.err.find("usage: vlkxs") != std::string::npos) << c.args;
    }
    EXPECT_EQ(tool("--version", dir).out, std::string("vlkxs ") + vlkcli::version() + "\n");
    for (const char *cmd : {"list", "check", "complete", "gd", "dump", "calc", "plot"}) {
        const Result r = tool(std::string(cmd) + " --help", dir);
        EXPECT_EQ(r.status, 0);
        EXPECT_TRUE(r.out.starts_with("usage: vlkxs " + std::string(cmd))) << r.out;
    }
}

TEST(List, EachFileListedFailuresReported) {
    TempDir dir;
    const std::string bad = dir.write("bad.xs", kSyntax), missing = dir.prefix() + "missing.xs";
    Result r = call(vlkcli::cmd_list, {kTotal});
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("projectile = electron"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("==>"), std::string::npos);
    EXPECT_NE(call(vlkcli::cmd_list, {"--trace", kTotal}).err.find("<D> vlkxs(Read)....."), std::string::npos);
    r = call(vlkcli::cmd_list, {kTotal, missing, kDouble, bad, "--quiet"});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("==> " + kDouble + " <==\n"), std::string::npos);
    EXPECT_NE(r.out.find("projectile = proton"), std::string::npos);
    EXPECT_NE(r.err.find("vlkxs list: " + missing + ": run time system error (code 1, vlkxs(Read)) at " + missing),
              std::string::npos)
        << r.err;
    EXPECT_NE(r.err.find("vlkxs list: " + bad + ": read: syntax error (code 39, vlkxs(Read)) at " + bad + ":7"),
              std::string::npos);
    // Quiet: the library's own reports are gone, the tool's lines stay.
    EXPECT_EQ(r.err.find("<E>"), std::string::npos) << r.err;
}

// One file of a check: the end of its line, and its JSON fields.
struct CheckCase {
    std::string path, line_end, code, line, item, text;
};

TEST(Check, LinesAndJsonOfGoodAndBadFiles) {
    TempDir dir;
    const std::string bad = dir.write("bad.xs", kSyntax), falling = dir.write("falling.xs", kFalling),
                      missing = dir.prefix() + "missing.xs";
    const CheckCase cases[] = {
        {kTotal, ": ok", "0", "0", "null", "null"},
        {kSingle, ": ok", "0", "0", "null", "null"},
        {kDouble, ": ok", "0", "0", "null", "null"},
        {missing, ": run time system error (code 1, vlkxs(Read)) at " + missing, "1", "0", missing, "null"},
        {bad, ": read: syntax error (code 39, vlkxs(Read)) at " + bad + ":7", "39", "7", "null", "foo bar"},
        {falling, ": bad total cross section (code 10, vlkxs(IsValid)) at Shell[0].E[0].SigTot=-1.015E-17", "10", "0",
         "Shell[0].E[0].SigTot=-1.015E-17", "null"},
    };
    std::string files;
    for (const CheckCase &c : cases) files += " " + c.path;
    const Result plain = tool("check" + files, dir), json = tool("check --json" + files, dir);
    EXPECT_EQ(plain.status, 1);
    EXPECT_EQ(json.status, 1);
    std::string expected;
    for (const CheckCase &c : cases) expected += c.path + c.line_end + "\n";
    EXPECT_EQ(plain.out, expected);
    // No report of the library's reader or validator; only the completion reports regardless.
    EXPECT_EQ(plain.err.find("vlkxs(Read)"), std::string::npos) << plain.err;
    std::istringstream lines(json.out);
    for (const CheckCase &c : cases) {
        std::string line;
        std::getline(lines, line);
        auto obj = parse_object(line);
        EXPECT_EQ(obj["file"], c.path) << line;
        EXPECT_EQ(obj["ok"], c.code == "0" ? "true" : "false") << line;
        EXPECT_EQ(obj["code"], c.code) << line;
        EXPECT_EQ(obj["line"], c.line) << line;
        EXPECT_EQ(obj["item"], c.item) << line;
        EXPECT_EQ(obj["text"], c.text) << line;
        EXPECT_EQ(obj["origin"] == "null", c.code == "0") << line;
    }
}

TEST(Check, JsonOfAnAwkwardFileName) {
    TempDir dir;
    // A quote, a backslash, a tab, a control character, a byte that isn't
    // UTF-8, and a letter that is.
    const std::string name = "q\"b\\\t\x01\xff\xc3\xa9.xs";
    const std::string path = dir.write(name, read_file(kTotal));
    const Result r = call(vlkcli::cmd_check, {"--json", path});
    EXPECT_EQ(r.status, 0);
    ASSERT_EQ(r.out.find('\t'), std::string::npos);
    auto obj = parse_object(r.out.substr(0, r.out.find('\n')));
    EXPECT_EQ(obj["file"], dir.prefix() + "q\"b\\\t\x01\xef\xbf\xbd\xc3\xa9.xs") << r.out;
    EXPECT_EQ(obj["ok"], "true");
}

TEST(Complete, WritesEachFileAndReplacesOldOnes) {
    TempDir dir;
    dir.write("e.H2O.it.xs", "old");
    // A directory without its '/' is taken as one.
    const Result r = call(vlkcli::cmd_complete, {kTotal, kDouble, "-o", dir.path().string()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, dir.prefix() + "e.H2O.it.xs\n" + dir.prefix() + "p.H2O.id.xs\n");
    EXPECT_EQ(shape(dir.prefix() + "e.H2O.it.xs"), std::pair(3, 3));
    EXPECT_EQ(shape(dir.prefix() + "p.H2O.id.xs"), std::pair(3, 2));
    EXPECT_EQ(temporaries(dir), 0);
}

TEST(Complete, BadInputAndUnwritableOutput) {
    TempDir dir;
    dir.write("file", "");
    // A prefix under a regular file can't be written, whoever runs the test.
    Result r = call(vlkcli::cmd_complete, {kTotal, "-o", dir.prefix() + "file/"});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("vlkxs complete: can't write in " + dir.prefix() + "file: Not a directory"), std::string::npos)
        << r.err;
    r = call(vlkcli::cmd_complete, {dir.prefix() + "missing.xs", kSingle, "-o", dir.prefix() + "run-"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, dir.prefix() + "run-e.H2O.is.xs\n");
    EXPECT_EQ(temporaries(dir), 0);
}

TEST(Gd, WritesPlotFiles) {
    TempDir dir;
    const Result r = call(vlkcli::cmd_gd, {kSingle, "-o", dir.prefix()});
    EXPECT_EQ(r.status, 0) << r.err;
    const std::string gd = read_file(dir.prefix() + "e.H2O.is.xs.gd");
    EXPECT_TRUE(gd.starts_with("e->H2O, i\n")) << gd;
    EXPECT_TRUE(gd.ends_with("\n"));
    EXPECT_EQ(call(vlkcli::cmd_gd, {dir.prefix() + "missing.xs", "-o", dir.prefix()}).status, 1);
}

TEST(Dump, OnStdoutDeeperOnRequest) {
    const Result plain = call(vlkcli::cmd_dump, {kSingle}), deep = call(vlkcli::cmd_dump, {kSingle, "--deep"});
    EXPECT_EQ(plain.status, 0);
    EXPECT_TRUE(plain.out.starts_with("<D> ")) << plain.out;
    EXPECT_EQ(plain.err, "");
    EXPECT_GT(count_lines(deep.out, ""), count_lines(plain.out, ""));
    EXPECT_EQ(call(vlkcli::cmd_dump, {"--quiet", "missing.xs"}).status, 1);
}

TEST(Calc, WithoutOptionsBebIonisationOfWater) {
    TempDir dir;
    const Result r = tool("calc", dir);
    EXPECT_EQ(r.status, 0) << r.err;
    // The files written, then a table of the sum shell from 10 eV to 10 MeV.
    EXPECT_TRUE(r.out.starts_with("e.H2O.it.xs\ne.H2O.it.xs.gd\ne.H2O.it.xs.svg\n\nelectron in H2O")) << r.out;
    EXPECT_EQ(count_lines(r.out, "        0.01 "), 1);
    EXPECT_EQ(count_lines(r.out, "       10000 "), 1);
    // Not a terminal: no progress line.
    EXPECT_EQ(r.err, "");
    SVLKXS set;
    ASSERT_EQ(VLKXSRead(&set, (dir.prefix() + "e.H2O.it.xs").c_str(), 0).code, 0);
    const SVLKXSSH &sum = set.pShell[set.nShell - 1];
    EXPECT_EQ(set.nShell, 6);  // five orbitals and their sum
    EXPECT_DOUBLE_EQ(sum.pE[0].E, 0.01);
    EXPECT_DOUBLE_EQ(sum.pE[sum.nE - 1].E, 10000);
    VLKXSFree(&set, 0);
    EXPECT_TRUE(read_file(dir.prefix() + "e.H2O.it.xs.gd").starts_with("e->H2O, i\n"));
    EXPECT_TRUE(read_file(dir.prefix() + "e.H2O.it.xs.svg").ends_with("</svg>\n"));
}

struct CalcCase {
    const char *args, *file;
    int shells, energies;
};

TEST(Calc, ModelsByProjectileAndInteraction) {
    TempDir dir;
    const CalcCase cases[] = {
        {"--projectile p", "p.H2O.it.xs", 6, 98},  // Rudd, 0.01 to 100 MeV/u
        {"--interaction elastic --dim s --energies 1,10 --angles 0,90", "e.H2O.ls.xs", 1, 26},
        {"--interaction x", "e.H2O.xt.xs", 6, 146},
        {"--projectile p --interaction excitation --energies 1,2,4", "p.H2O.xt.xs", 6, 3},
        {"--dim single --energies=1,10,100 --secondaries 0.001,0.1,0.2 --relchange=0.5", "e.H2O.is.xs", 6, 3},
        {"--target N2 --energies 0.1,1 --relchange 1", "e.N2.it.xs", 7, 5},
    };
    for (const CalcCase &c : cases) {
        Argv argv = words(c.args);
        argv.insert(argv.end(), {"-o", dir.prefix()});
        const Result r = call(vlkcli::cmd_calc, argv);
        EXPECT_EQ(r.status, 0) << c.args << "\n" << r.err;
        EXPECT_EQ(shape(dir.prefix() + c.file), std::pair(c.shells, c.energies)) << c.args;
        EXPECT_TRUE(std::filesystem::exists(dir.prefix() + c.file + ".svg")) << c.args;
        // Cosines are written times WNorm, and the tool says so.
        EXPECT_EQ(r.err.find("times WNorm") != std::string::npos, std::string_view(c.file) == "e.H2O.ls.xs") << r.err;
    }
}

TEST(Calc, FailuresWriteNothing) {
    TempDir dir;
    dir.write("file", "");
    const std::pair<const char *, std::string> cases[] = {
        {"--method foo", "no such calculation method (code 17, vlkxs(CalcEI))"},
        {"--method foo", "the model for this projectile and interaction is beb"},
        {"--projectile gamma", "gamma in H2O, i t, beb: no such projectile (code 14, vlkxs(Calc))\n"},
        {"--projectile zz", "projectile zz: no such projectile (code 14, vlkproj(FromStr))"},
        {"--target Xe", "target Xe: "},
        {"--projectile p --interaction l", "nothing calculated"},
        {"--energies abc", "--energies: bad number (code 3, vlkxs(CalcLimitsFromStr)) at abc"},
        {"-o FILE/", "can't write in "},
    };
    for (const auto &[args, message] : cases) {
        std::string line = args;
        if (line == "-o FILE/")
            line = "-o " + dir.prefix() + "file/";
        else
            line += " -o " + dir.prefix();
        const Result r = call(vlkcli::cmd_calc, words(line));
        EXPECT_EQ(r.status, 1) << args;
        EXPECT_NE(r.err.find(message), std::string::npos) << args << "\n" << r.err;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
}

TEST(Plot, OneDocumentOfAllFilesOrNothing) {
    TempDir dir;
    const std::string out = dir.prefix() + "p.svg";
    Result r = call(vlkcli::cmd_plot, {kTotal, kSingle, "-o", out});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, out + "\n");
    EXPECT_TRUE(read_file(out).ends_with("</svg>\n"));
    dir.write("p.svg", "old");
    r = call(vlkcli::cmd_plot, {kTotal, dir.prefix() + "missing.xs", "-o", out});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(read_file(out), "old");
}

TEST(SafeWrite, InterruptedBeforeRenameLeavesOldFiles) {
    TempDir dir;
    for (const std::string &args : {"complete " + kTotal + " -o .", std::string("calc --energies 1,10")}) {
        dir.write("e.H2O.it.xs", "old");
        const Result r = tool(args, dir, "VLKXS_CLI_INTERRUPT_BEFORE_RENAME=1");
        EXPECT_NE(r.status, 0) << args;
        EXPECT_EQ(read_file(dir.path() / "e.H2O.it.xs"), "old") << args;
        EXPECT_FALSE(std::filesystem::exists(dir.path() / "e.H2O.it.xs.gd")) << args;
        EXPECT_EQ(temporaries(dir), 0) << args;
    }
}

TEST(Progress, OnlyWhereAsked) {
    for (const bool enabled : {false, true}) {
        std::FILE *f = std::tmpfile();
        {
            vlkcli::Progress progress(enabled, f);
            progress.show("reading a.xs (1/2)");
        }
        std::rewind(f);
        char buf[128] = {};
        const std::string text(buf, std::fread(buf, 1, sizeof buf - 1, f));
        std::fclose(f);
        EXPECT_EQ(text.find("reading a.xs (1/2)") != std::string::npos, enabled) << text;
    }
}

}  // namespace
