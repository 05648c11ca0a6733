"""Scenes of the simulated scanner as dataclasses: which scanners there are, and what is laid on them when.

Each class is an object of the scene file that docs/simulator.md describes, with the same defaults: what is None is left
out. Lengths are millimetres, times seconds, angles degrees. Positions count from the left and top edge of the picture,
whose side is 81.28 mm.
"""

from __future__ import annotations

import json
import math
import os
from dataclasses import dataclass, fields, is_dataclass
from typing import Any, Dict, Optional, Sequence, Tuple, Union


@dataclass
class Print:
    """A print: a PNG `file`, or a generated one. Another seed is another finger."""

    file: Optional[str] = None
    seed: Optional[int] = None
    pattern: Optional[str] = None  # "left-loop", "right-loop", "whorl", "arch", "tented-arch", "double-loop", "any"
    width: Optional[float] = None
    height: Optional[float] = None
    ridge_period: Optional[float] = None
    pores: Optional[float] = None
    skin: Optional[str] = None  # "adult", "child", "elderly"
    creases: Optional[int] = None
    scars: Optional[int] = None
    cuts: Optional[int] = None
    material: Optional[str] = None  # "skin", or an imitation: "soft-cast", "flat-cast", "halftone"


@dataclass
class Stretch:
    """By how much the finger has moved on and turned after the middle of the contact stuck to the glass."""

    x: Optional[float] = None
    y: Optional[float] = None
    turn: Optional[float] = None


@dataclass
class Settle:
    """A finger that comes to rest: the offsets count from its resting pose."""

    x: Optional[float] = None
    y: Optional[float] = None
    turn: Optional[float] = None
    pressure: Optional[float] = None
    seconds: Optional[float] = None


@dataclass
class Slide:
    """A finger that slides in `direction` (0 is right, 90 up), or round a circle of `radius`."""

    speed: Optional[float] = None
    direction: Optional[float] = None
    start: Optional[float] = None
    until: Optional[float] = None
    radius: Optional[float] = None


@dataclass
class Press:
    """A finger whose pressure changes to `pressure`."""

    start: Optional[float] = None
    seconds: Optional[float] = None
    pressure: Optional[float] = None


@dataclass
class RollMoment:
    """A moment of a roll: where the middle of the strip is, how far the finger is turned, and whether it is down."""

    at: float
    strip: Optional[float] = None
    turn: Optional[float] = None
    down: Optional[float] = None


@dataclass
class Rolling:
    """A finger that rolls over the glass."""

    width: Optional[float] = None
    tilt: Optional[float] = None
    path: Optional[Sequence[RollMoment]] = None


@dataclass
class Finger:
    """A finger: its print, its pose, when it touches and lifts, and how it moves."""

    print: Optional[Print] = None
    x: Optional[float] = None
    y: Optional[float] = None
    angle: Optional[float] = None
    pressure: Optional[float] = None
    dryness: Optional[float] = None
    sweat: Optional[float] = None
    touch: Optional[float] = None
    lift: Optional[float] = None
    touch_seconds: Optional[float] = None
    lift_seconds: Optional[float] = None
    repeat: Optional[float] = None
    halo: Optional[float] = None
    stretch: Optional[Stretch] = None
    settle: Optional[Settle] = None
    slide: Optional[Slide] = None
    press: Optional[Press] = None
    roll: Optional[Rolling] = None


@dataclass
class Stroke:
    """A stroke of the pen through points ``(x, y)`` or ``(x, y, pause)``."""

    points: Sequence[Sequence[float]]
    at: Optional[float] = None
    after: Optional[float] = None
    speed: Optional[float] = None
    line: Optional[str] = None  # "curve", "straight"


@dataclass
class Pen:
    """A pen."""

    strokes: Optional[Sequence[Stroke]] = None
    diameter: Optional[float] = None
    strength: Optional[float] = None


@dataclass
class Dirt:
    """A speck, or with a `length` a smear. `from_` and `until` are seconds."""

    x: Optional[float] = None
    y: Optional[float] = None
    width: Optional[float] = None
    length: Optional[float] = None
    angle: Optional[float] = None
    strength: Optional[float] = None
    from_: Optional[float] = None
    until: Optional[float] = None


@dataclass
class Target:
    """The calibration target, and what is wrong with it."""

    seed: Optional[int] = None
    x: Optional[float] = None
    y: Optional[float] = None
    angle: Optional[float] = None
    radius: Optional[float] = None
    uneven: Optional[float] = None
    dust: Optional[int] = None
    scratches: Optional[int] = None
    missing: Optional[Sequence[int]] = None
    doubled: Optional[Sequence[int]] = None


@dataclass
class Sheet:
    """A sheet that image quality is measured with: "sine", "bars", "edges", "grid", "steps", "bright" or "dark"."""

    kind: str
    x: Optional[float] = None
    y: Optional[float] = None
    angle: Optional[float] = None
    from_: Optional[float] = None
    until: Optional[float] = None


@dataclass
class Optics:
    """What is wrong with the optics of a scanner: a factor on its blur, a bend in mm, a shade of the corners."""

    blur: Optional[float] = None
    bend: Optional[float] = None
    shade: Optional[float] = None


@dataclass
class Light:
    """Room light at a moment, 0 to 200 grey levels."""

    at: float
    level: float


@dataclass
class EpromFile:
    """What is wrong with a calibration file of a scanner."""

    missing: Optional[bool] = None
    file: Optional[str] = None
    cut: Optional[int] = None
    flip: Optional[Sequence[int]] = None


@dataclass
class Eprom:
    """The calibration files of a scanner."""

    form: Optional[str] = None  # "current", "legacy"
    geocal: Optional[EpromFile] = None
    brghtcal: Optional[EpromFile] = None
    gainset: Optional[EpromFile] = None


@dataclass
class Platen:
    """What lies on one platen, and the light in which it lies."""

    fingers: Optional[Sequence[Finger]] = None
    pen: Optional[Pen] = None
    dirt: Optional[Sequence[Dirt]] = None
    target: Optional[Target] = None
    ambient: Union[None, float, Sequence[Light]] = None
    noise: Optional[float] = None
    sheets: Optional[Sequence[Sheet]] = None


@dataclass
class SimulatedScanner(Platen):
    """A scanner of the scene."""

    serial: Optional[str] = None
    product: Optional[int] = None
    usb_powered: Optional[bool] = None
    version: Optional[str] = None
    plane_order: Optional[str] = None  # "mixed", "dark-first", "lit-first"
    eprom: Optional[Eprom] = None
    optics: Optional[Optics] = None


@dataclass
class FailCall:
    """Calls `first` to ``first + repeat - 1`` of a scan-library function answer `result`; `repeat` 0 means all."""

    call: str
    result: int
    first: Optional[int] = None
    repeat: Optional[int] = None


@dataclass
class FailRandomly:
    """Each call of the function (``"*"``: of any that takes a device) fails with that probability."""

    random: str
    probability: float
    result: int


@dataclass
class Unplug:
    """A scanner goes at a time of its time line."""

    unplug: str
    at: float


@dataclass
class Plug:
    """A scanner comes back at a time of its time line."""

    plug: str
    at: float


Fault = Union[FailCall, FailRandomly, Unplug, Plug]


@dataclass
class Scene:
    """All there is: scanners, and what goes wrong."""

    scanners: Sequence[SimulatedScanner] = ()
    seed: Optional[int] = None
    pacing: Optional[str] = None  # "consumer": frames come when asked for; "real": by the clock
    library_version: Optional[str] = None
    faults: Optional[Sequence[Fault]] = None
    fault_seed: Optional[int] = None


# Keys that are not the field's name in camel case.
_KEYS = {"from_": "from", "geocal": "GEOCAL", "brghtcal": "BRGHTCAL", "gainset": "GAINSET"}


def _key(name: str) -> str:
    first, *rest = name.split("_")
    return _KEYS.get(name) or first + "".join(word.capitalize() for word in rest)


def _value(value: Any) -> Any:
    if isinstance(value, float) and not math.isfinite(value):
        raise ValueError(f"a scene cannot hold {value}")
    if is_dataclass(value) and not isinstance(value, type):
        return as_dict(value)
    if isinstance(value, (list, tuple)):
        return [_value(part) for part in value]
    if hasattr(value, "tolist"):  # numpy's numbers and arrays
        return _value(value.tolist())
    return os.fspath(value) if isinstance(value, os.PathLike) else value


def as_dict(part: Any) -> Dict[str, Any]:
    """A part of a scene as the object of the scene file."""
    pairs: Sequence[Tuple[str, Any]] = [(f.name, getattr(part, f.name)) for f in fields(part)]
    return {_key(name): _value(value) for name, value in pairs if value is not None}


def as_json(part: Any) -> str:
    """A part of a scene as JSON text.

    Raises
    ------
    ValueError
        A number is infinite or not a number.
    TypeError
        A value has no form in JSON.
    """
    return json.dumps(as_dict(part))
