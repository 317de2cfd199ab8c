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

Parsed read_real(std::string_view text) noexcept {
    constexpr Parsed none{0.0, 0, kReadNoNumber};
    std::size_t skip = 0;
    // from_chars takes a '-' but no '+'; a '+' is taken here and must be
    // followed by the digits or the name of the number, not by another sign.
    if (!text.empty() && text.front() == '+') {
        skip = 1;
        if (text.size() == 1 || text[1] == '+' || text[1] == '-') return none;
    }
    const char *first = text.data() + skip;
    const char *last = text.data() + text.size();
    double v = 0.0;
    const auto [ptr, ec] = std::from_chars(first, last, v, std::chars_format::general);
    if (ec == std::errc::result_out_of_range) return Parsed{0.0, 0, kReadOutOfRange};
    if (ec != std::errc{}) return none;
    return Parsed{v, static_cast<std::size_t>(ptr - text.data()), kReadOk};
}

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
