// Fixed thread-local texts that a returned status record may point at after
// the call: the location text of a failed validation and the kept line of a
// failed read.  Writing into one never allocates and never fails: what goes
// past its end is cut off, so a report survives even when memory is short.
#pragma once

#include <cstddef>
#include <string_view>

namespace vlk {

template <std::size_t N>
class FixedText {
public:
    static_assert(N > 1, "room for at least one character and the 0 byte");
    void clear() noexcept {
        len_ = 0;
        buf_[0] = '\0';
    }
    // Appends as much of `s` as fits; the text stays terminated.
    FixedText &append(std::string_view s) noexcept {
        std::size_t n = s.size() < N - 1 - len_ ? s.size() : N - 1 - len_;
        for (std::size_t i = 0; i < n; ++i) buf_[len_ + i] = s[i];
        len_ += n;
        buf_[len_] = '\0';
        return *this;
    }
    FixedText &assign(std::string_view s) noexcept {
        clear();
        return append(s);
    }
    const char *c_str() const noexcept { return buf_; }
    std::size_t size() const noexcept { return len_; }
    static constexpr std::size_t capacity() noexcept { return N - 1; }

private:
    char buf_[N] = {};
    std::size_t len_ = 0;
};

}  // namespace vlk
