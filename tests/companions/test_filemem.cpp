// File memory: line delivery, the 0 byte behind each line, stable text over
// passes, and clean release on every path.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/alloc.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

using namespace std::string_literals;
using Lines = std::vector<std::string>;

// A record that is always closed, whatever a failing assertion skips.
struct FileMem {
    SUFILEMEM fm{};
    FileMem() { uFileMemInit(&fm, 0); }
    ~FileMem() { uFileMemClose(&fm, 0); }
    FileMem(const FileMem &) = delete;
    FileMem &operator=(const FileMem &) = delete;
    SUFILEMEM *operator->() { return &fm; }
    SUFILEMEM *get() { return &fm; }
};

struct Delivered {
    const char *p;
    std::string text;
};

// One pass from the current position to the end; checks the 0 byte behind
// each line and that each line lies inside the image.
std::vector<Delivered> pass(SUFILEMEM *fm) {
    std::vector<Delivered> out;
    while (uFileMemLineNext(fm, 0) == 0) {
        EXPECT_NE(fm->pLine, nullptr);
        if (fm->pLine == nullptr) break;
        EXPECT_GE(fm->pLine, fm->pImage);
        EXPECT_LE(fm->pLine + fm->nLine, fm->pImage + fm->nImage);
        EXPECT_EQ(fm->pLine[fm->nLine], '\0') << "line " << out.size() + 1;
        out.push_back({fm->pLine, std::string(fm->pLine, fm->nLine)});
        EXPECT_EQ(fm->nLineNo, static_cast<int32_t>(out.size()));
    }
    return out;
}

Lines texts(const std::vector<Delivered> &d) {
    Lines l;
    for (const auto &x : d) l.push_back(x.text);
    return l;
}

// Lines of a content as a plain reading of the rules: split at "\n", a "\r"
// at the end of a piece is the line end's, and no line follows a final "\n".
Lines reference_lines(std::string_view s) {
    Lines l;
    std::size_t start = 0;
    while (start < s.size()) {
        std::size_t nl = s.find('\n', start);
        std::size_t stop = nl == std::string_view::npos ? s.size() : nl;
        std::string line(s.substr(start, stop - start));
        if (nl != std::string_view::npos && !line.empty() && line.back() == '\r') line.pop_back();
        l.push_back(line);
        if (nl == std::string_view::npos) break;
        start = nl + 1;
    }
    return l;
}

void open_and_read(FileMem &fm, const std::string &path) {
    ASSERT_EQ(uFileMemOpen(fm.get(), path.c_str(), 1, 0), 0);
    ASSERT_EQ(uFileMemRead(fm.get(), 0), 0);
    EXPECT_EQ(fm->fp, nullptr) << "Read closes the stream";
}

struct LineCase {
    const char *name;
    std::string content;
    Lines lines;
};

const LineCase kLineCases[] = {
    {"lf", "a\nbb\nccc\n", {"a", "bb", "ccc"}}, {"crlf", "a\r\nbb\r\n", {"a", "bb"}},
    {"mixed", "a\r\nb\nc\r\nd", {"a", "b", "c", "d"}}, {"no_final_newline", "a\nb", {"a", "b"}},
    {"crlf_no_final_newline", "a\r\nb", {"a", "b"}}, {"single_line_no_newline", "xs i,t", {"xs i,t"}},
    {"empty_lines", "\n\na\n\n", {"", "", "a", ""}}, {"empty_crlf_lines", "\r\n\r\na\r\n", {"", "", "a"}},
    {"blank_only_lines", "  \n\t\n \t \r\n", {"  ", "\t", " \t "}}, {"empty_file", "", {}},
    {"just_newline", "\n", {""}}, {"just_crlf", "\r\n", {""}}, {"lf_after_crlf", "a\r\n\nb", {"a", "", "b"}},
    {"lone_cr_inside", "a\rb\n", {"a\rb"}}, {"lone_cr_at_end_of_file", "a\r", {"a\r"}},
    {"cr_cr_lf", "\r\r\n", {"\r"}}, {"cr_then_lf_line", "a\r\n\r\n\n", {"a", "", ""}},
    {"zero_bytes_inside", "a\0b\n\0\n\0"s, {"a\0b"s, "\0"s, "\0"s}},
    {"zero_before_crlf", "x\0\r\n\0\0\r\n"s, {"x\0"s, "\0\0"s}}, {"zero_before_lf_run", "\0\n\n"s, {"\0"s, ""}},
};

void PrintTo(const LineCase &c, std::ostream *os) { *os << c.name; }

class FileMemLines : public ::testing::TestWithParam<LineCase> {};

TEST_P(FileMemLines, DeliversEveryLineTerminated) {
    const LineCase &c = GetParam();
    vlktest::TempDir dir;
    FileMem fm;
    open_and_read(fm, dir.write("f.xs", c.content));
    EXPECT_EQ(fm->nImage, c.content.size());
    ASSERT_EQ(uFileMemLineFirst(fm.get(), 0), 0);
    EXPECT_EQ(texts(pass(fm.get())), c.lines);
    EXPECT_NE(uFileMemLineNext(fm.get(), 0), 0) << "the end stays the end";
    EXPECT_EQ(fm->pLine, nullptr);
}

TEST_P(FileMemLines, SecondPassSamePointersSameText) {
    const LineCase &c = GetParam();
    vlktest::TempDir dir;
    FileMem fm;
    open_and_read(fm, dir.write("f.xs", c.content));
    ASSERT_EQ(uFileMemLineFirst(fm.get(), 0), 0);
    const auto first = pass(fm.get());
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(uFileMemLineFirst(fm.get(), 0), 0);
        const auto again = pass(fm.get());
        ASSERT_EQ(again.size(), first.size());
        for (std::size_t i = 0; i < first.size(); ++i) {
            EXPECT_EQ(again[i].p, first[i].p) << "line " << i + 1;
            EXPECT_EQ(again[i].text, first[i].text) << "line " << i + 1;
            // The text behind a pointer of the first pass is still that line.
            EXPECT_EQ(std::string(first[i].p, first[i].text.size()), first[i].text);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(FileMem, FileMemLines, ::testing::ValuesIn(kLineCases),
                         [](const auto &info) { return std::string(info.param.name); });

// Random contents of line ends, "\r", 0 bytes and text, long enough that line
// ends fall on every bit of the line-end marks, against the plain reading.
TEST(FileMemRandom, MatchesPlainReading) {
    std::mt19937 rng(20240611u);
    const char alphabet[] = {'a', 'b', ' ', '\t', '\r', '\n', '\0', ','};
    std::uniform_int_distribution<int> pick(0, static_cast<int>(sizeof alphabet) - 1);
    std::uniform_int_distribution<int> length(0, 300);
    vlktest::TempDir dir;
    for (int round = 0; round < 300; ++round) {
        std::string content;
        const int n = length(rng);
        for (int i = 0; i < n; ++i) content.push_back(alphabet[pick(rng)]);
        FileMem fm;
        open_and_read(fm, dir.write("r.xs", content));
        uFileMemLineFirst(fm.get(), 0);
        const Lines once = texts(pass(fm.get()));
        uFileMemLineFirst(fm.get(), 0);
        const Lines twice = texts(pass(fm.get()));
        const Lines want = reference_lines(content);
        ASSERT_EQ(once, want) << "round " << round;
        ASSERT_EQ(twice, want) << "round " << round;
    }
}

TEST(FileMemLifecycle, CloseOnNeverOpenedRecordTwice) {
    SUFILEMEM fm;
    std::memset(&fm, 0x5a, sizeof fm);
    ASSERT_EQ(uFileMemInit(&fm, 0), 0);
    EXPECT_EQ(fm.pLine, nullptr);
    EXPECT_EQ(fm.nLine, 0u);
    EXPECT_EQ(fm.fp, nullptr);
    EXPECT_EQ(fm.pImage, nullptr);
    uFileMemClose(&fm, 0);
    uFileMemClose(&fm, 0);
    EXPECT_EQ(fm.pImage, nullptr);
    EXPECT_NE(uFileMemLineNext(&fm, 0), 0);
}

TEST(FileMemLifecycle, FailedOpens) {
    vlktest::TempDir dir;
    const std::string missing = dir.prefix() + "missing.xs";
    const std::string dirpath = dir.path().string();
    const char *paths[] = {nullptr, "", missing.c_str(), dirpath.c_str()};
    for (const char *path : paths) {
        SCOPED_TRACE(path != nullptr ? path : "(null)");
        FileMem fm;
        EXPECT_NE(uFileMemOpen(fm.get(), path, 1, 0), 0);
        EXPECT_EQ(fm->fp, nullptr);
        EXPECT_NE(uFileMemRead(fm.get(), 0), 0);
        EXPECT_NE(uFileMemLineNext(fm.get(), 0), 0);
        uFileMemClose(fm.get(), 0);
        uFileMemClose(fm.get(), 0);
    }
}

TEST(FileMemLifecycle, ReadWithoutOpenFails) {
    FileMem fm;
    EXPECT_NE(uFileMemRead(fm.get(), 0), 0);
    EXPECT_EQ(fm->pImage, nullptr);
}

TEST(FileMemLifecycle, ImageAllocationFailure) {
    vlktest::TempDir dir;
    const std::string path = dir.write("f.xs", "a\nb\n");
    FileMem fm;
    ASSERT_EQ(uFileMemOpen(fm.get(), path.c_str(), 1, 0), 0);
    vlk::testhook::fail_alloc_after(1);
    const int32_t rc = uFileMemRead(fm.get(), 0);
    vlk::testhook::fail_alloc_after(0);
    EXPECT_NE(rc, 0);
    EXPECT_EQ(fm->fp, nullptr) << "the stream is closed on failure too";
    EXPECT_EQ(fm->pImage, nullptr);
    EXPECT_NE(uFileMemLineNext(fm.get(), 0), 0);
    uFileMemClose(fm.get(), 0);
    // The same record works afterwards.
    open_and_read(fm, path);
    uFileMemLineFirst(fm.get(), 0);
    EXPECT_EQ(texts(pass(fm.get())), (Lines{"a", "b"}));
}

TEST(FileMemLifecycle, ReopenReleasesThePreviousFile) {
    vlktest::TempDir dir;
    FileMem fm;
    open_and_read(fm, dir.write("one.xs", "one\n"));
    open_and_read(fm, dir.write("two.xs", "two\nlines\n"));
    uFileMemLineFirst(fm.get(), 0);
    EXPECT_EQ(texts(pass(fm.get())), (Lines{"two", "lines"}));
}

}  // namespace
