// Captures what the library writes to stderr or stdout during a scope, at the
// file-descriptor level, so that fprintf(stderr, ...) of C code is seen.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace vlktest {

class Capture {
public:
    explicit Capture(std::FILE *stream) : stream_(stream), sink_(std::tmpfile()), fd_(fileno(stream)) {
        if (sink_ == nullptr) throw std::runtime_error("tmpfile");
        std::fflush(stream_);
        saved_ = dup(fd_);
        dup2(fileno(sink_), fd_);
    }
    ~Capture() { finish(); }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;
    // Stops capturing (once) and returns everything written meanwhile.
    std::string finish() {
        if (std::exchange(done_, true)) return text_;
        std::fflush(stream_);
        dup2(saved_, fd_);
        close(saved_);
        std::rewind(sink_);
        char buf[4096];
        for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, sink_)) > 0;) text_.append(buf, n);
        std::fclose(sink_);
        return text_;
    }

private:
    std::FILE *stream_, *sink_;
    int fd_, saved_ = -1;
    bool done_ = false;
    std::string text_;
};

// Number of lines of `text` that begin with `prefix`.
inline int count_lines(std::string_view text, std::string_view prefix) {
    int n = 0;
    for (std::size_t pos = 0; pos < text.size(); pos = std::min(text.find('\n', pos), text.size()) + 1)
        n += text.substr(pos).starts_with(prefix);
    return n;
}

}  // namespace vlktest
