// The writer of xs files: the reference layout of the format, for a valid
// set, under a name made from the caller's prefix and the set itself.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include "core/core.hpp"

namespace {

// The text of ctime(): "Www Mmm dd hh:mm:ss yyyy\n", in the C locale and
// without ctime's static buffer, so that writers on two threads don't meet.
void date_line(vlk::TextOut &out, std::time_t now) {
    static constexpr const char *kDay[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char *kMonth[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm t{};
#if defined(_WIN32)
    localtime_s(&t, &now);
#else
    localtime_r(&now, &t);
#endif
    char text[64];
    std::snprintf(text, sizeof text, "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n", kDay[t.tm_wday % 7], kMonth[t.tm_mon % 12],
                  t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_year + 1900);
    out.text("!filedate    ").text(text);
}

// "!eproj" with E, and km in the sum shell alone.
void eproj_line(vlk::TextOut &out, const SVLKXSE &e, bool sum) {
    out.text("!eproj      ").g(e.E);
    if (sum) out.ch(' ').g(e.km);
    out.ch('\n');
}

void row(vlk::TextOut &out, double a, double b, double c) { out.g(a).ch(' ').g(b).ch(' ').g(c).ch('\n'); }

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
            for (int32_t k = 0; k < e.n1; ++k) row(out, e.dv1[k] * e.WNorm, e.dvSig1[k], e.dvCum1[k]);
            continue;
        }
        for (int32_t k = 0; k < e.n1; ++k) {
            out.text("!esec       ").g(e.dv1[k] * e.WNorm).ch('\n');
            out.text("#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>\n");
            for (int32_t m = 0; m < e.nv2[k]; ++m) row(out, e.pdv2[k][m], e.pdvSig2[k][m], e.pdvCum2[k][m]);
        }
    }
}

}  // namespace

SCMDSTATUS VLKXSWrite(SVLKXS *set, const char *prefix, int32_t mode) {
    return vlk::run(vlk::op::Write, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr || prefix == nullptr) return;
        // Each in turn; the first failure is taken over and nothing is written.
        using Step = SCMDSTATUS (*)(SVLKXS *, int32_t);
        constexpr Step steps[] = {[](SVLKXS *s, int32_t m) { return VLKXSIsValid(s, m); }, VLKXSStrFromIAType,
                                  VLKXSStrFromIADim};
        for (Step step : steps)
            if (const SCMDSTATUS r = step(set, mode); vlk::severe(r.level)) return vlk::take_code(st, r);
        const char *symbol = set->proj.symbol, *name = set->targ.name;
        const std::size_t size = std::strlen(prefix) + std::strlen(symbol) + std::strlen(set->dimtag) +
                                 std::strlen(name) + std::strlen(set->IAtag) + 64;
        vlk::Buffer<char> path;
        if (!path.reserve(size)) return vlk::fail(st, VLKXS_C_RUNTIME);
        std::snprintf(path.data(), size, "%s%s.%s.%s%s.xs", prefix, symbol, name, set->IAtag, set->dimtag);
        vlk::TextOut out;
        if (!out.open(path.data())) return vlk::fail(st, VLKXS_C_RUNTIME);
        out.text("!filetype    xs ").text(set->IAtag).ch(',').text(set->dimtag).ch('\n');
        out.text("!fileversion ").d(20080825).ch('\n');
        date_line(out, std::time(nullptr));
        out.text("!target      ").text(name).ch('\n');
        out.text("!projectile  ").text(symbol).ch('\n');
        for (const SVLKXSSH &sh : vlk::shells(*set)) {
            out.text("#\n!shell       ").d(sh.shell).text("\n\n");
            shell_table(out, sh, set->dim);
        }
        out.close();
        vlk::succeed(st);
    });
}
