// Cross sections at any primary energy, and Monte Carlo sampling of the
// shell, the secondary energy and the emission cosine from the cumulated
// tables of a completed set.
//
// Between two energy records every quantity is interpolated in ln E, so a
// total cross section runs log-log (linear where either value is 0) and a
// sampled value is the weighted mean of the two records' quantiles at the
// same u: each record's inverse table is non-decreasing in u, so their mean
// is too, and at a record's own energy the weight of the other is exactly 0.
// Nothing here writes to the set or allocates: many threads may sample one
// set at once.
#include "core/core.hpp"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// The last of n ascending keys at or below v, the first being so: halving
// steps without branches, for the searches that every call makes.
template <class T, class Key>
int32_t last_at_or_below(const T *p, int32_t n, double v, Key key) noexcept {
    const T *base = p;
    while (n > 1) {
        const int32_t half = n / 2;
        base = key(base[half]) <= v ? base + half : base;
        n -= half;
    }
    return static_cast<int32_t>(base - p);
}

// Where E lies among the records of a shell: the largest j with E_j <= E,
// and the weight f of record j + 1 in ln E (0 at E_j itself and at the last
// record; linear in E where E_j is 0).
struct Bracket {
    const SVLKXSE *r = nullptr;
    int32_t j = 0;
    double f = 0.0;
    // The weight in E, for values that can't be interpolated in logarithms.
    double linear(double E) const noexcept { return f == 0.0 ? 0.0 : (E - r[j].E) / (r[j + 1].E - r[j].E); }
};

enum class Where { Inside, Outside, NoRecords };

[[gnu::always_inline]] inline Where bracket(const SVLKXSSH &sh, double E, Bracket &b) noexcept {
    const SVLKXSE *r = sh.pE;
    const int32_t n = sh.nE;
    if (r == nullptr || n < 1) return Where::NoRecords;
    if (!(E >= r[0].E && E <= r[n - 1].E)) return Where::Outside;
    const int32_t j = last_at_or_below(r, n, E, [](const SVLKXSE &e) { return e.E; });
    b.r = r;
    b.j = j;
    b.f = 0.0;
    if (j + 1 < n && E != r[j].E) {
        const double a = r[j].E, c = r[j + 1].E;
        b.f = a > 0.0 ? std::log(E / a) / std::log(c / a) : (E - a) / (c - a);
    }
    return Where::Inside;
}

// A record's value at E: log-log between the neighbours, linear in E where
// either is 0, and the record's own value at its energy.
double between(double a, double c, const Bracket &b, double E) noexcept {
    if (b.f == 0.0) return a;
    if (a > 0.0 && c > 0.0) return a * std::exp(b.f * std::log(c / a));
    return a + b.linear(E) * (c - a);
}

// The grid value at u on the step of a cumulated table that begins at k.
[[gnu::always_inline]] inline double at_step(const double *x, const double *cum, int32_t n, int32_t k,
                                             double u) noexcept {
    return k == n - 1 ? x[k] : x[k] + (u - cum[k]) * (x[k + 1] - x[k]) / (cum[k + 1] - cum[k]);
}

// The point where a normalised cumulated table reaches u, linear between
// grid points.  A table over a descending grid is read at 1 - u, so that
// the result grows with u whichever way the grid runs.  False for a table
// that never rises (a cross section of 0).
bool invert(const double *x, const double *cum, int32_t n, double u, double &out) noexcept {
    if (x == nullptr || cum == nullptr || n < 1 || !(cum[n - 1] > 0.0)) return false;
    if (x[0] > x[n - 1]) u = 1.0 - u;
    if (!(cum[0] <= u)) {
        out = x[0];
        return true;
    }
    // cum[k] <= u < cum[k + 1]: a rising step, never a flat one.
    out = at_step(x, cum, n, last_at_or_below(cum, n, u, [](double c) { return c; }), u);
    return true;
}

// Two records' first-level tables read at one u, as invert reads each, when
// both are of one length, ascending, rising and at or below u at their
// start (the common case): the two searches share one loop, so that the
// loads of one overlap those of the other.  False leaves it to invert.
bool invert_pair(const SVLKXSE &a, const SVLKXSE &c, double u, double &va, double &vc) noexcept {
    const int32_t n = a.n1;
    if (n != c.n1 || n < 2 || a.dv1 == nullptr || a.dvCum1 == nullptr || c.dv1 == nullptr || c.dvCum1 == nullptr)
        return false;
    const double *ca = a.dvCum1, *cc = c.dvCum1;
    if (!(ca[n - 1] > 0.0 && cc[n - 1] > 0.0 && ca[0] <= u && cc[0] <= u) || a.dv1[0] > a.dv1[n - 1] ||
        c.dv1[0] > c.dv1[n - 1])
        return false;
    const double *pa = ca, *pc = cc;
    for (int32_t m = n; m > 1;) {
        const int32_t half = m / 2;
        pa = pa[half] <= u ? pa + half : pa;
        pc = pc[half] <= u ? pc + half : pc;
        m -= half;
    }
    va = at_step(a.dv1, ca, n, static_cast<int32_t>(pa - ca), u);
    vc = at_step(c.dv1, cc, n, static_cast<int32_t>(pc - cc), u);
    return true;
}

// Outcome of sampling one record: a value, no table (34) or an empty one.
enum class Got { Value, Missing, Empty };

// A value sampled at each of the two records around E, mixed in ln E; a
// record whose table is empty leaves the other alone.
template <class PerRecord>
Got mix(const SVLKXSSH &sh, const Bracket &b, PerRecord &&sample, double &out) noexcept {
    double v0 = 0.0, v1 = 0.0;
    const Got g0 = sample(sh.pE[b.j], v0);
    if (g0 == Got::Missing) return g0;
    if (b.f == 0.0) {
        out = v0;
        return g0;
    }
    const Got g1 = sample(sh.pE[b.j + 1], v1);
    if (g1 == Got::Missing) return g1;
    if (g0 == Got::Empty && g1 == Got::Empty) return Got::Empty;
    out = g0 == Got::Empty ? v1 : g1 == Got::Empty ? v0 : v0 + b.f * (v1 - v0);
    return Got::Value;
}

// One record's first-level table read at u.
Got first_level(const SVLKXSE &r, double u, double &v) noexcept {
    if (r.dv1 == nullptr || r.dvCum1 == nullptr || r.n1 < 1) return Got::Missing;
    return invert(r.dv1, r.dvCum1, r.n1, u, v) ? Got::Value : Got::Empty;
}

int32_t code_of(Got g) noexcept { return g == Got::Missing ? VLKXS_C_DBINIT : VLKXS_C_NOXS; }

bool unit_interval(double u) noexcept { return u >= 0.0 && u < 1.0; }

// The shell at index ish and the bracket of E in it, or the code of the
// failure.
[[gnu::always_inline]] inline int32_t locate(const SVLKXS &set, int32_t ish, double E, const SVLKXSSH *&sh,
                                             Bracket &b) noexcept {
    if (set.pShell == nullptr || ish < 0 || ish >= set.nShell) return VLKXS_C_NSHELL;
    sh = &set.pShell[ish];
    switch (bracket(*sh, E, b)) {
        case Where::Inside: return VLKXS_C_OK;
        case Where::Outside: return VLKXS_C_RANGE;
        case Where::NoRecords: break;
    }
    return VLKXS_C_DBINIT;
}

// sigtot of shell ish at E.  `near`, the bracket of E in another shell,
// serves again where this shell has the same energies there, as the shells
// of one set mostly do.
int32_t sigma_at(const SVLKXS &set, int32_t ish, double E, double &sigma, Bracket *near = nullptr) noexcept {
    const SVLKXSSH *sh = nullptr;
    Bracket b;
    if (near != nullptr && near->r != nullptr && ish >= 0 && ish < set.nShell) {
        const SVLKXSSH &other = set.pShell[ish];
        const int32_t j = near->j;
        if (other.pE != nullptr && j < other.nE && other.pE[j].E == near->r[j].E &&
            (near->f == 0.0 ? E == other.pE[j].E : j + 1 < other.nE && other.pE[j + 1].E == near->r[j + 1].E)) {
            sh = &other;
            b = *near;
            b.r = other.pE;
        }
    }
    if (sh == nullptr) {
        if (const int32_t code = locate(set, ish, E, sh, b); code != VLKXS_C_OK) return code;
        if (near != nullptr) *near = b;
    }
    sigma = between(sh->pE[b.j].sigtot, b.f == 0.0 ? 0.0 : sh->pE[b.j + 1].sigtot, b, E);
    return VLKXS_C_OK;
}

// Shells that sampling chooses from: all but a sum shell at the end.
int32_t summed_shells(const SVLKXS &set) noexcept {
    const int32_t n = set.nShell;
    return n > 1 && set.pShell[n - 1].shell == 0 ? n - 1 : n;
}

// Runs `body` in the frame of `o` and stores its result only on success:
// `body(value)` returns a code, and the outputs stay as they were on every
// failure.
template <class Body>
SCMDSTATUS frame(const vlk::Op &o, bool addresses, int32_t mode, Body &&body) {
    return vlk::run(o, mode, [&](SCMDSTATUS &st) {
        if (!addresses) return;
        if (const int32_t code = body(); code != VLKXS_C_OK)
            vlk::fail(st, code);
        else
            vlk::succeed(st);
    });
}

}  // namespace

SCMDSTATUS VLKXSSigma(const SVLKXS *set, int32_t ish, double E, double *sigma, int32_t mode) {
    return frame(vlk::op::Sigma, set != nullptr && sigma != nullptr, mode, [&] {
        double s = 0.0;
        const int32_t code = sigma_at(*set, ish, E, s);
        if (code == VLKXS_C_OK) *sigma = s;
        return code;
    });
}

SCMDSTATUS VLKXSEkin(const SVLKXS *set, int32_t ish, double E, double *Ekin, double *LET, int32_t mode) {
    return frame(vlk::op::Ekin, set != nullptr && Ekin != nullptr && LET != nullptr, mode, [&]() -> int32_t {
        const SVLKXSSH *sh = nullptr;
        Bracket b;
        if (const int32_t code = locate(*set, ish, E, sh, b); code != VLKXS_C_OK) return code;
        const SVLKXSE &r = sh->pE[b.j];
        const SVLKXSE *next = b.f == 0.0 ? &r : &sh->pE[b.j + 1];
        *Ekin = between(r.Ekin, next->Ekin, b, E);
        *LET = between(r.LET, next->LET, b, E);
        return VLKXS_C_OK;
    });
}

SCMDSTATUS VLKXSSampleShell(const SVLKXS *set, double E, double u, int32_t *ish, int32_t mode) {
    return frame(vlk::op::SampleShell, set != nullptr && ish != nullptr, mode, [&]() -> int32_t {
        if (set->pShell == nullptr || set->nShell < 1) return VLKXS_C_NSHELL;
        if (!unit_interval(u)) return VLKXS_C_RANGE;
        const int32_t n = summed_shells(*set);
        // The cross sections of the first shells are kept for the second
        // pass; beyond that they are worked out again.
        constexpr int32_t kKept = 32;
        double kept[kKept];
        double total = 0.0;
        Bracket near;
        for (int32_t i = 0; i < n; ++i) {
            double s = 0.0;
            if (const int32_t code = sigma_at(*set, i, E, s, &near); code != VLKXS_C_OK) return code;
            if (i < kKept) kept[i] = s;
            if (s > 0.0) total += s;
        }
        if (n == 1) {
            *ish = 0;
            return VLKXS_C_OK;
        }
        if (!(total > 0.0)) return VLKXS_C_NOXS;
        const double target = u * total;
        double sum = 0.0;
        int32_t last_open = 0;
        for (int32_t i = 0; i < n; ++i) {
            double s = 0.0;
            if (i < kKept)
                s = kept[i];
            else
                sigma_at(*set, i, E, s, &near);
            if (!(s > 0.0)) continue;
            last_open = i;
            sum += s;
            if (target < sum) {
                *ish = i;
                return VLKXS_C_OK;
            }
        }
        *ish = last_open;  // u * total rounded up to the sum
        return VLKXS_C_OK;
    });
}

SCMDSTATUS VLKXSSampleW(const SVLKXS *set, int32_t ish, double E, double u, double *W, int32_t mode) {
    return frame(vlk::op::SampleW, set != nullptr && W != nullptr, mode, [&]() -> int32_t {
        const SVLKXSSH *sh = nullptr;
        Bracket b;
        if (const int32_t code = locate(*set, ish, E, sh, b); code != VLKXS_C_OK) return code;
        if (!unit_interval(u)) return VLKXS_C_RANGE;
        // Elastic tables run over cosines: VLKXSSampleCos serves them.
        if (set->dim < 1 || set->dim > 2 || set->IA == 1) return VLKXS_C_DBINIT;
        double x = 0.0, x0 = 0.0, x1 = 0.0;
        if (b.f != 0.0 && invert_pair(sh->pE[b.j], sh->pE[b.j + 1], u, x0, x1)) {
            x = x0 + b.f * (x1 - x0);
        } else {
            const Got g = mix(*sh, b, [u](const SVLKXSE &r, double &v) { return first_level(r, u, v); }, x);
            if (g != Got::Value) return code_of(g);
        }
        // Ionisation grids hold fractions of WNorm.
        *W = set->IA == 2 ? x * vlk::wnorm(E, set->proj.type) : x;
        return VLKXS_C_OK;
    });
}

namespace {

// The cosine sampled from the second-level tables of one record at the
// reduced secondary energy w: linear in w between the two first-level
// points around it (the end rows outside the grid).
Got cosine_at(const SVLKXSE &r, double w, double u, double &out) noexcept {
    if (r.dv1 == nullptr || r.nv2 == nullptr || r.pdv2 == nullptr || r.pdvCum2 == nullptr || r.n1 < 1)
        return Got::Missing;
    const auto row = [&](int32_t k, double &v) {
        if (r.pdv2[k] == nullptr || r.pdvCum2[k] == nullptr || r.nv2[k] < 1) return Got::Missing;
        return invert(r.pdv2[k], r.pdvCum2[k], r.nv2[k], u, v) ? Got::Value : Got::Empty;
    };
    const double *x = r.dv1;
    const int32_t n = r.n1;
    const bool ascending = n < 2 || x[0] <= x[n - 1];
    int32_t k = 0;
    double g = 0.0;
    if (ascending ? w > x[0] : w < x[0]) {
        // first point beyond w, in the direction of the grid
        const double *p = ascending ? std::upper_bound(x, x + n, w) : std::upper_bound(x, x + n, w, std::greater<>());
        k = static_cast<int32_t>(p - x) - 1;
        if (k >= n - 1) {
            k = n - 1;
        } else {
            g = (w - x[k]) / (x[k + 1] - x[k]);
        }
    }
    double a = 0.0, c = 0.0;
    const Got ga = row(k, a);
    if (ga == Got::Missing || g == 0.0) {
        out = a;
        return ga;
    }
    const Got gc = row(k + 1, c);
    if (gc == Got::Missing) return gc;
    if (ga == Got::Empty && gc == Got::Empty) return Got::Empty;
    out = ga == Got::Empty ? c : gc == Got::Empty ? a : a + g * (c - a);
    return Got::Value;
}

}  // namespace

SCMDSTATUS VLKXSSampleCos(const SVLKXS *set, int32_t ish, double E, double W, double u, double *cosine,
                          int32_t mode) {
    return frame(vlk::op::SampleCos, set != nullptr && cosine != nullptr, mode, [&]() -> int32_t {
        const SVLKXSSH *sh = nullptr;
        Bracket b;
        if (const int32_t code = locate(*set, ish, E, sh, b); code != VLKXS_C_OK) return code;
        if (!unit_interval(u)) return VLKXS_C_RANGE;
        double c = 0.0;
        Got g = Got::Missing;
        if (set->dim == 2) {
            const double wn = set->IA == 2 ? vlk::wnorm(E, set->proj.type) : 0.0;
            const double w = wn != 0.0 ? W / wn : W;
            g = mix(*sh, b, [w, u](const SVLKXSE &r, double &v) { return cosine_at(r, w, u, v); }, c);
        } else if (set->dim == 1 && set->IA == 1) {
            g = mix(*sh, b, [u](const SVLKXSE &r, double &v) { return first_level(r, u, v); }, c);
        }
        if (g != Got::Value) return code_of(g);
        *cosine = std::clamp(c, -1.0, 1.0);
        return VLKXS_C_OK;
    });
}
