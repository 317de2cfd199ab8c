// A fresh directory for one test, removed with everything in it at the end;
// files of tests/data.
#pragma once

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

namespace vlktest {

class TempDir {
public:
    TempDir() {
        static std::atomic<int> serial{0};
        const char *base = std::getenv("VLKXS_TEST_TMP");
        // Appended piece by piece: "t" + std::string trips a false -Wrestrict
        // of GCC 12 at -O3.
        std::string name = "t";
        name += std::to_string(getpid());
        name += '-';
        name += std::to_string(serial++);
        path_ = (base ? std::filesystem::path(base) : std::filesystem::temp_directory_path() / "vlkxs-tests") / name;
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const std::filesystem::path &path() const { return path_; }
    // The directory as a prefix for generated file names: ends with '/'.
    std::string prefix() const { return path_.string() + "/"; }
    // Writes `content` byte for byte to `name` in the directory.
    std::string write(std::string_view name, std::string_view content) const {
        std::ofstream(path_ / name, std::ios::binary).write(content.data(), std::streamsize(content.size()));
        return (path_ / name).string();
    }

private:
    std::filesystem::path path_;
};

// Whole content of a file; empty if it can't be read.
inline std::string read_file(const std::filesystem::path &p) {
    std::ostringstream ss;
    ss << std::ifstream(p, std::ios::binary).rdbuf();
    return ss.str();
}

// Path of a file under tests/data.
inline std::string data_file(std::string_view name) { return std::string(VLKXS_TEST_DATA) + "/" + std::string(name); }

}  // namespace vlktest
