// File memory: line delivery, the 0 byte behind each line, stable text over
// passes, and clean release on every path.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
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
    SUFILEMEM *operator->() { return &fm; }
    SUFILEMEM *get() { return &fm; }
};

// One pass from the first line to the end: where each line lies (inside the
// image, a 0 byte behind it) and its text.
std::vector<std::pair<const char *, std::string>> pass(FileMem &fm) {
    std::vector<std::pair<const char *, std::string>> out;
    EXPECT_EQ(uFileMemLineFirst(fm.get(), 0), 0);
    while (uFileMemLineNext(fm.get(), 0) == 0) {
        const char *p = fm->pLine;
        EXPECT_TRUE(p != nullptr && p >= fm->pImage && p + fm->nLine <= fm->pImage + fm->nImage);
        if (p == nullptr) break;
        EXPECT_EQ(p[fm->nLine], '\0') << "line " << out.size() + 1;
        out.emplace_back(p, std::string(p, fm->nLine));
        EXPECT_EQ(fm->nLineNo, static_cast<int32_t>(out.size()));
    }
    EXPECT_EQ(fm->pLine, nullptr);
    EXPECT_NE(uFileMemLineNext(fm.get(), 0), 0) << "the end stays the end";
    return out;
}

Lines texts(const std::vector<std::pair<const char *, std::string>> &lines) {
    Lines l;
    for (const auto &[p, text] : lines) l.push_back(text);
    return l;
}

// Lines of a content as a plain reading of the rules: split at "\n", a "\r"
// at the end of a piece is the line end's, and no line follows a final "\n".
Lines reference_lines(std::string_view s) {
    Lines l;
    for (std::size_t start = 0; start < s.size();) {
        const std::size_t nl = s.find('\n', start);
        std::string line(s.substr(start, nl == std::string_view::npos ? s.npos : nl - start));
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

// Line ends of every kind, lone "\r", 0 bytes and empty lines, then random
// contents long enough that line ends fall on every bit of the line-end
// marks, against the plain reading.  A second pass gives the same pointers,
// and the text behind those of the first pass is still the line.
TEST(FileMem, LinesAsThePlainReading) {
    std::vector<std::string> contents = {
        "a\nbb\nccc\n", "a\r\nbb\r\n", "a\r\nb\nc\r\nd", "a\nb", "a\r\nb", "xs i,t", "\n\na\n\n", "\r\n\r\na\r\n",
        "  \n\t\n \t \r\n", "", "\n", "\r\n", "a\r\n\nb", "a\rb\n", "a\r", "\r\r\n", "a\r\n\r\n\n", "a\0b\n\0\n\0"s,
        "x\0\r\n\0\0\r\n"s, "\0\n\n"s};
    std::mt19937 rng(20240611u);
    const char alphabet[] = {'a', 'b', ' ', '\t', '\r', '\n', '\0', ','};
    std::uniform_int_distribution<int> pick(0, 7), length(0, 300);
    for (int round = 0; round < 300; ++round) {
        std::string &c = contents.emplace_back();
        for (int i = length(rng); i > 0; --i) c.push_back(alphabet[pick(rng)]);
    }
    vlktest::TempDir dir;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        SCOPED_TRACE("content " + std::to_string(i));
        FileMem fm;
        open_and_read(fm, dir.write("f.xs", contents[i]));
        EXPECT_EQ(fm->nImage, contents[i].size());
        const auto first = pass(fm);
        ASSERT_EQ(texts(first), reference_lines(contents[i]));
        ASSERT_EQ(pass(fm), first);
        for (const auto &[p, text] : first) EXPECT_EQ(std::string(p, text.size()), text);
    }
}

// A record never opened, or whose open or read failed, delivers nothing,
// and may be closed twice; the same record works afterwards.
TEST(FileMem, FailedPaths) {
    SUFILEMEM raw;
    std::memset(&raw, 0x5a, sizeof raw);
    ASSERT_EQ(uFileMemInit(&raw, 0), 0);
    EXPECT_TRUE(raw.pLine == nullptr && raw.nLine == 0 && raw.fp == nullptr && raw.pImage == nullptr);
    EXPECT_TRUE(uFileMemRead(&raw, 0) != 0 && raw.pImage == nullptr && uFileMemLineNext(&raw, 0) != 0);
    uFileMemClose(&raw, 0);
    uFileMemClose(&raw, 0);
    vlktest::TempDir dir;
    const std::string missing = dir.prefix() + "missing.xs", dirpath = dir.path().string();
    for (const char *path : {static_cast<const char *>(nullptr), "", missing.c_str(), dirpath.c_str()}) {
        FileMem fm;
        EXPECT_TRUE(uFileMemOpen(fm.get(), path, 1, 0) != 0 && fm->fp == nullptr) << (path ? path : "(null)");
        EXPECT_TRUE(uFileMemRead(fm.get(), 0) != 0 && uFileMemLineNext(fm.get(), 0) != 0);
        uFileMemClose(fm.get(), 0);
    }

    const std::string path = dir.write("f.xs", "a\nb\n");
    FileMem fm;
    ASSERT_EQ(uFileMemOpen(fm.get(), path.c_str(), 1, 0), 0);
    vlk::testhook::fail_alloc_after(1);
    const int32_t rc = uFileMemRead(fm.get(), 0);
    vlk::testhook::fail_alloc_after(0);
    EXPECT_TRUE(rc != 0 && fm->fp == nullptr && fm->pImage == nullptr) << "the stream is closed on failure too";
    EXPECT_NE(uFileMemLineNext(fm.get(), 0), 0);
    uFileMemClose(fm.get(), 0);
    open_and_read(fm, path);
    EXPECT_EQ(texts(pass(fm)), (Lines{"a", "b"}));
    // Opening another file releases the first.
    open_and_read(fm, dir.write("two.xs", "two\nlines\n"));
    EXPECT_EQ(texts(pass(fm)), (Lines{"two", "lines"}));
}

}  // namespace
