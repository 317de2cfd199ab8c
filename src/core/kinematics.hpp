// Kinematics of a projectile at a primary energy, as completion stores them
// in each energy record and as the sampling layer needs them between
// records: one set of formulas, so that both agree to the last bit.
#pragma once

#include <cmath>
#include <cstdint>

#include "core/constants.hpp"
#include "vlkxs.h"

namespace vlk {

// Electrons, positrons and ions; other projectiles are taken as moving at
// the speed of light.
constexpr bool charged(int32_t type) noexcept {
    return type == VLKPROJ_ELECTRON || type == VLKPROJ_POSITRON || type == VLKPROJ_ION;
}

// Rest energy per unit of E: the electron's in keV, the atomic mass unit in
// MeV for ions (whose E is per nucleon).
constexpr double rest_energy(int32_t type) noexcept {
    return type == VLKPROJ_ION ? kAtomicMassUnitMeV : kElectronRestKeV;
}

struct Kinematics {
    double gamma = 0.0, beta2 = 1.0, Escal = 0.0, WNorm = 0.0;
};

// WNorm, the largest energy that a free electron at rest can take over,
// 2 gamma^2 beta^2 mc^2 = 2 mc^2 E (E + 2 rest) / rest^2, in keV for every
// type; 0 for projectiles that aren't charged.  Multiplications only: the
// samplers call it for every secondary energy they draw.
inline double wnorm(double E, int32_t type) noexcept {
    if (!charged(type)) return 0.0;
    const double rest = rest_energy(type);
    return 2.0 * kElectronRestKeV / (rest * rest) * E * (E + 2.0 * rest);
}

// gamma, beta2 and Escal in this order, each from the one before, and WNorm.
inline Kinematics kinematics(double E, int32_t type) noexcept {
    Kinematics k;
    if (!charged(type)) {
        k.Escal = E;
        return k;
    }
    const double rest = rest_energy(type);
    k.gamma = (E + rest) / rest;
    k.beta2 = 1.0 - 1.0 / (k.gamma * k.gamma);
    k.Escal = std::log(k.beta2 / (1.0 - k.beta2)) - k.beta2;
    k.WNorm = wnorm(E, type);
    return k;
}

}  // namespace vlk
