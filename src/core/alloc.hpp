// The one allocation path for blocks that a caller or VLKXSFree releases with
// free(): zero-filled, and, in test builds (VLKXS_FAULT_INJECTION), with a
// hook that lets a test fail the n-th allocation so that every clean-up path
// can be exercised.  A build without the definition has no hook and no
// counter: the path is calloc and realloc and nothing else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace vlk {

// calloc(count, size); a count of 0 still gives a block of one element, so
// that a non-null result always means success.  Null on failure.
void *zalloc(std::size_t count, std::size_t size) noexcept;
// realloc; the bytes beyond `old_bytes` are zero-filled.  Null on failure,
// and then `p` is untouched.
void *zrealloc(void *p, std::size_t old_bytes, std::size_t new_bytes) noexcept;
// A heap copy of a terminated text, or of `n` bytes plus a 0 byte.
char *dup_text(const char *s) noexcept;
char *dup_text(const char *s, std::size_t n) noexcept;

template <class T>
T *zalloc_n(std::size_t count) noexcept {
    return static_cast<T *>(zalloc(count, sizeof(T)));
}

// Allocates a zero-filled array of n elements (none for n of 0 or below, but
// still a block) into `field`; false if the allocation failed, and then the
// field is null.
template <class T>
bool make(T *&field, int32_t n) noexcept {
    field = zalloc_n<T>(n > 0 ? static_cast<std::size_t>(n) : 0);
    return field != nullptr;
}

// A call-local array through the same path, released on every way out of
// the call.  It grows by doubling and keeps its contents; the part beyond
// what was ever used is zero-filled.
template <class T>
class Buffer {
public:
    Buffer() = default;
    Buffer(const Buffer &) = delete;
    Buffer &operator=(const Buffer &) = delete;
    ~Buffer() { std::free(p_); }
    // Room for at least n elements; false (and nothing changed) if the block
    // couldn't grow.
    bool reserve(std::size_t n) noexcept {
        if (n <= cap_) return true;
        if (n > std::numeric_limits<std::size_t>::max() / 2 / sizeof(T)) return false;  // doubling can't overflow
        std::size_t want = cap_ < 8 ? 8 : cap_;
        while (want < n) want *= 2;
        void *grown = zrealloc(p_, cap_ * sizeof(T), want * sizeof(T));
        if (grown == nullptr) return false;
        p_ = static_cast<T *>(grown);
        cap_ = want;
        return true;
    }
    T *data() noexcept { return p_; }
    // Hands the block over to the caller, who releases it with free().
    T *release() noexcept {
        T *p = p_;
        p_ = nullptr;
        cap_ = 0;
        return p;
    }
    T &operator[](std::size_t i) noexcept { return p_[i]; }
    std::size_t capacity() const noexcept { return cap_; }

private:
    T *p_ = nullptr;
    std::size_t cap_ = 0;
};

#if defined(VLKXS_FAULT_INJECTION)
namespace testhook {
// From now on, the n-th allocation through this path fails (1 = the next
// one); 0 switches the hook off.  Returns how many allocations ran since the
// last call, which lets a fault loop know when it has covered them all.
long fail_alloc_after(long n) noexcept;
}  // namespace testhook
#endif

}  // namespace vlk
