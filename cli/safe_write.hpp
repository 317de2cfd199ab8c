// Files written whole or not at all.
//
// The files of one write go first to a private temporary directory made
// beside their targets (same directory, so same file system); each is read
// back, and only then are they renamed into place.  A failure at any step, or
// an interrupting SIGINT, SIGTERM, SIGHUP or SIGPIPE, removes the temporaries
// and leaves whatever stood under the final names untouched.
//
// For the tests: with the environment variable
// VLKXS_CLI_INTERRUPT_BEFORE_RENAME set, the process sends itself SIGTERM
// after the files have been read back and before the first rename, as an
// interruption at the worst moment would.
#pragma once

#include <csignal>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vlkcli {

class SafeWrite {
public:
    static constexpr std::size_t kSignalsHandled = 4;  // SIGINT, SIGTERM, SIGHUP, SIGPIPE

    // `target_prefix` is put before every name, as the library's writers do:
    // "out/run-" gives "out/run-<name>".  The directory must exist.
    explicit SafeWrite(std::string target_prefix);
    ~SafeWrite();
    SafeWrite(const SafeWrite &) = delete;
    SafeWrite &operator=(const SafeWrite &) = delete;

    // False when the temporary directory couldn't be made; error() says why.
    bool ready() const { return !temp_dir_.empty(); }
    const std::string &error() const { return error_; }

    // The prefix to hand the library's writers instead of the target prefix.
    const std::string &temp_prefix() const { return temp_prefix_; }
    // How a written file is read back: an xs file through the library's
    // reader; a gd file must be non-empty and end with a line end; an SVG
    // document must end with "</svg>".
    enum class Check { xs, gd, svg };
    // Announces a file that will be written under the prefix as `name`, and
    // returns its temporary path.
    std::string add(const std::string &name, Check check);

    // Reads every announced file back, then renames each into place; the
    // final paths go to `placed`.  False with error() set otherwise.
    bool commit(std::vector<std::string> &placed);

private:
    bool verify(const std::string &name, Check check);

    std::string target_prefix_, temp_dir_, temp_prefix_, error_;
    std::vector<std::pair<std::string, Check>> files_;
    struct sigaction saved_[kSignalsHandled] = {};
};

// Writes `content` to `path`; false with the reason in `error` on failure.
bool write_text(const std::string &path, std::string_view content, std::string &error);

}  // namespace vlkcli
