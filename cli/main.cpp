// The vlkxs command-line tool.
#include <cstdio>
#include <cstring>

#include "version.hpp"

int main(int argc, char **argv) {
    if (argc > 1 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("vlkxs %s\n", vlkcli::version());
        return 0;
    }
    std::fputs("usage: vlkxs COMMAND ...\n", stderr);
    return 2;
}
