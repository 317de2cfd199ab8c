"""Cross-section sets over the shared library: reading, calculation,
records, views and sampling."""

import collections
import ctypes
import os
import weakref
from ctypes import byref, c_double, c_int32

import numpy as np

from . import _capi, _status
from ._status import Error

_lib = _capi.load()
QUIET = _capi.MODE_QUIET


def _check(st):
    _status.check(_lib, st, stacklevel=4)


def _encode(text):
    return os.fsencode(text) if isinstance(text, os.PathLike) else str(text).encode()


def _closed_error():
    return Error(_capi.C_BADADDR, _status.message_of(_lib, _capi.C_BADADDR), origin="vlkxs(python)",
                 item="the set is closed")


class _Memory:
    """The C record of one set, released by VLKXSFree exactly once: when the
    last of its holders (the XSSet and the owners of its views) lets go, or
    at interpreter exit.  A shallow duplicate keeps the set it borrows from."""

    __slots__ = ("struct", "borrowed", "__weakref__")

    def __init__(self, borrowed=None):
        self.struct = _capi.SVLKXS()
        _lib.VLKXSInit(self.struct, QUIET)
        self.borrowed = borrowed
        weakref.finalize(self, _lib.VLKXSFree, self.struct, QUIET)


SecondLevel = collections.namedtuple("SecondLevel", "grids values cumulated")
SecondLevel.__doc__ = """Second-level tables of a record: grids, differential values and
cumulated values, each a list with one view for each first-level point (None
for a missing row), or None for a table the record lacks."""


class Record:
    """One primary energy of one shell.

    The numbers (E, sigtot, LET, WNorm, Ekin, km, beta2, gamma, Escal,
    scaled) are read from the set at each access.  dv1, dvSig1, dvCum1 and
    the arrays of second_level are views on the set's own memory, not
    copies: writing into one changes the set, and each keeps the set alive.
    None stands for a table the record doesn't have."""

    __slots__ = ("_set", "_shell", "_index")

    def __init__(self, xsset, shell, index):
        self._set = xsset
        self._shell = shell
        self._index = index

    def _rec(self):
        return self._set._struct.pShell[self._shell].pE[self._index]

    @property
    def n1(self):
        return self._rec().n1

    @property
    def dv1(self):
        r = self._rec()
        return self._set._view(r.dv1, r.n1)

    @property
    def dvSig1(self):
        r = self._rec()
        return self._set._view(r.dvSig1, r.n1)

    @property
    def dvCum1(self):
        r = self._rec()
        return self._set._view(r.dvCum1, r.n1)

    @property
    def second_level(self):
        """SecondLevel of views, or None for a record without second level."""
        r = self._rec()
        if not r.nv2:
            return None
        view = self._set._view
        counts = r.nv2[:r.n1]
        return SecondLevel(*([view(table[k], n) for k, n in enumerate(counts)] if table else None
                             for table in (r.pdv2, r.pdvSig2, r.pdvCum2)))

    def __repr__(self):
        return "<vlkxs.Record E=%g sigtot=%g n1=%d>" % (self.E, self.sigtot, self.n1)


def _number(field):
    return property(lambda self: getattr(self._rec(), field), doc="%s of the record (float)" % field)


for _field in ("E", "Escal", "sigtot", "scaled", "km", "beta2", "gamma", "Ekin", "LET", "WNorm"):
    setattr(Record, _field, _number(_field))

_RECORD_DOUBLES = ctypes.sizeof(_capi.SVLKXSE) // ctypes.sizeof(c_double)


class Shell:
    """One electronic shell of a set: `number` (0 for the sum of all shells,
    k for row k of the target's shell table), `index` (its place in
    XSSet.shells, which the sampling methods take) and `energies`, its
    records in file order."""

    __slots__ = ("_set", "index")

    def __init__(self, xsset, index):
        self._set = xsset
        self.index = index

    def _sh(self):
        return self._set._struct.pShell[self.index]

    @property
    def number(self):
        return self._sh().shell

    @property
    def energies(self):
        return [Record(self._set, self.index, j) for j in range(self._sh().nE)]

    def _column(self, field):
        sh = self._sh()
        if sh.nE < 1 or not sh.pE:
            return np.empty(0)
        flat = np.ctypeslib.as_array(ctypes.cast(sh.pE, _capi.PDOUBLE), (sh.nE * _RECORD_DOUBLES,))
        start = getattr(_capi.SVLKXSE, field).offset // ctypes.sizeof(c_double)
        return flat[start::_RECORD_DOUBLES].copy()

    @property
    def E(self):
        """Primary energies of all records: a copy, not a view."""
        return self._column("E")

    @property
    def sigtot(self):
        """Total cross sections of all records (cm2): a copy, not a view."""
        return self._column("sigtot")

    def __len__(self):
        return self._sh().nE

    def __repr__(self):
        return "<vlkxs.Shell number=%d records=%d>" % (self.number, len(self))


class XSSet:
    """A cross-section set: one projectile, one target, one interaction,
    one dimension, with its shells and their records.

    Made by read(), calc() or dup().  The C memory is released by close(),
    by the end of a `with` block or by the garbage collector, once; views
    taken from the set keep that memory until they go, so that close()
    never leaves one dangling.  A closed set raises Error (code 2)."""

    def __init__(self, memory, completed):
        self._mem = memory
        self._completed = completed

    # --- lifetime ---------------------------------------------------------
    @property
    def _struct(self):
        if self._mem is None:
            raise _closed_error()
        return self._mem.struct

    def close(self):
        """Releases the set (at once, or when its last view goes)."""
        self._mem = None

    @property
    def closed(self):
        return self._mem is None

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()
        return False

    def _view(self, pointer, n):
        """An array over n values at `pointer`, without a copy.  Its owner is
        the ctypes array over the C block (arr.base.obj), which holds this
        set and its memory: neither goes while the view lives.  (This is
        what numpy.ctypeslib.as_array(pointer, (n,)) does inside, with the
        owner kept; it costs a third of wrapping that array again.)"""
        if not pointer or n < 1:
            return None
        block = ctypes.cast(pointer, ctypes.POINTER(pointer._type_ * n)).contents
        block.xsset = self
        block.memory = self._mem
        return np.ctypeslib.as_array(block)

    # --- identity ---------------------------------------------------------
    @property
    def projectile(self):
        """The projectile's symbol, as VLKProjFromStr takes it back ("e", "p")."""
        symbol = self._struct.proj.symbol
        return symbol.decode() if symbol else None

    @property
    def target(self):
        """The target's material name ("H2O")."""
        name = self._struct.targ.name
        return name.decode() if name else None

    @property
    def interaction(self):
        """The interaction tag: "l" elastic, "i" ionisation, "x" excitation, ..."""
        s = self._struct
        _check(_lib.VLKXSStrFromIAType(s, QUIET))
        return s.IAtag.decode()

    @property
    def dim(self):
        """0 total, 1 single, 2 double differential."""
        return self._struct.dim

    @property
    def infile(self):
        """The file the set was read from, or None."""
        path = self._struct.infile
        return os.fsdecode(path) if path else None

    @property
    def shells(self):
        """The shells, a sum shell (number 0) last."""
        return [Shell(self, i) for i in range(self._struct.nShell)]

    def __repr__(self):
        if self._mem is None:
            return "<vlkxs.XSSet closed>"
        return "<vlkxs.XSSet %s in %s, %s dim %d, %d shells>" % (
            self.projectile, self.target, self.interaction, self.dim, self._struct.nShell)

    # --- whole-set operations ---------------------------------------------
    def complete(self):
        """Completes the primary tables of a set read with complete=False.
        A set is completed once: a second call changes nothing."""
        if not self._completed:
            _check(_lib.VLKXSComplete(self._struct, QUIET))
            self._completed = True
        return self

    def validate(self):
        """Raises Error for the first fault VLKXSIsValid finds."""
        _check(_lib.VLKXSIsValid(self._struct, QUIET))
        return self

    def _file_name(self, prefix, suffix):
        s = self._struct
        return "%s%s.%s.%s%s%s" % (os.fsdecode(prefix), s.proj.symbol.decode(), s.targ.name.decode(),
                                   s.IAtag.decode(), s.dimtag.decode(), suffix)

    def write(self, prefix=""):
        """Writes the set as an xs file; returns its name.  A directory in
        `prefix` needs its own trailing separator."""
        _check(_lib.VLKXSWrite(self._struct, os.fsencode(prefix), QUIET))
        return self._file_name(prefix, ".xs")

    def export_gd(self, prefix=""):
        """Writes the set as a gd plot file; returns its name."""
        _check(_lib.VLKXSExportgd(self._struct, os.fsencode(prefix), QUIET))
        return self._file_name(prefix, ".xs.gd")

    def dup(self, shallow=False):
        """A deep copy with tables of its own, or with shallow=True a set
        that borrows this one's tables (and keeps this one's memory alive)."""
        mem = _Memory(borrowed=self._mem if shallow else None)
        _check(_lib.VLKXSDup(mem.struct, self._struct, QUIET | (_capi.MODE_SHALLOW if shallow else 0)))
        return XSSet(mem, self._completed)

    # --- using a completed set --------------------------------------------
    def _index(self, shell):
        shell = int(shell)
        return shell + self._struct.nShell if shell < 0 else shell

    def _loop(self, fn, out_type, shell, *columns):
        """fn(set, [ish,] x..., &out, mode) once per element of the
        broadcast columns; a scalar for scalar arguments."""
        s = byref(self._struct)
        arrays = np.broadcast_arrays(*(np.asarray(c, dtype=float) for c in columns))
        shape = arrays[0].shape
        value = out_type()
        ref = byref(value)
        lead = (s,) if shell is None else (s, self._index(shell))
        out = []
        for xs in zip(*(a.ravel().tolist() for a in arrays)):
            st = fn(*lead, *xs, ref, QUIET)
            if st.level:
                _check(st)
            out.append(value.value)
        if not shape:
            return out[0]
        return np.array(out, dtype=np.int32 if out_type is c_int32 else float).reshape(shape)

    def sigma(self, E, shell=-1):
        """Total cross section (cm2) of shell `shell` (an index into
        `shells`; -1 the last, the sum shell) at each E."""
        return self._loop(_lib.VLKXSSigma, c_double, shell, E)

    def ekin(self, E, shell=-1):
        """(Ekin, LET) at each E: mean secondary energy (keV) and LET (keV cm2/g)."""
        s = byref(self._struct)
        ish = self._index(shell)
        E = np.asarray(E, dtype=float)
        ekin, let = c_double(), c_double()
        pe, pl = byref(ekin), byref(let)
        out = []
        for e in E.ravel().tolist():
            st = _lib.VLKXSEkin(s, ish, e, pe, pl, QUIET)
            if st.level:
                _check(st)
            out.append((ekin.value, let.value))
        if not E.shape:
            return out[0]
        both = np.array(out, dtype=float).reshape(E.shape + (2,))
        return both[..., 0], both[..., 1]

    def sample_shell(self, E, u):
        """Index into `shells` of a shell drawn with its share of the cross
        section at E, u uniform in [0, 1)."""
        return self._loop(_lib.VLKXSSampleShell, c_int32, None, E, u)

    def sample_w(self, E, u, shell=-1):
        """Secondary energy W (keV) drawn at E for u in [0, 1)."""
        return self._loop(_lib.VLKXSSampleW, c_double, shell, E, u)

    def sample_cos(self, E, W, u, shell=-1):
        """Cosine of the emission or scattering angle drawn at E and W."""
        return self._loop(_lib.VLKXSSampleCos, c_double, shell, E, W, u)


def read(path, complete=True):
    """Reads an xs file (VLKXSRead) and completes it (VLKXSComplete) unless
    complete=False, which leaves the file's primary tables for complete()."""
    mem = _Memory()
    name = os.fsencode(path)  # the failure record points into it
    _check(_lib.VLKXSRead(mem.struct, name, QUIET))
    xsset = XSSet(mem, False)
    return xsset.complete() if complete else xsset


def _limits(value):
    if isinstance(value, (str, bytes)):
        return value.encode() if isinstance(value, str) else value
    return ",".join(repr(float(v)) for v in np.ravel(value)).encode()


def calc(projectile="e", target="H2O", interaction="i", dim="t", method="beb", energies="0.01,10000",
         secondaries=None, angles=None, relchange=0.1):
    """A set built by a model calculator.

    `energies`, `secondaries` (W, keV) and `angles` (degrees) are limit
    strings as VLKXSCalcLimitsFromStr reads them ("0.01,10000": the limits;
    three items or more: the list; "*": an open end) or sequences of
    numbers; None leaves the axis to the model.  Primary energies are in keV,
    in MeV/u for ions.  `relchange` bounds the step of a logarithmic primary
    grid."""
    mem = _Memory()
    s = mem.struct
    # Failure records may point into the texts handed over: each stays bound
    # until its record has been read.
    words = [_encode(w) for w in (projectile, target, interaction, dim, method)]
    _check(_lib.VLKProjFromStr(s.proj, words[0], QUIET))
    _check(_lib.VLKTargImportMaterial(s.targ, words[1], QUIET))
    _check(_lib.VLKXSIATypeFromStr(s, words[2], QUIET))
    _check(_lib.VLKXSIADimFromStr(s, words[3], QUIET))
    request = _capi.SVLKXSCALC()
    try:
        _check(_lib.VLKXSCalcMethodFromStr(request, words[4], QUIET))
        request.relchange = relchange
        for axis, value in ((_capi.MODE_LIMIT_E, energies), (_capi.MODE_LIMIT_W, secondaries),
                            (_capi.MODE_LIMIT_A, angles)):
            if value is not None:
                text = _limits(value)
                _check(_lib.VLKXSCalcLimitsFromStr(request, text, axis | QUIET))
        _check(_lib.VLKXSCalc(s, request, QUIET))
    finally:
        _lib.VLKXSCalcFree(request, QUIET)
    return XSSet(mem, True)
