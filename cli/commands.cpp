#include "commands.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "common.hpp"
#include "plot.hpp"
#include "report.hpp"
#include "safe_write.hpp"
#include "version.hpp"

namespace vlkcli {

namespace {

constexpr std::string_view kUsage =
    "usage: vlkxs [--trace] [--quiet] COMMAND [ARGUMENTS]\n"
    "       vlkxs --help | --version | COMMAND --help\n"
    "\n"
    "Cross-section tables of charged particles in matter: xs files read,\n"
    "completed, checked and written, sets calculated by models, plots.\n"
    "\n"
    "Commands:\n"
    "  list FILE...               read, complete and list each xs file\n"
    "  check [--json] FILE...     read, complete and validate each xs file\n"
    "  complete FILE... -o PREFIX write the completed xs files\n"
    "  gd FILE... -o PREFIX       write gd plot files\n"
    "  dump FILE                  dump a set's structure\n"
    "  calc [OPTIONS]             calculate a set by a model; write xs, gd and SVG\n"
    "  plot FILE... -o OUT.svg    plot completed sets as one SVG document\n"
    "\n"
    "Global options, before or after the command:\n"
    "  --trace   trace the library's operations on stderr\n"
    "  --quiet   keep the library from reporting its failures itself; the\n"
    "            tool still prints one line for each\n"
    "\n"
    "Exit status: 0 success, 1 a failure, 2 a wrong command line.\n";

constexpr std::string_view kListUsage =
    "usage: vlkxs list FILE...\n"
    "Reads and completes each xs file and lists it on stdout: projectile,\n"
    "target, interaction, and the shells with their records and points.\n";

constexpr std::string_view kCheckUsage =
    "usage: vlkxs check [--json] FILE...\n"
    "Reads, completes and validates each xs file and prints one line for it:\n"
    "\"FILE: ok\" or its first fault with message, code, origin and location\n"
    "(file:line for a fault in the file, the place in the set for a fault of\n"
    "the tables).  The library's own reports are kept quiet.\n"
    "  --json   one JSON object a line instead: file, ok, code, message,\n"
    "           origin, line, item, text (null where there is none)\n"
    "Exit status 1 if any file fails.\n";

constexpr std::string_view kCompleteUsage =
    "usage: vlkxs complete FILE... -o PREFIX\n"
    "Writes each xs file completed as PREFIX<projectile>.<target>.<IA><dim>.xs\n"
    "(a PREFIX that names a directory gets its '/').  Every file is written\n"
    "whole or not at all; the paths written are printed on stdout.\n";

constexpr std::string_view kGdUsage =
    "usage: vlkxs gd FILE... -o PREFIX\n"
    "Writes the gd plot file of each completed xs file as\n"
    "PREFIX<projectile>.<target>.<IA><dim>.xs.gd (a PREFIX that names a\n"
    "directory gets its '/'); the paths written are printed on stdout.\n";

constexpr std::string_view kDumpUsage =
    "usage: vlkxs dump FILE [--deep] [--forced] [--complete]\n"
    "Dumps the set of an xs file, as read, on stdout.\n"
    "  --deep       every record and every number of its tables\n"
    "  --forced     a set without shells too\n"
    "  --complete   complete the set first\n";

constexpr std::string_view kPlotUsage =
    "usage: vlkxs plot FILE... -o OUT.svg\n"
    "Reads and completes each xs file and plots them all in one SVG document,\n"
    "each labelled by its file name.  OUT.svg is written whole or not at all.\n";

constexpr OptionDef kOutputOption[] = {{"-o", true}};

// The progress text of file n of N.
std::string reading(const std::string &path, std::size_t n, std::size_t count) {
    return "reading " + path + " (" + std::to_string(n + 1) + "/" + std::to_string(count) + ")";
}

// complete and gd: each file read, completed and written under the prefix.
int write_each(std::string_view cmd, std::string_view usage, const Argv &argv, Outputs what) {
    int exit = kExitOk;
    const auto args = command_args(cmd, usage, argv, kOutputOption, exit);
    if (!args) return exit;
    const auto prefix = args->value("-o");
    if (args->operands.empty() || !prefix) return usage_error(cmd, args->operands.empty() ? "no file" : "no -o", usage);
    Progress progress;
    const std::size_t count = args->operands.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string &path = args->operands[i];
        progress.show(reading(path, i, count));
        OwnedSet owned;
        const SCMDSTATUS s = load(owned.set, path, args->mode);
        progress.clear();
        const int status =
            failed(s) ? report(cmd, path, s) : write_set(cmd, path, owned.set, as_prefix(*prefix), what, args->mode);
        if (status != kExitOk) exit = status;
    }
    return exit;
}

}  // namespace

int cmd_list(const Argv &argv) {
    int exit = kExitOk;
    const auto args = command_args("list", kListUsage, argv, {}, exit);
    if (!args) return exit;
    if (args->operands.empty()) return usage_error("list", "no file", kListUsage);
    Progress progress;
    const std::size_t count = args->operands.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string &path = args->operands[i];
        progress.show(reading(path, i, count));
        OwnedSet owned;
        SCMDSTATUS s = load(owned.set, path, args->mode);
        progress.clear();
        if (!failed(s)) {
            if (count > 1) std::printf("%s==> %s <==\n", i > 0 ? "\n" : "", path.c_str());
            std::fflush(stdout);
            s = VLKXSList(&owned.set, args->mode);
            std::fflush(stdout);
        }
        if (failed(s)) exit = report("list", path, s);
    }
    return exit;
}

int cmd_check(const Argv &argv) {
    static constexpr OptionDef known[] = {{"--json", false}};
    int exit = kExitOk;
    const auto args = command_args("check", kCheckUsage, argv, known, exit);
    if (!args) return exit;
    if (args->operands.empty()) return usage_error("check", "no file", kCheckUsage);
    const bool json = args->has("--json");
    const int32_t mode = args->mode | VLKXS_MODE_QUIET;
    Progress progress;
    const std::size_t count = args->operands.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string &path = args->operands[i];
        progress.show(reading(path, i, count));
        OwnedSet owned;
        SCMDSTATUS s = load(owned.set, path, mode);
        if (!failed(s)) s = VLKXSIsValid(&owned.set, mode);
        progress.clear();
        // Copied before anything else runs: the location texts are the library's scratch.
        const bool ok = !failed(s);
        const Fault f = ok ? Fault{} : fault_of(s);
        if (!ok) exit = kExitFailed;
        if (!json) {
            std::printf("%s: %s\n", path.c_str(), ok ? "ok" : f.describe().c_str());
            continue;
        }
        const auto text_or_null = [](const std::string &t) { return t.empty() ? std::string("null") : json_string(t); };
        std::printf(
            "{\"file\":%s,\"ok\":%s,\"code\":%d,\"message\":%s,\"origin\":%s,\"line\":%d,\"item\":%s,\"text\":%s}\n",
            json_string(path).c_str(), ok ? "true" : "false", f.code, ok ? "null" : json_string(f.message).c_str(),
            text_or_null(f.origin).c_str(), f.line, text_or_null(f.item).c_str(), text_or_null(f.text).c_str());
    }
    std::fflush(stdout);
    return exit;
}

int cmd_complete(const Argv &argv) { return write_each("complete", kCompleteUsage, argv, Outputs{.xs = true}); }

int cmd_gd(const Argv &argv) { return write_each("gd", kGdUsage, argv, Outputs{.gd = true}); }

int cmd_dump(const Argv &argv) {
    static constexpr OptionDef known[] = {{"--deep", false}, {"--forced", false}, {"--complete", false}};
    int exit = kExitOk;
    const auto args = command_args("dump", kDumpUsage, argv, known, exit);
    if (!args) return exit;
    if (args->operands.size() != 1) return usage_error("dump", "one file, please", kDumpUsage);
    const std::string &path = args->operands[0];
    OwnedSet owned;
    SCMDSTATUS s = VLKXSRead(&owned.set, path.c_str(), args->mode);
    if (!failed(s) && args->has("--complete")) s = VLKXSComplete(&owned.set, args->mode);
    if (failed(s)) return report("dump", path, s);
    const int32_t mode =
        args->mode | (args->has("--deep") ? VLKXS_MODE_DEEP : 0) | (args->has("--forced") ? VLKXS_MODE_FORCED : 0);
    // The library dumps on stderr; the dump is this command's data, so it is
    // sent to stdout for the time of the call.
    std::fflush(stdout);
    std::fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    if (saved >= 0) dup2(STDOUT_FILENO, STDERR_FILENO);
    s = VLKXSInspect(&owned.set, mode);
    std::fflush(stderr);
    if (saved >= 0) {
        dup2(saved, STDERR_FILENO);
        close(saved);
    }
    return failed(s) ? report("dump", path, s) : kExitOk;
}

int cmd_plot(const Argv &argv) {
    int exit = kExitOk;
    const auto args = command_args("plot", kPlotUsage, argv, kOutputOption, exit);
    if (!args) return exit;
    const auto out = args->value("-o");
    if (args->operands.empty() || !out || out->empty())
        return usage_error("plot", args->operands.empty() ? "no file" : "no -o", kPlotUsage);
    Progress progress;
    std::vector<std::unique_ptr<OwnedSet>> owned;
    std::vector<const SVLKXS *> sets;
    const std::size_t count = args->operands.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string &path = args->operands[i];
        progress.show(reading(path, i, count));
        owned.push_back(std::make_unique<OwnedSet>());
        const SCMDSTATUS s = load(owned.back()->set, path, args->mode);
        progress.clear();
        if (failed(s)) exit = report("plot", path, s);
        sets.push_back(&owned.back()->set);
    }
    // A plot without one of its sets would mislead: nothing is written.
    if (exit != kExitOk) return exit;
    progress.show("plotting " + *out);
    SafeWrite file(*out);
    if (!file.ready()) return report_text("plot", file.error());
    std::string error;
    std::vector<std::string> placed;
    if (!write_text(file.add("", SafeWrite::Check::svg), plot_svg(sets, args->operands), error))
        return report_text("plot", error);
    if (!file.commit(placed)) return report_text("plot", file.error());
    progress.clear();
    std::printf("%s\n", out->c_str());
    std::fflush(stdout);
    return kExitOk;
}

int run(int argc, const char *const *argv) {
    struct Command {
        std::string_view name;
        int (*fn)(const Argv &);
    };
    static constexpr Command commands[] = {{"list", cmd_list}, {"check", cmd_check}, {"complete", cmd_complete},
                                           {"gd", cmd_gd},     {"dump", cmd_dump},   {"calc", cmd_calc},
                                           {"plot", cmd_plot}};
    // Global flags before the command go on to it with the rest.
    Argv rest;
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::fwrite(kUsage.data(), 1, kUsage.size(), stdout);
            return kExitOk;
        }
        if (arg == "--version") {
            std::printf("vlkxs %s\n", version());
            return kExitOk;
        }
        if (arg != "--trace" && arg != "--quiet") return usage_error("", "unknown option " + std::string(arg), kUsage);
        rest.emplace_back(arg);
    }
    if (i == argc) return usage_error("", "no command", kUsage);
    const std::string_view name = argv[i];
    rest.insert(rest.end(), argv + i + 1, argv + argc);
    for (const Command &c : commands)
        if (c.name == name) return c.fn(rest);
    return usage_error("", "unknown command " + std::string(name), kUsage);
}

}  // namespace vlkcli
