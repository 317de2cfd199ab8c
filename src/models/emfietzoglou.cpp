// Electron-impact excitation of water: the five levels of D. Emfietzoglou
// and H. Nikjoo, Phys. Med. Biol. 48, 2355 (2003).  Each level j has the
// macroscopic cross section
//   Sigma_j(T) = A_j / (2 pi a0) (E_j/T) ln(C_j T/R) (1 - E_j/T)^P_j,
// which the molecular density of liquid water turns into a cross section
// per molecule.  The levels are the set's shells 1 to 5; each record's km
// is the level's excitation energy.
#include "models/model.hpp"

#include <cmath>

namespace {

using namespace vlk::models;
using vlk::Buffer;

struct Level {
    double E, A, C, P;  // E in eV
};

constexpr Level kLevels[] = {
    {8.22, 0.0205, 4.9801, 0.4757},  {10.00, 0.0209, 3.3850, 0.3483}, {11.24, 0.0130, 2.8095, 0.4443},
    {12.61, 0.0026, 1.9242, 0.3429}, {13.77, 0.0025, 3.4624, 0.4379},
};
constexpr double kMolecules = 3.342e22;  // liquid water, per cm3

double sigma(const Level &l, double T) noexcept {
    if (!(T > l.E)) return 0.0;
    return l.A / (2.0 * kPi * kBohrRadius) * (l.E / T) * std::log(l.C * T / kRydbergEV) *
           std::pow(1.0 - l.E / T, l.P) / kMolecules;
}

Fault fill(SVLKXS &set, const SVLKXSCALC &rq, Tables &tables) {
    if (!is_water(set.targ)) return {VLKXS_C_XSTARG};
    Buffer<double> E;
    int32_t nE = 0;
    if (const Fault f = primary_energies(rq, E, nE)) return f;
    constexpr auto n = static_cast<int32_t>(std::size(kLevels));
    if (!tables.shells(n, 1, {E.data(), vlk::count_of(nE)})) return {VLKXS_C_RUNTIME};
    for (int32_t i = 0; i < n; ++i)
        for (int32_t j = 0; j < nE; ++j) {
            SVLKXSE &e = set.pShell[i].pE[j];
            e.sigtot = sigma(kLevels[i], E[j] * kEVPerKeV);
            e.km = kLevels[i].E / kEVPerKeV;
        }
    return {};
}

}  // namespace

SCMDSTATUS VLKXSCalcEX(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode) {
    const Model m{vlk::op::CalcEX, VLKPROJ_ELECTRON, 3, kMethodEmpirical, 0};
    return calculate(m, set, calc, mode, fill, level_means);
}
