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

// The running integral follows the grid (a descending one gives negative
// values); one point stands for a flat value over a cosine range of 2.
// Nothing is written beyond n, nor for n = 0; strides count elements.
TEST(Vectors, RunningIntegral) {
    const struct {
        V x, y, cum;
    } rows[] = {{{-1, 0, 1}, {1, 2, 1}, {0, 1.5, 3}},
                {{1, 0, -1}, {1, 2, 1}, {0, -1.5, -3}},
                {{0, 1, 3}, {2, 2, 0}, {0, 2, 4}},
                {{5}, {1.5}, {3}}};
    for (const auto &r : rows) {
        V cum(r.x.size() + 1, -7.0);
        const int32_t n = static_cast<int32_t>(r.x.size());
        EXPECT_EQ(vtrapz(r.x.data(), 1, r.y.data(), 1, cum.data(), 1, n), r.cum.back());
        EXPECT_EQ(V(cum.begin(), cum.end() - 1), r.cum);
        EXPECT_EQ(cum.back(), -7.0);
        EXPECT_EQ(vtrapz(r.x.data(), 1, r.y.data(), 1, nullptr, 1, n), r.cum.back());
    }
    double untouched = -7.0;
    EXPECT_EQ(vtrapz(&untouched, 1, &untouched, 1, &untouched, 1, 0), 0.0);
    EXPECT_EQ(untouched, -7.0);
    const V x = {-1, 99, 0, 99, 1}, y = {1, 99, 99, 2, 99, 99, 1};
    V cum(4, -7.0);
    EXPECT_EQ(vtrapz(x.data(), 2, y.data(), 3, cum.data(), 2, 2), 1.5);
    EXPECT_EQ(cum, (V{0, -7, 1.5, -7}));
}

// The mean of x weighted by y; 0 without an integral, x[0] for one point.
TEST(Vectors, FirstMoment) {
    const struct {
        V x, y;
        double mean;
    } rows[] = {{{1, 3}, {1, 1}, 2},     {{0, 1, 2}, {0, 1, 0}, 1}, {{0, 2}, {1, 3}, 6.0 / 4.0}, {{1, 3}, {0, 0}, 0},
                {{1, 3}, {1, -1}, 0}, {{4}, {2}, 4},             {{4}, {0}, 0}};
    for (const auto &r : rows)
        EXPECT_DOUBLE_EQ(vtrapz1(r.x.data(), 1, r.y.data(), 1, nullptr, 1, static_cast<int32_t>(r.x.size())), r.mean)
            << r.x.size() << " points";
}

TEST(Vectors, ScaleTouchesOnlyN) {
    V v = {2, 4, 6, 8}, out(2);
    vsmul(v.data(), 1, 0.5, v.data(), 1, 3);
    EXPECT_EQ(v, (V{1, 2, 3, 8}));
    vsmul(v.data(), 2, -1.0, out.data(), 1, 2);
    EXPECT_EQ(out, (V{-1, -3}));
}

// Random lists with many equal values and the ends of the range come out as
// std::sort has them, in place.
TEST(Vectors, SortMatchesStdSort) {
    std::mt19937_64 rng(42);
    std::uniform_int_distribution<int> value(-1000, 1000);
    const double max = std::numeric_limits<double>::max();
    for (int n : {1, 2, 3, 17, 1000, 5000}) {
        V v(static_cast<std::size_t>(n));
        for (auto &d : v) {
            const int k = value(rng);
            d = k % 50 == 0 ? std::copysign(max, k) : k / 8.0;
        }
        V expected = v;
        std::sort(expected.begin(), expected.end());
        double *p = v.data();
        vshsrtd(&p, 1, 1, n);
        EXPECT_EQ(p, v.data());
        EXPECT_EQ(v, expected) << n;
    }
}

TEST(Vectors, SortNaNsLastAndCompanionsFollow) {
    V key = {2, std::nan(""), 1, 3}, other = {20, 99, 10, 30};
    double *lists[] = {key.data(), other.data()};
    vshsrtd(lists, 2, 1, 4);
    EXPECT_EQ(V(key.begin(), key.end() - 1), (V{1, 2, 3}));
    EXPECT_TRUE(std::isnan(key[3]));
    EXPECT_EQ(other, (V{10, 20, 30, 99}));
}

}  // namespace
