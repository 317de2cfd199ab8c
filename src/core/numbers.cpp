// The one number reader and writer of the library: everything that turns
// text into doubles or doubles into the "%G" form goes through here, without
// a locale, on std::from_chars/std::to_chars.
#include "core/numbers.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace vlk {
namespace {

constexpr char upper(char c) noexcept { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

std::size_t write_g(std::span<char> out, double v) noexcept {
    // The general format with precision 6 is printf's %g by definition of
    // to_chars; %G differs only in the case of its letters.
    char buf[kWriteGMax];
    const auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, 6);
    if (ec != std::errc{}) return 0;
    const auto n = static_cast<std::size_t>(ptr - buf);
    if (out.size() < n + 1) return 0;
    std::transform(buf, ptr, out.begin(), upper);
    out[n] = '\0';
    return n;
}

}  // namespace vlk
