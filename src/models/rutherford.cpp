// Elastic scattering of electrons: the screened Rutherford cross section,
// summed over the atoms of the target, with the screening parameter of
// G. Moliere, Z. Naturforsch. 2a, 133 (1947):
//   dsigma/dOmega = sum Z(Z+1) (e^2/4 pi eps0)^2 / (p v)^2 / (1 - cos + 2 eta)^2
//   sigma         = sum pi Z(Z+1) (e^2/4 pi eps0)^2 / (p v)^2 / [eta (eta+1)]
//   eta = alpha^2 Z^(2/3) / (4 (9 pi^2/128)^(2/3)) [1.13 + 3.76 (alpha Z)^2/beta^2] / (tau (tau+2))
// with p v = T (T + 2 mc^2)/(T + mc^2) and tau = T/mc^2.  Z(Z+1) counts the
// scattering by the atomic electrons beside that by the nucleus.
//
// The set has one shell, the target as a whole (number 0).  Its tables are
// dsigma/dOmega in cm2/sr over the cosine of the scattering angle, rising
// towards cos = 1; like every such table, its plain integral over the
// cosine, which completion stores in sigtot, is sigma / (2 pi).
#include "models/model.hpp"

#include <algorithm>
#include <cmath>

namespace {

using namespace vlk::models;
using vlk::Buffer;

// (9 pi^2 / 128)^(2/3), the Thomas-Fermi radius constant squared.
const double kThomasFermi = std::pow(9.0 * kPi * kPi / 128.0, 2.0 / 3.0);

class Scatterer {
public:
    Scatterer(const SVLKTARG &targ, double T_keV) noexcept : n_(targ.nAtom) {
        const double tau = T_keV / vlk::kElectronRestKeV;
        const double pv = T_keV * (T_keV + 2.0 * vlk::kElectronRestKeV) / (T_keV + vlk::kElectronRestKeV);
        const double beta2 = tau * (tau + 2.0) / ((tau + 1.0) * (tau + 1.0));
        const double k = kCoulombKeVcm / pv;
        for (int32_t a = 0; a < n_; ++a) {
            const double Z = targ.Zatom[a], aZ = kFineStructure * Z;
            eta_[a] = kFineStructure * kFineStructure * std::cbrt(Z * Z) / (4.0 * kThomasFermi) *
                      (1.13 + 3.76 * aZ * aZ / beta2) / (tau * (tau + 2.0));
            strength_[a] = targ.natom[a] * Z * (Z + 1.0) * k * k;
        }
    }

    double total() const noexcept {
        double s = 0.0;
        for (int32_t a = 0; a < n_; ++a) s += kPi * strength_[a] / (eta_[a] * (eta_[a] + 1.0));
        return s;
    }
    // dsigma/dOmega in cm2/sr at mu = 1 - cos.
    double differential(double mu) const noexcept {
        double s = 0.0;
        for (int32_t a = 0; a < n_; ++a) {
            const double d = mu + 2.0 * eta_[a];
            s += strength_[a] / (d * d);
        }
        return s;
    }
    double smallest_eta() const noexcept { return *std::min_element(eta_, eta_ + n_); }

private:
    int32_t n_;
    double eta_[4] = {};
    double strength_[4] = {};
};

bool usable(const SVLKTARG &targ) noexcept {
    if (targ.nAtom < 1 || targ.nAtom > 4) return false;
    for (int32_t a = 0; a < targ.nAtom; ++a)
        if (targ.Zatom[a] < 1 || targ.natom[a] < 1) return false;
    return true;
}

Fault fill(SVLKXS &set, const SVLKXSCALC &rq, Tables &tables) {
    if (!usable(set.targ)) return {VLKXS_C_XSTARG};
    Buffer<double> E;
    int32_t nE = 0;
    if (const Fault f = primary_energies(rq, E, nE)) return f;
    if (!tables.shells(1, 0, {E.data(), vlk::count_of(nE)})) return {VLKXS_C_RUNTIME};
    SVLKXSSH &sh = set.pShell[0];
    if (set.dim == 0) {
        for (int32_t j = 0; j < nE; ++j) sh.pE[j].sigtot = Scatterer(set.targ, E[j]).total();
        return {};
    }

    // The grid runs in mu = 1 - cos, densest at mu = 0 where the peak of
    // width 2 eta lies; the table runs in ascending cosines.
    Axis axis = angle_axis(rq);
    Buffer<double> mu, grid, cosines;
    if (!axis.list.empty()) {
        if (!mu.reserve(axis.list.size())) return {VLKXS_C_RUNTIME};
        for (std::size_t i = 0; i < axis.list.size(); ++i) mu[i] = angle_variable(axis.list[i]);
        axis.list = {mu.data(), axis.list.size()};
    }
    for (int32_t j = 0; j < nE; ++j) {
        const Scatterer s(set.targ, E[j]);
        const int32_t n = axis_grid(axis, 2.0, 0.02 * s.smallest_eta(), {}, grid);
        if (n < 0 || !cosines.reserve(vlk::count_of(n))) return {VLKXS_C_RUNTIME};
        for (int32_t k = 0; k < n; ++k) cosines[k] = 1.0 - grid[n - 1 - k];
        double *sig = tables.table(sh.pE[j], {cosines.data(), vlk::count_of(n)});
        if (sig == nullptr) return {VLKXS_C_RUNTIME};
        for (int32_t k = 0; k < n; ++k) sig[k] = s.differential(grid[n - 1 - k]);
    }
    return {};
}

}  // namespace

SCMDSTATUS VLKXSCalcEL(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode) {
    const Model m{vlk::op::CalcEL, VLKPROJ_ELECTRON, 1, kMethodRutherford, 1};
    return calculate(m, set, calc, mode, fill, [](SVLKXS &) {});
}
