// Grids, quadrature and table building shared by the model calculators.
#include "models/model.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vlk::models {

namespace {

// Neighbouring points of a logarithmic secondary grid differ by this factor
// at most.  The trapezoidal sum of a power law x^-2 over such steps is high
// by (r + 1/r)/2 - 1 = 4.4e-4, which keeps the tables within 1e-3 of the
// integrals of the models.
constexpr double kSecondaryRatio = 1.03;

// Closest neighbours that a written file can keep apart: %G prints six
// significant digits, so values closer than a few parts in 1e6 may print
// alike and read back as repeats.
constexpr double kDistinct = 5.0e-5;

// More primary energies than this is a request that no memory holds.
constexpr double kMaxEnergies = 1.0e7;

// Relative steps below this would print alike in six digits.
constexpr double kMinRelchange = 1.0e-4;

bool open_end(double x) noexcept { return !(std::fabs(x) < kOpen); }

// Primary energies that the models can take (keV, or MeV/u for ions):
// beyond these the kinematics of the elastic model overflow a double.
constexpr double kLowest = 1.0e-6;
constexpr double kHighest = 1.0e9;
bool too_low(double E) noexcept { return !(E >= kLowest); }
bool too_high(double E) noexcept { return !(E <= kHighest); }

// Sorts and removes exact repeats; returns the new count.
int32_t sort_unique(double *p, int32_t n) noexcept {
    std::sort(p, p + n);
    return static_cast<int32_t>(std::unique(p, p + n) - p);
}

}  // namespace

Fault primary_energies(const SVLKXSCALC &rq, Buffer<double> &out, int32_t &n) {
    n = 0;
    if (rq.pE != nullptr && rq.nE >= 1) {
        if (!out.reserve(count_of(rq.nE))) return {VLKXS_C_RUNTIME};
        std::copy(rq.pE, rq.pE + rq.nE, out.data());
        for (int32_t i = 0; i < rq.nE; ++i)
            if (std::isnan(out[i])) return {VLKXS_C_RANGE, "Emin"};
        n = sort_unique(out.data(), rq.nE);
        if (too_low(out[0])) return {VLKXS_C_RANGE, "Emin"};
        if (too_high(out[n - 1])) return {VLKXS_C_RANGE, "Emax"};
        return {};
    }
    double lo = rq.Emin, hi = rq.Emax;
    if (hi < lo) std::swap(lo, hi);
    if (too_low(lo)) return {VLKXS_C_RANGE, "Emin"};
    if (too_high(hi)) return {VLKXS_C_RANGE, "Emax"};
    const double rc = rq.relchange > 0.0 ? std::max(rq.relchange, kMinRelchange) : 0.1;
    // Equal steps in ln E, as many as the factor 1 + relchange needs, and
    // one at least between two different ends.
    double steps = std::ceil(std::log(hi / lo) / std::log1p(rc) - 1e-9);
    if (lo < hi) steps = std::max(steps, 1.0);
    if (!(steps < kMaxEnergies)) return {VLKXS_C_NPRIMARY};
    const auto count = static_cast<int32_t>(steps) + 1;
    if (!out.reserve(count_of(count))) return {VLKXS_C_RUNTIME};
    const double step = count > 1 ? std::log(hi / lo) / (count - 1) : 0.0;
    for (int32_t i = 0; i < count; ++i) out[i] = lo * std::exp(step * i);
    out[count - 1] = hi;
    n = sort_unique(out.data(), count);
    return {};
}

double angle_variable(double degrees) noexcept {
    if (open_end(degrees)) return degrees < 0 ? 0.0 : 2.0;
    const double half = 0.5 * std::clamp(degrees, 0.0, 180.0) * kPi / 180.0;
    return 2.0 * std::sin(half) * std::sin(half);
}

namespace {

Axis axis_of(double lo, double hi, const double *list, int32_t n) noexcept {
    Axis a;
    if (list != nullptr && n >= 1) {
        a.list = std::span<const double>(list, count_of(n));
        return a;
    }
    if (lo == 0.0 && hi == 0.0) return a;  // never set
    a.lo = lo;
    a.hi = hi;
    return a;
}

}  // namespace

Axis secondary_axis(const SVLKXSCALC &rq) noexcept { return axis_of(rq.Wmin, rq.Wmax, rq.pW, rq.nW); }

Axis angle_axis(const SVLKXSCALC &rq) noexcept {
    Axis a = axis_of(rq.Amin, rq.Amax, rq.pA, rq.nA);
    // Angles become 1 - cos; the list is converted by the grid.
    if (a.list.empty()) {
        a.lo = angle_variable(a.lo);
        a.hi = angle_variable(a.hi);
    }
    return a;
}

int32_t axis_grid(const Axis &axis, double top, double fine, std::span<const double> knots, Buffer<double> &out) {
    if (!(top > 0.0)) top = 0.0;
    if (!axis.list.empty()) {
        const std::size_t n = axis.list.size();
        if (!out.reserve(n)) return -1;
        for (std::size_t i = 0; i < n; ++i) {
            const double x = axis.list[i];
            out[i] = open_end(x) ? (x < 0 ? 0.0 : top) : std::max(x, 0.0);
        }
        return sort_unique(out.data(), static_cast<int32_t>(n));
    }
    const double lo = open_end(axis.lo) ? 0.0 : std::clamp(axis.lo, 0.0, top);
    const double hi = open_end(axis.hi) ? top : std::clamp(axis.hi, 0.0, top);
    if (!(hi > lo)) {
        if (!out.reserve(1)) return -1;
        out[0] = std::min(lo, hi);
        return 1;
    }
    const double start = lo > 0.0 ? lo : std::min(fine, 0.01 * hi);
    const auto geometric = static_cast<int32_t>(std::ceil(std::log(hi / start) / std::log(kSecondaryRatio))) + 1;
    const std::size_t room = static_cast<std::size_t>(geometric) + 1 + 2 * knots.size();
    if (!out.reserve(room)) return -1;
    int32_t n = 0;
    if (lo == 0.0) out[n++] = 0.0;
    const double step = geometric > 1 ? std::log(hi / start) / (geometric - 1) : 0.0;
    for (int32_t i = 0; i < geometric; ++i) out[n++] = start * std::exp(step * i);
    out[n - 1] = hi;
    // Knot pairs, and then no other point that would print alike with one.
    const int32_t plain = n;
    // A knot next to the upper end needs no pair: the interval beyond it is
    // too short to matter.
    const double below_hi = hi * (1.0 - kDistinct);
    for (const double c : knots) {
        if (!(c > lo && c < below_hi)) continue;
        out[n++] = c;
        if (c * (1.0 + kKnotStep) < below_hi) out[n++] = c * (1.0 + kKnotStep);
    }
    const auto near_knot = [&](double x) {
        for (int32_t k = plain; k < n; ++k)
            if (std::fabs(x - out[k]) <= kDistinct * out[k]) return true;
        return false;
    };
    int32_t kept = 0;
    for (int32_t i = 0; i < plain; ++i)
        if (i == plain - 1 || out[i] == 0.0 || !near_knot(out[i])) out[kept++] = out[i];
    for (int32_t k = plain; k < n; ++k) out[kept++] = out[k];
    return sort_unique(out.data(), kept);
}

// --- quadrature ------------------------------------------------------------

namespace {

struct Simpson {
    double (*f)(double, const void *);
    const void *ctx;
    double scale;
    double tolerance = 0.0;

    // The integrand in t = ln(1 + x / scale): f(x) dx/dt.
    double g(double t) const {
        const double e = std::exp(t);
        return f(scale * (e - 1.0), ctx) * scale * e;
    }

    double refine(double a, double b, double fa, double fm, double fb, double whole, int depth) const {
        const double m = 0.5 * (a + b);
        const double lm = g(0.5 * (a + m)), rm = g(0.5 * (m + b));
        const double left = (m - a) / 6.0 * (fa + 4.0 * lm + fm);
        const double right = (b - m) / 6.0 * (fm + 4.0 * rm + fb);
        const double both = left + right;
        if (depth <= 0 || std::fabs(both - whole) <= 15.0 * tolerance * (b - a)) return both + (both - whole) / 15.0;
        return refine(a, m, fa, lm, fm, left, depth - 1) + refine(m, b, fm, rm, fb, right, depth - 1);
    }
};

}  // namespace

double integrate_peaked(double (*f)(double, const void *), const void *ctx, double top, double scale) {
    if (!(top > 0.0) || !(scale > 0.0)) return 0.0;
    Simpson s{f, ctx, scale};
    const double end = std::log1p(top / scale);
    // A first estimate on 64 panels sets the tolerance per unit of t.
    constexpr int kPanels = 64;
    const double h = end / kPanels;
    double rough = 0.0;
    for (int i = 0; i < kPanels; ++i) {
        const double a = i * h, b = a + h;
        rough += h / 6.0 * (s.g(a) + 4.0 * s.g(a + 0.5 * h) + s.g(b));
    }
    s.tolerance = 1e-8 * std::fabs(rough) / end;
    if (s.tolerance == 0.0) return rough;
    double sum = 0.0;
    for (int i = 0; i < kPanels; ++i) {
        const double a = i * h, b = a + h, m = a + 0.5 * h;
        const double fa = s.g(a), fm = s.g(m), fb = s.g(b);
        sum += s.refine(a, b, fa, fm, fb, h / 6.0 * (fa + 4.0 * fm + fb), 30);
    }
    return sum;
}

// --- the set under construction ------------------------------------------

void Tables::release(SVLKXS &set) noexcept {
    if (set.pShell == nullptr && set.nShell == 0) return;
    // VLKXSFree releases the tree of a set: hand it the shells alone.
    SVLKXS shells;
    VLKXSInit(&shells, 0);
    shells.pShell = set.pShell;
    shells.nShell = set.nShell;
    VLKXSFree(&shells, 0);
    set.pShell = nullptr;
    set.nShell = 0;
    set.flag &= ~VLKXS_FLAG_READY;
}

bool Tables::shells(int32_t n, int32_t first, std::span<const double> energies) noexcept {
    if (!make(set_.pShell, n)) return false;
    set_.nShell = n;
    const auto nE = static_cast<int32_t>(energies.size());
    for (int32_t i = 0; i < n; ++i) {
        SVLKXSSH &sh = set_.pShell[i];
        sh.shell = first + i;
        if (!make(sh.pE, nE)) return false;
        sh.nE = nE;
        for (int32_t j = 0; j < nE; ++j) sh.pE[j].E = energies[static_cast<std::size_t>(j)];
    }
    return true;
}

double *Tables::table(SVLKXSE &e, std::span<const double> grid) noexcept {
    const auto n = static_cast<int32_t>(grid.size());
    if (!make(e.dv1, n) || !make(e.dvSig1, n)) return nullptr;
    e.n1 = n;
    std::copy(grid.begin(), grid.end(), e.dv1);
    return e.dvSig1;
}

Fault orbitals(const SVLKTARG &targ, Buffer<Orbital> &out, int32_t &n) {
    n = 0;
    if (targ.pShell == nullptr || targ.nShell < 1) return {VLKXS_C_XSTARG};
    if (!out.reserve(count_of(targ.nShell))) return {VLKXS_C_RUNTIME};
    for (int32_t k = 1; k <= targ.nShell; ++k) {
        const SVLKTARGSH &row = targ.pShell[k];
        const Orbital o{row.Ebind * kEVPerKeV, row.Ukin * kEVPerKeV, row.occ};
        if (!(o.B > 0.0 && o.U >= 0.0 && o.N > 0.0) || !std::isfinite(o.B + o.U + o.N)) return {VLKXS_C_XSTARG};
        out[n++] = o;
    }
    return {};
}

bool is_water(const SVLKTARG &targ) noexcept {
    return targ.name != nullptr && iequals(targ.name, "H2O") && targ.nShell == 5;
}

void level_means(SVLKXS &set) noexcept {
    if (set.nShell < 2) return;
    const SVLKXSSH &sum = set.pShell[set.nShell - 1];
    for (int32_t j = 0; j < sum.nE; ++j) {
        double weighted = 0.0, sigma = 0.0, lowest = kOpen;
        for (int32_t i = 0; i + 1 < set.nShell; ++i) {
            const SVLKXSE &e = set.pShell[i].pE[j];
            weighted += e.sigtot * e.km;
            sigma += e.sigtot;
            lowest = std::min(lowest, e.km);
        }
        sum.pE[j].km = sigma > 0.0 ? weighted / sigma : lowest;
    }
}

double charge_squared(const SVLKPROJ &proj) noexcept {
    const double z = proj.charge != 0.0 ? proj.charge : 1.0;
    return z * z;
}

}  // namespace vlk::models
