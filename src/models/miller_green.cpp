// Excitation of water by protons and other bare ions: the form of
// J. H. Miller and A. E. S. Green, Radiat. Res. 54, 343 (1973), with the
// parameters of M. Dingfelder, M. Inokuti and H. G. Paretzke, Radiat.
// Phys. Chem. 59, 255 (2000):
//   sigma_j(T) = sigma0 (Z a_j)^Omega_j (T - E_j)^nu / (J_j^(Omega_j+nu) + T^(Omega_j+nu)),
// sigma0 = 1e-16 cm2, Z = 10, nu = 1, T the energy per nucleon in eV.
// Heavier ions scale by the square of their charge at the same energy per
// nucleon.  The levels are the set's shells 1 to 5; each record's km is
// the level's excitation energy.
#include "models/model.hpp"

#include <cmath>

namespace {

using namespace vlk::models;
using vlk::Buffer;

struct Level {
    double E, a, J, Omega;  // E, a and J in eV
};

constexpr Level kLevels[] = {
    {8.17, 876.0, 19820.0, 0.85},  {10.13, 2084.0, 23490.0, 0.88}, {11.31, 1373.0, 27770.0, 0.88},
    {12.91, 692.0, 30830.0, 0.78}, {14.50, 900.0, 33080.0, 0.78},
};
constexpr double kSigma0 = 1e-16;  // cm2
constexpr double kZ = 10.0;        // electrons of the water molecule
constexpr double kNu = 1.0;

double sigma(const Level &l, double T) noexcept {
    if (!(T > l.E)) return 0.0;
    const double power = l.Omega + kNu;
    return kSigma0 * std::pow(kZ * l.a, l.Omega) * std::pow(T - l.E, kNu) /
           (std::pow(l.J, power) + std::pow(T, power));
}

Fault fill(SVLKXS &set, const SVLKXSCALC &rq, Tables &tables) {
    if (!is_water(set.targ)) return {VLKXS_C_XSTARG};
    Buffer<double> E;
    int32_t nE = 0;
    if (const Fault f = primary_energies(rq, E, nE)) return f;
    constexpr auto n = static_cast<int32_t>(std::size(kLevels));
    if (!tables.shells(n, 1, {E.data(), vlk::count_of(nE)})) return {VLKXS_C_RUNTIME};
    const double z2 = charge_squared(set.proj);
    for (int32_t i = 0; i < n; ++i)
        for (int32_t j = 0; j < nE; ++j) {
            SVLKXSE &e = set.pShell[i].pE[j];
            e.sigtot = z2 * sigma(kLevels[i], E[j] * kEVPerMeV);
            e.km = kLevels[i].E / kEVPerKeV;
        }
    return {};
}

}  // namespace

SCMDSTATUS VLKXSCalcIX(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode) {
    const Model m{vlk::op::CalcIX, VLKPROJ_ION, 3, kMethodEmpirical, 0};
    return calculate(m, set, calc, mode, fill, level_means);
}
