// Line classification, tag lookup and the table of states of the xs format.
#include <gtest/gtest.h>

#include <string_view>

#include "files/format.hpp"

namespace {

using namespace vlk::xs;

TEST(Format, LinesAreToldApartByTheirFirstCharacter) {
    const std::pair<std::string_view, LineKind> rows[] = {
        {"", LineKind::Empty},         {"    ", LineKind::Empty},     {std::string_view("\0x", 2), LineKind::Empty},
        {"  !shell 1", LineKind::Tag}, {"# note", LineKind::Comment}, {"  #<E>", LineKind::Comment},
        {"1 2", LineKind::Data},       {"\t!shell", LineKind::Data},  {"\t#", LineKind::Data},
        {"\t\t", LineKind::Data},      {"abc", LineKind::Data},
    };
    for (const auto &[line, kind] : rows) EXPECT_EQ(classify(trim_blanks(line)), kind) << "'" << line << "'";
}

// The argument follows the tag with the blanks dropped, whatever letters
// stand between.
TEST(Format, TagsMatchByCaseBlindPrefix) {
    const struct {
        std::string_view line;
        int32_t tag;
        std::string_view argument;
    } rows[] = {
        {"!filetype    xs i,t", 0, "xs i,t"},    {"!filetypes xs i,t", 0, "s xs i,t"}, {"!filedate", 2, ""},
        {"!FILEVERSION 20080825", 1, "20080825"}, {"!Target  liquid water", 3, "liquid water"},
        {"!projectile e", 4, "e"},               {"!SHELL 2", 5, "2"},    {"!Shell2", 5, "2"},
        {"!eproj 100 12", 6, "100 12"},          {"!esecond 5", 7, "ond 5"}, {"!file", kUnknownTag, ""},
        {"!", kUnknownTag, ""},                  {"!comment", kUnknownTag, ""}, {"!shel", kUnknownTag, ""},
    };
    for (const auto &r : rows) {
        EXPECT_EQ(match_tag(r.line), r.tag) << r.line;
        if (r.tag != kUnknownTag) {
            EXPECT_EQ(tag_argument(r.line, r.tag), r.argument) << r.line;
        }
    }
}

// Runs a sequence of line kinds through the table from state 0; the state
// after the last one, or -1 as soon as one can't stand.
int walk(int dim, std::initializer_list<int> kinds) {
    int state = 0;
    for (int k : kinds) {
        state = bvStateTable[dim][k][state];
        if (state < 0) return -1;
    }
    return state;
}

TEST(Format, StateTableAcceptsTheLayoutsAndRefusesMisplacedLines) {
    enum { FT, FV, FD, TG, PJ, SH, EP, ES, UK, DA };
    // Header with optional dates, in every dimension.
    for (int dim = 0; dim < 3; ++dim) {
        EXPECT_EQ(walk(dim, {FT, FV, TG, PJ}), 5);
        EXPECT_EQ(walk(dim, {FT, FV, FD, FD, TG, FD, TG, PJ}), 5);
        EXPECT_EQ(walk(dim, {FT, FV, TG, TG}), -1) << "no target right after a target";
        EXPECT_EQ(walk(dim, {FT, FV, TG, FD, PJ}), -1) << "projectile right after the target";
        EXPECT_EQ(walk(dim, {FT, FV, TG, PJ, FD}), -1) << "no header tag after the projectile";
        EXPECT_EQ(walk(dim, {FT, FT}), -1);
        EXPECT_EQ(walk(dim, {FV}), -1);
        EXPECT_EQ(walk(dim, {DA}), -1);
        EXPECT_EQ(walk(dim, {FT, FV, TG, PJ, SH, SH}), 6) << "an empty shell section";
    }
    EXPECT_EQ(walk(0, {FT, FV, TG, PJ, SH, DA, DA, SH, DA}), 10);
    EXPECT_EQ(walk(0, {FT, FV, TG, PJ, SH, EP}), -1);
    EXPECT_EQ(walk(1, {FT, FV, TG, PJ, SH, EP, DA, EP, EP, SH, EP, DA}), 10);
    EXPECT_EQ(walk(1, {FT, FV, TG, PJ, SH, DA}), -1);
    EXPECT_EQ(walk(1, {FT, FV, TG, PJ, SH, EP, ES}), -1);
    EXPECT_EQ(walk(2, {FT, FV, TG, PJ, SH, EP, ES, DA, ES, ES, DA, EP, EP, SH, EP, ES}), 8);
    EXPECT_EQ(walk(2, {FT, FV, TG, PJ, SH, EP, ES, SH}), -1) << "the last !esec of an energy needs data";
    EXPECT_EQ(walk(2, {FT, FV, TG, PJ, SH, EP, ES, EP}), -1);
    EXPECT_EQ(walk(2, {FT, FV, TG, PJ, SH, EP, DA}), -1);
    // An unknown tag is never looked up by the reader, but its row leads to
    // state 9 everywhere past the version line.
    for (int dim = 0; dim < 3; ++dim)
        for (int s = 2; s < kStates; ++s) EXPECT_EQ(bvStateTable[dim][UK][s], 9);
}

}  // namespace
