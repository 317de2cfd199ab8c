#include "report.hpp"

#include <unistd.h>

#include <array>

namespace vlkcli {

namespace {

// A text of the library that may be counted (len > 0) or terminated.
std::string copy_text(const char *p, int32_t len) {
    if (p == nullptr) return {};
    return len > 0 ? std::string(p, static_cast<std::size_t>(len)) : std::string(p);
}

// Length of the UTF-8 sequence at the start of `s`, or 0 if it isn't one
// (overlong forms, surrogates and code points past U+10FFFF included).
std::size_t utf8_length(std::string_view s) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char b = byte(0);
    if (b < 0x80) return 1;
    std::size_t n;
    unsigned char lo = 0x80, hi = 0xbf;  // range of the second byte
    if (b >= 0xc2 && b <= 0xdf) {
        n = 2;
    } else if (b >= 0xe0 && b <= 0xef) {
        n = 3;
        if (b == 0xe0) lo = 0xa0;
        if (b == 0xed) hi = 0x9f;
    } else if (b >= 0xf0 && b <= 0xf4) {
        n = 4;
        if (b == 0xf0) lo = 0x90;
        if (b == 0xf4) hi = 0x8f;
    } else {
        return 0;
    }
    if (s.size() < n || byte(1) < lo || byte(1) > hi) return 0;
    for (std::size_t i = 2; i < n; ++i)
        if ((byte(i) & 0xc0) != 0x80) return 0;
    return n;
}

// The progress line on show, if any.
Progress *g_shown = nullptr;

}  // namespace

bool failed(const SCMDSTATUS &s) { return (s.level & VLKXS_LEVEL_SEVERE_MASK) != 0; }

Fault fault_of(const SCMDSTATUS &s) {
    Fault f;
    f.code = s.code;
    f.message = s.code >= 0 && s.code < VLKXS_C_COUNT ? cvMsg[s.code] : cvMsg[0];
    f.origin = copy_text(s.origin, 0);
    f.file = copy_text(s.file, 0);
    f.line = s.line;
    f.item = copy_text(s.item, s.itemlen);
    // The line of a file is counted only: an empty one has no text at all.
    if (s.text != nullptr && s.textlen > 0) f.text.assign(s.text, static_cast<std::size_t>(s.textlen));
    return f;
}

std::string Fault::location() const {
    if (!file.empty() && line > 0) return file + ":" + std::to_string(line);
    return item;
}

std::string Fault::describe() const {
    std::string d = message + " (code " + std::to_string(code);
    if (!origin.empty()) d += ", " + origin;
    d += ")";
    if (const std::string where = location(); !where.empty()) d += " at " + where;
    return d;
}

int report(std::string_view cmd, std::string_view context, const SCMDSTATUS &s) {
    clear_progress();
    const std::string what = fault_of(s).describe();
    std::string line = "vlkxs ";
    line += cmd;
    line += ": ";
    if (!context.empty()) (line += context) += ": ";
    line += what;
    std::fprintf(stderr, "%s\n", line.c_str());
    return kExitFailed;
}

int report_text(std::string_view cmd, std::string_view text) {
    clear_progress();
    std::fprintf(stderr, "vlkxs %.*s: %.*s\n", static_cast<int>(cmd.size()), cmd.data(), static_cast<int>(text.size()),
                 text.data());
    return kExitFailed;
}

std::string json_string(std::string_view text) {
    std::string out = "\"";
    while (!text.empty()) {
        const std::size_t n = utf8_length(text);
        const char c = text[0];
        if (n == 0) {
            out += "\\ufffd";
        } else if (c == '"' || c == '\\') {
            (out += '\\') += c;
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\t') {
            out += "\\t";
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            std::array<char, 8> buf{};
            std::snprintf(buf.data(), buf.size(), "\\u%04x", static_cast<unsigned char>(c));
            out += buf.data();
        } else {
            out.append(text.substr(0, n));
        }
        text.remove_prefix(n == 0 ? 1 : n);
    }
    return out += '"';
}

Progress::Progress() : Progress(isatty(fileno(stderr)) != 0) {}

void Progress::show(std::string_view text) {
    if (!enabled_) return;
    // Back to the start of the line, the text, and the rest of the old line erased.
    std::fprintf(stream_, "\r%.*s\033[K", static_cast<int>(text.size()), text.data());
    std::fflush(stream_);
    shown_ = true;
    g_shown = this;
}

void Progress::clear() {
    if (!shown_) return;
    std::fputs("\r\033[K", stream_);
    std::fflush(stream_);
    shown_ = false;
    if (g_shown == this) g_shown = nullptr;
}

void clear_progress() {
    if (g_shown != nullptr) g_shown->clear();
}

}  // namespace vlkcli
