// The gd plot export: a valid set as tables for a plot program, with the
// identity of the set in comments, axis labels, and one or more tables for
// each shell behind "H:" lines that name the columns and the curve styles.
#include <cmath>

#include "core/core.hpp"

namespace {

// The angle in degrees of a cosine; the usual ones exactly.
double degrees(double c) {
    if (c == 0.0) return 90.0;
    if (c == 0.5) return 60.0;
    if (c == 1.0) return 0.0;
    if (c == -0.5) return 120.0;
    if (c == -1.0) return 180.0;
    return std::acos(c) * 180.0 / 3.141592653589793;
}

class Export {
public:
    Export(vlk::TextOut &out, const SVLKXS &set) : out_(out), set_(set) {}

    void head() {
        out_.text(set_.proj.symbol).text("->").text(set_.targ.name).text(", ").text(set_.IAtag).ch('\n');
        out_.text("c:filetype    xs ").text(set_.IAtag).ch(',').text(set_.dimtag).ch('\n');
        out_.text("c:fileversion ").d(20080825).ch('\n');
        out_.text("c:filedate    ").date().ch('\n');
        out_.text("c:target      ").text(set_.targ.name).ch('\n');
        out_.text("c:projectile  ").text(set_.proj.symbol).ch('\n');
        switch (set_.dim) {
            case 0: out_.text(ion() ? "x: E[MeV/u]\n" : "x: E[keV]\n").text("y: si^[cm2@]\np: xlog ylog\n"); break;
            case 1:
                out_.text(set_.IA == 1 ? "x: cos(th^)\ny: dsi^/dOm^[cm2@/sr]\n"
                                       : "x: E[keV]\ny: dsi^/dE[cm2@/keV]\np: xlog\n")
                    .text("p: ylog\n");
                break;
            case 2: out_.text("x: \ny: dsi^/dE/dOm^[cm2@/keVsr]\np: ylog\n"); break;
            default: break;
        }
    }

    void shell(const SVLKXSSH &sh) {
        shell_ = sh.shell;
        out_.text("c:\nc:shell       ").d(sh.shell).text("\nc:\n");
        if (set_.dim == 0) {
            out_.text("c:E_proj E_scaled beta2 gamma WNorm sigma_xx/cm**2 sigma_scaled E_bind E_kin LET/keVcm**2/g\n");
            out_.text("H: x n1 n2 n3 n4 y5(shell ").d(sh.shell).text("),").text(style()).text(" n6 n7 n8 n9\n");
            for (const SVLKXSE &e : vlk::records(sh)) {
                for (double v : {e.E, e.Escal, e.beta2, e.gamma, e.WNorm, e.sigtot, e.scaled, e.km, e.Ekin})
                    out_.g(v).ch(' ');
                out_.g(e.LET).ch('\n');
            }
            return;
        }
        for (const SVLKXSE &e : vlk::records(sh)) {
            if (set_.dim == 1) single(e);
            if (set_.dim == 2) double_differential(e);
        }
    }

private:
    bool ion() const { return set_.proj.type == VLKPROJ_ION; }
    // The factor of the secondary energies: WNorm for ions, else 1.
    double factor(const SVLKXSE &e) const { return ion() ? e.WNorm : 1.0; }
    // "l", the colour tag and the shell number: one style for a shell.
    const char *style() {
        std::snprintf(style_, sizeof style_, "l%s%d", set_.coltag != nullptr ? set_.coltag : "", shell_);
        return style_;
    }
    // "y1(v),style n2(v),style" for the "H:" lines.
    void curves(double v, const char *between) {
        out_.text(" y1(").g(v).text("),").text(style()).text(between).text(" n2(").g(v).text("),").text(style());
        out_.ch('\n');
    }

    void single(const SVLKXSE &e) {
        out_.text("c:eproj      ").g(e.E).ch('\n');
        out_.text("H: x*").g(factor(e));
        curves(e.E, "");
        out_.text("c:xxx dsigma_si/cm**2/xxx sigma/cm**2\n");
        for (int32_t k = 0; k < e.n1; ++k) out_.row(e.dv1[k], e.dvSig1[k], e.dvCum1[k]);
    }

    // One table over the secondary energy where the first point has one
    // angle, else one table over the cosine for each secondary energy.
    void double_differential(const SVLKXSE &e) {
        out_.text("c:eproj      ").g(e.E).ch('\n');
        const double f = factor(e);
        if (e.n1 > 0 && e.nv2[0] == 1) {
            const double a = degrees(e.pdv2[0][0]);
            out_.text("c:asec       ").g(a).ch('\n').text("H: x");
            curves(a, "");
            out_.text("c:W dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV\n");
            for (int32_t k = 0; k < e.n1; ++k) out_.row(f * e.dv1[k], e.pdvSig2[k][0], e.pdvCum2[k][0]);
            return;
        }
        for (int32_t k = 0; k < e.n1; ++k) {
            out_.text("c:esec       ").g(f * e.dv1[k]).text(" keV\n").text("H: x");
            curves(e.dv1[k], " (n1=acos(y1)/3.14159*180)");
            out_.text("c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV\n");
            for (int32_t j = 0; j < e.nv2[k]; ++j) out_.row(e.pdv2[k][j], e.pdvSig2[k][j], e.pdvCum2[k][j]);
        }
    }

    vlk::TextOut &out_;
    const SVLKXS &set_;
    int32_t shell_ = 0;
    char style_[32] = {};
};

}  // namespace

SCMDSTATUS VLKXSExportgd(SVLKXS *set, const char *prefix, int32_t mode) {
    return vlk::run(vlk::op::Exportgd, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr || prefix == nullptr) return;
        if (!vlk::in_turn(st, set, mode, {vlk::is_valid, VLKXSStrFromIAType, VLKXSStrFromIADim, VLKXSColFromIAType}))
            return;
        vlk::TextOut out;
        if (!out.open(*set, prefix, ".xs.gd")) return vlk::fail(st, VLKXS_C_RUNTIME);
        Export gd(out, *set);
        gd.head();
        for (const SVLKXSSH &sh : vlk::shells(*set)) gd.shell(sh);
        out.close();
        vlk::succeed(st);
    });
}
