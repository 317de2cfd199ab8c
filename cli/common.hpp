// What the commands share: their command lines, the sets they hold, reading
// and writing sets.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "args.hpp"
#include "vlkxs.h"

namespace vlkcli {

// A set owned for one scope: empty at the start, released at the end.
struct OwnedSet {
    SVLKXS set;
    OwnedSet() { VLKXSInit(&set, 0); }
    ~OwnedSet() { VLKXSFree(&set, 0); }
    OwnedSet(const OwnedSet &) = delete;
    OwnedSet &operator=(const OwnedSet &) = delete;
};

// The command line of `cmd`.  Nothing comes back when the command is done
// with: --help printed `usage` on stdout (`exit` 0), or the line was wrong
// and the reason and `usage` went to stderr (`exit` 2).
std::optional<Args> command_args(std::string_view cmd, std::string_view usage, const std::vector<std::string> &argv,
                                 std::span<const OptionDef> known, int &exit);
// Prints "vlkxs CMD: WHY" and the usage on stderr; returns the usage status.
int usage_error(std::string_view cmd, std::string_view why, std::string_view usage);

// Reads and completes one xs file: the first failure, or success.
SCMDSTATUS load(SVLKXS &set, const std::string &path, int32_t mode);

// An output prefix as the user gave it, with a separator added when it names
// an existing directory: "-o out" writes out/e.H2O.it.xs, not oute.H2O.it.xs.
std::string as_prefix(std::string prefix);

// The name the library's writer gives the xs file of `set`:
// "<projectile>.<target>.<IA><dim>.xs".
std::string xs_file_name(SVLKXS &set, int32_t mode);

// Which files of a set to write.
struct Outputs {
    bool xs = false, gd = false, svg = false;
};
// Writes the chosen files of a valid set under `prefix`, each whole or not at
// all, and prints the path of each file put in place on stdout.  Returns the
// exit status; a failure is reported with `context` (the input file).
int write_set(std::string_view cmd, std::string_view context, SVLKXS &set, const std::string &prefix, Outputs what,
              int32_t mode);

}  // namespace vlkcli
