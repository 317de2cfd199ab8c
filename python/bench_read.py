"""Reading a large double-differential xs file from Python: what the binding
costs over the C library, next to numpy.loadtxt on the same numbers, and
what the views cost next to using them.

    python3 bench_read.py [--mb 100] [--repeat 5] [--dir /tmp] [--keep]

Times (best of --repeat):
  read     vlkxs.read(path): VLKXSRead + VLKXSComplete through the binding
  C        the same two calls through ctypes directly, no binding around them
           (the two taken in turn)
  loadtxt  numpy.loadtxt of the file's data lines ("!" and "#" lines skipped)
  views    creating a view of every table of every record (dv1, dvSig1,
           dvCum1 and the second-level rows)
  touch    summing every one of those views
"""

import argparse
import ctypes
import os
import sys
import tempfile
import time

import numpy as np

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import vlkxs  # noqa: E402
from vlkxs import _capi  # noqa: E402
from vlkxs._xsset import _lib  # noqa: E402

ROWS = 50  # cosines per table


def make_file(path, megabytes):
    """A valid proton/water double-differential ionisation file of about
    `megabytes` MB: two shells, shaped alike, tables of ROWS cosines.
    Returns (records, tables, data lines)."""
    cosines = np.linspace(-1.0, 1.0, ROWS)
    blocks = []
    for variant in range(8):  # a few different tables, repeated
        values = 1e-18 * (1 + variant) * (1.5 + cosines) ** 2
        blocks.append("".join("%G %G 0\n" % (c, v) for c, v in zip(cosines, values)))
    per_table = len(blocks[0]) + len("!esec       0.00123457\n")
    tables = max(4, int(megabytes * 1e6 / per_table))
    energies = max(2, int(round((tables / 2) ** 0.5 / 4)))
    points = max(2, tables // (2 * energies))
    with open(path, "w") as f:
        f.write("!filetype    xs i,d\n!fileversion 20080825\n!target      H2O\n!projectile  p\n")
        for shell in (1, 2):
            f.write("#\n!shell       %d\n\n" % shell)
            for j in range(energies):
                f.write("!eproj      %G\n" % (0.01 * 1.1 ** j))
                for k in range(points):
                    f.write("!esec       %G\n" % (1e-4 * 1.01 ** k))
                    f.write(blocks[(j + k + shell) % len(blocks)])
    return 2 * energies, 2 * energies * points, 2 * energies * points * ROWS


def best(repeat, run, cleanup=None):
    times = []
    for _ in range(repeat):
        start = time.perf_counter()
        result = run()
        times.append(time.perf_counter() - start)
        if cleanup:
            cleanup(result)
    return min(times), result


def read_c(path):
    st = _capi.SVLKXS()
    name = os.fsencode(path)
    assert _lib.VLKXSRead(st, name, _capi.MODE_QUIET).code == 0
    assert _lib.VLKXSComplete(st, _capi.MODE_QUIET).code == 0
    return st


def all_views(xs):
    views = []
    for shell in xs.shells:
        for rec in shell.energies:
            views += [rec.dv1, rec.dvSig1, rec.dvCum1]
            second = rec.second_level
            for rows in second:
                views += rows
    return views


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("--mb", type=float, default=100.0, help="size of the file in MB (default 100)")
    ap.add_argument("--repeat", type=int, default=5)
    ap.add_argument("--dir", default=tempfile.gettempdir())
    ap.add_argument("--keep", action="store_true", help="keep the generated file")
    args = ap.parse_args()

    path = os.path.join(args.dir, "vlkxs-bench-%d-p.H2O.id.xs" % os.getpid())
    start = time.perf_counter()
    records, tables, lines = make_file(path, args.mb)
    size = os.path.getsize(path) / 1e6
    print("file %s: %.1f MB, %d records, %d tables, %d data lines (made in %.1f s)"
          % (path, size, records, tables, lines, time.perf_counter() - start))
    try:
        # Alternately, so that both see the same load on a shared machine.
        t_c = t_py = float("inf")
        for _ in range(args.repeat):
            t_c = min(t_c, best(1, lambda: read_c(path), lambda st: _lib.VLKXSFree(st, _capi.MODE_QUIET))[0])
            t_py = min(t_py, best(1, lambda: vlkxs.read(path), lambda xs: xs.close())[0])
        t_txt, data = best(args.repeat, lambda: np.loadtxt(path, comments=("!", "#")))
        assert data.shape == (lines, 3)
        del data
        with vlkxs.read(path) as xs:
            t_views, views = best(args.repeat, lambda: all_views(xs))
            t_touch, total = best(args.repeat, lambda: sum(float(v.sum()) for v in views))
            count, doubles = len(views), sum(v.size for v in views)
            del views
    finally:
        if not args.keep:
            os.unlink(path)

    print("read+complete, C through ctypes  %8.3f s  %7.1f MB/s" % (t_c, size / t_c))
    print("vlkxs.read                       %8.3f s  ratio to C %.3f" % (t_py, t_py / t_c))
    print("numpy.loadtxt of the data lines  %8.3f s  ratio to C %.2f" % (t_txt, t_txt / t_c))
    print("creating every view              %8.3f s  %d views of %d doubles, %.2f us a view"
          % (t_views, count, doubles, 1e6 * t_views / count))
    print("summing every view               %8.3f s  ratio create/touch %.2f" % (t_touch, t_views / t_touch))
    return 0


if __name__ == "__main__":
    sys.exit(main())
