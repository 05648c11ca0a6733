"""VT40 ten-finger live-scanner: captures flat and rolled fingerprints and signatures as numpy arrays.

    >>> import kelvarin_vt40 as vt40
    >>> vt40.simulator.use("finger")            # a real scanner needs no such line
    >>> with vt40.Scanner() as scanner:
    ...     frame = scanner.capture()
    >>> frame.pixels.shape, frame.dpi
    ((1600, 1600), 500)

`scanners` lists what is connected, `Scanner` opens one, `Mode` names the capture modes, `Frame` is what a scanner
delivers. `errors.Error` is the base of what is raised. `simulator` lays fingers on a simulated scanner.
"""

from importlib import metadata as _metadata

from . import errors, simulator
from .courses import Roll, Signature
from .frames import Frame, Mode, Size, State, Verdict
from .library import scanners, shutdown, version
from .scanner import Scanner

try:
    __version__ = _metadata.version("kelvarin-vt40")
except _metadata.PackageNotFoundError:
    # Used from the sources, without an installation that knows it.
    __version__ = "0+sources"

__all__ = [
    "Frame",
    "Mode",
    "Roll",
    "Scanner",
    "Signature",
    "Size",
    "State",
    "Verdict",
    "errors",
    "scanners",
    "shutdown",
    "simulator",
    "version",
]
