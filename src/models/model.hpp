// What the model calculators share: the constants of the published models,
// the grids that a request asks for, a quadrature, the tables of a set under
// construction, and the frame that checks a request, lets a model fill the
// set and completes it.
//
// A model fills the primary tables the way the reader does (energies, total
// cross sections or single differential tables on a secondary-energy or
// cosine grid, per shell numbered as the target's shell table) and leaves
// the derived fields, the sum shell and the normalised cumulated tables to
// VLKXSComplete.  A set that a model filled therefore writes, reads back and
// completes to the same values as any other set.
#pragma once

#include "core/core.hpp"

#include <cstdint>
#include <span>

namespace vlk::models {

// --- constants of the models ---------------------------------------------

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kBohrRadius = 0.529177210903e-8;  // a0, cm
inline constexpr double kBohrArea = 2.80028521e-17;       // a0^2, cm2
inline constexpr double kRydbergEV = 13.605693;           // R, eV
inline constexpr double kFineStructure = 1.0 / 137.035999;
inline constexpr double kCoulombKeVcm = 1.439964e-10;     // e^2 / 4 pi eps0, keV cm
inline constexpr double kElectronProtonMass = kElectronRestKeV / kProtonRestKeV;  // m / M
inline constexpr double kEVPerKeV = 1.0e3;
inline constexpr double kEVPerMeV = 1.0e6;

// Method numbers of the request, as VLKXSCalcMethodFromStr gives them.
inline constexpr int32_t kMethodRudd = 2;
inline constexpr int32_t kMethodBEB = 7;
inline constexpr int32_t kMethodEmpirical = 8;
inline constexpr int32_t kMethodRutherford = 9;

// Open ends of a limit string.
inline constexpr double kOpen = 1.7976931348623157e308;

// A refusal: the code, and the name of the offending limit where there is one.
struct Fault {
    int32_t code = VLKXS_C_OK;
    const char *item = nullptr;
    explicit operator bool() const noexcept { return code != VLKXS_C_OK; }
};

// --- grids -----------------------------------------------------------------

// The primary energies of a request, ascending, without repeats: its list
// where it has one, else a logarithmic grid from Emin to Emax whose
// neighbours differ by at most 1 + relchange.  Refuses an open or
// non-positive end with 26 and item "Emin" or "Emax".
Fault primary_energies(const SVLKXSCALC &rq, Buffer<double> &out, int32_t &n);

// One axis of a request in a model's own variable x, 0 <= x <= top, with
// its peak at x = 0: `lo` and `hi` are the request's limits (an open or
// unset end is the physical one), `list` its explicit values.
struct Axis {
    double lo = 0.0;
    double hi = kOpen;
    std::span<const double> list;
};

// The secondary-energy axis (keV) and the angle axis (degrees) of a request.
// An axis that the request never set (limits both 0, no list) is open.
Axis secondary_axis(const SVLKXSCALC &rq) noexcept;
Axis angle_axis(const SVLKXSCALC &rq) noexcept;

// 1 - cos of an angle in degrees, the variable of the angle grids; open
// ends are 0 and 180 degrees.
double angle_variable(double degrees) noexcept;

// A grid over the axis, clipped to [0, top].  Without a list: 0 (where the
// axis starts there), then logarithmic spacing from `fine` (or lower, for a
// short range) up to the upper limit, fine enough that trapezoidal sums of
// the models agree with their integrals within 1e-3, and each knot c (where
// a shell's table ends) as the pair c, c (1 + 1e-4), so that a table that
// drops to 0 there is integrated without error.  With a list: the list,
// open ends replaced by 0 and top.  Points that would print alike in six
// digits are merged.  Returns the count, or -1 when no memory is left.
int32_t axis_grid(const Axis &axis, double top, double fine, std::span<const double> knots, Buffer<double> &out);

// Relative distance of the two points of a knot.
inline constexpr double kKnotStep = 1.0e-4;

// --- quadrature ------------------------------------------------------------

// Integral of f over [0, top], taken in the variable ln(1 + x / scale) with
// adaptive Simpson steps to a relative accuracy better than 1e-7: made for
// functions that are smooth on the scale `scale` and fall as a power beyond.
double integrate_peaked(double (*f)(double, const void *), const void *ctx, double top, double scale);

template <class F>
double integrate_peaked(const F &f, double top, double scale) {
    return integrate_peaked([](double x, const void *c) { return (*static_cast<const F *>(c))(x); }, &f, top,
                            scale);
}

// --- the set under construction ------------------------------------------

// The shells of a set while a model fills them.  Everything goes through
// the one allocation path; the shells are released again unless keep() ran,
// so a refused or failed calculation leaves the set without tables.
class Tables {
public:
    explicit Tables(SVLKXS &set) noexcept : set_(set) {}
    ~Tables() {
        if (!kept_) release(set_);
    }
    Tables(const Tables &) = delete;
    Tables &operator=(const Tables &) = delete;

    // `n` shells numbered `first`, first + 1, ..., each with one record per
    // primary energy.  False when no memory is left.
    bool shells(int32_t n, int32_t first, std::span<const double> energies) noexcept;
    // A single differential table on `grid` for a record; returns dvSig1
    // (zero-filled) or null when no memory is left.
    double *table(SVLKXSE &e, std::span<const double> grid) noexcept;
    void keep() noexcept { kept_ = true; }

    // Releases the shells of a set, leaving its companions.
    static void release(SVLKXS &set) noexcept;

private:
    SVLKXS &set_;
    bool kept_ = false;
};

// --- the frame -------------------------------------------------------------

// What every model checks before it calculates: the projectile type and
// interaction it serves, its method, and the dimensions it provides.
struct Model {
    const Op &op;
    int32_t projectile;  // VLKPROJ_ELECTRON or VLKPROJ_ION
    int32_t IA;
    int32_t method;
    int32_t max_dim;     // 0: totals only; 1: single differential too
};

// Runs a model: checks the set and the request (2 for a null one or a
// shallow set, whose tables belong to another; 14 and 20 for a set of
// another projectile or interaction; 17 for another method; 21 for a dim
// beyond `max_dim`), releases any tables the set held, lets `fill` build the
// primary tables, and completes the set.  `fill(set, request, tables)`
// returns a Fault; `after(set)` runs on the completed set.  A failure
// leaves the set without shells.
template <class Fill, class After>
SCMDSTATUS calculate(const Model &m, SVLKXS *set, const SVLKXSCALC *rq, int32_t mode, Fill &&fill, After &&after) {
    return run(m.op, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr || rq == nullptr || (set->flag & VLKXS_FLAG_SHALLOW) != 0) return;
        Fault f;
        if (set->proj.type != m.projectile) {
            f = {VLKXS_C_NOPROJ, set->proj.name};
        } else if (set->IA != m.IA) {
            f = {VLKXS_C_IATYPE, nullptr};
        } else if (rq->method != m.method) {
            f = {VLKXS_C_NOMETHOD, nullptr};
        } else if (set->dim < 0 || set->dim > m.max_dim) {
            f = {VLKXS_C_IADIM, nullptr};
        }
        if (!f) {
            Tables::release(*set);
            Tables tables(*set);
            f = fill(*set, *rq, tables);
            if (!f) {
                const SCMDSTATUS done = VLKXSComplete(set, mode);
                if (severe(done.level)) {
                    take_code(st, done);
                    return;
                }
                after(*set);
                tables.keep();
                succeed(st);
                return;
            }
        }
        fail(st, f.code);
        st.item = f.item;
    });
}

// A target's orbital (shell row k) in eV, with its occupation.
struct Orbital {
    double B, U, N;
};

// Rows 1..nShell of the target as orbitals; 23 for a target without a
// shell table or with a row that no model can use.
Fault orbitals(const SVLKTARG &targ, Buffer<Orbital> &out, int32_t &n);

// True for a water target, the one target of the empirical models.
bool is_water(const SVLKTARG &targ) noexcept;

// The sum shell of a set of excitation levels: its km becomes the mean of
// the levels' own km (their excitation energies) weighted by their cross
// sections, where completion took the binding energies of the target's
// shell rows of the same numbers.  Where no level is open, the lowest.
void level_means(SVLKXS &set) noexcept;

// The projectile's charge squared, by which ion cross sections scale at
// equal energy per nucleon.
double charge_squared(const SVLKPROJ &proj) noexcept;

}  // namespace vlk::models
