// The command line of one command: its options, flags and operands.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vlkcli {

// An option a command accepts: "--json", "-o", ...; `value` options take the
// next argument (or the text behind "=" for a long one).
struct OptionDef {
    std::string_view name;
    bool value;
};

struct Args {
    std::map<std::string, std::string, std::less<>> values;  // options with a value, the last one given
    std::vector<std::string> flags;                          // options without one
    std::vector<std::string> operands;                       // everything else, in order
    int32_t mode = 0;                                        // VLKXS_MODE_TRACE / VLKXS_MODE_QUIET
    bool help = false;

    bool has(std::string_view flag) const;
    std::optional<std::string> value(std::string_view name) const;
};

// Reads `argv` against `known`; --help (-h), --trace and --quiet are known to
// every command.  "--" ends the options.  An unknown option or a missing
// value gives nothing, with the reason in `error`.
std::optional<Args> parse_args(const std::vector<std::string> &argv, std::span<const OptionDef> known,
                               std::string &error);

}  // namespace vlkcli
