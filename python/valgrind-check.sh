#!/bin/sh
# Runs the binding's tests under valgrind's memcheck: the sanitizer runtimes
# can't be loaded into a plain interpreter, valgrind can watch the library
# there.  Fails on any read or write out of bounds or of uninitialised
# memory, and on a block lost for good whose allocation passed through
# libvlkxs (the interpreter's own leaks at exit are not ours).
set -eu
log=${VLKXS_TEST_TMP:-/tmp}/valgrind-python.log
mkdir -p "$(dirname "$log")"
PYTHONMALLOC=malloc valgrind --error-exitcode=0 --leak-check=full --show-leak-kinds=definite \
  --log-file="$log" "$@"
if grep -q -E "Invalid (read|write|free)|uninitialised|Conditional jump|Mismatched free" "$log"; then
  echo "memory errors under valgrind, see $log" >&2
  exit 1
fi
if awk '/definitely lost/ {block = 1} block && /libvlkxs/ {found = 1} /^==[0-9]+== $/ {block = 0} END {exit !found}' "$log"; then
  echo "a block allocated through libvlkxs is lost, see $log" >&2
  exit 1
fi
