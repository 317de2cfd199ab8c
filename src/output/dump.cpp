// The structure dump of a set in any state, on the standard error stream:
// fields, array pointers, and with the deep bit every number of every
// table.  It validates nothing, and a missing array shows as "--".
#include <cinttypes>
#include <cstdio>

#include "core/core.hpp"

namespace {

// A pointer as "%X" shows it: its address in upper-case hexadecimal.
uintptr_t hex(const void *p) { return reinterpret_cast<uintptr_t>(p); }

// " %G" with element i of `a`, or " --" without the array; `lead` goes first.
void value_or_dash(const char *lead, const double *a, int32_t i) {
    if (a != nullptr)
        std::fprintf(stderr, "%s%G", lead, a[i]);
    else
        std::fprintf(stderr, "%s--", lead);
}

// The rows of one first-level point: counts and values, then the row
// pointers and the second level under them.
void point(const SVLKXSE &e, int32_t k) {
    std::fputs("              d1=", stderr);
    if (e.nv2 != nullptr)
        std::fprintf(stderr, "%d", e.nv2[k]);
    else
        std::fputs("--", stderr);
    value_or_dash(" ", e.dv1, k);
    value_or_dash(" ", e.dvSig1, k);
    value_or_dash(" ", e.dvCum1, k);
    std::fputc('\n', stderr);
    // A set without second-level arrays (dim 1) gets "--" for their rows.
    const double *rows[3] = {e.pdv2 != nullptr ? e.pdv2[k] : nullptr, e.pdvSig2 != nullptr ? e.pdvSig2[k] : nullptr,
                             e.pdvCum2 != nullptr ? e.pdvCum2[k] : nullptr};
    double *const *tables[3] = {e.pdv2, e.pdvSig2, e.pdvCum2};
    std::fputs("              d2=", stderr);
    for (int t = 0; t < 3; ++t) {
        if (tables[t] != nullptr)
            std::fprintf(stderr, t == 0 ? "%" PRIXPTR : " %" PRIXPTR, hex(rows[t]));
        else
            std::fputs(t == 0 ? "--" : " --", stderr);
    }
    std::fputc('\n', stderr);
    const int32_t n2 = e.nv2 != nullptr ? e.nv2[k] : 0;
    for (int32_t j = 0; j < n2; ++j) {
        value_or_dash("                 ", rows[0], j);
        value_or_dash(" ", rows[1], j);
        value_or_dash(" ", rows[2], j);
        std::fputc('\n', stderr);
    }
}

void energy(const SVLKXSE &e) {
    std::fprintf(stderr, "           E=%G Escal=%G sigtot=%G scaled=%G km=%G beta2=%G gamma=%G LET=%G WNorm=%G\n", e.E,
                 e.Escal, e.sigtot, e.scaled, e.km, e.beta2, e.gamma, e.LET, e.WNorm);
    std::fprintf(stderr, "           W[]=%G %G %G %G\n", e.W[0], e.W[1], e.W[2], e.W[3]);
    std::fprintf(stderr, "           n1=%d %" PRIXPTR " %" PRIXPTR " %" PRIXPTR " %" PRIXPTR "\n", e.n1, hex(e.nv2),
                 hex(e.dv1), hex(e.dvSig1), hex(e.dvCum1));
    for (int32_t k = 0; k < e.n1; ++k) point(e, k);
}

}  // namespace

SCMDSTATUS VLKXSInspect(const SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::Inspect, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        const bool deep = (mode & VLKXS_MODE_DEEP) != 0, forced = (mode & VLKXS_MODE_FORCED) != 0;
        const auto shells = vlk::shells(*set);
        if (shells.empty() && !deep && !forced) return vlk::succeed(st);
        std::fprintf(stderr, "<D> SVLKXS=%" PRIXPTR "\n", hex(set));
        std::fprintf(stderr, "      flag=%X\n", set->flag);
        std::fprintf(stderr, "        IA=%d\n", set->IA);
        std::fprintf(stderr, "     space=%lu\n", static_cast<unsigned long>(set->space));
        std::fprintf(stderr, "       dim=%d %X\n", set->dim, set->dimmask);
        if (set->infile != nullptr) std::fprintf(stderr, "    infile=%s\n", set->infile);
        VLKProjInspect(&set->proj, vlk::trace_bit(mode));
        VLKTargInspect(&set->targ, vlk::trace_bit(mode));
        std::fprintf(stderr, "     shell=%d %" PRIXPTR "\n", set->nShell, hex(set->pShell));
        for (const SVLKXSSH &sh : shells) {
            std::fprintf(stderr, "     shell#%d\n", sh.shell);
            std::fprintf(stderr, "        *E=%d %" PRIXPTR "\n", sh.nE, hex(sh.pE));
            if (deep)
                for (const SVLKXSE &e : vlk::records(sh)) energy(e);
        }
        vlk::succeed(st);
    });
}
