// Text routines: word and item splitting, counted-text numbers, case-free
// comparison, and the shared number reader and writer.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/numbers.hpp"
#include "vlkxs.h"

namespace {

using Words = std::vector<std::string>;

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

constexpr double kUntouched = -4242.25;
const double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();

bool same_value(double got, double want) {
    if (std::isnan(want)) return std::isnan(got) && std::signbit(got) == std::signbit(want);
    return got == want && std::signbit(got) == std::signbit(want);
}

// ---------------------------------------------------------------- cn2d

struct RealRow {
    const char *text;
    std::optional<double> value;  // nullopt: the text is no number
};

void PrintTo(const RealRow &r, std::ostream *os) { *os << '"' << r.text << '"'; }

const RealRow kRealRows[] = {
    // What %G prints.
    {"1.5E-17", 1.5e-17}, {"1E+06", 1e6}, {"-0.5", -0.5}, {"0", 0.0}, {"-0", -0.0}, {"123456", 123456.0},
    {"1.23457E+08", 1.23457e8}, {"0.0001", 1e-4}, {"1E-05", 1e-5}, {"4.94066E-324", 4.94066e-324},
    {"2.22507E-308", 2.22507e-308}, {"1.79769E+308", 1.79769e308}, {"INF", kInf}, {"-INF", -kInf}, {"NAN", kNan},
    {"-NAN", -kNan},
    // What %g prints, and common hand-written forms.
    {"20080825", 20080825.0}, {"1.5e-17", 1.5e-17}, {"inf", kInf}, {"-inf", -kInf}, {"nan", kNan}, {"Inf", kInf},
    {"1e6", 1e6}, {".5", 0.5}, {"5.", 5.0}, {"-.5", -0.5}, {"+1", 1.0}, {"+.5", 0.5}, {"+1.5E+03", 1500.0},
    {"+INF", kInf}, {"1E6", 1e6}, {"007", 7.0},
    // Blanks around.
    {"  1.5", 1.5}, {"1.5  ", 1.5}, {"\t-2\t", -2.0},
    // No number, or junk within the counted text.
    {"", std::nullopt}, {" ", std::nullopt}, {"\t \t", std::nullopt}, {"x", std::nullopt}, {"1.5x", std::nullopt},
    {"1.5 2", std::nullopt}, {"1,5", std::nullopt}, {"1.5\n", std::nullopt}, {"\n1.5", std::nullopt},
    {"+", std::nullopt}, {"-", std::nullopt}, {".", std::nullopt}, {"+-1", std::nullopt}, {"-+1", std::nullopt},
    {"++1", std::nullopt}, {"--1", std::nullopt}, {"+ 1", std::nullopt}, {"e5", std::nullopt}, {"1e", std::nullopt},
    {"1e+", std::nullopt}, {"1E-", std::nullopt}, {"0x10", std::nullopt}, {"1.2.3", std::nullopt},
    {"IN", std::nullopt}, {"NA", std::nullopt}, {"INFx", std::nullopt},
    // Beyond the range of a double: no value.
    {"1e999", std::nullopt}, {"-1e999", std::nullopt}, {"1e-400", std::nullopt}
};

class NumberReal : public ::testing::TestWithParam<RealRow> {};

TEST_P(NumberReal, ReadsCountedTextExactly) {
    const RealRow &r = GetParam();
    const HeapText t(r.text);
    double v = kUntouched;
    const int32_t rc = cn2d(t.data(), t.len(), &v);
    if (r.value) {
        EXPECT_EQ(rc, 0);
        EXPECT_PRED2(same_value, v, *r.value);
    } else {
        EXPECT_LT(rc, 0);
        EXPECT_EQ(v, kUntouched);
    }
}

INSTANTIATE_TEST_SUITE_P(Number, NumberReal, ::testing::ValuesIn(kRealRows));

// ---------------------------------------------------------------- cn2l

struct IntRow {
    const char *text;
    std::optional<int32_t> value;
};

void PrintTo(const IntRow &r, std::ostream *os) { *os << '"' << r.text << '"'; }

const IntRow kIntRows[] = {
    {"12", 12}, {"-12", -12}, {"+12", 12}, {"0", 0}, {"-0", 0}, {"007", 7}, {" 12 ", 12}, {"\t-7\t", -7},
    {"2147483647", 2147483647}, {"-2147483648", std::numeric_limits<int32_t>::min()}, {"2147483648", std::nullopt},
    {"-2147483649", std::nullopt}, {"99999999999999999999", std::nullopt}, {"", std::nullopt}, {" ", std::nullopt},
    {"12x", std::nullopt}, {"x12", std::nullopt}, {"1.5", std::nullopt}, {"1e3", std::nullopt}, {"1 2", std::nullopt},
    {"+", std::nullopt}, {"-", std::nullopt}, {"+-1", std::nullopt}, {"--1", std::nullopt}, {"0x1", std::nullopt},
    {"12\n", std::nullopt}
};

class NumberInt : public ::testing::TestWithParam<IntRow> {};

TEST_P(NumberInt, ReadsCountedTextExactly) {
    const IntRow &r = GetParam();
    const HeapText t(r.text);
    int32_t v = -777;
    const int32_t rc = cn2l(t.data(), t.len(), &v);
    if (r.value) {
        EXPECT_GE(rc, 0);
        EXPECT_EQ(v, *r.value);
    } else {
        EXPECT_LT(rc, 0);
        EXPECT_EQ(v, -777);
    }
}

INSTANTIATE_TEST_SUITE_P(Number, NumberInt, ::testing::ValuesIn(kIntRows));

TEST(NumberLimits, CountedLengthIsTheEnd) {
    const HeapText t("12345");
    int32_t i = 0;
    EXPECT_GE(cn2l(t.data(), 2, &i), 0);
    EXPECT_EQ(i, 12);
    double d = 0;
    EXPECT_EQ(cn2d(t.data(), 2, &d), 0);
    EXPECT_EQ(d, 12.0);

    const HeapText junk("1.5E-17junk");
    EXPECT_EQ(cn2d(junk.data(), 7, &d), 0);
    EXPECT_EQ(d, 1.5e-17);
    EXPECT_LT(cn2d(junk.data(), 8, &d), 0);
    // "1E+0" of "1E+06": a shorter exponent, a different value.
    const HeapText exp("1E+06");
    EXPECT_EQ(cn2d(exp.data(), 4, &d), 0);
    EXPECT_EQ(d, 1.0);
    EXPECT_LT(cn2d(exp.data(), 3, &d), 0);
}

// ---------------------------------------------------------------- cn2vd

struct VectorRow {
    const char *text;
    int32_t max;
    std::vector<double> values;  // what is stored; the count returned is their number
};

void PrintTo(const VectorRow &r, std::ostream *os) { *os << '"' << r.text << '"'; }

const VectorRow kVectorRows[] = {
    {"1 2 3 4", 3, {1, 2, 3}}, {"1 2 3", 3, {1, 2, 3}}, {"1 2", 5, {1, 2}},
    {"  1.5E-17\t2E+06   -3  ", 3, {1.5e-17, 2e6, -3}}, {"1,2, 3", 3, {1, 2, 3}}, {"1 , 2 ,3", 3, {1, 2, 3}},
    {"1 x 3", 3, {1}}, {"1 2x 3", 3, {1}}, {"INF -NAN 0", 3, {kInf, -kNan, 0}}, {"7", 1, {7}}, {"", 3, {}},
    {"   ", 3, {}}, {"x 1", 3, {}}, {"1e999 1", 3, {}}
};

class NumberVector : public ::testing::TestWithParam<VectorRow> {};

TEST_P(NumberVector, StoresUpToMaxAndLeavesTheRest) {
    const VectorRow &r = GetParam();
    const HeapText t(r.text);
    std::vector<double> v(static_cast<std::size_t>(r.max) + 2, kUntouched);
    const int32_t n = cn2vd(t.data(), t.len(), v.data(), 1, r.max);
    if (r.values.empty()) {
        EXPECT_LE(n, 0);
    } else {
        EXPECT_EQ(n, static_cast<int32_t>(r.values.size()));
    }
    for (std::size_t i = 0; i < v.size(); ++i) {
        if (i < r.values.size())
            EXPECT_PRED2(same_value, v[i], r.values[i]) << "value " << i;
        else
            EXPECT_EQ(v[i], kUntouched) << "value " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Number, NumberVector, ::testing::ValuesIn(kVectorRows));

TEST(NumberVectorLimits, CountedLengthIsTheEnd) {
    const HeapText t("1 2 3 4");
    // "1 2 3" cut after "1 2": the 3 is outside.
    double w[3] = {0, 0, kUntouched};
    EXPECT_EQ(cn2vd(t.data(), 3, w, 1, 3), 2);
    EXPECT_EQ(w[1], 2);
    EXPECT_EQ(w[2], kUntouched);
    // A cut inside a number reads the part before the cut.
    const HeapText u("1 234");
    EXPECT_EQ(cn2vd(u.data(), 4, w, 1, 3), 2);
    EXPECT_EQ(w[1], 23);
}

// ---------------------------------------------------------------- c2vc

struct SplitRow {
    const char *text;
    int32_t max;
    Words words;
};

void PrintTo(const SplitRow &r, std::ostream *os) { *os << '"' << r.text << '"'; }

const SplitRow kSplitRows[] = {
    {"xs i,t", 3, {"xs", "i", "t"}}, {"xs  i , t", 3, {"xs", "i", "t"}}, {"xs\ti,,t", 3, {"xs", "i", "t"}},
    {"  xs i t  ", 3, {"xs", "i", "t"}}, {"xs i t extra", 3, {"xs", "i", "t"}},
    {"xs i t,extra more", 3, {"xs", "i", "t"}}, {"a b", 3, {"a", "b"}}, {"a,b", 1, {"a"}}, {"word", 3, {"word"}},
    {"", 3, {}}, {" , \t,", 3, {}}
};

class TextSplit : public ::testing::TestWithParam<SplitRow> {};

TEST_P(TextSplit, WordsInPlace) {
    const SplitRow &r = GetParam();
    std::string buf(r.text);
    std::vector<char *> words(static_cast<std::size_t>(r.max) + 1, nullptr);
    const int32_t n = c2vc(buf.data(), words.data(), 1, r.max);
    ASSERT_EQ(n, static_cast<int32_t>(r.words.size()));
    for (std::size_t i = 0; i < r.words.size(); ++i) {
        EXPECT_EQ(std::string(words[i]), r.words[i]);
        EXPECT_GE(words[i], buf.data());
        EXPECT_LT(words[i], buf.data() + buf.size());
    }
    EXPECT_EQ(words[static_cast<std::size_t>(r.max)], nullptr) << "nothing beyond max";
}

INSTANTIATE_TEST_SUITE_P(Text, TextSplit, ::testing::ValuesIn(kSplitRows));

// ---------------------------------------------------------------- c2vcn

struct ItemsRow {
    const char *text;
    std::optional<Words> items;  // nullopt: no item at all, a negative result
};

void PrintTo(const ItemsRow &r, std::ostream *os) { *os << '"' << r.text << '"'; }

const ItemsRow kItemsRows[] = {
    {"1,2,3", Words{"1", "2", "3"}}, {"1, 2, 3", Words{"1", "2", "3"}}, {"1 2 3", Words{"1", "2", "3"}},
    {"1 ,2 , 3", Words{"1", "2", "3"}}, {"1\t2", Words{"1", "2"}}, {"5 , *", Words{"5", "*"}}, {"  1  ", Words{"1"}},
    {"1E+06", Words{"1E+06"}}, {"a b,c", Words{"a", "b", "c"}}, {",,", Words{"", "", ""}}, {",", Words{"", ""}},
    {"1,,2", Words{"1", "", "2"}}, {"1 , , 2", Words{"1", "", "2"}}, {"1,", Words{"1", ""}}, {"1 , ", Words{"1", ""}},
    {",1", Words{"", "1"}}, {" , 1", Words{"", "1"}}, {"", std::nullopt}, {"   ", std::nullopt},
    {"\t \t", std::nullopt}
};

class TextItems : public ::testing::TestWithParam<ItemsRow> {};

TEST_P(TextItems, CutsWithoutChanging) {
    const ItemsRow &r = GetParam();
    const std::string text(r.text);
    const std::string before = text;
    constexpr int32_t kMax = 8;
    const char *items[kMax] = {};
    int32_t lens[kMax] = {};
    const int32_t n = c2vcn(text.c_str(), items, lens, 1, kMax);
    const int32_t counted = c2vcn(text.c_str(), nullptr, nullptr, 1, 0x7fffffff);
    EXPECT_EQ(text, before);
    if (!r.items) {
        EXPECT_LT(n, 0);
        EXPECT_LT(counted, 0);
        return;
    }
    ASSERT_EQ(n, static_cast<int32_t>(r.items->size()));
    EXPECT_EQ(counted, n);
    for (int32_t i = 0; i < n; ++i) {
        ASSERT_NE(items[i], nullptr);
        EXPECT_GE(items[i], text.c_str());
        EXPECT_LE(items[i] + lens[i], text.c_str() + text.size());
        EXPECT_EQ(std::string(items[i], static_cast<std::size_t>(lens[i])), (*r.items)[static_cast<std::size_t>(i)])
            << "item " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Text, TextItems, ::testing::ValuesIn(kItemsRows));

// ---------------------------------------------------------------- comparisons

int sign(int32_t v) { return (v > 0) - (v < 0); }

struct CompareRow {
    const char *a;
    const char *b;
    int want;  // sign of the result
};

// The same rows hold for stricmp; stricnb additionally ignores blanks at the
// ends, which these rows don't have.
const CompareRow kCompareRows[] = {
    {"abc", "abc", 0}, {"ABC", "abc", 0}, {"xS", "Xs", 0},  {"", "", 0},          {"a", "B", -1},
    {"B", "a", 1},     {"ab", "abc", -1}, {"abc", "ab", 1}, {"", "a", -1},        {"[", "{", -1},
    {"@", "`", -1},    {"^", "~", -1},    {"Z", "z", 0},    {"\xc4", "\xe4", -1}, {"a b", "A B", 0}
};

TEST(TextCompare, StricmpTable) {
    for (const auto &r : kCompareRows) {
        SCOPED_TRACE(std::string(r.a) + " | " + r.b);
        EXPECT_EQ(sign(stricmp(r.a, r.b)), r.want);
        EXPECT_EQ(sign(stricnb(r.a, r.b)), r.want);
        EXPECT_EQ(sign(strnicmp(r.a, r.b, std::strlen(r.a) + 1)), r.want);
    }
}

TEST(TextCompare, StrnicmpStopsAtN) {
    struct Row {
        const char *a;
        const char *b;
        std::size_t n;
        int want;
    };
    const Row rows[] = {
        {"ABCx", "abcy", 3, 0}, {"ABCx", "abcy", 4, -1}, {"ab", "ac", 1, 0}, {"ab", "ac", 2, -1},
        {"abc", "ab", 2, 0},    {"abc", "ab", 3, 1},     {"x", "y", 0, 0},   {"ab", "AB", 100, 0},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(std::string(r.a) + " | " + r.b + " | " + std::to_string(r.n));
        EXPECT_EQ(sign(strnicmp(r.a, r.b, r.n)), r.want);
    }
    // A keyword at the front of a line that has no 0 behind it.
    const HeapText line("XS");
    EXPECT_EQ(strnicmp(line.data(), "xs", 2), 0);
    EXPECT_NE(strnicmp(line.data(), "xt", 2), 0);
}

TEST(TextCompare, StricnbIgnoresBlanksAtTheEnds) {
    struct Row {
        const char *a;
        const char *b;
        bool equal;
    };
    const Row rows[] = {
        {"  Hello\t", "hello", true}, {"hello", "\t HELLO ", true}, {"", "   ", true},     {" \t", "", true},
        {"he llo", "hello", false},   {"a", "a b", false},          {"ab ", "abc", false}, {" x", "y ", false},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(std::string("[") + r.a + "] [" + r.b + "]");
        EXPECT_EQ(stricnb(r.a, r.b) == 0, r.equal);
        EXPECT_EQ(stricnb(r.b, r.a) == 0, r.equal);
    }
}

// ---------------------------------------------------------------- write_g

std::string printf_g(double v) {
    char buf[64];
    const int n = std::snprintf(buf, sizeof buf, "%G", v);
    return std::string(buf, static_cast<std::size_t>(n));
}

std::string write_g(double v) {
    char buf[vlk::kWriteGMax];
    const std::size_t n = vlk::write_g(buf, v);
    EXPECT_GT(n, 0u);
    EXPECT_EQ(buf[n], '\0');
    return std::string(buf, n);
}

std::vector<double> g_values() {
    // clang-format off
    std::vector<double> v = {
        0.0, -0.0, 1.0, -1.0, kInf, -kInf, kNan, -kNan, DBL_MAX, -DBL_MAX, DBL_MIN,
        std::numeric_limits<double>::denorm_min(), -std::numeric_limits<double>::denorm_min(), DBL_MIN / 3,
        // around the rounding of the sixth digit and the switch to exponents
        9.999995, 9.9999949999, 9.9999950001, 99999.95, 99999.949999, 999999.5, 999999.4999, 999999.0,
        1e6, 1e6 - 0.5, 1e6 + 0.5, 9999995.0, 0.0001, 0.00009999995, 0.000099999949, 0.00001, 0.000099999,
        1e-5, 1.5e-17, 20080825.0, 0.5, 123456.5, 123457.5, 2.5, 0.125, 1.0 / 3.0};
    // clang-format on
    for (int e = -324; e <= 308; ++e) {
        const double p = std::pow(10.0, e);
        v.push_back(p);
        v.push_back(std::nextafter(p, 0.0));
        v.push_back(std::nextafter(p, kInf));
        v.push_back(-p * 9.999995);
        v.push_back(p * 0.9999995);
    }
    std::mt19937_64 rng(0x5eed5eedULL);
    // Any bit pattern: every magnitude, subnormals, infinities, NaNs.
    for (int i = 0; i < 50000; ++i) {
        const std::uint64_t bits = rng();
        double d;
        std::memcpy(&d, &bits, sizeof d);
        v.push_back(d);
    }
    // Short decimals near rounding boundaries: k digits, then a 5 at the
    // seventh significant digit, at every exponent.
    std::uniform_int_distribution<long> mant(1000000, 9999999);
    std::uniform_int_distribution<int> expo(-330, 310);
    for (int i = 0; i < 50000; ++i) {
        const long m = (mant(rng) / 10) * 10 + 5;
        const std::string s = std::to_string(m) + "e" + std::to_string(expo(rng) - 6);
        v.push_back(std::strtod(s.c_str(), nullptr));
    }
    return v;
}

TEST(NumberWriteG, SameAsPrintf) {
    const auto values = g_values();
    ASSERT_GT(values.size(), 100000u);
    int mismatches = 0;
    for (double v : values) {
        const std::string want = printf_g(v);
        const std::string got = write_g(v);
        if (got != want && ++mismatches <= 20) ADD_FAILURE() << "want " << want << " got " << got;
    }
    EXPECT_EQ(mismatches, 0);
}

// Whatever the writer prints, the reader takes back: to the value that the
// text means.
TEST(NumberWriteG, ReaderTakesEveryWrittenNumber) {
    int failures = 0;
    for (double v : g_values()) {
        const std::string text = write_g(v);
        const HeapText t(text);
        double back = kUntouched;
        const bool ok = cn2d(t.data(), t.len(), &back) == 0;
        const double want = std::strtod(text.c_str(), nullptr);
        if ((!ok || !same_value(back, want)) && ++failures <= 20) ADD_FAILURE() << text;
    }
    EXPECT_EQ(failures, 0);
}

TEST(NumberWriteG, SmallBuffers) {
    char buf[vlk::kWriteGMax];
    const std::string want = printf_g(-1.79769e308);
    ASSERT_LT(want.size(), sizeof buf);
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, want.size() + 1), -1.79769e308), want.size());
    EXPECT_EQ(std::string(buf), want);
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, want.size()), -1.79769e308), 0u);
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, 4), -kInf), 0u);
    EXPECT_EQ(vlk::write_g(std::span<char>(buf, 5), -kInf), 4u);
    EXPECT_STREQ(buf, "-INF");
    EXPECT_EQ(vlk::write_g(std::span<char>{}, 1.0), 0u);
}

}  // namespace
