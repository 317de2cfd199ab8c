"""`python -m vlkxs`: the command line of vlkxs is the `vlkxs` tool.

With the tool on PATH the arguments are handed to it; without it a short
usage says where it comes from."""

import shutil
import subprocess
import sys

USAGE = """\
usage: vlkxs COMMAND ...

The command line of vlkxs is the `vlkxs` tool, built with the C library
(target vlkxs_tool, installed to bin/).  It isn't on PATH here.
From Python: import vlkxs; vlkxs.read(path); vlkxs.calc(...); help(vlkxs)."""


def main(argv):
    tool = shutil.which("vlkxs")
    if tool is None:
        print(USAGE)
        return 0
    return subprocess.call([tool] + argv)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
