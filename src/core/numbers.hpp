// Number reading and writing of the support layer, shared by the text
// routines, the file reader, the writer and the plot export.  Everything
// here is locale-independent: it goes through std::from_chars/std::to_chars.
#pragma once

#include <charconv>
#include <cstddef>
#include <span>
#include <string_view>
#include <system_error>

namespace vlk {

// Result of read_real: the value, the characters consumed from the front of
// the text, and a code (kReadOk, or one of the negative failures).  On
// failure `value` is 0 and `used` is 0.
struct Parsed {
    double value;
    std::size_t used;
    int code;
};

inline constexpr int kReadOk = 0;
inline constexpr int kReadNoNumber = -1;    // no number at the front of the text
inline constexpr int kReadOutOfRange = -2;  // a number whose magnitude a double can't hold

// Reads one real number at the very front of `text` (no blanks skipped) and
// stops at the first character that can't continue it; the caller decides
// whether what follows is acceptable.  Accepts everything that printf's %G
// and %g print ("1.5E-17", "1E+06", "-0.5", "INF", "-NAN", in either case)
// and the usual decimal forms around them (".5", "5.", "+1", "1e6",
// "infinity").  Hexadecimal is not accepted: "0x10" reads as 0 with one
// character used.  A number that overflows to infinity or underflows to zero
// ("1e999", "1e-400") is kReadOutOfRange; subnormals are read exactly.
// The same at the level of from_chars, for the loops that convert every
// number of a file: on success `value` holds the number and `ptr` points
// behind it; otherwise `value` is untouched, `ptr` is `first`, and `ec` says
// why (std::errc::result_out_of_range for a number a double can't hold).
struct Scanned {
    const char *ptr;
    std::errc ec;
};
inline Scanned scan_real(const char *first, const char *last, double &value) noexcept {
    const char *p = first;
    // from_chars takes a '-' but no '+'; a '+' is taken here and must be
    // followed by the digits or the name of the number, not by another sign.
    if (p != last && *p == '+') {
        ++p;
        if (p == last || *p == '+' || *p == '-') return {first, std::errc::invalid_argument};
    }
    const auto [ptr, ec] = std::from_chars(p, last, value, std::chars_format::general);
    return ec == std::errc{} ? Scanned{ptr, ec} : Scanned{first, ec};
}

inline Parsed read_real(std::string_view text) noexcept {
    double v = 0.0;
    const Scanned r = scan_real(text.data(), text.data() + text.size(), v);
    if (r.ec == std::errc::result_out_of_range) return Parsed{0.0, 0, kReadOutOfRange};
    if (r.ec != std::errc{}) return Parsed{0.0, 0, kReadNoNumber};
    return Parsed{v, static_cast<std::size_t>(r.ptr - text.data()), kReadOk};
}

// Room enough for any result of write_g including its terminating 0
// ("-1.79769E+308" is 13 characters).
inline constexpr std::size_t kWriteGMax = 16;

// Writes `v` exactly as printf("%G", v) does in the C locale: six significant
// digits, trailing zeros dropped, an upper-case exponent of at least two
// digits, and "INF", "-INF", "NAN", "-NAN" (a NaN with its sign bit set) for
// the special values.  A terminating 0 follows the text.  Returns the
// length of the text without the 0; 0 if `out` is too small for text and 0,
// in which case `out` holds nothing useful.
std::size_t write_g(std::span<char> out, double v) noexcept;

}  // namespace vlk
