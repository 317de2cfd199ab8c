#include "common.hpp"

#include <cstdio>
#include <filesystem>

#include "plot.hpp"
#include "report.hpp"
#include "safe_write.hpp"

namespace vlkcli {

int usage_error(std::string_view cmd, std::string_view why, std::string_view usage) {
    std::fprintf(stderr, "vlkxs%s%.*s: %.*s\n%.*s", cmd.empty() ? "" : " ", static_cast<int>(cmd.size()), cmd.data(),
                 static_cast<int>(why.size()), why.data(), static_cast<int>(usage.size()), usage.data());
    return kExitUsage;
}

std::optional<Args> command_args(std::string_view cmd, std::string_view usage, const std::vector<std::string> &argv,
                                 std::span<const OptionDef> known, int &exit) {
    std::string error;
    std::optional<Args> args = parse_args(argv, known, error);
    if (!args) {
        exit = usage_error(cmd, error, usage);
    } else if (args->help) {
        std::fwrite(usage.data(), 1, usage.size(), stdout);
        exit = kExitOk;
        args.reset();
    }
    return args;
}

SCMDSTATUS load(SVLKXS &set, const std::string &path, int32_t mode) {
    const SCMDSTATUS s = VLKXSRead(&set, path.c_str(), mode);
    return failed(s) ? s : VLKXSComplete(&set, mode);
}

std::string as_prefix(std::string prefix) {
    std::error_code ec;
    if (!prefix.empty() && !prefix.ends_with('/') && std::filesystem::is_directory(prefix, ec)) prefix += '/';
    return prefix;
}

std::string xs_file_name(SVLKXS &set, int32_t mode) {
    VLKXSStrFromIAType(&set, mode);
    VLKXSStrFromIADim(&set, mode);
    const auto text = [](const char *p) { return std::string(p != nullptr ? p : ""); };
    return text(set.proj.symbol) + "." + text(set.targ.name) + "." + text(set.IAtag) + text(set.dimtag) + ".xs";
}

namespace {

// The xs writer prints the first-level grid times each record's WNorm, for
// every interaction.  Ionisation grids are stored as fractions of WNorm, so
// the two cancel; the cosines of an elastic set (or any other non-ionisation
// grid) come out scaled, and a file read back holds them so.  Says so, once.
void warn_scaled_grid(std::string_view cmd, const SVLKXS &set, const std::string &name, int32_t mode) {
    if (set.IA == 2 || set.dim < 1 || (mode & VLKXS_MODE_QUIET) != 0) return;
    for (int32_t i = 0; i < set.nShell; ++i)
        for (int32_t j = 0; j < set.pShell[i].nE; ++j)
            if (const double w = set.pShell[i].pE[j].WNorm; w != 1.0) {
                std::fprintf(stderr,
                             "vlkxs %.*s: warning: %s holds the first column times WNorm (%g at E = %g), as the xs "
                             "format writes it for every interaction: read back, it is no longer in its own unit\n",
                             static_cast<int>(cmd.size()), cmd.data(), name.c_str(), w, set.pShell[i].pE[j].E);
                return;
            }
}

}  // namespace

int write_set(std::string_view cmd, std::string_view context, SVLKXS &set, const std::string &prefix, Outputs what,
              int32_t mode) {
    SafeWrite out(prefix);
    if (!out.ready()) return report_text(cmd, out.error());
    const std::string name = xs_file_name(set, mode);
    Progress progress;
    progress.show("writing " + prefix + name);
    if (what.xs) {
        out.add(name, SafeWrite::Check::xs);
        warn_scaled_grid(cmd, set, name, mode);
        if (const SCMDSTATUS s = VLKXSWrite(&set, out.temp_prefix().c_str(), mode); failed(s))
            return report(cmd, context, s);
    }
    if (what.gd) {
        out.add(name + ".gd", SafeWrite::Check::gd);
        if (const SCMDSTATUS s = VLKXSExportgd(&set, out.temp_prefix().c_str(), mode); failed(s))
            return report(cmd, context, s);
    }
    if (what.svg) {
        const std::string path = out.add(name + ".svg", SafeWrite::Check::svg);
        std::string error;
        if (!write_text(path, plot_svg({&set}, {name}), error)) return report_text(cmd, error);
    }
    std::vector<std::string> placed;
    const bool ok = out.commit(placed);
    progress.clear();
    for (const std::string &path : placed) std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    return ok ? kExitOk : report_text(cmd, out.error());
}

}  // namespace vlkcli
