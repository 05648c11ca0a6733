"""The control side of the simulated scanner: what lies on the platen, what it would ideally look like, and faults."""

from __future__ import annotations

import ctypes
import os
import threading
from ctypes import POINTER, byref, c_char, c_char_p, c_double, c_int, c_long, c_ubyte, c_uint, c_ulonglong, c_void_p
from typing import Any, Dict, List, NamedTuple, Optional, Sequence, Tuple, Type, TypeVar, Union

import numpy as np
import numpy.typing as npt

from .. import errors, library
from .._native import SCAN_LIBRARY_NAME
from ..frames import Pixels
from .scenes import Dirt, Finger, Light, Pen, Platen, Scene, Sheet, Target, as_json

# Side of a picture of the ground truth in pixels, at 500 dpi.
PICTURE_SIDE = 1600

# Side of the map of ridges, whose squares have 8 pixels a side.
RIDGE_SIDE = 200

_SIZE_TOO_SMALL = -702
_TIMED_OUT = -50


class GroundTruth(NamedTuple):
    """What a perfect scanner would deliver.

    Attributes
    ----------
    picture : numpy.ndarray
        Shape (1600, 1600), dtype uint8, 500 dpi: black ridges on white, right way round. The caller's own.
    mask : numpy.ndarray
        The same shape: 255 where skin is near the glass, 0 elsewhere.
    """

    picture: Pixels
    mask: Pixels


class State(ctypes.Structure):
    """What the host has set on one scanner and what it has got from it."""

    _fields_ = [
        ("struct_size", c_uint), ("plugged", c_int), ("open", c_int), ("capture_enabled", c_int), ("sensor_mode", c_int),
        ("planes", c_uint), ("exposure", c_uint), ("gain", c_uint * 3), ("illumination", c_uint),
        ("status_led", c_ulonglong), ("status_writes", c_uint), ("sequences", c_ulonglong), ("locked_sequences", c_uint),
        ("waiting", c_int), ("beeps", c_uint), ("time", c_double),
    ]  # fmt: skip


class Beep(ctypes.Structure):
    """One beep: its time and two values."""

    _fields_ = [("time", c_double), ("first", c_uint), ("second", c_uint)]


class LightWord(ctypes.Structure):
    """One word that switched lights: `kind` 1 the status LEDs, 2 the platen, 3 a plane of a sequence."""

    _fields_ = [("time", c_double), ("kind", c_int), ("word", c_ulonglong), ("leds", c_ubyte * 12)]


class DisplayState(ctypes.Structure):
    """What the character display shows."""

    _fields_ = [
        ("struct_size", c_uint), ("text", (c_char * 17) * 2), ("on", c_int), ("four_wires", c_int), ("commands", c_uint),
        ("characters", c_uint), ("lost", c_uint),
    ]  # fmt: skip

    @property
    def lines(self) -> Tuple[str, str]:
        """Both lines, 16 characters each."""
        first, second = (line.value.decode("latin-1") for line in self.text)
        return first, second


class SequenceRecord(ctypes.Structure):
    """One sequence that was handed out, and what it showed."""

    _fields_ = [
        ("number", c_ulonglong), ("steady_since", c_ulonglong), ("time", c_double), ("sensor_mode", c_int),
        ("planes", c_uint), ("fingers", c_uint), ("moving", c_uint),
    ]  # fmt: skip


class PenState(ctypes.Structure):
    """The tip of the pen at a moment: in the picture, and on the full sensor."""

    _fields_ = [
        ("down", c_int), ("stroke", c_int), ("x", c_double), ("y", c_double), ("sensor_x", c_double),
        ("sensor_y", c_double),
    ]  # fmt: skip


class PenStroke(ctypes.Structure):
    """A stroke of the pen: the tip is down from `begin` until `end`."""

    _fields_ = [("begin", c_double), ("end", c_double)]


class OpticsState(ctypes.Structure):
    """Deviations of the point spread in pixels of the full sensor, and what such a pixel covers in millimetres."""

    _fields_ = [
        ("_size", c_uint), ("spread_x", c_double), ("spread_y", c_double), ("pixel_x", c_double), ("pixel_y", c_double),
    ]  # fmt: skip


class SheetState(ctypes.Structure):
    """The kind of a sheet (-1: there is none), its middle on the platen in mm, and its turn in degrees."""

    _fields_ = [("kind", c_int), ("x", c_double), ("y", c_double), ("angle", c_double)]


class SheetField(ctypes.Structure):
    """What is printed on a sheet, in mm from its middle; lights are shares of that of a ridge."""

    _fields_ = [
        ("kind", c_int), ("along_x", c_int), ("x", c_double), ("y", c_double), ("width", c_double), ("height", c_double),
        ("turn", c_double), ("frequency", c_double), ("low", c_double), ("high", c_double),
    ]  # fmt: skip


class Minutia(ctypes.Structure):
    """A point of a generated print: `kind` 1 a ridge ending, 2 a bifurcation, 3 a core, 4 a delta.

    `finger` counts the fingers of the scene from 0, `down` is 1 where the skin touches the glass, `x` and `y` are pixels of
    the ground truth, `direction` is degrees counter-clockwise from the right: into the ridge that ends, between the branches.
    """

    _fields_ = [
        ("finger", c_uint), ("kind", c_int), ("down", c_int), ("x", c_double), ("y", c_double), ("direction", c_double),
    ]  # fmt: skip


class _Ridge(ctypes.Structure):
    _fields_ = [("direction", c_double), ("period", c_double)]


class _Point(ctypes.Structure):
    _fields_ = [("x", c_double), ("y", c_double)]


_SERIAL = c_char_p
_COUNT = POINTER(c_uint)
_PICTURE = (c_void_p, c_void_p, _COUNT)

_FUNCTIONS: Dict[str, Sequence[Any]] = {
    "VTSimLoadScene": (c_char_p,),
    "VTSimLay": (_SERIAL, c_char_p),
    "VTSimReset": (),
    "VTSimGetGroundTruth": (_SERIAL, *_PICTURE),
    "VTSimGetGroundTruthAt": (_SERIAL, c_double, *_PICTURE),
    "VTSimGetUnrolledTruth": (_SERIAL, c_double, c_double, *_PICTURE),
    "VTSimPictureToSensor": (_SERIAL, c_double, c_double, POINTER(c_double), POINTER(c_double)),
    "VTSimGetMinutiaeAt": (_SERIAL, c_double, c_void_p, _COUNT),
    "VTSimGetRidgesAt": (_SERIAL, c_double, c_void_p, _COUNT),
    "VTSimGetTargetDots": (_SERIAL, c_void_p, _COUNT),
    "VTSimGetOptics": (_SERIAL, POINTER(OpticsState)),
    "VTSimGetSheetAt": (_SERIAL, c_double, POINTER(SheetState), c_void_p, _COUNT),
    "VTSimGetPenAt": (_SERIAL, c_double, POINTER(PenState)),
    "VTSimGetPenStrokes": (_SERIAL, c_void_p, _COUNT),
    "VTSimGetState": (_SERIAL, POINTER(State)),
    "VTSimGetBeeps": (_SERIAL, c_void_p, _COUNT),
    "VTSimGetLights": (_SERIAL, c_void_p, _COUNT),
    "VTSimGetDisplay": (_SERIAL, POINTER(DisplayState)),
    "VTSimGetFrames": (_SERIAL, c_ulonglong, c_void_p, _COUNT),
    "VTSimWaitForSequences": (_SERIAL, c_ulonglong, c_uint),
    "VTSimAdvance": (_SERIAL, c_double),
    "VTSimUnplug": (_SERIAL,),
    "VTSimPlug": (_SERIAL,),
    "VTSimUnplugAt": (_SERIAL, c_double),
    "VTSimPlugAt": (_SERIAL, c_double),
    "VTSimSetEpromFile": (_SERIAL, c_char_p, c_char_p, c_uint),
    "VTSimRestoreEpromFile": (_SERIAL, c_char_p),
    "VTSimSetDeviceVersion": (_SERIAL, c_char_p),
    "VTSimSetLibraryVersion": (c_char_p,),
    "VTSimHoldSequences": (_SERIAL, c_int),
    "VTSimPassSequences": (_SERIAL, c_uint),
    "VTSimDelaySequence": (_SERIAL, c_uint),
    "VTSimFailCall": (c_char_p, c_uint, c_uint, c_long),
    "VTSimFailRandomly": (c_char_p, c_ulonglong, c_double, c_long),
    "VTSimClearFaults": (),
    "VTSimGetFaultLog": (c_char_p, _COUNT),
    "VTSimGetCallCount": (c_char_p, POINTER(c_ulonglong)),
}

_lock = threading.Lock()
_control: Optional[ctypes.CDLL] = None

SceneLike = Union[Scene, str, "os.PathLike[str]"]


def use(scene: Optional[SceneLike] = None) -> None:
    """Asks for the simulated scanner, from now on in this process; with a scene, loads it.

    Sets KELVARIN_SDK_SIMULATE. A library that was started with the real scan library is stopped first.

    Parameters
    ----------
    scene : Scene, str or path, optional
        As for `load_scene`. Without one the environment variable KELVARIN_VTSIM_SCENE says what lies there; without
        that, nothing does.

    Raises
    ------
    InvalidStateError
        A real scanner is open.
    SimulatorError
        The simulator is not installed, or the scene cannot be read.
    """
    if library.is_started() and not library.is_simulated():
        if library.has_open_scanners():
            raise errors.InvalidStateError("A real scanner is open; the simulated one cannot take its place.")
        library.shutdown()
    os.environ["KELVARIN_SDK_SIMULATE"] = "1"
    _functions()
    if scene is not None:
        load_scene(scene)


def _functions() -> ctypes.CDLL:
    """The control side; refuses when nobody has asked for the simulator."""
    global _control
    if not library.is_simulation_asked_for():
        raise errors.SimulatorError(
            "The simulated scanner was not asked for.",
            hint="Call kelvarin_vt40.simulator.use() first, or set KELVARIN_SDK_SIMULATE=1.",
        )
    with _lock:
        if _control is None:
            path = os.path.join(library.simulator_folder(), SCAN_LIBRARY_NAME)
            try:
                loaded = ctypes.CDLL(path)
                for name, types in _FUNCTIONS.items():
                    function = getattr(loaded, name)
                    function.argtypes, function.restype = types, c_long
                loaded.VTSimLastError.argtypes, loaded.VTSimLastError.restype = (), c_char_p
            except (OSError, AttributeError) as failure:
                raise errors.SimulatorError(
                    f"The simulated scanner cannot be used: {failure}.", hint="Install kelvarin-vt40-simulator."
                ) from failure
            _control = loaded
            library.note_control_side(path)
        return _control


def _number(name: str, *arguments: Any) -> int:
    return int(getattr(_functions(), name)(*arguments))


def _raise(name: str, number: int) -> None:
    reason = _functions().VTSimLastError().decode("utf-8", "replace")
    raise errors.SimulatorError(reason or f"{name} answers {number}.", number)


def _call(name: str, *arguments: Any) -> None:
    number = _number(name, *arguments)
    if number != 0:
        _raise(name, number)


def _bytes(text: Optional[str], what: str = "serial") -> Optional[bytes]:
    """A text for C, which ends at a zero byte."""
    if text is None:
        return None
    if not isinstance(text, str):
        raise TypeError(f"{what} must be a text, not {text!r}")
    if "\0" in text:
        raise ValueError(f"{what} {text!r} holds a zero character")
    return os.fsencode(text)


def _unsigned(value: int, what: str, bits: int = 32) -> int:
    if not isinstance(value, (int, np.integer)) or not 0 <= value < 1 << bits:
        raise ValueError(f"{what} is {value!r}; it must be a whole number from 0 to 2^{bits} - 1")
    return int(value)


# ---- Scenes --------------------------------------------------------------------------------------------------------


def load_scene(scene: SceneLike) -> None:
    """Loads a scene: a `Scene`, the name of a built-in one ("settling-slap", "roll-right:7"), a file, or JSON text.

    Scanners that stay open and are in the new scene show it from time 0; others count as unplugged. Faults are forgotten.

    Raises
    ------
    SimulatorError
        The scene cannot be read, which changes nothing; the text says why.
    """
    text = as_json(scene) if isinstance(scene, Scene) else os.fspath(scene)
    _call("VTSimLoadScene", _bytes(text, "scene"))


def reset() -> None:
    """Forgets the scene and all faults, unplugs what is open, and begins afresh with the environment's scene."""
    _call("VTSimReset")


def lay(
    *fingers: Finger,
    pen: Optional[Pen] = None,
    dirt: Optional[Sequence[Dirt]] = None,
    target: Optional[Target] = None,
    ambient: Union[None, float, Sequence[Light]] = None,
    noise: Optional[float] = None,
    sheets: Optional[Sequence[Sheet]] = None,
    serial: Optional[str] = None,
) -> None:
    """Replaces what lies on a platen from the next frame on, while the time line goes on; ``lay()`` clears it.

    Times in the arguments are on the scanner's time line. Called again and again it moves fingers.

    Parameters
    ----------
    *fingers : Finger
        All fingers that lie there from now on.
    pen, dirt, target, ambient, noise, sheets
        As in a `SimulatedScanner`; what is left out is as there.
    serial : str, optional
        The scanner; the first one of the scene when it is left out, here and in all functions below.
    """
    platen = Platen(list(fingers), pen, dirt, target, ambient, noise, sheets)
    _call("VTSimLay", _bytes(serial), as_json(platen).encode())


# ---- Truth ---------------------------------------------------------------------------------------------------------


def _picture(name: str, *arguments: Any) -> GroundTruth:
    truth = GroundTruth(*(np.empty((PICTURE_SIDE, PICTURE_SIDE), np.uint8) for _ in range(2)))
    room = c_uint(PICTURE_SIDE * PICTURE_SIDE)
    picture, mask = (part.ctypes.data_as(c_void_p) for part in truth)
    _call(name, *arguments, picture, mask, byref(room))
    return truth


def ground_truth(at: Optional[float] = None, serial: Optional[str] = None) -> GroundTruth:
    """The ideal picture of what lies on the platen: at the moment of the last frame, or at a time of the time line."""
    if at is None:
        return _picture("VTSimGetGroundTruth", _bytes(serial))
    return _picture("VTSimGetGroundTruthAt", _bytes(serial), at)


def unrolled_truth(begin: float, end: float, serial: Optional[str] = None) -> GroundTruth:
    """The skin of fingers that rolled over the glass between two times, at most 3600 s apart, unrolled."""
    return _picture("VTSimGetUnrolledTruth", _bytes(serial), begin, end)


def picture_to_sensor(x: float, y: float, serial: Optional[str] = None) -> Tuple[float, float]:
    """Where a point of the ground truth falls on the full sensor of 3840 × 2720 pixels; whole numbers are centres."""
    sensor_x, sensor_y = c_double(), c_double()
    _call("VTSimPictureToSensor", _bytes(serial), x, y, byref(sensor_x), byref(sensor_y))
    return sensor_x.value, sensor_y.value


_T = TypeVar("_T", bound=ctypes.Structure)


def _list(kind: Type[_T], most: int, name: str, *arguments: Any) -> List[_T]:
    room = c_uint(most)
    cells = (kind * most)()
    _call(name, *arguments, cells, byref(room))
    return list(cells[: room.value])


def minutiae(at: float, serial: Optional[str] = None) -> List[Minutia]:
    """The minutiae, cores and deltas of the generated prints that are down at a time of the time line."""
    room = c_uint(0)
    number = _number("VTSimGetMinutiaeAt", _bytes(serial), at, None, byref(room))
    if number not in (0, _SIZE_TOO_SMALL):
        _raise("VTSimGetMinutiaeAt", number)
    return _list(Minutia, room.value, "VTSimGetMinutiaeAt", _bytes(serial), at)


def ridges(at: float, serial: Optional[str] = None) -> npt.NDArray[np.float64]:
    """Direction in degrees and period in pixels of the ridges at a time: shape (200, 200, 2), a square of 8 pixels each.

    The period is 0 where no generated ridges touch the glass.
    """
    result = np.empty((RIDGE_SIDE, RIDGE_SIDE, 2), np.float64)
    room = c_uint(RIDGE_SIDE * RIDGE_SIDE)
    _call("VTSimGetRidgesAt", _bytes(serial), at, result.ctypes.data_as(c_void_p), byref(room))
    return result


def target_dots(serial: Optional[str] = None) -> npt.NDArray[np.float64]:
    """The middles of the calibration target's 64 dots on the full sensor: shape (64, 2) for x and y, or (0, 2)."""
    dots = _list(_Point, 64, "VTSimGetTargetDots", _bytes(serial))
    return np.array([(dot.x, dot.y) for dot in dots], np.float64).reshape(-1, 2)


def optics(serial: Optional[str] = None) -> OpticsState:
    """How the optics blurs."""
    found = OpticsState(_size=ctypes.sizeof(OpticsState))
    _call("VTSimGetOptics", _bytes(serial), byref(found))
    return found


def sheet_at(time: float, serial: Optional[str] = None) -> Tuple[SheetState, List[SheetField]]:
    """The sheet that lies there at a time of the time line, and what is printed on it."""
    sheet = SheetState()
    return sheet, _list(SheetField, 1024, "VTSimGetSheetAt", _bytes(serial), time, byref(sheet))


def pen_at(time: float, serial: Optional[str] = None) -> PenState:
    """The pen at a time of the time line."""
    pen = PenState()
    _call("VTSimGetPenAt", _bytes(serial), time, byref(pen))
    return pen


def pen_strokes(serial: Optional[str] = None) -> List[PenStroke]:
    """The strokes of the pen in their order."""
    return _list(PenStroke, 200, "VTSimGetPenStrokes", _bytes(serial))


# ---- What the host has done ----------------------------------------------------------------------------------------


def state(serial: Optional[str] = None) -> State:
    """What the host has set on a scanner and what it has got from it."""
    result = State(struct_size=ctypes.sizeof(State))
    _call("VTSimGetState", _bytes(serial), byref(result))
    return result


def beeps(serial: Optional[str] = None) -> List[Beep]:
    """The latest beeps, at most 256, oldest first."""
    return _list(Beep, 256, "VTSimGetBeeps", _bytes(serial))


def lights(serial: Optional[str] = None) -> List[LightWord]:
    """The latest words that switched lights, at most 256, oldest first."""
    return _list(LightWord, 256, "VTSimGetLights", _bytes(serial))


def display(serial: Optional[str] = None) -> DisplayState:
    """What the character display shows."""
    result = DisplayState(struct_size=ctypes.sizeof(DisplayState))
    _call("VTSimGetDisplay", _bytes(serial), byref(result))
    return result


def sequences(first: int = 0, serial: Optional[str] = None) -> List[SequenceRecord]:
    """The records of the sequences from number `first` on, at most 4096, oldest first."""
    return _list(SequenceRecord, 4096, "VTSimGetFrames", _bytes(serial), _unsigned(first, "first", 64))


def call_count(function: str) -> int:
    """How often a function of the scan library was called since the scene was loaded."""
    count = c_ulonglong()
    _call("VTSimGetCallCount", _bytes(function, "function"), byref(count))
    return count.value


def fault_log() -> List[str]:
    """What was injected since the scene was loaded, one line each."""
    room = c_uint(0)
    while True:
        buffer = ctypes.create_string_buffer(max(room.value, 1))
        number = _number("VTSimGetFaultLog", buffer, byref(room))
        if number != _SIZE_TOO_SMALL:
            break
    if number != 0:
        _raise("VTSimGetFaultLog", number)
    return buffer.value.decode("utf-8", "replace").splitlines()


# ---- Time ----------------------------------------------------------------------------------------------------------


def advance(seconds: float, serial: Optional[str] = None) -> None:
    """Moves a scanner's time line on."""
    _call("VTSimAdvance", _bytes(serial), seconds)


def wait_for_sequences(count: int, timeout: float, serial: Optional[str] = None) -> bool:
    """Waits until so many sequences were handed out since the scene was loaded; False when they weren't in time."""
    milliseconds = _unsigned(round(timeout * 1000), "timeout in milliseconds")
    number = _number("VTSimWaitForSequences", _bytes(serial), _unsigned(count, "count", 64), milliseconds)
    if number not in (0, _TIMED_OUT):
        _raise("VTSimWaitForSequences", number)
    return number == 0


def hold_sequences(hold: bool = True, serial: Optional[str] = None) -> None:
    """Holds back all further sequences, or lets them flow again."""
    _call("VTSimHoldSequences", _bytes(serial), bool(hold))


def pass_sequences(count: int, serial: Optional[str] = None) -> None:
    """Lets so many of the held sequences through."""
    _call("VTSimPassSequences", _bytes(serial), _unsigned(count, "count"))


def delay_sequence(seconds: float, serial: Optional[str] = None) -> None:
    """The next sequence comes so much later than it would."""
    _call("VTSimDelaySequence", _bytes(serial), _unsigned(round(seconds * 1000), "delay in milliseconds"))


# ---- Faults --------------------------------------------------------------------------------------------------------


def unplug(at: Optional[float] = None, serial: Optional[str] = None) -> None:
    """Takes a scanner off the bus, now or at a time of its time line. A handle that was open stays dead."""
    if at is None:
        _call("VTSimUnplug", _bytes(serial))
    else:
        _call("VTSimUnplugAt", _bytes(serial), at)


def plug(at: Optional[float] = None, serial: Optional[str] = None) -> None:
    """Puts a scanner back on the bus, now or at a time of its time line."""
    if at is None:
        _call("VTSimPlug", _bytes(serial))
    else:
        _call("VTSimPlugAt", _bytes(serial), at)


def set_eprom_file(name: str, data: Optional[bytes], serial: Optional[str] = None) -> None:
    """Replaces a calibration file ("GEOCAL", "BRGHTCAL", "GAINSET") of a scanner; None takes it away."""
    _call("VTSimSetEpromFile", _bytes(serial), _bytes(name, "name"), data, 0 if data is None else len(data))


def restore_eprom_file(name: str, serial: Optional[str] = None) -> None:
    """Brings the scanner's own calibration file back."""
    _call("VTSimRestoreEpromFile", _bytes(serial), _bytes(name, "name"))


def set_device_version(version: str, serial: Optional[str] = None) -> None:
    """Sets the version text of one scanner."""
    _call("VTSimSetDeviceVersion", _bytes(serial), _bytes(version, "version"))


def set_library_version(version: str) -> None:
    """Sets the version text of the scan library."""
    _call("VTSimSetLibraryVersion", _bytes(version, "version"))


def fail_call(function: str, result: int, first: int = 1, repeat: int = 1) -> None:
    """Calls `first` to ``first + repeat - 1`` of a scan-library function, counted from now on, answer `result`.

    `repeat` 0 means all from `first` on.
    """
    name = _bytes(function, "function")
    _call("VTSimFailCall", name, _unsigned(first, "first"), _unsigned(repeat, "repeat"), result)


def fail_randomly(function: Optional[str], probability: float, result: int, seed: int = 1) -> None:
    """Each call of the function (None: of any that takes a device) fails with that probability."""
    name = _bytes(function, "function")
    _call("VTSimFailRandomly", name, _unsigned(seed, "seed", 64), probability, result)


def clear_faults() -> None:
    """Forgets call faults, random faults and planned plugging; held sequences flow."""
    _call("VTSimClearFaults")
