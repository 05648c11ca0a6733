"""An open scanner."""

from __future__ import annotations

import ctypes
import operator
import time
import warnings
from ctypes import byref, c_double, c_long, c_ubyte, c_void_p
from types import TracebackType
from typing import Callable, Iterable, Iterator, Optional, Tuple, Type

import numpy as np

from . import errors, library
from ._gate import Gate
from ._native import SERIAL_SIZE
from .courses import Roll, Signature, wait_for_fingers
from .frames import Frame, Mode, Pixels, Size

OnFrame = Callable[[Frame], None]

_PREVIEW_MODES = (Mode.AUTO, Mode.AUTO_LIVE, Mode.PREVIEW, Mode.SIGNATURE)
_LINE_LENGTH = 16


def _whole(value: int, name: str, first: int, last: int) -> int:
    """A whole number of a range that the C type holds; ctypes itself would drop what is too much."""
    number = operator.index(value)
    if not first <= number <= last:
        raise errors.OutOfRangeError(f"{name} is {number}; it must be from {first} to {last}.")
    return number


def _truth(value: bool, name: str) -> bool:
    if not isinstance(value, (bool, np.bool_)):
        raise TypeError(f"{name} must be True or False, not {value!r}")
    return bool(value)


def _real(value: float, name: str) -> float:
    if isinstance(value, (str, bytes)):
        raise TypeError(f"{name} must be a number, not {value!r}")
    return float(value)


def _seconds(value: float, name: str) -> float:
    seconds = _real(value, name)
    if not seconds >= 0.0:
        raise errors.OutOfRangeError(f"{name} is {seconds:g}; it must be 0 or more seconds.")
    return seconds


def _target(out: Optional[Pixels], size: Size) -> Pixels:
    """The array that a picture goes to: a new one, or the caller's when it has the right form."""
    shape = (size.height, size.width)
    if out is None:
        return np.empty(shape, np.uint8)
    if not isinstance(out, np.ndarray):
        raise TypeError(f"out must be a numpy array, not {type(out).__name__}")
    if out.dtype != np.uint8 or out.shape != shape or not out.flags.c_contiguous or not out.flags.writeable:
        raise errors.InvalidParameterError(
            f"out has the shape {out.shape} and dtype {out.dtype}"
            f"{'' if out.flags.c_contiguous else ', not in C order'}{'' if out.flags.writeable else ', read-only'}; "
            f"this picture takes a writable array of the shape {shape} and dtype uint8 in C order."
        )
    return out


class Scanner:
    """An open scanner; use it in a ``with`` statement.

    Parameters
    ----------
    serial : str, optional
        Serial number of the scanner; the first of `scanners` when it is left out.

    Raises
    ------
    DisconnectedError
        There is no such scanner, or none at all.
    DeviceOpenFailError
        The scanner is open elsewhere.
    CorruptDataError
        The scanner's calibration data is damaged.
    UnsupportedError
        The scan library or the scanner is too old or too new.

    Notes
    -----
    Threads: thread-safe. Calls that wait for a picture are served one after the other in order of arrival, and with them
    changes of the mode, of the height of the signature pad and of LEDs; all others run at any time. Waiting calls release
    the interpreter's lock. A wait for a picture ends after 15 seconds (preview, signature), 10 (full stream) or 5 (roll)
    at the latest, with `DisconnectedError` when none came. A signal handler of Python runs when the call returns, which is
    with the next frame.

    `close` in one thread ends what others wait for with `ClosedError` when their picture comes, or at the times above; it
    returns when the scanner is closed.
    """

    def __init__(self, serial: Optional[str] = None) -> None:
        self._gate: Optional[Gate] = None
        if serial is not None and not isinstance(serial, str):
            raise TypeError(f"serial must be a text, not {serial!r}")
        self._library = library.start()
        self._serial = self._first() if serial is None else serial
        self._handle = c_void_p()
        if not (self._serial.isascii() and self._serial.isprintable()):
            raise errors.DisconnectedError(f"There is no scanner {serial!r}: serial numbers are printable ASCII.")
        # A reference of its own: the library runs until this scanner is closed, whoever shuts it down meanwhile.
        self._library.call("LS_VT40Initialize", None)
        number = self._library.try_call("LS_VT40OpenScanner", self._serial.encode("ascii"), byref(self._handle))
        if number != 0:
            self._library.try_call("LS_VT40Uninitialize")
            raise errors.error_for(number, f"{self._serial}: {self._library.describe(number)}")
        self._mode = Mode.OFF
        self._has_taken = False
        self._simulated = library.is_simulated()
        self._gate = Gate(self._serial, self._close_handle)
        library.register(self)

    @staticmethod
    def _first() -> str:
        connected = library.scanners()
        if not connected:
            raise errors.DisconnectedError("No scanner is connected.")
        return connected[0]

    # ---- Life ------------------------------------------------------------------------------------------------

    def _close_handle(self) -> None:
        number = self._library.try_call("LS_VT40CloseScanner", byref(self._handle))
        if number != 0 and self._handle.value:
            # The scan library refused, and the handle is without a device now; a second call ends it.
            self._library.try_call("LS_VT40CloseScanner", byref(self._handle))
        self._library.try_call("LS_VT40Uninitialize")
        if number != 0:
            raise errors.error_for(number, f"{self._serial}: {self._library.describe(number)}")

    def close(self) -> None:
        """Stops what runs and closes the scanner. Closing it again does nothing.

        Waits until the calls of other threads have returned; these end with `ClosedError`. Called by a signal handler in
        the midst of a call of the same thread, it leaves the closing to the end of that call.

        Raises
        ------
        BusyError
            Calls of other threads have not returned for 20 seconds; the scanner is still open, and new calls are refused.
        Error
            The scan library refused to close the device. The handle is closed all the same.
        """
        self._open_gate.close()

    @property
    def closed(self) -> bool:
        """Whether `close` was called."""
        return self._open_gate.is_closed

    def __enter__(self) -> Scanner:
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        failure: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self.close()

    def __del__(self) -> None:
        gate = getattr(self, "_gate", None)
        if gate is None or gate.is_closed or gate.is_foreign:
            return
        warnings.warn(f"scanner {self._serial} was not closed", ResourceWarning, source=self)
        gate.close()

    def __repr__(self) -> str:
        return f"<Scanner {self._serial} {'closed' if self.closed else self._mode.name}>"

    @property
    def _open_gate(self) -> Gate:
        assert self._gate is not None, "the scanner was not opened"
        return self._gate

    # ---- Facts -----------------------------------------------------------------------------------------------

    @property
    def simulated(self) -> bool:
        """Whether this is a simulated scanner, whose fingers were never anybody's."""
        return self._simulated

    @property
    def serial(self) -> str:
        """The serial number, as the scanner reports it."""
        buffer = ctypes.create_string_buffer(SERIAL_SIZE + 1)
        self._call("LS_VT40GetSerialNumber", buffer)
        return buffer.value.decode("ascii", "replace")

    @property
    def versions(self) -> str:
        """Versions of the scanner and of the scan library, such as "FW:3.10 FPGA:2.07 HW:1.4 LIB:1.20 SAPI:1.20"."""
        with self._open_gate.call():
            return self._library.text("LS_VT40GetVersionString", self._handle)

    @property
    def condition(self) -> int:
        """How dirty the platen is, 0 (clean) to 100, as automatic capture has measured it."""
        return self._pair("LS_VT40GetScannerCondition")[0]

    @property
    def image_size(self) -> Size:
        """Size of a captured picture at 500 dpi."""
        return Size(*self._pair("LS_VT40GetImageSize"))

    @property
    def preview_size(self) -> Size:
        """Size of a preview at 250 dpi."""
        return Size(*self._pair("LS_VT40GetPreviewImageSize"))

    @property
    def roll_size(self) -> Size:
        """Size of a rolled print at 500 dpi."""
        return Size(*self._pair("LS_VT40GetRollImageSize"))

    @property
    def signature_size(self) -> Size:
        """Size of a signature at 500 dpi; half as high with `signature_half`."""
        return Size(*self._pair("LS_VT40GetSignatureImageSize"))

    @property
    def signature_preview_size(self) -> Size:
        """Size of the preview of a signature at 250 dpi; half as high with `signature_half`."""
        return Size(*self._pair("LS_VT40GetSignaturePreviewImageSize"))

    # ---- Capture ---------------------------------------------------------------------------------------------

    @property
    def mode(self) -> Mode:
        """The capture mode; setting it starts and stops the stream.

        Setting waits for the picture that another thread waits for.

        Raises
        ------
        ValueError
            The value is no mode.
        UnsupportedError
            `Mode.AUTO_LIVE` without the liveness library; the mode is `Mode.OFF` then.
        """
        if self.closed:
            raise errors.ClosedError(f"Scanner {self._serial} is closed.")
        return self._mode

    @mode.setter
    def mode(self, mode: Mode) -> None:
        wanted = Mode(mode)
        with self._open_gate.turn():
            self._set_mode(wanted)

    def _set_mode(self, mode: Mode) -> None:
        """Within a turn."""
        if mode is not self._mode:
            self._has_taken = False
        self._mode = Mode.OFF
        self._library.call("LS_VT40SetCaptureMode", self._handle, int(mode))
        self._mode = mode

    def _restart(self, mode: Mode) -> None:
        """Begins a mode afresh, so that nothing of an earlier course is left."""
        with self._open_gate.turn():
            self._set_mode(Mode.OFF)
            self._set_mode(mode)

    def _image(self, function: str, size: str, dpi: int, out: Optional[Pixels]) -> Frame:
        """Within a turn, so that the size holds until the picture has come."""
        pixels = _target(out, Size(*self._library.pair(size, self._handle)))
        score, done, result = c_double(), c_ubyte(), c_long()
        address = pixels.ctypes.data_as(c_void_p)
        self._library.call(function, self._handle, address, byref(score), byref(done), byref(result))
        return Frame(
            pixels=pixels,
            dpi=dpi,
            mode=self._mode,
            score=score.value,
            done=bool(done.value),
            result=result.value,
            serial=self._serial,
            simulated=self._simulated,
            time=time.monotonic(),
        )

    def preview_frame(self, out: Optional[Pixels] = None) -> Frame:
        """The next preview that was not delivered yet.

        Parameters
        ----------
        out : numpy.ndarray, optional
            Takes the pixels instead of a new array: shape (height, width) of `preview_size`, dtype uint8, C order.

        Raises
        ------
        InvalidStateError
            The mode gives no previews.
        DisconnectedError
            None came within 15 seconds.
        ClosedError
            The scanner was closed while the call waited.
        """
        with self._open_gate.turn():
            kind = "SignaturePreview" if self._mode is Mode.SIGNATURE else "Preview"
            return self._image("LS_VT40GetPreviewImage", f"LS_VT40Get{kind}ImageSize", 250, out)

    def preview(self, out: Optional[Pixels] = None) -> Iterator[Frame]:
        """Previews without end: some 15 in a second, each of 800 × 800 pixels at 250 dpi.

        Sets `Mode.PREVIEW`, unless a mode with previews is set already. The mode stays when the loop is left, so that
        `capture` can follow.

        Parameters
        ----------
        out : numpy.ndarray, optional
            As for `preview_frame`: all frames share the caller's array.

        Raises
        ------
        Error
            As `preview_frame`.
        """
        with self._open_gate.turn():
            if self._mode not in _PREVIEW_MODES:
                self._set_mode(Mode.PREVIEW)
        return self._previews(out)

    def _previews(self, out: Optional[Pixels]) -> Iterator[Frame]:
        while True:
            yield self.preview_frame(out)

    def capture(self, out: Optional[Pixels] = None) -> Frame:
        """A picture at full resolution, 1600 × 1600 pixels at 500 dpi.

        A single shot in `Mode.OFF`, a capture on request in `Mode.PREVIEW`, the next picture of the stream in `Mode.FULL`,
        the picture that waits to be fetched in the automatic modes, and the strokes so far in `Mode.SIGNATURE`.

        Parameters
        ----------
        out : numpy.ndarray, optional
            Takes the pixels instead of a new array: shape (height, width) of `image_size`, dtype uint8, C order.

        Raises
        ------
        InvalidStateError
            The mode is `Mode.ROLL`.
        DisconnectedError
            No picture came within 10 seconds, or the scanner is gone.
        ClosedError
            The scanner was closed while the call waited.
        """
        with self._open_gate.turn():
            kind = "Signature" if self._mode is Mode.SIGNATURE else ""
            return self._image("LS_VT40GetImage", f"LS_VT40Get{kind}ImageSize", 500, out)

    def roll_frame(self, out: Optional[Pixels] = None) -> Frame:
        """The roll as it was put together so far, in `Mode.ROLL`: 800 × 800 pixels at 500 dpi.

        Raises
        ------
        InvalidStateError
            The mode is not `Mode.ROLL`.
        DisconnectedError
            No frame came within 5 seconds.
        ClosedError
            The scanner was closed while the call waited.
        """
        with self._open_gate.turn():
            if self._mode is not Mode.ROLL:
                # The library itself would wait its 5 seconds for a frame that no mode makes.
                raise errors.InvalidStateError(f"There are no roll frames in mode {self._mode.name}.")
            return self._image("LS_VT40GetRollImage", "LS_VT40GetRollImageSize", 500, out)

    def auto_capture(
        self, timeout: float = 30.0, live: bool = False, on_frame: Optional[OnFrame] = None
    ) -> Frame:
        """Waits until fingers lie still and returns their picture.

        The fingers of an earlier automatic capture must be lifted first. The mode stays automatic.

        Parameters
        ----------
        timeout : float
            Seconds, looked at after each preview.
        live : bool
            Whether to measure the score of liveness, which `Frame.score` holds then. Needs the liveness library.
        on_frame : callable, optional
            Gets each preview while the scanner waits.

        Returns
        -------
        Frame
            1600 × 1600 pixels at 500 dpi, `done`.

        Raises
        ------
        CaptureTimeoutError
            No fingers lay still in time; `frame` is the last preview.
        UnsupportedError
            `live` without the liveness library.
        """
        seconds = _seconds(timeout, "timeout")
        self.mode = Mode.AUTO_LIVE if _truth(live, "live") else Mode.AUTO
        return wait_for_fingers(self, seconds, on_frame)

    def roll(self, timeout: float = 30.0, postprocess: Optional[bool] = None) -> Roll:
        """Begins a roll; iterate over the result for the growing print, or `Roll.wait` for the finished one.

        Parameters
        ----------
        timeout : float
            Seconds from now on until the finger must be lifted, looked at after each frame.
        postprocess : bool, optional
            Sets `rolled_post_process` first: whether the finished print is made upright and centred.
        """
        seconds = _seconds(timeout, "timeout")
        if postprocess is not None:
            self.rolled_post_process = postprocess
        self._restart(Mode.ROLL)
        return Roll(self, seconds)

    def sign(
        self, pause: float = 2.0, timeout: float = 60.0, half: Optional[bool] = None, sigma: Optional[float] = None
    ) -> Signature:
        """Begins a signature; iterate over the result for the strokes as they are written, or `Signature.wait`.

        Parameters
        ----------
        pause : float
            Seconds without a new stroke that end the signature, by the clock.
        timeout : float
            Seconds from now on in which it must end, looked at after each preview.
        half : bool, optional
            Sets `signature_half` first: the upper half of the platen alone, at twice the frame rate.
        sigma : float, optional
            Sets `signature_filter_sigma` first, 0.5 to 100: how soft the ink is.
        """
        seconds, rest = _seconds(timeout, "timeout"), _seconds(pause, "pause")
        self.mode = Mode.OFF
        if half is not None:
            self.signature_half = half
        if sigma is not None:
            self.signature_filter_sigma = sigma
        # The library's own measure of a pause is the processor time of the process, which may stand still.
        self.signature_detect_time = 0.0
        self._restart(Mode.SIGNATURE)
        return Signature(self, rest, seconds)

    def reset_image(self) -> None:
        """Begins the current roll or signature afresh, with the next frame.

        Raises
        ------
        InvalidStateError
            The mode is neither `Mode.ROLL` nor `Mode.SIGNATURE`.
        """
        self._call("LS_VT40SetPropertyLongA", b"nResetImage", 1)

    # ---- Lights, sound, display ------------------------------------------------------------------------------

    def set_led(self, index: int, state: int) -> None:
        """Sets one status LED.

        Parameters
        ----------
        index : int
            0 to 11.
        state : int
            0 to 7; 0 is off.
        """
        led, value = _whole(index, "index", 0, 11), _whole(state, "state", 0, 7)
        with self._open_gate.turn():
            self._library.call("LS_VT40SetLED", self._handle, led, value)

    def set_leds(self, indices: Iterable[int], state: int) -> None:
        """Sets several status LEDs to one state at once.

        Parameters
        ----------
        indices : iterable of int
            Each 0 to 11.
        state : int
            0 to 7; 0 is off.
        """
        word = _whole(state, "state", 0, 7)
        for index in indices:
            word |= 1 << 16 + _whole(index, "index", 0, 11)
        if word > 7:
            self._call("LS_VT40SetPropertyLongA", b"STATUS_LED", word)

    def beep(self, first: int = 300, second: int = 100) -> None:
        """Sounds the buzzer. The meaning of the two values, each 0 to 2³² - 1, is the scanner's; 300, 100 is the signal
        of a capture."""
        most = 0xFFFFFFFF
        self._call("LS_VT40Beep", _whole(first, "first", 0, most), _whole(second, "second", 0, most))

    def display(self, first: str = "", second: str = "") -> None:
        """Shows two lines on the character display, each of up to 16 ASCII characters; without any it is cleared."""
        text = b""
        for line in (first, second):
            if not isinstance(line, str):
                raise TypeError(f"a line of the display must be a text, not {line!r}")
            if len(line) > _LINE_LENGTH or not line.isascii() or not (line.isprintable() or not line):
                raise errors.InvalidParameterError(
                    f"The display cannot show {line!r}: a line has up to {_LINE_LENGTH} printable ASCII characters."
                )
            text += line.ljust(_LINE_LENGTH).encode("ascii")
        self._call("LS_VT40SetDisplayData", 0, text, len(text))

    # ---- Properties ------------------------------------------------------------------------------------------

    @property
    def auto_capture_beep(self) -> bool:
        """Whether each automatic capture beeps."""
        return self._long(b"nAutoCaptureBeep") != 0

    @auto_capture_beep.setter
    def auto_capture_beep(self, value: bool) -> None:
        self._call("LS_VT40SetPropertyLongA", b"nAutoCaptureBeep", _truth(value, "auto_capture_beep"))

    @property
    def rolled_post_process(self) -> bool:
        """Whether a finished roll is made upright and centred; holds from the next change of the mode on."""
        return self._long(b"nRolledPostProcess") != 0

    @rolled_post_process.setter
    def rolled_post_process(self, value: bool) -> None:
        self._call("LS_VT40SetPropertyLongA", b"nRolledPostProcess", _truth(value, "rolled_post_process"))

    @property
    def signature_filter_sigma(self) -> float:
        """Width of the signature's softening, 0.5 to 100."""
        return self._double(b"dSignatureFilterSigma")

    @signature_filter_sigma.setter
    def signature_filter_sigma(self, value: float) -> None:
        self._set_double(b"dSignatureFilterSigma", value)

    @property
    def signature_detect_time(self) -> float:
        """Idle seconds that end a signature, as processor time of the process; 0 never. `sign` sets 0 and measures its
        pause by the clock."""
        return self._double(b"dSignatureDetectTime")

    @signature_detect_time.setter
    def signature_detect_time(self, value: float) -> None:
        self._set_double(b"dSignatureDetectTime", value)

    @property
    def signature_half(self) -> bool:
        """Whether the signature pad is the upper half of the platen. Not to be set in `Mode.SIGNATURE`."""
        return self._long(b"nSignatureSensorMode") != 0

    @signature_half.setter
    def signature_half(self, value: bool) -> None:
        wanted = _truth(value, "signature_half")
        # Pictures that are under way have the height that was asked for before them.
        with self._open_gate.turn():
            self._library.call("LS_VT40SetPropertyLongA", self._handle, b"nSignatureSensorMode", wanted)

    # ---- Calls -----------------------------------------------------------------------------------------------

    def _call(self, function: str, *arguments: object) -> None:
        with self._open_gate.call():
            self._library.call(function, self._handle, *arguments)

    def _pair(self, function: str) -> Tuple[int, int]:
        with self._open_gate.call():
            return self._library.pair(function, self._handle)

    def _long(self, name: bytes) -> int:
        value = c_long()
        self._call("LS_VT40GetPropertyLongA", name, byref(value))
        return value.value

    def _double(self, name: bytes) -> float:
        value = c_double()
        self._call("LS_VT40GetPropertyDoubleA", name, byref(value))
        return value.value

    def _set_double(self, name: bytes, value: float) -> None:
        number = _real(value, name.decode())
        with self._open_gate.call():
            result = self._library.try_call("LS_VT40SetPropertyDoubleA", self._handle, name, number)
            if result != 0:
                raise errors.error_for(result, f"{name.decode()} = {number:g}: {self._library.describe(result)}")
