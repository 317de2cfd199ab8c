// Tags of interaction types and dimensions, both ways.
#include <gtest/gtest.h>

#include <string>

#include "capture.hpp"
#include "vlkxs.h"

namespace {

class TagTest : public ::testing::Test {
protected:
    void SetUp() override { VLKXSInit(&set, 0); }
    void TearDown() override { VLKXSFree(&set, 0); }
    SVLKXS set;
};

TEST_F(TagTest, NumberToTagForEveryRowAndBeyond) {
    struct Row {
        int32_t ia;
        const char *ia_tag;
        const char *colour;
    };
    const Row rows[] = {{1, "l", "b"}, {2, "i", "r"}, {3, "x", "g"}, {4, "b", ""}, {5, "a", ""}, {6, "f", ""},
                        {7, "c", ""},  {8, "p", ""},  {0, "", ""},   {9, "", ""},  {-1, "", ""}};
    for (const Row &r : rows) {
        SCOPED_TRACE(r.ia);
        set.IA = r.ia;
        EXPECT_EQ(VLKXSStrFromIAType(&set, 0).code, 0);
        EXPECT_EQ(VLKXSColFromIAType(&set, 0).code, 0);
        EXPECT_STREQ(set.IAtag, r.ia_tag);
        EXPECT_STREQ(set.coltag, r.colour);
    }
    const std::pair<int32_t, const char *> dims[] = {{0, "t"}, {1, "s"}, {2, "d"}, {3, ""}, {7, ""}, {-1, ""}};
    for (const auto &[dim, tag] : dims) {
        set.dim = dim;
        EXPECT_EQ(VLKXSStrFromIADim(&set, 0).code, 0);
        EXPECT_STREQ(set.dimtag, tag) << dim;
    }
}

TEST_F(TagTest, DimensionWordTakesOnlyItsFirstCharacter) {
    struct Row {
        const char *word;
        int32_t code;
        int32_t dim;  // dim afterwards; it starts at 2
    };
    const Row rows[] = {{"t", 0, 0}, {"s", 0, 1}, {"d", 0, 2}, {"sdcs", 0, 1}, {"total", 0, 0},
                        {"S", 21, 2}, {" s", 21, 2}, {"", 21, 2}, {"x", 21, 2}};
    for (const Row &r : rows) {
        SCOPED_TRACE(std::string("'") + r.word + "'");
        set.dim = 2;
        vlktest::Capture err(stderr);
        const SCMDSTATUS s = VLKXSIADimFromStr(&set, r.word, VLKXS_MODE_QUIET);
        const std::string out = err.finish();
        EXPECT_EQ(s.code, r.code);
        EXPECT_EQ(set.dim, r.dim);
        // A failure is reported even with the quiet bit.
        EXPECT_EQ(vlktest::count_lines(out, "<E> vlkxs(IADimFromFromStr): bad (unsupported) interaction dimension"),
                  r.code == 0 ? 0 : 1);
    }
}

TEST_F(TagTest, InteractionWordSetsTypeAndDimmask) {
    struct Row {
        const char *word;
        int32_t code;
        int32_t ia;        // it starts at 7
        uint32_t dimmask;  // it starts at 4
    };
    const Row rows[] = {
        {"i", 0, 2, 0},    {"   i", 0, 2, 0}, {"is", 0, 2, 2},   {"it", 0, 2, 1},  {"id", 0, 2, 4},
        {"ix", 0, 2, 0},   {"l", 0, 1, 0},    {"xs", 0, 3, 2},   {"p", 0, 8, 0},   {"iS", 0, 2, 0},
        {"z", 20, 7, 4},   {"   ", 20, 7, 4}, {"", 20, 7, 4},    {"I", 20, 7, 4},  {"\ti", 20, 7, 4},
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(std::string("'") + r.word + "'");
        set.IA = 7;
        set.dimmask = 4;
        vlktest::Capture err(stderr);
        const SCMDSTATUS s = VLKXSIATypeFromStr(&set, r.word, VLKXS_MODE_QUIET);
        const std::string out = err.finish();
        EXPECT_EQ(s.code, r.code);
        EXPECT_EQ(set.IA, r.ia);
        EXPECT_EQ(set.dimmask, r.dimmask);
        EXPECT_EQ(vlktest::count_lines(out, "<E> "), r.code == 0 ? 0 : 1);
    }
}

TEST_F(TagTest, LastWordDecidesDimmask) {
    ASSERT_EQ(VLKXSIATypeFromStr(&set, "is", 0).code, 0);
    EXPECT_EQ(set.dimmask, 2u);
    ASSERT_EQ(VLKXSIATypeFromStr(&set, "i", 0).code, 0);
    EXPECT_EQ(set.dimmask, 0u);
}

TEST_F(TagTest, ConversionsFromTextLeaveTagFieldsNull) {
    VLKXSIATypeFromStr(&set, "it", 0);
    VLKXSIADimFromStr(&set, "t", 0);
    EXPECT_EQ(set.IAtag, nullptr);
    EXPECT_EQ(set.dimtag, nullptr);
    EXPECT_EQ(set.coltag, nullptr);
}

}  // namespace
