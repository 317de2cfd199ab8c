#include "capture.hpp"

#include <unistd.h>

#include <stdexcept>

namespace vlktest {

Capture::Capture(std::FILE *stream) : stream_(stream), fd_(fileno(stream)) {
    std::fflush(stream_);
    sink_ = std::tmpfile();
    if (sink_ == nullptr) throw std::runtime_error("tmpfile");
    saved_ = dup(fd_);
    dup2(fileno(sink_), fd_);
}

Capture::~Capture() { finish(); }

std::string Capture::finish() {
    if (done_) return text_;
    done_ = true;
    std::fflush(stream_);
    dup2(saved_, fd_);
    close(saved_);
    std::rewind(sink_);
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, sink_)) > 0) text_.append(buf, n);
    std::fclose(sink_);
    return text_;
}

int count_lines(std::string_view text, std::string_view prefix) {
    int n = 0;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        if (text.substr(pos, end - pos).starts_with(prefix)) ++n;
        pos = end + 1;
    }
    return n;
}

}  // namespace vlktest
