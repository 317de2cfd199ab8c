// Timing helpers of the benchmark programs: user and wall time of a call,
// medians, and a way out that leaves no scratch files behind.
#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace vlkbench {

struct Times {
    double user_ms, wall_ms;
};

inline double user_ms() {
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    return ru.ru_utime.tv_sec * 1e3 + ru.ru_utime.tv_usec * 1e-3;
}

template <class F>
Times timed(F &&f) {
    const double u0 = user_ms();
    const auto w0 = std::chrono::steady_clock::now();
    f();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - w0;
    return {user_ms() - u0, wall.count()};
}

inline double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const std::size_t m = v.size() / 2;
    return v.size() % 2 != 0 ? v[m] : 0.5 * (v[m - 1] + v[m]);
}

// The scratch directory of a program's files, removed on the way out.
inline std::filesystem::path &scratch() {
    static std::filesystem::path dir;
    return dir;
}

[[noreturn]] inline void die(const char *program, const std::string &what) {
    std::fprintf(stderr, "%s: %s\n", program, what.c_str());
    if (!scratch().empty()) std::filesystem::remove_all(scratch());
    std::exit(1);
}

}  // namespace vlkbench
