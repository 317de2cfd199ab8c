// Physical constants of the module and its companions, as doubles (CODATA
// 1986 values, which every table of the library was made with).
#pragma once

namespace vlk {

inline constexpr double kElectronRestKeV = 510.99906;    // electron rest energy, keV
inline constexpr double kProtonRestKeV = 938272.31;   // proton rest energy, keV
inline constexpr double kAtomicMassUnitMeV = 931.49432;  // ion energies are MeV/u
inline constexpr double kAtomicMassUnitKeV = 931494.32;  // the same, keV
inline constexpr double kAvogadro = 6.0221367e23;  // per mol
inline constexpr double kTwoPi = 6.283185307179586;

}  // namespace vlk
