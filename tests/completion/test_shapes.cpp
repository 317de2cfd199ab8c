// Sets of random shapes, with counts of every sign, arrays missing at every
// level, and values of every kind: completion, validation and the grid test
// must come back with one of their codes and leave a set that VLKXSFree
// releases.  Run under the sanitizers, this is the proof that no shape makes
// them read or write outside the arrays.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>

#include "capture.hpp"
#include "sets.hpp"

namespace {

using vlktest::Row;
using vlktest::SetBuilder;

class Shapes {
public:
    explicit Shapes(unsigned seed) : rng_(seed) {}

    void fill(SetBuilder &b) {
        b.set.dim = pick(-1, 3);
        b.set.IA = pick(1, 3);
        const int32_t shells = pick(0, 4);
        for (int32_t i = 0; i < shells; ++i) {
            const int32_t nE = pick(-1, 3);
            SVLKXSSH &sh = b.add_shell(pick(-1, 6) == 6 ? 0 : pick(0, 5), nE, chance(0.9));
            for (int32_t j = 0; sh.pE != nullptr && j < nE; ++j) record(b, sh.pE[j]);
        }
    }

private:
    int32_t pick(int32_t lo, int32_t hi) { return std::uniform_int_distribution<int32_t>(lo, hi)(rng_); }
    bool chance(double p) { return std::bernoulli_distribution(p)(rng_); }
    double value() {
        if (chance(0.05)) return std::numeric_limits<double>::quiet_NaN();
        return std::uniform_real_distribution<double>(-0.5, 2.0)(rng_);
    }
    Row row(int32_t n) {
        Row r(static_cast<std::size_t>(n > 0 ? n : 0));
        for (double &v : r) v = value();
        return r;
    }
    double *maybe(SetBuilder &b, int32_t n) { return chance(0.85) ? b.doubles(row(n)) : nullptr; }

    void record(SetBuilder &b, SVLKXSE &e) {
        e.E = value();
        e.sigtot = value();
        e.km = value();
        e.n1 = pick(-1, 3);
        const std::size_t n1 = static_cast<std::size_t>(e.n1 > 0 ? e.n1 : 0);
        e.dv1 = maybe(b, e.n1);
        e.dvSig1 = maybe(b, e.n1);
        e.dvCum1 = maybe(b, e.n1);
        if (!chance(0.7)) return;
        std::vector<int32_t> counts(n1);
        for (int32_t &c : counts) c = pick(-1, 3);
        e.nv2 = b.ints(counts);
        for (double **SVLKXSE::*table : {&SVLKXSE::pdv2, &SVLKXSE::pdvSig2, &SVLKXSE::pdvCum2}) {
            if (!chance(0.85)) continue;
            double **rows = (e.*table) = b.rows(n1);
            for (std::size_t k = 0; k < n1; ++k) rows[k] = counts[k] > 0 ? maybe(b, counts[k]) : nullptr;
        }
    }

    std::mt19937 rng_;
};

TEST(Shapes, EveryShapeEndsInACodeAndReleasesCleanly) {
    const std::set<int32_t> complete_codes = {0, 1, 2, 21, 62};
    int completed = 0;
    for (unsigned seed = 1; seed <= 2000; ++seed) {
        SetBuilder b(0);
        Shapes(seed).fill(b);
        SVLKXS *set = b.hand_over();
        vlktest::Capture cap(stderr);
        const SCMDSTATUS c = VLKXSComplete(set, 0);
        const SCMDSTATUS v = VLKXSIsValid(set, VLKXS_MODE_QUIET);
        const SCMDSTATUS w = VLKXSIsEquivW(set, 0.0, VLKXS_MODE_QUIET);
        cap.finish();
        EXPECT_TRUE(complete_codes.count(c.code)) << "seed " << seed << ": " << c.code;
        EXPECT_TRUE(v.code == 0 || (v.code >= 7 && v.code <= 10) || (v.code >= 55 && v.code <= 60))
            << "seed " << seed << ": " << v.code;
        EXPECT_TRUE(w.code == 0 || w.code == 7) << "seed " << seed;
        completed += c.code == 0;
    }
    EXPECT_GT(completed, 100);  // the shapes reach the whole pass, not only the refusals
}

}  // namespace
