// Files that no writer of xs files makes: empty, binary, huge, cut short,
// with numbers at the edge of double, odd line ends, paths that aren't
// readable files.  Each gives its documented code, leaves a failed set
// empty, and leaks nothing.
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <charconv>
#include <filesystem>
#include <functional>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "capture.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

const std::string kHead = "!filetype xs i,t\n!fileversion 20080825\n!target H2O\n!projectile e\n";
const std::string kHeadS = "!filetype xs i,s\n!fileversion 20080825\n!target H2O\n!projectile e\n";

std::string hostile(const char *name) { return vlktest::data_file(std::string("hostile/") + name); }

// `shells` sections of one record each, numbered from 1.
std::string many_shells(int shells) {
    std::string text = kHead;
    text.resize(kHead.size() + 32u * static_cast<unsigned>(shells));
    char *p = text.data() + kHead.size();
    for (int i = 1; i <= shells; ++i) {
        p = std::copy_n("!shell ", 7, p);
        p = std::to_chars(p, p + 12, i).ptr;
        p = std::copy_n("\n0.1 1E-16\n", 11, p);
    }
    text.resize(static_cast<std::size_t>(p - text.data()));
    return text;
}

// A million shells in plain builds; the sanitizers' build, unoptimised and
// checking every access, reads a quarter of them in the same time budget.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kManyShells = 250000;
#else
constexpr int kManyShells = 1000000;
#endif

struct Case {
    std::string name;
    std::function<std::string(const vlktest::TempDir &)> path;  // the file to read
    int32_t code;
    int32_t shells = -1;              // on success: shells of the set; -1 not checked
    std::set<int32_t> warnings{};     // codes of the warnings reported on the way
};

std::function<std::string(const vlktest::TempDir &)> checked_in(const char *name) {
    return [name](const vlktest::TempDir &) { return hostile(name); };
}
std::function<std::string(const vlktest::TempDir &)> made(std::string text) {
    return [text = std::move(text)](const vlktest::TempDir &d) { return d.write("f.xs", text); };
}

std::vector<Case> cases() {
    std::vector<Case> c = {
        {"empty file", checked_in("empty.xs"), VLKXS_C_R_NSHELL},
        {"NUL bytes: blank lines", checked_in("nul.xs"), VLKXS_C_R_NSHELL},
        {"binary garbage", checked_in("garbage.xs"), VLKXS_C_R_SYNTAX},
        {"shell number beyond 32 bits", checked_in("shell_huge.xs"), VLKXS_C_R_NUMBER},
        {"CR-only line ends: one line", checked_in("cr_only.xs"), VLKXS_C_R_NSHELL},
        {"byte-order mark before the first tag", checked_in("bom.xs"), VLKXS_C_R_SYNTAX},
        {"ends inside a tag word", checked_in("cut_in_section.xs"), 0, 1, {38, 40}},
        {"ends after an empty table", checked_in("ends_after_esec.xs"), 0, 1, {40}},
        {"a directory", [](const vlktest::TempDir &d) { return d.path().string(); }, VLKXS_C_RUNTIME},
        {"no such file", [](const vlktest::TempDir &d) { return d.prefix() + "none.xs"; }, VLKXS_C_RUNTIME},
        {"no read permission (root reads everything: left out)",
         [](const vlktest::TempDir &d) {
             if (geteuid() == 0) return std::string();
             const std::string path = d.write("locked.xs", kHead + "!shell 1\n0.1 1\n");
             std::filesystem::permissions(path, std::filesystem::perms::none);
             return path;
         },
         VLKXS_C_RUNTIME},
        {"a data line of 10 MB", made(kHead + "!shell 1\n0.1 1E-16" + std::string(10u << 20, ' ') + "7\n"), 0, 1},
        {"a number of 10 MB: no double holds it", made(kHead + "!shell 1\n0.1 1" + std::string(10u << 20, '0') + "\n"),
         VLKXS_C_R_TOOFEW},
        {"a million shells", made(many_shells(kManyShells)), 0, kManyShells},
        {"target name of 1 MB", made("!filetype xs i,t\n!fileversion 1\n!target " + std::string(1u << 20, 'H') +
                                     "\n!projectile e\n!shell 1\n0.1 1\n"),
         VLKXS_C_R_TARGET},
        {"projectile name of 1 MB", made("!filetype xs i,t\n!fileversion 1\n!target H2O\n!projectile " +
                                         std::string(1u << 20, 'e') + "\n!shell 1\n0.1 1\n"),
         VLKXS_C_R_PROJECTILE},
        {"file type of 1 MB", made("!filetype xs i," + std::string(1u << 20, 't') + "\n"), VLKXS_C_R_NSHELL},
        {"file version of 1 MB", made("!filetype xs i,t\n!fileversion " + std::string(1u << 20, '9') + "\n"),
         VLKXS_C_R_NUMBER},
        {"file date of 1 MB", made("!filetype xs i,t\n!fileversion 1\n!filedate " + std::string(1u << 20, 'x') +
                                   "\n!target H2O\n!projectile e\n!shell 1\n0.1 1\n"),
         0, 1},
    };
    // Numbers at the edges of double in every place a number stands.  One
    // that a double can't hold is no number at all; NaN, infinities and
    // subnormals are numbers, refused only where a negative one is.
    struct Token {
        const char *text;
        int32_t E, sig, km, eproj, esec, shell;
    };
    const Token tokens[] = {{"1e999", 39, 41, 0, 39, 44, 44}, {"-1e999", 39, 41, 0, 39, 44, 44},
                            {"-0", 0, 0, 0, 0, 0, 0},         {"NaN", 0, 0, 0, 0, 0, 44},
                            {"INF", 0, 0, 0, 0, 0, 44},       {"-INF", 0, 51, 51, 49, 50, 44},
                            {"1e-320", 0, 0, 0, 0, 0, 44},    {"1e308", 0, 0, 0, 0, 0, 44}};
    const std::string d = "!filetype xs i,d\n!fileversion 1\n!target H2O\n!projectile p\n!shell 1\n!eproj 1\n";
    for (const Token &t : tokens) {
        const std::string v = t.text;
        c.push_back({"E column " + v, made(kHead + "!shell 1\n" + v + " 1E-16\n"), t.E, 1});
        c.push_back({"sigma column " + v, made(kHead + "!shell 1\n0.1 " + v + "\n"), t.sig, 1});
        c.push_back({"km column " + v, made(kHead + "!shell 0\n0.1 1 " + v + "\n"), t.km, 1});
        c.push_back({"!eproj " + v, made(kHeadS + "!shell 1\n!eproj " + v + "\n0 1\n"), t.eproj, 1});
        c.push_back({"!esec " + v, made(d + "!esec " + v + "\n0 1\n"), t.esec, 1});
        c.push_back({"!shell " + v, made(kHead + "!shell " + v + "\n0.1 1\n"), t.shell, 1});
    }
    return c;
}

// What a file that reads leads to: completion fails only for what the file
// lacks (2: a record or table without data; 62: a shell the target hasn't)
// or for an ionisation energy whose grid no fraction of WNorm can hold (9),
// and a completed valid set writes, exports and duplicates, and its file
// reads back.
void further(SVLKXS &set, const vlktest::TempDir &dir) {
    vlktest::Capture err(stderr);  // completion, writing and exporting always report
    const int32_t code = VLKXSComplete(&set, 0).code;
    ASSERT_TRUE(code == 0 || code == VLKXS_C_BADADDR || code == VLKXS_C_SHELLNUMBER || code == VLKXS_C_ENERGY)
        << code;
    if (code != 0) return;
    // A total's data line may give a negative energy, which only validation
    // refuses (9); any other completed set is valid.
    const int32_t valid = VLKXSIsValid(&set, 0).code;
    ASSERT_TRUE(valid == 0 || valid == VLKXS_C_ENERGY) << valid;
    if (valid != 0) return;
    EXPECT_EQ(VLKXSExportgd(&set, dir.prefix().c_str(), 0).code, 0);
    SVLKXS copy, back;
    EXPECT_EQ(VLKXSDup(&copy, &set, 0).code, 0);
    VLKXSFree(&copy, 0);
    ASSERT_EQ(VLKXSWrite(&set, (dir.prefix() + "w.").c_str(), 0).code, 0);
    const std::string written = dir.prefix() + "w." + set.proj.symbol + "." + set.targ.name + "." + set.IAtag +
                                set.dimtag + ".xs";
    EXPECT_EQ(VLKXSRead(&back, written.c_str(), VLKXS_MODE_QUIET).code, 0);
    EXPECT_EQ(back.nShell, set.nShell);
    VLKXSFree(&back, 0);
}

TEST(Hostile, EachFileGivesItsCodeAndLeavesAFailedSetEmpty) {
    for (const Case &c : cases()) {
        SCOPED_TRACE(c.name);
        vlktest::TempDir dir;
        const std::string path = c.path(dir);
        if (path.empty()) continue;  // the case can't be made here
        SVLKXS set;
        vlktest::Capture err(stderr);  // warnings are always reported
        const SCMDSTATUS s = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
        const std::string reported = err.finish();
        EXPECT_EQ(s.code, c.code);
        std::set<int32_t> warned;
        const std::regex warning(R"(<W> [^\n]*\(code (\d+)\))");
        for (std::sregex_iterator m(reported.begin(), reported.end(), warning), end; m != end; ++m)
            warned.insert(std::stoi((*m)[1]));
        EXPECT_EQ(warned, c.warnings) << reported;
        if (s.code != 0) {
            EXPECT_EQ(set.nShell, 0);
            EXPECT_EQ(set.pShell, nullptr);
            EXPECT_EQ(set.infile, nullptr);
            EXPECT_LE(s.textlen, 511);
        } else if (c.shells >= 0) {
            EXPECT_EQ(set.nShell, c.shells);
        }
        if (c.code == VLKXS_C_RUNTIME) {
            EXPECT_EQ(s.item, path.c_str());
        }
        if (s.code == 0 && set.nShell <= 2) further(set, dir);
        VLKXSFree(&set, 0);
    }
}

// Files that the format allows but memory can't hold fail with code 1
// instead of ending the program: each is read in a child whose address space
// is capped above the file's image and below its records.  One needs many
// small blocks; the other one block whose size, its count of records times
// their size, passes 32 bits (a product taken in 32 bits would give a small
// block, and the rows stored behind it would overrun it).  The sanitizers
// reserve far more address space than any cap leaves: plain builds only.
TEST(Hostile, FilesLargerThanMemoryFailWithCodeOne) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "address space cap and the sanitizer's reservations don't mix";
#else
    struct Big {
        const char *name;
        std::function<std::string()> text;
        rlim_t cap;
    };
    const Big bigs[] = {
        {"a million shells: some 350 MB of records", [] { return many_shells(1000000); }, 192u << 20},
        {"18 million records in one shell: 4.5 GB in one block",
         [] {
             std::string text = kHead + "!shell 1\n";
             const std::size_t head = text.size(), rows = 18000000;
             text.resize(head + 4 * rows);
             for (std::size_t i = 0; i < rows; ++i) std::memcpy(text.data() + head + 4 * i, "1 0\n", 4);
             return text;
         },
         512u << 20},
    };
    for (const Big &b : bigs) {
        SCOPED_TRACE(b.name);
        vlktest::TempDir dir;
        const std::string path = dir.write("big.xs", b.text());
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            rlimit cap{};
            getrlimit(RLIMIT_AS, &cap);
            cap.rlim_cur = b.cap;
            setrlimit(RLIMIT_AS, &cap);
            SVLKXS set;
            const SCMDSTATUS s = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
            _exit(s.code == VLKXS_C_RUNTIME && s.item == nullptr && set.nShell == 0 && set.pShell == nullptr ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << "the child ended by signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
#endif
}

}  // namespace
