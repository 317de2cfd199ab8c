"""The C records of vlkxs.h as ctypes structures, and the shared library.

Field order and types follow the header one to one; ctypes lays them out
with the platform's C alignment, as the compiler did.
"""

import ctypes
import ctypes.util
import os
from ctypes import POINTER, c_char_p, c_double, c_int32, c_uint32, c_void_p

MODE_QUIET = 0x40000000
MODE_SHALLOW = 0x4000000
MODE_LIMIT_E = 0x10000
MODE_LIMIT_W = 0x20000
MODE_LIMIT_A = 0x40000

LEVEL_ERROR = 0x80000000
LEVEL_WARNING = 0x40000000
LEVEL_SEVERE_MASK = 0xFF000000

C_RUNTIME = 1
C_BADADDR = 2
C_COUNT = 70


class SCMDSTATUS(ctypes.Structure):
    _fields_ = [
        ("code", c_int32),
        ("level", c_uint32),
        ("file", c_void_p),
        ("line", c_int32),
        ("item", c_void_p),
        ("itemlen", c_int32),
        ("text", c_void_p),
        ("textlen", c_int32),
        ("col", c_int32),
        ("origin", c_void_p),
        ("msg", c_void_p),
    ]


class SVLKPROJ(ctypes.Structure):
    _fields_ = [
        ("type", c_int32),
        ("space", c_uint32),
        ("name", c_char_p),
        ("symbol", c_char_p),
        ("own", c_uint32),
        ("Z", c_int32),
        ("A", c_int32),
        ("charge", c_double),
        ("mass", c_double),
    ]


class SVLKTARGSH(ctypes.Structure):
    _fields_ = [("Ebind", c_double), ("Ukin", c_double), ("occ", c_double)]


class SVLKTARG(ctypes.Structure):
    _fields_ = [
        ("space", c_uint32),
        ("name", c_char_p),
        ("M", c_double),
        ("nShell", c_int32),
        ("pShell", POINTER(SVLKTARGSH)),
        ("own", c_uint32),
        ("nAtom", c_int32),
        ("Zatom", c_int32 * 4),
        ("natom", c_int32 * 4),
        ("density", c_double),
    ]


PDOUBLE = POINTER(c_double)


class SVLKXSE(ctypes.Structure):
    _fields_ = [
        ("E", c_double),
        ("Escal", c_double),
        ("sigtot", c_double),
        ("scaled", c_double),
        ("km", c_double),
        ("beta2", c_double),
        ("gamma", c_double),
        ("Ekin", c_double),
        ("LET", c_double),
        ("WNorm", c_double),
        ("W", c_double * 4),
        ("n1", c_int32),
        ("dv1", PDOUBLE),
        ("dvSig1", PDOUBLE),
        ("dvCum1", PDOUBLE),
        ("nv2", POINTER(c_int32)),
        ("pdv2", POINTER(PDOUBLE)),
        ("pdvSig2", POINTER(PDOUBLE)),
        ("pdvCum2", POINTER(PDOUBLE)),
        ("at", SCMDSTATUS),
    ]


class SVLKXSSH(ctypes.Structure):
    _fields_ = [
        ("flag", c_uint32),
        ("shell", c_int32),
        ("nE", c_int32),
        ("pE", POINTER(SVLKXSE)),
        ("at", SCMDSTATUS),
    ]


class SVLKXS(ctypes.Structure):
    _fields_ = [
        ("flag", c_uint32),
        ("IA", c_int32),
        ("space", c_uint32),
        ("dim", c_int32),
        ("dimmask", c_uint32),
        ("infile", c_char_p),
        ("IAtag", c_char_p),
        ("dimtag", c_char_p),
        ("coltag", c_char_p),
        ("nShell", c_int32),
        ("pShell", POINTER(SVLKXSSH)),
        ("targ", SVLKTARG),
        ("proj", SVLKPROJ),
    ]


class SVLKXSCALC(ctypes.Structure):
    _fields_ = [
        ("relchange", c_double),
        ("Emin", c_double),
        ("Emax", c_double),
        ("Wmin", c_double),
        ("Wmax", c_double),
        ("Amin", c_double),
        ("Amax", c_double),
        ("pE", PDOUBLE),
        ("pW", PDOUBLE),
        ("pA", PDOUBLE),
        ("nE", c_int32),
        ("nW", c_int32),
        ("nA", c_int32),
        ("method", c_int32),
        ("flag", c_int32),
    ]


_SET = POINTER(SVLKXS)
_CALC = POINTER(SVLKXSCALC)
_I32 = c_int32

# name: (argument types); every one of them returns SCMDSTATUS.
_STATUS_FUNCTIONS = {
    "VLKXSInit": (_SET, _I32),
    "VLKXSFree": (_SET, _I32),
    "VLKXSDup": (_SET, _SET, _I32),
    "VLKXSRead": (_SET, c_char_p, _I32),
    "VLKXSWrite": (_SET, c_char_p, _I32),
    "VLKXSExportgd": (_SET, c_char_p, _I32),
    "VLKXSComplete": (_SET, _I32),
    "VLKXSIsValid": (_SET, _I32),
    "VLKXSStrFromIAType": (_SET, _I32),
    "VLKXSStrFromIADim": (_SET, _I32),
    "VLKXSIATypeFromStr": (_SET, c_char_p, _I32),
    "VLKXSIADimFromStr": (_SET, c_char_p, _I32),
    "VLKProjFromStr": (POINTER(SVLKPROJ), c_char_p, _I32),
    "VLKTargImportMaterial": (POINTER(SVLKTARG), c_char_p, _I32),
    "VLKXSCalc": (_SET, _CALC, _I32),
    "VLKXSCalcMethodFromStr": (_CALC, c_char_p, _I32),
    "VLKXSCalcLimitsFromStr": (_CALC, c_char_p, _I32),
    "VLKXSCalcFree": (_CALC, _I32),
    "VLKXSSigma": (_SET, _I32, c_double, PDOUBLE, _I32),
    "VLKXSEkin": (_SET, _I32, c_double, PDOUBLE, PDOUBLE, _I32),
    "VLKXSSampleShell": (_SET, c_double, c_double, POINTER(c_int32), _I32),
    "VLKXSSampleW": (_SET, _I32, c_double, c_double, PDOUBLE, _I32),
    "VLKXSSampleCos": (_SET, _I32, c_double, c_double, c_double, PDOUBLE, _I32),
}

_LIBRARY_NAMES = ("libvlkxs.so", "libvlkxs.dylib", "vlkxs.dll")


def _candidates():
    """Where the shared library is looked for, in order."""
    env = os.environ.get("VLKXS_LIBRARY")
    if env:
        yield env
        return
    here = os.path.dirname(os.path.abspath(__file__))
    source = os.path.dirname(os.path.dirname(here))
    for folder in (here, os.path.dirname(here), os.path.join(source, "build", "src")):
        for name in _LIBRARY_NAMES:
            yield os.path.join(folder, name)
    found = ctypes.util.find_library("vlkxs")
    if found:
        yield found


def load():
    """The shared library with the prototypes of the functions used here.

    VLKXS_LIBRARY names the file; without it the package's own folder, the
    folder above it, the build tree of the source checkout and the system's
    library path are tried in turn."""
    tried = []
    for path in _candidates():
        if os.sep in path and not os.path.exists(path):
            tried.append(path)
            continue
        lib = ctypes.CDLL(path)
        break
    else:
        raise ImportError("vlkxs: shared library not found (set VLKXS_LIBRARY); tried: " + ", ".join(tried))
    for name, argtypes in _STATUS_FUNCTIONS.items():
        fn = getattr(lib, name)
        fn.argtypes = argtypes
        fn.restype = SCMDSTATUS
    lib.messages = (c_char_p * C_COUNT).in_dll(lib, "cvMsg")
    lib.path = path
    return lib
