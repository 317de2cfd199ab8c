"""The Python binding against the C library it wraps."""

import ctypes
import gc
import os
import subprocess
import sys
import tempfile
import unittest
import weakref
from ctypes import byref, c_char_p, c_double, c_int32, c_void_p

import numpy as np

import vlkxs

DATA = os.environ.get("VLKXS_TEST_DATA", os.path.join(os.path.dirname(__file__), "..", "..", "tests", "data"))
EXAMPLES = os.environ.get("VLKXS_EXAMPLE_DATA", os.path.join(os.path.dirname(__file__), "..", "..", "examples", "data"))
# The hand-made test files, and the calculated examples of every interaction and dimension.
FILES = [os.path.join(DATA, n) for n in ("e.H2O.it.xs", "e.H2O.is.xs", "p.H2O.id.xs")] + sorted(
    os.path.join(EXAMPLES, n) for n in os.listdir(EXAMPLES) if n.endswith(".xs"))
QUIET = 0x40000000


class Status(ctypes.Structure):
    # code and level, and room to spare for the rest of the record.
    _fields_ = [("code", c_int32), ("level", ctypes.c_uint32), ("rest", ctypes.c_byte * 256)]


RAW = ctypes.CDLL(os.environ["VLKXS_LIBRARY"])
for _name, _args in {"VLKXSRead": [c_void_p, c_char_p], "VLKXSComplete": [c_void_p], "VLKXSFree": [c_void_p],
                     "VLKXSSigma": [c_void_p, c_int32, c_double, c_void_p],
                     "VLKXSEkin": [c_void_p, c_int32, c_double, c_void_p, c_void_p],
                     "VLKXSSampleShell": [c_void_p, c_double, c_double, c_void_p],
                     "VLKXSSampleW": [c_void_p, c_int32, c_double, c_double, c_void_p],
                     "VLKXSSampleCos": [c_void_p, c_int32, c_double, c_double, c_double, c_void_p]}.items():
    getattr(RAW, _name).argtypes = _args + [c_int32]
    getattr(RAW, _name).restype = Status


class RawSet:
    """A set read and completed by the C library alone, held as opaque bytes."""

    def __init__(self, path):
        self.buf = ctypes.create_string_buffer(4096)
        assert RAW.VLKXSRead(self.buf, path.encode(), QUIET).code == 0
        assert RAW.VLKXSComplete(self.buf, QUIET).code == 0

    def __del__(self):
        RAW.VLKXSFree(self.buf, QUIET)

    def call(self, name, *args, out=c_double):
        """Outputs of the C function, or its status code on failure."""
        outs = [out() for _ in range(2 if name == "VLKXSEkin" else 1)]
        st = getattr(RAW, name)(self.buf, *args, *(byref(o) for o in outs), QUIET)
        return st.code if st.level else tuple(o.value for o in outs)


def data_rows(path):
    """Data lines of an xs file: {(shell, eproj, esec): [[numbers], ...]}."""
    rows, key = {}, [None, None, None]
    with open(path) as f:
        for line in f:
            words = line.split()
            if not words or words[0].startswith("#"):
                continue
            tag = {"!shell": 0, "!eproj": 1, "!esec": 2}.get(words[0])
            if tag is not None:
                key[tag:] = [float(words[1])] + [None] * (2 - tag)
            elif not words[0].startswith("!"):
                rows.setdefault(tuple(key), []).append([float(w) for w in words])
    return rows


def points(cum):
    """Indices where a cumulated table rises on both sides (u there is unambiguous)."""
    return [k for k in range(len(cum) - 1) if cum[k] < cum[k + 1] and (k == 0 or cum[k - 1] < cum[k])]


class ReadTest(unittest.TestCase):
    def test_records_and_tables_agree_with_the_c_api_and_the_file(self):
        for name in FILES:
            with self.subTest(name), vlkxs.read(name) as xs:
                raw, rows = RawSet(name), data_rows(name)
                self.assertEqual(xs.infile, name)
                for i, sh in enumerate(xs.shells):
                    recs = sh.energies
                    np.testing.assert_array_equal(sh.E, [r.E for r in recs])
                    np.testing.assert_array_equal(sh.sigtot, [raw.call("VLKXSSigma", i, r.E)[0] for r in recs])
                    for r in recs:
                        self.assertEqual(raw.call("VLKXSEkin", i, r.E), (r.Ekin, r.LET))
                        if xs.dim == 0:
                            self.assertIsNone(r.dv1)
                            continue
                        key = (sh.number, r.E, None)
                        if xs.dim == 1 and key in rows:  # the file's own shells, not the sum made
                            table = np.array(rows[key])
                            np.testing.assert_allclose(r.dv1 * r.WNorm, table[:, 0], rtol=1e-12)
                            np.testing.assert_array_equal(r.dvSig1, table[:, 1])
                        for k in points(r.dvCum1):
                            W = raw.call("VLKXSSampleW", i, r.E, r.dvCum1[k])[0]
                            self.assertAlmostEqual(W, r.dv1[k] * r.WNorm, delta=1e-12 * r.WNorm)
                        if xs.dim < 2:
                            continue
                        second = r.second_level
                        for k, (grid, values, cum) in enumerate(zip(*second)):
                            rowkey = (sh.number, r.E, r.dv1[k] * r.WNorm)
                            match = [v for kk, v in rows.items() if kk[:2] == rowkey[:2]
                                     and abs(kk[2] - rowkey[2]) < 1e-9 * rowkey[2]]
                            if sh.number != 0:
                                np.testing.assert_array_equal(values, np.array(match[0])[:, 1])
                            for m in points(cum):
                                c = raw.call("VLKXSSampleCos", i, r.E, r.dv1[k] * r.WNorm, cum[m])[0]
                                self.assertAlmostEqual(c, grid[m], delta=1e-12)

    def test_identity_of_read_and_calculated_sets(self):
        cases = [(vlkxs.read(os.path.join(DATA, "p.H2O.id.xs")), ("p", "H2O", "i", 2), [2, 1, 0]),
                 (vlkxs.calc("e", "H2O", "l", "s", "rutherford", [1, 10, 100], angles="0,90,180"),
                  ("e", "H2O", "l", 1), [0]),
                 (vlkxs.calc("p", "H2O", "i", "t", "rudd", "0.01,10"), ("p", "H2O", "i", 0), [1, 2, 3, 4, 5, 0])]
        for xs, ident, numbers in cases:
            with self.subTest(ident):
                self.assertEqual((xs.projectile, xs.target, xs.interaction, xs.dim), ident)
                self.assertEqual([s.number for s in xs.shells], numbers)

    def test_calculation_takes_lists_for_its_axes(self):
        xs = vlkxs.calc("e", "H2O", "i", "s", "beb", [1, 10, 100], secondaries="0,0.1,0.2,0.3")
        np.testing.assert_array_equal(xs.shells[-1].E, [1, 10, 100])
        rec = xs.shells[-1].energies[2]
        np.testing.assert_allclose(rec.dv1 * rec.WNorm, [0, 0.1, 0.2, 0.3], atol=1e-15)

    def test_a_second_completion_changes_nothing(self):
        xs = vlkxs.read(os.path.join(DATA, "e.H2O.is.xs"), complete=False)
        self.assertIsNone(xs.shells[0].energies[0].dvCum1)
        xs.complete()
        first = xs.shells[0].energies[1].dv1.copy()
        xs.complete()
        np.testing.assert_array_equal(xs.shells[0].energies[1].dv1, first)


class ViewTest(unittest.TestCase):
    def setUp(self):
        self.xs = vlkxs.read(os.path.join(DATA, "e.H2O.is.xs"))

    def test_views_share_the_sets_memory(self):
        rec = self.xs.shells[0].energies[1]
        self.assertTrue(np.shares_memory(rec.dv1, rec.dv1))
        self.assertEqual(rec.dvSig1.__array_interface__["data"][0], rec.dvSig1.ctypes.data)
        self.assertFalse(np.shares_memory(self.xs.shells[0].E, self.xs.shells[0].E))

    def test_a_write_through_a_view_shows_in_the_set(self):
        rec = self.xs.shells[0].energies[1]
        u = rec.dvCum1[1]
        before = self.xs.sample_w(rec.E, u, 0)
        rec.dv1[:] *= 2
        self.assertAlmostEqual(self.xs.sample_w(rec.E, u, 0), 2 * before, delta=1e-12)
        rec.dvSig1[1] = -1.0
        with self.assertRaises(vlkxs.Error) as caught:
            self.xs.validate()
        self.assertEqual(caught.exception.code, 56)

    def test_a_view_outlives_its_set_object(self):
        view = self.xs.shells[0].energies[1].dvSig1
        saved, alive = view.copy(), weakref.ref(self.xs)
        del self.xs
        gc.collect()
        junk = [vlkxs.read(os.path.join(DATA, "e.H2O.is.xs")) for _ in range(20)]
        np.testing.assert_array_equal(view, saved)
        self.assertIsNotNone(alive())
        del view, junk
        gc.collect()
        self.assertIsNone(alive())

    def test_close_keeps_live_views_and_refuses_further_use(self):
        with self.xs as xs:
            view, saved = xs.shells[0].energies[0].dv1, xs.shells[0].energies[0].dv1.copy()
        self.assertTrue(xs.closed)
        np.testing.assert_array_equal(view, saved)
        for use in (lambda: xs.sigma(0.5), lambda: xs.shells, lambda: xs.dup()):
            with self.assertRaises(vlkxs.Error) as caught:
                use()
            self.assertEqual(caught.exception.code, 2)
        xs.close()

    def test_duplicates(self):
        deep, shallow = self.xs.dup(), self.xs.dup(shallow=True)
        original = self.xs.shells[0].energies[0].dvSig1
        self.assertFalse(np.shares_memory(deep.shells[0].energies[0].dvSig1, original))
        self.assertTrue(np.shares_memory(shallow.shells[0].energies[0].dvSig1, original))
        self.assertIsNone(deep.infile)
        self.xs.close()
        del original
        gc.collect()
        self.assertEqual(shallow.sigma(0.1, 0), deep.sigma(0.1, 0))


class FileTest(unittest.TestCase):
    def test_write_and_export(self):
        parent = os.environ.get("VLKXS_TEST_TMP", tempfile.gettempdir())
        os.makedirs(parent, exist_ok=True)
        with tempfile.TemporaryDirectory(dir=parent) as tmp:
            for name in FILES:
                with self.subTest(name), vlkxs.read(name) as xs:
                    path = xs.write(tmp + "/")
                    self.assertEqual(os.path.basename(path), os.path.basename(name))
                    self.assertTrue(os.path.isfile(xs.export_gd(tmp + "/")))
                    back = vlkxs.read(path)
                    for a, b in zip(xs.shells[:-1], back.shells):  # sum shells are made anew
                        np.testing.assert_allclose(a.sigtot, b.sigtot, rtol=1e-5)


class ErrorTest(unittest.TestCase):
    def test_failures_raise_with_the_librarys_code_and_text(self):
        xs0 = vlkxs.read(os.path.join(DATA, "e.H2O.it.xs"))
        xs1 = vlkxs.read(os.path.join(DATA, "e.H2O.is.xs"))
        with tempfile.NamedTemporaryFile("w", suffix=".xs", delete=False) as bad:
            bad.write("!filetype    xs q,t\n")
        cases = [
            (lambda: vlkxs.read(os.path.join(DATA, "missing.xs")), 1, "run time system error"),
            (lambda: vlkxs.read(bad.name), 20, "bad (unsupported) interaction type"),
            (lambda: vlkxs.calc(interaction="z"), 20, None),
            (lambda: vlkxs.calc(dim="q"), 21, None),
            (lambda: vlkxs.calc(method="nope"), 17, "no such calculation method"),
            (lambda: vlkxs.calc(projectile="zz"), 14, None),
            (lambda: vlkxs.calc(target="Xe"), 25, "no such material"),
            (lambda: vlkxs.calc(energies="a,b"), 3, None),
            (lambda: vlkxs.calc(energies=""), 24, None),
            (lambda: vlkxs.calc("p", "Ar", method="rudd"), 37, None),
            (lambda: xs0.sigma(1e5), 26, "particle energy out-of-range"),
            (lambda: xs0.sigma([0.1, 1e5]), 26, None),
            (lambda: xs0.sigma(1, shell=10), 7, None),
            (lambda: xs0.sample_w(1, 0.5, 0), 34, None),
            (lambda: xs1.sample_w(0.5, 1.0, 0), 26, None),
            (lambda: xs1.sample_cos(0.5, 0.01, 0.5, 0), 34, None),
        ]
        try:
            for call, code, message in cases:
                with self.subTest(code=code), self.assertRaises(vlkxs.Error) as caught:
                    call()
                self.assertIsInstance(caught.exception, RuntimeError)
                self.assertEqual(caught.exception.code, code)
                if message:
                    self.assertEqual(caught.exception.message, message)
        finally:
            os.unlink(bad.name)

    def test_a_read_failure_tells_file_and_line(self):
        with tempfile.NamedTemporaryFile("w", suffix=".xs", delete=False) as bad:
            bad.write("!filetype xs i,t\n!fileversion 20080825\n!target H2O\n!projectile e\n!shell 1\n0.02 -1\n")
        try:
            with self.assertRaises(vlkxs.Error) as caught:
                vlkxs.read(bad.name)
        finally:
            os.unlink(bad.name)
        e = caught.exception
        self.assertEqual((e.code, e.origin, e.file, e.line, e.text), (51, "vlkxs(Read)", bad.name, 6, "0.02 -1"))


class SamplingTest(unittest.TestCase):
    def test_vectorised_calls_equal_the_scalar_c_calls(self):
        rng = np.random.default_rng(7)
        # name, shell, energies, and the end of the energies that all shells share
        cases = [("e.H2O.it.xs", 1, (0.02, 1000), 1.0), ("e.H2O.is.xs", 0, (0.1, 1.0), 1.0),
                 ("p.H2O.id.xs", 0, (100, 200), 100)]
        for name, ish, (lo, hi), common in cases:
            with self.subTest(name):
                xs, raw = vlkxs.read(os.path.join(DATA, name)), RawSet(os.path.join(DATA, name))
                E = rng.uniform(lo, hi, (3, 4))
                u = rng.uniform(0, 1, (3, 4))
                expect = lambda fn, *cols, **kw: np.array(
                    [raw.call(fn, *x, **kw)[0] for x in zip(*(np.broadcast_to(c, E.shape).ravel().tolist() for c in cols))]
                ).reshape(E.shape)
                np.testing.assert_array_equal(xs.sigma(E, ish), expect("VLKXSSigma", ish, E))
                np.testing.assert_array_equal(xs.ekin(E, ish)[1],
                                              [[raw.call("VLKXSEkin", ish, e)[1] for e in row] for row in E])
                Es = np.minimum(E, common)
                np.testing.assert_array_equal(xs.sample_shell(Es, u), expect("VLKXSSampleShell", Es, u, out=c_int32))
                self.assertEqual(xs.sigma(E[0, 0], ish), raw.call("VLKXSSigma", ish, E[0, 0])[0])
                if xs.dim == 0:
                    continue
                W = xs.sample_w(E, u, ish)
                np.testing.assert_array_equal(W, expect("VLKXSSampleW", ish, E, u))
                if xs.dim == 2:
                    np.testing.assert_array_equal(xs.sample_cos(E, W, u[::-1], ish),
                                                  expect("VLKXSSampleCos", ish, E, W, u[::-1]))


class CommandLineTest(unittest.TestCase):
    def test_module_points_at_the_tool(self):
        env = dict(os.environ, PATH="/nonexistent")
        done = subprocess.run([sys.executable, "-m", "vlkxs"], env=env, capture_output=True, text=True)
        self.assertEqual(done.returncode, 0)
        self.assertIn("vlkxs", done.stdout)


if __name__ == "__main__":
    unittest.main()
