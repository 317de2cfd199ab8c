#include "args.hpp"

#include <algorithm>

#include "vlkxs.h"

namespace vlkcli {

bool Args::has(std::string_view flag) const { return std::find(flags.begin(), flags.end(), flag) != flags.end(); }

std::optional<std::string> Args::value(std::string_view name) const {
    const auto it = values.find(name);
    if (it == values.end()) return std::nullopt;
    return it->second;
}

std::optional<Args> parse_args(const std::vector<std::string> &argv, std::span<const OptionDef> known,
                               std::string &error) {
    Args args;
    bool options_end = false;
    for (std::size_t i = 0; i < argv.size(); ++i) {
        const std::string &arg = argv[i];
        if (options_end || arg.size() < 2 || arg[0] != '-') {
            args.operands.push_back(arg);
            continue;
        }
        if (arg == "--") {
            options_end = true;
            continue;
        }
        if (arg == "--help" || arg == "-h") {
            args.help = true;
            continue;
        }
        if (arg == "--trace" || arg == "--quiet") {
            args.mode |= arg == "--trace" ? VLKXS_MODE_TRACE : VLKXS_MODE_QUIET;
            continue;
        }
        // "--name=value" carries its value; "-o" and "--name" take the next argument.
        const std::size_t eq = arg.starts_with("--") ? arg.find('=') : std::string::npos;
        const std::string name = arg.substr(0, eq);
        const auto def = std::find_if(known.begin(), known.end(), [&](const OptionDef &o) { return o.name == name; });
        if (def == known.end()) {
            error = "unknown option " + name;
            return std::nullopt;
        }
        if (!def->value) {
            if (eq != std::string::npos) {
                error = "option " + name + " takes no value";
                return std::nullopt;
            }
            args.flags.push_back(name);
        } else if (eq != std::string::npos) {
            args.values[name] = arg.substr(eq + 1);
        } else if (i + 1 < argv.size()) {
            args.values[name] = argv[++i];
        } else {
            error = "option " + name + " needs a value";
            return std::nullopt;
        }
    }
    return args;
}

}  // namespace vlkcli
