// The commands of the vlkxs tool.  Each takes the arguments behind its name
// (options, global flags and operands in any order) and returns the exit
// status: 0 success, 1 a failure, reported on stderr, 2 a wrong command line.
#pragma once

#include <string>
#include <vector>

namespace vlkcli {

using Argv = std::vector<std::string>;

int cmd_list(const Argv &args);
int cmd_check(const Argv &args);
int cmd_complete(const Argv &args);
int cmd_gd(const Argv &args);
int cmd_dump(const Argv &args);
int cmd_calc(const Argv &args);
int cmd_plot(const Argv &args);

// The whole command line, program name first: global flags, the command and
// its arguments.
int run(int argc, const char *const *argv);

}  // namespace vlkcli
