// Captures what the library writes to stderr or stdout during a scope, at the
// file-descriptor level, so that fprintf(stderr, ...) of C code is seen.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace vlktest {

class Capture {
public:
    explicit Capture(std::FILE *stream);  // stderr or stdout
    ~Capture() { finish(); }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;
    // Stops capturing (once) and returns everything written meanwhile.
    std::string finish();

private:
    std::FILE *stream_, *sink_;
    int fd_, saved_;
    bool done_ = false;
    std::string text_;
};

// Number of lines of `text` that begin with `prefix`.
int count_lines(std::string_view text, std::string_view prefix);

}  // namespace vlktest
