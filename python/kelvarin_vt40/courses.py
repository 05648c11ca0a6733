"""What takes several frames: an automatic capture, a roll, a signature."""

from __future__ import annotations

import time
from typing import TYPE_CHECKING, Callable, Iterator, Optional

from . import errors
from .frames import Frame, Verdict

if TYPE_CHECKING:
    from .scanner import Scanner

# So many previews without a change rule out that a stall of this program passed for a pause.
_FEWEST_UNCHANGED = 8


def wait_for_fingers(scanner: Scanner, timeout: float, on_frame: Optional[Callable[[Frame], None]]) -> Frame:
    """The picture of the next fingers that lie still, in an automatic mode."""
    deadline = time.monotonic() + timeout
    while True:
        frame = scanner.preview_frame()
        if on_frame is not None:
            on_frame(frame)
        # The scanner goes on reporting "done" until the fingers are lifted.
        is_new, scanner._has_taken = frame.done and not scanner._has_taken, frame.done
        if is_new:
            picture = scanner.capture()
            # When they were lifted before the picture was fetched, the next fingers are waited for.
            if picture.done:
                return picture
        if time.monotonic() >= deadline:
            raise errors.CaptureTimeoutError(f"No fingers lay still within {timeout:g} s.", frame)


class Roll(Iterator[Frame]):
    """A roll that is under way: an iterator of the growing print, which ends with the finished one.

    Attributes
    ----------
    frame : Frame or None
        The latest frame; after the end the finished print, 800 × 800 pixels at 500 dpi.
    verdict : Verdict or None
        What the roll comes to; None until it is finished.

    Raises
    ------
    CaptureTimeoutError
        While iterating: the finger was not lifted in time; `frame` is what was rolled so far.
    DisconnectedError
        While iterating: no frame came within 5 seconds.
    """

    def __init__(self, scanner: Scanner, timeout: float) -> None:
        self._scanner = scanner
        self._timeout = timeout
        self._deadline = time.monotonic() + timeout
        self.frame: Optional[Frame] = None
        self.verdict: Optional[Verdict] = None

    def __next__(self) -> Frame:
        if self.verdict is not None:
            raise StopIteration
        if time.monotonic() >= self._deadline:
            raise errors.CaptureTimeoutError(f"No roll was finished within {self._timeout:g} s.", self.frame)
        self.frame = self._scanner.roll_frame()
        self.verdict = self.frame.verdict
        return self.frame

    def wait(self) -> Frame:
        """Rolls to the end and returns the finished print; `verdict` says what it is worth."""
        for _ in self:
            pass
        assert self.frame is not None, "a roll ends with a frame"
        return self.frame


class Signature(Iterator[Frame]):
    """A signature that is under way: an iterator of previews, which ends when the pen has rested.

    Attributes
    ----------
    frame : Frame or None
        The latest preview: the strokes so far at 250 dpi.
    finished : bool
        Whether the pen has rested for the pause.

    Raises
    ------
    CaptureTimeoutError
        While iterating: the signature was not finished in time. `take` gives what was written so far.
    DisconnectedError
        While iterating: no preview came within 15 seconds.
    """

    def __init__(self, scanner: Scanner, pause: float, timeout: float) -> None:
        self._scanner = scanner
        self._pause = pause
        self._timeout = timeout
        self._deadline = time.monotonic() + timeout
        self._ink = 0
        self._unchanged = 0
        self._changed_at = time.monotonic()
        self.frame: Optional[Frame] = None
        self.finished = False

    def __next__(self) -> Frame:
        if self.finished:
            raise StopIteration
        if time.monotonic() >= self._deadline:
            raise errors.CaptureTimeoutError(f"No signature was finished within {self._timeout:g} s.", self.frame)
        self.frame = self._scanner.preview_frame()
        self.finished = self._has_rested(self.frame)
        return self.frame

    def _has_rested(self, frame: Frame) -> bool:
        ink = frame.dark_pixels
        if ink == 0 or ink != self._ink:
            self._ink, self._unchanged, self._changed_at = ink, 0, frame.time
            return False
        self._unchanged += 1
        return self._unchanged >= _FEWEST_UNCHANGED and frame.time - self._changed_at >= self._pause

    def take(self) -> Frame:
        """The strokes so far at full size, 1600 × 1600 pixels (with half the height 1600 × 800) at 500 dpi."""
        return self._scanner.capture()

    def wait(self) -> Frame:
        """Waits until the pen has rested, and returns the signature at full size."""
        for _ in self:
            pass
        return self.take()
