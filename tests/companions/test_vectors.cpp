// Vector routines: running trapezoidal integral, first moment, scaling,
// sorting.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "vlkxs.h"

namespace {

using V = std::vector<double>;
constexpr double kMax = std::numeric_limits<double>::max();

struct Trapz {
    V x, y, cum;  // cum: expected running integral
};

TEST(Vectors, TrapzRunsInTheDirectionOfTheGrid) {
    const Trapz rows[] = {
        {{-1, 0, 1}, {1, 2, 1}, {0, 1.5, 3}},
        {{1, 0, -1}, {1, 2, 1}, {0, -1.5, -3}},
        {{0, 1, 3}, {2, 2, 0}, {0, 2, 4}},
        {{5}, {1.5}, {3}},  // one point: flat over a cosine range of 2
    };
    for (const auto &r : rows) {
        V cum(r.x.size() + 1, -7.0);
        const int32_t n = static_cast<int32_t>(r.x.size());
        EXPECT_EQ(vtrapz(r.x.data(), 1, r.y.data(), 1, cum.data(), 1, n), r.cum.back());
        EXPECT_EQ(V(cum.begin(), cum.end() - 1), r.cum);
        EXPECT_EQ(cum.back(), -7.0);  // nothing beyond n
        EXPECT_EQ(vtrapz(r.x.data(), 1, r.y.data(), 1, nullptr, 1, n), r.cum.back());
    }
    double untouched = -7.0;
    const double one = 1.0;
    EXPECT_EQ(vtrapz(&one, 1, &one, 1, &untouched, 1, 0), 0.0);
    EXPECT_EQ(untouched, -7.0);
}

TEST(Vectors, StridesCountElements) {
    const V x = {-1, 99, 0, 99, 1};
    const V y = {1, 99, 99, 2, 99, 99, 1};
    V cum(4, -7.0);
    EXPECT_EQ(vtrapz(x.data(), 2, y.data(), 3, cum.data(), 2, 2), 1.5);
    EXPECT_EQ(cum, (V{0, -7, 1.5, -7}));
}

TEST(Vectors, FirstMoment) {
    const struct {
        V x, y;
        double mean;
    } rows[] = {
        {{1, 3}, {1, 1}, 2},
        {{0, 1, 2}, {0, 1, 0}, 1},
        {{0, 2}, {1, 3}, (0.5 * 2 * (0 + 6)) / (0.5 * 2 * 4)},
        {{1, 3}, {0, 0}, 0},  // no integral: 0
        {{1, 3}, {1, -1}, 0},
        {{4}, {2}, 4},
        {{4}, {0}, 0},
    };
    for (const auto &r : rows)
        EXPECT_DOUBLE_EQ(vtrapz1(r.x.data(), 1, r.y.data(), 1, nullptr, 1, static_cast<int32_t>(r.x.size())), r.mean)
            << r.x.size() << " points";
}

TEST(Vectors, ScaleInPlaceTouchesOnlyN) {
    V v = {2, 4, 6, 8};
    vsmul(v.data(), 1, 0.5, v.data(), 1, 3);
    EXPECT_EQ(v, (V{1, 2, 3, 8}));
    V out(2);
    vsmul(v.data(), 2, -1.0, out.data(), 1, 2);
    EXPECT_EQ(out, (V{-1, -3}));
}

TEST(Vectors, SortAscendingKeepsEqualValues) {
    const struct {
        V in, out;
    } rows[] = {
        {{3, 1, 2}, {1, 2, 3}},
        {{2, 1, 2, 1}, {1, 1, 2, 2}},
        {{kMax, -kMax, 0, -0.5}, {-kMax, -0.5, 0, kMax}},
        {{5}, {5}},
    };
    for (auto r : rows) {
        double *p = r.in.data();
        vshsrtd(&p, 1, 1, static_cast<int32_t>(r.in.size()));
        EXPECT_EQ(p, r.in.data());
        EXPECT_EQ(r.in, r.out);
    }
}

TEST(Vectors, SortNaNsLastAndCompanionsFollow) {
    V key = {2, std::nan(""), 1, 3};
    V other = {20, 99, 10, 30};
    double *lists[] = {key.data(), other.data()};
    vshsrtd(lists, 2, 1, 4);
    EXPECT_EQ(V(key.begin(), key.end() - 1), (V{1, 2, 3}));
    EXPECT_TRUE(std::isnan(key[3]));
    EXPECT_EQ(other, (V{10, 20, 30, 99}));
}

TEST(Vectors, SortMatchesStdSortOnLongLists) {
    std::mt19937_64 rng(42);
    std::uniform_real_distribution<double> value(-1e6, 1e6);
    for (int n : {2, 17, 1000, 5000}) {
        V v(static_cast<std::size_t>(n));
        for (auto &d : v) d = std::round(value(rng) / 1000);  // many equal values
        V expected = v;
        std::sort(expected.begin(), expected.end());
        double *p = v.data();
        vshsrtd(&p, 1, 1, n);
        EXPECT_EQ(v, expected) << n;
    }
}

}  // namespace
