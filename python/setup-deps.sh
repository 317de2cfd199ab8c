#!/bin/sh
# Installs what the Python binding needs on a Debian machine: the system
# interpreter /usr/bin/python3 with Debian's NumPy.  Does nothing when that
# interpreter already imports numpy.
set -eu
if [ -x /usr/bin/python3 ] && /usr/bin/python3 -c "import numpy" 2>/dev/null; then
  exit 0
fi
as_root=""
if [ "$(id -u)" != 0 ]; then
  command -v sudo >/dev/null 2>&1 || { echo "setup-deps: run as root to install python3-numpy" >&2; exit 1; }
  as_root="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -qq
$as_root apt-get install -y -qq python3 python3-numpy
