#include "tempdir.hpp"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vlktest {

namespace fs = std::filesystem;

TempDir::TempDir() {
    static std::atomic<int> serial{0};
    const char *base = std::getenv("VLKXS_TEST_TMP");
    const fs::path root = base != nullptr ? fs::path(base) : fs::temp_directory_path() / "vlkxs-tests";
    path_ = root / ("t" + std::to_string(getpid()) + "-" + std::to_string(serial++));
    fs::remove_all(path_);
    fs::create_directories(path_);
}

TempDir::~TempDir() {
    std::error_code ec;
    fs::remove_all(path_, ec);
}

std::string TempDir::write(std::string_view name, std::string_view content) const {
    const fs::path p = path_ / name;
    std::ofstream(p, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    return p.string();
}

std::string read_file(const fs::path &p) {
    std::ostringstream ss;
    ss << std::ifstream(p, std::ios::binary).rdbuf();
    return ss.str();
}

std::string data_file(std::string_view name) { return std::string(VLKXS_TEST_DATA) + "/" + std::string(name); }

}  // namespace vlktest
