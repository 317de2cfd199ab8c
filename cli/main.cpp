// The vlkxs command-line tool: the commands live in the tool's library.
#include "commands.hpp"

int main(int argc, char **argv) { return vlkcli::run(argc, argv); }
