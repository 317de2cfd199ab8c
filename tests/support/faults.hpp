// The allocation fault loop: an operation runs with its n-th allocation
// failing, n = 1, 2, ..., until it succeeds, so that every clean-up path
// runs under the sanitizers.
#pragma once

#include <gtest/gtest.h>

#include "core/alloc.hpp"
#include "vlkxs.h"

namespace vlktest {

// `attempt()` returns the operation's status; `on_failure(status, n)` checks
// what a failed attempt left behind.  Returns the number of failed attempts.
template <class Attempt, class OnFailure>
int fault_loop(Attempt &&attempt, OnFailure &&on_failure, long limit = 100000) {
    int failures = 0;
    for (long n = 1; n <= limit; ++n) {
        vlk::testhook::fail_alloc_after(n);
        const SCMDSTATUS s = attempt();
        vlk::testhook::fail_alloc_after(0);
        if (s.code == 0) return failures;
        ++failures;
        on_failure(s, n);
    }
    ADD_FAILURE() << "no success within " << limit << " allocations";
    return failures;
}

}  // namespace vlktest
