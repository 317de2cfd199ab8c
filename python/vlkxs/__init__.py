"""vlkxs: cross sections of charged particles in matter, from Python.

    import vlkxs
    with vlkxs.read("e.H2O.is.xs") as xs:         # read and completed
        xs.sigma([0.1, 0.5, 1.0])                   # cm2, sum shell
        rec = xs.shells[0].energies[0]
        rec.dv1, rec.dvSig1, rec.dvCum1             # views on the set's tables
    water = vlkxs.calc("p", "H2O", "i", "s", "rudd", energies="0.01,10")

The binding talks to the shared library (libvlkxs.so) through ctypes and
needs no compiler: the C header is plain records and free functions, which
ctypes maps one to one (structures for the records, prototypes for the
functions, status records returned by value), and the tables come out as
NumPy arrays through numpy.ctypeslib without copies.

The library is found through the environment variable VLKXS_LIBRARY, else
next to this package, in the build tree of the source checkout
(build/src/libvlkxs.so) or on the system's library path.

Every failure raises vlkxs.Error, whose `code` is the library's status code
(VLKXS_C_... in vlkxs.h) and whose `message` the library's text for it;
warnings of the library go through the `warnings` module as XSWarning.  The
library's functions are called quiet where they honour it; a few (completion,
calculation, writing, duplication, the interaction and dimension words)
report every failure on stderr as well, and the reader reports its warnings
there.
"""

from ._status import Error, XSWarning
from ._xsset import Record, SecondLevel, Shell, XSSet, calc, read

for _public in (Error, XSWarning, Record, SecondLevel, Shell, XSSet):
    _public.__module__ = __name__

__all__ = ["Error", "XSWarning", "XSSet", "Shell", "Record", "SecondLevel", "read", "calc"]
