// Every input of the fuzz corpus, crash cases included, through the entry
// functions of the fuzz targets, so that a build without clang runs them too.
// An input that breaks a property aborts the program.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "entries.h"

namespace {

int replay(const char *dir, int (*entry)(const uint8_t *, size_t)) {
    int n = 0;
    for (const auto &file : std::filesystem::directory_iterator(std::string(VLKXS_TEST_DATA "/fuzz/") + dir)) {
        SCOPED_TRACE(file.path().string());
        std::ifstream in(file.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
        EXPECT_EQ(entry(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size()), 0);
        ++n;
    }
    return n;
}

}  // namespace

TEST(FuzzReplay, ReadCorpus) { EXPECT_GT(replay("read", vlkxs_fuzz_read), 10); }
TEST(FuzzReplay, LimitsCorpus) { EXPECT_GT(replay("limits", vlkxs_fuzz_limits), 10); }
TEST(FuzzReplay, TagsCorpus) { EXPECT_GT(replay("tags", vlkxs_fuzz_tags), 10); }
