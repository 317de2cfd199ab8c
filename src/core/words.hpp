// Matching a user's word: blank trimming and the one ASCII case-insensitive
// comparison of the library (companions, xs format, text routines).
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace vlk {

// Drops blanks (0x20 only) at both ends.
constexpr std::string_view trim_blanks(std::string_view s) noexcept {
    while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
    while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
    return s;
}

// Folds A-Z to a-z and leaves every other byte alone; unsigned, so that a
// comparison of folded bytes orders as strcmp does.
constexpr unsigned char ascii_lower(char c) noexcept {
    const auto u = static_cast<unsigned char>(c);
    return (u >= 'A' && u <= 'Z') ? static_cast<unsigned char>(u - 'A' + 'a') : u;
}

// A length for a text that ends at its 0 byte only.
inline constexpr std::size_t kTerminated = std::numeric_limits<std::size_t>::max();

// Compares `a` (at most `na` bytes) with `b` (at most `nb` bytes) like strcmp
// of the case-folded bytes; the end of a count reads as a 0 byte, and a 0
// byte ends a text.  Each text is read only up to the first difference, so a
// piece of a longer line without a 0 behind it is safe as long as its count
// is right.
constexpr int32_t compare_folded(const char *a, std::size_t na, const char *b, std::size_t nb) noexcept {
    for (std::size_t i = 0;; ++i) {
        const unsigned char ca = i < na ? ascii_lower(a[i]) : 0;
        const unsigned char cb = i < nb ? ascii_lower(b[i]) : 0;
        if (ca != cb) return static_cast<int32_t>(ca) - static_cast<int32_t>(cb);
        if (ca == 0) return 0;
    }
}

constexpr int32_t compare_folded(std::string_view a, std::string_view b) noexcept {
    return compare_folded(a.data(), a.size(), b.data(), b.size());
}

// Case-insensitive equality with a terminated text; a null `b` equals nothing.
constexpr bool iequals(std::string_view a, const char *b) noexcept {
    return b != nullptr && compare_folded(a.data(), a.size(), b, kTerminated) == 0;
}

// A text that may be null, for printing.
constexpr const char *printable(const char *s) noexcept { return s != nullptr ? s : "(null)"; }

}  // namespace vlk
