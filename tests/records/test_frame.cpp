// The frame that every operation shares: trace lines, the start status, the
// success record, and who reports what.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "capture.hpp"
#include "vlkxs.h"

namespace {

using vlktest::Capture;
using vlktest::count_lines;

constexpr int32_t kTrace = VLKXS_MODE_TRACE;
constexpr int32_t kQuiet = VLKXS_MODE_QUIET;

TEST(Frame, TraceLinesFramePlainOperation) {
    SVLKXS set;
    VLKXSInit(&set, 0);
    Capture err(stderr);
    VLKXSEnable(&set, kTrace);
    EXPECT_EQ(err.finish(), "<D> vlkxs(Enable).....\n<D> vlkxs(Enable) done\n");
    VLKXSFree(&set, 0);
}

TEST(Frame, TraceLinesNestAndFrameTheReport) {
    Capture err(stderr);
    VLKXSDisable(nullptr, kTrace);
    const std::string out = err.finish();
    const std::string expected_start =
        "<D> vlkxs(Disable).....\n<D> vlkxs(Error).....\n<E> vlkxs(Disable): bad address (code 2)\n";
    EXPECT_EQ(out.substr(0, expected_start.size()), expected_start);
    EXPECT_NE(out.find("<D> vlkxs(Error) done\n<D> vlkxs(Disable) done\n"), std::string::npos) << out;
}

TEST(Frame, NoTraceWithoutTheBit) {
    SVLKXS set;
    Capture err(stderr);
    VLKXSInit(&set, 0);
    VLKXSSpace(&set, 0);
    VLKXSFree(&set, kQuiet);
    EXPECT_EQ(err.finish(), "");
}

struct SuccessCase {
    const char *origin;
    std::function<SCMDSTATUS(SVLKXS *)> call;
};

TEST(Frame, SuccessRecordIsNotAllZero) {
    const SuccessCase cases[] = {
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
    for (const SuccessCase &c : cases) {
        SCOPED_TRACE(c.origin);
        const SCMDSTATUS s = c.call(&set);
        EXPECT_EQ(s.code, 0);
        EXPECT_EQ(s.level, 0u);
        EXPECT_EQ(s.col, -1);
        ASSERT_NE(s.origin, nullptr);
        EXPECT_STREQ(s.origin, c.origin);
        EXPECT_EQ(s.msg, nullptr);
        EXPECT_EQ(s.file, nullptr);
        EXPECT_EQ(s.item, nullptr);
        EXPECT_EQ(s.text, nullptr);
        EXPECT_EQ(s.line, 0);
    }
    VLKXSFree(&set, 0);
}

struct ReportCase {
    const char *name;
    std::function<SCMDSTATUS(int32_t)> call;  // fails: null set or bad word
    int reports_loud;
    int reports_quiet;
};

TEST(Frame, ReportRuleOfEachOperation) {
    SVLKXS set;
    VLKXSInit(&set, 0);
    SVLKXS *s = &set;
    const ReportCase cases[] = {
        {"Init", [](int32_t m) { return VLKXSInit(nullptr, m); }, 0, 0},
        {"Free", [](int32_t m) { return VLKXSFree(nullptr, m); }, 0, 0},
        {"Space", [](int32_t m) { return VLKXSSpace(nullptr, m); }, 1, 0},
        {"Enable", [](int32_t m) { return VLKXSEnable(nullptr, m); }, 1, 1},
        {"Disable", [](int32_t m) { return VLKXSDisable(nullptr, m); }, 1, 1},
        {"StrFromIADim", [](int32_t m) { return VLKXSStrFromIADim(nullptr, m); }, 1, 1},
        {"StrFromIAType", [](int32_t m) { return VLKXSStrFromIAType(nullptr, m); }, 1, 1},
        {"ColFromIAType", [](int32_t m) { return VLKXSColFromIAType(nullptr, m); }, 1, 1},
        {"IADimFromStr null", [](int32_t m) { return VLKXSIADimFromStr(nullptr, "t", m); }, 1, 1},
        {"IADimFromStr word", [s](int32_t m) { return VLKXSIADimFromStr(s, "S", m); }, 1, 1},
        {"IATypeFromStr null word", [s](int32_t m) { return VLKXSIATypeFromStr(s, nullptr, m); }, 1, 1},
        {"IATypeFromStr word", [s](int32_t m) { return VLKXSIATypeFromStr(s, "z", m); }, 1, 1},
    };
    for (const ReportCase &c : cases) {
        for (const bool q : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (q ? " quiet" : " loud"));
            Capture err(stderr);
            const SCMDSTATUS st = c.call(q ? kQuiet : 0);
            const std::string out = err.finish();
            EXPECT_EQ(st.level, VLKXS_LEVEL_ERROR);
            EXPECT_EQ(count_lines(out, "<E> "), q ? c.reports_quiet : c.reports_loud) << out;
            // The returned record carries the text only if it was reported.
            EXPECT_EQ(st.msg != nullptr, (q ? c.reports_quiet : c.reports_loud) > 0);
        }
    }
    VLKXSFree(&set, 0);
}

TEST(Frame, NullSetGivesBadAddressStartStatus) {
    const SCMDSTATUS s = VLKXSSpace(nullptr, kQuiet);
    EXPECT_EQ(s.code, VLKXS_C_BADADDR);
    EXPECT_EQ(s.level, VLKXS_LEVEL_ERROR);
    EXPECT_EQ(s.col, -1);
    EXPECT_STREQ(s.origin, "vlkxs(Space)");
    EXPECT_EQ(s.msg, nullptr);
}

TEST(Error, MessageRowsAndRange) {
    struct Row {
        int32_t code;
        const char *msg;
    };
    const Row rows[] = {
        {-1, "unknown error"},
        {0, "unknown error"},
        {1, "run time system error"},
        {4, "bad number of primary energies"},
        {8, "bad number of primary energies"},
        {24, "bad item list"},
        {35, "bad item list"},
        {38, "read: unknown tag"},
        {48, "read: bad # of shells"},
        {69, "Green-Stolarski model: unsupported target"},
        {70, "unknown error"},
        {INT32_MIN, "unknown error"},
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(r.code);
        SCMDSTATUS s{};
        s.code = r.code;
        s.level = VLKXS_LEVEL_ERROR;
        s.origin = "test";
        Capture err(stderr);
        EXPECT_EQ(VLKXSError(&s, 0), 0);
        const std::string out = err.finish();
        EXPECT_STREQ(s.msg, r.msg);
        EXPECT_EQ(s.code, r.code) << "the code itself is not changed";
        EXPECT_EQ(out, "<E> test: " + std::string(r.msg) + " (code " + std::to_string(r.code) + ")\n");
    }
}

TEST(Error, TableHasSeventyDistinctRows) {
    for (int i = 0; i < VLKXS_C_COUNT; ++i) {
        ASSERT_NE(cvMsg[i], nullptr) << i;
        EXPECT_GT(std::strlen(cvMsg[i]), 0u) << i;
    }
    EXPECT_STREQ(cvMsg[VLKXS_C_RUDDTARG], "Rudd model: unsupported target");
    EXPECT_STREQ(cvMsg[VLKXS_C_DDCS_CUM], "bad DDCS cumulation");
}

TEST(Error, NullRecordWritesOnlyTheTraceLines) {
    Capture err(stderr);
    EXPECT_EQ(VLKXSError(nullptr, kTrace), 0);
    EXPECT_EQ(err.finish(), "<D> vlkxs(Error).....\n<D> vlkxs(Error) done\n");
}

TEST(Error, SeverityMarkAndLocationLines) {
    SCMDSTATUS s{};
    s.code = VLKXS_C_R_UNKNOWNTAG;
    s.level = VLKXS_LEVEL_WARNING;
    s.origin = "vlkxs(Read)";
    s.file = "a.xs";
    s.line = 7;
    const char line[] = "!bogus 1 2 and more";
    s.text = line;
    s.textlen = 6;
    s.item = "Shell[0]xyz";
    s.itemlen = 8;
    Capture err(stderr);
    VLKXSError(&s, 0);
    EXPECT_EQ(err.finish(),
              "<W> vlkxs(Read): read: unknown tag (code 38)\n"
              "    a.xs:7: !bogus\n"
              "    item: Shell[0]\n");

    s.level = 0x123;  // low bits only: neither error nor warning
    s.file = nullptr;
    s.item = nullptr;
    Capture err2(stderr);
    VLKXSError(&s, 0);
    EXPECT_EQ(err2.finish(), "<I> vlkxs(Read): read: unknown tag (code 38)\n");
}

}  // namespace
