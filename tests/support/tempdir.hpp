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

namespace fs = std::filesystem;

class TempDir {
public:
    TempDir() {
        static std::atomic<int> serial{0};
        const char *base = std::getenv("VLKXS_TEST_TMP");
        path_ = (base ? fs::path(base) : fs::temp_directory_path() / "vlkxs-tests") /
                ("t" + std::to_string(getpid()) + "-" + std::to_string(serial++));
        fs::remove_all(path_);
        fs::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const fs::path &path() const { return path_; }
    // The directory as a prefix for generated file names: ends with '/'.
    std::string prefix() const { return path_.string() + "/"; }
    // Writes `content` byte for byte to `name` in the directory.
    std::string write(std::string_view name, std::string_view content) const {
        std::ofstream(path_ / name, std::ios::binary).write(content.data(), std::streamsize(content.size()));
        return (path_ / name).string();
    }

private:
    fs::path path_;
};

// Whole content of a file; empty if it can't be read.
inline std::string read_file(const fs::path &p) {
    std::ostringstream ss;
    ss << std::ifstream(p, std::ios::binary).rdbuf();
    return ss.str();
}

// Path of a file under tests/data.
inline std::string data_file(std::string_view name) { return std::string(VLKXS_TEST_DATA) + "/" + std::string(name); }

}  // namespace vlktest
