// Several xs files side by side: each is read, completed, validated, listed
// and written, then the totals of their sum shells are printed at common
// energies, interpolated by the library.
//
//   compare PREFIX FILE...
//
// A C++ user keeps a set in a small owner of its own, so that every way out
// of a scope releases it; the library's records stay plain C.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "vlkxs.h"

namespace {

// Turns a failed status into an exception; the library has reported it.
void check(SCMDSTATUS s, const std::string &what) {
    if ((s.level & VLKXS_LEVEL_SEVERE_MASK) != 0) throw std::runtime_error(what + ": code " + std::to_string(s.code));
}

class Set {
public:
    explicit Set(const std::string &path) {
        VLKXSInit(&set_, 0);
        check(VLKXSRead(&set_, path.c_str(), 0), path);
        check(VLKXSComplete(&set_, 0), path);
        check(VLKXSIsValid(&set_, 0), path);
    }
    ~Set() { VLKXSFree(&set_, 0); }
    Set(const Set &) = delete;
    Set &operator=(const Set &) = delete;

    SVLKXS *get() { return &set_; }
    const SVLKXSSH &sum() const { return set_.pShell[set_.nShell - 1]; }
    double sigma(double E) const {  // 0 outside the tabulated energies
        double s = 0.0;
        VLKXSSigma(&set_, set_.nShell - 1, E, &s, VLKXS_MODE_QUIET);
        return s;
    }

private:
    SVLKXS set_{};
};

// The file name without its folders, for a column head.
std::string base_name(const std::string &path) { return path.substr(path.find_last_of('/') + 1); }

}  // namespace

int main(int argc, char **argv) try {
    if (argc < 3) {
        std::fprintf(stderr, "usage: compare PREFIX FILE...\n");
        return 2;
    }
    std::vector<std::unique_ptr<Set>> sets;
    double lo = 0.0, hi = 1e300;  // energies that every set covers
    for (int i = 2; i < argc; ++i) {
        auto &s = *sets.emplace_back(std::make_unique<Set>(argv[i]));
        check(VLKXSList(s.get(), 0), argv[i]);
        check(VLKXSWrite(s.get(), argv[1], 0), argv[i]);
        if (const SVLKXSSH &sum = s.sum(); sum.nE > 0) {
            lo = std::max(lo, sum.pE[0].E);
            hi = std::min(hi, sum.pE[sum.nE - 1].E);
        }
    }
    std::printf("%12s", "E");
    for (int i = 2; i < argc; ++i) std::printf(" %14.14s", base_name(argv[i]).c_str());
    std::printf("\n");
    for (int k = 0; k <= 8 && lo > 0.0 && lo <= hi; ++k) {
        const double E = lo * std::pow(hi / lo, k / 8.0);
        std::printf("%12.5g", E);
        for (const auto &s : sets) std::printf(" %14.5g", s->sigma(E));
        std::printf("\n");
    }
    return 0;
} catch (const std::exception &e) {
    std::fprintf(stderr, "compare: %s\n", e.what());
    return 1;
}
