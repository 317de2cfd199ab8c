// What the projectile and the target companion share: the release of an
// owning record, its duplication, and printing of a text that may be null.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "core/status.hpp"
#include "core/words.hpp"
#include "vlkxs.h"

namespace vlk::companion {

using vlk::printable;

// Releases the blocks of a record that owns them (its `own` bit set) and
// leaves the record zero-filled.
template <class Rec>
void release(Rec &r, uint32_t own_bit, std::initializer_list<void *> blocks) noexcept {
    if ((r.own & own_bit) != 0)
        for (void *p : blocks) std::free(p);
    std::memset(&r, 0, sizeof r);
}

// Duplicates `src` into `dst`, which may be `src` itself or a byte copy of
// it: its pointers are overwritten, never released.  VLKXS_MODE_SHALLOW
// borrows everything; otherwise `deep(copy)` replaces the pointers of the
// byte copy with blocks of its own, and on failure releases what it made and
// returns false: `dst` is then zero-filled and the status says code 1.
template <class Rec, class Deep>
void duplicate(SCMDSTATUS &s, Rec *dst, const Rec *src, int32_t mode, uint32_t own_bit, Deep &&deep) noexcept {
    if (dst == nullptr || src == nullptr) return;
    Rec copy;
    std::memcpy(&copy, src, sizeof copy);
    if ((mode & VLKXS_MODE_SHALLOW) != 0) {
        copy.own &= ~own_bit;
    } else if (deep(copy)) {
        copy.own |= own_bit;
    } else {
        std::memset(dst, 0, sizeof *dst);
        fail(s, VLKXS_C_RUNTIME);
        return;
    }
    *dst = copy;
    succeed(s);
}

}  // namespace vlk::companion
