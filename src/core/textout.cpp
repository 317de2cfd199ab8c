#include "core/textout.hpp"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace vlk {

TextOut &TextOut::d(int32_t v) noexcept {
    room();
    const auto r = std::to_chars(buf_.data() + len_, buf_.data() + len_ + 16, v);
    len_ = static_cast<std::size_t>(r.ptr - buf_.data());
    return *this;
}

bool TextOut::open(const SVLKXS &set, const char *prefix, const char *ending) noexcept {
    const char *symbol = set.proj.symbol, *name = set.targ.name;
    const std::size_t size = std::strlen(prefix) + std::strlen(symbol) + std::strlen(set.dimtag) + std::strlen(name) +
                             std::strlen(set.IAtag) + std::strlen(ending) + 64;
    Buffer<char> path;
    if (!path.reserve(size)) return false;
    std::snprintf(path.data(), size, "%s%s.%s.%s%s%s", prefix, symbol, name, set.IAtag, set.dimtag, ending);
    return open(path.data());
}

TextOut &TextOut::date() noexcept {
    static constexpr const char *kDay[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char *kMonth[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm t{};
#if defined(_WIN32)
    localtime_s(&t, &now);
#else
    localtime_r(&now, &t);
#endif
    char when[64];
    std::snprintf(when, sizeof when, "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n", kDay[t.tm_wday % 7], kMonth[t.tm_mon % 12],
                  t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_year + 1900);
    return text(when);
}

}  // namespace vlk
