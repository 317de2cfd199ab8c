// Text routines of the support layer: splitting lines into words and items,
// counted-text number conversion and case-insensitive comparison.  Nothing
// here looks at the locale: blanks, letters and digits are plain ASCII, and
// numbers go through the core's reader on std::from_chars.
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <system_error>

#include "core/numbers.hpp"
#include "core/words.hpp"
#include "vlkxs.h"

namespace vlk {
namespace {

constexpr bool is_blank(char c) noexcept { return c == ' ' || c == '\t'; }
// Word and number separators of a line: blanks, tabs and commas.
constexpr bool is_separator(char c) noexcept { return is_blank(c) || c == ','; }


// Drops blanks and tabs at both ends (numbers and words of a line).
constexpr std::string_view trim_space(std::string_view s) noexcept {
    while (!s.empty() && is_blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && is_blank(s.back())) s.remove_suffix(1);
    return s;
}

// The counted text of a caller, or nothing if the arguments can't describe
// one.  A null pointer with length 0 is an empty text.
constexpr bool counted_text(const char *p, int32_t len, std::string_view &out) noexcept {
    if (len < 0 || (p == nullptr && len > 0)) return false;
    out = len == 0 ? std::string_view{} : std::string_view{p, static_cast<std::size_t>(len)};
    return true;
}

// Element `i` of a caller's array with a stride in elements.
template <class T>
constexpr T &element(T *base, int32_t stride, int32_t i) noexcept {
    return base[static_cast<std::size_t>(i) * static_cast<std::size_t>(stride)];
}

// Orders a null text before every other one, so that the comparisons stay
// defined for callers that pass one.
constexpr bool null_order(const char *a, const char *b, int32_t &result) noexcept {
    if (a != nullptr && b != nullptr) return false;
    result = (a == b) ? 0 : (a == nullptr ? -1 : 1);
    return true;
}

}  // namespace

}  // namespace vlk

// Words end at blanks, tabs and commas; runs of them are one break.  Each
// delivered word is terminated in place; the text behind the last delivered
// word stays as it was.
int32_t c2vc(char *text, char **words, int32_t stride, int32_t max) {
    if (text == nullptr || words == nullptr || stride < 1 || max < 1) return -1;
    int32_t n = 0;
    char *p = text;
    while (n < max) {
        while (vlk::is_separator(*p)) ++p;
        if (*p == '\0') break;
        vlk::element(words, stride, n++) = p;
        while (*p != '\0' && !vlk::is_separator(*p)) ++p;
        if (*p != '\0') *p++ = '\0';
    }
    return n;
}

// Items are separated by a comma, by blanks, or by a comma with blanks around
// it.  Blanks alone never make an empty item, but every comma ends one: a
// comma at the start or the end, or two commas in a row, enclose an empty
// item.  Blanks at the ends of the text are no part of any item.
int32_t c2vcn(const char *text, const char **items, int32_t *lens, int32_t stride, int32_t max) {
    if (text == nullptr || stride < 1 || max < 1) return -1;
    const std::string_view s{text};
    std::size_t i = 0;
    auto skip_blanks = [&] {
        while (i < s.size() && vlk::is_blank(s[i])) ++i;
    };
    skip_blanks();
    if (i == s.size()) return -1;  // empty or blanks only: no item at all
    int32_t n = 0;
    while (n < max) {
        const std::size_t start = i;
        while (i < s.size() && !vlk::is_separator(s[i])) ++i;
        if (items != nullptr) vlk::element(items, stride, n) = text + start;
        if (lens != nullptr) vlk::element(lens, stride, n) = static_cast<int32_t>(i - start);
        ++n;
        skip_blanks();
        if (i == s.size()) break;
        if (s[i] == ',') {
            ++i;
            skip_blanks();
        }
    }
    return n;
}

int32_t cn2l(const char *p, int32_t len, int32_t *value) {
    std::string_view s;
    if (value == nullptr || !vlk::counted_text(p, len, s)) return -1;
    s = vlk::trim_space(s);
    if (!s.empty() && s.front() == '+') {
        s.remove_prefix(1);
        if (s.empty() || s.front() == '-') return -1;
    }
    int32_t v = 0;
    const auto [ptr, ec] = std::from_chars(s.data(), s.data() + s.size(), v, 10);
    if (ec != std::errc{} || ptr != s.data() + s.size()) return -1;
    *value = v;
    return 0;
}

// A number that overflows or underflows a double fails like junk does: the
// caller gets no value rather than an infinity or a zero it didn't write.
int32_t cn2d(const char *p, int32_t len, double *value) {
    std::string_view s;
    if (value == nullptr || !vlk::counted_text(p, len, s)) return -1;
    s = vlk::trim_space(s);
    const vlk::Parsed r = vlk::read_real(s);
    if (r.code != vlk::kReadOk || r.used != s.size()) return -1;
    *value = r.value;
    return 0;
}

// Each number is converted once, straight from the line: it is taken when
// the character behind it is a separator or the end of the text.  This runs
// once for every data line of a file, so it walks the text by pointer.
int32_t cn2vd(const char *p, int32_t len, double *values, int32_t stride, int32_t max) {
    std::string_view s;
    if (values == nullptr || stride < 1 || max < 1 || !vlk::counted_text(p, len, s)) return -1;
    const char *at = s.data();
    const char *const end = at + s.size();
    int32_t n = 0;
    while (n < max) {
        while (at != end && vlk::is_separator(*at)) ++at;
        if (at == end) break;
        double v = 0.0;
        const vlk::Scanned r = vlk::scan_real(at, end, v);
        if (r.ec != std::errc{} || (r.ptr != end && !vlk::is_separator(*r.ptr))) break;
        at = r.ptr;
        vlk::element(values, stride, n++) = v;
    }
    return n;
}

// Reads `a` and `b` only up to the first difference, their end, or `n`
// characters: `a` may be a piece of a longer line without a 0 behind it.
int32_t strnicmp(const char *a, const char *b, size_t n) {
    int32_t r = 0;
    if (n == 0) return 0;
    if (vlk::null_order(a, b, r)) return r;
    return vlk::compare_folded(a, n, b, n);
}

int32_t stricmp(const char *a, const char *b) {
    int32_t r = 0;
    if (vlk::null_order(a, b, r)) return r;
    return vlk::compare_folded(a, vlk::kTerminated, b, vlk::kTerminated);
}

int32_t stricnb(const char *a, const char *b) {
    int32_t r = 0;
    if (vlk::null_order(a, b, r)) return r;
    return vlk::compare_folded(vlk::trim_space(a), vlk::trim_space(b));
}
