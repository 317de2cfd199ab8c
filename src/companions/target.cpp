// The target companion: the material record that a cross-section set
// carries, its life cycle, and the import of a built-in material.
//
// A record owns its `name` and `pShell` only when VLKTARG_OWNS is set in
// `own`; test targets and shallow duplicates borrow them.  A zero-filled
// record is a valid empty one, and a record may be copied byte for byte.
// Energies in the shell rows are in keV (see materials.hpp for the sources).
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/alloc.hpp"
#include "materials.hpp"
#include "companions/common.hpp"
#include "core/status.hpp"
#include "vlkxs.h"

namespace {

namespace mat = vlk::materials;

constexpr const char *kInit = "vlktarg(Init)";
constexpr const char *kFree = "vlktarg(Free)";
constexpr const char *kSpace = "vlktarg(Space)";
constexpr const char *kDup = "vlktarg(Dup)";
constexpr const char *kIsValid = "vlktarg(IsValid)";
constexpr const char *kInspect = "vlktarg(Inspect)";
constexpr const char *kImport = "vlktarg(ImportMaterial)";

void zero(SVLKTARG &t) noexcept { std::memset(&t, 0, sizeof t); }

void release(SVLKTARG &t) noexcept { vlk::companion::release(t, VLKTARG_OWNS, {t.name, t.pShell}); }

// Rows of the shell table, or 0 when there is none to count or copy.
std::size_t shell_rows(const SVLKTARG &t) noexcept {
    return (t.pShell != nullptr && t.nShell >= 0) ? static_cast<std::size_t>(t.nShell) + 1 : 0;
}

// The record of a built-in material, with the name and rows given.
SVLKTARG make(const mat::Material &m, char *name, SVLKTARGSH *rows, uint32_t own) noexcept {
    SVLKTARG t;
    zero(t);
    t.name = name;
    t.M = m.M;
    t.nShell = m.nOrbital;
    t.pShell = rows;
    t.own = own;
    t.nAtom = m.nAtom;
    for (std::size_t k = 0; k < mat::kMaxElements; ++k) {
        t.Zatom[k] = m.Zatom[k];
        t.natom[k] = m.natom[k];
    }
    t.density = m.density;
    return t;
}

using vlk::companion::printable;

}  // namespace

SCMDSTATUS VLKTargInit(SVLKTARG *targ, int32_t mode) {
    return vlk::companion_frame(kInit, mode, [&](SCMDSTATUS &s) {
        if (targ == nullptr) return;
        zero(*targ);
        vlk::succeed(s);
    });
}

SCMDSTATUS VLKTargFree(SVLKTARG *targ, int32_t mode) {
    return vlk::companion_frame(kFree, mode, [&](SCMDSTATUS &s) {
        if (targ == nullptr) return;
        release(*targ);
        vlk::succeed(s);
    });
}

// Name and shell rows count whether the record owns them or borrows them.
SCMDSTATUS VLKTargSpace(SVLKTARG *targ, int32_t mode) {
    return vlk::companion_frame(kSpace, mode, [&](SCMDSTATUS &s) {
        if (targ == nullptr) return;
        std::size_t bytes = sizeof(SVLKTARG) + shell_rows(*targ) * sizeof(SVLKTARGSH);
        if (targ->name != nullptr) bytes += std::strlen(targ->name) + 1;
        targ->space = static_cast<uint32_t>(bytes);
        vlk::succeed(s);
    });
}

SCMDSTATUS VLKTargDup(SVLKTARG *dst, const SVLKTARG *src, int32_t mode) {
    return vlk::companion_frame(kDup, mode, [&](SCMDSTATUS &s) {
        vlk::companion::duplicate(s, dst, src, mode, VLKTARG_OWNS, [](SVLKTARG &copy) {
            char *name = copy.name != nullptr ? vlk::dup_text(copy.name) : nullptr;
            const std::size_t n = shell_rows(copy);
            SVLKTARGSH *rows = n > 0 ? vlk::zalloc_n<SVLKTARGSH>(n) : nullptr;
            if ((copy.name != nullptr && name == nullptr) || (n > 0 && rows == nullptr)) {
                std::free(name);
                std::free(rows);
                return false;
            }
            if (n > 0) std::memcpy(rows, copy.pShell, n * sizeof(SVLKTARGSH));
            copy.name = name;
            copy.pShell = rows;  // null when the source had no usable shell table
            return true;
        });
    });
}

// VLKXS_MODE_CHECK, which VLKXSIsValid passes, asks for no further test:
// every check below is made in every mode.
SCMDSTATUS VLKTargIsValid(const SVLKTARG *targ, int32_t mode) {
    return vlk::companion_frame(kIsValid, mode, [&](SCMDSTATUS &s) {
        if (targ == nullptr) return;
        const bool named = targ->name != nullptr && targ->name[0] != '\0';
        const bool shells = targ->nShell >= 0 && targ->pShell != nullptr;
        const bool massive = targ->M > 0.0;  // false for NaN too
        if (named && shells && massive)
            vlk::succeed(s);
        else
            vlk::fail(s, VLKXS_C_BADTARG);
    });
}

SCMDSTATUS VLKTargInspect(const SVLKTARG *targ, int32_t mode) {
    return vlk::companion_frame(kInspect, mode, [&](SCMDSTATUS &s) {
        if (targ == nullptr) return;
        std::fprintf(stderr, "<D> SVLKTARG=%p\n", static_cast<const void *>(targ));
        std::fprintf(stderr, "      name=%s\n", printable(targ->name));
        std::fprintf(stderr, "         M=%g g/mol\n", targ->M);
        std::fprintf(stderr, "   density=%g g/cm3\n", targ->density);
        std::fprintf(stderr, "     nAtom=%d\n", targ->nAtom);
        const int32_t nAtom = targ->nAtom < 0 ? 0 : (targ->nAtom > 4 ? 4 : targ->nAtom);
        for (int32_t k = 0; k < nAtom; ++k)
            std::fprintf(stderr, "   atom[%d]=Z %d x %d\n", k, targ->Zatom[k], targ->natom[k]);
        std::fprintf(stderr, "       own=%u\n", targ->own);
        std::fprintf(stderr, "     space=%u\n", targ->space);
        std::fprintf(stderr, "    nShell=%d\n", targ->nShell);
        const std::size_t n = shell_rows(*targ);
        for (std::size_t i = 0; i < n; ++i) {
            const SVLKTARGSH &r = targ->pShell[i];
            std::fprintf(stderr, "  shell[%zu] Ebind=%.6g keV Ukin=%.6g keV occ=%g\n", i, r.Ebind, r.Ukin, r.occ);
        }
        vlk::succeed(s);
    });
}

// The record is released first and is left empty on any failure.
SCMDSTATUS VLKTargImportMaterial(SVLKTARG *targ, const char *text, int32_t mode) {
    return vlk::companion_frame(kImport, mode, [&](SCMDSTATUS &s) {
        if (targ == nullptr) return;
        release(*targ);
        if (text == nullptr) return;
        const mat::Material *m = mat::find(text);
        if (m == nullptr) {
            vlk::fail(s, VLKXS_C_NOMATERIAL);
            return;
        }
        const std::size_t n = static_cast<std::size_t>(m->nOrbital) + 1;
        char *name = vlk::dup_text(m->name);
        SVLKTARGSH *rows = name != nullptr ? vlk::zalloc_n<SVLKTARGSH>(n) : nullptr;
        if (rows == nullptr) {
            std::free(name);
            vlk::fail(s, VLKXS_C_RUNTIME);
            return;
        }
        std::memcpy(rows, mat::kShellRows[mat::index_of(m)].data(), n * sizeof(SVLKTARGSH));
        *targ = make(*m, name, rows, VLKTARG_OWNS);
        vlk::succeed(s);
    });
}

// Water, borrowing the static name and rows: the own bit stays clear, so
// Free releases nothing and nobody writes through them.  Every argument pair
// gives the same target.
SVLKTARG _VLKTargTest(int32_t /*i*/, int32_t /*j*/) {
    const mat::Material &m = mat::kMaterials[mat::kWater];
    return make(m, const_cast<char *>(m.name), const_cast<SVLKTARGSH *>(mat::kShellRows[mat::kWater].data()), 0u);
}
