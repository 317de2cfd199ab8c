#include "core/textout.hpp"

#include <charconv>

namespace vlk {

TextOut &TextOut::d(int32_t v) noexcept {
    room();
    const auto r = std::to_chars(buf_.data() + len_, buf_.data() + len_ + 16, v);
    len_ = static_cast<std::size_t>(r.ptr - buf_.data());
    return *this;
}

}  // namespace vlk
