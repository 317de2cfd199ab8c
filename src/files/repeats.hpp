// The search for repeated values of the reader.
#pragma once

#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/alloc.hpp"
#include "core/walk.hpp"

namespace vlk::xs {

// Finds the first repeat of a value within one section of the file (the
// shells of the file, the energies of a shell, the secondary energies of a
// record) in constant time a value, so that reading stays linear in the size
// of the file.  Values are compared as doubles: 0 and -0 are one value, and
// a NaN repeats nothing.  An open-addressing table with generation stamps:
// starting a section is one increment, and the table is sized once a pass
// for the largest section, at most half full.  The hash is seeded afresh for
// every read, so that no file can be made to collide on purpose.
class Repeats {
public:
    Repeats() = default;
    Repeats(const Repeats &) = delete;
    Repeats &operator=(const Repeats &) = delete;
    ~Repeats() { std::free(slots_); }

    // Room for sections of up to n values; false if the allocation failed.
    bool reserve(int32_t n) noexcept {
        std::size_t want = 16;
        while (want < 2 * vlk::count_of(n)) want *= 2;
        gen_ = 0;
        if (want <= mask_ + 1 && slots_ != nullptr) {
            std::memset(slots_, 0, (mask_ + 1) * sizeof(Slot));
            return true;
        }
        std::free(slots_);
        slots_ = vlk::zalloc_n<Slot>(want);
        mask_ = slots_ != nullptr ? want - 1 : 0;
        if (seed_ == 0)
            seed_ = mix(reinterpret_cast<std::uintptr_t>(slots_) ^
                        static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count())) |
                    1;
        return slots_ != nullptr;
    }
    void next_section() noexcept { ++gen_; }
    // True if `v` stood before in this section; else it is noted.
    bool seen(double v) noexcept {
        if (v != v) return false;
        if (v == 0.0) v = 0.0;  // -0 is 0
        const uint64_t key = std::bit_cast<uint64_t>(v);
        for (std::size_t i = mix(key ^ seed_) & mask_;; i = (i + 1) & mask_) {
            Slot &s = slots_[i];
            if (s.gen != gen_ + 1) {
                s.key = key;
                s.gen = gen_ + 1;
                return false;
            }
            if (s.key == key) return true;
        }
    }

private:
    struct Slot {
        uint64_t key;
        uint32_t gen;  // 0: never used; else the section's stamp + 1
    };
    static uint64_t mix(uint64_t x) noexcept {  // the finaliser of splitmix64
        x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ull;
        x = (x ^ (x >> 27)) * 0x94d049bb133111ebull;
        return x ^ (x >> 31);
    }
    Slot *slots_ = nullptr;
    std::size_t mask_ = 0;
    uint32_t gen_ = 0;
    uint64_t seed_ = 0;
};

}  // namespace vlk::xs
