#include "safe_write.hpp"

#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "report.hpp"
#include "vlkxs.h"

namespace vlkcli {

namespace {

// What a signal handler removes: the temporary files of the write under way
// and their directory, kept in fixed buffers, since a handler may neither
// allocate nor list a directory.
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};
constexpr std::size_t kSignalCount = std::size(kSignals);
constexpr int kMaxTemps = 8;
char g_temp_dir[PATH_MAX];
char g_temps[kMaxTemps][PATH_MAX];
volatile sig_atomic_t g_ntemps = 0;

bool remember(char (&slot)[PATH_MAX], const std::string &path) {
    if (path.size() >= PATH_MAX) return false;
    std::memcpy(slot, path.c_str(), path.size() + 1);
    return true;
}

extern "C" void remove_temps_and_die(int sig) {
    for (sig_atomic_t i = 0; i < g_ntemps; ++i) unlink(g_temps[i]);
    if (g_temp_dir[0] != '\0') rmdir(g_temp_dir);
    // The default action, so that the caller sees the signal as the cause.
    signal(sig, SIG_DFL);
    raise(sig);
}

std::string errno_text() { return std::strerror(errno); }

// Flushes a file or a directory to the disk, so that a rename never puts in
// place a name whose content is still in flight.
void sync_path(const std::string &path, int flags) {
    const int fd = open(path.c_str(), O_RDONLY | flags);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

// The last `n` bytes of a file (fewer for a shorter one).
std::string tail_of(const std::string &path, long n) {
    std::string tail;
    if (std::FILE *f = std::fopen(path.c_str(), "rb")) {
        if (std::fseek(f, -n, SEEK_END) != 0) std::rewind(f);
        char buf[64];
        for (std::size_t got; (got = std::fread(buf, 1, sizeof buf, f)) > 0;) tail.append(buf, got);
        std::fclose(f);
    }
    return tail;
}

std::string directory_of(const std::string &prefix) {
    const std::size_t slash = prefix.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : prefix.substr(0, slash);
}

}  // namespace

static_assert(kSignalCount == SafeWrite::kSignalsHandled, "one saved action per signal");

SafeWrite::SafeWrite(std::string target_prefix) : target_prefix_(std::move(target_prefix)) {
    const std::string dir = directory_of(target_prefix_);
    // An output directory that doesn't exist yet is made, as a user of
    // "-o out/" expects; one that can't be made shows in mkdtemp's error.
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    std::string templ = dir + "/.vlkxs-XXXXXX";
    if (mkdtemp(templ.data()) == nullptr) {
        error_ = "can't write in " + dir + ": " + errno_text();
        return;
    }
    temp_dir_ = templ;
    const std::size_t slash = target_prefix_.rfind('/');
    temp_prefix_ = temp_dir_ + "/" + target_prefix_.substr(slash == std::string::npos ? 0 : slash + 1);
    g_ntemps = 0;
    if (!remember(g_temp_dir, temp_dir_)) g_temp_dir[0] = '\0';
    struct sigaction act = {};
    act.sa_handler = remove_temps_and_die;
    sigemptyset(&act.sa_mask);
    for (std::size_t i = 0; i < kSignalCount; ++i) sigaction(kSignals[i], &act, &saved_[i]);
}

SafeWrite::~SafeWrite() {
    if (!ready()) return;
    std::error_code ec;
    std::filesystem::remove_all(temp_dir_, ec);
    for (std::size_t i = 0; i < kSignalCount; ++i) sigaction(kSignals[i], &saved_[i], nullptr);
    g_ntemps = 0;
    g_temp_dir[0] = '\0';
}

std::string SafeWrite::add(const std::string &name, Check check) {
    files_.emplace_back(name, check);
    const std::string temp = temp_prefix_ + name;
    if (g_ntemps < kMaxTemps && remember(g_temps[g_ntemps], temp)) g_ntemps = g_ntemps + 1;
    return temp;
}

bool SafeWrite::verify(const std::string &name, Check check) {
    const std::string temp = temp_prefix_ + name, shown = target_prefix_ + name;
    std::error_code ec;
    const auto size = std::filesystem::file_size(temp, ec);
    if (ec) {
        error_ = shown + " wasn't written";
        return false;
    }
    if (check == Check::xs) {
        SVLKXS set;
        const SCMDSTATUS s = VLKXSRead(&set, temp.c_str(), VLKXS_MODE_QUIET);
        if (failed(s)) error_ = shown + " doesn't read back: " + fault_of(s).describe();
        VLKXSFree(&set, 0);
        return !failed(s);
    }
    std::string tail = tail_of(temp, 64);
    bool whole = size > 0;
    if (check == Check::gd) {
        whole = whole && tail.ends_with('\n');
    } else {
        while (!tail.empty() && std::strchr(" \t\r\n", tail.back()) != nullptr) tail.pop_back();
        whole = tail.ends_with("</svg>");
    }
    if (!whole) error_ = shown + " was written incomplete";
    return whole;
}

bool SafeWrite::commit(std::vector<std::string> &placed) {
    if (!ready()) return false;
    for (const auto &[name, check] : files_) {
        if (!verify(name, check)) return false;
        sync_path(temp_prefix_ + name, 0);
    }
    if (std::getenv("VLKXS_CLI_INTERRUPT_BEFORE_RENAME") != nullptr) raise(SIGTERM);
    for (const auto &[name, check] : files_) {
        const std::string target = target_prefix_ + name;
        if (std::rename((temp_prefix_ + name).c_str(), target.c_str()) != 0) {
            error_ = "can't put " + target + " in place: " + errno_text();
            return false;
        }
        placed.push_back(target);
    }
    sync_path(directory_of(target_prefix_), O_DIRECTORY);
    return true;
}

bool write_text(const std::string &path, std::string_view content, std::string &error) {
    std::FILE *f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) {
        error = "can't open " + path + ": " + errno_text();
        return false;
    }
    const bool written = std::fwrite(content.data(), 1, content.size(), f) == content.size();
    if (std::fclose(f) != 0 || !written) {
        error = "can't write " + path + ": " + errno_text();
        return false;
    }
    return true;
}

}  // namespace vlkcli
