// Completion of a set, in three stages:
//   1. the shell numbers are tested, a shell numbered 0 is moved to the end,
//      and a set of two shells or more without one gets a sum shell there;
//   2. one pass over the shells present at entry derives every energy
//      record (kinematics, binding energy, integrals, LET) and adds it into
//      the sum shell;
//   3. the sums of km and Ekin become means weighted by the cross section,
//      and every cumulated table is normalised to end at 1.
// Nothing is rolled back on failure: counts are stored only after their
// arrays exist, so the set is always safe to release.
#include "core/core.hpp"

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>


namespace {

using vlk::kAvogadro;
using vlk::kTwoPi;
using vlk::make;

// A record with points whose first or second level is larger than that of
// the first shell's record at the same place, or a shell with more records
// than the first shell, would add past the sum shell's arrays, which are
// shaped after the first shell.  Such a set is refused before anything is
// changed.  Shells without records are left to the pass, which stops at a
// missing record array.
bool fits_first_shell(const SVLKXS &set) {
    const SVLKXSSH &first = set.pShell[0];
    for (int32_t i = 1; i < set.nShell; ++i) {
        const SVLKXSSH &sh = set.pShell[i];
        if (sh.pE == nullptr || sh.nE < 1) continue;
        if (sh.nE > first.nE || first.pE == nullptr) return false;
        for (int32_t j = 0; j < sh.nE; ++j) {
            const SVLKXSE &r = sh.pE[j];
            const SVLKXSE &f = first.pE[j];
            if (r.n1 < 1) continue;
            if (r.n1 > f.n1) return false;
            if (r.nv2 == nullptr) continue;
            for (int32_t k = 0; k < r.n1; ++k)
                if (r.nv2[k] >= 1 && (f.nv2 == nullptr || r.nv2[k] > f.nv2[k])) return false;
        }
    }
    return true;
}

// Sizes record i of the sum shell after record i of the first shell.  Each
// count is stored after the arrays that it counts.
int32_t shape_sum_record(SVLKXSE &s, const SVLKXSE &f) {
    if (f.n1 < 1) return VLKXS_C_OK;
    if (!make(s.dvSig1, f.n1) || !make(s.dvCum1, f.n1) || !make(s.dv1, f.n1)) return VLKXS_C_RUNTIME;
    s.n1 = f.n1;
    if (f.nv2 == nullptr) return VLKXS_C_OK;
    if (!make(s.pdvSig2, f.n1) || !make(s.pdvCum2, f.n1) || !make(s.pdv2, f.n1) || !make(s.nv2, f.n1))
        return VLKXS_C_RUNTIME;
    for (int32_t j = 0; j < f.n1; ++j) {
        if (f.nv2[j] < 1) continue;
        if (!make(s.pdvSig2[j], f.nv2[j]) || !make(s.pdvCum2[j], f.nv2[j]) || !make(s.pdv2[j], f.nv2[j]))
            return VLKXS_C_RUNTIME;
        s.nv2[j] = f.nv2[j];
    }
    return VLKXS_C_OK;
}

// Appends the sum shell to pShell.  On a failed reallocation the old array
// and nShell stay; later failures leave a partly shaped sum shell that the
// set owns.
int32_t create_sum_shell(SVLKXS &set) {
    if (set.nShell == std::numeric_limits<int32_t>::max()) return VLKXS_C_RUNTIME;  // no room to count one more
    const std::size_t n = vlk::count_of(set.nShell);
    void *grown = vlk::zrealloc(set.pShell, n * sizeof(SVLKXSSH), (n + 1) * sizeof(SVLKXSSH));
    if (grown == nullptr) return VLKXS_C_RUNTIME;
    set.pShell = static_cast<SVLKXSSH *>(grown);
    set.nShell += 1;  // the new record is zero-filled: shell 0, no records
    const SVLKXSSH &first = set.pShell[0];
    SVLKXSSH &sum = set.pShell[n];
    if (first.nE < 1) return VLKXS_C_OK;
    if (!make(sum.pE, first.nE)) return VLKXS_C_RUNTIME;
    sum.nE = first.nE;
    for (int32_t i = 0; i < first.nE; ++i)
        if (const int32_t code = shape_sum_record(sum.pE[i], first.pE[i]); code != VLKXS_C_OK) return code;
    return VLKXS_C_OK;
}

// --- Stage 2: one energy record ------------------------------------------

// Divides n values by `by`.  Multiplying by the reciprocal is the fast way,
// but below about 5.6e-309 (a subnormal total)
// the reciprocal overflows to infinity, and 0 times it would give NaN and
// the largest value infinity instead of 1: such a divisor divides.
void scale_down(double *v, int32_t n, double by) {
    const double scale = 1.0 / by;
    if (std::isfinite(scale)) {
        vsmul(v, 1, scale, v, 1, n);
        return;
    }
    for (int32_t i = 0; i < n; ++i) v[i] /= by;
}

using vlk::charged;

// gamma, beta2, Escal and WNorm from E; WNorm stays as it was for
// projectiles that aren't charged.
void kinematics(SVLKXSE &e, int32_t type) {
    const vlk::Kinematics k = vlk::kinematics(e.E, type);
    e.beta2 = k.beta2;
    e.Escal = k.Escal;
    if (!charged(type)) return;
    e.gamma = k.gamma;
    e.WNorm = k.WNorm;
}

// Double differential tables: running integrals over solid angle, and from
// their ends the single differential table.  The sign of 2 pi follows the
// direction of the cosine grid, judged by its first two points, so that a
// descending grid still integrates to a positive value.
int32_t integrate_angles(SVLKXSE &e) {
    if (e.nv2 == nullptr || e.pdv2 == nullptr || e.pdvSig2 == nullptr) return VLKXS_C_BADADDR;
    if (e.pdvCum2 == nullptr && !make(e.pdvCum2, e.n1)) return VLKXS_C_RUNTIME;
    if (e.n1 < 1) return VLKXS_C_BADADDR;
    for (int32_t j = 0; j < e.n1; ++j) {
        const int32_t n = e.nv2[j];
        if (e.pdv2[j] == nullptr || e.pdvSig2[j] == nullptr || n < 1) return VLKXS_C_BADADDR;
        if (e.pdvCum2[j] == nullptr && !make(e.pdvCum2[j], n)) return VLKXS_C_RUNTIME;
        vtrapz(e.pdv2[j], 1, e.pdvSig2[j], 1, e.pdvCum2[j], 1, n);
        const bool descending = n > 1 && e.pdv2[j][0] > e.pdv2[j][1];
        vsmul(e.pdvCum2[j], 1, descending ? -kTwoPi : kTwoPi, e.pdvCum2[j], 1, n);
    }
    if (e.dvSig1 == nullptr && !make(e.dvSig1, e.n1)) return VLKXS_C_RUNTIME;
    for (int32_t j = 0; j < e.n1; ++j) e.dvSig1[j] = e.pdvCum2[j][e.nv2[j] - 1];
    return VLKXS_C_OK;
}

// Single differential table: the running integral gives sigtot, the first
// moment Ekin, both on the grid as it came.  An ionisation grid then turns
// into fractions of WNorm.
int32_t integrate_energies(SVLKXSE &e, int32_t IA) {
    if (e.n1 < 1 || e.dv1 == nullptr || e.dvSig1 == nullptr) return VLKXS_C_BADADDR;
    if (e.dvCum1 == nullptr && !make(e.dvCum1, e.n1)) return VLKXS_C_RUNTIME;
    vtrapz(e.dv1, 1, e.dvSig1, 1, e.dvCum1, 1, e.n1);
    e.sigtot = e.dvCum1[e.n1 - 1];
    e.Ekin = vtrapz1(e.dv1, 1, e.dvSig1, 1, nullptr, 1, e.n1);
    if (IA == 2 && e.WNorm != 0.0) {
        // The grid must come back when multiplied by WNorm again (the writer
        // and the samplers do).  An infinite WNorm (E beyond about 1e154 keV)
        // or one whose reciprocal overflows (E of a few 1e-309 keV) would
        // leave zeros, infinities or NaNs in its place.
        if (std::isinf(e.WNorm) || std::isinf(1.0 / e.WNorm)) return VLKXS_C_ENERGY;
        vsmul(e.dv1, 1, 1.0 / e.WNorm, e.dv1, 1, e.n1);
    }
    return VLKXS_C_OK;
}

// Adds record r of a summed shell into record s of the sum shell, walking
// r's counts; the sum shell's arrays are at least as large (checked before
// the sum shell was made).  Grids are copied, so the last shell wins.  A
// table that r lacks adds nothing.
void accumulate(SVLKXSE &s, const SVLKXSE &r, double ebind) {
    s.sigtot += r.sigtot;
    s.scaled += r.scaled;
    s.km += r.sigtot * ebind;
    s.Ekin += r.sigtot * r.Ekin;
    s.LET += r.LET;
    for (int32_t k = 0; k < r.n1; ++k) {
        if (r.dv1 != nullptr) s.dv1[k] = r.dv1[k];
        if (r.dvSig1 != nullptr) s.dvSig1[k] += r.dvSig1[k];
        if (r.dvCum1 != nullptr) s.dvCum1[k] += r.dvCum1[k];
        if (r.nv2 == nullptr) continue;
        for (int32_t m = 0; m < r.nv2[k]; ++m) {
            if (r.pdv2 != nullptr && r.pdv2[k] != nullptr) s.pdv2[k][m] = r.pdv2[k][m];
            if (r.pdvSig2 != nullptr && r.pdvSig2[k] != nullptr) s.pdvSig2[k][m] += r.pdvSig2[k][m];
            if (r.pdvCum2 != nullptr && r.pdvCum2[k] != nullptr) s.pdvCum2[k][m] += r.pdvCum2[k][m];
        }
    }
}

class Pass {
public:
    Pass(SVLKXS &set, int32_t entry) : set_(set), entry_(entry) {}

    int32_t run() {
        // The shells present at entry; a missing record array stops the pass.
        for (SVLKXSSH &sh : vlk::shells(set_).first(vlk::count_of(entry_))) {
            if (sh.pE == nullptr) return VLKXS_C_BADADDR;
            for (int32_t j = 0; j < sh.nE; ++j)
                if (const int32_t code = derive(sh, j); code != VLKXS_C_OK) return code;
        }
        return VLKXS_C_OK;
    }

private:
    // The sum shell, if this call created it (pShell doesn't move any more
    // once the pass runs).
    SVLKXSSH *sum() const { return set_.nShell != entry_ ? &set_.pShell[entry_] : nullptr; }
    double ebind(const SVLKXSSH &sh) const { return set_.targ.pShell[sh.shell].Ebind; }

    int32_t derive(const SVLKXSSH &sh, int32_t j) {
        SVLKXSE &e = sh.pE[j];
        kinematics(e, set_.proj.type);
        // A positive km from the source stays; NaN stays too.
        if (e.km <= 0.0) e.km = ebind(sh);
        SVLKXSSH *const s = sum();
        if (s != nullptr) {
            const SVLKXSE &f = set_.pShell[0].pE[j];
            SVLKXSE &t = s->pE[j];
            t.E = f.E;
            t.gamma = f.gamma;
            t.beta2 = f.beta2;
            t.Escal = f.Escal;
            t.WNorm = f.WNorm;
        }
        int32_t code = VLKXS_C_OK;
        switch (set_.dim) {
            case 0: break;
            case 2:
                code = integrate_angles(e);
                if (code == VLKXS_C_OK) code = integrate_energies(e, set_.IA);
                break;
            case 1: code = integrate_energies(e, set_.IA); break;
            default: return VLKXS_C_IADIM;
        }
        if (code != VLKXS_C_OK) return code;
        e.LET = (e.Ekin + e.km) * e.sigtot * kAvogadro / set_.targ.M;
        e.scaled = charged(set_.proj.type) ? e.sigtot * e.beta2 : e.sigtot;
        if (s != nullptr) accumulate(s->pE[j], e, ebind(sh));
        return VLKXS_C_OK;
    }

    SVLKXS &set_;
    const int32_t entry_;
};

// --- Stage 3 ---------------------------------------------------------------

// Sums of km and Ekin weighted by sigtot become means; a record whose sum
// of cross sections isn't positive keeps the raw sums.
void divide_sums(SVLKXSSH &sum) {
    for (int32_t i = 0; i < sum.nE; ++i) {
        SVLKXSE &s = sum.pE[i];
        if (!(s.sigtot > 0.0)) continue;
        s.km /= s.sigtot;
        s.Ekin /= s.sigtot;
    }
}

// Scales a cumulated table to end at 1; one with an end that isn't above 0
// (all zero, negative, NaN) stays as it is.
void normalise(double *cum, int32_t n) {
    const double last = cum[n - 1];
    if (last > 0.0) scale_down(cum, n, last);
}

void normalise_all(SVLKXS &set) {
    vlk::for_each_record(set, [](SVLKXSE &e) {
        if (e.nv2 != nullptr && e.pdvCum2 != nullptr)
            for (int32_t k = 0; k < e.n1; ++k)
                if (e.pdvCum2[k] != nullptr && e.nv2[k] >= 1) normalise(e.pdvCum2[k], e.nv2[k]);
        if (e.n1 >= 1 && e.dvCum1 != nullptr) normalise(e.dvCum1, e.n1);
    });
}

// --- Stage 1 and the whole -------------------------------------------------

int32_t complete(SVLKXS &set) {
    if (set.pShell == nullptr) return VLKXS_C_BADADDR;
    if (set.nShell < 1) return VLKXS_C_OK;
    const int32_t entry = set.nShell;

    // Shell numbers index the target's table, 0 included; the last shell
    // numbered 0 is the one that goes to the end.
    int32_t zero_at = entry;
    for (int32_t i = 0; i < entry; ++i) {
        const int32_t number = set.pShell[i].shell;
        if (number < 0 || number > set.targ.nShell) return VLKXS_C_SHELLNUMBER;
        if (number == 0) zero_at = i;
    }
    // Every record reads a binding energy from the target's table.
    if (set.targ.pShell == nullptr) return VLKXS_C_BADADDR;

    if (zero_at < entry - 1) {
        std::swap(set.pShell[zero_at], set.pShell[entry - 1]);
    } else if (zero_at == entry && entry >= 2) {
        const SVLKXSSH &first = set.pShell[0];
        if (first.nE >= 1 && first.pE == nullptr) return VLKXS_C_BADADDR;
        if (!fits_first_shell(set)) return VLKXS_C_BADADDR;
        // A shallow set borrows pShell from its source: growing it would free
        // the source's array under it.
        if ((set.flag & VLKXS_FLAG_SHALLOW) != 0) return VLKXS_C_BADADDR;
        if (const int32_t code = create_sum_shell(set); code != VLKXS_C_OK) return code;
    }
    if (set.pShell[0].pE == nullptr) return VLKXS_C_BADADDR;

    if (const int32_t code = Pass(set, entry).run(); code != VLKXS_C_OK) return code;
    if (set.nShell != entry) divide_sums(set.pShell[entry]);
    normalise_all(set);
    return VLKXS_C_OK;
}

}  // namespace

SCMDSTATUS VLKXSComplete(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::Complete, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        const int32_t code = complete(*set);
        if (code == VLKXS_C_OK)
            vlk::succeed(st);
        else
            vlk::fail(st, code);
    });
}
