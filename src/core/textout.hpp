// The one buffered output path of the files this module writes (xs files,
// gd plot files): text and "%G" numbers go into a large block that is
// written out in big pieces, instead of one formatted call per number.  The
// stream is closed on every way out.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
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
    // As printf("%G", v).  Tables repeat their grids from block to block, so
    // the texts of recent values are kept by their bits and copied again.
    TextOut &g(double v) noexcept {
        room();
        const auto bits = std::bit_cast<uint64_t>(v);
        Memo &m = memo_[(bits * 0x9e3779b97f4a7c15ull) >> 56];
        char *at = buf_.data() + len_;
        if (m.len != 0 && m.bits == bits) {
            std::memcpy(at, m.text, sizeof m.text);
        } else {
            m.len = static_cast<uint8_t>(write_g({at, kWriteGMax}, v));
            m.bits = bits;
            std::memcpy(m.text, at, sizeof m.text);
        }
        len_ += m.len;
        return *this;
    }
    // A table row of the files: "%G %G %G\n".
    TextOut &row(double a, double b, double c) noexcept { return g(a).ch(' ').g(b).ch(' ').g(c).ch('\n'); }
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

    struct Memo {
        uint64_t bits;
        uint8_t len;  // 0: empty
        char text[kWriteGMax - 1];
    };
    static_assert(kWriteGMax - 1 >= 14, "room for the longest text, -1.79769E+308");

    std::FILE *f_ = nullptr;
    Memo memo_[256] = {};
    Buffer<char> buf_;
    std::size_t len_ = 0;
};

}  // namespace vlk
