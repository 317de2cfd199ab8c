// The frame that every operation shares (trace lines, the status record, who
// reports what), the message table, and the tags of interaction types and
// dimensions in both directions.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "capture.hpp"
#include "vlkxs.h"

namespace {

using vlktest::count_lines;
constexpr int32_t kTrace = VLKXS_MODE_TRACE;
constexpr int32_t kQuiet = VLKXS_MODE_QUIET;

// What `f` writes to stderr.
std::string err_of(const std::function<void()> &f) {
    vlktest::Capture err(stderr);
    f();
    return err.finish();
}

TEST(Frame, TraceLines) {
    SVLKXS set;
    EXPECT_EQ(err_of([&] { VLKXSInit(&set, 0); }), "") << "nothing without the bit";
    EXPECT_EQ(err_of([&] { VLKXSEnable(&set, kTrace); }), "<D> vlkxs(Enable).....\n<D> vlkxs(Enable) done\n");
    // The report of a failure comes inside the operation's trace lines,
    // framed by those of VLKXSError.
    const std::string out = err_of([] { VLKXSDisable(nullptr, kTrace); });
    EXPECT_TRUE(out.starts_with("<D> vlkxs(Disable).....\n<D> vlkxs(Error).....\n"
                                "<E> vlkxs(Disable): bad address (code 2)\n"))
        << out;
    EXPECT_TRUE(out.ends_with("<D> vlkxs(Error) done\n<D> vlkxs(Disable) done\n")) << out;
    // A null record prints only the trace lines.
    EXPECT_EQ(err_of([] { VLKXSError(nullptr, kTrace); }), "<D> vlkxs(Error).....\n<D> vlkxs(Error) done\n");
    VLKXSFree(&set, 0);
}

TEST(Frame, SuccessRecordCarriesOriginAndColumn) {
    const std::pair<const char *, std::function<SCMDSTATUS(SVLKXS *)>> cases[] = {
        {"vlkxs(Init)", [](SVLKXS *s) { return VLKXSInit(s, 0); }},
        {"vlkxs(Space)", [](SVLKXS *s) { return VLKXSSpace(s, 0); }},
        {"vlkxs(Enable)", [](SVLKXS *s) { return VLKXSEnable(s, 0); }},
        {"vlkxs(Disable)", [](SVLKXS *s) { return VLKXSDisable(s, 0); }},
        {"vlkxs(StrFromIADim)", [](SVLKXS *s) { return VLKXSStrFromIADim(s, 0); }},
        {"vlkxs(IADimFromFromStr)", [](SVLKXS *s) { return VLKXSIADimFromStr(s, "d", 0); }},
        {"vlkxs(StrFromIAType)", [](SVLKXS *s) { return VLKXSStrFromIAType(s, 0); }},
        {"vlkxs(ColFromIAType)", [](SVLKXS *s) { return VLKXSColFromIAType(s, 0); }},
        {"vlkxs(IATypeFromStr)", [](SVLKXS *s) { return VLKXSIATypeFromStr(s, "i", 0); }},
        {"vlkxs(Free)", [](SVLKXS *s) { return VLKXSFree(s, 0); }},
    };
    SVLKXS set;
    VLKXSInit(&set, 0);
    for (const auto &[origin, call] : cases) {
        const SCMDSTATUS s = call(&set);
        EXPECT_TRUE(s.code == 0 && s.level == 0 && s.col == -1) << origin;
        EXPECT_STREQ(s.origin, origin);
        EXPECT_TRUE(s.msg == nullptr && s.file == nullptr && s.item == nullptr && s.text == nullptr && s.line == 0)
            << origin;
    }
    VLKXSFree(&set, 0);
}

// Each operation's failure with its code, and how many reports it writes
// without and with the quiet bit; the record carries the message text
// exactly when it was reported.
TEST(Frame, FailureCodeAndReportRule) {
    SVLKXS set;
    VLKXSInit(&set, 0);
    SVLKXS *s = &set;
    const struct {
        const char *origin;
        std::function<SCMDSTATUS(int32_t)> call;
        int32_t code;
        int loud, quiet;
    } cases[] = {
        {"vlkxs(Init)", [](int32_t m) { return VLKXSInit(nullptr, m); }, 2, 0, 0},
        {"vlkxs(Free)", [](int32_t m) { return VLKXSFree(nullptr, m); }, 2, 0, 0},
        {"vlkxs(Space)", [](int32_t m) { return VLKXSSpace(nullptr, m); }, 2, 1, 0},
        {"vlkxs(Enable)", [](int32_t m) { return VLKXSEnable(nullptr, m); }, 2, 1, 1},
        {"vlkxs(Disable)", [](int32_t m) { return VLKXSDisable(nullptr, m); }, 2, 1, 1},
        {"vlkxs(StrFromIADim)", [](int32_t m) { return VLKXSStrFromIADim(nullptr, m); }, 2, 1, 1},
        {"vlkxs(StrFromIAType)", [](int32_t m) { return VLKXSStrFromIAType(nullptr, m); }, 2, 1, 1},
        {"vlkxs(ColFromIAType)", [](int32_t m) { return VLKXSColFromIAType(nullptr, m); }, 2, 1, 1},
        {"vlkxs(IADimFromFromStr)", [](int32_t m) { return VLKXSIADimFromStr(nullptr, "t", m); }, 2, 1, 1},
        {"vlkxs(IADimFromFromStr)", [s](int32_t m) { return VLKXSIADimFromStr(s, "S", m); }, 21, 1, 1},
        {"vlkxs(IATypeFromStr)", [s](int32_t m) { return VLKXSIATypeFromStr(s, nullptr, m); }, 2, 1, 1},
        {"vlkxs(IATypeFromStr)", [s](int32_t m) { return VLKXSIATypeFromStr(s, "z", m); }, 20, 1, 1},
    };
    for (const auto &c : cases) {
        for (const bool quiet : {false, true}) {
            SCOPED_TRACE(std::string(c.origin) + " code " + std::to_string(c.code) + (quiet ? " quiet" : " loud"));
            SCMDSTATUS st;
            const std::string out = err_of([&] { st = c.call(quiet ? kQuiet : 0); });
            EXPECT_EQ(st.code, c.code);
            EXPECT_EQ(st.level, VLKXS_LEVEL_ERROR);
            EXPECT_EQ(st.col, -1);
            EXPECT_STREQ(st.origin, c.origin);
            const int reports = quiet ? c.quiet : c.loud;
            EXPECT_EQ(count_lines(out, "<E> " + std::string(c.origin) + ": "), reports) << out;
            EXPECT_EQ(count_lines(out, "<E> "), reports) << out;
            EXPECT_EQ(st.msg != nullptr, reports > 0);
        }
    }
    VLKXSFree(&set, 0);
}

TEST(Error, MessageOfEachCodeAndOutsideTheTable) {
    for (int i = 0; i < VLKXS_C_COUNT; ++i) EXPECT_TRUE(cvMsg[i] != nullptr && cvMsg[i][0] != '\0') << i;
    const std::pair<int32_t, const char *> rows[] = {
        {-1, "unknown error"},
        {0, "unknown error"},
        {1, "run time system error"},
        {4, "bad number of primary energies"},
        {8, "bad number of primary energies"},
        {24, "bad item list"},
        {35, "bad item list"},
        {37, "Rudd model: unsupported target"},
        {38, "read: unknown tag"},
        {48, "read: bad # of shells"},
        {60, "bad DDCS cumulation"},
        {69, "Green-Stolarski model: unsupported target"},
        {70, "unknown error"},
        {INT32_MIN, "unknown error"},
    };
    for (const auto &[code, msg] : rows) {
        SCMDSTATUS s{};
        s.code = code;
        s.level = VLKXS_LEVEL_ERROR;
        s.origin = "test";
        int32_t rc = -1;
        EXPECT_EQ(err_of([&] { rc = VLKXSError(&s, 0); }),
                  "<E> test: " + std::string(msg) + " (code " + std::to_string(code) + ")\n");
        EXPECT_EQ(rc, 0);
        EXPECT_STREQ(s.msg, msg);
        EXPECT_EQ(s.code, code) << "the code itself is not changed";
    }
}

TEST(Error, SeverityMarkAndLocationLines) {
    SCMDSTATUS s{};
    s.code = VLKXS_C_R_UNKNOWNTAG;
    s.level = VLKXS_LEVEL_WARNING;
    s.origin = "vlkxs(Read)";
    s.file = "a.xs";
    s.line = 7;
    s.text = "!bogus 1 2 and more";
    s.textlen = 6;
    s.item = "Shell[0]xyz";
    s.itemlen = 8;
    EXPECT_EQ(err_of([&] { VLKXSError(&s, 0); }),
              "<W> vlkxs(Read): read: unknown tag (code 38)\n    a.xs:7: !bogus\n    item: Shell[0]\n");
    s.level = 0x123;  // low bits only: neither error nor warning
    s.file = nullptr;
    s.item = nullptr;
    EXPECT_EQ(err_of([&] { VLKXSError(&s, 0); }), "<I> vlkxs(Read): read: unknown tag (code 38)\n");
}

class Tags : public ::testing::Test {
protected:
    void SetUp() override { VLKXSInit(&set, 0); }
    void TearDown() override { VLKXSFree(&set, 0); }
    SVLKXS set;
    vlktest::Capture reports{stderr};  // failures of the word conversions are always reported
};

TEST_F(Tags, NumberToTagForEveryRowAndBeyond) {
    const struct {
        int32_t ia;
        const char *tag, *colour;
    } rows[] = {{1, "l", "b"}, {2, "i", "r"}, {3, "x", "g"}, {4, "b", ""}, {5, "a", ""}, {6, "f", ""},
                {7, "c", ""},  {8, "p", ""},  {0, "", ""},   {9, "", ""},  {-1, "", ""}};
    for (const auto &r : rows) {
        set.IA = r.ia;
        EXPECT_EQ(VLKXSStrFromIAType(&set, 0).code, 0);
        EXPECT_EQ(VLKXSColFromIAType(&set, 0).code, 0);
        EXPECT_STREQ(set.IAtag, r.tag) << r.ia;
        EXPECT_STREQ(set.coltag, r.colour) << r.ia;
    }
    const std::pair<int32_t, const char *> dims[] = {{0, "t"}, {1, "s"}, {2, "d"}, {3, ""}, {7, ""}, {-1, ""}};
    for (const auto &[dim, tag] : dims) {
        set.dim = dim;
        EXPECT_EQ(VLKXSStrFromIADim(&set, 0).code, 0);
        EXPECT_STREQ(set.dimtag, tag) << dim;
    }
}

// Only the first character of a dimension word counts, in exact case and
// with no blank skipped.  A failure changes nothing.  The text conversions
// leave the tag fields alone.
TEST_F(Tags, DimensionWord) {
    const struct {
        const char *word;
        int32_t code, dim;  // dim afterwards; it starts at 2
    } rows[] = {{"t", 0, 0},   {"s", 0, 1},  {"d", 0, 2}, {"sdcs", 0, 1}, {"total", 0, 0},
                {"S", 21, 2}, {" s", 21, 2}, {"", 21, 2}, {"x", 21, 2}};
    for (const auto &r : rows) {
        set.dim = 2;
        EXPECT_EQ(VLKXSIADimFromStr(&set, r.word, kQuiet).code, r.code) << "'" << r.word << "'";
        EXPECT_EQ(set.dim, r.dim) << "'" << r.word << "'";
    }
    EXPECT_EQ(set.dimtag, nullptr);
}

// Leading blanks are skipped; the first letter gives IA, the second the
// bit of dimmask (none for any other letter).
TEST_F(Tags, InteractionWord) {
    const struct {
        const char *word;
        int32_t code, ia;  // it starts at 7
        uint32_t dimmask;  // it starts at 4
    } rows[] = {
        {"i", 0, 2, 0},  {"   i", 0, 2, 0}, {"is", 0, 2, 2}, {"it", 0, 2, 1}, {"id", 0, 2, 4},
        {"ix", 0, 2, 0}, {"l", 0, 1, 0},    {"xs", 0, 3, 2}, {"p", 0, 8, 0},  {"iS", 0, 2, 0},
        {"z", 20, 7, 4}, {"   ", 20, 7, 4}, {"", 20, 7, 4},  {"I", 20, 7, 4}, {"\ti", 20, 7, 4},
    };
    for (const auto &r : rows) {
        set.IA = 7;
        set.dimmask = 4;
        EXPECT_EQ(VLKXSIATypeFromStr(&set, r.word, kQuiet).code, r.code) << "'" << r.word << "'";
        EXPECT_EQ(set.IA, r.ia) << "'" << r.word << "'";
        EXPECT_EQ(set.dimmask, r.dimmask) << "'" << r.word << "'";
    }
    EXPECT_TRUE(set.IAtag == nullptr && set.coltag == nullptr);
}

}  // namespace
