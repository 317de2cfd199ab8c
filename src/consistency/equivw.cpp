// Whether all energy records of a shell share one first-level grid: the
// answer goes into the shell's VLKXS_SHFLAG_EQUIVW bit, recomputed from
// scratch at every call.
#include "core/core.hpp"

namespace {

// Exact comparison of doubles: 0.0 equals -0.0, a NaN equals nothing.
// Only the values count, not whether two records share one array.
bool same_grid(const SVLKXSE &ref, const SVLKXSE &e) {
    if (e.n1 != ref.n1) return false;
    if (e.n1 <= 0) return true;
    // A record with points but no grid can't share the reference's.
    if (e.dv1 == nullptr) return false;
    for (int32_t k = 0; k < e.n1; ++k)
        if (!(e.dv1[k] == ref.dv1[k])) return false;
    return true;
}

bool shares_one_grid(const SVLKXSSH &sh) {
    // A shell without records has no grid at all.
    if (sh.pE == nullptr || sh.nE <= 0 || sh.pE[0].dv1 == nullptr) return false;
    for (int32_t j = 1; j < sh.nE; ++j)
        if (!same_grid(sh.pE[0], sh.pE[j])) return false;
    return true;
}

}  // namespace

SCMDSTATUS VLKXSIsEquivW(SVLKXS *set, double /*limit: no tolerance, every point counts*/, int32_t mode) {
    return vlk::run(vlk::op::IsEquivW, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        vlk::fail(st, VLKXS_C_NSHELL);
        if (set->nShell <= 0 || set->pShell == nullptr) return;
        for (int32_t i = 0; i < set->nShell; ++i) {
            SVLKXSSH &sh = set->pShell[i];
            sh.flag &= ~VLKXS_SHFLAG_EQUIVW;
            if (shares_one_grid(sh)) sh.flag |= VLKXS_SHFLAG_EQUIVW;
        }
        vlk::succeed(st);
    });
}
