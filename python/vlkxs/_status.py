"""Status records of the library turned into Python exceptions and warnings."""

import ctypes
import warnings

from . import _capi


def _text(address, length=0):
    if not address:
        return None
    raw = ctypes.string_at(address, length) if length > 0 else ctypes.string_at(address)
    return raw.decode("utf-8", "replace")


class _StatusFields:
    """The fields of a status record, copied out of it: the record's texts
    may live in the caller's strings or in thread-local scratch space that
    the next call overwrites."""

    def _take(self, code, message, origin=None, file=None, line=0, item=None, text=None, level=0):
        self.code = code
        self.message = message
        self.origin = origin
        self.file = file
        self.line = line
        self.item = item
        self.text = text
        self.level = level

    def _describe(self):
        out = "%s: %s (code %d)" % (self.origin or "vlkxs", self.message, self.code)
        if self.file:
            out += "\n    %s:%d" % (self.file, self.line) if self.line else "\n    " + self.file
            if self.text:
                out += ": " + self.text
        if self.item:
            out += "\n    item: " + self.item
        return out


class Error(_StatusFields, RuntimeError):
    """A failed operation of the library.

    Attributes: `code` (the row of the message table, VLKXS_C_... in the C
    header), `message` (that row's text), `origin` (the operation's tag,
    "vlkxs(Read)"), `file` and `line` (a file being read or written, line
    from 1, 0 where none is current), `item` (the offending item), `text`
    (the offending line of a file) and `level`, the record's severity word."""

    def __init__(self, code, message, origin=None, file=None, line=0, item=None, text=None,
                 level=_capi.LEVEL_ERROR):
        self._take(code, message, origin, file, line, item, text, level)
        RuntimeError.__init__(self, self._describe())


class XSWarning(_StatusFields, UserWarning):
    """A warning of the library (level VLKXS_LEVEL_WARNING), with the same
    attributes as Error.  It goes through the `warnings` module, so that
    the usual filters silence it or turn it into an exception."""

    def __init__(self, code, message, origin=None, file=None, line=0, item=None, text=None,
                 level=_capi.LEVEL_WARNING):
        self._take(code, message, origin, file, line, item, text, level)
        UserWarning.__init__(self, self._describe())


def message_of(lib, code):
    """The library's own text for `code` (its "unknown error" outside the table)."""
    row = code if 0 <= code < _capi.C_COUNT else 0
    return lib.messages[row].decode()


def fields(lib, st):
    return dict(code=st.code, message=message_of(lib, st.code), origin=_text(st.origin),
                file=_text(st.file), line=st.line, item=_text(st.item, st.itemlen),
                text=_text(st.text, st.textlen), level=st.level)


def check(lib, st, stacklevel=3):
    """Raises Error for a failed record; warns for a warning alone."""
    severity = st.level & _capi.LEVEL_SEVERE_MASK
    if severity == 0:
        return
    if severity == _capi.LEVEL_WARNING:
        warnings.warn(XSWarning(**fields(lib, st)), stacklevel=stacklevel)
        return
    raise Error(**fields(lib, st))
