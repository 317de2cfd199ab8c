// A fresh directory for one test, removed with everything in it at the end.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vlktest {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const std::filesystem::path &path() const { return path_; }
    // The directory as a prefix for generated file names: ends with '/'.
    std::string prefix() const { return path_.string() + "/"; }
    // Writes `content` byte for byte to `name` in the directory.
    std::string write(std::string_view name, std::string_view content) const;

private:
    std::filesystem::path path_;
};

// Whole content of a file; empty if it can't be read.
std::string read_file(const std::filesystem::path &p);
// Path of a file under tests/data.
std::string data_file(std::string_view name);

}  // namespace vlktest
