"""The library as a whole: its start and end, its version, and the connected scanners."""

from __future__ import annotations

import atexit
import ctypes
import os
import threading
import weakref
from typing import TYPE_CHECKING, List

from . import errors
from ._native import SCAN_LIBRARY_NAME, SERIAL_SIZE, Native, loaded_files, native

if TYPE_CHECKING:
    from .scanner import Scanner

_lock = threading.RLock()
_process = 0
_started = False
_simulated = False
_control_side = ""
_open_scanners: weakref.WeakSet[Scanner] = weakref.WeakSet()


def start() -> Native:
    """Starts the library at the first call of all, and returns it."""
    global _process, _simulated, _started
    library = native()
    with _lock:
        if _started and _process != os.getpid():
            raise errors.NotInitializedError(
                f"The VT40 library was started by process {_process} and does not work in a forked child.",
                hint="Start processes by multiprocessing's method spawn.",
            )
        if not _started:
            library.call("LS_VT40Initialize", None)
            _started, _process = True, os.getpid()
            _simulated = _find_out_whether_simulated()
    return library


def is_started() -> bool:
    """Whether the library runs, so that the choice between the simulated and the real scanner has been made."""
    return _started


def has_open_scanners() -> bool:
    """Whether a scanner of this process is open."""
    with _lock:
        return any(not scanner.closed for scanner in _open_scanners)


def register(scanner: Scanner) -> None:
    """Remembers a scanner that is to be closed at the end."""
    with _lock:
        _open_scanners.add(scanner)


def shutdown() -> None:
    """Closes all scanners of this process and stops the library; the next call starts it again.

    Happens by itself when the interpreter ends. Threads that wait for a scanner get `ClosedError`.

    Raises
    ------
    BusyError
        Calls of other threads have not returned for 20 seconds; the library runs on.
    Error
        The scan library refused to close a device. All is closed and stopped all the same.
    """
    global _started
    with _lock:
        if not _started or _process != os.getpid():
            return
        refusal = None
        for scanner in list(_open_scanners):
            try:
                scanner.close()
            except errors.BusyError:
                raise
            except errors.Error as failure:
                refusal = refusal or failure
        _open_scanners.clear()
        _started = False
        native().call("LS_VT40Uninitialize")
        if refusal is not None:
            raise refusal


atexit.register(shutdown)


def version() -> str:
    """The version of the shared library, such as "1.5.1421.5". Needs no scanner and starts nothing."""
    return native().text("LS_VT40GetVersionA")


def scanners() -> List[str]:
    """The serial numbers of the connected scanners.

    The first call loads and starts the scan library. Scanners that are plugged in later are in the next list.

    Returns
    -------
    list of str
        One serial number of up to 15 characters for each scanner, in the order of the bus; empty without a scanner.

    Raises
    ------
    LibraryNotFoundError
        This SDK's library is not installed.
    FileOpenFailError
        The scan library is not installed.
    InternalError
        A serial number cannot be read.

    Threads: thread-safe.
    """
    library = start()
    most = 127
    cells = ctypes.create_string_buffer(most * SERIAL_SIZE)
    count = ctypes.c_uint(most)
    library.call("LS_VT40QueryScanners", cells, ctypes.byref(count))
    return [
        cells.raw[n * SERIAL_SIZE : (n + 1) * SERIAL_SIZE].split(b"\0", 1)[0].decode("ascii", "replace")
        for n in range(count.value)
    ]


def is_simulation_asked_for() -> bool:
    """Whether KELVARIN_SDK_SIMULATE asks for the simulated scanner: anything but nothing and "0"."""
    return os.environ.get("KELVARIN_SDK_SIMULATE", "") not in ("", "0")


def simulator_folder() -> str:
    """Where the simulated libraries are installed: beside the library."""
    return os.path.join(native().folder(), "kelvarin-vt40", "simulator")


def _find_out_whether_simulated() -> bool:
    """The simulated scan library has a function to load scenes; a recorder and a player know what they stand for."""
    if is_simulation_asked_for():
        return True
    for path in loaded_files(SCAN_LIBRARY_NAME):
        if path != _control_side:
            loaded = ctypes.CDLL(path, mode=os.RTLD_NOW | os.RTLD_NOLOAD)
            for name in ("VTRecIsSimulated", "VTPlayIsSimulated"):
                if hasattr(loaded, name):
                    return bool(getattr(loaded, name)())
            if hasattr(loaded, "VTSimLoadScene"):
                return True
    return False


def note_control_side(path: str) -> None:
    """Remembers the library that was loaded for its control side, and may not be the one in use."""
    global _control_side
    _control_side = path


def is_simulated() -> bool:
    """Whether the scan library that was started is the simulated one."""
    return _simulated
