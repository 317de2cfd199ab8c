// The one allocation path for blocks that a caller or VLKXSFree releases with
// free(): zero-filled, and, in test builds (VLKXS_FAULT_INJECTION), with a
// hook that lets a test fail the n-th allocation so that every clean-up path
// can be exercised.  A build without the definition has no hook and no
// counter: the path is calloc and realloc and nothing else.
#pragma once

#include <cstddef>
#include <cstdint>

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

#if defined(VLKXS_FAULT_INJECTION)
namespace testhook {
// From now on, the n-th allocation through this path fails (1 = the next
// one); 0 switches the hook off.  Returns how many allocations ran since the
// last call, which lets a fault loop know when it has covered them all.
long fail_alloc_after(long n) noexcept;
}  // namespace testhook
#endif

}  // namespace vlk
