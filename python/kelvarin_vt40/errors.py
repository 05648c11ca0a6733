"""The failures of the package: one class for each number of the library, and those of the binding itself."""

from __future__ import annotations

from typing import Dict, Optional, Type


class Error(Exception):
    """A call failed.

    Attributes
    ----------
    number : int or None
        The library's number, negative; None for failures of the binding itself.
    name : str
        The number's name as in the C header, or the name of the class.
    text : str
        What happened, in words.
    hint : str
        What to do about it.
    """

    number: Optional[int] = None
    name: str = "KLV_ERROR"
    hint: str = "Repeat the call; KELVARIN_SDK_LOG=1 in the environment shows what the library does."

    def __init__(self, text: str, number: Optional[int] = None, hint: Optional[str] = None) -> None:
        super().__init__(text)
        self.text = text
        if number is not None:
            self.number = number
        if hint is not None:
            self.hint = hint

    def __str__(self) -> str:
        number = "" if self.number is None else f" ({self.number})"
        return f"{self.text}{number} {self.hint}".strip()


class NotInitializedError(Error):
    """The library was shut down in between."""

    number, name = -2, "KLV_ERROR_NOT_INITIALIZED"
    hint = "Open the scanner anew; shutdown() ends everything."


class NoFingerError(Error):
    """There is no finished picture yet."""

    number, name = -15, "KLV_ERROR_NO_FINGER"
    hint = "Lay the fingers down and hold them still."


class BufferTooSmallError(Error):
    """A buffer was too small for its text."""

    number, name = -21, "KLV_ERROR_BUFFER_TOO_SMALL"


class OutOfRangeError(Error, ValueError):
    """A value is outside its range."""

    number, name = -35, "KLV_ERROR_OUT_OF_RANGE"
    hint = "Use a value of the range that the documentation of the call states."


class CorruptDataError(Error):
    """The scanner's calibration data is damaged."""

    number, name = -39, "KLV_ERROR_CORRUPT_DATA"
    hint = "Have the scanner serviced; see vt40 calibrate --check."


class UnexpectedSignatureError(CorruptDataError):
    """The scanner's calibration data is damaged at its beginning."""

    number, name = -40, "KLV_ERROR_UNEXPECTED_SIGNATURE"


class NoHandleError(Error):
    """There is no handle."""

    number, name = -42, "KLV_ERROR_NO_HANDLE"


class InvalidHandleError(Error):
    """The handle is closed or foreign."""

    number, name = -43, "KLV_ERROR_INVALID_HANDLE"
    hint = "Open the scanner anew."


class InvalidParameterError(Error, ValueError):
    """An argument cannot be used."""

    number, name = -44, "KLV_ERROR_INVALID_PARAMETER"
    hint = "Correct the argument; the documentation of the call states what it takes."


class ReadOnlyError(Error):
    """The property can be read only."""

    number, name = -47, "KLV_ERROR_READ_ONLY"
    hint = "Read it."


class InvalidStateError(Error):
    """The call is not possible in the current capture mode."""

    number, name = -50, "KLV_ERROR_INVALID_STATE"
    hint = "Set the capture mode that the call needs, or leave the one that forbids it."


class DisconnectedError(Error):
    """The scanner is gone, is not connected, or sent no picture in time."""

    number, name = -60, "KLV_ERROR_DISCONNECTED"
    hint = "Connect the scanner, close what is open, and open it anew; scanners() lists what is connected."


class DeviceOpenFailError(Error):
    """The scanner is in use."""

    number, name = -61, "KLV_ERROR_DEVICE_OPEN_FAIL"
    hint = "Close it where it is open; it can be open once."


class InternalError(Error):
    """The scan library or this library failed."""

    number, name = -101, "KLV_ERROR_INTERNAL"


class OutOfMemoryError(Error, MemoryError):
    """Memory ran out."""

    number, name = -102, "KLV_ERROR_OUT_OF_MEMORY"
    hint = "Let go of frames that are no longer needed."


class UnsupportedError(Error):
    """The scanner, the scan library or the installation cannot do this."""

    number, name = -103, "KLV_ERROR_UNSUPPORTED"
    hint = "Install the liveness library for liveness scores; update a scan library or scanner that is too old."


class NotImplementedByLibraryError(Error):
    """The library lacks the function."""

    number, name = -106, "KLV_ERROR_NOT_IMPLEMENTED"


class FileOpenFailError(Error):
    """The scan library was not found."""

    number, name = -200, "KLV_ERROR_FILE_OPEN_FAIL"
    hint = "Install the scan library, or ask for the simulated scanner: kelvarin_vt40.simulator.use()."


class UnexpectedEndError(CorruptDataError):
    """The scanner's calibration data ends too early."""

    number, name = -201, "KLV_ERROR_UNEXPECTED_END"


class UnknownParameterError(Error):
    """There is no property of that name."""

    number, name = -206, "KLV_ERROR_UNKNOWN_PARAMETER"
    hint = "The installed library is older than this package; install both from one release."


class BadPointerError(Error):
    """A pointer is missing."""

    number, name = -701, "KLV_ERROR_BAD_POINTER"


class SizeTooSmallError(Error):
    """A buffer was too small."""

    number, name = -702, "KLV_ERROR_SIZE_TOO_SMALL"


class ClosedError(Error):
    """The scanner was closed: before the call, or by another thread while the call waited."""

    name = "ClosedError"
    hint = "Open the scanner anew."


class BusyError(Error, TimeoutError):
    """Calls of other threads keep a scanner from being closed."""

    name = "BusyError"
    hint = "Let the calls return and close the scanner again."


class CaptureTimeoutError(Error, TimeoutError):
    """What was waited for did not happen in the time given.

    Attributes
    ----------
    frame : Frame or None
        The last frame that came, such as the print as far as it was rolled.
    """

    name = "CaptureTimeoutError"
    hint = "Try again, or wait longer with timeout=…"

    def __init__(self, text: str, frame: Optional[object] = None) -> None:
        super().__init__(text)
        self.frame = frame


class LibraryNotFoundError(Error, OSError):
    """The shared library of the SDK cannot be loaded."""

    name = "LibraryNotFoundError"
    hint = (
        "Install libkelvarinlivescannervt40-1, run ldconfig after cmake --install, "
        "or let KELVARIN_VT40_LIBRARY name the file."
    )


class SimulatorError(Error):
    """The simulated scanner refuses: a scene that cannot be read, or a value out of its range."""

    name = "SimulatorError"
    hint = "docs/simulator.md describes scenes and faults."


_BY_NUMBER: Dict[int, Type[Error]] = {
    c.number: c
    for c in (
        NotInitializedError, NoFingerError, BufferTooSmallError, OutOfRangeError, CorruptDataError,
        UnexpectedSignatureError, NoHandleError, InvalidHandleError, InvalidParameterError, ReadOnlyError,
        InvalidStateError, DisconnectedError, DeviceOpenFailError, InternalError, OutOfMemoryError, UnsupportedError,
        NotImplementedByLibraryError, FileOpenFailError, UnexpectedEndError, UnknownParameterError, BadPointerError,
        SizeTooSmallError,
    )
    if c.number is not None
}  # fmt: skip


def error_for(number: int, text: str) -> Error:
    """The exception of a number; one without a class of its own becomes a plain `Error`."""
    return _BY_NUMBER.get(number, Error)(text, number)
