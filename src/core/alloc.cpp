#include "core/alloc.hpp"

#include <cstdlib>
#include <cstring>

#if defined(VLKXS_FAULT_INJECTION)
#include <atomic>
#endif

namespace vlk {
namespace {

#if defined(VLKXS_FAULT_INJECTION)
std::atomic<long> g_fail_at{0};  // 0: off; else allocations left until the failing one
std::atomic<long> g_count{0};

bool injected_failure() noexcept {
    g_count.fetch_add(1, std::memory_order_relaxed);
    long left = g_fail_at.load(std::memory_order_relaxed);
    if (left <= 0) return false;
    if (left == 1) {
        g_fail_at.store(0, std::memory_order_relaxed);
        return true;
    }
    g_fail_at.store(left - 1, std::memory_order_relaxed);
    return false;
}
#else
constexpr bool injected_failure() noexcept { return false; }
#endif

}  // namespace

void *zalloc(std::size_t count, std::size_t size) noexcept {
    if (injected_failure()) return nullptr;
    return std::calloc(count == 0 ? 1 : count, size == 0 ? 1 : size);
}

void *zrealloc(void *p, std::size_t old_bytes, std::size_t new_bytes) noexcept {
    if (injected_failure()) return nullptr;
    if (new_bytes == 0) new_bytes = 1;
    void *q = std::realloc(p, new_bytes);
    if (q != nullptr && new_bytes > old_bytes)
        std::memset(static_cast<char *>(q) + old_bytes, 0, new_bytes - old_bytes);
    return q;
}

char *dup_text(const char *s, std::size_t n) noexcept {
    char *d = zalloc_n<char>(n + 1);
    if (d != nullptr && n > 0) std::memcpy(d, s, n);
    return d;
}

char *dup_text(const char *s) noexcept { return dup_text(s, std::strlen(s)); }

#if defined(VLKXS_FAULT_INJECTION)
long testhook::fail_alloc_after(long n) noexcept {
    g_fail_at.store(n < 0 ? 0 : n, std::memory_order_relaxed);
    return g_count.exchange(0, std::memory_order_relaxed);
}
#endif

}  // namespace vlk
