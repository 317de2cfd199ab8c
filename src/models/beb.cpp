// Electron-impact ionisation by the binary-encounter-Bethe (BEB) model:
// Y.-K. Kim and M. E. Rudd, Phys. Rev. A 50, 3954 (1994), eqs. (55) and (57)
// with the dipole constants of the simplified form (N_i/N = 1).
//
// For an orbital of binding energy B, mean kinetic energy U and occupation
// N, with t = T/B, u = U/B, w = W/B and S = 4 pi a0^2 N (R/B)^2:
//   sigma(T)  = S/(t+u+1) [ ln t/2 (1 - 1/t^2) + 1 - 1/t - ln t/(t+1) ]
//   dsigma/dW = S/(B (t+u+1)) sum_n F_n [ (w+1)^-n + (t-w)^-n ],
//               F1 = -1/(t+1), F2 = 1, F3 = ln t,  0 <= W <= (T-B)/2.
// The orbital constants come from the target's shell table.
#include "models/model.hpp"

#include <algorithm>
#include <cmath>

namespace {

using namespace vlk::models;
using vlk::Buffer;

// One orbital at one primary energy.
class Orbital {
public:
    Orbital(const vlk::models::Orbital &o, double T_eV) noexcept
        : B_(o.B), t_(T_eV / o.B), lnt_(std::log(t_)) {
        const double R = kRydbergEV / o.B;
        S_ = 4.0 * kPi * kBohrArea * o.N * R * R;
        front_ = S_ / (t_ + o.U / o.B + 1.0);
    }

    bool open() const noexcept { return t_ > 1.0; }
    // Largest secondary energy, (T - B)/2, keV.
    double top_keV() const noexcept { return open() ? 0.5 * (t_ - 1.0) * B_ / kEVPerKeV : 0.0; }

    double total() const noexcept {
        if (!open()) return 0.0;
        const double t = t_;
        return front_ * (0.5 * lnt_ * (1.0 - 1.0 / (t * t)) + 1.0 - 1.0 / t - lnt_ / (t + 1.0));
    }

    // dsigma/dW in cm2/keV at W keV, 0 beyond the largest secondary energy.
    double differential(double W_keV) const noexcept {
        const double w = W_keV * kEVPerKeV / B_;
        // The end itself, computed in keV by top_keV(), may come back an ulp
        // above (t-1)/2: it still belongs to the table.
        if (!open() || w < 0.0 || w > 0.5 * (t_ - 1.0) * (1.0 + 1e-12)) return 0.0;
        const double a = 1.0 / (w + 1.0), b = 1.0 / (t_ - w);
        const double sum = -(a + b) / (t_ + 1.0) + (a * a + b * b) + lnt_ * (a * a * a + b * b * b);
        return front_ / (B_ / kEVPerKeV) * sum;
    }

    // Mean secondary energy in keV: the first moment of dsigma/dW over
    // 0 <= w <= c = (t-1)/2 in closed form, over the total.
    double mean_keV() const noexcept {
        const double sigma = total();
        if (!(sigma > 0.0)) return 0.0;
        const double t = t_, c = 0.5 * (t - 1.0), p = 1.0 + c;  // p = t - c
        const double lp = std::log(p), ltp = std::log(t / p);
        // integrals of w (w+1)^-n and of w (t-w)^-n from 0 to c
        const double near1 = c - lp, near2 = lp + 1.0 / p - 1.0, near3 = (1.0 - 1.0 / p) - 0.5 * (1.0 - 1.0 / (p * p));
        const double far1 = t * ltp - c, far2 = t * (1.0 / p - 1.0 / t) - ltp,
                     far3 = 0.5 * t * (1.0 / (p * p) - 1.0 / (t * t)) - (1.0 / p - 1.0 / t);
        const double moment = front_ * B_ * (-(near1 + far1) / (t + 1.0) + (near2 + far2) + lnt_ * (near3 + far3));
        return moment / sigma / kEVPerKeV;
    }

private:
    double B_, t_, lnt_, S_ = 0.0, front_ = 0.0;
};

Fault fill(SVLKXS &set, const SVLKXSCALC &rq, Tables &tables) {
    Buffer<vlk::models::Orbital> orb;
    int32_t no = 0;
    if (const Fault f = orbitals(set.targ, orb, no)) return f;
    Buffer<double> E;
    int32_t nE = 0;
    if (const Fault f = primary_energies(rq, E, nE)) return f;
    if (!tables.shells(no, 1, {E.data(), vlk::count_of(nE)})) return {VLKXS_C_RUNTIME};

    if (set.dim == 0) {
        for (int32_t i = 0; i < no; ++i)
            for (int32_t j = 0; j < nE; ++j) {
                const Orbital o(orb[i], E[j] * kEVPerKeV);
                SVLKXSE &e = set.pShell[i].pE[j];
                e.sigtot = o.total();
                e.Ekin = o.mean_keV();
            }
        return {};
    }

    // One grid per energy for all orbitals, so that the sum shell adds like
    // with like; it runs to the outermost orbital's largest secondary energy
    // and keeps the others' ends as knots.
    double Bmin = orb[0].B;
    for (int32_t i = 1; i < no; ++i) Bmin = std::min(Bmin, orb[i].B);
    const Axis axis = secondary_axis(rq);
    Buffer<double> grid, knots;
    if (!knots.reserve(vlk::count_of(no))) return {VLKXS_C_RUNTIME};
    for (int32_t j = 0; j < nE; ++j) {
        const double T = E[j] * kEVPerKeV;
        double top = 0.0;
        for (int32_t i = 0; i < no; ++i) {
            knots[i] = Orbital(orb[i], T).top_keV();
            top = std::max(top, knots[i]);
        }
        const int32_t n = axis_grid(axis, top, 0.01 * Bmin / kEVPerKeV, {knots.data(), vlk::count_of(no)}, grid);
        if (n < 0) return {VLKXS_C_RUNTIME};
        const std::span<const double> W(grid.data(), vlk::count_of(n));
        for (int32_t i = 0; i < no; ++i) {
            const Orbital o(orb[i], T);
            double *sig = tables.table(set.pShell[i].pE[j], W);
            if (sig == nullptr) return {VLKXS_C_RUNTIME};
            for (int32_t k = 0; k < n; ++k) sig[k] = o.differential(W[k]);
        }
    }
    return {};
}

}  // namespace

SCMDSTATUS VLKXSCalcEI(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode) {
    const Model m{vlk::op::CalcEI, VLKPROJ_ELECTRON, 2, kMethodBEB, 1};
    return calculate(m, set, calc, mode, fill, [](SVLKXS &) {});
}
