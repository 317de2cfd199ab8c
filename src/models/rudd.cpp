// Ionisation by protons and other bare ions: the semi-empirical model of
// M. E. Rudd, Y.-K. Kim, D. H. Madison and T. J. Gay, Rev. Mod. Phys. 64,
// 441 (1992), with the parameters for water of M. Dingfelder, M. Inokuti
// and H. G. Paretzke, Radiat. Phys. Chem. 59, 255 (2000).
//
// For an orbital of binding energy B and occupation N, at kinetic energy T
// per nucleon, with w = W/B, v^2 = (m/M) T/B, w_c = 4v^2 - 2v - R/(4B) and
// S = 4 pi a0^2 N (R/B)^2:
//   dsigma/dW = G (S/B) (F1 + w F2) / { (1+w)^3 [1 + exp(alpha (w - w_c)/v)] }
//   F1 = L1 + H1,  F2 = L2 H2 / (L2 + H2),
//   L1 = C1 v^D1 / (1 + E1 v^(D1+4)),  H1 = A1 ln(1+v^2) / (v^2 + B1/v^2),
//   L2 = C2 v^D2,  H2 = A2/v^2 + B2/v^4,
// for 0 <= W <= 4 (m/M) T.  Heavier ions scale by the square of their
// charge at the same energy per nucleon; no effective charge is applied.
// Totals and mean secondary energies are integrated numerically.
#include "models/model.hpp"

#include <algorithm>
#include <cmath>

namespace {

using namespace vlk::models;
using vlk::Buffer;

struct Parameters {
    double A1, B1, C1, D1, E1, A2, B2, C2, D2, alpha, G;
};

// Water, shell rows 1b1, 3a1, 1b2, 2a1, 1a1 (Dingfelder et al. 2000, table
// of the Rudd parameters; G the partition factors of the outer orbitals).
constexpr Parameters outer(double G) { return {1.02, 82.0, 0.45, -0.80, 0.38, 1.07, 11.6, 0.60, 0.04, 0.64, G}; }
constexpr Parameters kWater[] = {
    outer(0.99), outer(1.11), outer(1.11), outer(0.52),
    {1.25, 0.5, 1.0, 1.0, 3.0, 1.1, 1.3, 1.0, 0.0, 0.66, 1.0},
};

// One orbital at one energy per nucleon.
class Orbital {
public:
    Orbital(const vlk::models::Orbital &o, const Parameters &p, double T_eV, double z2) noexcept
        : B_(o.B), alpha_(p.alpha) {
        const double v2 = kElectronProtonMass * T_eV / o.B;
        v_ = std::sqrt(v2);
        wc_ = 4.0 * v2 - 2.0 * v_ - kRydbergEV / (4.0 * o.B);
        const double L1 = p.C1 * std::pow(v_, p.D1) / (1.0 + p.E1 * std::pow(v_, p.D1 + 4.0));
        const double H1 = p.A1 * std::log1p(v2) / (v2 + p.B1 / v2);
        const double L2 = p.C2 * std::pow(v_, p.D2);
        const double H2 = p.A2 / v2 + p.B2 / (v2 * v2);
        F1_ = L1 + H1;
        F2_ = L2 * H2 / (L2 + H2);
        const double R = kRydbergEV / o.B;
        front_ = z2 * p.G * 4.0 * kPi * kBohrArea * o.N * R * R / (o.B / kEVPerKeV);
        top_ = 4.0 * kElectronProtonMass * T_eV / kEVPerKeV;
    }

    double top_keV() const noexcept { return top_; }

    // dsigma/dW in cm2/keV at W keV.
    double differential(double W_keV) const noexcept {
        if (W_keV < 0.0 || W_keV > top_ * (1.0 + 1e-12)) return 0.0;
        const double w = W_keV * kEVPerKeV / B_;
        const double x = alpha_ * (w - wc_) / v_;
        if (x > 700.0) return 0.0;  // the cut-off has taken it all
        const double w1 = 1.0 + w;
        return front_ * (F1_ + w * F2_) / (w1 * w1 * w1 * (1.0 + std::exp(x)));
    }

    double total() const { return integrate_peaked([this](double W) { return differential(W); }, top_, scale()); }
    double moment() const {
        return integrate_peaked([this](double W) { return W * differential(W); }, top_, scale());
    }

private:
    double scale() const noexcept { return B_ / kEVPerKeV; }
    double B_, alpha_, v_ = 0.0, wc_ = 0.0, F1_ = 0.0, F2_ = 0.0, front_ = 0.0, top_ = 0.0;
};

Fault fill(SVLKXS &set, const SVLKXSCALC &rq, Tables &tables) {
    if (!is_water(set.targ)) return {VLKXS_C_RUDDTARG};
    Buffer<vlk::models::Orbital> orb;
    int32_t no = 0;
    if (const Fault f = orbitals(set.targ, orb, no)) return f;
    Buffer<double> E;
    int32_t nE = 0;
    if (const Fault f = primary_energies(rq, E, nE)) return f;
    if (!tables.shells(no, 1, {E.data(), vlk::count_of(nE)})) return {VLKXS_C_RUNTIME};
    const double z2 = charge_squared(set.proj);

    if (set.dim == 0) {
        for (int32_t i = 0; i < no; ++i)
            for (int32_t j = 0; j < nE; ++j) {
                const Orbital o(orb[i], kWater[i], E[j] * kEVPerMeV, z2);
                SVLKXSE &e = set.pShell[i].pE[j];
                e.sigtot = o.total();
                e.Ekin = e.sigtot > 0.0 ? o.moment() / e.sigtot : 0.0;
            }
        return {};
    }

    // Every orbital shares the kinematic end 4 (m/M) T: one grid per energy.
    double Bmin = orb[0].B;
    for (int32_t i = 1; i < no; ++i) Bmin = std::min(Bmin, orb[i].B);
    const Axis axis = secondary_axis(rq);
    Buffer<double> grid;
    for (int32_t j = 0; j < nE; ++j) {
        const double T = E[j] * kEVPerMeV;
        const double top = Orbital(orb[0], kWater[0], T, z2).top_keV();
        const int32_t n = axis_grid(axis, top, 0.01 * Bmin / kEVPerKeV, {}, grid);
        if (n < 0) return {VLKXS_C_RUNTIME};
        const std::span<const double> W(grid.data(), vlk::count_of(n));
        for (int32_t i = 0; i < no; ++i) {
            const Orbital o(orb[i], kWater[i], T, z2);
            double *sig = tables.table(set.pShell[i].pE[j], W);
            if (sig == nullptr) return {VLKXS_C_RUNTIME};
            for (int32_t k = 0; k < n; ++k) sig[k] = o.differential(W[k]);
        }
    }
    return {};
}

}  // namespace

SCMDSTATUS VLKXSCalcII(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode) {
    const Model m{vlk::op::CalcII, VLKPROJ_ION, 2, kMethodRudd, 1};
    return calculate(m, set, calc, mode, fill, [](SVLKXS &) {});
}
