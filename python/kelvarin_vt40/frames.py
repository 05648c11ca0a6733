"""What a scanner delivers: frames, the modes they come from, and the verdicts on rolls."""

from __future__ import annotations

import enum
from dataclasses import dataclass, field
from typing import TYPE_CHECKING, Any, NamedTuple, Optional

import numpy as np
import numpy.typing as npt

if TYPE_CHECKING:
    from PIL.Image import Image

Pixels = npt.NDArray[np.uint8]

_WHITE = 255


class Mode(enum.IntEnum):
    """Capture modes; the values are those of the C interface."""

    AUTO = 0
    """Preview; the scanner captures by itself when fingers lie still."""
    ROLL = 1
    """A rolled print, put together while the finger turns."""
    AUTO_LIVE = 2
    """As `AUTO`, with a score of liveness. Needs the liveness library."""
    OFF = 3
    """No stream; a capture is a single shot. A scanner that was just opened is in this mode."""
    FULL = 4
    """A stream of pictures at full resolution."""
    PREVIEW = 5
    """Preview; captures when asked."""
    SIGNATURE = 6
    """The platen as a signature pad."""


class State(enum.Enum):
    """What a frame shows."""

    EMPTY = "empty"
    """Nothing but background."""
    FINGER = "finger"
    """Something lies there; the picture is not finished."""
    DONE = "done"
    """The picture is finished."""


class Verdict(enum.IntEnum):
    """What a finished roll comes to; the values are those of the C interface."""

    CLEAN = 0
    SLIPPED = -801
    TOO_FAST = -802
    TURNED_BACK = -803
    TWISTED = -804
    TOO_SMALL = -805

    @property
    def hint(self) -> str:
        """What to do about it."""
        return _VERDICT_HINTS[self]


_VERDICT_HINTS = {
    Verdict.CLEAN: "Nothing is to be done.",
    Verdict.SLIPPED: "The skin slid on the platen: press less, or dry the finger.",
    Verdict.TOO_FAST: "A part of the finger was passed over: roll more slowly.",
    Verdict.TURNED_BACK: "The finger was rolled back on the way: roll in one direction.",
    Verdict.TWISTED: "The finger turned about its middle: keep its direction.",
    Verdict.TOO_SMALL: "Too little of the finger was rolled: roll from nail to nail.",
}


class Size(NamedTuple):
    """Width and height of a picture in pixels. The array of such a picture has the shape (height, width)."""

    width: int
    height: int


@dataclass(frozen=True, eq=False)
class Frame:
    """One picture with what the scanner said of it.

    `numpy.asarray(frame)` gives the pixels without a copy.

    Attributes
    ----------
    pixels : numpy.ndarray
        Shape (height, width), dtype uint8, C order, top row first. 0 is black and 255 white; ridges and strokes are dark
        on white. The memory is the frame's own: nothing writes to it after the call that returned the frame, and it
        lives as long as the array or a view of it does, closed scanner or not. Only with ``out=`` the array is the
        caller's, and the next call with it writes there again.
    dpi : int
        Dots per inch, the same both ways: 250 for previews, 500 for all others.
    mode : Mode
        The mode in which the frame was taken.
    score : float
        Score of liveness, 0 to 100, in `Mode.AUTO_LIVE`; 0 in the others.
    done : bool
        Whether the scanner calls the picture finished. A single shot and a frame of the full stream never are.
    result : int
        0 for a finished picture, -15 for one that is not; for a finished roll its verdict.
    serial : str
        Serial number of the scanner.
    simulated : bool
        Whether the scanner is a simulated one.
    time : float
        When the frame came, seconds on the clock of `time.monotonic`.
    """

    pixels: Pixels = field(repr=False)
    dpi: int
    mode: Mode
    score: float
    done: bool
    result: int
    serial: str
    simulated: bool
    time: float

    def __array__(self, dtype: Optional[npt.DTypeLike] = None, copy: Optional[bool] = None) -> npt.NDArray[Any]:
        return self.pixels.astype(self.pixels.dtype if dtype is None else dtype, copy=bool(copy))

    @property
    def size(self) -> Size:
        """Width and height in pixels."""
        height, width = self.pixels.shape
        return Size(width, height)

    @property
    def dark_pixels(self) -> int:
        """How many pixels are not white, which is what fingers and strokes leave of a background."""
        return int(np.count_nonzero(self.pixels != _WHITE))

    @property
    def state(self) -> State:
        """What the frame shows."""
        if self.done:
            return State.DONE
        return State.FINGER if self.dark_pixels else State.EMPTY

    @property
    def verdict(self) -> Optional[Verdict]:
        """The verdict on a finished roll, else None."""
        return Verdict(self.result) if self.done and self.mode is Mode.ROLL else None

    def to_pil(self) -> Image:
        """A Pillow image with its resolution, for ``frame.to_pil().save("print.png", dpi=(frame.dpi, frame.dpi))``.

        Pillow stores a resolution when `save` is given one; the image keeps it in ``info["dpi"]`` as well. The pixels are
        copied.

        Raises
        ------
        ImportError
            Pillow (``python3-pil``) is not installed.
        """
        try:
            from PIL import Image as pil
        except ModuleNotFoundError:
            raise ImportError("Pillow makes files of pictures, and is missing. Install python3-pil.") from None
        image = pil.fromarray(self.pixels)
        image.info["dpi"] = (self.dpi, self.dpi)
        return image
