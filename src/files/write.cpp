// The writer of xs files: the reference layout of the format, for a valid
// set, under a name made from the caller's prefix and the set itself.
#include "core/core.hpp"

namespace {

// "!eproj" with E, and km in the sum shell alone.
void eproj_line(vlk::TextOut &out, const SVLKXSE &e, bool sum) {
    out.text("!eproj      ").g(e.E);
    if (sum) out.ch(' ').g(e.km);
    out.ch('\n');
}

void shell_table(vlk::TextOut &out, const SVLKXSSH &sh, int32_t dim) {
    const bool sum = sh.shell == 0;
    if (dim == 0) out.text("#<E_proj> <sigma_xx/cm**2> [<E_loss>]\n");
    for (const SVLKXSE &e : vlk::records(sh)) {
        if (dim == 0) {
            out.g(e.E).ch(' ').g(e.sigtot);
            if (sum) out.ch(' ').g(e.km);
            out.ch('\n');
            continue;
        }
        eproj_line(out, e, sum);
        if (dim == 1) {
            out.text("#<E_e-/keV> <dsigma_si/dE/cm**2/keV>\n");
            for (int32_t k = 0; k < e.n1; ++k) out.row(e.dv1[k] * e.WNorm, e.dvSig1[k], e.dvCum1[k]);
            continue;
        }
        for (int32_t k = 0; k < e.n1; ++k) {
            out.text("!esec       ").g(e.dv1[k] * e.WNorm).ch('\n');
            out.text("#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>\n");
            for (int32_t m = 0; m < e.nv2[k]; ++m) out.row(e.pdv2[k][m], e.pdvSig2[k][m], e.pdvCum2[k][m]);
        }
    }
}

}  // namespace

SCMDSTATUS VLKXSWrite(SVLKXS *set, const char *prefix, int32_t mode) {
    return vlk::run(vlk::op::Write, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr || prefix == nullptr) return;
        // Nothing is written after a failure of these.
        if (!vlk::in_turn(st, set, mode, {vlk::is_valid, VLKXSStrFromIAType, VLKXSStrFromIADim})) return;
        vlk::TextOut out;
        if (!out.open(*set, prefix, ".xs")) return vlk::fail(st, VLKXS_C_RUNTIME);
        out.text("!filetype    xs ").text(set->IAtag).ch(',').text(set->dimtag).ch('\n');
        out.text("!fileversion ").d(20080825).ch('\n');
        out.text("!filedate    ").date();
        out.text("!target      ").text(set->targ.name).ch('\n');
        out.text("!projectile  ").text(set->proj.symbol).ch('\n');
        for (const SVLKXSSH &sh : vlk::shells(*set)) {
            out.text("#\n!shell       ").d(sh.shell).text("\n\n");
            shell_table(out, sh, set->dim);
        }
        out.close();
        vlk::succeed(st);
    });
}
