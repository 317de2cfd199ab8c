// The one buffered output path of the files this module writes (xs files,
// gd plot files): text and "%G" numbers go into a large block that is
// written out in big pieces, instead of one formatted call per number.  The
// stream is closed on every way out.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "core/alloc.hpp"
#include "core/numbers.hpp"
#include "vlkxs.h"

namespace vlk {

class TextOut {
public:
    TextOut() = default;
    TextOut(const TextOut &) = delete;
    TextOut &operator=(const TextOut &) = delete;
    ~TextOut() { close(); }

    // The block first, then the file, replaced if it exists: false if either
    // can't be had, and then no file was touched or none was opened.
    bool open(const char *path) noexcept {
        if (!buf_.reserve(kBlock + kRoom)) return false;
        f_ = std::fopen(path, "w");
        return f_ != nullptr;
    }
    // The same for the file of a set: "<prefix><proj.symbol>.<targ.name>.
    // <IAtag><dimtag><ending>", the tags filled.
    bool open(const SVLKXS &set, const char *prefix, const char *ending) noexcept;

    // ctime()'s 24 characters of the present local time and its line end,
    // without ctime's shared buffer.
    TextOut &date() noexcept;

    TextOut &text(std::string_view s) noexcept {
        if (s.size() > kRoom) {
            flush();
            std::fwrite(s.data(), 1, s.size(), f_);
            return *this;
        }
        room();
        for (char c : s) buf_[len_++] = c;
        return *this;
    }
    TextOut &ch(char c) noexcept {
        room();
        buf_[len_++] = c;
        return *this;
    }
    // As printf("%G", v).
    TextOut &g(double v) noexcept {
        room();
        len_ += write_g({buf_.data() + len_, kWriteGMax}, v);
        return *this;
    }
    // As printf("%d", v).
    TextOut &d(int32_t v) noexcept;

    // Writes out the block and closes the stream; the results of the stream
    // operations aren't looked at.
    void close() noexcept {
        if (f_ == nullptr) return;
        flush();
        std::fclose(f_);
        f_ = nullptr;
    }

private:
    static constexpr std::size_t kBlock = std::size_t{1} << 20;
    static constexpr std::size_t kRoom = 256;  // more than any one piece put in whole
    void room() noexcept {
        if (len_ >= kBlock) flush();
    }
    void flush() noexcept {
        if (len_ > 0 && f_ != nullptr && buf_.data() != nullptr) std::fwrite(buf_.data(), 1, len_, f_);
        len_ = 0;
    }

    std::FILE *f_ = nullptr;
    Buffer<char> buf_;
    std::size_t len_ = 0;
};

}  // namespace vlk
