// vlkxs calc: a set calculated by a model, written as xs, gd and SVG files.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "commands.hpp"
#include "common.hpp"
#include "report.hpp"

namespace vlkcli {

namespace {

constexpr std::string_view kCalcUsage =
    "usage: vlkxs calc [OPTIONS]\n"
    "Calculates a set by a model and writes PREFIX<projectile>.<target>.<IA><dim>.xs,\n"
    "its gd plot file (.xs.gd) and an SVG plot (.xs.svg).  Without options:\n"
    "electron-impact ionisation of water by BEB from 10 eV to 10 MeV.\n"
    "  --projectile P    e (default), p, alpha, C6+, ...\n"
    "  --target T        H2O (default), H, He, N2, Ar\n"
    "  --interaction W   i or ionisation (default), l or elastic, x or excitation\n"
    "  --dim W           t or total (default), s or single (differential)\n"
    "  --method M        beb for electron ionisation (default), rudd for ion\n"
    "                    ionisation, rutherford for elastic scattering, emp for\n"
    "                    excitation\n"
    "  --energies L      primary energies, keV (MeV/u for ions); default\n"
    "                    0.01,10000 keV for electrons, 0.01,100 MeV/u for ions\n"
    "  --secondaries L   secondary energies, keV\n"
    "  --angles L        angles, degrees\n"
    "  --relchange X     largest relative step of the energy grid (default 0.1)\n"
    "  -o PREFIX         where to write (default: the current directory)\n"
    "A limit L is one value, two limits (\"0.01,100\"), or a list of three values\n"
    "or more; \"*\" is an open end.\n";

constexpr OptionDef kCalcOptions[] = {
    {"--projectile", true}, {"--target", true},      {"--interaction", true}, {"--dim", true},       {"--method", true},
    {"--energies", true},   {"--secondaries", true}, {"--angles", true},      {"--relchange", true}, {"-o", true}};

// The words for an interaction or a dimension, and the library's tag of each.
struct Word {
    std::string_view word, tag;
};
constexpr Word kInteractions[] = {{"i", "i"},       {"ionisation", "i"}, {"ionization", "i"}, {"l", "l"},
                                  {"elastic", "l"}, {"x", "x"},          {"excitation", "x"}};
constexpr Word kDims[] = {{"t", "t"}, {"total", "t"}, {"s", "s"}, {"single", "s"}, {"d", "d"}, {"double", "d"}};

const Word *find_word(std::span<const Word> words, std::string_view text) {
    for (const Word &w : words)
        if (w.word == text) return &w;
    return nullptr;
}

// The model of each projectile and interaction: the one the library has.
std::string default_method(int32_t projectile, std::string_view ia) {
    if (ia == "l") return "rutherford";
    if (ia == "x") return "emp";
    return projectile == VLKPROJ_ION ? "rudd" : "beb";
}

// A request released at the end of its scope.
struct OwnedRequest {
    SVLKXSCALC calc{};
    ~OwnedRequest() { VLKXSCalcFree(&calc, 0); }
};

}  // namespace

// What was calculated, in a few lines below the names of the files: the
// sum shell (or the only shell) at ten energies spread over the grid.
// For elastic tables over the cosine the mean of the table is a mean
// cosine, not an energy.
void summary(const SVLKXS &set) {
    const SVLKXSSH &sh = set.pShell[set.nShell - 1];
    if (sh.pE == nullptr || sh.nE < 1) return;
    std::printf("\n%s in %s, %s:\n%12s %14s %14s %16s\n", set.proj.name, set.targ.name,
                sh.shell == 0 ? "sum of shells" : "the one shell", set.proj.type == VLKPROJ_ION ? "E (MeV/u)" : "E (keV)",
                "sigma (cm2)", set.IA == 1 && set.dim == 1 ? "mean cos" : "Ekin (keV)", "LET (keV cm2/g)");
    const int32_t rows = std::min(sh.nE, 10);
    for (int32_t r = 0; r < rows; ++r) {
        const auto j = rows > 1 ? static_cast<int32_t>(std::lround(r * (sh.nE - 1.0) / (rows - 1))) : 0;
        const SVLKXSE &e = sh.pE[j];
        std::printf("%12.5g %14.5g %14.5g %16.5g\n", e.E, e.sigtot, e.Ekin, e.LET);
    }
}

int cmd_calc(const Argv &argv) {
    int exit = kExitOk;
    const auto args = command_args("calc", kCalcUsage, argv, kCalcOptions, exit);
    if (!args) return exit;
    if (!args->operands.empty()) return usage_error("calc", "unexpected " + args->operands[0], kCalcUsage);
    const int32_t mode = args->mode;
    const std::string projectile = args->value("--projectile").value_or("e");
    const std::string target = args->value("--target").value_or("H2O");
    const Word *ia = find_word(kInteractions, args->value("--interaction").value_or("i"));
    const Word *dim = find_word(kDims, args->value("--dim").value_or("t"));
    if (ia == nullptr) return usage_error("calc", "unknown interaction " + *args->value("--interaction"), kCalcUsage);
    if (dim == nullptr) return usage_error("calc", "unknown dimension " + *args->value("--dim"), kCalcUsage);
    double relchange = 0.1;
    if (const auto text = args->value("--relchange")) {
        char *end = nullptr;
        relchange = std::strtod(text->c_str(), &end);
        if (text->empty() || *end != '\0' || !std::isfinite(relchange))
            return usage_error("calc", "--relchange needs a number, not " + *text, kCalcUsage);
    }

    OwnedSet owned;
    SVLKXS &set = owned.set;
    SCMDSTATUS s = VLKProjFromStr(&set.proj, projectile.c_str(), mode);
    if (failed(s)) return report("calc", "projectile " + projectile, s);
    s = VLKTargImportMaterial(&set.targ, target.c_str(), mode);
    if (failed(s)) return report("calc", "target " + target, s);
    const std::string ia_tag(ia->tag), dim_tag(dim->tag);
    if (s = VLKXSIATypeFromStr(&set, ia_tag.c_str(), mode); failed(s)) return report("calc", ia->word, s);
    if (s = VLKXSIADimFromStr(&set, dim_tag.c_str(), mode); failed(s)) return report("calc", dim->word, s);

    OwnedRequest request;
    SVLKXSCALC &calc = request.calc;
    const bool ion = set.proj.type == VLKPROJ_ION;
    const std::string method = args->value("--method").value_or(default_method(set.proj.type, ia_tag));
    if (s = VLKXSCalcMethodFromStr(&calc, method.c_str(), mode); failed(s)) return report("calc", method, s);
    // Each axis's limit string, kept alive while the status may point into it.
    const std::pair<const char *, int32_t> axes[] = {
        {"--energies", VLKXS_MODE_LIMIT_E}, {"--secondaries", VLKXS_MODE_LIMIT_W}, {"--angles", VLKXS_MODE_LIMIT_A}};
    for (const auto &[option, bit] : axes) {
        std::optional<std::string> limits = args->value(option);
        if (!limits && bit == VLKXS_MODE_LIMIT_E) limits = ion ? "0.01,100" : "0.01,10000";
        if (!limits) continue;
        if (s = VLKXSCalcLimitsFromStr(&calc, limits->c_str(), mode | bit); failed(s)) return report("calc", option, s);
    }
    calc.relchange = relchange;

    const std::string what =
        projectile + " in " + target + ", " + std::string(ia->word) + " " + std::string(dim->word) + ", " + method;
    // A failed calculation empties the set, its projectile included.
    const std::string model = default_method(set.proj.type, ia_tag);
    Progress progress;
    progress.show("calculating " + what);
    s = VLKXSCalc(&set, &calc, mode);
    progress.clear();
    if (failed(s)) {
        // The item of a refused projectile is its name, released with the set.
        if (s.code == VLKXS_C_NOPROJ) s.item = nullptr;
        report("calc", what, s);
        if (s.code == VLKXS_C_NOMETHOD)
            std::fprintf(stderr, "vlkxs calc: the model for this projectile and interaction is %s\n", model.c_str());
        return kExitFailed;
    }
    if (set.nShell == 0) return report_text("calc", what + ": the library has no model for it, nothing calculated");
    const int written = write_set("calc", what, set, as_prefix(args->value("-o").value_or("")),
                                  {.xs = true, .gd = true, .svg = true}, mode);
    if (written == 0) summary(set);
    return written;
}

}  // namespace vlkcli
