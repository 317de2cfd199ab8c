// Vector routines on strided arrays of doubles: the running trapezoidal
// integral, the first moment, scaling and sorting.  Strides count elements;
// they allocate nothing.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "vlkxs.h"

namespace {

// A strided view of n doubles; stride 1 or more.
template <class T>
struct Strided {
    T *p;
    std::ptrdiff_t step;
    T &operator[](std::ptrdiff_t i) const { return p[i * step]; }
};

template <class T>
Strided<T> strided(T *p, int32_t inc) {
    return {p, inc > 0 ? static_cast<std::ptrdiff_t>(inc) : 1};
}

// NaNs sort after every number and equal to each other, so the order is a
// strict weak one and no comparison-based step can misbehave on them.
bool before(double a, double b) { return a < b || (!std::isnan(a) && std::isnan(b)); }

// Running trapezoidal integral of f(i) over the grid X, written to C unless
// it is null; returns the whole integral.
//
// A grid of one point has no width to integrate over.  Its value is taken as
// the height of a distribution that is flat over the whole cosine range
// [-1, 1], the only range that a single angle can stand for: the integral
// is twice the value.  The completion multiplies it by 2 pi, which gives 4 pi
// times the value, the integral over the full solid angle of an isotropic
// distribution.
template <class F>
double running_integral(Strided<const double> X, F &&f, Strided<double> C, int32_t n) {
    if (n == 1) {
        if (C.p != nullptr) C[0] = 2.0 * f(0);
        return 2.0 * f(0);
    }
    double sum = 0.0;
    if (C.p != nullptr) C[0] = 0.0;
    for (std::ptrdiff_t i = 1; i < n; ++i) {
        sum += 0.5 * (X[i] - X[i - 1]) * (f(i) + f(i - 1));
        if (C.p != nullptr) C[i] = sum;
    }
    return sum;
}

}  // namespace

double vtrapz(const double *x, int32_t incx, const double *y, int32_t incy, double *cum, int32_t incc, int32_t n) {
    if (n < 1 || x == nullptr || y == nullptr) return 0.0;
    const auto Y = strided(y, incy);
    return running_integral(strided(x, incx), [&](std::ptrdiff_t i) { return Y[i]; }, strided(cum, incc), n);
}

// The integral of x*y over that of y, both by the same quadrature; a single
// point is its own mean.  A distribution whose integral is 0 has no mean: 0
// is returned, which adds nothing where the caller weights it by that
// integral.
double vtrapz1(const double *x, int32_t incx, const double *y, int32_t incy, double *cum, int32_t incc, int32_t n) {
    if (n < 1 || x == nullptr || y == nullptr) return 0.0;
    const auto X = strided(x, incx);
    const auto Y = strided(y, incy);
    const double moment = running_integral(X, [&](std::ptrdiff_t i) { return X[i] * Y[i]; }, strided(cum, incc), n);
    const double norm = running_integral(X, [&](std::ptrdiff_t i) { return Y[i]; }, strided<double>(nullptr, 1), n);
    return norm != 0.0 ? moment / norm : 0.0;
}

void vsmul(double *v, int32_t incv, double s, double *out, int32_t inco, int32_t n) {
    if (v == nullptr || out == nullptr) return;
    const auto V = strided(v, incv);
    const auto O = strided(out, inco);
    for (std::ptrdiff_t i = 0; i < n; ++i) O[i] = V[i] * s;
}

// `list` is an array of `nvec` vector pointers; the first vector is sorted
// ascending and the others are permuted along with it (nvec 1: `list` is the
// address of the one pointer).  A shell sort over Ciura's gaps: in place, no
// allocation, and fast enough for the short lists it serves.  Equal values
// all stay; NaNs end up last.
void vshsrtd(double **list, int32_t nvec, int32_t stride, int32_t n) {
    if (list == nullptr || n < 2) return;
    if (nvec < 1) nvec = 1;
    for (int32_t v = 0; v < nvec; ++v)
        if (list[v] == nullptr) return;
    const std::ptrdiff_t step = stride > 0 ? stride : 1;
    auto at = [&](int32_t v, std::ptrdiff_t i) -> double & { return list[v][i * step]; };

    static constexpr std::ptrdiff_t kGaps[] = {701, 301, 132, 57, 23, 10, 4, 1};
    std::ptrdiff_t first_gap = 701;
    while (first_gap * 9 / 4 < n) first_gap = first_gap * 9 / 4;  // extend Ciura's list
    for (std::ptrdiff_t gap = first_gap;;) {
        for (std::ptrdiff_t i = gap; i < n; ++i) {
            for (std::ptrdiff_t j = i; j >= gap && before(at(0, j), at(0, j - gap)); j -= gap)
                for (int32_t v = 0; v < nvec; ++v) std::swap(at(v, j), at(v, j - gap));
        }
        if (gap == 1) break;
        std::ptrdiff_t next = 1;
        if (gap > 701) {
            next = gap * 4 / 9;
        } else {
            for (std::ptrdiff_t g : kGaps)
                if (g < gap) {
                    next = g;
                    break;
                }
        }
        gap = next;
    }
}
