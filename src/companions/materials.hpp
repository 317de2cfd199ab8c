// Built-in target materials of the target companion, and the small text
// helpers that both companions use to match a user's word.
//
// Orbital constants are those of the binary-encounter-Bethe (BEB) model:
// B, the orbital binding energy, U, the mean kinetic energy of an electron in
// the orbital, and N, its occupation.  They are kept here in eV, as they are
// published; shell_rows() converts them to the keV of SVLKTARGSH.  Orbitals
// are listed outermost (lowest binding) first, which is the order of the
// target's shell rows 1..nShell.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/words.hpp"
#include "vlkxs.h"

namespace vlk {

namespace materials {

inline constexpr std::size_t kMaxOrbitals = 6;
inline constexpr std::size_t kMaxElements = 4;
inline constexpr double kKeVPerEV = 1.0e-3;

struct Orbital {
    const char *label;  // spectroscopic label, for the reader of this table
    double B;           // binding energy, eV
    double U;           // mean orbital kinetic energy, eV
    double N;           // occupation, electrons
};

struct Material {
    const char *name;   // canonical text, stored in SVLKTARG.name
    const char *alias;  // a second accepted word, or null
    double M;           // molar mass, g/mol
    double density;     // g/cm3
    int32_t nAtom;      // distinct elements
    int32_t Zatom[kMaxElements];
    int32_t natom[kMaxElements];
    int32_t electrons;  // electrons of the molecule or atom
    int32_t nOrbital;   // orbitals used below
    Orbital orbital[kMaxOrbitals];
    // First ionisation energy, eV, where it lies below the outermost
    // orbital's B (a j-averaged B); 0: that B.
    double threshold = 0.0;
};

// Densities: water as liquid; the gases at 0 degC and 1 atm.  Atomic hydrogen
// has no standard phase, so it carries the density of H2 gas (0.0000899
// g/cm3) as a nominal value only.
inline constexpr Material kMaterials[] = {
    // Water.  Hwang, Kim & Rudd, J. Chem. Phys. 104, 2956 (1996), table of
    // BEB constants for H2O.
    {"H2O", "water", 18.01528, 1.0, 2, {1, 8, 0, 0}, {2, 1, 0, 0}, 10, 5,
     {{"1b1", 12.61, 61.91, 2.0},
      {"3a1", 14.73, 59.52, 2.0},
      {"1b2", 18.55, 48.36, 2.0},
      {"2a1", 32.20, 70.71, 2.0},
      {"1a1", 539.7, 796.2, 2.0},
      {}}},
    // Atomic hydrogen: B = U = 1 Rydberg (13.6057 eV), exact for the 1s
    // ground state.
    {"H", "atomic hydrogen", 1.00794, 0.0000899, 1, {1, 0, 0, 0}, {1, 0, 0, 0}, 1, 1,
     {{"1s", 13.6057, 13.6057, 1.0}, {}, {}, {}, {}, {}}},
    // Helium.  Kim & Rudd, Phys. Rev. A 50, 3954 (1994): the experimental
    // first ionisation energy, and U = 39.51 eV, the kinetic energy that the
    // BEB papers use for helium.
    {"He", "helium", 4.002602, 0.0001786, 1, {2, 0, 0, 0}, {1, 0, 0, 0}, 2, 1,
     {{"1s", 24.587, 39.51, 2.0}, {}, {}, {}, {}, {}}},
    // Molecular nitrogen.  Hwang, Kim & Rudd, J. Chem. Phys. 104, 2956
    // (1996), table of BEB constants for N2, valence orbitals row by row.
    // The two 1s combinations (1sigma_u, 1sigma_g) share the measured
    // K-shell binding energy, 409.9 eV, and U of about 602 eV.
    {"N2", "nitrogen", 28.0134, 0.0012506, 1, {7, 0, 0, 0}, {2, 0, 0, 0}, 14, 6,
     {{"3sigma_g", 15.58, 54.91, 2.0},
      {"1pi_u", 17.07, 44.30, 4.0},
      {"2sigma_u", 21.00, 63.18, 2.0},
      {"2sigma_g", 41.72, 71.13, 2.0},
      {"1sigma_u", 409.9, 601.8, 2.0},
      {"1sigma_g", 409.9, 602.7, 2.0}}},
    // Argon.  Rudd, Kim, Madison & Gay, Rev. Mod. Phys. 64, 441 (1992),
    // Table I, every row: binding energies (3p the average over its j = 1/2
    // and 3/2 levels, above the first ionisation energy of 15.76 eV) and
    // mean kinetic energies.
    {"Ar", "argon", 39.948, 0.0017837, 1, {18, 0, 0, 0}, {1, 0, 0, 0}, 18, 5,
     {{"3p", 15.82, 78.07, 6.0},
      {"3s", 29.24, 103.5, 2.0},
      {"2p", 249.18, 651.4, 6.0},
      {"2s", 326.0, 683.1, 2.0},
      {"1s", 3202.9, 4192.9, 2.0},
      {}},
     15.76},
};

inline constexpr std::size_t kMaterialCount = std::size(kMaterials);
inline constexpr std::size_t kWater = 0;  // index of H2O, the test target

// --- shape checks, evaluated at compile time --------------------------------

constexpr bool shape_ok(const Material &m) {
    if (m.nOrbital < 1 || static_cast<std::size_t>(m.nOrbital) > kMaxOrbitals) return false;
    if (m.nAtom < 1 || static_cast<std::size_t>(m.nAtom) > kMaxElements) return false;
    // Rows beyond nOrbital stay empty.
    for (std::size_t i = static_cast<std::size_t>(m.nOrbital); i < kMaxOrbitals; ++i)
        if (m.orbital[i].label != nullptr || m.orbital[i].N != 0.0) return false;
    return m.name != nullptr && m.M > 0.0 && m.density > 0.0;
}

// Positive constants, binding energies not decreasing from the outermost
// orbital inwards (degenerate orbitals may share one value).
constexpr bool orbitals_ordered(const Material &m) {
    for (int32_t i = 0; i < m.nOrbital; ++i) {
        const Orbital &o = m.orbital[i];
        if (!(o.B > 0.0 && o.U > 0.0 && o.N > 0.0)) return false;
        if (i > 0 && o.B < m.orbital[i - 1].B) return false;
    }
    return true;
}

// Occupations add up to the electron count, which the composition fixes.
constexpr bool electrons_ok(const Material &m) {
    double occ = 0.0;
    for (int32_t i = 0; i < m.nOrbital; ++i) occ += m.orbital[i].N;
    int32_t z = 0;
    for (int32_t k = 0; k < m.nAtom; ++k) z += m.Zatom[k] * m.natom[k];
    return occ == static_cast<double>(m.electrons) && z == m.electrons;
}

template <bool (*Check)(const Material &)>
constexpr bool all_materials() {
    for (const Material &m : kMaterials)
        if (!Check(m)) return false;
    return true;
}

static_assert(all_materials<shape_ok>(), "material row counts or parameters out of range");
static_assert(all_materials<orbitals_ordered>(), "orbital constants not positive or not ordered by binding energy");
static_assert(all_materials<electrons_ok>(), "occupations do not add up to the electron count");
static_assert(kMaterials[kWater].nOrbital == 5 && kMaterials[kWater].electrons == 10);
static_assert(kMaterials[1].electrons == 1 && kMaterials[2].electrons == 2 &&
              kMaterials[3].electrons == 14 && kMaterials[4].electrons == 18);

// --- shell rows in keV --------------------------------------------------------

using ShellRows = std::array<SVLKTARGSH, kMaxOrbitals + 1>;

// Row 0 is the target as a whole: its first ionisation threshold and all its
// electrons; rows 1..nOrbital are the orbitals.  Unused rows stay zero.
constexpr ShellRows shell_rows(const Material &m) {
    ShellRows rows{};
    const double first = m.threshold > 0.0 ? m.threshold : m.orbital[0].B;
    rows[0] = SVLKTARGSH{first * kKeVPerEV, 0.0, static_cast<double>(m.electrons)};
    for (int32_t i = 0; i < m.nOrbital; ++i) {
        const Orbital &o = m.orbital[i];
        rows[static_cast<std::size_t>(i) + 1] = SVLKTARGSH{o.B * kKeVPerEV, o.U * kKeVPerEV, o.N};
    }
    return rows;
}

constexpr std::array<ShellRows, kMaterialCount> all_shell_rows() {
    std::array<ShellRows, kMaterialCount> out{};
    for (std::size_t i = 0; i < kMaterialCount; ++i) out[i] = shell_rows(kMaterials[i]);
    return out;
}

// The static rows that test targets borrow and that ImportMaterial copies.
inline constexpr std::array<ShellRows, kMaterialCount> kShellRows = all_shell_rows();

// The material that `text` names (blanks trimmed, case ignored), or null.
constexpr const Material *find(std::string_view text) noexcept {
    text = trim_blanks(text);
    for (const Material &m : kMaterials)
        if (iequals(text, m.name) || iequals(text, m.alias)) return &m;
    return nullptr;
}

constexpr std::size_t index_of(const Material *m) noexcept {
    return static_cast<std::size_t>(m - kMaterials);
}

static_assert(find(" water ") == &kMaterials[kWater] && find("h2o") == &kMaterials[kWater]);

}  // namespace materials
}  // namespace vlk
