// The projectile companion: the particle record that a cross-section set
// carries, its life cycle, and the conversion from a user's word.
//
// A record owns its `name` and `symbol` only when VLKPROJ_OWNS is set in
// `own`; test records and shallow duplicates borrow static or foreign text.
// A zero-filled record is a valid empty one, and a record may be copied byte
// for byte: nothing here keeps a pointer into the record itself.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/alloc.hpp"
#include "materials.hpp"
#include "companions/common.hpp"
#include "core/constants.hpp"
#include "core/status.hpp"
#include "vlkxs.h"

namespace {

constexpr const char *kInit = "vlkproj(Init)";
constexpr const char *kFree = "vlkproj(Free)";
constexpr const char *kSpace = "vlkproj(Space)";
constexpr const char *kDup = "vlkproj(Dup)";
constexpr const char *kIsValid = "vlkproj(IsValid)";
constexpr const char *kInspect = "vlkproj(Inspect)";
constexpr const char *kFromStr = "vlkproj(FromStr)";

// Rest energies in keV, from the constants that the module uses as well.
using vlk::kAtomicMassUnitKeV;
constexpr double kElectronKeV = vlk::kElectronRestKeV;
constexpr double kProtonKeV = 938272.0;  // 938.272 MeV

// Rest energy of a bare nucleus from the atomic mass (in u) of its neutral
// atom: the electrons' masses are taken off, their binding energies (below
// 4 keV up to neon) are neglected.
constexpr double nucleus_keV(double atomic_mass_u, int32_t Z) {
    return atomic_mass_u * kAtomicMassUnitKeV - Z * kElectronKeV;
}

struct Particle {
    const char *symbol;  // canonical text; accepted back by FromStr
    const char *name;    // readable name; accepted too
    const char *alias;   // one more accepted word, or null
    int32_t type;
    int32_t Z;
    int32_t A;
    double charge;  // elementary charges
    double mass;    // rest energy, keV
    bool bare_ion;  // the particle that "<element><Z>+" stands for
};

// Ions are the bare nuclei of the most abundant isotope; their rest energies
// are nuclear masses derived from the atomic masses of those isotopes.  The
// test particles 0 and 2 exist so that every projectile type has a record;
// they take part in no physics.
constexpr Particle kParticles[] = {
    {"test0", "test particle 0", nullptr, 0, 0, 0, 0.0, 0.0, false},
    {"gamma", "photon", nullptr, VLKPROJ_PHOTON, 0, 0, 0.0, 0.0, false},
    {"test2", "test particle 2", nullptr, 2, 0, 0, -1.0, kElectronKeV, false},
    {"e", "electron", "e-", VLKPROJ_ELECTRON, 0, 0, -1.0, kElectronKeV, false},
    {"e+", "positron", nullptr, VLKPROJ_POSITRON, 0, 0, 1.0, kElectronKeV, false},
    {"p", "proton", nullptr, VLKPROJ_ION, 1, 1, 1.0, kProtonKeV, true},
    {"d", "deuteron", nullptr, VLKPROJ_ION, 1, 2, 1.0, nucleus_keV(2.01410178, 1), false},
    {"alpha", "alpha particle", nullptr, VLKPROJ_ION, 2, 4, 2.0, nucleus_keV(4.00260325, 2), true},
    {"Li3+", "lithium ion", nullptr, VLKPROJ_ION, 3, 7, 3.0, nucleus_keV(7.01600344, 3), true},
    {"Be4+", "beryllium ion", nullptr, VLKPROJ_ION, 4, 9, 4.0, nucleus_keV(9.01218307, 4), true},
    {"B5+", "boron ion", nullptr, VLKPROJ_ION, 5, 11, 5.0, nucleus_keV(11.00930536, 5), true},
    {"C6+", "carbon ion", nullptr, VLKPROJ_ION, 6, 12, 6.0, nucleus_keV(12.0, 6), true},
    {"N7+", "nitrogen ion", nullptr, VLKPROJ_ION, 7, 14, 7.0, nucleus_keV(14.00307400, 7), true},
    {"O8+", "oxygen ion", nullptr, VLKPROJ_ION, 8, 16, 8.0, nucleus_keV(15.99491462, 8), true},
    {"F9+", "fluorine ion", nullptr, VLKPROJ_ION, 9, 19, 9.0, nucleus_keV(18.99840316, 9), true},
    {"Ne10+", "neon ion", nullptr, VLKPROJ_ION, 10, 20, 10.0, nucleus_keV(19.99244018, 10), true},
};

// The test record k is the table row of type k among the first five rows.
constexpr const Particle *kTestParticle[6] = {&kParticles[0], &kParticles[1], &kParticles[2],
                                              &kParticles[3], &kParticles[4], &kParticles[5]};
static_assert([] {
    for (int32_t k = 0; k < 6; ++k)
        if (kTestParticle[k]->type != k) return false;
    return true;
}());

// Element symbols by Z, for the bare-ion form "<element><charge>+".
constexpr const char *kElement[] = {"H", "He", "Li", "Be", "B", "C", "N", "O", "F", "Ne"};

// "<element>[<charge>]+" with charge = Z (fully stripped; a missing charge
// means 1).  Returns the particle, or null for anything else, including
// ions that keep electrons.
const Particle *parse_bare_ion(std::string_view t) noexcept {
    std::size_t len = 0;
    while (len < t.size() && len < 2 && ((t[len] >= 'A' && t[len] <= 'Z') || (t[len] >= 'a' && t[len] <= 'z'))) ++len;
    if (len == 0) return nullptr;
    int32_t Z = 0;
    for (int32_t z = 1; z <= static_cast<int32_t>(std::size(kElement)); ++z)
        if (vlk::iequals(t.substr(0, len), kElement[z - 1])) Z = z;
    if (Z == 0) return nullptr;
    t.remove_prefix(len);
    if (t.empty() || t.back() != '+') return nullptr;
    t.remove_suffix(1);
    int32_t charge = t.empty() ? 1 : 0;
    if (t.size() > 3) return nullptr;  // no bare ion here reaches 1000
    for (char c : t) {
        if (c < '0' || c > '9') return nullptr;
        charge = charge * 10 + (c - '0');
    }
    if (charge != Z) return nullptr;
    for (const Particle &p : kParticles)
        if (p.bare_ion && p.Z == Z) return &p;
    return nullptr;
}

const Particle *find_particle(std::string_view text) noexcept {
    text = vlk::trim_blanks(text);
    if (text.empty()) return nullptr;
    for (const Particle &p : kParticles)
        if (vlk::iequals(text, p.symbol) || vlk::iequals(text, p.name) || vlk::iequals(text, p.alias)) return &p;
    return parse_bare_ion(text);
}

void zero(SVLKPROJ &p) noexcept { std::memset(&p, 0, sizeof p); }

// Releases what the record owns and leaves it empty.
void release(SVLKPROJ &p) noexcept { vlk::companion::release(p, VLKPROJ_OWNS, {p.name, p.symbol}); }

// The record of a table row, with the texts given.
SVLKPROJ make(const Particle &q, char *name, char *symbol, uint32_t own) noexcept {
    SVLKPROJ p;
    zero(p);
    p.type = q.type;
    p.name = name;
    p.symbol = symbol;
    p.own = own;
    p.Z = q.Z;
    p.A = q.A;
    p.charge = q.charge;
    p.mass = q.mass;
    return p;
}

uint32_t text_bytes(const char *s) noexcept { return s != nullptr ? static_cast<uint32_t>(std::strlen(s) + 1) : 0u; }

using vlk::companion::printable;

}  // namespace

SCMDSTATUS VLKProjInit(SVLKPROJ *proj, int32_t mode) {
    return vlk::companion_frame(kInit, mode, [&](SCMDSTATUS &s) {
        if (proj == nullptr) return;
        zero(*proj);
        vlk::succeed(s);
    });
}

SCMDSTATUS VLKProjFree(SVLKPROJ *proj, int32_t mode) {
    return vlk::companion_frame(kFree, mode, [&](SCMDSTATUS &s) {
        if (proj == nullptr) return;
        release(*proj);
        vlk::succeed(s);
    });
}

// Texts count whether the record owns them or borrows them.
SCMDSTATUS VLKProjSpace(SVLKPROJ *proj, int32_t mode) {
    return vlk::companion_frame(kSpace, mode, [&](SCMDSTATUS &s) {
        if (proj == nullptr) return;
        proj->space = static_cast<uint32_t>(sizeof(SVLKPROJ)) + text_bytes(proj->name) + text_bytes(proj->symbol);
        vlk::succeed(s);
    });
}

SCMDSTATUS VLKProjDup(SVLKPROJ *dst, const SVLKPROJ *src, int32_t mode) {
    return vlk::companion_frame(kDup, mode, [&](SCMDSTATUS &s) {
        vlk::companion::duplicate(s, dst, src, mode, VLKPROJ_OWNS, [](SVLKPROJ &copy) {
            char *name = copy.name != nullptr ? vlk::dup_text(copy.name) : nullptr;
            char *symbol = copy.symbol != nullptr ? vlk::dup_text(copy.symbol) : nullptr;
            if ((copy.name != nullptr && name == nullptr) || (copy.symbol != nullptr && symbol == nullptr)) {
                std::free(name);
                std::free(symbol);
                return false;
            }
            copy.name = name;
            copy.symbol = symbol;
            return true;
        });
    });
}

// VLKXS_MODE_CHECK, which VLKXSIsValid passes, asks for no further test:
// every check below is made in every mode.
SCMDSTATUS VLKProjIsValid(const SVLKPROJ *proj, int32_t mode) {
    return vlk::companion_frame(kIsValid, mode, [&](SCMDSTATUS &s) {
        if (proj == nullptr) return;
        const bool named = proj->name != nullptr && proj->name[0] != '\0';
        const bool symbolled = proj->symbol != nullptr && proj->symbol[0] != '\0';
        const bool typed = proj->type >= 0 && proj->type <= VLKPROJ_ION;
        if (named && symbolled && typed)
            vlk::succeed(s);
        else
            vlk::fail(s, VLKXS_C_BADPROJ);
    });
}

SCMDSTATUS VLKProjInspect(const SVLKPROJ *proj, int32_t mode) {
    return vlk::companion_frame(kInspect, mode, [&](SCMDSTATUS &s) {
        if (proj == nullptr) return;
        std::fprintf(stderr, "<D> SVLKPROJ=%p\n", static_cast<const void *>(proj));
        std::fprintf(stderr, "      type=%d\n", proj->type);
        std::fprintf(stderr, "      name=%s\n", printable(proj->name));
        std::fprintf(stderr, "    symbol=%s\n", printable(proj->symbol));
        std::fprintf(stderr, "    charge=%g\n", proj->charge);
        std::fprintf(stderr, "      mass=%.10g keV\n", proj->mass);
        std::fprintf(stderr, "         Z=%d\n", proj->Z);
        std::fprintf(stderr, "         A=%d\n", proj->A);
        std::fprintf(stderr, "       own=%u\n", proj->own);
        std::fprintf(stderr, "     space=%u\n", proj->space);
        vlk::succeed(s);
    });
}

// The record is released first and is left empty on any failure.
SCMDSTATUS VLKProjFromStr(SVLKPROJ *proj, const char *text, int32_t mode) {
    return vlk::companion_frame(kFromStr, mode, [&](SCMDSTATUS &s) {
        if (proj == nullptr) return;
        release(*proj);
        if (text == nullptr) return;
        const Particle *q = find_particle(text);
        if (q == nullptr) {
            vlk::fail(s, VLKXS_C_NOPROJ);
            return;
        }
        char *name = vlk::dup_text(q->name);
        char *symbol = name != nullptr ? vlk::dup_text(q->symbol) : nullptr;
        if (symbol == nullptr) {
            std::free(name);
            vlk::fail(s, VLKXS_C_RUNTIME);
            return;
        }
        *proj = make(*q, name, symbol, VLKPROJ_OWNS);
        vlk::succeed(s);
    });
}

// The texts are static and only borrowed: the own bit stays clear, so Free
// releases nothing and nobody writes through them.
SVLKPROJ _VLKProjTest(int32_t k) {
    if (k < 0 || k > 5) {
        SVLKPROJ empty;
        zero(empty);
        return empty;
    }
    const Particle &q = *kTestParticle[k];
    return make(q, const_cast<char *>(q.name), const_cast<char *>(q.symbol), 0u);
}
