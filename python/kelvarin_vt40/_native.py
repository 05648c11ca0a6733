"""Finds the shared library, declares its functions, and turns their numbers into exceptions."""

from __future__ import annotations

import ctypes
import os
import threading
from ctypes import POINTER, byref, c_char_p, c_double, c_int, c_long, c_ubyte, c_uint, c_void_p
from typing import Callable, Dict, List, Optional, Sequence, Tuple

from . import errors

LIBRARY_NAME = "libKelvarinLiveScannerVT40.so.1"
SCAN_LIBRARY_NAME = "libkelvarinvtscanapi.gcc.Release.32.so"
SERIAL_SIZE = 16

_SIZES = (c_void_p, POINTER(c_uint), POINTER(c_uint))
_IMAGE = (c_void_p, c_void_p, POINTER(c_double), POINTER(c_ubyte), POINTER(c_long))

# The functions that the package calls. The W functions are not implemented by the library.
FUNCTIONS: Dict[str, Sequence[object]] = {
    "LS_VT40Initialize": (c_char_p,),
    "LS_VT40Uninitialize": (),
    "LS_VT40GetVersionA": (c_char_p, POINTER(c_uint)),
    "LS_VT40QueryScanners": (c_char_p, POINTER(c_uint)),
    "LS_VT40OpenScanner": (c_char_p, POINTER(c_void_p)),
    "LS_VT40CloseScanner": (POINTER(c_void_p),),
    "LS_VT40GetScannerCondition": _SIZES,
    "LS_VT40GetSerialNumber": (c_void_p, c_char_p),
    "LS_VT40GetVersionString": (c_void_p, c_char_p, POINTER(c_uint)),
    "LS_VT40Beep": (c_void_p, c_uint, c_uint),
    "LS_VT40SetLED": (c_void_p, c_ubyte, c_ubyte),
    "LS_VT40SetDisplayData": (c_void_p, c_uint, c_char_p, c_uint),
    "LS_VT40GetImageSize": _SIZES,
    "LS_VT40GetPreviewImageSize": _SIZES,
    "LS_VT40GetRollImageSize": _SIZES,
    "LS_VT40GetSignatureImageSize": _SIZES,
    "LS_VT40GetSignaturePreviewImageSize": _SIZES,
    "LS_VT40SetCaptureMode": (c_void_p, c_int),
    "LS_VT40GetImage": _IMAGE,
    "LS_VT40GetPreviewImage": _IMAGE,
    "LS_VT40GetRollImage": _IMAGE,
    "LS_VT40GetPropertyLongA": (c_void_p, c_char_p, POINTER(c_long)),
    "LS_VT40SetPropertyLongA": (c_void_p, c_char_p, c_long),
    "LS_VT40GetPropertyDoubleA": (c_void_p, c_char_p, POINTER(c_double)),
    "LS_VT40SetPropertyDoubleA": (c_void_p, c_char_p, c_double),
}


class _DlInfo(ctypes.Structure):
    _fields_ = [("file", c_char_p), ("base", c_void_p), ("symbol", c_char_p), ("address", c_void_p)]


class _LoadedObject(ctypes.Structure):
    """The beginning of what dl_iterate_phdr reports of each library."""

    _fields_ = [("address", c_void_p), ("name", c_char_p)]


class Native:
    """The loaded library. Calls release the interpreter's lock while they run.

    Raises
    ------
    LibraryNotFoundError
        The file cannot be loaded, or lacks a function.
    """

    def __init__(self, path: str) -> None:
        try:
            self._library = ctypes.CDLL(path)
            self._functions = {name: self._declare(name, types) for name, types in FUNCTIONS.items()}
            describe = self._library.LS_VT40GetErrorDescriptionA
        except (OSError, AttributeError) as failure:
            raise errors.LibraryNotFoundError(f"The VT40 library cannot be used: {failure}.") from failure
        describe.argtypes, describe.restype = (c_long,), c_char_p
        self._describe: Callable[[int], bytes] = describe

    def _declare(self, name: str, types: Sequence[object]) -> Callable[..., int]:
        function = getattr(self._library, name)
        function.argtypes, function.restype = types, c_long
        return function  # type: ignore[no-any-return]

    def describe(self, number: int) -> str:
        return self._describe(number).decode("utf-8", "replace")

    def try_call(self, name: str, *arguments: object) -> int:
        """Calls a function and returns its number."""
        return self._functions[name](*arguments)

    def call(self, name: str, *arguments: object) -> None:
        """Calls a function and raises what its number stands for."""
        number = self.try_call(name, *arguments)
        if number != 0:
            raise errors.error_for(number, self.describe(number))

    def pair(self, name: str, handle: object) -> Tuple[int, int]:
        """The two unsigned numbers that a function reports."""
        first, second = c_uint(), c_uint()
        self.call(name, handle, byref(first), byref(second))
        return first.value, second.value

    def text(self, name: str, *arguments: object) -> str:
        """The text that a function stores in a buffer with its size."""
        room = c_uint(1024)
        buffer = ctypes.create_string_buffer(room.value)
        self.call(name, *arguments, buffer, byref(room))
        return buffer.value.decode("utf-8", "replace")

    def folder(self) -> str:
        """The folder from which the dynamic linker loaded the library."""
        info = _DlInfo()
        dladdr = ctypes.CDLL(None).dladdr
        dladdr.argtypes, dladdr.restype = (c_void_p, POINTER(_DlInfo)), c_int
        address = ctypes.cast(self._library.LS_VT40Initialize, c_void_p)
        found = dladdr(address, byref(info)) != 0 and info.file
        return os.path.dirname(os.fsdecode(info.file)) if found else ""


def loaded_files(name: str) -> List[str]:
    """Paths of the loaded libraries with that file name."""
    paths: List[str] = []
    kind = ctypes.CFUNCTYPE(c_int, POINTER(_LoadedObject), ctypes.c_size_t, c_void_p)

    def take(loaded: object, _size: int, _data: object) -> int:
        path = os.fsdecode(loaded.contents.name or b"")  # type: ignore[attr-defined]
        if os.path.basename(path) == name:
            paths.append(path)
        return 0

    iterate = ctypes.CDLL(None).dl_iterate_phdr
    iterate.argtypes, iterate.restype = (kind, c_void_p), c_int
    iterate(kind(take), None)
    return paths


_lock = threading.Lock()
_native: Optional[Native] = None


def native() -> Native:
    """The library, loaded at the first use: the file that KELVARIN_VT40_LIBRARY names, or the dynamic linker's."""
    global _native
    with _lock:
        if _native is None:
            _native = Native(os.environ.get("KELVARIN_VT40_LIBRARY") or LIBRARY_NAME)
        return _native
