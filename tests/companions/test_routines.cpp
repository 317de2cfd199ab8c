// Routines of the support layer: counted-text numbers, items and words,
// case-free comparison, the %G writer, vector routines and the file memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "core/alloc.hpp"
#include "core/numbers.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

using namespace std::string_literals;
using Words = std::vector<std::string>;
using V = std::vector<double>;
constexpr double kUntouched = -4242.25;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The bytes of `s` in a heap block of exactly their size, with no 0 behind
// them: a read past the counted length is caught by AddressSanitizer.
std::vector<char> heap(std::string_view s) { return {s.begin(), s.end()}; }
int32_t len(const std::vector<char> &v) { return static_cast<int32_t>(v.size()); }

bool same_value(double got, double want) {
    return std::signbit(got) == std::signbit(want) && (got == want || (std::isnan(got) && std::isnan(want)));
}

// Forms beyond %G (read back by the property test below) for cn2d, and for
// cn2l where given; texts that neither takes leave the value untouched.
TEST(Number, CountedText) {
    const struct { const char *text; double real; std::optional<int32_t> integer; } numbers[] = {
        {"12", 12, 12}, {"-12", -12, -12}, {"+12", 12, 12}, {"0", 0, 0}, {"-0", -0.0, 0}, {"007", 7, 7},
        {" 12 ", 12, 12}, {"\t-7\t", -7, -7}, {"2147483647", 2147483647.0, INT32_MAX},
        {"-2147483648", -2147483648.0, INT32_MIN}, {"2147483648", 2147483648.0, {}}, {"-2147483649", -2147483649.0, {}},
        {"99999999999999999999", 1e20, {}}, {"1.5", 1.5, {}}, {"1e3", 1000, {}}, {"1.5e-17", 1.5e-17, {}},
        {"inf", kInf, {}}, {"-inf", -kInf, {}}, {"nan", kNan, {}}, {"Inf", kInf, {}}, {"+INF", kInf, {}},
        {".5", 0.5, {}}, {"5.", 5, {}}, {"-.5", -0.5, {}}, {"+.5", 0.5, {}}, {"+1.5E+03", 1500, {}},
        {"  1.5", 1.5, {}}, {"1.5  ", 1.5, {}}};
    for (const auto &r : numbers) {
        const auto t = heap(r.text);
        double d = kUntouched;
        int32_t i = -777;
        EXPECT_TRUE(cn2d(t.data(), len(t), &d) == 0 && same_value(d, r.real)) << "'" << r.text << "'";
        EXPECT_EQ(cn2l(t.data(), len(t), &i) >= 0, r.integer.has_value()) << "'" << r.text << "'";
        EXPECT_EQ(i, r.integer.value_or(-777)) << "'" << r.text << "'";
    }
    for (const char *text : {"", " ", "\t \t", "x", "x12", "12x", "1.5x", "1 2", "1,5", "12\n", "\n1.5", "+", "-",
                             ".", "+-1", "-+1", "++1", "--1", "+ 1", "e5", "1e", "1e+", "1E-", "0x10", "1.2.3", "IN",
                             "NA", "INFx", "1e999", "-1e999", "1e-400"}) {
        const auto t = heap(text);
        double d = kUntouched;
        int32_t i = -777;
        EXPECT_TRUE(cn2d(t.data(), len(t), &d) < 0 && d == kUntouched) << "'" << text << "'";
        EXPECT_TRUE(cn2l(t.data(), len(t), &i) < 0 && i == -777) << "'" << text << "'";
    }
}

// The counted length is the end of the text, also inside a number.
TEST(Number, CountedLengthIsTheEnd) {
    int32_t i = 0;
    double d = 0, w[3] = {0, 0, kUntouched};
    EXPECT_TRUE(cn2l(heap("12345").data(), 2, &i) >= 0 && i == 12);
    EXPECT_TRUE(cn2d(heap("12345").data(), 2, &d) == 0 && d == 12.0);
    EXPECT_TRUE(cn2d(heap("1.5E-17junk").data(), 7, &d) == 0 && d == 1.5e-17);
    EXPECT_LT(cn2d(heap("1.5E-17junk").data(), 8, &d), 0);
    EXPECT_TRUE(cn2d(heap("1E+06").data(), 4, &d) == 0 && d == 1.0) << "a shorter exponent";
    EXPECT_LT(cn2d(heap("1E+06").data(), 3, &d), 0);
    EXPECT_TRUE(cn2vd(heap("1 2 3 4").data(), 3, w, 1, 3) == 2 && w[1] == 2 && w[2] == kUntouched);
    EXPECT_TRUE(cn2vd(heap("1 234").data(), 4, w, 1, 3) == 2 && w[1] == 23);
}

// Up to `max` numbers, as far as they are numbers; nothing stored beyond.
TEST(Number, VectorsInCountedText) {
    const struct { const char *text; int32_t max; V values; } rows[] = {
        {"1 2 3 4", 3, {1, 2, 3}}, {"1 2 3", 3, {1, 2, 3}}, {"1 2", 5, {1, 2}}, {"1,2, 3", 3, {1, 2, 3}},
        {"  1.5E-17\t2E+06   -3  ", 3, {1.5e-17, 2e6, -3}}, {"1 , 2 ,3", 3, {1, 2, 3}}, {"1 x 3", 3, {1}},
        {"1 2x 3", 3, {1}}, {"INF -NAN 0", 3, {kInf, -kNan, 0}}, {"7", 1, {7}}, {"", 3, {}}, {"   ", 3, {}},
        {"x 1", 3, {}}, {"1e999 1", 3, {}}};
    for (const auto &r : rows) {
        const auto t = heap(r.text);
        V v(static_cast<std::size_t>(r.max) + 2, kUntouched);
        EXPECT_EQ(std::max(cn2vd(t.data(), len(t), v.data(), 1, r.max), 0), static_cast<int32_t>(r.values.size()));
        for (std::size_t i = 0; i < v.size(); ++i)
            EXPECT_PRED2(same_value, v[i], i < r.values.size() ? r.values[i] : kUntouched) << r.text << " " << i;
    }
}

// Items: cut at commas and blanks (a comma between blanks is one cut), text
// unchanged, negative without any.  Words: the non-empty items, at most max.
TEST(Text, ItemsAndWords) {
    const std::pair<const char *, Words> rows[] = {
        {"1,2,3", {"1", "2", "3"}}, {"1, 2, 3", {"1", "2", "3"}}, {"1 2 3", {"1", "2", "3"}}, {"1\t2", {"1", "2"}},
        {"1 ,2 , 3", {"1", "2", "3"}}, {"5 , *", {"5", "*"}}, {"  1  ", {"1"}}, {"1E+06", {"1E+06"}},
        {"a b,c", {"a", "b", "c"}}, {",,", {"", "", ""}}, {",", {"", ""}}, {"1,,2", {"1", "", "2"}},
        {"1 , , 2", {"1", "", "2"}}, {"1,", {"1", ""}}, {"1 , ", {"1", ""}}, {",1", {"", "1"}}, {" , 1", {"", "1"}},
        {"xs\ti,,t", {"xs", "i", "", "t"}}, {"xs i t,extra more", {"xs", "i", "t", "extra", "more"}},
        {"", {}}, {"   ", {}}, {"\t \t", {}}};
    for (const auto &[text, items] : rows) {
        const std::string s(text);
        const char *item[8] = {};
        int32_t lens[8] = {};
        const int32_t n = c2vcn(s.c_str(), item, lens, 1, 8);
        EXPECT_EQ(c2vcn(s.c_str(), nullptr, nullptr, 1, 0x7fffffff), n) << "counting alone: '" << text << "'";
        EXPECT_EQ(s, text);
        ASSERT_TRUE(items.empty() ? n < 0 : n == static_cast<int32_t>(items.size())) << "'" << text << "': " << n;
        for (std::size_t i = 0; i < items.size(); ++i) {
            ASSERT_TRUE(item[i] >= s.c_str() && item[i] + lens[i] <= s.c_str() + s.size()) << "'" << text << "'";
            EXPECT_EQ(std::string(item[i], static_cast<std::size_t>(lens[i])), items[i]) << "'" << text << "'";
        }
        Words words;
        std::copy_if(items.begin(), items.end(), std::back_inserter(words), [](const auto &w) { return !w.empty(); });
        for (const std::size_t max : {std::size_t{1}, std::size_t{3}}) {
            std::string buf(text);
            std::vector<char *> split(max + 1, nullptr);
            const Words want(words.begin(), words.begin() + static_cast<long>(std::min(max, words.size())));
            ASSERT_EQ(c2vc(buf.data(), split.data(), 1, static_cast<int32_t>(max)), static_cast<int32_t>(want.size()))
                << "'" << text << "'";
            for (std::size_t i = 0; i < want.size(); ++i)
                EXPECT_TRUE(split[i] >= buf.data() && split[i] < buf.data() + buf.size() && split[i] == want[i]);
            EXPECT_EQ(split.back(), nullptr) << "nothing beyond max";
        }
    }
}

int sign(int32_t v) { return (v > 0) - (v < 0); }

// Letters compare without case, other bytes as they are (unsigned); strnicmp
// stops after n bytes; stricnb ignores blanks at both ends.
TEST(Text, CaseFreeComparison) {
    const struct { const char *a, *b; int want; } rows[] = {
        {"abc", "abc", 0}, {"ABC", "abc", 0}, {"xS", "Xs", 0},  {"", "", 0},   {"a", "B", -1},
        {"B", "a", 1},     {"ab", "abc", -1}, {"abc", "ab", 1}, {"", "a", -1}, {"[", "{", -1},
        {"@", "`", -1},    {"^", "~", -1},    {"Z", "z", 0},    {"\xc4", "\xe4", -1}, {"a b", "A B", 0}};
    for (const auto &r : rows) {
        EXPECT_EQ(sign(stricmp(r.a, r.b)), r.want) << r.a << " | " << r.b;
        EXPECT_EQ(sign(stricnb(r.a, r.b)), r.want) << r.a << " | " << r.b;
        EXPECT_EQ(sign(strnicmp(r.a, r.b, std::strlen(r.a) + 1)), r.want) << r.a << " | " << r.b;
    }
    const struct { const char *a, *b; std::size_t n; int want; } limited[] = {
        {"ABCx", "abcy", 3, 0}, {"ABCx", "abcy", 4, -1}, {"ab", "ac", 1, 0}, {"ab", "ac", 2, -1},
        {"abc", "ab", 2, 0},    {"abc", "ab", 3, 1},     {"x", "y", 0, 0},   {"ab", "AB", 100, 0}};
    for (const auto &r : limited) EXPECT_EQ(sign(strnicmp(r.a, r.b, r.n)), r.want) << r.a << " | " << r.b << r.n;
    EXPECT_TRUE(strnicmp(heap("XS").data(), "xs", 2) == 0 && strnicmp(heap("XS").data(), "xt", 2) != 0);
    const struct { const char *a, *b; bool equal; } blanks[] = {
        {"  Hello\t", "hello", true}, {"hello", "\t HELLO ", true}, {"", "   ", true},     {" \t", "", true},
        {"he llo", "hello", false},   {"a", "a b", false},          {"ab ", "abc", false}, {" x", "y ", false}};
    for (const auto &r : blanks) {
        EXPECT_EQ(stricnb(r.a, r.b) == 0, r.equal) << "[" << r.a << "] [" << r.b << "]";
        EXPECT_EQ(stricnb(r.b, r.a) == 0, r.equal) << "[" << r.b << "] [" << r.a << "]";
    }
}

// Boundaries of %G (sixth-digit rounding, the switch to an exponent, the
// range), powers of ten, two million bit patterns, decimals with a 5 at
// digit seven, decimals of six digits or fewer.
std::vector<double> g_values() {
    const double denorm = std::numeric_limits<double>::denorm_min();
    V v = {0.0,          -0.0,     1.0,         -1.0,        kInf,         -kInf,    kNan,     -kNan,    DBL_MAX,
           -DBL_MAX,     DBL_MIN,  denorm,      -denorm,     DBL_MIN / 3,  9.999995, 99999.95, 999999.5, 999999.4999,
           9.9999949999, 1e6 - 0.5, 1e6 + 0.5,  9999995.0,   99999.949999, 0.0001,   1e-05,    9.999995e-05,
           9.9999949e-05, 123456.5, 123457.5,   2.5,         0.125,        1.0 / 3.0};
    for (int e = -324; e <= 308; ++e) {
        const double p = std::pow(10.0, e);
        v.insert(v.end(), {p, std::nextafter(p, 0.0), std::nextafter(p, kInf), -p * 9.999995, p * 0.9999995});
    }
    std::mt19937_64 rng(0x5eed5eedULL);
    std::uniform_int_distribution<long> mantissa(100000, 999999), exponent(-336, 304);
    for (int i = 0; i < 2000000; ++i) {
        v.push_back(std::bit_cast<double>(rng()));
        if (i % 3 != 0) continue;
        const std::string decimal = std::to_string(mantissa(rng) * 10 + 5) + "e" + std::to_string(exponent(rng));
        v.push_back(std::strtod(decimal.c_str(), nullptr));
        // Six digits or fewer, as every value read from a file.
        const std::string shorter =
            std::to_string(mantissa(rng) / (1 + i % 100000)) + "e" + std::to_string(exponent(rng) / (1 + i % 7));
        v.push_back((i % 2 ? -1 : 1) * std::strtod(shorter.c_str(), nullptr));
    }
    return v;
}

// write_g prints what printf("%G") prints; both readers take it back whole.
TEST(NumberWriteG, SameAsPrintfAndReadBack) {
    int failures = 0;
    for (const double v : g_values()) {
        char want[64], got[vlk::kWriteGMax];
        const int n = std::snprintf(want, sizeof want, "%G", v);
        const std::size_t length = vlk::write_g(got, v);
        const double meant = std::strtod(want, nullptr);
        double back = kUntouched;
        const bool cn2d_ok = cn2d(got, static_cast<int32_t>(length), &back) == 0 && same_value(back, meant);
        const vlk::Parsed p = vlk::read_real(std::string_view(got, length));
        const bool read_ok = p.code == vlk::kReadOk && p.used == length && same_value(p.value, meant);
        if ((length != static_cast<std::size_t>(n) || std::strcmp(got, want) != 0 || !cn2d_ok || !read_ok) &&
            ++failures <= 20)
            ADD_FAILURE() << "printf " << want << ", write_g " << std::string(got, length) << ", cn2d " << cn2d_ok
                          << ", read_real " << read_ok;
    }
    EXPECT_EQ(failures, 0);
}

// A buffer too small for the text and its 0 byte gives 0.
TEST(NumberWriteG, SmallBuffers) {
    char buf[vlk::kWriteGMax];
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, 14), -1.79769e308), 13u);
    EXPECT_STREQ(buf, "-1.79769E+308");
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, 13), -1.79769e308), 0u);
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, 4), -kInf), 0u);
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, 5), -kInf), 4u);
    EXPECT_STREQ(buf, "-INF");
    EXPECT_EQ(vlk::write_g(std::span<char>{}, 1.0), 0u);
}

// The running integral follows the grid, one point flat over a cosine range
// of 2, nothing beyond n; the first moment (0 without an integral); scaling.
TEST(Vectors, IntegralsAndScaling) {
    const struct { V x, y, cum; } rows[] = {{{-1, 0, 1}, {1, 2, 1}, {0, 1.5, 3}},
                                            {{1, 0, -1}, {1, 2, 1}, {0, -1.5, -3}},
                                            {{0, 1, 3}, {2, 2, 0}, {0, 2, 4}}, {{5}, {1.5}, {3}}};
    for (const auto &r : rows) {
        V cum(r.x.size() + 1, -7.0);
        const int32_t n = static_cast<int32_t>(r.x.size());
        EXPECT_EQ(vtrapz(r.x.data(), 1, r.y.data(), 1, cum.data(), 1, n), r.cum.back());
        EXPECT_EQ(V(cum.begin(), cum.end() - 1), r.cum);
        EXPECT_EQ(cum.back(), -7.0);
        EXPECT_EQ(vtrapz(r.x.data(), 1, r.y.data(), 1, nullptr, 1, n), r.cum.back());
    }
    double untouched = -7.0;
    EXPECT_TRUE(vtrapz(&untouched, 1, &untouched, 1, &untouched, 1, 0) == 0 && untouched == -7.0);
    const V x = {-1, 99, 0, 99, 1}, y = {1, 99, 99, 2, 99, 99, 1};
    V cum(4, -7.0);
    EXPECT_EQ(vtrapz(x.data(), 2, y.data(), 3, cum.data(), 2, 2), 1.5);
    EXPECT_EQ(cum, (V{0, -7, 1.5, -7}));
    const struct { V x, y; double mean; } moments[] = {
        {{1, 3}, {1, 1}, 2}, {{0, 1, 2}, {0, 1, 0}, 1}, {{0, 2}, {1, 3}, 6.0 / 4.0}, {{1, 3}, {0, 0}, 0},
        {{1, 3}, {1, -1}, 0}, {{4}, {2}, 4}, {{4}, {0}, 0}};
    for (const auto &r : moments)
        EXPECT_DOUBLE_EQ(vtrapz1(r.x.data(), 1, r.y.data(), 1, nullptr, 1, static_cast<int32_t>(r.x.size())), r.mean)
            << r.x.size() << " points";
    V v = {2, 4, 6, 8}, out(2);
    vsmul(v.data(), 1, 0.5, v.data(), 1, 3);
    EXPECT_EQ(v, (V{1, 2, 3, 8}));
    vsmul(v.data(), 2, -1.0, out.data(), 1, 2);
    EXPECT_EQ(out, (V{-1, -3}));
}

// As std::sort has them, in place; NaNs last; other lists follow.
TEST(Vectors, Sort) {
    std::mt19937_64 rng(42);
    std::uniform_int_distribution<int> value(-1000, 1000);
    for (int n : {1, 2, 3, 17, 1000, 5000}) {
        V v(static_cast<std::size_t>(n));
        for (auto &d : v) d = value(rng) / 8.0;
        v.front() = DBL_MAX;
        v.back() = -DBL_MAX;
        V expected = v;
        std::sort(expected.begin(), expected.end());
        double *p = v.data();
        vshsrtd(&p, 1, 1, n);
        EXPECT_TRUE(p == v.data() && v == expected) << n;
    }
    V key = {2, kNan, 1, 3}, other = {20, 99, 10, 30};
    double *lists[] = {key.data(), other.data()};
    vshsrtd(lists, 2, 1, 4);
    EXPECT_TRUE(key[0] == 1 && key[1] == 2 && key[2] == 3 && std::isnan(key[3]));
    EXPECT_EQ(other, (V{10, 20, 30, 99}));
}

// A record that is always closed, whatever a failing assertion skips.
struct FileMem : SUFILEMEM {
    FileMem() : SUFILEMEM{} { uFileMemInit(this, 0); }
    ~FileMem() { uFileMemClose(this, 0); }
};

// One pass: each line inside the image with a 0 byte behind it.
std::vector<std::string_view> pass(FileMem &fm) {
    std::vector<std::string_view> out;
    EXPECT_EQ(uFileMemLineFirst(&fm, 0), 0);
    while (uFileMemLineNext(&fm, 0) == 0 && fm.pLine != nullptr) {
        EXPECT_TRUE(fm.pLine >= fm.pImage && fm.pLine + fm.nLine <= fm.pImage + fm.nImage && fm.pLine[fm.nLine] == 0);
        out.emplace_back(fm.pLine, fm.nLine);
        EXPECT_EQ(fm.nLineNo, static_cast<int32_t>(out.size()));
    }
    EXPECT_TRUE(fm.pLine == nullptr && uFileMemLineNext(&fm, 0) != 0) << "the end stays the end";
    return out;
}

// Lines of a content as a plain reading of the rules: split at "\n", a "\r"
// at the end of a piece is the line end's, and no line follows a final "\n".
Words reference_lines(const std::string &s) {
    Words l;
    for (std::size_t start = 0, nl; start < s.size(); start = nl + 1) {
        nl = std::min(s.find('\n', start), s.size());
        l.push_back(s.substr(start, nl - start));
        if (nl < s.size() && l.back().ends_with('\r')) l.back().pop_back();
    }
    return l;
}

void open_and_read(FileMem &fm, const std::string &path) {
    ASSERT_TRUE(uFileMemOpen(&fm, path.c_str(), 1, 0) == 0 && uFileMemRead(&fm, 0) == 0);
    EXPECT_EQ(fm.fp, nullptr) << "Read closes the stream";
}

// Edge cases, then random contents, against the plain reading; a second
// pass gives the same pointers, the text behind them still the line.
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
        FileMem fm;
        open_and_read(fm, dir.write("f.xs", contents[i]));
        EXPECT_EQ(fm.nImage, contents[i].size());
        const auto first = pass(fm), again = pass(fm);
        const Words want = reference_lines(contents[i]);
        ASSERT_EQ(Words(first.begin(), first.end()), want) << "content " << i;
        ASSERT_EQ(again.size(), first.size());
        for (std::size_t k = 0; k < first.size(); ++k) EXPECT_EQ(again[k].data(), first[k].data());
    }
}

// A record never opened, or whose open or read failed, delivers nothing and
// may be closed twice; it works afterwards, and another open releases it.
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
        EXPECT_TRUE(uFileMemOpen(&fm, path, 1, 0) != 0 && fm.fp == nullptr) << (path ? path : "(null)");
        EXPECT_TRUE(uFileMemRead(&fm, 0) != 0 && uFileMemLineNext(&fm, 0) != 0);
        uFileMemClose(&fm, 0);
    }
    const std::string path = dir.write("f.xs", "a\nb\n");
    FileMem fm;
    ASSERT_EQ(uFileMemOpen(&fm, path.c_str(), 1, 0), 0);
    vlk::testhook::fail_alloc_after(1);
    const int32_t rc = uFileMemRead(&fm, 0);
    vlk::testhook::fail_alloc_after(0);
    EXPECT_TRUE(rc != 0 && fm.fp == nullptr && fm.pImage == nullptr) << "the stream is closed on failure too";
    EXPECT_NE(uFileMemLineNext(&fm, 0), 0);
    uFileMemClose(&fm, 0);
    open_and_read(fm, path);
    EXPECT_EQ(pass(fm), (std::vector<std::string_view>{"a", "b"}));
    open_and_read(fm, dir.write("two.xs", "two\nlines\n"));
    EXPECT_EQ(pass(fm), (std::vector<std::string_view>{"two", "lines"}));
}

}  // namespace
