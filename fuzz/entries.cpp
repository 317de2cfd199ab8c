// The bodies of the fuzz targets (see entries.h).
#include "entries.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "vlkxs.h"

namespace {

constexpr int32_t kQuiet = VLKXS_MODE_QUIET;

// Every operation ends with a row of the message table.
void known(const SCMDSTATUS &st) {
    if (st.code < 0 || st.code >= VLKXS_C_COUNT) std::abort();
}

// A broken property names its line before the abort.
void require_at(bool property, int line) {
    if (property) return;
    std::fprintf(stderr, "vlkxs fuzz: property of entries.cpp:%d broken\n", line);
    std::abort();
}
#define require(property) require_at((property), __LINE__)

// Files of this process: the input, and the prefix that the writer extends.
const std::string &scratch_base() {
    static const std::string base = [] {
        const char *dir = std::getenv("TMPDIR");
        return std::string(dir != nullptr && *dir != '\0' ? dir : "/tmp") + "/vlkxs-fuzz-" +
               std::to_string(static_cast<long>(getpid())) + "-";
    }();
    return base;
}

bool write_file(const std::string &path, const uint8_t *data, size_t size) {
    std::FILE *f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) return false;
    const bool ok = size == 0 || std::fwrite(data, 1, size, f) == size;
    return std::fclose(f) == 0 && ok;
}

std::string printed(double v) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%G", v);
    return buf;
}

// Two numbers that the file gives with six significant digits.  A NaN is
// printed "NAN" and read back as a NaN.
bool close(double a, double b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) return true;
    if (std::isnan(a) || std::isnan(b)) return false;
    const double scale = std::max(std::fabs(a), std::fabs(b));
    return std::fabs(a - b) <= 1e-5 * scale || std::fabs(a - b) < 1e-300;
}

// Any two primary energies of one shell (53), or any two secondary energies
// of one record (54), that the writer prints alike.
bool prints_alike(const SVLKXS &set, int32_t code) {
    for (int32_t i = 0; i < set.nShell; ++i) {
        const SVLKXSSH &sh = set.pShell[i];
        for (int32_t j = 0; j < sh.nE; ++j) {
            const SVLKXSE &e = sh.pE[j];
            if (code == VLKXS_C_R_DUPEPROJ) {
                for (int32_t m = j + 1; m < sh.nE; ++m)
                    if (printed(e.E) == printed(sh.pE[m].E)) return true;
                continue;
            }
            for (int32_t k = 0; k < e.n1; ++k)
                for (int32_t m = k + 1; m < e.n1; ++m)
                    if (printed(e.dv1[k] * e.WNorm) == printed(e.dv1[m] * e.WNorm)) return true;
        }
    }
    return false;
}

// The counts of the two completed sets agree; with `values` also what the
// file carries: energies, totals of dim 0, the tables of dim 1 and 2.
void compare(const SVLKXS &a, const SVLKXS &b, bool values) {
    require(a.nShell == b.nShell);
    for (int32_t i = 0; i < a.nShell; ++i) {
        const SVLKXSSH &sa = a.pShell[i], &sb = b.pShell[i];
        require(sa.nE == sb.nE);
        for (int32_t j = 0; j < sa.nE; ++j) {
            const SVLKXSE &ea = sa.pE[j], &eb = sb.pE[j];
            require(ea.n1 == eb.n1);
            for (int32_t k = 0; k < ea.n1; ++k)
                require((ea.nv2 == nullptr) == (eb.nv2 == nullptr) && (ea.nv2 == nullptr || ea.nv2[k] == eb.nv2[k]));
            if (!values) continue;
            require(close(ea.E, eb.E));
            if (a.dim == 0) require(close(ea.sigtot, eb.sigtot));
            for (int32_t k = 0; k < ea.n1; ++k) {
                require(close(ea.dv1[k] * ea.WNorm, eb.dv1[k] * eb.WNorm));
                if (a.dim == 1) require(close(ea.dvSig1[k], eb.dvSig1[k]));
                for (int32_t m = 0; a.dim == 2 && m < ea.nv2[k]; ++m) {
                    require(close(ea.pdv2[k][m], eb.pdv2[k][m]));
                    require(close(ea.pdvSig2[k][m], eb.pdvSig2[k][m]));
                }
            }
        }
    }
}

// The name under which VLKXSWrite put the set.
std::string written_name(const SVLKXS &set, const std::string &prefix) {
    return prefix + set.proj.symbol + "." + set.targ.name + "." + set.IAtag + set.dimtag + ".xs";
}

void round_trip(SVLKXS &set) {
    const std::string prefix = scratch_base() + "out-";
    SCMDSTATUS st = VLKXSWrite(&set, prefix.c_str(), kQuiet);
    known(st);
    require(st.code == 0);  // the set was found valid
    const std::string path = written_name(set, prefix);
    SVLKXS back;
    st = VLKXSRead(&back, path.c_str(), kQuiet);
    known(st);
    std::remove(path.c_str());
    const bool values = set.IA == 2 || set.dim == 0;
    // Six digits may join two energies; a sum shell that Complete made from
    // shells of different grids may also hold a grid point twice.
    if (st.code == VLKXS_C_R_DUPEPROJ || st.code == VLKXS_C_R_DUPESEC) {
        require(prints_alike(set, st.code));
        return;
    }
    require(st.code == 0);
    st = VLKXSComplete(&back, kQuiet);
    known(st);
    require(st.code == 0);
    compare(set, back, values);
    known(VLKXSFree(&back, 0));
}

}  // namespace

int vlkxs_fuzz_read(const uint8_t *data, size_t size) {
    const std::string input = scratch_base() + "in.xs";
    if (!write_file(input, data, size)) std::abort();
    SVLKXS set;
    SCMDSTATUS st = VLKXSRead(&set, input.c_str(), kQuiet);
    known(st);
    if (st.code == 0) {
        st = VLKXSComplete(&set, kQuiet);
        known(st);
        if (st.code == 0) {
            st = VLKXSIsValid(&set, kQuiet);
            known(st);
            if (st.code == 0) round_trip(set);
        }
    }
    known(VLKXSFree(&set, 0));
    return 0;
}

int vlkxs_fuzz_limits(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);  // NUL-terminated copy
    static const int32_t axes[] = {VLKXS_MODE_LIMIT_E, VLKXS_MODE_LIMIT_W, VLKXS_MODE_LIMIT_WFLAG,
                                   VLKXS_MODE_LIMIT_A};
    for (int32_t axis : axes) {
        SVLKXSCALC calc;
        std::memset(&calc, 0, sizeof calc);
        const SCMDSTATUS st = VLKXSCalcLimitsFromStr(&calc, text.c_str(), axis | kQuiet);
        known(st);
        if (st.code != 0) {
            static const SVLKXSCALC zero{};
            require(std::memcmp(&calc, &zero, sizeof calc) == 0);
        } else {
            const bool e = axis == VLKXS_MODE_LIMIT_E, a = axis == VLKXS_MODE_LIMIT_A;
            const double *list = e ? calc.pE : a ? calc.pA : calc.pW;
            const int32_t n = e ? calc.nE : a ? calc.nA : calc.nW;
            const double low = e ? calc.Emin : a ? calc.Amin : calc.Wmin;
            const double high = e ? calc.Emax : a ? calc.Amax : calc.Wmax;
            require(!(high < low));
            if (list != nullptr) {
                require(n >= 3);
                require(std::is_sorted(list, list + n));
                require(list[0] == low && list[n - 1] == high);
            }
        }
        known(VLKXSCalcFree(&calc, 0));
    }
    return 0;
}

int vlkxs_fuzz_tags(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    const char *word = text.c_str();
    SVLKXS set;
    known(VLKXSInit(&set, 0));
    // The tag conversions always report: a failure is an ordinary outcome.
    known(VLKXSIATypeFromStr(&set, word, kQuiet));
    known(VLKXSIADimFromStr(&set, word, kQuiet));
    known(VLKXSStrFromIAType(&set, kQuiet));
    known(VLKXSStrFromIADim(&set, kQuiet));
    known(VLKXSColFromIAType(&set, kQuiet));
    require(set.IAtag != nullptr && set.dimtag != nullptr && set.coltag != nullptr);
    SVLKXSCALC calc{};
    known(VLKXSCalcMethodFromStr(&calc, word, kQuiet));
    require(calc.method >= 0 && calc.method <= 10);
    known(VLKXSCalcFree(&calc, 0));
    SVLKPROJ proj;
    known(VLKProjInit(&proj, 0));
    if (VLKProjFromStr(&proj, word, kQuiet).code == 0) known(VLKProjIsValid(&proj, 0));
    known(VLKProjFree(&proj, 0));
    SVLKTARG targ;
    known(VLKTargInit(&targ, 0));
    if (VLKTargImportMaterial(&targ, word, kQuiet).code == 0) known(VLKTargIsValid(&targ, 0));
    known(VLKTargFree(&targ, 0));
    known(VLKXSFree(&set, 0));
    return 0;
}
