// Duplication of a set: a shallow record that borrows every table of its
// source, or a deep copy that owns its own.  Each count is stored as soon as
// its array exists, so that VLKXSFree after a failure reaches everything
// made so far; the source is never touched.
#include <cstring>

#include "core/core.hpp"

namespace {

using vlk::make;

// An array of n values copied from `from`, or nothing where the source has none.
template <class T>
bool copy_array(T *&to, const T *from, int32_t n) {
    if (from == nullptr) return true;
    if (!make(to, n)) return false;
    std::memcpy(to, from, vlk::count_of(n) * sizeof(T));
    return true;
}

// The fourteen doubles, and with n1 above 0 the tables; `at` stays zero.
bool copy_record(SVLKXSE &d, const SVLKXSE &s) {
    d.E = s.E, d.Escal = s.Escal, d.sigtot = s.sigtot, d.scaled = s.scaled, d.km = s.km;
    d.beta2 = s.beta2, d.gamma = s.gamma, d.Ekin = s.Ekin, d.LET = s.LET, d.WNorm = s.WNorm;
    std::memcpy(d.W, s.W, sizeof d.W);
    if (s.n1 <= 0) return true;
    d.n1 = s.n1;
    if (!copy_array(d.dv1, s.dv1, s.n1) || !copy_array(d.dvSig1, s.dvSig1, s.n1) ||
        !copy_array(d.dvCum1, s.dvCum1, s.n1))
        return false;
    if (s.nv2 == nullptr) return true;
    if (!copy_array(d.nv2, s.nv2, s.n1) || !make(d.pdv2, s.n1) || !make(d.pdvSig2, s.n1) || !make(d.pdvCum2, s.n1))
        return false;
    // A table the source lacks (pdvCum2 before completion) has no rows to copy.
    for (int32_t k = 0; k < s.n1; ++k) {
        if (s.nv2[k] <= 0) continue;
        if ((s.pdv2 != nullptr && !copy_array(d.pdv2[k], s.pdv2[k], s.nv2[k])) ||
            (s.pdvSig2 != nullptr && !copy_array(d.pdvSig2[k], s.pdvSig2[k], s.nv2[k])) ||
            (s.pdvCum2 != nullptr && !copy_array(d.pdvCum2[k], s.pdvCum2[k], s.nv2[k])))
            return false;
    }
    return true;
}

// Shells and records anew; a shell's flag and `at` stay zero.
bool copy_tree(SVLKXS &d, const SVLKXS &s) {
    const auto shells = vlk::shells(s);
    if (shells.empty()) return true;
    if (!make(d.pShell, s.nShell)) return false;
    d.nShell = s.nShell;
    for (std::size_t i = 0; i < shells.size(); ++i) {
        SVLKXSSH &to = d.pShell[i];
        to.shell = shells[i].shell;
        const auto records = vlk::records(shells[i]);
        if (records.empty()) continue;
        if (!make(to.pE, shells[i].nE)) return false;
        to.nE = shells[i].nE;
        for (std::size_t j = 0; j < records.size(); ++j)
            if (!copy_record(to.pE[j], records[j])) return false;
    }
    return true;
}

}  // namespace

SCMDSTATUS VLKXSDup(SVLKXS *dst, const SVLKXS *src, int32_t mode) {
    return vlk::run(
        vlk::op::Dup, mode,
        [&](SCMDSTATUS &st) {
            if (dst == nullptr) return;
            VLKXSInit(dst, mode);
            if (src == nullptr) return;
            // Everything borrowed first: until the end, Free leaves it alone.
            std::memcpy(dst, src, sizeof *dst);
            dst->flag |= VLKXS_FLAG_SHALLOW;
            const bool shallow = (mode & VLKXS_MODE_SHALLOW) != 0;
            const int32_t word = vlk::trace_bit(mode) | (shallow ? VLKXS_MODE_SHALLOW : 0);
            if (vlk::severe(VLKProjDup(&dst->proj, &src->proj, word).level)) return vlk::fail(st, VLKXS_C_PROJDUP);
            if (vlk::severe(VLKTargDup(&dst->targ, &src->targ, word).level)) {
                // Free skips the companions of a set marked shallow: release
                // the projectile's own copy here.
                if (!shallow) VLKProjFree(&dst->proj, vlk::trace_bit(mode));
                return vlk::fail(st, VLKXS_C_TARGDUP);
            }
            if (shallow) return vlk::succeed(st);
            dst->pShell = nullptr;
            dst->nShell = 0;
            dst->infile = nullptr;
            dst->flag &= ~VLKXS_FLAG_SHALLOW;
            if (!copy_tree(*dst, *src)) return vlk::fail(st, VLKXS_C_RUNTIME);
            VLKXSSpace(dst, mode);
            vlk::succeed(st);
        },
        [&] {
            if (dst != nullptr) VLKXSFree(dst, mode);
        });
}
