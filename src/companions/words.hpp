// Small helpers for matching a user's word: blank trimming and ASCII case
// folding, shared by the companions and the xs format.
#pragma once

#include <cstddef>
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

// ASCII case-insensitive equality; a null `b` equals nothing.
constexpr bool iequals(std::string_view a, const char *b) noexcept {
    if (b == nullptr) return false;
    const std::string_view w(b);
    if (a.size() != w.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (ascii_lower(a[i]) != ascii_lower(w[i])) return false;
    return true;
}

}  // namespace vlk
