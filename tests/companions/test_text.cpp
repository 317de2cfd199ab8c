// Text routines: counted-text numbers, word and item splitting, case-free
// comparison, and the shared number writer against printf and the readers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "core/numbers.hpp"
#include "vlkxs.h"

namespace {

using Words = std::vector<std::string>;
constexpr double kUntouched = -4242.25;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The bytes of `s` in a heap block of exactly their size, with no 0 behind
// them: a read past the counted length is caught by AddressSanitizer.
class HeapText {
public:
    explicit HeapText(std::string_view s) : n_(s.size()), p_(std::make_unique<char[]>(s.size())) {
        if (!s.empty()) std::memcpy(p_.get(), s.data(), s.size());
    }
    const char *data() const { return p_.get(); }
    int32_t len() const { return static_cast<int32_t>(n_); }

private:
    std::size_t n_;
    std::unique_ptr<char[]> p_;
};

bool same_value(double got, double want) {
    return std::signbit(got) == std::signbit(want) && (got == want || (std::isnan(got) && std::isnan(want)));
}

// What printf's %G prints is read back by the property test below; these are
// the other forms, and texts that are no number (nullopt): the value then
// stays untouched.
TEST(Number, RealsInCountedText) {
    const std::pair<const char *, std::optional<double>> rows[] = {
        {"20080825", 20080825.0}, {"1.5e-17", 1.5e-17}, {"inf", kInf}, {"-inf", -kInf}, {"nan", kNan},
        {"Inf", kInf}, {"1e6", 1e6}, {".5", 0.5}, {"5.", 5.0}, {"-.5", -0.5}, {"+1", 1.0}, {"+.5", 0.5},
        {"+1.5E+03", 1500.0}, {"+INF", kInf}, {"007", 7.0}, {"-0", -0.0}, {"  1.5", 1.5}, {"1.5  ", 1.5},
        {"\t-2\t", -2.0}, {"", std::nullopt}, {" ", std::nullopt}, {"\t \t", std::nullopt}, {"x", std::nullopt},
        {"1.5x", std::nullopt}, {"1.5 2", std::nullopt}, {"1,5", std::nullopt}, {"1.5\n", std::nullopt},
        {"\n1.5", std::nullopt}, {"+", std::nullopt}, {"-", std::nullopt}, {".", std::nullopt}, {"+-1", std::nullopt},
        {"-+1", std::nullopt}, {"++1", std::nullopt}, {"--1", std::nullopt}, {"+ 1", std::nullopt},
        {"e5", std::nullopt}, {"1e", std::nullopt}, {"1e+", std::nullopt}, {"1E-", std::nullopt},
        {"0x10", std::nullopt}, {"1.2.3", std::nullopt}, {"IN", std::nullopt}, {"NA", std::nullopt},
        {"INFx", std::nullopt}, {"1e999", std::nullopt}, {"-1e999", std::nullopt}, {"1e-400", std::nullopt},
    };
    for (const auto &[text, value] : rows) {
        const HeapText t(text);
        double v = kUntouched;
        const int32_t rc = cn2d(t.data(), t.len(), &v);
        EXPECT_EQ(rc == 0, value.has_value()) << "'" << text << "'";
        EXPECT_PRED2(same_value, v, value.value_or(kUntouched)) << "'" << text << "'";
    }
}

TEST(Number, IntegersInCountedText) {
    const std::pair<const char *, std::optional<int32_t>> rows[] = {
        {"12", 12}, {"-12", -12}, {"+12", 12}, {"0", 0}, {"-0", 0}, {"007", 7}, {" 12 ", 12}, {"\t-7\t", -7},
        {"2147483647", 2147483647}, {"-2147483648", INT32_MIN}, {"2147483648", std::nullopt},
        {"-2147483649", std::nullopt}, {"99999999999999999999", std::nullopt}, {"", std::nullopt},
        {" ", std::nullopt}, {"12x", std::nullopt}, {"x12", std::nullopt}, {"1.5", std::nullopt},
        {"1e3", std::nullopt}, {"1 2", std::nullopt}, {"+", std::nullopt}, {"-", std::nullopt},
        {"+-1", std::nullopt}, {"--1", std::nullopt}, {"0x1", std::nullopt}, {"12\n", std::nullopt},
    };
    for (const auto &[text, value] : rows) {
        const HeapText t(text);
        int32_t v = -777;
        const int32_t rc = cn2l(t.data(), t.len(), &v);
        EXPECT_EQ(rc >= 0, value.has_value()) << "'" << text << "'";
        EXPECT_EQ(v, value.value_or(-777)) << "'" << text << "'";
    }
}

// The counted length is the end of the text, also inside a number.
TEST(Number, CountedLengthIsTheEnd) {
    int32_t i = 0;
    double d = 0, w[3] = {0, 0, kUntouched};
    EXPECT_TRUE(cn2l(HeapText("12345").data(), 2, &i) >= 0 && i == 12);
    EXPECT_TRUE(cn2d(HeapText("12345").data(), 2, &d) == 0 && d == 12.0);
    const HeapText junk("1.5E-17junk"), exp("1E+06");
    EXPECT_TRUE(cn2d(junk.data(), 7, &d) == 0 && d == 1.5e-17);
    EXPECT_LT(cn2d(junk.data(), 8, &d), 0);
    EXPECT_TRUE(cn2d(exp.data(), 4, &d) == 0 && d == 1.0) << "a shorter exponent";
    EXPECT_LT(cn2d(exp.data(), 3, &d), 0);
    EXPECT_EQ(cn2vd(HeapText("1 2 3 4").data(), 3, w, 1, 3), 2);
    EXPECT_TRUE(w[1] == 2 && w[2] == kUntouched);
    EXPECT_EQ(cn2vd(HeapText("1 234").data(), 4, w, 1, 3), 2);
    EXPECT_EQ(w[1], 23);
}

// Up to `max` numbers, separated by blanks or commas, as far as they are
// numbers; nothing stored beyond them.
TEST(Number, VectorsInCountedText) {
    const struct {
        const char *text;
        int32_t max;
        std::vector<double> values;
    } rows[] = {{"1 2 3 4", 3, {1, 2, 3}}, {"1 2 3", 3, {1, 2, 3}}, {"1 2", 5, {1, 2}},
                {"  1.5E-17\t2E+06   -3  ", 3, {1.5e-17, 2e6, -3}}, {"1,2, 3", 3, {1, 2, 3}},
                {"1 , 2 ,3", 3, {1, 2, 3}}, {"1 x 3", 3, {1}}, {"1 2x 3", 3, {1}},
                {"INF -NAN 0", 3, {kInf, -kNan, 0}}, {"7", 1, {7}}, {"", 3, {}}, {"   ", 3, {}}, {"x 1", 3, {}},
                {"1e999 1", 3, {}}};
    for (const auto &r : rows) {
        const HeapText t(r.text);
        std::vector<double> v(static_cast<std::size_t>(r.max) + 2, kUntouched);
        const int32_t n = cn2vd(t.data(), t.len(), v.data(), 1, r.max);
        EXPECT_EQ(std::max(n, 0), static_cast<int32_t>(r.values.size())) << r.text;
        for (std::size_t i = 0; i < v.size(); ++i)
            EXPECT_PRED2(same_value, v[i], i < r.values.size() ? r.values[i] : kUntouched) << r.text << " " << i;
    }
}

TEST(Text, WordsSplitInPlace) {
    const struct {
        const char *text;
        int32_t max;
        Words words;
    } rows[] = {{"xs i,t", 3, {"xs", "i", "t"}}, {"xs  i , t", 3, {"xs", "i", "t"}}, {"xs\ti,,t", 3, {"xs", "i", "t"}},
                {"  xs i t  ", 3, {"xs", "i", "t"}}, {"xs i t extra", 3, {"xs", "i", "t"}},
                {"xs i t,extra more", 3, {"xs", "i", "t"}}, {"a b", 3, {"a", "b"}}, {"a,b", 1, {"a"}},
                {"word", 3, {"word"}}, {"", 3, {}}, {" , \t,", 3, {}}};
    for (const auto &r : rows) {
        std::string buf(r.text);
        std::vector<char *> words(static_cast<std::size_t>(r.max) + 1, nullptr);
        ASSERT_EQ(c2vc(buf.data(), words.data(), 1, r.max), static_cast<int32_t>(r.words.size())) << r.text;
        for (std::size_t i = 0; i < r.words.size(); ++i) {
            EXPECT_TRUE(words[i] >= buf.data() && words[i] < buf.data() + buf.size()) << r.text;
            EXPECT_EQ(words[i], r.words[i]) << r.text;
        }
        EXPECT_EQ(words.back(), nullptr) << "nothing beyond max";
    }
}

// Items of a limit string: cut at commas and blanks (a comma between blanks
// is one cut), the text unchanged; a text without any item is negative.
TEST(Text, ItemsCutWithoutChanging) {
    const std::pair<const char *, std::optional<Words>> rows[] = {
        {"1,2,3", Words{"1", "2", "3"}}, {"1, 2, 3", Words{"1", "2", "3"}}, {"1 2 3", Words{"1", "2", "3"}},
        {"1 ,2 , 3", Words{"1", "2", "3"}}, {"1\t2", Words{"1", "2"}}, {"5 , *", Words{"5", "*"}},
        {"  1  ", Words{"1"}}, {"1E+06", Words{"1E+06"}}, {"a b,c", Words{"a", "b", "c"}}, {",,", Words{"", "", ""}},
        {",", Words{"", ""}}, {"1,,2", Words{"1", "", "2"}}, {"1 , , 2", Words{"1", "", "2"}}, {"1,", Words{"1", ""}},
        {"1 , ", Words{"1", ""}}, {",1", Words{"", "1"}}, {" , 1", Words{"", "1"}}, {"", std::nullopt},
        {"   ", std::nullopt}, {"\t \t", std::nullopt},
    };
    for (const auto &[text, items] : rows) {
        const std::string s(text);
        const char *item[8] = {};
        int32_t len[8] = {};
        const int32_t n = c2vcn(s.c_str(), item, len, 1, 8);
        EXPECT_EQ(c2vcn(s.c_str(), nullptr, nullptr, 1, 0x7fffffff), n) << "counting alone: '" << text << "'";
        EXPECT_EQ(s, text);
        if (!items) {
            EXPECT_LT(n, 0) << "'" << text << "'";
            continue;
        }
        ASSERT_EQ(n, static_cast<int32_t>(items->size())) << "'" << text << "'";
        for (std::size_t i = 0; i < items->size(); ++i) {
            ASSERT_TRUE(item[i] >= s.c_str() && item[i] + len[i] <= s.c_str() + s.size()) << "'" << text << "'";
            EXPECT_EQ(std::string(item[i], static_cast<std::size_t>(len[i])), (*items)[i]) << "'" << text << "'";
        }
    }
}

int sign(int32_t v) { return (v > 0) - (v < 0); }

// Case-free comparison in the order of the upper-case letters (so "[" lies
// before "{" and "@" before "`"); bytes above 127 compare as they are.
TEST(Text, CaseFreeComparison) {
    const struct {
        const char *a, *b;
        int want;
    } rows[] = {{"abc", "abc", 0}, {"ABC", "abc", 0}, {"xS", "Xs", 0}, {"", "", 0},   {"a", "B", -1},
                {"B", "a", 1},     {"ab", "abc", -1}, {"abc", "ab", 1}, {"", "a", -1}, {"[", "{", -1},
                {"@", "`", -1},    {"^", "~", -1},    {"Z", "z", 0},   {"\xc4", "\xe4", -1}, {"a b", "A B", 0}};
    for (const auto &r : rows) {
        EXPECT_EQ(sign(stricmp(r.a, r.b)), r.want) << r.a << " | " << r.b;
        EXPECT_EQ(sign(stricnb(r.a, r.b)), r.want) << r.a << " | " << r.b;
        EXPECT_EQ(sign(strnicmp(r.a, r.b, std::strlen(r.a) + 1)), r.want) << r.a << " | " << r.b;
    }
    const struct {
        const char *a, *b;
        std::size_t n;
        int want;
    } limited[] = {{"ABCx", "abcy", 3, 0}, {"ABCx", "abcy", 4, -1}, {"ab", "ac", 1, 0}, {"ab", "ac", 2, -1},
                   {"abc", "ab", 2, 0},    {"abc", "ab", 3, 1},     {"x", "y", 0, 0},   {"ab", "AB", 100, 0}};
    for (const auto &r : limited) EXPECT_EQ(sign(strnicmp(r.a, r.b, r.n)), r.want) << r.a << " | " << r.b << " " << r.n;
    // A keyword at the front of a line that has no 0 behind it.
    const HeapText line("XS");
    EXPECT_TRUE(strnicmp(line.data(), "xs", 2) == 0 && strnicmp(line.data(), "xt", 2) != 0);
    // stricnb also ignores blanks at both ends, in either argument.
    const struct {
        const char *a, *b;
        bool equal;
    } blanks[] = {{"  Hello\t", "hello", true}, {"hello", "\t HELLO ", true}, {"", "   ", true},     {" \t", "", true},
                  {"he llo", "hello", false},   {"a", "a b", false},          {"ab ", "abc", false}, {" x", "y ", false}};
    for (const auto &r : blanks) {
        EXPECT_EQ(stricnb(r.a, r.b) == 0, r.equal) << "[" << r.a << "] [" << r.b << "]";
        EXPECT_EQ(stricnb(r.b, r.a) == 0, r.equal) << "[" << r.b << "] [" << r.a << "]";
    }
}

// Boundary values of %G (the rounding of the sixth digit, the switch to an
// exponent, the ends of the range), powers of ten and their neighbours, any
// bit pattern, and short decimals with a 5 at the seventh digit.
std::vector<double> g_values() {
    const double denorm = std::numeric_limits<double>::denorm_min();
    std::vector<double> v = {0.0,      -0.0,          1.0,          -1.0,     kInf,     -kInf,         kNan,
                             -kNan,    DBL_MAX,       -DBL_MAX,     DBL_MIN,  denorm,   -denorm,       DBL_MIN / 3,
                             9.999995, 9.9999949999, 9.9999950001, 99999.95, 99999.949999, 999999.5, 999999.4999,
                             1e6 - 0.5, 1e6 + 0.5,    9999995.0,    0.0001,   9.999995e-05, 9.9999949e-05, 1e-05,
                             123456.5, 123457.5,      2.5,          0.125,    1.0 / 3.0};
    for (int e = -324; e <= 308; ++e) {
        const double p = std::pow(10.0, e);
        v.insert(v.end(), {p, std::nextafter(p, 0.0), std::nextafter(p, kInf), -p * 9.999995, p * 0.9999995});
    }
    std::mt19937_64 rng(0x5eed5eedULL);
    for (int i = 0; i < 300000; ++i) {
        const std::uint64_t bits = rng();
        double d;
        std::memcpy(&d, &bits, sizeof d);
        v.push_back(d);
    }
    std::uniform_int_distribution<long> mantissa(100000, 999999);
    std::uniform_int_distribution<int> exponent(-336, 304);
    for (int i = 0; i < 50000; ++i) {
        const std::string s = std::to_string(mantissa(rng) * 10 + 5) + "e" + std::to_string(exponent(rng));
        v.push_back(std::strtod(s.c_str(), nullptr));
    }
    return v;
}

// write_g prints what printf("%G") prints, and both number readers take the
// text back whole, to the value it means.
TEST(NumberWriteG, SameAsPrintfAndReadBack) {
    int failures = 0;
    for (const double v : g_values()) {
        char want[64], got[vlk::kWriteGMax];
        const int n = std::snprintf(want, sizeof want, "%G", v);
        const std::size_t len = vlk::write_g(got, v);
        const double meant = std::strtod(want, nullptr);
        double back = kUntouched;
        const bool cn2d_ok = cn2d(got, static_cast<int32_t>(len), &back) == 0 && same_value(back, meant);
        const vlk::Parsed p = vlk::read_real(std::string_view(got, len));
        const bool read_ok = p.code == vlk::kReadOk && p.used == len && same_value(p.value, meant);
        if ((len != static_cast<std::size_t>(n) || std::strcmp(got, want) != 0 || !cn2d_ok || !read_ok) &&
            ++failures <= 20)
            ADD_FAILURE() << "printf " << want << ", write_g " << std::string(got, len) << ", cn2d " << cn2d_ok
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

}  // namespace
