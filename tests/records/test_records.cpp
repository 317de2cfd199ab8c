// The frame of every operation, messages, tags, and the life cycle of sets
// of every shape (under the sanitizers: no leak, no double release).
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "capture.hpp"
#include "sets.hpp"

namespace {

using vlktest::count_lines;
using vlktest::Row;
using vlktest::SetBuilder;
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
    // A report comes inside the trace lines of the operation and of Error.
    const std::string out = err_of([] { VLKXSDisable(nullptr, kTrace); });
    EXPECT_TRUE(out.starts_with("<D> vlkxs(Disable).....\n<D> vlkxs(Error).....\n"
                                "<E> vlkxs(Disable): bad address (code 2)\n"))
        << out;
    EXPECT_TRUE(out.ends_with("<D> vlkxs(Error) done\n<D> vlkxs(Disable) done\n")) << out;
    EXPECT_EQ(err_of([] { VLKXSError(nullptr, kTrace); }), "<D> vlkxs(Error).....\n<D> vlkxs(Error) done\n");
    VLKXSFree(&set, 0);
}

// On a set, the success record carries origin and column -1 only; on a null
// set, code 2 is reported as the row says, loud and quiet, and the record
// has the message exactly when reported.
TEST(Frame, SuccessRecordAndReportRule) {
    using Op = SCMDSTATUS (*)(SVLKXS *, int32_t);
    const struct { const char *origin; Op call; int loud, quiet; } ops[] = {
        {"vlkxs(Init)", VLKXSInit, 0, 0},         {"vlkxs(Space)", VLKXSSpace, 1, 0},
        {"vlkxs(Enable)", VLKXSEnable, 1, 1},     {"vlkxs(Disable)", VLKXSDisable, 1, 1},
        {"vlkxs(StrFromIADim)", VLKXSStrFromIADim, 1, 1},
        {"vlkxs(IADimFromFromStr)", [](SVLKXS *s, int32_t m) { return VLKXSIADimFromStr(s, "d", m); }, 1, 1},
        {"vlkxs(StrFromIAType)", VLKXSStrFromIAType, 1, 1}, {"vlkxs(ColFromIAType)", VLKXSColFromIAType, 1, 1},
        {"vlkxs(IATypeFromStr)", [](SVLKXS *s, int32_t m) { return VLKXSIATypeFromStr(s, "i", m); }, 1, 1},
        {"vlkxs(Free)", VLKXSFree, 0, 0},
    };
    SVLKXS set;
    VLKXSInit(&set, 0);
    for (const auto &op : ops) {
        const SCMDSTATUS s = op.call(&set, 0);
        EXPECT_TRUE(s.code == 0 && s.level == 0 && s.col == -1 && s.line == 0) << op.origin;
        EXPECT_STREQ(s.origin, op.origin);
        EXPECT_TRUE(s.msg == nullptr && s.file == nullptr && s.item == nullptr && s.text == nullptr) << op.origin;
        for (const bool quiet : {false, true}) {
            SCMDSTATUS f;
            const std::string out = err_of([&] { f = op.call(nullptr, quiet ? kQuiet : 0); });
            const int reports = quiet ? op.quiet : op.loud;
            EXPECT_TRUE(f.code == 2 && f.level == VLKXS_LEVEL_ERROR && f.col == -1) << op.origin;
            EXPECT_STREQ(f.origin, op.origin);
            EXPECT_EQ(count_lines(out, "<E> " + std::string(op.origin) + ": bad address (code 2)"), reports) << out;
            EXPECT_EQ(count_lines(out, "<E> "), reports) << out;
            EXPECT_EQ(f.msg != nullptr, reports > 0) << op.origin;
        }
    }
    VLKXSFree(&set, 0);
}

TEST(Error, MessageOfEachCodeAndOutsideTheTable) {
    for (int i = 0; i < VLKXS_C_COUNT; ++i) EXPECT_TRUE(cvMsg[i] != nullptr && cvMsg[i][0] != '\0') << i;
    const std::pair<int32_t, const char *> rows[] = {
        {-1, "unknown error"}, {0, "unknown error"}, {1, "run time system error"},
        {4, "bad number of primary energies"}, {8, "bad number of primary energies"}, {24, "bad item list"},
        {35, "bad item list"}, {37, "Rudd model: unsupported target"}, {38, "read: unknown tag"},
        {48, "read: bad # of shells"}, {60, "bad DDCS cumulation"}, {69, "Green-Stolarski model: unsupported target"},
        {70, "unknown error"}, {INT32_MIN, "unknown error"},
    };
    for (const auto &[code, msg] : rows) {
        SCMDSTATUS s{code, VLKXS_LEVEL_ERROR, nullptr, 0, nullptr, 0, nullptr, 0, -1, "test", nullptr};
        int32_t rc = -1;
        EXPECT_EQ(err_of([&] { rc = VLKXSError(&s, 0); }), "<E> test: " + std::string(msg) + " (code " +
                                                                std::to_string(code) + ")\n");
        EXPECT_TRUE(rc == 0 && s.code == code) << code;
        EXPECT_STREQ(s.msg, msg);
    }
}

// The mark follows level; file, line, text and item (by length) follow.
TEST(Error, SeverityMarkAndLocationLines) {
    SCMDSTATUS s{VLKXS_C_R_UNKNOWNTAG, VLKXS_LEVEL_WARNING, "a.xs", 7, "Shell[0]xyz", 8, "!bogus 1 2", 6, -1,
                 "vlkxs(Read)", nullptr};
    EXPECT_EQ(err_of([&] { VLKXSError(&s, 0); }),
              "<W> vlkxs(Read): read: unknown tag (code 38)\n    a.xs:7: !bogus\n    item: Shell[0]\n");
    s.level = 0x123;
    s.file = s.item = nullptr;
    EXPECT_EQ(err_of([&] { VLKXSError(&s, 0); }), "<I> vlkxs(Read): read: unknown tag (code 38)\n");
}

// Numbers to tags and back: a dimension word by its first character; an
// interaction word after blanks, its second letter giving dimmask.  Failures
// change nothing and are reported even when quiet.
TEST(Tags, BothDirections) {
    SVLKXS set;
    VLKXSInit(&set, 0);
    const struct { int32_t ia; const char *tag, *colour; } rows[] = {
        {1, "l", "b"}, {2, "i", "r"}, {3, "x", "g"}, {4, "b", ""}, {5, "a", ""},  {6, "f", ""},
        {7, "c", ""},  {8, "p", ""},  {0, "", ""},   {9, "", ""},  {-1, "", ""}};
    for (const auto &r : rows) {
        set.IA = r.ia;
        EXPECT_TRUE(VLKXSStrFromIAType(&set, 0).code == 0 && VLKXSColFromIAType(&set, 0).code == 0);
        EXPECT_TRUE(std::strcmp(set.IAtag, r.tag) == 0 && std::strcmp(set.coltag, r.colour) == 0) << r.ia;
    }
    for (const auto &[dim, tag] : {std::pair{0, "t"}, {1, "s"}, {2, "d"}, {3, ""}, {7, ""}, {-1, ""}}) {
        set.dim = dim;
        EXPECT_TRUE(VLKXSStrFromIADim(&set, 0).code == 0 && std::strcmp(set.dimtag, tag) == 0) << dim;
    }
    set.IAtag = set.dimtag = set.coltag = nullptr;
    vlktest::Capture err(stderr);
    const struct { const char *word; int32_t code, dim; } dims[] = {
        {"t", 0, 0},  {"s", 0, 1},   {"d", 0, 2}, {"sdcs", 0, 1}, {"total", 0, 0},
        {"S", 21, 2}, {" s", 21, 2}, {"", 21, 2}, {"x", 21, 2}};
    for (const auto &r : dims) {
        set.dim = 2;
        EXPECT_EQ(VLKXSIADimFromStr(&set, r.word, kQuiet).code, r.code) << "'" << r.word << "'";
        EXPECT_EQ(set.dim, r.dim) << "'" << r.word << "'";
    }
    const struct { const char *word; int32_t code, ia; uint32_t dimmask; } types[] = {
        {"i", 0, 2, 0},  {"   i", 0, 2, 0}, {"is", 0, 2, 2}, {"it", 0, 2, 1}, {"id", 0, 2, 4},
        {"ix", 0, 2, 0}, {"l", 0, 1, 0},    {"xs", 0, 3, 2}, {"p", 0, 8, 0},  {"iS", 0, 2, 0},
        {"z", 20, 7, 4}, {"   ", 20, 7, 4}, {"", 20, 7, 4},  {"I", 20, 7, 4}, {"\ti", 20, 7, 4}};
    for (const auto &r : types) {
        set.IA = 7;
        set.dimmask = 4;
        EXPECT_EQ(VLKXSIATypeFromStr(&set, r.word, kQuiet).code, r.code) << "'" << r.word << "'";
        EXPECT_TRUE(set.IA == r.ia && set.dimmask == r.dimmask) << "'" << r.word << "'";
    }
    EXPECT_TRUE(set.IAtag == nullptr && set.dimtag == nullptr && set.coltag == nullptr);
    EXPECT_TRUE(VLKXSIADimFromStr(&set, nullptr, kQuiet).code == 2 && VLKXSIATypeFromStr(&set, nullptr, 0).code == 2);
    const std::string out = err.finish();
    EXPECT_EQ(count_lines(out, "<E> vlkxs(IADimFromFromStr): bad (unsupported) interaction dimension (code 21)"), 4);
    EXPECT_EQ(count_lines(out, "<E> vlkxs(IATypeFromStr): bad (unsupported) interaction type (code 20)"), 5);
    EXPECT_EQ(count_lines(out, "<E> "), 11) << out;
    VLKXSFree(&set, 0);
}

using Rows = std::vector<Row>;

// Two points with 3 and 4 angles; `cum` adds the cumulated tables.
void dd_record(SetBuilder &b, SVLKXSE &e, bool cum) {
    b.ddcs(e, {1, 2}, {Row(3), Row(4)}, {Row(3), Row(4)}, cum ? Rows{Row(3), Row(4)} : Rows{}, Row(2));
    if (cum) e.dvCum1 = b.doubles(Row(2));
}

// Three shells: a full one (its second record without cumulated tables and
// one row), one with a count but no records, one with a half-built record
// (rows, tables and counts missing); owned companions and path.
SVLKXS &ragged(SetBuilder &b) {
    b.add_shell(1, 2);
    b.add_shell(2, 4, false);
    b.add_shell(3, 1);
    dd_record(b, b.rec(0, 0), true);
    dd_record(b, b.rec(0, 1), false);
    std::free(b.rec(0, 1).pdvSig2[1]);
    b.rec(0, 1).pdvSig2[1] = nullptr;
    SVLKXSE &half = b.rec(2, 0);
    half.n1 = 5;
    half.dv1 = b.doubles(Row(5));
    half.pdv2 = b.rows(5);
    half.pdv2[1] = b.doubles(Row(2));
    SVLKXS &set = *b.hand_over();
    set.infile = strdup("abc.xs");
    EXPECT_TRUE(VLKProjFromStr(&set.proj, "p", 0).code == 0 && VLKTargImportMaterial(&set.targ, "H2O", 0).code == 0);
    return set;
}

TEST(Lifecycle, FreeWalksEveryDepthOfARaggedSet) {
    SetBuilder b(2);
    SVLKXS &set = ragged(b);
    set.flag = VLKXS_FLAG_READY | VLKXS_FLAG_ENABLED;
    EXPECT_TRUE(VLKXSFree(&set, 0).code == 0 && set.pShell == nullptr && set.nShell == 0 && set.infile == nullptr);
    EXPECT_TRUE(set.flag == 0 && set.dim == 0 && set.proj.name == nullptr && set.targ.name == nullptr);
    EXPECT_EQ(VLKXSFree(&set, 0).code, 0) << "a second Free releases nothing more";
}

TEST(Lifecycle, FreeReleasesShellArrayWithoutCount) {
    for (const int32_t count : {0, -3}) {
        SetBuilder b(0);
        b.add_shell(1, 0, false);
        b.hand_over()->nShell = count;
        EXPECT_TRUE(VLKXSFree(&b.set, 0).code == 0 && b.set.pShell == nullptr) << count;
    }
}

// A shallow set releases nothing; the source keeps everything.
TEST(Lifecycle, FreeOfShallowSetLeavesTheSourceAlone) {
    SetBuilder b(2);
    SVLKXS &source = ragged(b);
    SVLKXS borrowed = source;
    borrowed.flag = VLKXS_FLAG_SHALLOW | VLKXS_FLAG_ENABLED;
    borrowed.proj.own = borrowed.targ.own = 0;
    EXPECT_TRUE(VLKXSFree(&borrowed, 0).code == 0 && borrowed.flag == 0 && borrowed.pShell == nullptr);
    ASSERT_NE(source.pShell, nullptr);
    EXPECT_EQ(source.pShell[0].pE[0].nv2[1], 4);
    EXPECT_TRUE(!std::strcmp(source.infile, "abc.xs") && !std::strcmp(source.proj.symbol, "p"));
    EXPECT_STREQ(source.targ.name, "H2O");
}

// Space: the record, companions' texts and rows (owned or borrowed), the
// path, shells, records and arrays present, rows by count (none without nv2).
TEST(Lifecycle, SpaceCountsWhatIsThere) {
    SetBuilder empty(0), test(0), b(2);
    VLKXSInit(&empty.set, 0);
    SVLKXS &set = ragged(b);
    for (SVLKXS *s : {&empty.set, &test.set, &set}) EXPECT_EQ(VLKXSSpace(s, 0).code, 0);
    EXPECT_EQ(empty.set.space, sizeof(SVLKXS));
    EXPECT_EQ(test.set.space, sizeof(SVLKXS) + sizeof "electron" + sizeof "e" + sizeof "H2O" + 6 * sizeof(SVLKTARGSH));
    // Doubles: 27 in the full record, 14 in the next, 5 in the half one.
    EXPECT_EQ(set.space, sizeof(SVLKXS) + sizeof "proton" + sizeof "p" + sizeof "H2O" + 6 * sizeof(SVLKTARGSH) +
                             sizeof "abc.xs" + 3 * sizeof(SVLKXSSH) + 3 * sizeof(SVLKXSE) + 46 * sizeof(double) +
                             4 * sizeof(int32_t));
}

// Enable and Disable move the one bit and leave the others.
TEST(Lifecycle, EnableAndDisableMoveOneBit) {
    SetBuilder b(0);
    for (const auto &[before, enable, after] :
         {std::tuple{5u, true, 7u}, {7u, true, 7u}, {~0u, false, ~2u}, {~2u, false, ~2u}, {2u, false, 0u}}) {
        b.set.flag = before;
        EXPECT_TRUE((enable ? VLKXSEnable(&b.set, 0) : VLKXSDisable(&b.set, 0)).code == 0 && b.set.flag == after);
    }
}

}  // namespace
