// The walk over the shells of a set and the energy records of a shell.  The
// guards live here, once: a null array or a count of 0 or below is an empty
// level, so a set of any stage of completeness is walked safely.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "vlkxs.h"

namespace vlk {

// Elements of a level: 0 for a count of 0 or below.
constexpr std::size_t count_of(int32_t n) noexcept { return n > 0 ? static_cast<std::size_t>(n) : 0; }

// The shells of a set, const or not; empty without an array.
template <class Set>
auto shells(Set &set) noexcept {
    using Shell = std::conditional_t<std::is_const_v<Set>, const SVLKXSSH, SVLKXSSH>;
    return set.pShell != nullptr ? std::span<Shell>(set.pShell, count_of(set.nShell)) : std::span<Shell>();
}

// The energy records of a shell; empty without an array.
template <class Shell>
auto records(Shell &sh) noexcept {
    using Record = std::conditional_t<std::is_const_v<Shell>, const SVLKXSE, SVLKXSE>;
    return sh.pE != nullptr ? std::span<Record>(sh.pE, count_of(sh.nE)) : std::span<Record>();
}

// Calls f(record) for every energy record of every shell, in array order.
// An f that returns bool stops the walk with false; the walk then returns
// false too.
template <class Set, class F>
bool for_each_record(Set &set, F &&f) {
    for (auto &sh : shells(set))
        for (auto &e : records(sh)) {
            if constexpr (std::is_same_v<decltype(f(e)), bool>) {
                if (!f(e)) return false;
            } else {
                f(e);
            }
        }
    return true;
}

}  // namespace vlk
